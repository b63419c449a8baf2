// SPDX-License-Identifier: Apache-2.0
#include <openssl/evp.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

#include "tools/makesocial/samples.h"

namespace makesocial {

namespace {

std::string Md5(std::string const& text) {
    unsigned char digest[EVP_MAX_MD_SIZE];
    unsigned int size = 0;
    if (EVP_Digest(text.data(), text.size(), digest, &size, EVP_md5(), nullptr) != 1) {
        throw std::runtime_error("no MD5");
    }
    constexpr char const* kDigits = "0123456789abcdef";
    std::string result;
    for (unsigned int i = 0; i < size; ++i) {
        result += kDigits[digest[i] / 16];
        result += kDigits[digest[i] % 16];
    }
    return result;
}

// As SocialMediaSignature computes it: file, platform and all numbers, with nothing between them.
std::string FeatureHash(Data const& data, Sample const& sample) {
    std::string text = sample.file + sample.group;
    for (int const number : sample.Head()) text += std::to_string(number);
    for (int const step : data.tables[static_cast<size_t>(sample.table)]) text += std::to_string(step);
    return Md5(text);
}

std::vector<int> UsedTables(std::vector<Sample> const& records) {
    std::set<int> used;
    for (Sample const& record : records) used.insert(record.table);
    return {used.begin(), used.end()};
}

void WriteSamples(Data const& data, std::vector<Sample> const& samples, std::ostream& out) {
    for (Sample const& sample : samples) {
        out << sample.group << '\t' << sample.collection << '\t' << sample.file;
        for (int const number : sample.Head()) out << '\t' << number;
        for (int const step : data.tables[static_cast<size_t>(sample.table)]) out << '\t' << step;
        out << '\n';
    }
}

}  // namespace

void WriteTable(Data const& data, std::vector<Sample> const& records, std::ostream& out) {
    std::vector<int> const tables = UsedTables(records);
    out << "// Made by tools/makesocial out of data/social_*.tsv.\n#include \"orvcore/smstable.h\"\n\n"
           "char const* const SocialMediaPlatforms[] = {";
    for (Group const& group : data.groups) out << '"' << group.name << "\", ";
    out << "};\n\nunsigned char const SocialMediaTables[][40] = {\n";
    for (int const table : tables) {
        out << '{';
        for (int const step : data.tables[static_cast<size_t>(table)]) out << step << ',';
        out << "},\n";
    }
    out << "};\n\nSocialMediaRecord const SocialMediaRecords[] = {\n";
    std::set<std::string> hashes;
    for (Sample const& record : records) {
        std::string const hash = FeatureHash(data, record);
        if (!hashes.insert(hash).second) throw std::runtime_error("two records with the hash " + hash);
        auto const group = std::find_if(data.groups.begin(), data.groups.end(),
                                        [&](Group const& one) { return one.name == record.group; });
        auto const table = std::lower_bound(tables.begin(), tables.end(), record.table);
        out << "{\"" << record.file << "\",\"" << record.date << "\",\"" << hash << "\",{";
        for (int const number : record.Head()) out << number << ',';
        out << "}," << table - tables.begin() << ',' << group - data.groups.begin() << "},\n";
    }
    out << "};\n\nsize_t const SocialMediaRecordCount = " << records.size() << ";\n";
}

void WriteLabels(Data const& data, std::ostream& out) {
    out << "group\tsource\tfile_id\twidth\theight\tthumb_w\tthumb_h\tn_exif\tn_markers\tsub_2nd\tsub_3rd";
    for (int i = 0; i < 32; ++i) out << "\tq1_" << i / 10 << i % 10;
    for (int i = 0; i < 8; ++i) out << "\tq2_" << i;
    out << '\n';
    WriteSamples(data, data.measured, out);
    WriteSamples(data, data.others, out);
}

void WriteCounts(Data const& data, std::vector<Sample> const& records, std::ostream& out) {
    out << "group\trecords\tmeasured\tmodelled\tmodels\tleast\tgreatest\n";
    for (Group const& group : data.groups) {
        int measured = 0, modelled = 0, least = 65535, greatest = 0;
        std::set<std::string> models;
        for (Sample const& record : records) {
            if (record.group != group.name) continue;
            ++(record.isModelled ? modelled : measured);
            if (record.isModelled) models.insert(record.file.substr(16));
            least = std::min(least, record.LongerSide());
            greatest = std::max(greatest, record.LongerSide());
        }
        out << group.name << '\t' << measured + modelled << '\t' << measured << '\t' << modelled << '\t'
            << models.size() << '\t' << least << '\t' << greatest << '\n';
    }
}

}  // namespace makesocial
