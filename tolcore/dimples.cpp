// SPDX-License-Identifier: Apache-2.0
// Each pixel's mixed second difference shows single pixels that stand out; edges along the axes, slopes and the steps
// that blocking leaves on them cancel. Divided by its own root mean square around the pixel it weighs flat and busy
// parts alike. Its mean at each of the 64 places of a block makes a map, in units of the means' standard error.
//
// Rounding down moves every coefficient by half a step on average: the picture gets the pattern that the inverse
// transform makes of the quantisation table, which is the dimple and what surrounds it. The map is correlated with that
// pattern at each of the 64 offsets. The steps of the encoder are not known, so a few shapes are tried.
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

// Rows beside a strip that its pixels' neighbourhoods reach into.
constexpr int kHalo = kBlock;

// The sum of the squares of the difference's nine weights.
constexpr double kDifferenceEnergy = 36.0;

// Of the difference of samples that are rounded to whole grey levels. It keeps what is flat from being blown up.
constexpr double kRoundingEnergy = kDifferenceEnergy / 12.0;

// Keeps a made-up picture without any noise finite.
constexpr double kLeastVariance = 0.01;

// Chosen so that 13.0 stands for a peak of twice that energy, past what chance and nearest rounding reach.
constexpr double kScale = 0.5;

using Map = std::array<double, kPlaces>;

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

// Takes the mean of each line away.
void RemoveLines(Map& map, size_t lineStep, size_t cellStep) {
    for (size_t line = 0; line < kBlock; ++line) {
        double mean = 0;
        for (size_t i = 0; i < kBlock; ++i) mean += map[line * lineStep + i * cellStep] / kBlock;
        for (size_t i = 0; i < kBlock; ++i) map[line * lineStep + i * cellStep] -= mean;
    }
}

// Blocking that goes along whole rows and columns of the blocks is no dimple.
void RemoveRowsAndColumns(Map& map) {
    RemoveLines(map, kBlock, 1);
    RemoveLines(map, 1, kBlock);
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

// What half a step of each coefficient leaves in a block. `steepness` tells how much coarser the steps get towards high
// frequencies: 0 for equal steps, 1 for about those of ITU-T T.81 Annex K.
Map MakeBlockPattern(double steepness) {
    const double pi = std::acos(-1.0);
    Map pattern{};
    for (size_t place = 0; place < kPlaces; ++place) {
        for (size_t frequency = 0; frequency < kPlaces; ++frequency) {
            const auto u = static_cast<double>(frequency % kBlock);
            const auto v = static_cast<double>(frequency / kBlock);
            const auto x = static_cast<double>(place % kBlock);
            const auto y = static_cast<double>(place / kBlock);
            const double scale = (u > 0 ? 1.0 : std::sqrt(0.5)) * (v > 0 ? 1.0 : std::sqrt(0.5));
            const double step = 1 + steepness * (u + v) / 2;
            pattern[place] += scale * step * std::cos((2 * x + 1) * u * pi / 16) * std::cos((2 * y + 1) * v * pi / 16);
        }
    }
    return pattern;
}

double At(Map const& map, size_t x, size_t y) {
    return map[(y % kBlock) * kBlock + x % kBlock];
}

// The sum of the nine values around a place (left, itself, right, on each of three rows) with these weights.
double WeightedSum(Map const& map, size_t x, size_t y, std::array<double, 3> const& weights) {
    double sum = 0;
    for (size_t j = 0; j < 3; ++j) {
        for (size_t i = 0; i < 3; ++i) {
            sum += weights[i] * weights[j] * At(map, x + kBlock - 1 + i, y + kBlock - 1 + j);
        }
    }
    return sum;
}

Map MixedDifference(Map const& map) {
    Map result{};
    for (size_t i = 0; i < kPlaces; ++i) result[i] = WeightedSum(map, i % kBlock, i / kBlock, {1, -2, 1});
    return result;
}

double Energy(Map const& map) {
    double energy = 0;
    for (const double value : map) energy += value * value;
    return energy;
}

// A pattern as the map shows it, of length 1.
struct Template {
    explicit Template(Map const& pattern) : map(MixedDifference(pattern)) {
        RemoveRowsAndColumns(map);
        const double length = std::sqrt(Energy(map));
        for (double& value : map) value /= length;
        // The difference is its own mirror image, so it carries over to the other side of the correlation.
        chanceEnergy = Energy(MixedDifference(map)) / kDifferenceEnergy;
    }
    Map map;
    // Of its correlation with the map of a picture that is nothing but white noise.
    double chanceEnergy;
};

// The last one is a pixel that stands alone.
std::array<Template, 4> const& Templates() {
    static const std::array<Template, 4> templates = [] {
        Map single{};
        single[0] = 1;
        return std::array<Template, 4>{Template(MakeBlockPattern(0)), Template(MakeBlockPattern(0.3)),
                                       Template(MakeBlockPattern(1)), Template(single)};
    }();
    return templates;
}

double Correlation(Map const& map, Map const& pattern, size_t offset) {
    double sum = 0;
    for (size_t y = 0; y < kBlock; ++y) {
        for (size_t x = 0; x < kBlock; ++x) {
            sum += pattern[y * kBlock + x] * At(map, x + offset % kBlock, y + offset / kBlock);
        }
    }
    return sum;
}

struct Peak {
    size_t pattern = 0;
    size_t offset = 0;
    double value = 0;
};

Peak FindPeak(Map const& map) {
    Peak peak;
    for (size_t pattern = 0; pattern < Templates().size(); ++pattern) {
        for (size_t offset = 0; offset < kPlaces; ++offset) {
            const double value = Correlation(map, Templates()[pattern].map, offset);
            if (std::abs(value) > std::abs(peak.value)) peak = {pattern, offset, value};
        }
    }
    return peak;
}

// The peak's own pattern correlates with itself at other offsets too, so it is taken out before the energy there is
// measured.
double PeakToCorrelationEnergy(Map map, Peak const& peak) {
    Template const& shape = Templates()[peak.pattern];
    Map const& pattern = shape.map;
    for (size_t i = 0; i < kPlaces; ++i) {
        const size_t x = i % kBlock + kBlock - peak.offset % kBlock;
        const size_t y = i / kBlock + kBlock - peak.offset / kBlock;
        map[i] -= peak.value * At(pattern, x, y);
    }
    double energy = 0;
    for (size_t offset = 0; offset < kPlaces; ++offset) {
        const double value = Correlation(map, pattern, offset);
        energy += value * value / (kPlaces - 1);
    }
    return kScale * peak.value * peak.value / std::max(energy, shape.chanceEnergy);
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
    const Peak peak = FindPeak(map);
    result.strength = PeakToCorrelationEnergy(map, peak);
    if (result.strength <= 0) return;
    result.xOffset = static_cast<int>(peak.offset % kBlock);
    result.yOffset = static_cast<int>(peak.offset / kBlock);
}
