// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_jpeg.h"

#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include <jerror.h>
#include <jpeglib.h>

namespace codec {
namespace {

// One bit for the DC coefficient of each block is the least that a Huffman-coded picture takes; arithmetic coding takes
// less, which the factor of four allows for.
constexpr uint64_t kPixelsPerByte = 4 * 512;
// Progressive pictures have about ten scans. Each goes over the whole picture, however few bytes it has.
constexpr int kMaxScans = 256;
constexpr int kRowsAtOnce = 16;

struct ErrorManager {
    jpeg_error_mgr base;
    std::jmp_buf jump;
    char remark[JMSG_LENGTH_MAX];
    char warning[JMSG_LENGTH_MAX];
    int code;
};

extern "C" {
void OnError(j_common_ptr info) {
    auto* manager = reinterpret_cast<ErrorManager*>(info->err);
    manager->code = info->err->msg_code;
    info->err->format_message(info, manager->remark);
    std::longjmp(manager->jump, 1);
}
void OnMessage(j_common_ptr info, int level) {
    if (level >= 0) return;
    auto* manager = reinterpret_cast<ErrorManager*>(info->err);
    if (info->err->num_warnings++ == 0) info->err->format_message(info, manager->warning);
}
void OnOutput(j_common_ptr) {}
void OnProgress(j_common_ptr info) {
    auto* decoder = reinterpret_cast<j_decompress_ptr>(info);
    if (decoder->input_scan_number <= kMaxScans) return;
    auto* manager = reinterpret_cast<ErrorManager*>(info->err);
    manager->code = 0;
    std::snprintf(manager->remark, sizeof manager->remark, "more than %d scans", kMaxScans);
    std::longjmp(manager->jump, 1);
}
}

void InitErrors(ErrorManager& errors) {
    jpeg_std_error(&errors.base);
    errors.base.error_exit = OnError;
    errors.base.emit_message = OnMessage;
    errors.base.output_message = OnOutput;
    errors.remark[0] = 0;
    errors.warning[0] = 0;
    errors.code = 0;
}

// Everything that crosses a longjmp: plain data only.
struct Decoder {
    jpeg_decompress_struct info;
    jpeg_progress_mgr progress;
    ErrorManager errors;
};

// The kind of file that libjpeg's error tells of.
ByteErrorKind KindOf(int code) {
    switch (code) {
        case JERR_BAD_PRECISION:
        case JERR_SOF_UNSUPPORTED:
        case JERR_CONVERSION_NOTIMPL:
        case JERR_CCIR601_NOTIMPL:
        case JERR_ARITH_NOTIMPL:
        case JERR_NOT_COMPILED:
        case JERR_FRACT_SAMPLE_NOTIMPL:
            return ByteErrorKind::Unsupported;
        case JERR_INPUT_EOF:
        case JERR_INPUT_EMPTY:
        case JERR_NO_IMAGE:
            return ByteErrorKind::Truncated;
        default:
            return ByteErrorKind::Corrupt;
    }
}

bool Open(Decoder& decoder, ByteView file) {
    if (setjmp(decoder.errors.jump) != 0) return false;
    jpeg_create_decompress(&decoder.info);
    decoder.progress = {};
    decoder.progress.progress_monitor = OnProgress;
    decoder.info.progress = &decoder.progress;
    jpeg_mem_src(&decoder.info, file.Data(), file.Size());
    jpeg_read_header(&decoder.info, TRUE);
    return true;
}

bool Start(Decoder& decoder) {
    if (setjmp(decoder.errors.jump) != 0) return false;
    jpeg_decompress_struct& info = decoder.info;
    if (info.jpeg_color_space == JCS_GRAYSCALE) {
        info.out_color_space = JCS_GRAYSCALE;
    } else if (info.jpeg_color_space == JCS_CMYK || info.jpeg_color_space == JCS_YCCK) {
        info.out_color_space = JCS_CMYK;
    } else {
        info.out_color_space = JCS_EXT_BGR;
    }
    info.scale_num = 1;
    info.scale_denom = 1;
    info.dct_method = JDCT_ISLOW;
    info.do_fancy_upsampling = TRUE;
    info.do_block_smoothing = TRUE;
    info.quantize_colors = FALSE;
    info.buffered_image = FALSE;
    return jpeg_start_decompress(&info) != FALSE;
}

// Reads up to `count` rows; 0 once the library has given up.
JDIMENSION ReadRows(Decoder& decoder, JSAMPARRAY rows, JDIMENSION count) {
    if (setjmp(decoder.errors.jump) != 0) return 0;
    return jpeg_read_scanlines(&decoder.info, rows, count);
}

void Finish(Decoder& decoder) {
    if (setjmp(decoder.errors.jump) != 0) return;
    jpeg_finish_decompress(&decoder.info);
}

[[noreturn]] void Fail(Decoder const& decoder) {
    throw DecodeError(KindOf(decoder.errors.code), decoder.errors.remark);
}

// Destroys libjpeg's object on every way out.
class DecoderScope {
public:
    explicit DecoderScope(Decoder& decoder) : m_decoder(decoder) {}
    ~DecoderScope() { jpeg_destroy_decompress(&m_decoder.info); }
    DecoderScope(DecoderScope const&) = delete;
    DecoderScope& operator=(DecoderScope const&) = delete;

private:
    Decoder& m_decoder;
};

// Adobe's files store the complements of the inks, which are red, green and blue already.
void CmykRowToBgr(unsigned char const* cmyk, unsigned char* bgr, int width, bool complements) {
    for (int x = 0; x < width; ++x, cmyk += 4, bgr += 3) {
        for (int c = 0; c < 3; ++c) {
            const int light = complements ? cmyk[c] : 255 - cmyk[c];
            const int white = complements ? cmyk[3] : 255 - cmyk[3];
            bgr[2 - c] = static_cast<unsigned char>((light * white + 127) / 255);
        }
    }
}

void ReadDirect(Decoder& decoder, Image& image) {
    JSAMPROW rows[kRowsAtOnce];
    while (decoder.info.output_scanline < decoder.info.output_height) {
        const JDIMENSION left = decoder.info.output_height - decoder.info.output_scanline;
        const JDIMENSION count = left < kRowsAtOnce ? left : kRowsAtOnce;
        for (JDIMENSION i = 0; i < count; ++i) {
            rows[i] = image.Data() + static_cast<size_t>(image.Step()) * (decoder.info.output_scanline + i);
        }
        if (ReadRows(decoder, rows, count) == 0) Fail(decoder);
    }
}

void ReadCmyk(Decoder& decoder, Image& image) {
    std::vector<unsigned char> line(static_cast<size_t>(image.Width()) * 4);
    JSAMPROW row = line.data();
    while (decoder.info.output_scanline < decoder.info.output_height) {
        unsigned char* target = image.Data() + static_cast<size_t>(image.Step()) * decoder.info.output_scanline;
        if (ReadRows(decoder, &row, 1) == 0) Fail(decoder);
        CmykRowToBgr(line.data(), target, image.Width(), decoder.info.saw_Adobe_marker != FALSE);
    }
}

bool IsFrameMarker(int code) {
    return code >= 0xC0 && code <= 0xCF && code != 0xC4 && code != 0xC8 && code != 0xCC;
}

}  // namespace

Image DecodeJpeg(ByteView file) {
    Decoder decoder{};
    InitErrors(decoder.errors);
    decoder.info.err = &decoder.errors.base;
    const DecoderScope scope(decoder);
    if (!Open(decoder, file)) Fail(decoder);
    CheckSize(decoder.info.image_width, decoder.info.image_height, file.Size(), kPixelsPerByte);
    const int components = decoder.info.num_components;
    if (components != 1 && components != 3 && components != 4) {
        throw DecodeError(ByteErrorKind::Unsupported, std::to_string(components) + " colour components");
    }
    if (!Start(decoder)) Fail(decoder);
    Image image =
        NewUnsetImage(static_cast<int>(decoder.info.output_width), static_cast<int>(decoder.info.output_height),
                      IPL_DEPTH_8U, decoder.info.output_components == 1 ? 1 : 3);
    if (decoder.info.output_components == 4) {
        ReadCmyk(decoder, image);
    } else {
        ReadDirect(decoder, image);
    }
    Finish(decoder);
    if (decoder.errors.base.num_warnings > 0) Warn(decoder.errors.warning);
    return image;
}

void ProbeJpeg(ByteView file, ImageProbe& probe) {
    uint64_t at = 2;
    while (file.Has(at, 4)) {
        if (file.At(at) != 0xFF) {
            ++at;  // bytes between segments, which decoders pass over
            continue;
        }
        const int code = file.At(at + 1);
        if (code == 0xFF) {
            ++at;
            continue;
        }
        if (code == 0 || code == 0x01 || (code >= 0xD0 && code <= 0xD8)) {
            at += 2;
            continue;
        }
        if (code == 0xD9 || code == 0xDA) return;
        if (IsFrameMarker(code)) {
            if (!file.Has(at, 10)) return;
            probe.height = file.U16(at + 5, true);
            probe.width = file.U16(at + 7, true);
            probe.channels = file.At(at + 9);
            probe.bitsPerPixel = probe.channels * file.At(at + 4);
            return;
        }
        at += 2 + uint64_t{file.U16(at + 2, true)};
    }
}

namespace {

// All of libjpeg's compression between one setjmp and its longjmp; no object with a destructor lives in here.
bool Compress(jpeg_compress_struct& info, ErrorManager& errors, cv::Mat const& picture, int quality,
              unsigned char** bytes, unsigned long* size) {
    if (setjmp(errors.jump) != 0) return false;
    jpeg_create_compress(&info);
    jpeg_mem_dest(&info, bytes, size);
    info.image_width = static_cast<JDIMENSION>(picture.cols);
    info.image_height = static_cast<JDIMENSION>(picture.rows);
    info.input_components = picture.channels();
    info.in_color_space = picture.channels() == 1 ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(&info);
    jpeg_set_quality(&info, quality, TRUE);
    info.dct_method = JDCT_ISLOW;
    jpeg_start_compress(&info, TRUE);
    while (info.next_scanline < info.image_height) {
        JSAMPROW row = const_cast<JSAMPROW>(picture.ptr(static_cast<int>(info.next_scanline)));
        jpeg_write_scanlines(&info, &row, 1);
    }
    jpeg_finish_compress(&info);
    return true;
}

}  // namespace

bool EncodeJpeg(cv::Mat const& picture, int quality, std::string& bytes) {
    if (picture.cols > JPEG_MAX_DIMENSION || picture.rows > JPEG_MAX_DIMENSION) return false;
    jpeg_compress_struct info{};
    ErrorManager errors{};
    InitErrors(errors);
    info.err = &errors.base;
    unsigned char* data = nullptr;
    unsigned long size = 0;
    const bool done = Compress(info, errors, picture, quality, &data, &size);
    jpeg_destroy_compress(&info);
    // After a failure the pointer may tell of a buffer that libjpeg has replaced already.
    if (!done) return false;
    bytes.assign(reinterpret_cast<char const*>(data), size);
    std::free(data);
    return true;
}

}  // namespace codec
