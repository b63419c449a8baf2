// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_bmp.h"

#include <algorithm>
#include <array>
#include <cstdlib>

#include "tolimage/codec_jpeg.h"
#include "tolimage/codec_png.h"

namespace codec {
namespace {

// Packed pictures may leave out most of their pixels.
constexpr uint64_t kPixelsPerByte = 65536;

enum Compression : uint32_t { Plain = 0, Rle8 = 1, Rle4 = 2, Fields = 3, Jpeg = 4, Png = 5, AlphaFields = 6 };

struct Dib {
    int64_t width = 0;
    int64_t height = 0;
    bool topDown = false;
    int bits = 0;
    uint32_t compression = Plain;
    ByteView palette;
    int entryBytes = 4;
    std::array<uint32_t, 3> masks{};  // red, green, blue
    uint64_t end = 0;                 // behind the palette
};

// The information header at `at`, its masks and its palette.
Dib ReadDib(ByteView file, uint64_t at) {
    Dib dib;
    const uint32_t size = file.U32(at, false);
    const bool core = size == 12;
    uint32_t used = 0;
    if (core) {
        dib.width = file.U16(at + 4, false);
        dib.height = file.U16(at + 6, false);
        dib.bits = file.U16(at + 10, false);
        dib.entryBytes = 3;
    } else {
        dib.width = static_cast<int32_t>(file.U32(at + 4, false));
        const int64_t height = static_cast<int32_t>(file.U32(at + 8, false));
        dib.topDown = height < 0;
        dib.height = std::abs(height);
        dib.bits = file.U16(at + 14, false);
        dib.compression = file.U32(at + 16, false);
        used = file.U32(at + 32, false);
    }
    dib.end = at + size;
    if (dib.bits == 16) dib.masks = {0x7C00, 0x03E0, 0x001F};
    if (dib.bits == 32) dib.masks = {0xFF0000, 0xFF00, 0xFF};
    if (dib.compression == Fields || dib.compression == AlphaFields) {
        for (uint64_t i = 0; i < 3; ++i) dib.masks[i] = file.U32(at + 40 + 4 * i, false);
        if (size == 40) dib.end += dib.compression == Fields ? 12 : 16;
    }
    if (dib.bits <= 8) {
        const uint64_t most = uint64_t{1} << dib.bits;
        const uint64_t count = used == 0 ? most : std::min<uint64_t>(used, most);
        dib.palette = file.Clamp(dib.end, count * static_cast<unsigned>(dib.entryBytes));
        dib.end += count * static_cast<unsigned>(dib.entryBytes);
    }
    return dib;
}

void CheckDib(Dib const& dib, ByteView file) {
    CheckSize(dib.width, dib.height, file.Size(), kPixelsPerByte);
    constexpr std::array<int, 7> depths = {1, 2, 4, 8, 16, 24, 32};
    if (std::find(depths.begin(), depths.end(), dib.bits) == depths.end()) {
        throw DecodeError(ByteErrorKind::Unsupported, "BMP with " + std::to_string(dib.bits) + " bits");
    }
}

void PutPalette(Dib const& dib, unsigned index, unsigned char* pixel) {
    const uint64_t at = uint64_t{index} * static_cast<unsigned>(dib.entryBytes);
    for (uint64_t c = 0; c < 3; ++c) pixel[c] = dib.palette.Has(at, 3) ? dib.palette.At(at + c) : 0;
}

// The bits under a mask, spread to 8.
unsigned char Field(uint32_t value, uint32_t mask) {
    if (mask == 0) return 0;
    uint64_t top = mask;
    uint64_t under = value & mask;
    while ((top & 1U) == 0) {
        top >>= 1U;
        under >>= 1U;
    }
    return static_cast<unsigned char>((under * 255 + top / 2) / top);
}

// One unpacked row.
void PutRow(Dib const& dib, ByteView row, unsigned char* pixel) {
    for (int64_t x = 0; x < dib.width; ++x, pixel += 3) {
        const auto at = static_cast<uint64_t>(x);
        switch (dib.bits) {
            case 24:
                for (uint64_t c = 0; c < 3; ++c) pixel[c] = row.At(3 * at + c);
                break;
            case 32:
            case 16: {
                const uint32_t value = dib.bits == 32 ? row.U32(4 * at, false) : row.U16(2 * at, false);
                for (size_t c = 0; c < 3; ++c) pixel[2 - c] = Field(value, dib.masks[c]);
                break;
            }
            default: {
                const auto perByte = static_cast<uint64_t>(8 / dib.bits);
                const unsigned shift =
                    static_cast<unsigned>(dib.bits) * static_cast<unsigned>(perByte - 1 - at % perByte);
                PutPalette(dib, row.At(at / perByte) >> shift & ((1U << dib.bits) - 1), pixel);
                break;
            }
        }
    }
}

unsigned char* RowOf(Image& image, bool topDown, int64_t y) {
    const int64_t row = topDown ? y : image.Height() - 1 - y;
    return image.Data() + static_cast<size_t>(image.Step()) * static_cast<size_t>(row);
}

void ReadPlain(Dib const& dib, ByteView data, Image& image) {
    const uint64_t rowBytes = (static_cast<uint64_t>(dib.width) * static_cast<unsigned>(dib.bits) + 31) / 32 * 4;
    for (int64_t y = 0; y < dib.height; ++y) {
        PutRow(dib, data.From(rowBytes * static_cast<uint64_t>(y)), RowOf(image, dib.topDown, y));
    }
}

// Runs of equal pixels, literal pixels and jumps. What lies outside the picture is left out.
void ReadRuns(Dib const& dib, ByteView data, Image& image) {
    int64_t x = 0;
    int64_t y = 0;
    const auto put = [&](unsigned index) {
        if (x < dib.width && y < dib.height) PutPalette(dib, index, RowOf(image, dib.topDown, y) + 3 * x);
        ++x;
    };
    const bool nibbles = dib.compression == Rle4;
    ByteReader reader(data, false);
    while (y < dib.height) {
        const unsigned count = reader.U8();
        const unsigned value = reader.U8();
        if (count > 0) {
            for (unsigned i = 0; i < count; ++i) put(!nibbles ? value : i % 2 == 0 ? value >> 4U : value & 15U);
        } else if (value == 0) {
            x = 0;
            ++y;
        } else if (value == 1) {
            return;
        } else if (value == 2) {
            x += reader.U8();
            y += reader.U8();
        } else {
            const unsigned bytes = nibbles ? (value + 1) / 2 : value;
            const ByteView literal = reader.Take(bytes);
            for (unsigned i = 0; i < value; ++i) {
                const unsigned byte = literal.At(nibbles ? i / 2 : i);
                put(!nibbles ? byte : i % 2 == 0 ? byte >> 4U : byte & 15U);
            }
            if (bytes % 2 == 1) reader.Skip(1);
        }
    }
}

Image DecodeDib(Dib const& dib, ByteView data) {
    if (dib.compression == Jpeg) return DecodeJpeg(data);
    if (dib.compression == Png) return DecodePng(data);
    if (data.IsEmpty()) throw DecodeError(ByteErrorKind::Truncated, "BMP pixels");
    const bool runs = (dib.compression == Rle8 && dib.bits == 8) || (dib.compression == Rle4 && dib.bits == 4);
    if (!runs && dib.compression != Plain && dib.compression != Fields && dib.compression != AlphaFields) {
        throw DecodeError(ByteErrorKind::Unsupported, "BMP compression " + std::to_string(dib.compression));
    }
    Image image = NewImage(static_cast<int>(dib.width), static_cast<int>(dib.height), IPL_DEPTH_8U, 3);
    try {
        runs ? ReadRuns(dib, data, image) : ReadPlain(dib, data, image);
    } catch (ByteError const& error) {
        Warn(std::string("BMP: ") + error.what());
    }
    return image;
}

// Unpacked rows have to be there for the greater part: a head alone is no picture.
void CheckPlainBytes(Dib const& dib, ByteView data) {
    if (dib.compression != Plain && dib.compression != Fields) return;
    const uint64_t rowBytes = static_cast<uint64_t>(dib.width) * static_cast<unsigned>(dib.bits) / 8;
    if (rowBytes / 64 * static_cast<uint64_t>(dib.height) > data.Size()) {
        throw ImplausibleSize(dib.width, dib.height, data.Size());
    }
}

struct IcoEntry {
    ByteView picture;
    int64_t width = 0;
    int64_t height = 0;
    int bits = 0;
    bool png = false;
};

IcoEntry ReadEntry(ByteView file, uint64_t directory) {
    IcoEntry entry;
    entry.picture = file.Sub(file.U32(directory + 12, false), file.U32(directory + 8, false), "an icon's picture");
    entry.png = entry.picture.Matches(0, "\x89PNG", 4);
    if (entry.png) {
        entry.width = entry.picture.U32(16, true);
        entry.height = entry.picture.U32(20, true);
        entry.bits = 32;
        return entry;
    }
    const Dib dib = ReadDib(entry.picture, 0);
    entry.width = dib.width;
    entry.height = dib.height / 2;  // the mask stands below the picture
    entry.bits = dib.bits;
    return entry;
}

IcoEntry LargestEntry(ByteView file) {
    IcoEntry best;
    const uint16_t count = file.U16(4, false);
    for (uint16_t i = 0; i < count; ++i) {
        try {
            const IcoEntry entry = ReadEntry(file, 6 + uint64_t{16} * i);
            const int64_t limit = 0x7FFFFFFF;
            if (entry.width <= 0 || entry.height <= 0 || entry.width > limit || entry.height > limit) continue;
            const int64_t pixels = entry.width * entry.height;
            const int64_t most = best.width * best.height;
            if (pixels > most || (pixels == most && entry.bits > best.bits)) best = entry;
        } catch (ByteError const&) {
            continue;
        }
    }
    if (best.width == 0) throw DecodeError(ByteErrorKind::Corrupt, "an icon file without a picture");
    return best;
}

void Append(std::string& bytes, uint32_t value, int count) {
    for (int i = 0; i < count; ++i) bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFFU));
}

}  // namespace

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

