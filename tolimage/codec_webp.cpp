// SPDX-License-Identifier: Apache-2.0
#include "tolimage/codec_webp.h"

#include <webp/decode.h>
#include <webp/demux.h>
#include <webp/encode.h>

#include <memory>
#include <opencv2/imgproc.hpp>

namespace codec {
namespace {

// A lossless picture of one colour takes a few bytes whatever its size.
constexpr uint64_t kPixelsPerByte = 65536;

struct DemuxerCloser {
    void operator()(WebPDemuxer* demuxer) const { WebPDemuxDelete(demuxer); }
};

WebPBitstreamFeatures Features(ByteView file) {
    WebPBitstreamFeatures features{};
    const VP8StatusCode status = WebPGetFeatures(file.Data(), file.Size(), &features);
    if (status == VP8_STATUS_OK) return features;
    const bool cut = status == VP8_STATUS_NOT_ENOUGH_DATA || status == VP8_STATUS_SUSPENDED;
    throw DecodeError(cut ? ByteErrorKind::Truncated : ByteErrorKind::Corrupt, "WebP header");
}

Image DecodeFrame(ByteView file, bool alpha, int width, int height) {
    Image image = NewImage(width, height, IPL_DEPTH_8U, alpha ? 4 : 3);
    const size_t bytes = static_cast<size_t>(image.Step()) * static_cast<size_t>(height);
    WebPDecoderConfig config;
    if (WebPInitDecoderConfig(&config) == 0) throw DecodeError(ByteErrorKind::Unsupported, "libwebp's version");
    config.output.colorspace = alpha ? MODE_BGRA : MODE_BGR;
    config.output.is_external_memory = 1;
    config.output.u.RGBA.rgba = image.Data();
    config.output.u.RGBA.stride = image.Step();
    config.output.u.RGBA.size = bytes;
    const VP8StatusCode status = WebPDecode(file.Data(), file.Size(), &config);
    WebPFreeDecBuffer(&config.output);
    if (status != VP8_STATUS_OK) {
        const bool cut = status == VP8_STATUS_NOT_ENOUGH_DATA || status == VP8_STATUS_SUSPENDED;
        throw DecodeError(cut ? ByteErrorKind::Truncated : ByteErrorKind::Corrupt, "WebP picture");
    }
    return image;
}

Image DecodeFirstFrame(ByteView file, int width, int height) {
    const WebPData data{file.Data(), file.Size()};
    WebPDemuxState state = WEBP_DEMUX_PARSE_ERROR;
    const std::unique_ptr<WebPDemuxer, DemuxerCloser> demuxer(WebPDemuxPartial(&data, &state));
    WebPIterator frame{};
    if (!demuxer || WebPDemuxGetFrame(demuxer.get(), 1, &frame) == 0) {
        throw DecodeError(ByteErrorKind::Corrupt, "WebP animation");
    }
    const std::unique_ptr<WebPIterator, void (*)(WebPIterator*)> scope(&frame, WebPDemuxReleaseIterator);
    const ByteView part(frame.fragment.bytes, frame.fragment.size);
    const WebPBitstreamFeatures features = Features(part);
    CheckSize(features.width, features.height, file.Size(), kPixelsPerByte);
    Image image = DecodeFrame(part, features.has_alpha != 0, features.width, features.height);
    if (features.width == width && features.height == height) return image;
    // A frame smaller than its canvas: the rest of the canvas is black.
    const cv::Rect place(frame.x_offset, frame.y_offset, image.Width(), image.Height());
    const cv::Rect whole(0, 0, width, height);
    if ((place & whole) != place) throw DecodeError(ByteErrorKind::Corrupt, "a WebP frame outside its canvas");
    Image canvas = NewImage(width, height, IPL_DEPTH_8U, image.Channels());
    cv::Mat target = canvas;
    cv::Mat(image).copyTo(target(place));
    return canvas;
}

}  // namespace

Image DecodeWebP(ByteView file) {
    const WebPBitstreamFeatures features = Features(file);
    CheckSize(features.width, features.height, file.Size(), kPixelsPerByte);
    if (features.has_animation != 0) return DecodeFirstFrame(file, features.width, features.height);
    return DecodeFrame(file, features.has_alpha != 0, features.width, features.height);
}

void ProbeWebP(ByteView file, ImageProbe& probe) {
    WebPBitstreamFeatures features{};
    if (WebPGetFeatures(file.Data(), file.Size(), &features) != VP8_STATUS_OK) return;
    probe.width = features.width;
    probe.height = features.height;
    probe.channels = features.has_alpha != 0 ? 4 : 3;
    probe.bitsPerPixel = 8 * probe.channels;
}

bool EncodeWebP(cv::Mat const& picture, int quality, std::string& bytes) {
    if (picture.depth() != CV_8U || picture.cols > WEBP_MAX_DIMENSION || picture.rows > WEBP_MAX_DIMENSION)
        return false;
    cv::Mat source = picture;
    if (picture.channels() == 1) cv::cvtColor(picture, source, cv::COLOR_GRAY2BGR);
    if (source.channels() != 3 && source.channels() != 4) return false;
    uint8_t* data = nullptr;
    const auto step = static_cast<int>(source.step);
    const size_t size =
        source.channels() == 4
            ? WebPEncodeBGRA(source.data, source.cols, source.rows, step, static_cast<float>(quality), &data)
            : WebPEncodeBGR(source.data, source.cols, source.rows, step, static_cast<float>(quality), &data);
    if (size == 0) return false;
    bytes.assign(reinterpret_cast<char const*>(data), size);
    WebPFree(data);
    return true;
}

}  // namespace codec
