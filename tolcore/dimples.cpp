// SPDX-License-Identifier: Apache-2.0
// Each pixel's mixed second difference shows single pixels that stand out; edges along the axes, slopes and the steps
// that blocking leaves on them cancel. Divided by its own root mean square around the pixel it weighs flat and busy
// parts alike. Its mean at each of the 64 places of a block makes a map, in units of the means' standard error.
//
// Rounding down moves every coefficient by half a step on average: the picture gets the pattern that the inverse
// transform makes of the quantisation table, which is the dimple and what surrounds it. That pattern, and with it those
// of other habits of encoders, is looked for in the map at each of the 64 offsets.
#include "tolcore/dimples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "tolcore/dimplepatterns.h"

namespace {

constexpr int kBlock = kDimpleBlock;
constexpr int kPlaces = kDimplePlaces;
constexpr int kStripRows = 64 * kBlock;
constexpr int kMinSide = 16;
constexpr int64_t kMinBlocks = 64;

// Rows beside a strip that its pixels' neighbourhoods reach into.
constexpr int kHalo = kBlock;

// Of the difference of samples that are rounded to whole grey levels. It keeps what is flat from being blown up.
constexpr double kRoundingEnergy = kMixedDifferenceEnergy / 12.0;

// Keeps a made-up picture without any noise finite.
constexpr double kLeastVariance = 0.01;

// Chosen so that 13.0 stands for a peak of twice that energy, past what chance and nearest rounding reach.
constexpr double kScale = 0.5;

using Map = DimpleMap;

struct Sums {
    Map sum{};
    Map squares{};
    Map count{};
};

void AddRow(float const* correlations, int width, int y, Sums& sums) {
    const size_t line = static_cast<size_t>(y % kBlock) * kBlock;
    // The outermost pixels have no whole neighbourhood.
    for (int x = 1; x < width - 1; ++x) {
        const double value = correlations[x];
        const size_t place = line + static_cast<size_t>(x % kBlock);
        sums.sum[place] += value;
        sums.squares[place] += value * value;
        sums.count[place] += 1;
    }
}

cv::Mat Differences(cv::Mat const& strip) {
    cv::Mat grey;
    cv::cvtColor(strip, grey, strip.channels() == 4 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGR2GRAY);
    const cv::Matx13f second(1.0F, -2.0F, 1.0F);
    cv::Mat differences;
    cv::sepFilter2D(grey, differences, CV_32F, second, second);
    // A window of one block holds each of the 64 places once, so it weighs none of them up or down.
    cv::Mat energy;
    cv::sqrBoxFilter(differences, energy, CV_32F, cv::Size(kBlock, kBlock));
    energy += kRoundingEnergy;
    cv::sqrt(energy, energy);
    differences /= energy;
    return differences;
}

void AddPicture(cv::Mat const& image, Sums& sums) {
    for (int top = 1; top < image.rows - 1; top += kStripRows) {
        const int bottom = std::min(top + kStripRows, image.rows - 1);
        const int first = std::max(top - kHalo, 0);
        const cv::Mat differences = Differences(image.rowRange(first, std::min(bottom + kHalo, image.rows)));
        for (int y = top; y < bottom; ++y) AddRow(differences.ptr<float>(y - first), image.cols, y, sums);
    }
}

Map MakeMap(Sums const& sums) {
    Map map{};
    Map variances{};
    double pooled = 0;
    for (size_t i = 0; i < kPlaces; ++i) {
        map[i] = sums.sum[i] / sums.count[i];
        variances[i] = std::max(sums.squares[i] / sums.count[i] - map[i] * map[i], kLeastVariance);
        pooled += variances[i] / kPlaces;
    }
    RemoveRowsAndColumns(map);
    // A place may vary more than the others (the corners of flat blocks do), but a quiet one must not gain by it.
    for (size_t i = 0; i < kPlaces; ++i) map[i] /= std::sqrt(std::max(variances[i], pooled) / sums.count[i]);
    return map;
}

}  // namespace

void tcvJpegDimplesDetection(cv::Mat const& image, PCEoutput& result) {
    result = PCEoutput();
    if (image.dims != 2 || image.depth() != CV_8U || image.channels() < 3 || image.channels() > 4) return;
    if (image.cols < kMinSide || image.rows < kMinSide) return;
    if (static_cast<int64_t>(image.cols / kBlock) * (image.rows / kBlock) < kMinBlocks) return;
    Sums sums;
    AddPicture(image, sums);
    const Map map = MakeMap(sums);
    const DimpleFit fit = FitDimples(map);
    result.strength = kScale * fit.peak * fit.peak / fit.energy;
    if (result.strength <= 0) return;
    result.xOffset = static_cast<int>(fit.offset % kBlock);
    result.yOffset = static_cast<int>(fit.offset / kBlock);
}
