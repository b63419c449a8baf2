// SPDX-License-Identifier: Apache-2.0
// WebP by libwebp; of an animation the first frame on its canvas. Private to this library.
#pragma once
#include <string>

#include "tolimage/codec.h"

namespace codec {

Image DecodeWebP(ByteView file);
void ProbeWebP(ByteView file, ImageProbe& probe);
// One, three or four channels of 8 bits; lossy at `quality`.
bool EncodeWebP(cv::Mat const& picture, int quality, std::string& bytes);

}  // namespace codec
