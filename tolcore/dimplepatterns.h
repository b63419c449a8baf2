// SPDX-License-Identifier: Apache-2.0
// What roundings and other habits of encoders leave at the 64 places of a block, and how well they explain what was
// measured there.
//
// Threads: functions without state; any thread.
#pragma once
#include <array>
#include <cstddef>

constexpr int kDimpleBlock = 8;
constexpr int kDimplePlaces = kDimpleBlock * kDimpleBlock;

// A number for each place of a block, row by row.
using DimpleMap = std::array<double, kDimplePlaces>;

// The explanation of a map that leaves the least unexplained.
struct DimpleFit {
    std::size_t offset = 0;  // place of the block's first pixel
    double peak = 0;         // correlation of the dimple's pattern with the map
    double energy = 0;       // mean square of its correlation with what no pattern explains, over the 64 offsets
};

// Takes the mean of every row and every column away: blocking that goes along whole rows and columns is no dimple.
void RemoveRowsAndColumns(DimpleMap& map);

// Each value's mixed second difference, the weights (1, -2, 1) in both directions, on a grid that goes on at its ends.
DimpleMap MixedDifference(DimpleMap const& map);

// The sum of the squares of that difference's nine weights.
constexpr double kMixedDifferenceEnergy = 36.0;

// `map` holds mixed differences without rows and columns, in units of their standard error.
DimpleFit FitDimples(DimpleMap const& map);
