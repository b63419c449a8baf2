// SPDX-License-Identifier: Apache-2.0
// BMP, GIF, PNM, ICO and TGA as wxImage reads them, behind size checks of our own. Private to this library.
//
// wxImage knows 8-bit RGB only. Transparency is dropped: of a GIF the transparent colour shows as its palette has it.
#pragma once
#include <string>

#include "tolimage/codec.h"

namespace codec {

bool IsBmp(ByteView file);
bool IsIco(ByteView file);
// TGA has no magic number: all fields of the header must make sense.
bool IsTga(ByteView file);
Image DecodeByWx(Format format, ByteView file);
void ProbeByWx(Format format, ByteView file, ImageProbe& probe);
// One or three channels of 8 bits, written without packing.
bool EncodeBmp(cv::Mat const& picture, std::string& bytes);

}  // namespace codec
