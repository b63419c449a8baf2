// SPDX-License-Identifier: Apache-2.0
// Camera RAW by LibRaw: full size, camera white balance, sRGB, 8 bits, never turned. Private to this library.
#pragma once
#include "tolimage/codec.h"

namespace codec {

// True if LibRaw knows the file.
bool IsRaw(ByteView file);
Image DecodeRaw(ByteView file);
void ProbeRaw(ByteView file, ImageProbe& probe);
// The embedded preview that LibRaw finds; not ok if there is none that can be decoded.
Image DecodeRawThumbnail(ByteView file);

}  // namespace codec
