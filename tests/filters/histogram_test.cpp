// SPDX-License-Identifier: Apache-2.0
#include "filters/histogram.h"

#include "tests/filters/filterengine.h"
#include "tolbase/progress.h"
#include "tolimage/parallel.h"

namespace {

class Histogram : public support::FilterEngine {
protected:
    Histogram() : filter(Add<OrvFilterHistogram>()) {}
    OrvPlotData Show(cv::Mat const& picture, int channel) {
        Load(Save("a.png", Image::FromMat(picture)));
        GoWith(filter, {channel});
        return filter->GetPlotDataCopy(Evidence);
    }
    wxString Told(size_t index) { return filter->GetParametersOutput()[index].GetValue<wxString>(); }
    OrvFilterHistogram* filter;
};

// 96 pixels of grey 100, three of black, one of white.
cv::Mat MostlyGrey() {
    cv::Mat picture(10, 10, CV_8UC3, cv::Scalar::all(100));
    for (int x = 0; x < 3; ++x) picture.at<cv::Vec3b>(0, x) = {0, 0, 0};
    picture.at<cv::Vec3b>(9, 9) = {255, 255, 255};
    return picture;
}

std::vector<float> Counts(std::initializer_list<std::pair<size_t, float>> entries) {
    std::vector<float> counts(256, 0.0F);
    for (auto const& [level, count] : entries) counts[level] = count;
    return counts;
}

}  // namespace

// Luma: 0.299 * 200 + 0.587 * 100 + 0.114 * 50 = 124.2.
TEST(HistogramCounts, EachChannel_IsCounted) {
    auto const series = CalculateHistogram(cv::Mat(30, 40, CV_8UC3, cv::Scalar(50, 100, 200)));
    ASSERT_EQ(4U, series.size());
    EXPECT_EQ(Counts({{124, 1200}}), series[0]);
    EXPECT_EQ(Counts({{50, 1200}}), series[1]);
    EXPECT_EQ(Counts({{100, 1200}}), series[2]);
    EXPECT_EQ(Counts({{200, 1200}}), series[3]);
}

TEST(HistogramCounts, RowsOfSeveralParts_AreAllCounted) {
    for (int const threads : {1, 4}) {
        SetParallelThreads(threads);
        EXPECT_EQ(Counts({{7, 20000}}), CalculateHistogram(cv::Mat(20000, 1, CV_8UC3, cv::Scalar::all(7)))[0]);
    }
    SetParallelThreads(0);
}

TEST(HistogramCounts, Abort_GivesNothing) {
    tcvAbortProgress();
    EXPECT_TRUE(CalculateHistogram(MostlyGrey()).empty());
    tcvClearAborted();
}

TEST(HistogramCounts, Facts_AreReadFromTheCounts) {
    HistogramFacts const facts = ReadHistogram(Counts({{0, 1}, {3, 2}, {5, 3}, {255, 4}}));
    EXPECT_DOUBLE_EQ(0.1, facts.darkShare);
    EXPECT_DOUBLE_EQ(0.4, facts.brightShare);
    EXPECT_EQ(252, facts.emptyLevels);
    EXPECT_EQ(1, ReadHistogram(Counts({{10, 1}, {12, 1}})).emptyLevels);
    EXPECT_EQ(0, ReadHistogram(Counts({{10, 1}})).emptyLevels);
    EXPECT_EQ(0, ReadHistogram(Counts({})).emptyLevels);
}

TEST_F(Histogram, New_OffersFourChannels) {
    EXPECT_EQ("Histogram", filter->GetName());
    EXPECT_EQ(4U, filter->GetConfigurationsSize());
    EXPECT_EQ((VecString{"Luminance", "Blue", "Green", "Red"}), filter->GetParametersInput()[0].Strings());
}

TEST_F(Histogram, Plot_HasTheChosenChannelAndItsRange) {
    OrvPlotData const data = Show(cv::Mat(30, 40, CV_8UC3, cv::Scalar(50, 100, 200)), 3);
    EXPECT_EQ(3, data.coi);
    EXPECT_EQ(4, data.dim);
    EXPECT_EQ(256U, data.x.size());
    EXPECT_EQ(255.0, data.xRange.maximum);
    EXPECT_EQ(1200.0, data.yRange.maximum);
    EXPECT_EQ(1200.0F, data.y[3][200]);
    EXPECT_TRUE(data.verticalMarkers.empty());
}

// 3 % are black; the 1 % of white is not more than one.
TEST_F(Histogram, ClippedEnd_IsMarkedAndTold) {
    OrvPlotData const data = Show(MostlyGrey(), 0);
    ASSERT_EQ(1U, data.verticalMarkers.size());
    EXPECT_EQ((std::vector<float>{0.0F}), data.verticalMarkers[0]);
    EXPECT_EQ("3.00 %", Told(0));
    EXPECT_EQ("1.00 %", Told(1));
    EXPECT_EQ("253", Told(2));
}

TEST_F(Histogram, MarkersAndFacts_ComeBackFromTheCache) {
    Show(MostlyGrey(), 0);
    Show(cv::Mat(5, 5, CV_8UC3, cv::Scalar::all(9)), 0);
    EXPECT_EQ("0.00 %", Told(0));
    OrvPlotData const data = Show(MostlyGrey(), 0);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    EXPECT_EQ(1U, data.verticalMarkers.size());
    EXPECT_EQ("3.00 %", Told(0));
}

TEST_F(Histogram, ValuesOutOfRange_AreNotTaken) {
    Load(Jpeg("a.jpg"));
    GoWith(filter, {4});
    EXPECT_EQ(0, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_TRUE(IsDone());
}
