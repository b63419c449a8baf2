// SPDX-License-Identifier: Apache-2.0
// Small photographs made by code: JPEG streams, and EXIF data for them with a camera and a thumbnail.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/jpegencoding.h"

namespace support {

// A JPEG stream with smooth colours that depend on `seed`, three components, 4:2:0.
inline std::string EncodeJpeg(int width, int height, int quality = 90, unsigned seed = 1) {
    JpegScanlines picture;
    picture.width = width;
    picture.height = height;
    picture.settings = [quality](jpeg_compress_struct& info) { jpeg_set_quality(&info, quality, TRUE); };
    picture.fill = [seed](std::vector<unsigned char>& row, unsigned y) {
        for (unsigned x = 0; x < row.size() / 3; ++x) {
            row[3 * x] = static_cast<unsigned char>(x * 3 + seed * 40);
            row[3 * x + 1] = static_cast<unsigned char>(y * 2 + seed * 7);
            row[3 * x + 2] = static_cast<unsigned char>((x + y) / 2);
        }
    };
    return EncodeScanlines(picture);
}

// Builds a little-endian EXIF block piece by piece.
class ExifBytes {
public:
    void Short(unsigned value) {
        for (int i = 0; i < 2; ++i) m_bytes += static_cast<char>(value >> (8 * i));
    }
    void Long(std::size_t value) {
        for (int i = 0; i < 4; ++i) m_bytes += static_cast<char>(value >> (8 * i));
    }
    void Entry(unsigned tag, unsigned type, std::size_t count, std::size_t value) {
        Short(tag);
        Short(type);
        Long(count);
        Long(value);
    }
    void Raw(std::string const& bytes) { m_bytes += bytes; }
    std::string const& Bytes() const { return m_bytes; }

private:
    std::string m_bytes;
};

// A TIFF structure with make and model, and the thumbnail if it isn't empty. Texts are longer than three bytes, so that
// each stands at an offset.
inline std::string ExifBlock(std::string const& make, std::string const& model, std::string const& thumbnail) {
    std::size_t const ifd0 = 8, ifd0Size = 2 + 2 * 12 + 4, ifd1Size = 2 + 3 * 12 + 4;
    std::size_t const texts = ifd0 + ifd0Size + ifd1Size;
    std::string const first = make + std::string(1, '\0'), second = model + std::string(1, '\0');
    ExifBytes tiff;
    tiff.Raw(std::string("II*\0", 4));
    tiff.Long(ifd0);
    tiff.Short(2);
    tiff.Entry(0x010f, 2, first.size(), texts);
    tiff.Entry(0x0110, 2, second.size(), texts + first.size());
    tiff.Long(thumbnail.empty() ? 0 : ifd0 + ifd0Size);
    tiff.Short(3);
    tiff.Entry(0x0103, 3, 1, 6);
    tiff.Entry(0x0201, 4, 1, texts + first.size() + second.size());
    tiff.Entry(0x0202, 4, 1, thumbnail.size());
    tiff.Long(0);
    tiff.Raw(first + second + thumbnail);
    return tiff.Bytes();
}

// The JPEG stream with an EXIF segment behind its SOI marker.
inline std::string WithExif(std::string const& jpeg, std::string const& make, std::string const& model,
                            std::string const& thumbnail = std::string()) {
    std::string const payload = std::string("Exif\0\0", 6) + ExifBlock(make, model, thumbnail);
    std::size_t const length = payload.size() + 2;
    std::string const head = {'\xFF', '\xE1', static_cast<char>(length >> 8), static_cast<char>(length & 0xff)};
    return jpeg.substr(0, 2) + head + payload + jpeg.substr(2);
}

// Four bytes, the highest first.
inline std::string BigEndian(std::uint32_t value) {
    std::string bytes;
    for (int shift = 24; shift >= 0; shift -= 8) bytes += static_cast<char>(value >> shift);
    return bytes;
}

// A PNG chunk with its length and its check sum.
inline std::string PngChunk(std::string const& typeAndData) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (char const c : typeAndData) {
        crc ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320u : 0u);
    }
    return BigEndian(static_cast<std::uint32_t>(typeAndData.size() - 4)) + typeAndData + BigEndian(~crc);
}

// The PNG stream with an EXIF chunk behind its header, whose length is fixed.
inline std::string WithPngExif(std::string const& png, std::string const& exifBlock) {
    std::size_t const headerEnd = 8 + 25;
    return png.substr(0, headerEnd) + PngChunk("eXIf" + exifBlock) + png.substr(headerEnd);
}

}  // namespace support
