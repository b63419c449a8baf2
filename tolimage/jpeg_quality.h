// SPDX-License-Identifier: Apache-2.0
// The quantisation tables of the Independent JPEG Group's library and how near a file's tables come to them.
#pragma once
#include <vector>

#include "tolimage/jpeg_tables.h"

// The example tables of ITU-T T.81, tables K.1 and K.2, scaled to a quality of 1 to 100 as the IJG library does: by
// 5000 / quality percent below 50, by 200 - 2 * quality percent from there, rounded, and held to 1 to 255 (32767 if
// `isWide`).
JpegQuantTable IjgJpegTable(bool isChroma, int quality, bool isWide);

struct JpegQualityEstimate {
    int quality = 0;  // 0 if there was nothing to compare
    bool isExact = false;
};

// The quality whose tables have the least sum of absolute differences from these; the higher one of two equally near.
// Either table may be null.
JpegQualityEstimate EstimateJpegQuality(JpegQuantTable const* luma, JpegQuantTable const* chroma);

// All qualities that have exactly these tables, in rising order.
std::vector<int> FindIjgQualities(JpegQuantTable const* luma, JpegQuantTable const* chroma);
