// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeginfo.h"

#include "tolbase/bytereader.h"
#include "tolbase/hash.h"
#include "tolbase/limits.h"
#include "tolimage/jpeg_embedded.h"
#include "tolimage/jpeg_file.h"
#include "tolimage/jpeg_quality.h"
#include "tolimage/jpeg_segments.h"
#include "tolimage/jpeg_tables.h"

namespace {

constexpr size_t kSets = 3;

std::vector<std::vector<int>> ToRows(JpegQuantTable const& table) {
    std::vector<std::vector<int>> rows(8);
    for (size_t i = 0; i < 64; ++i) rows[i / 8].push_back(table.values[i]);
    return rows;
}

bool IsLossless(int code) {
    return code == 0xC3 || code == 0xC7 || code == 0xCB || code == 0xCF;
}
bool IsProgressiveFrame(int code) {
    return code == 0xC2 || code == 0xC6 || code == 0xCA || code == 0xCE;
}

// The digest over the payloads of the DQT segments, each under the index of its first table, joined by a zero byte.
wxString Digest(std::array<std::string, 4> const& payloads) {
    std::string joined;
    for (std::string const& payload : payloads) {
        if (payload.empty()) continue;
        if (!joined.empty()) joined.push_back('\0');
        joined += payload;
    }
    if (joined.empty()) return {};
    return TcvCalcHashFromMemory(joined.data(), joined.size(), MD5).Upper();
}

// Collects one picture's record while its segments pass by.
class Collector {
public:
    explicit Collector(JpegInfo& info) : m_info(info) {}

    void Take(JpegSegment const& segment);
    void Finish(bool allEstimates);
    void Problem(std::string const& text) { m_info.Problems.push_back(wxString::FromUTF8(text)); }

private:
    void TakeDqt(JpegSegment const& segment);
    void TakeDht(JpegSegment const& segment);
    void TakeFrame(JpegSegment const& segment);
    void TakeDnl(JpegSegment const& segment);
    void TakeRestartInterval(JpegSegment const& segment);
    void Estimate(bool allEstimates);
    JpegQuantTable const* Table(size_t index) const { return m_hasTable[index] ? &m_tables[index] : nullptr; }

