// SPDX-License-Identifier: Apache-2.0
// The two searches of JpegInfo: which records have these tables.
#include <algorithm>
#include <set>
#include <string>

#include "tolimage/jpeg_quality.h"
#include "tolimage/jpeg_signaturetable.h"
#include "tolimage/jpeginfo.h"

namespace {

using Rows = std::vector<std::vector<int>>;

// What all searches compare: a picture's tables as records write them, its digest and its sampling.
struct Probe {
    std::string tables;  // joined by "|"; empty if the picture has one that no record can hold
    std::string digest;
    std::string sampling;
};

std::string AsText(Rows const& rows) {
    std::string text;
    for (std::vector<int> const& row : rows) {
        if (!text.empty()) text += '!';
        for (size_t i = 0; i < row.size(); ++i) text += (i == 0 ? "" : ",") + std::to_string(row[i]);
    }
    return text;
}

Rows Transposed(Rows const& rows) {
    if (rows.size() != 8) return rows;
    Rows turned(8, std::vector<int>(8));
    for (size_t y = 0; y < 8; ++y) {
        for (size_t x = 0; x < 8 && x < rows[y].size(); ++x) turned[x][y] = rows[y][x];
    }
    return turned;
}

// "2x1" and "1x2" change places when a picture is turned.
std::string TurnedSampling(std::string const& sampling) {
    const bool isPair = sampling.size() == 3 && sampling[1] == 'x';
    return isPair ? std::string{sampling[2], 'x', sampling[0]} : sampling;
}

Probe MakeProbe(JpegInfo const& info, bool isTurned) {
    Probe probe;
    probe.sampling = info.SignatureSubsampling.utf8_string();
    probe.digest = (isTurned ? info.QtHashRot : info.QtHash).utf8_string();
    if (isTurned) probe.sampling = TurnedSampling(probe.sampling);
    if (!info.QuantizationTable3.empty()) return probe;
    for (size_t i = 0; i < info.QuantizationTables.size(); ++i) {
        Rows const& rows = info.QuantizationTables[i];
        if (i > 0) probe.tables += '|';
        probe.tables += AsText(isTurned ? Transposed(rows) : rows);
    }
    return probe;
}

// A record that tells no sampling, or a picture that ends before its frame, excludes nothing.
bool AgreesInSampling(std::string const& record, std::string const& picture) {
    return record.empty() || picture.empty() || record == picture;
}

char const* Text(uint32_t offset) {
    return &kJpegSignaturePool[offset];
}

std::string TablesOf(PackedJpegSignature const& record) {
    return std::string(Text(record.tables[0])) + "|" + Text(record.tables[1]) + "|" + Text(record.tables[2]);
}

// The records of the compiled table that agree with the probe.
std::set<uint32_t> FindCompiled(Probe const& probe) {
    std::set<uint32_t> records;
    const auto search = [&](JpegSignatureKey const* keys, size_t count, uint64_t key, auto const& agrees) {
        const auto less = [](JpegSignatureKey const& entry, uint64_t wanted) { return entry.key < wanted; };
        JpegSignatureKey const* const end = keys + count;
        for (auto at = std::lower_bound(keys, end, key, less); at != end && at->key == key; ++at) {
            PackedJpegSignature const& record = kJpegSignatures[at->record];
            if (agrees(record) && AgreesInSampling(Text(record.subsampling), probe.sampling))
                records.insert(at->record);
        }
    };
    if (!probe.tables.empty()) {
        search(kJpegSignaturesByTables, kJpegSignaturesByTablesCount, JpegTextKey(probe.tables),
               [&](PackedJpegSignature const& record) { return TablesOf(record) == probe.tables; });
    }
    if (!probe.digest.empty()) {
        search(kJpegSignaturesByDigest, kJpegSignaturesByDigestCount, JpegDigestKey(probe.digest),
               [&](PackedJpegSignature const& record) { return Text(record.signature) == probe.digest; });
    }
    return records;
}

// What a record adds to a list.
struct Entry {
    wxString editorClass, make, model, quality, vendor, name;
};

// The lists while they grow: sorted, each entry once.
class Lists {
public:
    void Add(Entry const& entry, bool isTurned) {
        if (entry.editorClass == "1") {
            // Make, model and quality stay cut by their commas: what is said of the turn belongs to the quality.
            const wxString mark = isTurned ? (entry.quality.empty() ? "(rotated)" : " (rotated)") : "";
            m_cameras.insert(entry.make + "," + entry.model + "," + entry.quality + mark);
        } else if (entry.editorClass == "2") {
            wxString name = !entry.name.empty() ? entry.name : (!entry.make.empty() ? entry.make : entry.vendor);
            if (!entry.quality.empty()) name += ", " + entry.quality;
            m_software.insert(isTurned ? name + " (rotated)" : name);
        }
    }

