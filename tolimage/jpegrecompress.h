// SPDX-License-Identifier: Apache-2.0
// What a picture becomes when it is saved as JPEG once more: the ground of error level analysis and JPEG ghosts.
//
// Threads: any; no state. Ownership: plain values.
#pragma once
#include <opencv2/core.hpp>
#include <string>

#include "tolbase/export.h"

// A baseline JPEG of a grey (1 channel) or colour (3 channels: blue, green, red) picture of 8 bits, made by libjpeg
// with the accurate integer transform, the tables of ITU-T T.81 Annex K scaled to `quality` (1 to 100), and no chroma
// subsampling, so that quantisation alone changes the picture. Throws TolException (82) for another kind of picture,
// one over 65,500 pixels wide or high, or if memory is short.
ORV_API std::string EncodeJpegToMemory(cv::Mat const& picture, int quality);

// The picture behind encoding and decoding: the same size and channels.
ORV_API cv::Mat RecompressJpeg(cv::Mat const& picture, int quality);