    JpegInfo& m_info;
    JpegFrame m_frame;
    JpegColourHints m_hints;
    bool m_hasScan = false;
    std::array<std::string, 4> m_payloads;
    std::array<std::string, 4> m_turnedPayloads;
    std::array<JpegQuantTable, 4> m_tables{};
    std::array<bool, 4> m_hasTable{};
    bool m_hasTableInFront = false;  // of the first scan
    std::array<std::array<JpegHuffmanTable, 2>, kSets> m_huffman{};
    std::array<std::array<bool, 2>, kSets> m_hasHuffman{};
    std::array<bool, kSets> m_isOddHuffman{};
};

void Collector::Take(JpegSegment const& segment) {
    if (segment.skipped != 0) {
        Problem(std::to_string(segment.skipped) + " foreign bytes before offset " + std::to_string(segment.offset));
    }
    if (!segment.isComplete) return;
    try {
        if (segment.code == JpegDqt) TakeDqt(segment);
        if (segment.code == JpegDht) TakeDht(segment);
        if (segment.code == JpegDnl) TakeDnl(segment);
        if (segment.code == JpegDri) TakeRestartInterval(segment);
        if (IsJpegFrame(segment.code) || segment.code == JpegDhp) TakeFrame(segment);
        if (segment.code == JpegApp0 || segment.code == JpegApp14)
            ReadJpegColourHint(segment.code, segment.payload, m_hints);
    } catch (ByteError const& error) {
        Problem(error.what());
    }
    if (segment.code == JpegSos) {
        m_hasScan = true;
        ++m_info.ScanCount;
    }
}

void Collector::TakeDqt(JpegSegment const& segment) {
    if (!m_hasScan && !segment.payload.IsEmpty() && (segment.payload.At(0) & 15U) < 4) {
        const unsigned index = segment.payload.At(0) & 15U;
        m_payloads[index] = segment.payload.ToString();
        m_turnedPayloads[index] = TransposeJpegDqt(segment.payload);
    }
    std::array<std::vector<JpegQuantTable>, 4> tables;
    const auto keep = [&] {
        for (size_t i = 0; i < tables.size(); ++i) {
            // A table that a later scan brings anew is not the one that the picture began with.
            if (tables[i].empty() || (m_hasScan && m_hasTable[i])) continue;
            m_tables[i] = tables[i].back();
            m_hasTable[i] = true;
            if (!m_hasScan) m_hasTableInFront = true;
        }
    };
    try {
        ParseJpegDqt(segment.payload, tables);
    } catch (ByteError const&) {
        keep();
        throw;
    }
    keep();
}

void Collector::TakeDht(JpegSegment const& segment) {
    std::vector<JpegHuffmanDefinition> definitions;
    const auto keep = [&] {
        for (JpegHuffmanDefinition const& definition : definitions) {
            const auto index = static_cast<size_t>(definition.index);
            if (index >= kSets) {
                m_isOddHuffman[kSets - 1] = true;
                continue;
            }
            if (!IsStandardJpegHuffman(definition)) m_isOddHuffman[index] = true;
            const auto tableClass = static_cast<size_t>(definition.tableClass);
            if (m_hasScan && m_hasHuffman[index][tableClass]) continue;
            m_huffman[index][tableClass] = definition.table;
            m_hasHuffman[index][tableClass] = true;
        }
    };
    try {
        ParseJpegDht(segment.payload, definitions);
    } catch (ByteError const&) {
        keep();
        throw;
    }
    keep();
}

void Collector::TakeFrame(JpegSegment const& segment) {
    if (m_frame.code != 0) {
        if (segment.code != m_frame.code && m_frame.code != JpegDhp) Problem("more than one frame");
        // The first frame under a hierarchical header tells the process.
        if (m_frame.code == JpegDhp) m_frame.code = segment.code;
        return;
    }
    m_frame = ParseJpegFrame(segment.code, segment.payload);
    for (JpegComponent const& component : m_frame.components) {
        const bool isBad =
            component.horizontal < 1 || component.horizontal > 4 || component.vertical < 1 || component.vertical > 4;
        if (isBad) Problem("a sampling factor outside 1 to 4");
    }
}

void Collector::TakeDnl(JpegSegment const& segment) {
    if (m_frame.code != 0 && m_frame.height == 0) m_frame.height = segment.payload.U16(0, true);
}

void Collector::TakeRestartInterval(JpegSegment const& segment) {
    if (!m_hasScan) m_info.RestartInterval = segment.payload.U16(0, true);
}

void Collector::Estimate(bool allEstimates) {
    JpegQuantTable const* luma = Table(0);
    JpegQuantTable const* chroma = Table(1);
    if (luma == nullptr && chroma == nullptr) {
        // A table under a higher index is used by some component all the same.
        luma = m_hasTable[2] ? Table(2) : Table(3);
    }
    const JpegQualityEstimate best = EstimateJpegQuality(luma, chroma);
    m_info.QualityEstimates.push_back(best.quality == 0 ? 100 : best.quality);
    m_info.IsStandardQuality = best.isExact;
    if (!allEstimates || luma == nullptr) return;
    m_info.QualityEstimates.push_back(EstimateJpegQuality(luma, nullptr).quality);
    if (chroma != nullptr) m_info.QualityEstimates.push_back(EstimateJpegQuality(nullptr, chroma).quality);
}

void Collector::Finish(bool allEstimates) {
    m_info.IsValid = m_hasTableInFront || IsLossless(m_frame.code);
    if (m_frame.code != 0) {
        m_info.Width = m_frame.width;
        m_info.Height = m_frame.height;
        m_info.Precision = m_frame.precision;
        m_info.ComponentCount = static_cast<int>(m_frame.components.size());
        m_info.IsProgressive = IsProgressiveFrame(m_frame.code);
        m_info.Process = wxString::FromUTF8(JpegProcessName(m_frame.code));
        m_info.ColorSpace = wxString::FromUTF8(JpegColourSpace(m_frame, m_hints));
        m_info.ChromaSubsampling = wxString::FromUTF8(JpegSubsamplingNotation(m_frame));
        m_info.SignatureSubsampling = wxString::FromUTF8(JpegSubsamplingFactors(m_frame));
    }
    if (!m_info.IsValid) return;
    m_info.QtHash = Digest(m_payloads);
    m_info.QtHashRot = Digest(m_turnedPayloads);
    m_info.QuantizationTables.resize(kSets);
    m_info.HuffmanTables.resize(kSets);
    for (size_t i = 0; i < kSets; ++i) {
        if (m_hasTable[i]) m_info.QuantizationTables[i] = ToRows(m_tables[i]);
        m_info.HtIsStandard[i] = !m_isOddHuffman[i];
        if (!m_hasHuffman[i][0] && !m_hasHuffman[i][1]) continue;
        for (JpegHuffmanTable const& table : m_huffman[i]) {
            m_info.HuffmanTables[i].emplace_back(table.counts.begin(), table.counts.end());
        }
    }
    if (m_hasTable[kSets]) m_info.QuantizationTable3 = ToRows(m_tables[kSets]);
    Estimate(allEstimates);
}

}  // namespace

JpegInfo::JpegInfo() = default;
JpegInfo::JpegInfo(JpegInfo const&) = default;
JpegInfo& JpegInfo::operator=(JpegInfo const&) = default;
JpegInfo::~JpegInfo() = default;

void tcvJpegReadTablesFromMemory(void const* data, size_t size, JpegInfo& info, int depth, bool allEstimates,
                                 bool countEmbedded) {
    info = JpegInfo();
    const ByteView file(data, size);
    JpegWalker walker(file);
    JpegSegment segment;
    if (!walker.Next(segment)) return;
    Collector collector(info);
    uint64_t segments = 0;
    bool isWhole = true;
    while (isWhole && walker.Next(segment)) {
        if (!IsJpegStandalone(segment.code)) CheckTolLimit(TolLimit::Segments, ++segments);
        collector.Take(segment);
        isWhole = depth > 1 || segment.code != JpegSos;
    }
    info.HasEndOfImage = walker.HasSeenEoi();
    if (!walker.GetProblem().empty()) {
        collector.Problem(walker.GetProblem() + ", offset " + std::to_string(walker.Position()));
    }
    collector.Finish(allEstimates);
    if (depth <= 1) info.ScanCount = 0;
    if (depth <= 1 || !countEmbedded) return;
    if (info.HasEndOfImage) info.TrailerBytes = static_cast<int64_t>(size - walker.Position());
    info.EmbeddedImageCount = static_cast<int>(FindEmbeddedJpegs(file).size());
}

void tcvJpegReadQuantizationAndHuffmanTables(wxString const& path, JpegInfo& info, int depth, bool allEstimates,
                                             bool countEmbedded) {
    info = JpegInfo();
    std::string bytes;
    if (!ReadJpegFile(path, true, bytes)) return;
    tcvJpegReadTablesFromMemory(bytes.data(), bytes.size(), info, depth, allEstimates, countEmbedded);
}

int tcvZigZagIndex(int position) {
    if (position < 0 || position > 63) return 0;
    return kJpegZigZag[static_cast<size_t>(position)];
}
