// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeg_quality.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

constexpr std::array<int, 64> kLuma{16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
                                    14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
                                    18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
                                    49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};
constexpr std::array<int, 64> kChroma{17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99,
                                      24, 26, 56, 99, 99, 99, 99, 99, 47, 66, 99, 99, 99, 99, 99, 99,
                                      99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
                                      99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99};

constexpr int kBest = 100;

int64_t Distance(JpegQuantTable const* table, bool isChroma, int quality) {
    if (table == nullptr) return 0;
    const JpegQuantTable standard = IjgJpegTable(isChroma, quality, table->isWide);
    int64_t sum = 0;
    for (size_t i = 0; i < 64; ++i) sum += std::abs(int{table->values[i]} - int{standard.values[i]});
    return sum;
}

int64_t Distance(JpegQuantTable const* luma, JpegQuantTable const* chroma, int quality) {
    return Distance(luma, false, quality) + Distance(chroma, true, quality);
}

}  // namespace

JpegQuantTable IjgJpegTable(bool isChroma, int quality, bool isWide) {
    const int bounded = std::clamp(quality, 1, kBest);
    const int scale = bounded < 50 ? 5000 / bounded : 200 - 2 * bounded;
    JpegQuantTable table;
    table.isWide = isWide;
    std::array<int, 64> const& base = isChroma ? kChroma : kLuma;
    for (size_t i = 0; i < 64; ++i) {
        table.values[i] = static_cast<uint16_t>(std::clamp((base[i] * scale + 50) / 100, 1, isWide ? 32767 : 255));
    }
    return table;
}

JpegQualityEstimate EstimateJpegQuality(JpegQuantTable const* luma, JpegQuantTable const* chroma) {
    JpegQualityEstimate best;
    if (luma == nullptr && chroma == nullptr) return best;
    int64_t least = std::numeric_limits<int64_t>::max();
    for (int quality = kBest; quality >= 1; --quality) {
        const int64_t distance = Distance(luma, chroma, quality);
        if (distance >= least) continue;
        least = distance;
        best.quality = quality;
    }
    best.isExact = least == 0;
    return best;
}

std::vector<int> FindIjgQualities(JpegQuantTable const* luma, JpegQuantTable const* chroma) {
    std::vector<int> qualities;
    if (luma == nullptr && chroma == nullptr) return qualities;
    for (int quality = 1; quality <= kBest; ++quality) {
        if (Distance(luma, chroma, quality) == 0) qualities.push_back(quality);
    }
    return qualities;
}
