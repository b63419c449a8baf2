// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegrecompress.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>

#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>

#include "tolbase/exception.h"
#include "tolbase/progress.h"
#include "tolimage/parallel.h"

namespace {

constexpr int kLargestSide = 65500;
constexpr int kLargestStep = 32767;
// A multiple of 8: the tiles stay on the picture's grid of blocks.
constexpr int kTileHeight = 128;
constexpr int kTileWidth = 16384;
constexpr JDIMENSION kRowsAtOnce = 16;
constexpr size_t kFirstCapacity = size_t{1} << 16U;

// libjpeg reports an error by a call that must not return.
struct ErrorTrap {
    jpeg_error_mgr manager{};
    std::jmp_buf back{};
    char remark[JMSG_LENGTH_MAX]{};
};

// Grows with the file that is written. Freed by its owner however the writing ends.
struct Target {
    jpeg_destination_mgr manager{};
    unsigned char* bytes = nullptr;
    size_t capacity = 0;
    size_t size = 0;
};

void OnError(j_common_ptr info) {
    auto* trap = reinterpret_cast<ErrorTrap*>(info->err);
    info->err->format_message(info, trap->remark);
    std::longjmp(trap->back, 1);
}
void OnMessage(j_common_ptr /*info*/, int /*level*/) {}
void OnOutput(j_common_ptr /*info*/) {}

void GrowTarget(j_compress_ptr encoder, size_t capacity) {
    auto* target = reinterpret_cast<Target*>(encoder->dest);
    void* bytes = std::realloc(target->bytes, capacity);
    if (bytes == nullptr) ERREXIT1(encoder, JERR_OUT_OF_MEMORY, 0);
    target->bytes = static_cast<unsigned char*>(bytes);
    target->manager.next_output_byte = target->bytes + target->capacity;
    target->manager.free_in_buffer = capacity - target->capacity;
    target->capacity = capacity;
}
void OnTargetStart(j_compress_ptr encoder) {
    GrowTarget(encoder, kFirstCapacity);
}
boolean OnTargetFull(j_compress_ptr encoder) {
    GrowTarget(encoder, 2 * reinterpret_cast<Target*>(encoder->dest)->capacity);
    return TRUE;
}
void OnTargetEnd(j_compress_ptr encoder) {
    auto* target = reinterpret_cast<Target*>(encoder->dest);
    target->size = target->capacity - target->manager.free_in_buffer;
}

[[noreturn]] void Fail(int line, wxString const& message) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorMessage, message);
}

void Prepare(ErrorTrap& trap) {
    jpeg_std_error(&trap.manager);
    trap.manager.error_exit = OnError;
    trap.manager.emit_message = OnMessage;
    trap.manager.output_message = OnOutput;
}

// libjpeg's form of the settings, made before any jump can happen.
struct Settings {
    explicit Settings(JpegEncoding const& encoding)
        : quality(std::clamp(encoding.quality, 1, 100)),
          horizontal(encoding.sampling == JpegSampling::Full ? 1 : 2),
          vertical(encoding.sampling == JpegSampling::Quartered ? 2 : 1),
          tableCount(static_cast<int>(encoding.tables.size())) {
        if (tableCount > 2) Fail(__LINE__, "A JPEG is saved with at most two quantisation tables.");
        for (size_t i = 0; i < encoding.tables.size(); ++i) {
            for (size_t k = 0; k < 64; ++k) {
                int const step = encoding.tables[i][k];
                if (step < 1 || step > kLargestStep) Fail(__LINE__, "A quantisation step lies outside 1 to 32,767.");
                tables[i][k] = static_cast<unsigned>(step);
            }
        }
    }

    int quality;
    int horizontal;
    int vertical;
    int tableCount;
    unsigned tables[2][64]{};
};

// Every way out destroys libjpeg's object; the functions with a setjmp hold no object that has a destructor.
class Encoder {
public:
    Encoder() {
        Prepare(m_trap);
        m_encoder.err = &m_trap.manager;
        m_target.manager.init_destination = OnTargetStart;
        m_target.manager.empty_output_buffer = OnTargetFull;
        m_target.manager.term_destination = OnTargetEnd;
    }
    ~Encoder() {
        jpeg_destroy_compress(&m_encoder);
        std::free(m_target.bytes);
    }
    Encoder(Encoder const&) = delete;
    Encoder& operator=(Encoder const&) = delete;

