// SPDX-License-Identifier: Apache-2.0
#include "tolcore/dimplepatterns.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

// As the measurement of a picture gives it: the pattern and chance, seen as mixed differences.
DimpleMap Measured(DimpleMap pattern, double noise) {
    std::mt19937 random(11);
    std::normal_distribution<double> chance(0, noise);
    for (double& value : pattern) value += chance(random);
    DimpleMap map = MixedDifference(pattern);
    RemoveRowsAndColumns(map);
    return map;
}

// The same pattern with its block beginning at another place.
DimpleMap Moved(DimpleMap const& pattern, size_t dx, size_t dy) {
    DimpleMap moved{};
    for (size_t i = 0; i < pattern.size(); ++i) moved[(i / 8 + dy) % 8 * 8 + (i % 8 + dx) % 8] = pattern[i];
    return moved;
}

DimpleMap Sawtooth(double height) {
    DimpleMap pattern{};
    for (size_t i = 0; i < pattern.size(); ++i) {
        pattern[i] = height * (static_cast<double>(i % 8) - 3.5) * (static_cast<double>(i / 8) - 3.5);
    }
    return pattern;
}

DimpleMap SinglePixel(double height) {
    DimpleMap pattern{};
    pattern[0] = height;
    return pattern;
}

double Ratio(DimpleFit const& fit) {
    return fit.peak * fit.peak / fit.energy;
}

}  // namespace

TEST(DimplePatterns, MixedDifference_OfASinglePixelGoesOnAtTheEnds) {
    const DimpleMap map = MixedDifference(SinglePixel(1));
    EXPECT_EQ(4, map[0]);
    EXPECT_EQ(-2, map[1]);
    EXPECT_EQ(-2, map[7]);
    EXPECT_EQ(-2, map[8]);
    EXPECT_EQ(-2, map[56]);
    EXPECT_EQ(1, map[9]);
    EXPECT_EQ(1, map[63]);
    EXPECT_EQ(0, map[2]);
}

TEST(DimplePatterns, MixedDifference_OfASawtoothStandsAtTheCornersAlone) {
    const DimpleMap map = MixedDifference(Sawtooth(1));
    for (size_t i = 0; i < map.size(); ++i) {
        const bool corner = (i % 8 == 0 || i % 8 == 7) && (i / 8 == 0 || i / 8 == 7);
        EXPECT_NEAR(corner ? 64.0 : 0.0, std::abs(map[i]), 1e-9) << i;
    }
    EXPECT_NEAR(-map[0], map[7], 1e-9);
}

TEST(DimplePatterns, RowsAndColumns_LeaveNothing) {
    DimpleMap map{};
    for (size_t i = 0; i < map.size(); ++i) map[i] = static_cast<double>(i % 8) * 3 - static_cast<double>(i / 8);
    RemoveRowsAndColumns(map);
    for (const double value : map) EXPECT_NEAR(0, value, 1e-9);
}

TEST(DimplePatterns, SinglePixel_IsFoundWhereItStands) {
    const DimpleFit fit = FitDimples(Measured(Moved(SinglePixel(-30), 6, 3), 0.3));
    EXPECT_EQ(3u * 8u + 6u, fit.offset);
    EXPECT_LT(fit.peak, 0);
    EXPECT_GT(Ratio(fit), 26);
}

TEST(DimplePatterns, HabitsThatAreNoDimple_DoNotCount) {
    for (const double height : {-0.2, 1.0, 20.0}) {
        EXPECT_LT(Ratio(FitDimples(Measured(Moved(Sawtooth(height), 2, 5), 0.3))), 26) << height;
    }
}

TEST(DimplePatterns, PixelAmongCorners_IsStillFound) {
    DimpleMap both = Sawtooth(0.5);
    both[0] -= 30;
    const DimpleFit fit = FitDimples(Measured(Moved(both, 1, 1), 0.3));
    EXPECT_EQ(9u, fit.offset);
    EXPECT_GT(Ratio(fit), 26);
}

TEST(DimplePatterns, EmptyMap_HasNoPeak) {
    const DimpleFit fit = FitDimples(DimpleMap{});
    EXPECT_EQ(0, fit.peak);
    EXPECT_GT(fit.energy, 0);
}
