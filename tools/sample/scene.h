// SPDX-License-Identifier: Apache-2.0
// An invented lake among mountains: what the lens sees, without the camera's part.
#pragma once

#include <cstdint>

#include "tools/sample/frame.h"

namespace sample {

// The same seed gives the same scene in any size.
Frame RenderScene(int width, int height, uint32_t seed);

// The part of the picture that shows the hut.
Box GetHutBox(int width, int height, uint32_t seed);

}  // namespace sample
