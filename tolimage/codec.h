// SPDX-License-Identifier: Apache-2.0
// What the decoders have in common. Private to this library.
//
// A decoder gets the bytes of a whole file and gives the picture as stored (BGR order), or throws: ByteError or
// DecodeError for a file that can't be decoded, TolLimitError for one that must not be. Sizes are checked before memory
// is taken. No decoder writes to the error output.
#pragma once
#include <cstdint>
#include <stdexcept>
#include <string>

#include "tolbase/bytereader.h"
#include "tolbase/image.h"
#include "tolimage/imageio.h"

namespace codec {

// A file that its decoder refuses; `what()` is the decoder's own remark.
class DecodeError : public std::runtime_error {
public:
    DecodeError(ByteErrorKind kind, std::string const& remark) : std::runtime_error(remark), m_kind(kind) {}
    ByteErrorKind GetKind() const { return m_kind; }

private:
    ByteErrorKind m_kind;
};

// A size that no file of so few bytes can honestly claim.
class ImplausibleSize : public std::runtime_error {
public:
    ImplausibleSize(int64_t width, int64_t height, uint64_t bytes);
};

enum class Format { Unknown, Jpeg, Png, Tiff, WebP, Heif, Raw, Bmp, Gif, Pnm, Ico, Tga, Jpeg2000, JpegXl, Photoshop };

// By content alone. A TIFF container whose first picture is no ordinary one is Raw.
Format Sniff(ByteView file);
// The name that ImageProbe gives; for HEIF by the brands of the file.
char const* FormatName(Format format, ByteView file);

// Checks the limits "image-side" and "pixels-per-image", and that the file has at least one byte for so many pixels;
// pictures of up to 16 Mi pixels may always be so small. Throws TolLimitError or ImplausibleSize.
void CheckSize(int64_t width, int64_t height, uint64_t bytes, uint64_t pixelsPerByte);
// Image::Create (or, where every pixel is going to be written, CreateUnset) that throws DecodeError where memory is
// short.
Image NewImage(int width, int height, int depth, int channels);
Image NewUnsetImage(int width, int height, int depth, int channels);
// Keeps the first remark of this thread's decoding for tcvLastLoadWarning.
void Warn(std::string const& remark);

Image Decode(ByteView file);
ImageProbe Probe(ByteView file);

}  // namespace codec
