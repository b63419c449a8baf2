// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/jpegcodec.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
// jpeglib.h needs <cstddef> and <cstdio>.
#include <jpeglib.h>

namespace sample {
namespace {

[[noreturn]] void ThrowMessage(j_common_ptr info) {
    std::array<char, JMSG_LENGTH_MAX> text{};
    info->err->format_message(info, text.data());
    throw std::runtime_error(std::string("JPEG: ") + text.data());
}

// A compressor with its output in memory, freed whatever happens.
class Encoder {
public:
    Encoder(Picture const& source, bool isCamera) : m_picture(source) {
        m_info.err = jpeg_std_error(&m_errors);
        m_errors.error_exit = ThrowMessage;
        jpeg_create_compress(&m_info);
        jpeg_mem_dest(&m_info, &m_bytes, &m_size);
        m_info.image_width = static_cast<JDIMENSION>(source.width);
        m_info.image_height = static_cast<JDIMENSION>(source.height);
        m_info.input_components = 3;
        m_info.in_color_space = JCS_RGB;
        jpeg_set_defaults(&m_info);
        m_info.dct_method = JDCT_ISLOW;
        m_info.comp_info[0].h_samp_factor = 2;
        m_info.comp_info[0].v_samp_factor = isCamera ? 1 : 2;
        m_info.write_JFIF_header = isCamera ? FALSE : TRUE;
    }
    ~Encoder() {
        jpeg_destroy_compress(&m_info);
        std::free(m_bytes);
    }
    Encoder(Encoder const&) = delete;
    Encoder& operator=(Encoder const&) = delete;

    jpeg_compress_struct* Info() { return &m_info; }

    std::string Run() {
        jpeg_start_compress(&m_info, TRUE);
        while (m_info.next_scanline < m_info.image_height) {
            auto* row = const_cast<JSAMPLE*>(m_picture.At(0, static_cast<int>(m_info.next_scanline)));
            jpeg_write_scanlines(&m_info, &row, 1);
        }
        jpeg_finish_compress(&m_info);
        return std::string(reinterpret_cast<char const*>(m_bytes), m_size);
    }

private:
    Picture const& m_picture;
    jpeg_compress_struct m_info{};
    jpeg_error_mgr m_errors{};
    unsigned char* m_bytes = nullptr;
    unsigned long m_size = 0;
};

// The invented camera's tables: a constant part, one that grows with the frequency, one with its square.
std::array<unsigned, DCTSIZE2> MakeTable(double constant, double linear, double square) {
    std::array<unsigned, DCTSIZE2> table{};
    for (size_t i = 0; i < table.size(); ++i) {
        const auto u = static_cast<double>(i % DCTSIZE);
        const auto v = static_cast<double>(i / DCTSIZE);
        const double frequency = std::hypot(u, 1.08 * v);
        table.at(i) =
            static_cast<unsigned>(std::lround(constant + linear * frequency + square * frequency * frequency));
    }
    return table;
}

}  // namespace

std::string EncodeAsCamera(Picture const& picture) {
    Encoder encoder(picture, true);
    jpeg_add_quant_table(encoder.Info(), 0, MakeTable(1.4, 0.28, 0.04).data(), 100, TRUE);
    jpeg_add_quant_table(encoder.Info(), 1, MakeTable(1.8, 0.60, 0.05).data(), 100, TRUE);
    return encoder.Run();
}

std::string EncodeAsProgram(Picture const& picture, int quality) {
    Encoder encoder(picture, false);
    jpeg_set_quality(encoder.Info(), quality, TRUE);
    return encoder.Run();
}

Picture Decode(std::string const& jpeg) {
    jpeg_decompress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    errors.error_exit = ThrowMessage;
    jpeg_create_decompress(&info);
    const std::unique_ptr<jpeg_decompress_struct, decltype(&jpeg_destroy_decompress)> guard(&info,
                                                                                            jpeg_destroy_decompress);
    jpeg_mem_src(&info, reinterpret_cast<unsigned char const*>(jpeg.data()), static_cast<unsigned long>(jpeg.size()));
    jpeg_read_header(&info, TRUE);
    info.out_color_space = JCS_RGB;
    info.dct_method = JDCT_ISLOW;
    jpeg_start_decompress(&info);
    Picture picture(static_cast<int>(info.output_width), static_cast<int>(info.output_height));
    while (info.output_scanline < info.output_height) {
        JSAMPROW row = picture.At(0, static_cast<int>(info.output_scanline));
        jpeg_read_scanlines(&info, &row, 1);
    }
    jpeg_finish_decompress(&info);
    return picture;
}

}  // namespace sample
