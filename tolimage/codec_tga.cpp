// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_tga.h"

#include <array>

namespace codec {
namespace {

// A packet of two bytes stands for 128 pixels.
constexpr uint64_t kPixelsPerByte = 128;

struct Head {
    int kind = 0;  // 1 palette, 2 colour, 3 grey
    bool packed = false;
    int width = 0;
    int height = 0;
    int bits = 0;
    bool fromRight = false;
    bool fromTop = false;
    int paletteFirst = 0;
    int paletteBits = 0;
    ByteView palette;
    uint64_t data = 0;
};

uint64_t BytesFor(int bits) {
    return static_cast<uint64_t>((bits + 7) / 8);
}

Head ReadHead(ByteView file) {
    Head head;
    const int type = file.At(2);
    head.packed = type >= 9;
    head.kind = type & 7;
    head.width = file.U16(12, false);
    head.height = file.U16(14, false);
    head.bits = file.At(16);
    head.fromRight = (file.At(17) & 0x10U) != 0;
    head.fromTop = (file.At(17) & 0x20U) != 0;
    head.data = 18 + uint64_t{file.At(0)};
    if (file.At(1) == 1) {
        head.paletteFirst = file.U16(3, false);
        head.paletteBits = file.At(7);
        const uint64_t bytes = file.U16(5, false) * BytesFor(head.paletteBits);
        head.palette = file.Sub(head.data, bytes, "the palette");
        head.data += bytes;
    }
    return head;
}

// A pixel of the file as blue, green, red.
std::array<unsigned char, 3> Colour(ByteView bytes, uint64_t at, int bits) {
    if (bits >= 24) return {bytes.At(at), bytes.At(at + 1), bytes.At(at + 2)};
    if (bits == 8) return {bytes.At(at), bytes.At(at), bytes.At(at)};
    const unsigned value = bytes.U16(at, false);
    const auto spread = [](unsigned five) { return static_cast<unsigned char>((five & 31U) * 255 / 31); };
    return {spread(value), spread(value >> 5U), spread(value >> 10U)};
}

std::array<unsigned char, 3> Pixel(Head const& head, ByteView file, uint64_t at) {
    if (head.kind != 1) return Colour(file, at, head.bits);
    const int index = (head.bits > 8 ? file.U16(at, false) : file.At(at)) - head.paletteFirst;
    const uint64_t place = static_cast<uint64_t>(index < 0 ? 0xFFFFFF : index) * BytesFor(head.paletteBits);
    if (!head.palette.Has(place, BytesFor(head.paletteBits))) return {0, 0, 0};
    return Colour(head.palette, place, head.paletteBits);
}

void Put(Head const& head, Image& image, uint64_t number, std::array<unsigned char, 3> const& colour) {
    const auto width = static_cast<uint64_t>(head.width);
    auto x = static_cast<size_t>(number % width);
    auto y = static_cast<size_t>(number / width);
    if (head.fromRight) x = static_cast<size_t>(head.width) - 1 - x;
    if (!head.fromTop) y = static_cast<size_t>(head.height) - 1 - y;
    unsigned char* pixel =
        image.Data() + static_cast<size_t>(image.Step()) * y + x * static_cast<size_t>(image.Channels());
    for (int c = 0; c < image.Channels(); ++c) pixel[c] = colour[static_cast<size_t>(c)];
}

void Fill(Head const& head, ByteView file, Image& image) {
    const uint64_t count = static_cast<uint64_t>(head.width) * static_cast<uint64_t>(head.height);
    const uint64_t step = BytesFor(head.bits);
    uint64_t at = head.data;
    for (uint64_t i = 0; i < count;) {
        const unsigned packet = head.packed ? file.At(at++) : 0;
        const uint64_t length = (packet & 0x7FU) + 1;
        const bool run = (packet & 0x80U) != 0;
        for (uint64_t k = 0; k < length && i < count; ++k, ++i) {
            Put(head, image, i, Pixel(head, file, at));
            if (!run) at += step;
        }
        if (run) at += step;
    }
}

}  // namespace

bool IsTga(ByteView file) {
    if (!file.Has(0, 18)) return false;
    const int type = file.At(2);
    const int palette = file.At(1);
    const int bits = file.At(16);
    const bool colour = bits == 15 || bits == 16 || bits == 24 || bits == 32;
    if (palette > 1 || file.U16(12, false) == 0 || file.U16(14, false) == 0 || (file.At(17) & 0xC0U) != 0) return false;
    switch (type) {
        case 1:
        case 9: {
            const int entry = file.At(7);
            return palette == 1 && (bits == 8 || bits == 16) &&
                   (entry == 15 || entry == 16 || entry == 24 || entry == 32);
        }
        case 2:
        case 10:
            return colour;
        case 3:
        case 11:
            return bits == 8;
        default:
            return false;
    }
}

Image DecodeTga(ByteView file) {
    const Head head = ReadHead(file);
    CheckSize(head.width, head.height, file.Size(), kPixelsPerByte);
    if (!file.Has(head.data, 1)) throw ByteError(ByteErrorKind::Truncated, file.Size(), "TGA pixels");
    Image image = NewImage(head.width, head.height, IPL_DEPTH_8U, head.kind == 3 ? 1 : 3);
    try {
        Fill(head, file, image);
    } catch (ByteError const& error) {
        Warn(std::string("TGA: ") + error.what());
    }
    return image;
}

void ProbeTga(ByteView file, ImageProbe& probe) {
    const Head head = ReadHead(file);
    probe.width = head.width;
    probe.height = head.height;
    probe.bitsPerPixel = head.bits;
    probe.channels = head.kind == 3 ? 1 : head.kind == 2 && head.bits == 32 ? 4 : 3;
}

}  // namespace codec
