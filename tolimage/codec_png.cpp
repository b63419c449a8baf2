// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_png.h"

#include <png.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <vector>

#include "tolbase/limits.h"

namespace codec {
namespace {

// Deflate packs no more than 1,032 bytes into one, and a byte holds up to eight pixels.
constexpr uint64_t kPixelsPerByte = 1032 * 8;
constexpr png_alloc_size_t kMaxChunkBytes = 64U << 20;
constexpr png_uint_32 kMaxChunks = 4096;
constexpr size_t kStoredChunkBytes = size_t{1} << 16;
// Chunks, rows' filter bytes and blocks of an unpacked file of ordinary size.
constexpr size_t kStoredReserve = size_t{1} << 18;

// Plain data: it is alive across longjmp.
struct Reader {
    png_structp png;
    png_infop info;
    unsigned char const* data;
    size_t size;
    size_t position;
    char remark[256];
    char warning[256];
    bool truncated;
    int rowsRead;
};

void Keep(char (&target)[256], png_const_charp text) {
    if (target[0] == 0 && text != nullptr) std::strncpy(target, text, sizeof target - 1);
}

extern "C" {
void OnPngError(png_structp png, png_const_charp text) {
    Keep(static_cast<Reader*>(png_get_error_ptr(png))->remark, text);
    png_longjmp(png, 1);
}
void OnPngWarning(png_structp png, png_const_charp text) {
    Keep(static_cast<Reader*>(png_get_error_ptr(png))->warning, text);
}
void OnPngRead(png_structp png, png_bytep target, size_t length) {
    auto* reader = static_cast<Reader*>(png_get_io_ptr(png));
    if (length > reader->size - reader->position) {
        reader->truncated = true;
        png_error(png, "the file ends too early");
    }
    std::memcpy(target, reader->data + reader->position, length);
    reader->position += length;
}
}

bool ReadHeader(Reader& reader) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    png_set_read_fn(reader.png, &reader, OnPngRead);
    png_set_user_limits(reader.png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_chunk_malloc_max(reader.png, kMaxChunkBytes);
    png_set_chunk_cache_max(reader.png, kMaxChunks);
    // Profiles and texts that are broken or unknown say nothing about the pixels.
    png_set_benign_errors(reader.png, 1);
    png_read_info(reader.png, reader.info);
    return true;
}

bool SetUp(Reader& reader, int& passes) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    const int depth = png_get_bit_depth(reader.png, reader.info);
    const int type = png_get_color_type(reader.png, reader.info);
    if (type == PNG_COLOR_TYPE_PALETTE) png_set_palette_to_rgb(reader.png);
    if (type == PNG_COLOR_TYPE_GRAY && depth < 8) png_set_expand_gray_1_2_4_to_8(reader.png);
    if (png_get_valid(reader.png, reader.info, PNG_INFO_tRNS) != 0) png_set_tRNS_to_alpha(reader.png);
    if (depth == 16) png_set_swap(reader.png);
    png_set_bgr(reader.png);
    passes = png_set_interlace_handling(reader.png);
    png_read_update_info(reader.png, reader.info);
    return true;
}

bool ReadRows(Reader& reader, unsigned char* first, size_t step, int height, int passes) {
    if (setjmp(png_jmpbuf(reader.png)) != 0) return false;
    for (int pass = 0; pass < passes; ++pass) {
        for (int y = 0; y < height; ++y) {
            png_read_row(reader.png, first + step * static_cast<size_t>(y), nullptr);
            ++reader.rowsRead;
        }
    }
    return true;
}

void Blacken(Image& image, int firstRow) {
    const auto step = static_cast<size_t>(image.Step());
    std::memset(image.Data() + step * static_cast<size_t>(firstRow), 0,
                step * static_cast<size_t>(image.Height() - firstRow));
}

[[noreturn]] void Fail(Reader const& reader) {
    throw DecodeError(reader.truncated ? ByteErrorKind::Truncated : ByteErrorKind::Corrupt, reader.remark);
}

class ReaderScope {
public:
    explicit ReaderScope(Reader& reader) : m_reader(reader) {}
    ~ReaderScope() { png_destroy_read_struct(&m_reader.png, &m_reader.info, nullptr); }
    ReaderScope(ReaderScope const&) = delete;
    ReaderScope& operator=(ReaderScope const&) = delete;

private:
    Reader& m_reader;
};

}  // namespace

