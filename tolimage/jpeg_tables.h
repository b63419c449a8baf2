// SPDX-License-Identifier: Apache-2.0
// The contents of DQT, DHT, SOF and the two APP segments that name a colour space.
#pragma once
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "tolbase/bytereader.h"

// A quantisation table in the picture's own (row-major) order.
struct JpegQuantTable {
    std::array<uint16_t, 64> values{};
    bool isWide = false;  // stored with 16 bits a value
};
inline bool operator==(JpegQuantTable const& a, JpegQuantTable const& b) {
    return a.values == b.values;
}

struct JpegHuffmanTable {
    std::array<uint8_t, 16> counts{};
    std::vector<uint8_t> values;
};

struct JpegComponent {
    int id = 0;
    int horizontal = 0;
    int vertical = 0;
    int table = 0;
};

struct JpegFrame {
    int code = 0;  // the marker, 0 while there is none
    int precision = 0;
    int width = 0;
    int height = 0;
    std::vector<JpegComponent> components;
};

// What the segments in front of the image data say of the components' meaning.
struct JpegColourHints {
    bool hasJfif = false;
    bool hasAdobe = false;
    int adobeTransform = 0;
};

// Position in zigzag order to row-major index (T.81, figure A.6).
extern const std::array<uint8_t, 64> kJpegZigZag;

JpegQuantTable TransposeJpegTable(JpegQuantTable const& table);

// All tables of a DQT payload by their index. Throws ByteError where the payload is no table any more; what was read
// before it stays in `tables`.
void ParseJpegDqt(ByteView payload, std::array<std::vector<JpegQuantTable>, 4>& tables);
// The payload with each of its whole tables transposed; bytes that are no table stay as they are.
std::string TransposeJpegDqt(ByteView payload);

// A table definition of a DHT payload: class 0 DC or 1 AC, index 0 to 3.
struct JpegHuffmanDefinition {
    int tableClass = 0;
    int index = 0;
    JpegHuffmanTable table;
};
// Throws ByteError as ParseJpegDqt does.
void ParseJpegDht(ByteView payload, std::vector<JpegHuffmanDefinition>& definitions);
// True if it is the table of T.81 Annex K, tables K.3 to K.6: luminance for index 0, chrominance for index 1.
bool IsStandardJpegHuffman(JpegHuffmanDefinition const& definition);

// Throws ByteError if it is no frame header.
JpegFrame ParseJpegFrame(int code, ByteView payload);
// Takes what an APP0 or APP14 segment says.
void ReadJpegColourHint(int code, ByteView payload, JpegColourHints& hints);

std::string JpegColourSpace(JpegFrame const& frame, JpegColourHints const& hints);
std::string JpegProcessName(int code);
// "4:2:0", or the factors of all components, or empty for a grey frame.
std::string JpegSubsamplingNotation(JpegFrame const& frame);
// "2x1", "Gray", ...: the greatest over the least factor; "1x1/1x1/14x5" where that is no whole number.
std::string JpegSubsamplingFactors(JpegFrame const& frame);
