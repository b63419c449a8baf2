// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_heads.h"

#include <algorithm>
#include <cstdlib>

#include "tolbase/limits.h"
#include "tolimage/codec_wx.h"

namespace codec {
namespace {

struct BmpHead {
    int64_t width = 0;
    int64_t height = 0;
    int bits = 0;
    uint32_t compression = 0;
};

// `at` is where the information header begins; an icon has no file header in front of it.
BmpHead ReadBmpHead(ByteView file, uint64_t at) {
    BmpHead head;
    if (file.U32(at, false) == 12) {
        head.width = file.U16(at + 4, false);
        head.height = file.U16(at + 6, false);
        head.bits = file.U16(at + 10, false);
        return head;
    }
    head.width = static_cast<int32_t>(file.U32(at + 4, false));
    head.height = std::abs(int64_t{static_cast<int32_t>(file.U32(at + 8, false))});
    head.bits = file.U16(at + 14, false);
    head.compression = file.U32(at + 16, false);
    return head;
}

void FillBmp(ByteView file, ImageProbe& probe) {
    const BmpHead head = ReadBmpHead(file, 14);
    if (head.width <= 0 || head.height <= 0 || head.width > 0x7FFFFFFF || head.height > 0x7FFFFFFF) {
        throw DecodeError(ByteErrorKind::Corrupt, "BMP size");
    }
    // Unpacked rows have to be there in full; a packed picture is checked by its ratio.
    constexpr uint32_t kPlain = 0;
    if (head.compression == kPlain) {
        const uint64_t rowBits = static_cast<uint64_t>(head.width) * static_cast<uint64_t>(head.bits);
        if (rowBits / 8 > file.Size() || (rowBits / 8) * static_cast<uint64_t>(head.height) / 4 > file.Size()) {
            throw DecodeError(ByteErrorKind::Truncated, "BMP pixels");
        }
    }
    probe.width = static_cast<int>(head.width);
    probe.height = static_cast<int>(head.height);
    probe.channels = head.bits == 32 ? 4 : 3;
    probe.bitsPerPixel = head.bits;
}

void FillGif(ByteView file, ImageProbe& probe) {
    const GifHead head = ReadGifHead(file);
    probe.width = head.width;
    probe.height = head.height;
    probe.channels = 3;
    probe.bitsPerPixel = head.bits;
}

// The next number of a PNM head; comments run from '#' to the line's end.
int64_t PnmNumber(ByteView file, uint64_t& at) {
    for (;; ++at) {
        const unsigned char c = file.At(at);
        if (c == '#') {
            while (file.At(at) != '\n') ++at;
        } else if (c > ' ') {
            break;
        }
    }
    int64_t value = 0;
    bool any = false;
    for (; file.Has(at, 1) && file.At(at) >= '0' && file.At(at) <= '9' && value < (int64_t{1} << 32); ++at) {
        value = value * 10 + (file.At(at) - '0');
        any = true;
    }
    if (!any || value >= (int64_t{1} << 31)) throw DecodeError(ByteErrorKind::Corrupt, "PNM head");
    return value;
}

void FillPnm(ByteView file, ImageProbe& probe) {
    const int kind = file.At(1) - '0';
    uint64_t at = 2;
    probe.width = static_cast<int>(PnmNumber(file, at));
    probe.height = static_cast<int>(PnmNumber(file, at));
    const bool bitmap = kind == 1 || kind == 4;
    const int64_t top = bitmap ? 1 : PnmNumber(file, at);
    probe.channels = kind == 3 || kind == 6 ? 3 : 1;
    probe.bitsPerPixel = bitmap ? 1 : probe.channels * (top > 255 ? 16 : 8);
}

void FillIco(ByteView file, ImageProbe& probe) {
    const IcoEntry entry = LargestIcoEntry(file);
    probe.width = entry.width;
    probe.height = entry.height;
    probe.bitsPerPixel = entry.bits;
    probe.channels = entry.bits == 32 ? 4 : 3;
}

void FillTga(ByteView file, ImageProbe& probe) {
    probe.width = file.U16(12, false);
    probe.height = file.U16(14, false);
    probe.bitsPerPixel = file.At(16);
    const int type = file.At(2);
    probe.channels = type == 3 || type == 11 ? 1 : probe.bitsPerPixel == 32 ? 4 : 3;
}

// Past the sub-blocks of a GIF; each begins with its length.
uint64_t SkipSubBlocks(ByteView file, uint64_t at) {
    while (file.At(at) != 0) at += 1 + uint64_t{file.At(at)};
    return at + 1;
}

}  // namespace

GifHead ReadGifHead(ByteView file) {
    GifHead head;
    head.width = file.U16(6, false);
    head.height = file.U16(8, false);
    const unsigned packed = file.At(10);
    head.bits = static_cast<int>(packed & 7U) + 1;
    uint64_t at = 13 + ((packed & 0x80U) != 0 ? uint64_t{3} << head.bits : 0);
    try {
        while (file.At(at) != 0x3B) {
            if (file.At(at) == 0x21) {
                if (file.At(at + 1) == 0xF9 && file.At(at + 2) >= 1) {
                    file.At(at + 3);
                    head.transparencyFlags.push_back(at + 3);
                }
                at = SkipSubBlocks(file, at + 2);
            } else if (file.At(at) == 0x2C) {
                head.frameWidth = std::max<int>(head.frameWidth, file.U16(at + 5, false));
                head.frameHeight = std::max<int>(head.frameHeight, file.U16(at + 7, false));
                const unsigned local = file.At(at + 9);
                at = SkipSubBlocks(file, at + 11 + ((local & 0x80U) != 0 ? uint64_t{6} << (local & 7U) : 0));
            } else {
                break;
            }
        }
    } catch (ByteError const&) {
        if (head.frameWidth == 0) throw;
    }
    if (head.frameWidth == 0 || head.frameHeight == 0)
        throw DecodeError(ByteErrorKind::Corrupt, "a GIF without a frame");
    return head;
}

IcoEntry LargestIcoEntry(ByteView file) {
    IcoEntry best;
    const uint16_t count = file.U16(4, false);
    for (uint16_t i = 0; i < count; ++i) {
        IcoEntry entry;
        entry.directory = 6 + uint64_t{16} * i;
        if (!file.Has(entry.directory, 16)) break;
        entry.length = file.U32(entry.directory + 8, false);
        entry.offset = file.U32(entry.directory + 12, false);
        if (!file.Has(entry.offset, entry.length) || entry.length < 40) continue;
        if (file.Matches(entry.offset, "\x89PNG", 4)) {
            entry.width = static_cast<int>(std::min<uint32_t>(file.U32(entry.offset + 16, true), 0x7FFFFFFF));
            entry.height = static_cast<int>(std::min<uint32_t>(file.U32(entry.offset + 20, true), 0x7FFFFFFF));
            entry.bits = 32;
        } else {
            const BmpHead head = ReadBmpHead(file, entry.offset);
            if (head.width <= 0 || head.width > 65535 || head.height > 131070) continue;
            entry.width = static_cast<int>(head.width);
            entry.height = static_cast<int>(head.height / 2);  // the mask stands below the picture
            entry.bits = head.bits;
        }
        const int64_t pixels = int64_t{entry.width} * entry.height;
        const int64_t bestPixels = int64_t{best.width} * best.height;
        if (pixels > bestPixels || (pixels == bestPixels && entry.bits > best.bits)) best = entry;
    }
    if (best.width == 0) throw DecodeError(ByteErrorKind::Corrupt, "an icon file without a picture");
    return best;
}

bool IsBmp(ByteView file) {
    if (!file.Matches(0, "BM", 2) || !file.Has(0, 26)) return false;
    const uint32_t header = file.U32(14, false);
    return header == 12 || (header >= 40 && header <= 256);
}

bool IsIco(ByteView file) {
    if (!file.Has(0, 22) || file.U16(0, false) != 0) return false;
    const uint16_t kind = file.U16(2, false);
    const uint16_t count = file.U16(4, false);
    return (kind == 1 || kind == 2) && count >= 1 && count <= 256 && file.At(9) == 0 &&
           file.U32(18, false) >= 6 + uint64_t{16} * count;
}

bool IsTga(ByteView file) {
    if (!file.Has(0, 18)) return false;
    const int type = file.At(2);
    const int palette = file.At(1);
    const int bits = file.At(16);
    const bool typeKnown = (type >= 1 && type <= 3) || (type >= 9 && type <= 11);
    const bool bitsKnown = bits == 8 || bits == 15 || bits == 16 || bits == 24 || bits == 32;
    if (palette > 1 || !typeKnown || !bitsKnown || file.U16(12, false) == 0 || file.U16(14, false) == 0) return false;
    if ((type == 1 || type == 9) != (palette == 1)) return false;
    if (palette == 1) {
        const int entryBits = file.At(7);
        if (entryBits != 15 && entryBits != 16 && entryBits != 24 && entryBits != 32) return false;
    }
    return (file.At(17) & 0xC0U) == 0;
}

void ReadHead(Format format, ByteView file, ImageProbe& probe) {
    switch (format) {
        case Format::Bmp:
            return FillBmp(file, probe);
        case Format::Gif:
            return FillGif(file, probe);
        case Format::Pnm:
            return FillPnm(file, probe);
        case Format::Ico:
            return FillIco(file, probe);
        default:
            return FillTga(file, probe);
    }
}

uint64_t PixelsPerByte(Format format) {
    // Bilevel PNM and runs of 128 equal pixels in TGA; a GIF code stands for up to 4,096 pixels; BMP runs may be
    // skipped.
    switch (format) {
        case Format::Gif:
            return 4096;
        case Format::Bmp:
            return 65536;
        default:
            return 256;
    }
}

}  // namespace codec
