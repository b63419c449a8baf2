// SPDX-License-Identifier: Apache-2.0
#include "tolcore/dimplepatterns.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr size_t kSide = kDimpleBlock;

double At(DimpleMap const& map, size_t x, size_t y) {
    return map[(y % kSide) * kSide + x % kSide];
}

double Product(DimpleMap const& a, DimpleMap const& b) {
    double sum = 0;
    for (size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

void Subtract(DimpleMap& map, double factor, DimpleMap const& pattern) {
    for (size_t i = 0; i < map.size(); ++i) map[i] -= factor * pattern[i];
}

void RemoveLines(DimpleMap& map, size_t lineStep, size_t cellStep) {
    for (size_t line = 0; line < kSide; ++line) {
        double mean = 0;
        for (size_t i = 0; i < kSide; ++i) mean += map[line * lineStep + i * cellStep] / kSide;
        for (size_t i = 0; i < kSide; ++i) map[line * lineStep + i * cellStep] -= mean;
    }
}

// As seen from a block that begins at `offset`.
DimpleMap Shift(DimpleMap const& map, size_t offset) {
    DimpleMap shifted{};
    for (size_t i = 0; i < map.size(); ++i) {
        shifted[i] = At(map, i % kSide + offset % kSide, i / kSide + offset / kSide);
    }
    return shifted;
}

// The cosine of that frequency at the place, without its scale.
double Cosine(size_t place, size_t u, size_t v) {
    const double step = std::acos(-1.0) / 16;
    const size_t row = place / kSide;
    const auto x = static_cast<double>(place % kSide);
    const auto y = static_cast<double>(row);
    return std::cos((2 * x + 1) * static_cast<double>(u) * step) *
           std::cos((2 * y + 1) * static_cast<double>(v) * step);
}

// What half a step of each coefficient leaves. `steepness` tells how much coarser the steps get towards high
// frequencies: 0 for equal steps, 1 for about those of ITU-T T.81 Annex K. Frequencies 0 are left out: what they leave
// goes along rows and columns.
DimpleMap DimplePattern(double steepness) {
    DimpleMap pattern{};
    for (size_t place = 0; place < pattern.size(); ++place) {
        for (size_t v = 1; v < kSide; ++v) {
            for (size_t u = 1; u < kSide; ++u) {
                pattern[place] += (1 + steepness * static_cast<double>(u + v) / 2) * Cosine(place, u, v);
            }
        }
    }
    return pattern;
}

DimpleMap SinglePixel() {
    DimpleMap pattern{};
    pattern[0] = 1;
    return pattern;
}

// Where light changes the same way all over a picture and the steps are too coarse to tell, the corners of the blocks
// take up what is lost: a sawtooth in both directions. The lowest frequencies hold the picture itself, and may be moved
// by what it shows. Neither tells how an encoder rounds.
std::vector<DimpleMap> CornerPatterns() {
    std::vector<DimpleMap> patterns(1);
    for (size_t place = 0; place < patterns[0].size(); ++place) {
        const size_t row = place / kSide;
        patterns[0][place] = (static_cast<double>(place % kSide) - 3.5) * (static_cast<double>(row) - 3.5);
    }
    constexpr std::array<std::array<size_t, 2>, 6> lowest = {{{1, 1}, {1, 2}, {2, 1}, {2, 2}, {1, 3}, {3, 1}}};
    for (auto const& [u, v] : lowest) {
        DimpleMap pattern{};
        for (size_t place = 0; place < pattern.size(); ++place) pattern[place] = Cosine(place, u, v);
        patterns.push_back(pattern);
    }
    return patterns;
}

// A pattern as a map of mixed differences shows it, at right angles to those of `basis` and of length 1.
DimpleMap Prepare(DimpleMap const& pattern, std::vector<DimpleMap> const& basis) {
    DimpleMap map = MixedDifference(pattern);
    RemoveRowsAndColumns(map);
    for (DimpleMap const& other : basis) Subtract(map, Product(map, other), other);
    const double length = std::sqrt(Product(map, map));
    for (double& value : map) value /= length;
    return map;
}

struct Patterns {
    Patterns() {
        for (DimpleMap const& corner : CornerPatterns()) corners.push_back(Prepare(corner, corners));
        for (const double steepness : {0.0, 0.3, 1.0}) dimples.push_back(Prepare(DimplePattern(steepness), corners));
        dimples.push_back(Prepare(SinglePixel(), corners));
    }
    std::vector<DimpleMap> corners;
    std::vector<DimpleMap> dimples;
};

Patterns const& AllPatterns() {
    static const Patterns patterns;
    return patterns;
}

// Of the pattern's correlation with the map of a picture that is nothing but white noise. The difference is its own
// mirror image, so it carries over to the other side of the correlation.
double ChanceEnergy(DimpleMap const& pattern) {
    const DimpleMap spread = MixedDifference(pattern);
    return Product(spread, spread) / kMixedDifferenceEnergy;
}

double CorrelationEnergy(DimpleMap const& map, DimpleMap const& pattern) {
    double energy = 0;
    for (size_t offset = 0; offset < map.size(); ++offset) {
        const double value = Product(Shift(map, offset), pattern);
        energy += value * value / (kDimplePlaces - 1);
    }
    return energy;
}

}  // namespace

void RemoveRowsAndColumns(DimpleMap& map) {
    RemoveLines(map, kSide, 1);
    RemoveLines(map, 1, kSide);
}

DimpleMap MixedDifference(DimpleMap const& map) {
    constexpr std::array<double, 3> weights = {1, -2, 1};
    DimpleMap result{};
    for (size_t place = 0; place < map.size(); ++place) {
        for (size_t j = 0; j < 3; ++j) {
            for (size_t i = 0; i < 3; ++i) {
                result[place] +=
                    weights[i] * weights[j] * At(map, place % kSide + kSide - 1 + i, place / kSide + kSide - 1 + j);
            }
        }
    }
    return result;
}

DimpleFit FitDimples(DimpleMap const& map) {
    DimpleFit best;
    double mostExplained = -1;
    DimpleMap const* bestPattern = &AllPatterns().dimples.front();
    DimpleMap bestRest{};
    for (size_t offset = 0; offset < map.size(); ++offset) {
        DimpleMap rest = Shift(map, offset);
        double explained = 0;
        for (DimpleMap const& corner : AllPatterns().corners) {
            const double share = Product(rest, corner);
            explained += share * share;
            Subtract(rest, share, corner);
        }
        for (DimpleMap const& dimple : AllPatterns().dimples) {
            const double share = Product(rest, dimple);
            if (explained + share * share <= mostExplained) continue;
            mostExplained = explained + share * share;
            best.offset = offset;
            best.peak = share;
            bestPattern = &dimple;
            bestRest = rest;
        }
    }
    Subtract(bestRest, best.peak, *bestPattern);
    best.energy = std::max(CorrelationEnergy(bestRest, *bestPattern), ChanceEnergy(*bestPattern));
    return best;
}