Image DecodePng(ByteView file, PngSums sums) {
    Reader reader{};
    reader.data = file.Data();
    reader.size = file.Size();
    const ReaderScope scope(reader);
    reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader, OnPngError, OnPngWarning);
    if (reader.png != nullptr) reader.info = png_create_info_struct(reader.png);
    if (reader.info == nullptr) throw DecodeError(ByteErrorKind::Unsupported, "libpng could not be set up");
    if (sums == PngSums::OfChunks) png_set_option(reader.png, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
    if (!ReadHeader(reader)) Fail(reader);
    const int64_t width = png_get_image_width(reader.png, reader.info);
    const int64_t height = png_get_image_height(reader.png, reader.info);
    CheckSize(width, height, file.Size(), kPixelsPerByte);
    int passes = 1;
    if (!SetUp(reader, passes)) Fail(reader);
    const int depth = png_get_bit_depth(reader.png, reader.info) == 16 ? IPL_DEPTH_16U : IPL_DEPTH_8U;
    Image image = NewUnsetImage(static_cast<int>(width), static_cast<int>(height), depth,
                                png_get_channels(reader.png, reader.info));
    if (png_get_rowbytes(reader.png, reader.info) > static_cast<size_t>(image.Step())) {
        throw DecodeError(ByteErrorKind::Corrupt, "rows longer than their width");
    }
    // The rows of several passes are put together from what stands there already.
    if (passes > 1) Blacken(image, 0);
    if (!ReadRows(reader, image.Data(), static_cast<size_t>(image.Step()), image.Height(), passes)) {
        if (passes == 1) Blacken(image, reader.rowsRead);
        if (reader.rowsRead == 0) Fail(reader);
        Warn(std::string("PNG: ") + reader.remark);
    } else if (reader.warning[0] != 0) {
        Warn(std::string("PNG: ") + reader.warning);
    }
    return image;
}

void ProbePng(ByteView file, ImageProbe& probe) {
    if (!file.Has(0, 26) || !file.Matches(12, "IHDR", 4)) return;
    const uint32_t width = file.U32(16, true);
    const uint32_t height = file.U32(20, true);
    if (width > 0x7FFFFFFFU || height > 0x7FFFFFFFU) return;
    const int depth = file.At(24);
    const int type = file.At(25);
    probe.width = static_cast<int>(width);
    probe.height = static_cast<int>(height);
    if (type == PNG_COLOR_TYPE_PALETTE) {
        probe.channels = 3;
        probe.bitsPerPixel = depth;
        return;
    }
    probe.channels = ((type & PNG_COLOR_MASK_COLOR) != 0 ? 3 : 1) + ((type & PNG_COLOR_MASK_ALPHA) != 0 ? 1 : 0);
    probe.bitsPerPixel = probe.channels * depth;
}

namespace {

struct Writer {
    png_structp png;
    png_infop info;
    std::string* bytes;
};

extern "C" {
void OnWriteError(png_structp png, png_const_charp) {
    png_longjmp(png, 1);
}
void OnWriteWarning(png_structp, png_const_charp) {}
void OnPngWrite(png_structp png, png_bytep data, size_t length) {
    static_cast<Writer*>(png_get_io_ptr(png))->bytes->append(reinterpret_cast<char const*>(data), length);
}
void OnPngFlush(png_structp) {}
}

bool WriteAll(Writer& writer, cv::Mat const& picture, bool packed) {
    constexpr int types[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                             PNG_COLOR_TYPE_RGB_ALPHA};
    if (setjmp(png_jmpbuf(writer.png)) != 0) return false;
    png_set_write_fn(writer.png, &writer, OnPngWrite, OnPngFlush);
    png_set_user_limits(writer.png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_IHDR(writer.png, writer.info, static_cast<png_uint_32>(picture.cols),
                 static_cast<png_uint_32>(picture.rows), picture.depth() == CV_16U ? 16 : 8,
                 types[picture.channels() - 1], PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    // A quick search and one good filter: a third of the time for a few hundredths of the size.
    png_set_compression_level(writer.png, packed ? 3 : 0);
    png_set_filter(writer.png, PNG_FILTER_TYPE_BASE, packed ? PNG_FILTER_SUB : PNG_FILTER_NONE);
    if (!packed) png_set_compression_buffer_size(writer.png, kStoredChunkBytes);
    png_write_info(writer.png, writer.info);
    if (picture.depth() == CV_16U) png_set_swap(writer.png);
    png_set_bgr(writer.png);
    for (int y = 0; y < picture.rows; ++y) png_write_row(writer.png, picture.ptr(y));
    png_write_end(writer.png, nullptr);
    return true;
}

}  // namespace

bool EncodePng(cv::Mat const& picture, std::string& bytes, bool packed) {
    if (picture.channels() > 4 || (picture.depth() != CV_8U && picture.depth() != CV_16U)) return false;
    bytes.clear();
    if (!packed) bytes.reserve(picture.total() * picture.elemSize() + kStoredReserve);
    Writer writer{};
    writer.bytes = &bytes;
    writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, OnWriteError, OnWriteWarning);
    if (writer.png != nullptr) writer.info = png_create_info_struct(writer.png);
    const bool done = writer.info != nullptr && WriteAll(writer, picture, packed);
    png_destroy_write_struct(&writer.png, &writer.info);
    return done;
}

}  // namespace codec
