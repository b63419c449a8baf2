// SPDX-License-Identifier: Apache-2.0
// The lossy part of a JPEG encoder with a choice of how coefficients are rounded: what a picture looks like after it
// was encoded and decoded. Floating-point throughout, no subsampling, no entropy coding.
//
// Threads: functions without state; any thread.
#pragma once
#include <opencv2/core.hpp>

namespace bench {

enum class Rounding { Nearest, Down, Up };

// `picture` is of 8 bits and three channels, blue first; the result is its size. The quantisation tables are those of
// ITU-T T.81 Annex K, scaled to `quality` (1 to 100) as the IJG does. The right and lower edges are filled up to whole
// blocks by their last pixels.
cv::Mat EncodeInBlocks(cv::Mat const& picture, int quality, Rounding rounding);

}  // namespace bench
