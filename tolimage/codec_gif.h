// SPDX-License-Identifier: Apache-2.0
// GIF: the first frame on its canvas. Private to this library.
//
// What is transparent shows as the palette has it; the canvas around a smaller frame is black.
#pragma once
#include "tolimage/codec.h"

namespace codec {

Image DecodeGif(ByteView file);
// Throws ByteError for a file that breaks off before its canvas is told.
void ProbeGif(ByteView file, ImageProbe& probe);

}  // namespace codec
