// SPDX-License-Identifier: Apache-2.0
// Photographs for the tests of the image information table: JPEG streams with chosen sampling and Huffman tables, with
// EXIF and ICC data, and a PNG with EXIF data.
#pragma once
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/jpegencoding.h"
#include "tests/support/photo.h"
#include "tools/sample/exifwriter.h"

namespace support {

struct JpegForm {
    int width = 800;
    int height = 600;
    bool subsampled = true;        // 4:2:0, else 4:4:4
    bool optimisedTables = false;  // Huffman tables made for the picture
};

inline std::string EncodeForm(JpegForm const& form) {
    JpegScanlines picture;
    picture.width = form.width;
    picture.height = form.height;
    picture.settings = [&form](jpeg_compress_struct& info) {
        jpeg_set_quality(&info, 90, TRUE);
        info.optimize_coding = form.optimisedTables ? TRUE : FALSE;
        if (!form.subsampled) info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = 1;
    };
    picture.fill = [](std::vector<unsigned char>& row, unsigned y) {
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = static_cast<unsigned char>(i / 9 + y / 2);
    };
    return EncodeScanlines(picture);
}

// EXIF data of a camera; empty texts are left out.
struct CameraFacts {
    std::string make = "Haldenmann";
    std::string model = "Lumora 60";
    std::string software;
    std::string modifyDate;
    std::string originalDate;
    std::string createDate;
    std::string thumbnail;
};

inline std::string MakeExif(CameraFacts const& facts) {
    using sample::ExifDirectory;
    sample::ExifWriter exif;
    const auto add = [&exif](ExifDirectory directory, uint16_t tag, std::string const& text) {
        if (!text.empty()) exif.Ascii(directory, tag, text);
    };
    add(ExifDirectory::Main, 0x010F, facts.make);
    add(ExifDirectory::Main, 0x0110, facts.model);
    add(ExifDirectory::Main, 0x0131, facts.software);
    add(ExifDirectory::Main, 0x0132, facts.modifyDate);
    add(ExifDirectory::Exif, 0x9003, facts.originalDate);
    add(ExifDirectory::Exif, 0x9004, facts.createDate);
    exif.SetThumbnail(facts.thumbnail);
    return exif.MakePayload();
}

inline std::string MakePhoto(JpegForm const& form, CameraFacts const& facts) {
    return sample::InsertExif(EncodeForm(form), MakeExif(facts));
}

inline std::string BigEndian32(std::size_t value) {
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
            static_cast<char>(value)};
}

// The JPEG with an ICC profile that has a header and one tag.
inline std::string WithIccProfile(std::string const& jpeg) {
    std::string profile = BigEndian32(160) + "none" + std::string("\x02\x10\0\0", 4) + "mntrRGB XYZ ";
    profile.resize(36, '\0');
    profile += "acsp";
    profile.resize(128, '\0');
    profile += BigEndian32(1) + "cprt" + BigEndian32(144) + BigEndian32(16) + std::string("text\0\0\0\0nobody\0\0", 16);
    const std::string payload = std::string("ICC_PROFILE\0\x01\x01", 14) + profile;
    const std::size_t length = payload.size() + 2;
    return jpeg.substr(0, 2) + "\xFF\xE2" + static_cast<char>(length >> 8) + static_cast<char>(length & 0xFF) +
           payload + jpeg.substr(2);
}

// A PNG with an eXIf chunk behind its header, which takes the first 33 bytes.
inline std::string WithExifChunk(std::string const& png, std::string const& exifPayload) {
    const std::string chunk = "eXIf" + exifPayload.substr(6);
    uint32_t crc = 0xFFFFFFFFU;
    for (const char byte : chunk) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) crc = (crc & 1U) != 0 ? (crc >> 1U) ^ 0xEDB88320U : crc >> 1U;
    }
    return png.substr(0, 33) + BigEndian32(chunk.size() - 4) + chunk + BigEndian32(crc ^ 0xFFFFFFFFU) + png.substr(33);
}

}  // namespace support
