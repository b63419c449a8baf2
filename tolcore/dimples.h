// SPDX-License-Identifier: Apache-2.0
// JPEG dimples: a single darker or brighter pixel in each 8 by 8 block, left by encoders that round DCT coefficients
// down or up instead of to the nearest. Literature: S. Agarwal, H. Farid, "Photo Forensics from JPEG Dimples", IEEE
// Workshop on Information Forensics and Security, 2017. Measured error rates: docs/dimples.md.
//
// Threads: a plain value and a function without state; any thread.
#pragma once
#include <opencv2/core/mat.hpp>

#include "tolbase/export.h"

// What a search for dimples found.
struct PCEoutput {
    double strength = 0;  // peak-to-correlation energy over the 64 places in a block, 0 or more
    int xOffset = 0;      // the place of the dimple in its block, 0 to 7, counted from the picture's upper left corner
    int yOffset = 0;
};

// Looks for dimples on a grid of 8 by 8 pixels at any offset. A strength of 13.0 and above tells dimples. Pictures are
// of 8 bits a channel with three or four channels, blue first; any other picture, an empty one, and one too small to
// tell anything (fewer than 16 pixels high or wide, or fewer than 64 blocks) give a strength of 0 and offsets of 0.
// Reads the picture in strips: little memory is taken, however large it is.
ORV_API void tcvJpegDimplesDetection(cv::Mat const& image, PCEoutput& result);