    bool Give(bool& softwareFound, bool& cameraFound, VecString& cameras, VecString& software,
              VecString const& standard) const {
        cameras.assign(m_cameras.begin(), m_cameras.end());
        software.assign(m_software.begin(), m_software.end());
        softwareFound = !software.empty();
        cameraFound = !cameras.empty();
        return softwareFound || cameraFound || !standard.empty();
    }

private:
    std::set<wxString> m_cameras;
    std::set<wxString> m_software;
};

JpegQuantTable ToTable(Rows const& rows) {
    JpegQuantTable table;
    for (size_t i = 0; i < 64; ++i) {
        const int value = rows[i / 8][i % 8];
        table.values[i] = static_cast<uint16_t>(value);
        table.isWide = table.isWide || value > 255;
    }
    return table;
}

// The IJG qualities with exactly these tables: one luminance and one chrominance table; the second alone may be missing
// where one table serves for all components, and may stand again as a third.
VecString FindStandard(JpegInfo const& info) {
    VecString standard;
    auto const& tables = info.QuantizationTables;
    if (tables.size() != 3 || tables[0].empty() || !info.QuantizationTable3.empty()) return standard;
    const bool needsChroma = info.ColorSpace == "YCbCr" || info.ColorSpace == "YCCK";
    if (tables[1].empty() && (needsChroma || !tables[2].empty())) return standard;
    if (!tables[2].empty() && tables[2] != tables[1]) return standard;
    const JpegQuantTable luma = ToTable(tables[0]);
    const JpegQuantTable chroma = tables[1].empty() ? JpegQuantTable() : ToTable(tables[1]);
    for (const int quality : FindIjgQualities(&luma, tables[1].empty() ? nullptr : &chroma)) {
        standard.push_back(wxString("IJG library, quality ") << quality);
    }
    return standard;
}

Entry EntryOf(PackedJpegSignature const& record) {
    const auto text = [](uint32_t offset) { return wxString::FromUTF8(Text(offset)); };
    return {wxString() << record.editorClass, text(record.make),        text(record.model), text(record.quality),
            text(record.softwareVendor),      text(record.softwareName)};
}

// A digest may have been typed in by hand.
wxString Normal(wxString const& text) {
    return wxString(text).Trim().Trim(false).Upper();
}

bool HasDigest(wxString const& field, wxString const& digest) {
    return !digest.empty() && Normal(field) == digest;
}

}  // namespace

bool JpegInfo::FindSimilarSignaturesInInternalDatabase(bool& softwareFound, bool& cameraFound, VecString& cameras,
                                                       VecString& software, VecString& standard) {
    Lists lists;
    standard = FindStandard(*this);
    if (IsValid) {
        const std::set<uint32_t> straight = FindCompiled(MakeProbe(*this, false));
        for (const uint32_t record : straight) lists.Add(EntryOf(kJpegSignatures[record]), false);
        for (const uint32_t record : FindCompiled(MakeProbe(*this, true))) {
            if (straight.count(record) == 0) lists.Add(EntryOf(kJpegSignatures[record]), true);
        }
    }
    return lists.Give(softwareFound, cameraFound, cameras, software, standard);
}

bool JpegInfo::FindSimilarSignaturesInUserDatabase(std::vector<JpegSignature> const& signatures, bool& softwareFound,
                                                   bool& cameraFound, VecString& cameras, VecString& software,
                                                   VecString& standard) {
    Lists lists;
    standard = FindStandard(*this);
    const std::string sampling = SignatureSubsampling.utf8_string();
    for (JpegSignature const& record : signatures) {
        if (!IsValid) break;
        const bool isStraight = HasDigest(record.signature, QtHash);
        const bool isTurned =
            !isStraight && (HasDigest(record.signatureRot, QtHash) || HasDigest(record.signature, QtHashRot));
        if (!isStraight && !isTurned) continue;
        const std::string wanted = wxString(record.subsampling).Trim().Trim(false).utf8_string();
        if (!AgreesInSampling(wanted, isTurned ? TurnedSampling(sampling) : sampling)) continue;
        lists.Add({Normal(record.editorClass), record.make, record.model, record.quality, record.softwareVendor,
                   record.softwareName},
                  isTurned);
    }
    return lists.Give(softwareFound, cameraFound, cameras, software, standard);
}
