// SPDX-License-Identifier: Apache-2.0
// JPEG streams as a camera and as an editing program write them.
#pragma once

#include <string>

#include "tools/sample/frame.h"

namespace sample {

// Baseline, 4:2:2, the invented camera's own quantisation tables, standard Huffman tables, no JFIF segment.
std::string EncodeAsCamera(Picture const& picture);

// Baseline, 4:2:0, tables of libjpeg at `quality` (1 to 100), with a JFIF segment.
std::string EncodeAsProgram(Picture const& picture, int quality);

// Throws std::runtime_error with libjpeg's message for what can't be decoded.
Picture Decode(std::string const& jpeg);

}  // namespace sample
