// SPDX-License-Identifier: Apache-2.0
#include "filters/dcthistogram.h"

#include <cmath>

#include "tests/filters/filterengine.h"
#include "tests/support/coefficientjpeg.h"

namespace {

using Counts = std::vector<float>;

class DctHistogram : public support::FilterEngine {
protected:
    DctHistogram() : filter(Add<OrvFilterDctHistogram>()) {}
    wxString Told(size_t index) { return filter->GetParametersOutput()[index].GetValue<wxString>(); }
    OrvFilterDctHistogram* filter;
};

// Symmetric counts of the values -reach to reach.
Counts BothSigns(int reach, std::function<double(int)> const& count) {
    Counts counts;
    for (int value = -reach; value <= reach; ++value) counts.push_back(static_cast<float>(count(std::abs(value))));
    return counts;
}

// Block by block a value from -20 to 20, the small ones more often.
int FirstValue(int block) {
    int const place = block * 7919 % 4001;  // 0 to 4000, each as often
    double const side = (place - 2000) / 2000.0;
    return static_cast<int>(std::lround(20.0 * side * std::abs(side)));
}

// A file whose coefficient 1 was quantised in steps of 7 and then in steps of 3.
std::string TwiceCompressed() {
    return support::CoefficientJpeg(64, 64, 3, [](int block, int place) {
        return place == 1 ? static_cast<int>(std::lround(FirstValue(block) * 7 / 3.0)) : 0;
    });
}

std::string OnceCompressed() {
    return support::CoefficientJpeg(64, 64, 3, [](int block, int place) {
        double const side = (block * 7919 % 4001 - 2000) / 2000.0;
        return place == 1 ? static_cast<int>(std::lround(46.0 * side * std::abs(side))) : 0;
    });
}

}  // namespace

TEST(CoefficientCounts, Values_AreCountedWithinTheRange) {
    EXPECT_EQ((Counts{1, 0, 3, 2, 0}), CountCoefficients({-2, 0, 0, 0, 1, 1, 3, -3, 1000}, 2));
    EXPECT_EQ((Counts{0, 0, 0}), CountCoefficients({}, 1));
}

TEST(CoefficientPeriods, Comb_HasItsPeriod) {
    for (int const period : {2, 3, 5, 8}) {
        auto const found =
            FindCoefficientPeriod(BothSigns(64, [&](int value) { return value % period == 0 ? 1000.0 : 0.0; }));
        EXPECT_NEAR(period, found.period, 0.1);
        EXPECT_GT(found.strength, 0.6);
    }
}

TEST(CoefficientPeriods, SmoothHill_HasNone) {
    auto const hill = FindCoefficientPeriod(BothSigns(50, [](int value) { return 1e5 * std::exp(-value / 9.0); }));
    EXPECT_LT(hill.strength, 0.05);
    EXPECT_LT(FindCoefficientPeriod(BothSigns(50, [](int) { return 500.0; })).strength, 0.001);
}

TEST(CoefficientPeriods, TooFewValues_TellNothing) {
    EXPECT_EQ(0.0, FindCoefficientPeriod(BothSigns(50, [](int value) { return value == 4 ? 9.0 : 0.0; })).strength);
    EXPECT_EQ(0.0, FindCoefficientPeriod(BothSigns(8, [](int value) { return value % 2 * 1e4; })).strength);
    EXPECT_EQ(0.0, FindCoefficientPeriod({}).period);
    EXPECT_EQ(0.0, FindCoefficientPeriod({1}).period);
}

TEST_F(DctHistogram, New_CountsTheLowestFrequencies) {
    EXPECT_EQ("DCT Histogram", filter->GetName());
    EXPECT_TRUE(filter->IsOnlyForJpeg());
    std::vector<int> coefficients;
    for (auto const& each : filter->GetConfigurations()) coefficients.push_back(each[1].GetValue<int>());
    EXPECT_EQ((std::vector<int>{1, 2, 4}), coefficients);
}

// The values -2 to 2, each in four of twenty blocks.
TEST_F(DctHistogram, KnownCoefficients_AreCounted) {
    Load(Bytes("a.jpg", support::CoefficientJpeg(
                            5, 4, 9, [](int block, int place) { return place == 1 ? block % 5 - 2 : place == 0; })));
    GoWith(filter, {0, 1, 8, 1});
    OrvPlotData const data = filter->GetPlotDataCopy(Evidence);
    EXPECT_EQ((Counts{0, 0, 0, 0, 0, 0, 4, 4, 4, 4, 4, 0, 0, 0, 0, 0, 0}), data.y[0]);
    EXPECT_EQ(-8.0F, data.x[0]);
    GoWith(filter, {0, 1, 8, 0});
    EXPECT_EQ((Counts{0, 0, 0, 0, 0, 0, 4, 4, 0, 4, 4, 0, 0, 0, 0, 0, 0}), filter->GetPlotDataCopy(Evidence).y[0]);
}

TEST_F(DctHistogram, ZerosOfTheMean_AreCountedInAnyCase) {
    Load(Bytes("a.jpg", support::CoefficientJpeg(5, 4, 9, [](int, int) { return 0; })));
    GoWith(filter, {0, 0, 8, 0});
    EXPECT_EQ(20.0F, filter->GetPlotDataCopy(Evidence).y[0][8]);
}

// Three of seven values occur: round(7n/3) is 0, 2, 5, 7, 9, 12, 14, ...
TEST_F(DctHistogram, TwoCompressions_RepeatAndWarnFreshAndFromTheCache) {
    wxString const path = Bytes("a.jpg", TwiceCompressed());
    for (bool const cached : {false, true}) {
        Load(path);
        Go(filter);
        EXPECT_EQ(cached, filter->ConfiguredFromCache(Evidence));
        EXPECT_EQ("Warning", filter->GetStatusString(Evidence));
        EXPECT_EQ("2.3", Told(1));
        Load(Bytes("b.jpg", OnceCompressed()));
        Go(filter);
        EXPECT_EQ("Ok", filter->GetStatusString(Evidence)) << Told(0);
    }
}

TEST_F(DctHistogram, OtherFormats_AreUnsupported) {
    Load(Save("a.png", support::Ramp(70, 50, IPL_DEPTH_8U, 3)));
    Go(filter);
    EXPECT_EQ("Unsupported", filter->GetStatusString(Evidence));
    EXPECT_TRUE(IsDone());
}

TEST_F(DctHistogram, ComponentThatIsNotThere_FailsWithAMessage) {
    Load(Bytes("a.jpg", OnceCompressed()));
    GoWith(filter, {1, 1, 50, 0});
    EXPECT_FALSE(IsDone());
    EXPECT_EQ("The picture has no such colour component.", filter->GetErrorMessage());
}

TEST_F(DctHistogram, TruncatedFile_FailsWithAMessage) {
    std::string const bytes = support::EncodeJpeg(200, 150);
    Load(Bytes("a.jpg", bytes.substr(0, bytes.size() / 2)));
    Go(filter);
    EXPECT_FALSE(IsDone());
    EXPECT_TRUE(filter->GetErrorMessage().StartsWith("Truncated: ")) << filter->GetErrorMessage();
}
