// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeg_tables.h"

#include <algorithm>
#include <numeric>

#include "tolimage/jpeg_segments.h"

const std::array<uint8_t, 64> kJpegZigZag{0,  1,  8,  16, 9,  2,  3,  10, 17, 24, 32, 25, 18, 11, 4,  5,
                                          12, 19, 26, 33, 40, 48, 41, 34, 27, 20, 13, 6,  7,  14, 21, 28,
                                          35, 42, 49, 56, 57, 50, 43, 36, 29, 22, 15, 23, 30, 37, 44, 51,
                                          58, 59, 52, 45, 38, 31, 39, 46, 53, 60, 61, 54, 47, 55, 62, 63};

namespace {

// The values of T.81, tables K.3 and K.4: the DC classes are plain sequences.
constexpr size_t kDcValues = 12;

using Counts = std::array<uint8_t, 16>;
constexpr std::array<std::array<Counts, 2>, 2> kStandardCounts{{
    {{{0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0}, {0, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}}},
    {{{0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 125}, {0, 2, 1, 2, 4, 4, 3, 4, 7, 5, 4, 4, 0, 1, 2, 119}}},
}};

// T.81, table K.5.
constexpr std::array<uint8_t, 162> kAcLuma{
    0x01, 0x02, 0x03, 0x00, 0x04, 0x11, 0x05, 0x12, 0x21, 0x31, 0x41, 0x06, 0x13, 0x51, 0x61, 0x07, 0x22, 0x71,
    0x14, 0x32, 0x81, 0x91, 0xa1, 0x08, 0x23, 0x42, 0xb1, 0xc1, 0x15, 0x52, 0xd1, 0xf0, 0x24, 0x33, 0x62, 0x72,
    0x82, 0x09, 0x0a, 0x16, 0x17, 0x18, 0x19, 0x1a, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2a, 0x34, 0x35, 0x36, 0x37,
    0x38, 0x39, 0x3a, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4a, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58, 0x59,
    0x5a, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6a, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7a, 0x83,
    0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8a, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99, 0x9a, 0xa2, 0xa3,
    0xa4, 0xa5, 0xa6, 0xa7, 0xa8, 0xa9, 0xaa, 0xb2, 0xb3, 0xb4, 0xb5, 0xb6, 0xb7, 0xb8, 0xb9, 0xba, 0xc2, 0xc3,
    0xc4, 0xc5, 0xc6, 0xc7, 0xc8, 0xc9, 0xca, 0xd2, 0xd3, 0xd4, 0xd5, 0xd6, 0xd7, 0xd8, 0xd9, 0xda, 0xe1, 0xe2,
    0xe3, 0xe4, 0xe5, 0xe6, 0xe7, 0xe8, 0xe9, 0xea, 0xf1, 0xf2, 0xf3, 0xf4, 0xf5, 0xf6, 0xf7, 0xf8, 0xf9, 0xfa};

// T.81, table K.6.
constexpr std::array<uint8_t, 162> kAcChroma{
    0x00, 0x01, 0x02, 0x03, 0x11, 0x04, 0x05, 0x21, 0x31, 0x06, 0x12, 0x41, 0x51, 0x07, 0x61, 0x71, 0x13, 0x22,
    0x32, 0x81, 0x08, 0x14, 0x42, 0x91, 0xa1, 0xb1, 0xc1, 0x09, 0x23, 0x33, 0x52, 0xf0, 0x15, 0x62, 0x72, 0xd1,
    0x0a, 0x16, 0x24, 0x34, 0xe1, 0x25, 0xf1, 0x17, 0x18, 0x19, 0x1a, 0x26, 0x27, 0x28, 0x29, 0x2a, 0x35, 0x36,
    0x37, 0x38, 0x39, 0x3a, 0x43, 0x44, 0x45, 0x46, 0x47, 0x48, 0x49, 0x4a, 0x53, 0x54, 0x55, 0x56, 0x57, 0x58,
    0x59, 0x5a, 0x63, 0x64, 0x65, 0x66, 0x67, 0x68, 0x69, 0x6a, 0x73, 0x74, 0x75, 0x76, 0x77, 0x78, 0x79, 0x7a,
    0x82, 0x83, 0x84, 0x85, 0x86, 0x87, 0x88, 0x89, 0x8a, 0x92, 0x93, 0x94, 0x95, 0x96, 0x97, 0x98, 0x99, 0x9a,
    0xa2, 0xa3, 0xa4, 0xa5, 0xa6, 0xa7, 0xa8, 0xa9, 0xaa, 0xb2, 0xb3, 0xb4, 0xb5, 0xb6, 0xb7, 0xb8, 0xb9, 0xba,
    0xc2, 0xc3, 0xc4, 0xc5, 0xc6, 0xc7, 0xc8, 0xc9, 0xca, 0xd2, 0xd3, 0xd4, 0xd5, 0xd6, 0xd7, 0xd8, 0xd9, 0xda,
    0xe2, 0xe3, 0xe4, 0xe5, 0xe6, 0xe7, 0xe8, 0xe9, 0xea, 0xf2, 0xf3, 0xf4, 0xf5, 0xf6, 0xf7, 0xf8, 0xf9, 0xfa};

struct Sampling {
    int hMin = 0, hMax = 0, vMin = 0, vMax = 0;
};

Sampling Extremes(JpegFrame const& frame) {
    Sampling s;
    for (size_t i = 0; i < frame.components.size(); ++i) {
        JpegComponent const& c = frame.components[i];
        s.hMin = i == 0 ? c.horizontal : std::min(s.hMin, c.horizontal);
        s.hMax = std::max(s.hMax, c.horizontal);
        s.vMin = i == 0 ? c.vertical : std::min(s.vMin, c.vertical);
        s.vMax = std::max(s.vMax, c.vertical);
    }
    return s;
}

std::string AllFactors(JpegFrame const& frame, char separator) {
    std::string text;
    for (JpegComponent const& c : frame.components) {
        if (!text.empty()) text += separator;
        text += std::to_string(c.horizontal) + "x" + std::to_string(c.vertical);
    }
    return text;
}

}  // namespace

