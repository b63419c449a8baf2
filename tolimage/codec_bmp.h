// SPDX-License-Identifier: Apache-2.0
// BMP, and the pictures of ICO and CUR files. Private to this library.
//
// Alpha and masks are dropped. An icon file gives its largest picture, of equal ones the deepest.
#pragma once
#include <string>

#include "tolimage/codec.h"

namespace codec {

bool IsBmp(ByteView file);
bool IsIco(ByteView file);
Image DecodeBmp(ByteView file);
Image DecodeIco(ByteView file);
// Both throw ByteError or DecodeError for a head that makes no sense.
void ProbeBmp(ByteView file, ImageProbe& probe);
void ProbeIco(ByteView file, ImageProbe& probe);
// One or three channels of 8 bits, written without packing.
bool EncodeBmp(cv::Mat const& picture, std::string& bytes);

}  // namespace codec
