// SPDX-License-Identifier: Apache-2.0
// The six kinds of PNM (P1 to P6). Private to this library.
#pragma once
#include "tolimage/codec.h"

namespace codec {

void ReadPnmHead(ByteView file, ImageProbe& probe);
// Values are scaled from the file's greatest value to 8 bits, or to 16 where it is above 255. A file that breaks off
// gives what is there; the rest is black.
Image DecodePnm(ByteView file);

}  // namespace codec
