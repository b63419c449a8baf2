// SPDX-License-Identifier: Apache-2.0
// TGA, plain and packed: palette, 15 to 32 bits, grey. Private to this library.
#pragma once
#include "tolimage/codec.h"

namespace codec {

// TGA has no magic number: all fields of the head must make sense.
bool IsTga(ByteView file);
Image DecodeTga(ByteView file);
void ProbeTga(ByteView file, ImageProbe& probe);

}  // namespace codec
