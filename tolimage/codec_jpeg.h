// SPDX-License-Identifier: Apache-2.0
// JPEG by libjpeg-turbo, straight into the picture's rows. Private to this library.
//
// Accurate integer transform, smooth chroma upsampling, block smoothing for unfinished progressive files: the flags
// that decide the pixels are set here and don't depend on the library's defaults. CMYK and YCCK become BGR by plain
// multiplication, without a colour profile.
#pragma once
#include <string>

#include "tolimage/codec.h"

namespace codec {

Image DecodeJpeg(ByteView file);
// Reads the segments up to the frame header.
void ProbeJpeg(ByteView file, ImageProbe& probe);
// One or three channels of 8 bits; false if libjpeg refuses.
bool EncodeJpeg(cv::Mat const& picture, int quality, std::string& bytes);

}  // namespace codec
