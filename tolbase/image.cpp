// SPDX-License-Identifier: Apache-2.0
#include "tolbase/image.h"

#include <opencv2/imgproc/imgproc_c.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "tolbase/largepages.h"
#include "tolbase/limits.h"

struct Image::Holder {
    explicit Holder(_IplImage* taken) : header(taken) {}
    ~Holder() {
        if (header != nullptr) cvReleaseImage(&header);
    }
    Holder(Holder const&) = delete;
    Holder& operator=(Holder const&) = delete;

    _IplImage* header;
};

namespace {

bool HasPixels(_IplImage const* header) {
    return header != nullptr && header->imageData != nullptr && header->width > 0 && header->height > 0;
}

int IplDepth(int matDepth) {
    switch (matDepth) {
        case CV_8U:
            return IPL_DEPTH_8U;
        case CV_8S:
            return static_cast<int>(IPL_DEPTH_8S);
        case CV_16U:
            return IPL_DEPTH_16U;
        case CV_16S:
            return static_cast<int>(IPL_DEPTH_16S);
        case CV_32S:
            return static_cast<int>(IPL_DEPTH_32S);
        case CV_32F:
            return IPL_DEPTH_32F;
        case CV_64F:
            return IPL_DEPTH_64F;
        default:
            return 0;
    }
}

bool IsKnownDepth(int depth) {
    for (int matDepth = CV_8U; matDepth <= CV_64F; ++matDepth) {
        if (IplDepth(matDepth) == depth) return true;
    }
    return false;
}

// Null for sizes without pixels, for more bytes than a header can count, and where memory is short.
_IplImage* NewHeader(int width, int height, int depth, int channels) {
    if (width <= 0 || height <= 0 || channels < 1 || channels > 4 || !IsKnownDepth(depth)) return nullptr;
    const int64_t bytes = int64_t{width} * channels * ((depth & 255) / 8) + 3;
    if (bytes > std::numeric_limits<int>::max() / height) return nullptr;
    try {
        _IplImage* header = cvCreateImage(cvSize(width, height), depth, channels);
        tolbase::UseLargePages(header->imageData, static_cast<size_t>(header->imageSize));
        return header;
    } catch (cv::Exception const&) {
        return nullptr;
    }
}

// How many units of an 8-bit pixel one unit of that depth is worth.
double ScaleTo8Bit(int matDepth) {
    switch (matDepth) {
        case CV_16U:
            return 255.0 / 65535.0;
        case CV_32F:
        case CV_64F:
            return 255.0;
        default:
            return 1.0;
    }
}

}  // namespace

Image::Image(_IplImage* header) {
    if (header == nullptr) return;
    // A region of interest would make the header and the matrix tell different sizes.
    if (header->roi != nullptr) cvResetImageROI(header);
    m_holder = std::make_shared<Holder>(header);
}

bool Image::IsOk() const {
    return m_holder && HasPixels(m_holder->header);
}

int Image::Width() const {
    return IsOk() ? m_holder->header->width : 0;
}

int Image::Height() const {
    return IsOk() ? m_holder->header->height : 0;
}

int Image::Channels() const {
    return IsOk() ? m_holder->header->nChannels : 0;
}

int Image::Step() const {
    return IsOk() ? m_holder->header->widthStep : 0;
}

CvSize Image::Size() const {
    return cvSize(Width(), Height());
}

unsigned char* Image::Data() {
    return IsOk() ? reinterpret_cast<unsigned char*>(m_holder->header->imageData) : nullptr;
}

unsigned char const* Image::Data() const {
    return IsOk() ? reinterpret_cast<unsigned char const*>(m_holder->header->imageData) : nullptr;
}

Image::operator _IplImage*() {
    return m_holder ? m_holder->header : nullptr;
}

Image::operator _IplImage const*() const {
    return m_holder ? m_holder->header : nullptr;
}

Image::operator cv::Mat() {
    return IsOk() ? cv::cvarrToMat(m_holder->header) : cv::Mat();
}

Image::operator cv::Mat() const {
    return IsOk() ? cv::cvarrToMat(m_holder->header) : cv::Mat();
}

Image Image::FromMat(cv::Mat const& matrix) {
    if (matrix.empty() || matrix.dims > 2) return Image();
    Image result(NewHeader(matrix.cols, matrix.rows, IplDepth(matrix.depth()), matrix.channels()));
    if (!result.IsOk()) return Image();
    cv::Mat target = result;
    matrix.copyTo(target);
    return result;
}

