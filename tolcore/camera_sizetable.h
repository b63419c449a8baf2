// SPDX-License-Identifier: Apache-2.0
// The compiled camera sizes as the build makes them out of data/.
#pragma once
#include <cstddef>
#include <cstdint>

// Texts are offsets into the pool. Sorted by make and model with the letters A to Z taken as small ones.
struct PackedCameraSize {
    uint32_t make, model, reference;
    int32_t longSide, shortSide;
    uint32_t firstSize, sizeCount;  // into kCameraSizeLists; no size where the list isn't known to be whole
};

struct PackedResolution {
    int32_t longSide, shortSide;
};

extern const char kCameraSizePool[];
extern const PackedCameraSize kCameraSizes[];
extern const size_t kCameraSizeCount;
extern const PackedResolution kCameraSizeLists[];
