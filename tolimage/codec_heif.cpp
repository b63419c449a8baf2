// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_heif.h"

#include <libheif/heif.h>

#include <algorithm>
#include <memory>
#include <string>

namespace codec {
namespace {

// AV1 and HEVC skip whole blocks of 64 by 64 pixels at next to nothing.
constexpr uint64_t kPixelsPerByte = 65536;

struct Freer {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
    void operator()(heif_image* image) const { heif_image_release(image); }
    void operator()(heif_decoding_options* options) const { heif_decoding_options_free(options); }
};
using Context = std::unique_ptr<heif_context, Freer>;
using Handle = std::unique_ptr<heif_image_handle, Freer>;

bool HasBrand(ByteView file, std::initializer_list<char const*> brands) {
    if (!file.Has(0, 16)) return false;
    const uint64_t end = std::min<uint64_t>({file.U32(0, true), file.Size(), 4096});
    for (uint64_t at = 8; at + 4 <= end; at += at == 8 ? 8 : 4) {
        for (char const* brand : brands) {
            if (file.Matches(at, brand, 4)) return true;
        }
    }
    return false;
}

void Check(heif_error const& error) {
    if (error.code == heif_error_Ok) return;
    ByteErrorKind kind = ByteErrorKind::Corrupt;
    if (error.code == heif_error_Unsupported_feature || error.code == heif_error_Unsupported_filetype ||
        error.code == heif_error_Plugin_loading_error) {
        kind = ByteErrorKind::Unsupported;
    } else if (error.subcode == heif_suberror_End_of_data) {
        kind = ByteErrorKind::Truncated;
    }
    throw DecodeError(kind, error.message != nullptr ? error.message : "HEIF");
}

Context Open(ByteView file) {
    Context context(heif_context_alloc());
    if (!context) throw DecodeError(ByteErrorKind::Unsupported, "libheif could not be set up");
    Check(heif_context_read_from_memory_without_copy(context.get(), file.Data(), file.Size(), nullptr));
    return context;
}

Handle Primary(Context const& context) {
    heif_image_handle* handle = nullptr;
    Check(heif_context_get_primary_image_handle(context.get(), &handle));
    return Handle(handle);
}

Image DecodeHandle(Context const& context, Handle const& handle, uint64_t fileSize) {
    const int width = heif_image_handle_get_ispe_width(handle.get());
    const int height = heif_image_handle_get_ispe_height(handle.get());
    CheckSize(width, height, fileSize, kPixelsPerByte);
    // A tiled picture names its size once more, for the canvas; both must be of one mind.
    heif_context_set_maximum_image_size_limit(context.get(), std::max(width, height) + 64);
    const std::unique_ptr<heif_decoding_options, Freer> options(heif_decoding_options_alloc());
    if (!options) throw DecodeError(ByteErrorKind::Unsupported, "libheif could not be set up");
    options->ignore_transformations = 1;
    options->convert_hdr_to_8bit = 1;
    const bool alpha = heif_image_handle_has_alpha_channel(handle.get()) != 0;
    heif_image* decoded = nullptr;
    Check(heif_decode_image(handle.get(), &decoded, heif_colorspace_RGB,
                            alpha ? heif_chroma_interleaved_RGBA : heif_chroma_interleaved_RGB, options.get()));
    const std::unique_ptr<heif_image, Freer> scope(decoded);
    const int realWidth = heif_image_get_width(decoded, heif_channel_interleaved);
    const int realHeight = heif_image_get_height(decoded, heif_channel_interleaved);
    CheckSize(realWidth, realHeight, fileSize, kPixelsPerByte);
    int step = 0;
    unsigned char const* source = heif_image_get_plane_readonly(decoded, heif_channel_interleaved, &step);
    const int channels = alpha ? 4 : 3;
    if (source == nullptr || step < realWidth * channels) throw DecodeError(ByteErrorKind::Corrupt, "HEIF pixels");
    Image image = NewImage(realWidth, realHeight, IPL_DEPTH_8U, channels);
    for (int y = 0; y < realHeight; ++y) {
        unsigned char const* from = source + static_cast<size_t>(step) * static_cast<size_t>(y);
        unsigned char* to = image.Data() + static_cast<size_t>(image.Step()) * static_cast<size_t>(y);
        for (int x = 0; x < realWidth; ++x, from += channels, to += channels) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
            if (alpha) to[3] = from[3];
        }
    }
    return image;
}

}  // namespace

bool IsHeif(ByteView file) {
    return HasBrand(file, {"heic", "heix", "hevc", "hevx", "heim", "heis", "mif1", "msf1", "avif", "avis", "mif2"});
}

char const* HeifName(ByteView file) {
    if (HasBrand(file, {"avif", "avis"})) return "AVIF";
    return HasBrand(file, {"heic", "heix", "hevc", "hevx", "heim", "heis"}) ? "HEIC" : "HEIF";
}

Image DecodeHeif(ByteView file) {
    const Context context = Open(file);
    return DecodeHandle(context, Primary(context), file.Size());
}

Image DecodeHeifThumbnail(ByteView file) {
    const Context context = Open(file);
    const Handle primary = Primary(context);
    heif_item_id id = 0;
    if (heif_image_handle_get_list_of_thumbnail_IDs(primary.get(), &id, 1) < 1) return Image();
    heif_image_handle* thumbnail = nullptr;
    Check(heif_image_handle_get_thumbnail(primary.get(), id, &thumbnail));
    return DecodeHandle(context, Handle(thumbnail), file.Size());
}

void ProbeHeif(ByteView file, ImageProbe& probe) {
    try {
        const Context context = Open(file);
        const Handle handle = Primary(context);
        probe.width = heif_image_handle_get_ispe_width(handle.get());
        probe.height = heif_image_handle_get_ispe_height(handle.get());
        // libheif does not tell a grey picture before it is decoded.
        probe.channels = heif_image_handle_has_alpha_channel(handle.get()) != 0 ? 4 : 3;
        const int bits = heif_image_handle_get_luma_bits_per_pixel(handle.get());
        probe.bitsPerPixel = bits > 0 ? probe.channels * bits : 0;
    } catch (DecodeError const&) {
        probe.width = probe.height = 0;
    }
}

}  // namespace codec