JpegQuantTable TransposeJpegTable(JpegQuantTable const& table) {
    JpegQuantTable turned = table;
    for (size_t row = 0; row < 8; ++row) {
        for (size_t column = 0; column < 8; ++column) turned.values[column * 8 + row] = table.values[row * 8 + column];
    }
    return turned;
}

void ParseJpegDqt(ByteView payload, std::array<std::vector<JpegQuantTable>, 4>& tables) {
    ByteReader reader(payload);
    while (!reader.AtEnd()) {
        const unsigned head = reader.U8();
        if (head >> 4U > 1 || (head & 15U) > 3)
            reader.Fail(ByteErrorKind::Corrupt, "a quantisation table of index 0 to 3");
        JpegQuantTable table;
        table.isWide = head >> 4U == 1;
        ByteReader values(reader.Take(table.isWide ? 128 : 64, "a whole quantisation table"));
        for (const uint8_t place : kJpegZigZag) table.values[place] = table.isWide ? values.U16() : values.U8();
        tables[head & 15U].push_back(table);
    }
}

std::string TransposeJpegDqt(ByteView payload) {
    std::string turned = payload.ToString();
    size_t at = 0;
    while (at < payload.Size()) {
        const unsigned head = payload.At(at++);
        const size_t width = head >> 4U == 1 ? 2 : 1;
        if (head >> 4U > 1 || !payload.Has(at, 64 * width)) break;
        for (size_t k = 0; k < 64; ++k) {
            const size_t place = kJpegZigZag[k];
            const size_t other = (place % 8) * 8 + place / 8;
            const auto from = static_cast<size_t>(
                std::find(kJpegZigZag.begin(), kJpegZigZag.end(), static_cast<uint8_t>(other)) - kJpegZigZag.begin());
            for (size_t i = 0; i < width; ++i)
                turned[at + k * width + i] = static_cast<char>(payload.At(at + from * width + i));
        }
        at += 64 * width;
    }
    return turned;
}

void ParseJpegDht(ByteView payload, std::vector<JpegHuffmanDefinition>& definitions) {
    ByteReader reader(payload);
    while (!reader.AtEnd()) {
        const unsigned head = reader.U8();
        if (head >> 4U > 1 || (head & 15U) > 3) reader.Fail(ByteErrorKind::Corrupt, "a Huffman table of index 0 to 3");
        JpegHuffmanDefinition definition;
        definition.tableClass = static_cast<int>(head >> 4U);
        definition.index = static_cast<int>(head & 15U);
        for (uint8_t& count : definition.table.counts) count = reader.U8("16 code counts");
        const int sum = std::accumulate(definition.table.counts.begin(), definition.table.counts.end(), 0);
        if (sum > 256) reader.Fail(ByteErrorKind::Corrupt, "at most 256 codes in a Huffman table");
        const ByteView values = reader.Take(static_cast<uint64_t>(sum), "a value for each code");
        definition.table.values.assign(values.Data(), values.Data() + values.Size());
        definitions.push_back(definition);
    }
}

bool IsStandardJpegHuffman(JpegHuffmanDefinition const& definition) {
    if (definition.index > 1) return false;
    const auto tableClass = static_cast<size_t>(definition.tableClass);
    const auto index = static_cast<size_t>(definition.index);
    if (definition.table.counts != kStandardCounts[tableClass][index]) return false;
    std::vector<uint8_t> const& values = definition.table.values;
    if (tableClass == 1) {
        auto const& standard = index == 0 ? kAcLuma : kAcChroma;
        return std::equal(values.begin(), values.end(), standard.begin(), standard.end());
    }
    if (values.size() != kDcValues) return false;
    for (size_t i = 0; i < kDcValues; ++i) {
        if (values[i] != i) return false;
    }
    return true;
}

