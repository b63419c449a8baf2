// SPDX-License-Identifier: Apache-2.0
// The two files: the photograph as the camera writes it, and a tampered copy as an editing program saves it.
#pragma once

#include <cstdint>
#include <string>

#include "tools/sample/frame.h"
#include "tools/sample/scene.h"

namespace sample {

struct Photo {
    std::string jpeg;
    std::string thumbnail;
};

// The camera's file, with its EXIF data and thumbnail.
Photo MakePhoto(Picture const& picture, uint32_t seed);

struct TamperedPhoto {
    std::string jpeg;
    Box region;  // the least box around the pasted pixels
};

// A copy that had been saved at a low quality, as a picture that was passed on, before the object was pasted into it
// from the camera's own file, further to the left. The thumbnail is that of the untouched photograph, as careless
// editing leaves it.
TamperedPhoto Tamper(Photo const& photo, Cutout const& object, uint32_t seed);

}  // namespace sample
