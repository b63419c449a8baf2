// SPDX-License-Identifier: Apache-2.0
// JPEG streams with chosen DCT coefficients.
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

// A grey JPEG of `across` by `down` blocks. `value(block, place)` is the stored coefficient at a place from 0 to 63 in
// the picture's own (row-major) order; blocks count row by row. All steps of its table are `step`.
inline std::string CoefficientJpeg(int across, int down, int step, std::function<int(int, int)> const& value) {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = static_cast<JDIMENSION>(across * 8);
    info.image_height = static_cast<JDIMENSION>(down * 8);
    info.input_components = 1;
    info.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&info);
    std::vector<unsigned> const table(64, static_cast<unsigned>(step));
    jpeg_add_quant_table(&info, 0, table.data(), 100, TRUE);
    auto* common = reinterpret_cast<j_common_ptr>(&info);
    jvirt_barray_ptr array = info.mem->request_virt_barray(common, JPOOL_IMAGE, TRUE, static_cast<JDIMENSION>(across),
                                                           static_cast<JDIMENSION>(down), 1);
    jpeg_write_coefficients(&info, &array);
    for (int y = 0; y < down; ++y) {
        JBLOCKARRAY const row = info.mem->access_virt_barray(common, array, static_cast<JDIMENSION>(y), 1, TRUE);
        for (int x = 0; x < across; ++x) {
            for (int k = 0; k < 64; ++k) row[0][x][k] = static_cast<JCOEF>(value(y * across + x, k));
        }
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string const result(reinterpret_cast<char const*>(bytes), size);
    std::free(bytes);
    return result;
}

}  // namespace support