JpegFrame ParseJpegFrame(int code, ByteView payload) {
    ByteReader reader(payload);
    JpegFrame frame;
    frame.code = code;
    frame.precision = reader.U8("a frame header");
    frame.height = reader.U16("a frame header");
    frame.width = reader.U16("a frame header");
    const unsigned count = reader.U8("a frame header");
    for (unsigned i = 0; i < count; ++i) {
        JpegComponent component;
        component.id = reader.U8("a component of the frame");
        const unsigned factors = reader.U8("a component of the frame");
        component.horizontal = static_cast<int>(factors >> 4U);
        component.vertical = static_cast<int>(factors & 15U);
        component.table = reader.U8("a component of the frame");
        frame.components.push_back(component);
    }
    return frame;
}

void ReadJpegColourHint(int code, ByteView payload, JpegColourHints& hints) {
    if (code == JpegApp0 && payload.Matches(0, "JFIF\0", 5)) hints.hasJfif = true;
    if (code == JpegApp14 && payload.Matches(0, "Adobe", 5) && payload.Size() >= 12) {
        hints.hasAdobe = true;
        hints.adobeTransform = payload.At(11);
    }
}

std::string JpegColourSpace(JpegFrame const& frame, JpegColourHints const& hints) {
    const size_t count = frame.components.size();
    if (count == 1) return "Grayscale";
    if (count == 3) {
        if (hints.hasJfif) return "YCbCr";
        if (hints.hasAdobe) return hints.adobeTransform == 0 ? "RGB" : "YCbCr";
        auto const& c = frame.components;
        return c[0].id == 'R' && c[1].id == 'G' && c[2].id == 'B' ? "RGB" : "YCbCr";
    }
    if (count == 4) return hints.hasAdobe && hints.adobeTransform == 2 ? "YCCK" : "CMYK";
    return "Unknown (" + std::to_string(count) + " components)";
}

std::string JpegProcessName(int code) {
    switch (code - JpegSof0) {
        case 0:
            return "Baseline DCT, Huffman coding";
        case 1:
            return "Extended sequential DCT, Huffman coding";
        case 2:
            return "Progressive DCT, Huffman coding";
        case 3:
            return "Lossless, Huffman coding";
        case 5:
            return "Sequential DCT, differential Huffman coding";
        case 6:
            return "Progressive DCT, differential Huffman coding";
        case 7:
            return "Lossless, differential Huffman coding";
        case 9:
            return "Extended sequential DCT, arithmetic coding";
        case 10:
            return "Progressive DCT, arithmetic coding";
        case 11:
            return "Lossless, arithmetic coding";
        case 13:
            return "Sequential DCT, differential arithmetic coding";
        case 14:
            return "Progressive DCT, differential arithmetic coding";
        case 15:
            return "Lossless, differential arithmetic coding";
        default:
            return "";
    }
}

std::string JpegSubsamplingNotation(JpegFrame const& frame) {
    if (frame.components.size() < 2) return "";
    const Sampling s = Extremes(frame);
    if (frame.components.size() != 3 || s.hMin == 0 || s.vMin == 0 || s.hMax % s.hMin != 0 || s.vMax % s.vMin != 0) {
        return AllFactors(frame, ',');
    }
    struct Name {
        int h, v;
        char const* text;
    };
    constexpr std::array<Name, 8> names{{{1, 1, "4:4:4"},
                                         {2, 1, "4:2:2"},
                                         {2, 2, "4:2:0"},
                                         {4, 1, "4:1:1"},
                                         {4, 2, "4:1:0"},
                                         {1, 2, "4:4:0"},
                                         {1, 4, "4:4:1"},
                                         {2, 4, "4:2:1"}}};
    const auto found = std::find_if(names.begin(), names.end(),
                                    [&](Name const& n) { return n.h == s.hMax / s.hMin && n.v == s.vMax / s.vMin; });
    return found == names.end() ? AllFactors(frame, ',') : found->text;
}

std::string JpegSubsamplingFactors(JpegFrame const& frame) {
    if (frame.components.empty()) return "";
    if (frame.components.size() == 1) return "Gray";
    // Records tell the sampling of three components; a picture of four is never taken for one of them.
    if (frame.components.size() != 3) return AllFactors(frame, '/');
    const Sampling s = Extremes(frame);
    // T.81 allows factors of 1 to 4.
    const bool isOdd = s.hMin == 0 || s.vMin == 0 || s.hMax > 4 || s.vMax > 4;
    if (isOdd || s.hMax % s.hMin != 0 || s.vMax % s.vMin != 0) return AllFactors(frame, '/');
    return std::to_string(s.hMax / s.hMin) + "x" + std::to_string(s.vMax / s.vMin);
}
