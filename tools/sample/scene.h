// SPDX-License-Identifier: Apache-2.0
// An invented lake among mountains: what the lens sees, without the camera's part.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/sample/frame.h"

namespace sample {

// The same seed gives the same scene in any size.
Frame RenderScene(int width, int height, uint32_t seed);

// An object in the picture: its surroundings and, for each pixel of these row by row, how much of it belongs to it.
struct Cutout {
    Box box;
    std::vector<float> coverage;  // 0 to 1
};

// The hut on the near shore, with the ground at its foot.
Cutout GetHut(int width, int height, uint32_t seed);

}  // namespace sample
