// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_raw.h"

#include <libraw/libraw.h>

#include <algorithm>
#include <memory>

#include "tolbase/limits.h"
#include "tolimage/codec_jpeg.h"

namespace codec {
namespace {

// Sensors' values are packed by a few times at most; the rest is for small files in strange cameras.
constexpr uint64_t kPixelsPerByte = 1024;
constexpr unsigned kMaxRawMegabytes = 2048;

// LibRaw takes a pointer to what it may not change, and does not change it.
int OpenBuffer(LibRaw& raw, ByteView file) {
    return raw.open_buffer(const_cast<unsigned char*>(file.Data()), file.Size());
}

void Check(int result) {
    if (result == LIBRAW_SUCCESS) return;
    ByteErrorKind kind = ByteErrorKind::Corrupt;
    if (result == LIBRAW_FILE_UNSUPPORTED || result == LIBRAW_NOT_IMPLEMENTED || result == LIBRAW_TOO_BIG) {
        kind = ByteErrorKind::Unsupported;
    } else if (result == LIBRAW_IO_ERROR) {
        kind = ByteErrorKind::Truncated;
    }
    throw DecodeError(kind, std::string("LibRaw: ") + LibRaw::strerror(result));
}

// LibRaw's object is too large for a thread's stack.
std::unique_ptr<LibRaw> NewLibRaw() {
    auto raw = std::make_unique<LibRaw>(LIBRAW_OPIONS_NO_MEMERR_CALLBACK | LIBRAW_OPIONS_NO_DATAERR_CALLBACK);
    libraw_output_params_t& params = raw->imgdata.params;
    params.half_size = 0;
    params.user_flip = 0;
    params.use_camera_wb = 1;
    params.output_color = 1;
    params.output_bps = 8;
    params.user_qual = 3;
    params.max_raw_memory_mb = kMaxRawMegabytes;
    return raw;
}

std::unique_ptr<LibRaw> Open(ByteView file) {
    std::unique_ptr<LibRaw> raw = NewLibRaw();
    Check(OpenBuffer(*raw, file));
    return raw;
}

struct Freer {
    void operator()(libraw_processed_image_t* image) const { LibRaw::dcraw_clear_mem(image); }
};
using Processed = std::unique_ptr<libraw_processed_image_t, Freer>;

Image FromProcessed(libraw_processed_image_t const& source) {
    const bool grey = source.colors == 1;
    const size_t rowBytes = size_t{source.width} * source.colors;
    if (source.bits != 8 || (source.colors != 1 && source.colors != 3) || source.data_size < rowBytes * source.height) {
        throw DecodeError(ByteErrorKind::Unsupported, "LibRaw: the picture's layout");
    }
    Image image = NewImage(source.width, source.height, IPL_DEPTH_8U, source.colors);
    for (int y = 0; y < source.height; ++y) {
        unsigned char const* from = source.data + rowBytes * static_cast<size_t>(y);
        unsigned char* to = image.Data() + static_cast<size_t>(image.Step()) * static_cast<size_t>(y);
        if (grey) {
            std::copy(from, from + rowBytes, to);
            continue;
        }
        for (int x = 0; x < source.width; ++x, from += 3, to += 3) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
    }
    return image;
}

}  // namespace

bool IsRaw(ByteView file) {
    return OpenBuffer(*NewLibRaw(), file) == LIBRAW_SUCCESS;
}

Image DecodeRaw(ByteView file) {
    const std::unique_ptr<LibRaw> raw = Open(file);
    libraw_image_sizes_t const& sizes = raw->imgdata.sizes;
    CheckSize(std::max(sizes.raw_width, sizes.width), std::max(sizes.raw_height, sizes.height), file.Size(),
              kPixelsPerByte);
    Check(raw->unpack());
    Check(raw->dcraw_process());
    int result = LIBRAW_SUCCESS;
    const Processed processed(raw->dcraw_make_mem_image(&result));
    if (!processed) Check(result == LIBRAW_SUCCESS ? LIBRAW_UNSPECIFIED_ERROR : result);
    if (raw->imgdata.process_warnings & LIBRAW_WARN_RAWSPEED_PROBLEM) Warn("RAW: damaged data");
    return FromProcessed(*processed);
}

void ProbeRaw(ByteView file, ImageProbe& probe) {
    const std::unique_ptr<LibRaw> raw = NewLibRaw();
    if (OpenBuffer(*raw, file) != LIBRAW_SUCCESS) return;
    libraw_image_sizes_t const& sizes = raw->imgdata.sizes;
    probe.width = sizes.width;
    probe.height = sizes.height;
    // A mosaic has one value for each place; sensors and formats without one tell no filter pattern.
    probe.channels = raw->imgdata.idata.filters != 0 ? 1 : std::max(1, raw->imgdata.idata.colors);
    const auto bits = static_cast<int>(raw->imgdata.color.raw_bps);
    probe.bitsPerPixel = bits > 0 ? bits * probe.channels : 0;
}

Image DecodeRawThumbnail(ByteView file) {
    const std::unique_ptr<LibRaw> raw = NewLibRaw();
    if (OpenBuffer(*raw, file) != LIBRAW_SUCCESS) return Image();
    if (uint64_t{raw->imgdata.thumbnail.tlength} > file.Size() || raw->unpack_thumb() != LIBRAW_SUCCESS) return Image();
    int result = LIBRAW_SUCCESS;
    const Processed processed(raw->dcraw_make_mem_thumb(&result));
    if (!processed) return Image();
    if (processed->type == LIBRAW_IMAGE_JPEG) return DecodeJpeg(ByteView(processed->data, processed->data_size));
    if (processed->type == LIBRAW_IMAGE_BITMAP) {
        CheckSize(processed->width, processed->height, file.Size(), kPixelsPerByte);
        return FromProcessed(*processed);
    }
    return Image();
}

}  // namespace codec