Image DecodeBmp(ByteView file) {
    const Dib dib = ReadDib(file, 14);
    CheckDib(dib, file);
    uint64_t start = file.U32(10, false);
    if (start < 14 || start > file.Size()) start = dib.end;
    const ByteView data = file.From(start);
    CheckPlainBytes(dib, data);
    return DecodeDib(dib, data);
}

Image DecodeIco(ByteView file) {
    const IcoEntry entry = LargestEntry(file);
    if (entry.png) return DecodePng(entry.picture);
    Dib dib = ReadDib(entry.picture, 0);
    dib.height /= 2;
    CheckDib(dib, file);
    const ByteView data = entry.picture.From(dib.end);
    CheckPlainBytes(dib, data);
    return DecodeDib(dib, data);
}

void ProbeBmp(ByteView file, ImageProbe& probe) {
    const Dib dib = ReadDib(file, 14);
    if (dib.width <= 0 || dib.height > 0x7FFFFFFF) return;
    probe.width = static_cast<int>(dib.width);
    probe.height = static_cast<int>(dib.height);
    probe.channels = dib.bits == 32 ? 4 : 3;
    probe.bitsPerPixel = dib.bits;
}

void ProbeIco(ByteView file, ImageProbe& probe) {
    const IcoEntry entry = LargestEntry(file);
    probe.width = static_cast<int>(entry.width);
    probe.height = static_cast<int>(entry.height);
    probe.bitsPerPixel = entry.bits;
    probe.channels = entry.bits == 32 ? 4 : 3;
}

