// SPDX-License-Identifier: Apache-2.0
// TIFF by libtiff: the first directory. Private to this library.
//
// Grey and RGB of 8 and 16 bits and of 32-bit floating point are read as they are; everything else (palettes, bilevel,
// YCbCr, CMYK, CIE L*a*b*) as libtiff's own 8-bit RGB conversion gives it. Never turned by the orientation tag.
#pragma once
#include <string>

#include "tolimage/codec.h"

namespace codec {

// For the bytes of a TIFF container: true if its first directory holds an ordinary full picture, and not the preview or
// the sensor's mosaic of a camera RAW file.
bool IsOrdinaryTiff(ByteView file);
Image DecodeTiff(ByteView file);
void ProbeTiff(ByteView file, ImageProbe& probe);
// One, three or four channels of 8 or 16 bits, packed by LZW.
bool EncodeTiff(cv::Mat const& picture, std::string& bytes);

}  // namespace codec
