// SPDX-License-Identifier: Apache-2.0
#include "orvcore/plotdata.h"

#include <gtest/gtest.h>

#include <utility>

namespace {

void ExpectRange(double minimum, double maximum, OrvRange const& range) {
    EXPECT_EQ(minimum, range.minimum);
    EXPECT_EQ(maximum, range.maximum);
}

void ExpectCleared(OrvPlotData const& data) {
    EXPECT_TRUE(data.x.empty());
    EXPECT_TRUE(data.y.empty());
    EXPECT_TRUE(data.verticalMarkers.empty());
    EXPECT_TRUE(data.horizontalMarkers.empty());
    EXPECT_EQ(0U, data.firstIndex);
    EXPECT_EQ(0U, data.lastIndex);
    EXPECT_EQ(0U, data.pointCount);
    ExpectRange(0.0, 1.0, data.xRange);
    ExpectRange(0.0, 1.0, data.secondRange);
    ExpectRange(0.0, 1.0, data.yRange);
    EXPECT_FALSE(data.picture.IsOk());
    EXPECT_EQ(1, data.dim);
    EXPECT_EQ(0, data.coi);
}

OrvPlotData Filled() {
    OrvPlotData data;
    data.InitPlotData(-2, 3, 2, 1, true);
    data.verticalMarkers = {{1.0F}};
    data.horizontalMarkers = {{2.0F}, {3.0F}};
    data.secondRange = {4.0, 5.0};
    data.picture = wxImage(2, 2);
    return data;
}

}  // namespace

TEST(PlotData, NewObject_IsCleared) {
    ExpectCleared(OrvPlotData());
}

TEST(PlotData, Clear_ForgetsEverything) {
    OrvPlotData data = Filled();
    data.Clear();
    ExpectCleared(data);
}

TEST(PlotData, IsOk_NeedsAbscissaeAndSeries) {
    OrvPlotData data;
    EXPECT_FALSE(data.IsOk());
    data.x = {1.0F};
    EXPECT_FALSE(data.IsOk());
    data.y = {{}};
    EXPECT_TRUE(data.IsOk());
    data.x.clear();
    EXPECT_FALSE(data.IsOk());
}

TEST(PlotData, InitPlotData_FillsAbscissaeAndZeroes) {
    OrvPlotData data;
    data.InitPlotData(-2, 3, 2, 1, false);
    EXPECT_EQ((std::vector<float>{-2, -1, 0, 1, 2, 3}), data.x);
    EXPECT_EQ((std::vector<std::vector<float>>(2, std::vector<float>(6, 0.0F))), data.y);
    EXPECT_EQ(0U, data.firstIndex);
    EXPECT_EQ(5U, data.lastIndex);
    EXPECT_EQ(6U, data.pointCount);
    ExpectRange(-2.0, 3.0, data.xRange);
    ExpectRange(0.0, 0.0, data.secondRange);
    ExpectRange(0.0, 0.0, data.yRange);
    EXPECT_EQ(2, data.dim);
    EXPECT_EQ(1, data.coi);
}

TEST(PlotData, InitPlotData_ReplacesSeriesAndKeepsMarkers) {
    OrvPlotData data = Filled();
    data.InitPlotData(0, 1, 1, 0, true);
    EXPECT_EQ((std::vector<float>{0, 1}), data.x);
    EXPECT_EQ(1U, data.y.size());
    EXPECT_EQ((std::vector<std::vector<float>>{{1.0F}}), data.verticalMarkers);
    EXPECT_EQ((std::vector<std::vector<float>>{{2.0F}, {3.0F}}), data.horizontalMarkers);
}

TEST(PlotData, InitPlotData_LastBelowFirstGivesNoPoints) {
    OrvPlotData data;
    data.InitPlotData(3, 1, 1, 0, true);
    EXPECT_TRUE(data.x.empty());
    EXPECT_EQ(0U, data.lastIndex);
    EXPECT_EQ(0U, data.pointCount);
}

TEST(PlotData, CopyAndMove_TakeEverything) {
    OrvPlotData const copy(Filled());
    OrvPlotData source = copy;
    OrvPlotData moved;
    moved = std::move(source);
    EXPECT_EQ(copy.x, moved.x);
    EXPECT_EQ(copy.y, moved.y);
    EXPECT_EQ(copy.horizontalMarkers, moved.horizontalMarkers);
    ExpectRange(4.0, 5.0, moved.secondRange);
    EXPECT_TRUE(moved.picture.IsOk());
    EXPECT_EQ(5U, moved.lastIndex);
    EXPECT_EQ(2, moved.dim);
    EXPECT_EQ(1, moved.coi);
}