bool EncodeBmp(cv::Mat const& picture, std::string& bytes) {
    const int channels = picture.channels();
    if (picture.depth() != CV_8U || (channels != 1 && channels != 3)) return false;
    const uint64_t rowBytes = (static_cast<uint64_t>(picture.cols) * static_cast<uint64_t>(channels) + 3) / 4 * 4;
    const uint64_t pixelBytes = rowBytes * static_cast<uint64_t>(picture.rows);
    const uint32_t paletteBytes = channels == 1 ? 1024 : 0;
    const uint32_t start = 54 + paletteBytes;
    if (pixelBytes + start > 0x7FFFFFFFU) return false;
    bytes = "BM";
    bytes.reserve(static_cast<size_t>(pixelBytes) + start);
    Append(bytes, static_cast<uint32_t>(pixelBytes) + start, 4);
    Append(bytes, 0, 4);
    Append(bytes, start, 4);
    Append(bytes, 40, 4);
    Append(bytes, static_cast<uint32_t>(picture.cols), 4);
    Append(bytes, static_cast<uint32_t>(picture.rows), 4);
    Append(bytes, 1, 2);
    Append(bytes, static_cast<uint32_t>(8 * channels), 2);
    Append(bytes, Plain, 4);
    Append(bytes, static_cast<uint32_t>(pixelBytes), 4);
    Append(bytes, 2835, 4);  // 72 dots to the inch
    Append(bytes, 2835, 4);
    Append(bytes, channels == 1 ? 256 : 0, 4);
    Append(bytes, 0, 4);
    for (uint32_t i = 0; i < paletteBytes / 4; ++i) Append(bytes, i << 16U | i << 8U | i, 4);
    const size_t used = static_cast<size_t>(picture.cols) * static_cast<size_t>(channels);
    for (int y = picture.rows - 1; y >= 0; --y) {
        bytes.append(reinterpret_cast<char const*>(picture.ptr(y)), used);
        bytes.append(static_cast<size_t>(rowBytes) - used, '\0');
    }
    return true;
}

}  // namespace codec
