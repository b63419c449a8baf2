// SPDX-License-Identifier: Apache-2.0
// JPEG dimples: a single darker or brighter pixel in each 8 by 8 block, left by encoders that round DCT coefficients
// down or up.
//
// Threads: a plain value.
#pragma once

// What a search for dimples found.
struct PCEoutput {
    double strength = 0;  // peak-to-correlation energy over the 64 places in a block
    int xOffset = 0;      // the place of the dimple in its block, 0 to 7
    int yOffset = 0;
};
