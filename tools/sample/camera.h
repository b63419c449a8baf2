// SPDX-License-Identifier: Apache-2.0
// What a camera makes of the light: defocus, vignetting, colour filter array, photon and read noise, the sensor's own
// pattern, demosaicing, white balance, sharpening and tone.
#pragma once

#include <cstdint>

#include "tools/sample/frame.h"

namespace sample {

// The seed decides the noise of this one shot; the sensor's pattern is the same for all.
Picture Photograph(Frame frame, uint32_t seed);

}  // namespace sample
