// SPDX-License-Identifier: Apache-2.0
#include <openssl/evp.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "tolimage/jpeg_signaturetable.h"
#include "tools/maketables/tsv.h"

namespace maketables {

namespace {

using Table = std::array<int, 64>;

constexpr std::array<int, 64> kZigZag{0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                      12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                      35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                      58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

struct Signature {
    std::vector<Table> tables;
    std::string digest;
    std::string rotated;
};

Table Transposed(Table const& table) {
    Table turned{};
    for (size_t i = 0; i < 64; ++i) turned[i % 8 * 8 + i / 8] = table[i];
    return turned;
}

std::string AsText(Table const& table) {
    std::string text;
    for (size_t i = 0; i < 64; ++i) {
        if (i > 0) text += i % 8 == 0 ? '!' : ',';
        text += std::to_string(table[i]);
    }
    return text;
}

// The table as a DQT segment stores it: 8 bits a value if all of them fit.
std::string AsStored(size_t index, Table const& table) {
    const bool isWide = *std::max_element(table.begin(), table.end()) > 255;
    std::string bytes(1, static_cast<char>(index + (isWide ? 16 : 0)));
    for (const int place : kZigZag) {
        const int value = table[static_cast<size_t>(place)];
        if (isWide) bytes += static_cast<char>(value / 256);
        bytes += static_cast<char>(value % 256);
    }
    return bytes;
}

std::string Md5(std::string const& bytes) {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned length = 0;
    if (EVP_Digest(bytes.data(), bytes.size(), digest.data(), &length, EVP_md5(), nullptr) != 1) {
        throw std::runtime_error("MD5 is not available");
    }
    std::string text;
    for (unsigned i = 0; i < length; ++i) {
        text += "0123456789ABCDEF"[digest[i] >> 4U];
        text += "0123456789ABCDEF"[digest[i] & 15U];
    }
    return text;
}

// The payloads of the DQT segments: all tables in one ("joint", or "reversed" where the last comes first), or one each
// and a zero byte between them.
std::string Digest(std::vector<Table> const& tables, std::string const& layout, bool isTransposed) {
    std::string bytes;
    for (size_t i = 0; i < tables.size(); ++i) {
        const std::string stored = AsStored(i, isTransposed ? Transposed(tables[i]) : tables[i]);
        if (layout == "reversed") {
            bytes.insert(0, stored);
        } else {
            if (i > 0 && layout != "joint") bytes += '\0';
            bytes += stored;
        }
    }
    return Md5(bytes);
}

std::vector<Table> ReadTables(std::string const& path) {
    const Tsv file(path);
    std::vector<Table> tables(file.RowCount());
    for (size_t row = 0; row < file.RowCount(); ++row) {
        if (file.Number(row, "number") != static_cast<int>(row) + 1) file.Fail(row, "numbers are not in order");
        const std::vector<std::string> values = Split(file.Cell(row, "values"), ' ');
        if (values.size() != 64) file.Fail(row, "a table has 64 values");
        for (size_t i = 0; i < 64; ++i) tables[row][i] = std::stoi(values[i]);
    }
    return tables;
}

Signature ReadSignature(Tsv const& file, size_t row, std::vector<Table> const& tables) {
    Signature signature;
    signature.digest = file.Cell(row, "digest");
    std::string const& numbers = file.Cell(row, "tables");
    for (std::string const& number : numbers.empty() ? std::vector<std::string>() : Split(numbers, ' ')) {
        signature.tables.push_back(tables.at(static_cast<size_t>(std::stoi(number)) - 1));
    }
    if (signature.tables.size() > 3) file.Fail(row, "a record has at most three tables");
    if (signature.tables.empty()) {
        if (signature.digest.empty()) file.Fail(row, "neither digest nor tables");
        return signature;
    }
    // Tables of no known layout get the digest of one table a segment, as the IJG library writes them.
    std::string const& layout = file.Cell(row, "layout");
    constexpr std::array<char const*, 5> layouts{"single", "separate", "joint", "reversed", "unknown"};
    if (std::find(layouts.begin(), layouts.end(), layout) == layouts.end()) file.Fail(row, "a layout of no name");
    const std::string digest = Digest(signature.tables, layout, false);
    if (!signature.digest.empty() && signature.digest != digest) file.Fail(row, "the tables have another digest");
    signature.digest = digest;
    signature.rotated = Digest(signature.tables, layout, true);
    return signature;
}

void WriteKeys(std::ostream& out, std::string const& name, std::vector<JpegSignatureKey> keys) {
    std::sort(keys.begin(), keys.end(), [](JpegSignatureKey const& a, JpegSignatureKey const& b) {
        return a.key != b.key ? a.key < b.key : a.record < b.record;
    });
    out << "extern const JpegSignatureKey " << name << "[] = {\n";
    for (JpegSignatureKey const& key : keys) out << "{" << key.key << "U," << key.record << "},\n";
    out << "{0,0}};\nextern const size_t " << name << "Count = " << keys.size() << ";\n";
}

}  // namespace

void MakeSignatures(std::string const& tablesPath, std::string const& signaturesPath, std::ostream& out) {
    const std::vector<Table> tables = ReadTables(tablesPath);
    const Tsv file(signaturesPath);
    Pool pool;
    std::vector<JpegSignatureKey> byTables;
    std::vector<JpegSignatureKey> byDigest;
    out << "// Made from data/; not to be edited.\n#include \"tolimage/jpeg_signaturetable.h\"\n";
    out << "extern const PackedJpegSignature kJpegSignatures[] = {\n";
    for (size_t row = 0; row < file.RowCount(); ++row) {
        const Signature signature = ReadSignature(file, row, tables);
        out << "{" << file.Number(row, "class");
        for (char const* column : {"make", "model", "quality"}) out << "," << pool.Offset(file.Cell(row, column));
        out << "," << pool.Offset(signature.digest) << "," << pool.Offset(signature.rotated);
        for (char const* column : {"sampling", "vendor", "software"}) out << "," << pool.Offset(file.Cell(row, column));
        std::string joined;
        for (size_t i = 0; i < 3; ++i) {
            const std::string text = i < signature.tables.size() ? AsText(signature.tables[i]) : std::string();
            out << (i == 0 ? ",{" : ",") << pool.Offset(text);
            joined += (i == 0 ? "" : "|") + text;
        }
        out << "}},\n";
        const auto record = static_cast<uint32_t>(row);
        if (signature.tables.empty()) {
            byDigest.push_back({JpegDigestKey(signature.digest), record});
        } else {
            byTables.push_back({JpegTextKey(joined), record});
        }
    }
    out << "{0," << pool.Offset("*") << ",0,0,0,0,0,0,0,{0,0,0}}};\n";
    out << "extern const size_t kJpegSignatureCount = " << file.RowCount() << ";\n";
    WriteKeys(out, "kJpegSignaturesByTables", byTables);
    WriteKeys(out, "kJpegSignaturesByDigest", byDigest);
    out << "extern const char kJpegSignaturePool[] =\n";
    pool.Write(out);
    out << ";\n";
}

}  // namespace maketables
