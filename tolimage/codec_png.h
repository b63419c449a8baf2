// SPDX-License-Identifier: Apache-2.0
// PNG by libpng, row by row. Private to this library.
//
// Palettes become blue, green and red, fewer than 8 bits are spread to 8, 16 stay 16, transparency is kept as a
// channel. No gamma or colour profile is applied. A file that breaks off gives the rows that are there.
#pragma once
#include <string>

#include "tolimage/codec.h"

namespace codec {

// Which checksums have to be right: those of the chunks and that of the packed stream, or the first alone.
enum class PngSums { All, OfChunks };
Image DecodePng(ByteView file, PngSums sums = PngSums::All);
void ProbePng(ByteView file, ImageProbe& probe);
// One to four channels of 8 or 16 bits.
// Not packed: larger, and several times as fast to write and to read.
bool EncodePng(cv::Mat const& picture, std::string& bytes, bool packed = true);

}  // namespace codec