Image Image::CreateUnset(int width, int height, int depth, int channels) {
    CheckPictureSize(width, height);
    Image result(NewHeader(width, height, depth, channels));
    return result.IsOk() ? result : Image();
}

Image Image::Create(int width, int height, int depth, int channels) {
    Image result = CreateUnset(width, height, depth, channels);
    if (!result.IsOk()) return Image();
    std::memset(result.Data(), 0, static_cast<size_t>(result.Step()) * static_cast<size_t>(height));
    return result;
}

_IplImage* Image::Release() {
    if (!m_holder) return nullptr;
    if (m_holder.use_count() > 1) *this = Clone();
    if (!m_holder) return nullptr;
    _IplImage* header = m_holder->header;
    m_holder->header = nullptr;
    m_holder.reset();
    return header;
}

Image Image::Clone() const {
    return IsOk() ? FromMat(*this) : Image();
}

Image Image::To8Bit() const {
    if (!IsOk()) return Image();
    const cv::Mat source = *this;
    if (source.depth() == CV_8U) return *this;
    Image result(NewHeader(Width(), Height(), IPL_DEPTH_8U, Channels()));
    if (!result.IsOk()) return Image();
    cv::Mat target = result;
    source.convertTo(target, CV_8U, ScaleTo8Bit(source.depth()));
    return result;
}

Image Image::ToColor() const {
    const Image shallow = To8Bit();
    if (!shallow.IsOk() || shallow.Channels() == 3) return shallow;
    Image result(NewHeader(Width(), Height(), IPL_DEPTH_8U, 3));
    if (!result.IsOk()) return Image();
    const cv::Mat source = shallow;
    cv::Mat target = result;
    if (shallow.Channels() == 4) {
        cv::cvtColor(source, target, cv::COLOR_BGRA2BGR);
    } else {
        const int fromTo[] = {0, 0, 0, 1, 0, 2};
        cv::mixChannels(&source, 1, &target, 1, fromTo, 3);
    }
    return result;
}

Image Image::ToGray() const {
    const Image shallow = To8Bit();
    if (!shallow.IsOk() || shallow.Channels() == 1) return shallow;
    Image result(NewHeader(Width(), Height(), IPL_DEPTH_8U, 1));
    if (!result.IsOk()) return Image();
    const cv::Mat source = shallow;
    cv::Mat target = result;
    if (shallow.Channels() == 2) {
        cv::extractChannel(source, target, 0);
    } else {
        cv::cvtColor(source, target, shallow.Channels() == 4 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGR2GRAY);
    }
    return result;
}

Image Image::Resize(CvSize size, int interpolation, bool smooth) const {
    if (!IsOk() || size.width <= 0 || size.height <= 0) return Image();
    CheckPictureSize(size.width, size.height);
    const cv::Mat source = *this;
    // OpenCV resizes no 8-bit signed and no 32-bit whole numbers.
    if (source.depth() == CV_8S || source.depth() == CV_32S) return To8Bit().Resize(size, interpolation, smooth);
    Image result(NewHeader(size.width, size.height, m_holder->header->depth, Channels()));
    if (!result.IsOk()) return Image();
    cv::Mat target = result;
    int method =
        interpolation < cv::INTER_NEAREST || interpolation > cv::INTER_LANCZOS4 ? cv::INTER_LINEAR : interpolation;
    if (smooth && size.width < Width() && size.height < Height()) method = cv::INTER_AREA;
    cv::resize(source, target, target.size(), 0, 0, method);
    return result;
}

Image Image::MakeCroppedThumbnail(CvSize const& size) const {
    if (!IsOk() || size.width <= 0 || size.height <= 0) return Image();
    // The largest part of the thumbnail's shape: one side whole, the other by the rule of three, at least one pixel.
    int64_t width = Width();
    int64_t height = Height();
    if (width * size.height > height * size.width) {
        width = std::max<int64_t>(1, height * size.width / size.height);
    } else {
        height = std::max<int64_t>(1, width * size.height / size.width);
    }
    const cv::Mat whole = *this;
    const cv::Rect middle(static_cast<int>((Width() - width) / 2), static_cast<int>((Height() - height) / 2),
                          static_cast<int>(width), static_cast<int>(height));
    return FromMat(whole(middle)).Resize(size, cv::INTER_LINEAR, true);
}
