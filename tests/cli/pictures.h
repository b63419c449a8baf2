// SPDX-License-Identifier: Apache-2.0
// Pictures for the tests of the commands on tables: kinds of JPEG that the plain encoder of tests/support does not
// make.
#pragma once
#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

#include "tests/support/jpegencoding.h"

namespace clitest {

struct JpegKind {
    int width = 64;
    int height = 48;
    int components = 3;  // 1 is grey, 4 is CMYK
    int quality = 90;
    bool wideTables = false;  // steps above 255, in 16-bit tables
    bool progressive = false;
    int restartRows = 0;  // MCU rows between restart markers
};

// `pixels` row by row, `components` bytes each; a soft pattern where it is empty.
inline std::string EncodeKind(JpegKind const& kind, std::vector<unsigned char> pixels = {}) {
    const auto width = static_cast<std::size_t>(kind.width);
    const auto components = static_cast<std::size_t>(kind.components);
    const std::size_t stride = width * components;
    if (pixels.empty()) {
        pixels.resize(stride * static_cast<std::size_t>(kind.height));
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            pixels[i] = static_cast<unsigned char>(i % stride / components * 2 + i / stride + 30 * (i % components));
        }
    }
    support::JpegScanlines picture;
    picture.width = kind.width;
    picture.height = kind.height;
    picture.components = kind.components;
    picture.space = kind.components == 1 ? JCS_GRAYSCALE : kind.components == 4 ? JCS_CMYK : JCS_RGB;
    picture.settings = [&kind](jpeg_compress_struct& info) {
        jpeg_set_quality(&info, kind.quality, kind.wideTables ? FALSE : TRUE);
        info.restart_in_rows = kind.restartRows;
        if (kind.progressive) jpeg_simple_progression(&info);
    };
    picture.fill = [&](std::vector<unsigned char>& row, unsigned y) {
        std::copy_n(pixels.begin() + static_cast<std::ptrdiff_t>(y * stride), stride, row.begin());
    };
    return support::EncodeScanlines(picture);
}

// What a messenger makes of a photograph: half as wide and high, encoded anew, without metadata.
inline std::string MessengerCopy(std::string const& photo, int quality) {
    jpeg_decompress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_decompress(&info);
    jpeg_mem_src(&info, reinterpret_cast<unsigned char const*>(photo.data()), static_cast<unsigned long>(photo.size()));
    jpeg_read_header(&info, TRUE);
    info.scale_num = 1;
    info.scale_denom = 2;
    info.out_color_space = JCS_RGB;
    jpeg_start_decompress(&info);
    JpegKind kind;
    kind.width = static_cast<int>(info.output_width);
    kind.height = static_cast<int>(info.output_height);
    kind.quality = quality;
    kind.progressive = true;
    std::vector<unsigned char> pixels(std::size_t{3} * info.output_width * info.output_height);
    while (info.output_scanline < info.output_height) {
        JSAMPROW line = pixels.data() + std::size_t{3} * info.output_scanline * info.output_width;
        jpeg_read_scanlines(&info, &line, 1);
    }
    jpeg_finish_decompress(&info);
    jpeg_destroy_decompress(&info);
    return EncodeKind(kind, pixels);
}

// A file without any compression: grey 128, and one pixel of each block at another level.
inline std::string DottedPpm(int dotX, int dotY, unsigned char level) {
    std::string ppm = "P6\n256 256\n255\n";
    for (int y = 0; y < 256; ++y) {
        for (int x = 0; x < 256; ++x) {
            const bool dot = x % 8 == dotX && y % 8 == dotY;
            ppm.append(3, static_cast<char>(dot ? level : 128));
        }
    }
    return ppm;
}

// The JPEG with `count` comments behind its SOI marker.
inline std::string WithComments(std::string const& jpeg, int count) {
    std::string segments;
    for (int i = 0; i < count; ++i) segments += std::string("\xFF\xFE\0\x03x", 5);
    return jpeg.substr(0, 2) + segments + jpeg.substr(2);
}

// Without its quantisation and Huffman tables, as in an abbreviated stream.
inline std::string WithoutTables(std::string const& jpeg) {
    std::string rest = jpeg.substr(0, 2);
    std::size_t at = 2;
    while (at + 4 <= jpeg.size()) {
        const auto code = static_cast<unsigned char>(jpeg[at + 1]);
        const std::size_t length = 2 + static_cast<std::size_t>(static_cast<unsigned char>(jpeg[at + 2])) * 256 +
                                   static_cast<unsigned char>(jpeg[at + 3]);
        if (code != 0xDB && code != 0xC4) rest += jpeg.substr(at, length);
        at += length;
        if (code == 0xDA) break;
    }
    return rest + jpeg.substr(at);
}

}  // namespace clitest
