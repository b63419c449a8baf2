// SPDX-License-Identifier: Apache-2.0
// The residual behind a 3 by 3 median shows single pixels that stand out and passes edges over. Its mean at each of the
// 64 places of a block, in units of the mean's own standard error, is the correlation with a comb of one pixel a block
// at that offset. What blocking leaves along whole rows and columns of the block is taken away before.
#include "tolcore/dimples.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace {

constexpr int kBlock = 8;
constexpr int kPlaces = kBlock * kBlock;
constexpr int kStripRows = 64 * kBlock;
constexpr int kMinSide = 16;
constexpr int64_t kMinBlocks = 64;

// Grey levels. A pixel that stands out further is texture or an edge, and should not weigh more than a dimple.
constexpr int kClip = 8;

// Of a residual that is rounded to whole grey levels; keeps a made-up picture without any noise finite.
constexpr double kRoundingVariance = 1.0 / 12.0;

using Map = std::array<double, kPlaces>;

struct Sums {
    std::array<int64_t, kPlaces> sum{};
    std::array<int64_t, kPlaces> squares{};
    std::array<int64_t, kPlaces> count{};
};

void AddRow(unsigned char const* grey, unsigned char const* median, int width, int y, Sums& sums) {
    const size_t line = static_cast<size_t>(y % kBlock) * kBlock;
    // The outermost pixels have no whole neighbourhood.
    for (int x = 1; x < width - 1; ++x) {
        const int residual = std::clamp(grey[x] - median[x], -kClip, kClip);
        const size_t place = line + static_cast<size_t>(x % kBlock);
        sums.sum[place] += residual;
        sums.squares[place] += residual * residual;
        ++sums.count[place];
    }
}

void AddPicture(cv::Mat const& image, Sums& sums) {
    const int code = image.channels() == 4 ? cv::COLOR_BGRA2GRAY : cv::COLOR_BGR2GRAY;
    cv::Mat grey;
    cv::Mat median;
    for (int top = 1; top < image.rows - 1; top += kStripRows) {
        const int bottom = std::min(top + kStripRows, image.rows - 1);
        // With a row more on either side, so that strips join without a seam.
        cv::cvtColor(image.rowRange(top - 1, bottom + 1), grey, code);
        cv::medianBlur(grey, median, 3);
        for (int y = top; y < bottom; ++y) AddRow(grey.ptr(y - top + 1), median.ptr(y - top + 1), image.cols, y, sums);
    }
}

double Median(std::array<double, kBlock> values) {
    std::sort(values.begin(), values.end());
    return (values[kBlock / 2 - 1] + values[kBlock / 2]) / 2;
}

// Medians and not means: a dimple must not leave its own trace in the rest of its row and column.
void RemoveLines(Map& map, size_t lineStep, size_t cellStep) {
    for (size_t line = 0; line < kBlock; ++line) {
        std::array<double, kBlock> values{};
        for (size_t i = 0; i < kBlock; ++i) values[i] = map[line * lineStep + i * cellStep];
        const double level = Median(values);
        for (size_t i = 0; i < kBlock; ++i) map[line * lineStep + i * cellStep] -= level;
    }
}

Map Correlate(Sums const& sums) {
    Map map{};
    Map errors{};
    for (size_t i = 0; i < kPlaces; ++i) {
        const auto count = static_cast<double>(sums.count[i]);
        map[i] = static_cast<double>(sums.sum[i]) / count;
        const double variance = std::max(static_cast<double>(sums.squares[i]) / count - map[i] * map[i], 0.0);
        errors[i] = std::sqrt((variance + kRoundingVariance) / count);
    }
    RemoveLines(map, kBlock, 1);
    RemoveLines(map, 1, kBlock);
    for (size_t i = 0; i < kPlaces; ++i) map[i] /= errors[i];
    return map;
}

// Whether two places touch, or are one, on a grid that goes on at its ends.
bool AreNeighbours(size_t a, size_t b) {
    const auto near = [](size_t first, size_t second) {
        const size_t distance = (first + kBlock - second) % kBlock;
        return distance <= 1 || distance == kBlock - 1;
    };
    return near(a % kBlock, b % kBlock) && near(a / kBlock, b / kBlock);
}

double PeakToCorrelationEnergy(Map const& map, size_t peak) {
    double energy = 0;
    int count = 0;
    for (size_t i = 0; i < kPlaces; ++i) {
        if (AreNeighbours(i, peak)) continue;
        energy += map[i] * map[i];
        ++count;
    }
    // By chance alone a correlation has the energy 1.
    return map[peak] * map[peak] / std::max(energy / count, 1.0);
}

}  // namespace

void tcvJpegDimplesDetection(cv::Mat const& image, PCEoutput& result) {
    result = PCEoutput();
    if (image.dims != 2 || image.depth() != CV_8U || image.channels() < 3 || image.channels() > 4) return;
    if (image.cols < kMinSide || image.rows < kMinSide) return;
    if (static_cast<int64_t>(image.cols / kBlock) * (image.rows / kBlock) < kMinBlocks) return;
    Sums sums;
    AddPicture(image, sums);
    const Map map = Correlate(sums);
    const auto peak =
        std::max_element(map.begin(), map.end(), [](double a, double b) { return std::abs(a) < std::abs(b); });
    const auto place = static_cast<size_t>(peak - map.begin());
    result.strength = PeakToCorrelationEnergy(map, place);
    if (result.strength <= 0) return;
    result.xOffset = static_cast<int>(place % kBlock);
    result.yOffset = static_cast<int>(place / kBlock);
}
