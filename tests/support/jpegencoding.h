// SPDX-License-Identifier: Apache-2.0
// JPEG streams by the JPEG library, for tests that set what they need of it.
#pragma once
#include <cstddef>
#include <cstdio>
// jpeglib.h needs the two above.
#include <jpeglib.h>

#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

namespace support {

struct JpegScanlines {
    int width = 0;
    int height = 0;
    int components = 3;
    J_COLOR_SPACE space = JCS_RGB;
    std::function<void(jpeg_compress_struct&)> settings;  // behind the library's defaults; may be empty
    // Fills one row, `width` times `components` bytes that hold the row before.
    std::function<void(std::vector<unsigned char>& row, unsigned y)> fill;
};

inline std::string EncodeScanlines(JpegScanlines const& picture) {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = static_cast<JDIMENSION>(picture.width);
    info.image_height = static_cast<JDIMENSION>(picture.height);
    info.input_components = picture.components;
    info.in_color_space = picture.space;
    jpeg_set_defaults(&info);
    if (picture.settings) picture.settings(info);
    jpeg_start_compress(&info, TRUE);
    std::vector<unsigned char> row(static_cast<std::size_t>(picture.width) *
                                   static_cast<std::size_t>(picture.components));
    while (info.next_scanline < info.image_height) {
        picture.fill(row, info.next_scanline);
        JSAMPROW line = row.data();
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string const result(reinterpret_cast<char const*>(bytes), size);
    std::free(bytes);
    return result;
}

}  // namespace support
