// SPDX-License-Identifier: Apache-2.0
// HEIC and AVIF by libheif: the primary picture, 8 bits. Private to this library.
//
// The transformations that the file asks for (turning, mirroring, cropping) are not carried out, so that the pixels
// stand where the encoder had them; padding that a crop would take off is therefore visible.
#pragma once
#include "tolimage/codec.h"

namespace codec {

// By the brands of the first box.
bool IsHeif(ByteView file);
// "HEIC", "AVIF", or "HEIF" where the brands tell no more.
char const* HeifName(ByteView file);
Image DecodeHeif(ByteView file);
void ProbeHeif(ByteView file, ImageProbe& probe);
// The primary picture's first thumbnail; not ok if there is none.
Image DecodeHeifThumbnail(ByteView file);

}  // namespace codec
