// SPDX-License-Identifier: Apache-2.0
// A picture: an OpenCV image header with its pixels.
//
// Ownership: the pixels are shared between copies and freed with the last of them; only Clone, and an operation that
// has to change something, makes new ones. Code that has handed a picture out never writes into it again: it replaces
// it. The header, the matrix and the pointer that an Image gives are borrowed from it and live as long as one of its
// copies does.
// Threads: a value belongs to one thread at a time; copies in different threads may be read, copied and dropped freely.
#pragma once
#include <opencv2/core/core_c.h>

#include <memory>
#include <opencv2/core.hpp>

#include "tolbase/export.h"

class ORV_API Image {
public:
    // No picture: IsOk is false.
    Image() = default;
    // Takes the header and its pixels over; they are freed by cvReleaseImage. Null gives an image that is not ok.
    explicit Image(_IplImage* header);

    // True if it holds pixels.
    bool IsOk() const;

    // In pixels; 0 without a picture.
    int Width() const;
    int Height() const;
    int Channels() const;
    // Bytes from one row to the next.
    int Step() const;
    CvSize Size() const;
    // The first pixel of the first row; channels stand in the order blue, green, red, alpha. Null without a picture.
    unsigned char* Data();
    unsigned char const* Data() const;

    // The wrapped header, null without a picture.
    operator _IplImage*();
    operator _IplImage const*() const;
    // A matrix over the same pixels, empty without a picture. It does not keep the pixels alive.
    operator cv::Mat();
    operator cv::Mat() const;

    // A picture with pixels of its own.
    Image Clone() const;

    // Three channels of 8 bits, blue, green and red; shares the pixels if it is that already. Grey is repeated, a
    // second or fourth channel (alpha) is left out and never blended. Deeper pixels are scaled: 16 bits by 255/65535
    // with rounding, floating-point numbers from the range 0 to 1; what lies outside is clipped.
    Image ToColor() const;
    // One channel of 8 bits, of colour by the weights of ITU-R BT.601; shares the pixels if it is that already.
    Image ToGray() const;
    // The same channels, 8 bits deep, scaled as told above; shares the pixels if they are that deep already.
    Image To8Bit() const;

    // A copy of exactly that size. `interpolation` is OpenCV's number (0 nearest, 1 linear, 2 cubic, 3 area, 4
    // Lanczos); another number is taken as 1. With `smooth` a picture that gets smaller in both directions is averaged
    // by area instead, so that nothing aliases on a display. A size without pixels gives an image that is not ok.
    Image Resize(CvSize size, int interpolation, bool smooth) const;
    // A copy of exactly that size that is filled wholly: the largest middle part of the same shape, scaled.
    Image MakeCroppedThumbnail(CvSize const& size) const;

    // A new picture with a copy of the matrix's pixels; not ok for an empty one or one of more than 4 channels.
    static Image FromMat(cv::Mat const& matrix);
    // Zeroed pixels. `depth` is OpenCV's (IPL_DEPTH_8U, ...). Throws TolLimitError past the limits "image-side" and
    // "pixels-per-image"; gives an image that is not ok where a size is not positive or memory is short.
    static Image Create(int width, int height, int depth, int channels);
    // The same for a caller who writes every pixel: what they hold before is undefined.
    static Image CreateUnset(int width, int height, int depth, int channels);
    // Gives the header to a caller who frees it by cvReleaseImage; the pixels are copied only if they are shared. The
    // image is not ok afterwards.
    _IplImage* Release();

private:
    struct Holder;
    std::shared_ptr<Holder> m_holder;
};