    void Encode(cv::Mat const& picture, Settings const& settings) {
        bool const fits = !picture.empty() && (picture.type() == CV_8UC1 || picture.type() == CV_8UC3) &&
                          picture.cols <= kLargestSide && picture.rows <= kLargestSide;
        if (!fits) Fail(__LINE__, "Only pictures of 8 bits and at most 65,500 pixels a side can be saved as JPEG.");
        if (!Compress(picture, settings)) {
            Fail(__LINE__, "The picture can't be saved as JPEG: " + wxString::FromUTF8(m_trap.remark));
        }
    }
    unsigned char const* Bytes() const { return m_target.bytes; }
    size_t Size() const { return m_target.size; }

private:
    bool Compress(cv::Mat const& picture, Settings const& settings) {
        if (setjmp(m_trap.back) != 0) return false;
        jpeg_create_compress(&m_encoder);
        m_encoder.dest = &m_target.manager;
        m_encoder.image_width = static_cast<JDIMENSION>(picture.cols);
        m_encoder.image_height = static_cast<JDIMENSION>(picture.rows);
        m_encoder.input_components = picture.channels();
        m_encoder.in_color_space = picture.channels() == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
        jpeg_set_defaults(&m_encoder);
        SetTables(settings);
        m_encoder.dct_method = JDCT_ISLOW;
        for (int i = 0; i < m_encoder.num_components; ++i) {
            bool const subsampled = i == 0 && m_encoder.num_components > 1;
            m_encoder.comp_info[i].h_samp_factor = subsampled ? settings.horizontal : 1;
            m_encoder.comp_info[i].v_samp_factor = subsampled ? settings.vertical : 1;
        }
        jpeg_start_compress(&m_encoder, TRUE);
        JSAMPROW rows[kRowsAtOnce];
        while (m_encoder.next_scanline < m_encoder.image_height) {
            JDIMENSION const first = m_encoder.next_scanline;
            JDIMENSION const count = std::min(kRowsAtOnce, m_encoder.image_height - first);
            for (JDIMENSION i = 0; i < count; ++i) {
                // libjpeg reads the rows only, whatever its type says.
                rows[i] = const_cast<JSAMPROW>(picture.ptr(static_cast<int>(first + i)));
            }
            jpeg_write_scanlines(&m_encoder, rows, count);
        }
        jpeg_finish_compress(&m_encoder);
        return true;
    }
    void SetTables(Settings const& settings) {
        if (settings.tableCount == 0) {
            jpeg_set_quality(&m_encoder, settings.quality, TRUE);
            return;
        }
        for (int i = 0; i < 2; ++i) {
            jpeg_add_quant_table(&m_encoder, i, settings.tables[std::min(i, settings.tableCount - 1)], 100, FALSE);
        }
    }

    jpeg_compress_struct m_encoder{};
    ErrorTrap m_trap;
    Target m_target;
};

class Decoder {
public:
    Decoder() {
        Prepare(m_trap);
        m_decoder.err = &m_trap.manager;
    }
    ~Decoder() { jpeg_destroy_decompress(&m_decoder); }
    Decoder(Decoder const&) = delete;
    Decoder& operator=(Decoder const&) = delete;

    // `picture` has the size and the channels of what was encoded.
    void Decode(Encoder const& encoder, cv::Mat& picture) {
        if (!Decompress(encoder.Bytes(), encoder.Size(), picture)) {
            Fail(__LINE__, "The picture can't be read back from JPEG: " + wxString::FromUTF8(m_trap.remark));
        }
    }

private:
    bool Decompress(unsigned char const* bytes, size_t size, cv::Mat& picture) {
        if (setjmp(m_trap.back) != 0) return false;
        jpeg_create_decompress(&m_decoder);
        jpeg_mem_src(&m_decoder, bytes, static_cast<unsigned long>(size));
        jpeg_read_header(&m_decoder, TRUE);
        m_decoder.out_color_space = picture.channels() == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
        m_decoder.dct_method = JDCT_ISLOW;
        m_decoder.do_fancy_upsampling = TRUE;
        jpeg_start_decompress(&m_decoder);
        JSAMPROW rows[kRowsAtOnce];
        while (m_decoder.output_scanline < m_decoder.output_height) {
            JDIMENSION const first = m_decoder.output_scanline;
            JDIMENSION const count = std::min(kRowsAtOnce, m_decoder.output_height - first);
            for (JDIMENSION i = 0; i < count; ++i) rows[i] = picture.ptr(static_cast<int>(first + i));
            jpeg_read_scanlines(&m_decoder, rows, count);
        }
        jpeg_finish_decompress(&m_decoder);
        return true;
    }

    jpeg_decompress_struct m_decoder{};
    ErrorTrap m_trap;
};

cv::Mat RecompressAtOnce(cv::Mat const& picture, Settings const& settings) {
    Encoder encoder;
    encoder.Encode(picture, settings);
    cv::Mat decoded(picture.size(), picture.type());
    Decoder decoder;
    decoder.Decode(encoder, decoded);
    return decoded;
}

}  // namespace

std::string EncodeJpegToMemory(cv::Mat const& picture, JpegEncoding const& encoding) {
    Encoder encoder;
    encoder.Encode(picture, Settings(encoding));
    return std::string(reinterpret_cast<char const*>(encoder.Bytes()), encoder.Size());
}

cv::Mat RecompressJpeg(cv::Mat const& picture, JpegEncoding const& encoding) {
    if (encoding.sampling != JpegSampling::Full && picture.channels() != 1) {
        return tcvHasAborted() ? cv::Mat() : RecompressAtOnce(picture, Settings(encoding));
    }
    cv::Mat whole(picture.size(), picture.type());
    RecompressJpegTiles(picture, encoding,
                        [&whole](cv::Rect const& place, cv::Mat const& tile) { tile.copyTo(whole(place)); });
    return tcvHasAborted() ? cv::Mat() : whole;
}

int RecompressJpegTiles(cv::Mat const& picture, JpegEncoding const& encoding,
                        std::function<void(cv::Rect const& place, cv::Mat const& tile)> const& take) {
    Settings settings(encoding);
    settings.horizontal = 1;
    settings.vertical = 1;
    if (picture.empty()) Fail(__LINE__, "There is no picture to save as JPEG.");
    int const across = (picture.cols + kTileWidth - 1) / kTileWidth;
    int const down = (picture.rows + kTileHeight - 1) / kTileHeight;
    cv::Rect const all(0, 0, picture.cols, picture.rows);
    RunInParallel(across * down, [&](int index) {
        cv::Rect const place =
            cv::Rect(index % across * kTileWidth, index / across * kTileHeight, kTileWidth, kTileHeight) & all;
        take(place, RecompressAtOnce(picture(place), settings));
    });
    return across * down;
}
