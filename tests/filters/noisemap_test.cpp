// SPDX-License-Identifier: Apache-2.0
#include "filters/noisemap.h"

#include <opencv2/imgproc.hpp>

#include "tests/filters/filterengine.h"
#include "tolbase/progress.h"
#include "tolimage/parallel.h"

namespace {

class NoiseMap : public support::FilterEngine {
protected:
    NoiseMap() : filter(Add<OrvFilterNoiseMap>()) {}
    // The plain map, without colours.
    Image Show(wxString const& path, std::initializer_list<boost::any> values) {
        Load(path);
        VecParameter input = filter->GetParametersInput();
        std::size_t i = 0;
        for (boost::any const& value : values) input[i++].Set(value);
        VecParameter post = filter->GetParametersPostProcessing();
        post[0].Set(boost::any(0));
        Run([&] { iface->Configure(filter, -1, input, post, false); });
        return filter->GetOutputImageDisplayedCopy(Evidence);
    }
    OrvFilterNoiseMap* filter;
};

// Grey 128 with white Gaussian noise: of one deviation in the left half, of another in the right one.
cv::Mat TwoNoises(int width, int height, double left, double right) {
    cv::Mat noise(height, width, CV_32F);
    cv::RNG random(11);
    random.fill(noise, cv::RNG::NORMAL, 0.0, 1.0);
    noise.colRange(0, width / 2) *= left;
    noise.colRange(width / 2, width) *= right;
    cv::Mat grey;
    noise.convertTo(grey, CV_8U, 1.0, 128.0);
    return grey;
}

cv::Mat Checkerboard(int width, int height, int dark, int bright) {
    cv::Mat grey(height, width, CV_8U);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) grey.at<uchar>(y, x) = static_cast<uchar>((x + y) % 2 == 0 ? dark : bright);
    }
    return grey;
}

class NoiseLevels : public ::testing::TestWithParam<NoiseMethod> {
protected:
    ~NoiseLevels() override {
        SetParallelThreads(0);
        tcvClearAborted();
    }
};

}  // namespace

INSTANTIATE_TEST_SUITE_P(Methods, NoiseLevels, ::testing::Values(NoiseMethodWavelet, NoiseMethodMedian));

TEST_P(NoiseLevels, KnownNoise_IsFound) {
    cv::Mat const levels = CalculateNoiseLevels(TwoNoises(1024, 512, 4.0, 12.0), GetParam(), 32);
    ASSERT_EQ(cv::Size(32, 16), levels.size());
    double const left = cv::mean(levels.colRange(0, 16))[0];
    double const right = cv::mean(levels.colRange(16, 32))[0];
    EXPECT_NEAR(4.0, left, 0.15);
    EXPECT_NEAR(12.0, right, 0.4);
    EXPECT_NEAR(3.0, right / left, 0.1);
}

TEST_P(NoiseLevels, FlatPicture_HasNone) {
    EXPECT_EQ(0, cv::countNonZero(CalculateNoiseLevels(cv::Mat(50, 70, CV_8U, cv::Scalar(77)), GetParam(), 16)));
}

TEST_P(NoiseLevels, BlocksAtTheBorder_MayBeSmaller) {
    EXPECT_EQ(cv::Size(5, 4), CalculateNoiseLevels(TwoNoises(70, 50, 4, 4), GetParam(), 16).size());
    EXPECT_EQ(cv::Size(1, 1), CalculateNoiseLevels(cv::Mat(1, 1, CV_8U, cv::Scalar(9)), GetParam(), 128).size());
    EXPECT_EQ(cv::Size(1, 1250), CalculateNoiseLevels(cv::Mat(20000, 1, CV_8U, cv::Scalar(9)), GetParam(), 16).size());
}

TEST_P(NoiseLevels, ThreadCount_ChangesNothing) {
    cv::Mat const grey = TwoNoises(300, 500, 3, 7);
    SetParallelThreads(1);
    cv::Mat const alone = CalculateNoiseLevels(grey, GetParam(), 16);
    SetParallelThreads(5);
    EXPECT_EQ(0.0, cv::norm(alone, CalculateNoiseLevels(grey, GetParam(), 16), cv::NORM_INF));
}

TEST_P(NoiseLevels, Abort_GivesNothing) {
    tcvAbortProgress();
    EXPECT_TRUE(CalculateNoiseLevels(cv::Mat(50, 70, CV_8U, cv::Scalar(77)), GetParam(), 16).empty());
}

// Every detail is 100 - 110 - 110 + 100 = -20, half of it in the transform: 10 / 0.6745.
TEST(NoiseLevelsByHand, Checkerboard_IsItsDetail) {
    cv::Mat const levels = CalculateNoiseLevels(Checkerboard(16, 16, 100, 110), NoiseMethodWavelet, 8);
    ASSERT_EQ(cv::Size(2, 2), levels.size());
    EXPECT_NEAR(14.826, levels.at<float>(1, 1), 0.001);
}

// The details of the four squares are 0, 2, 4 and 6: half of the values end where that of 2 does, at 2.5.
TEST(NoiseLevelsByHand, FourDetails_GiveTheMedianOfGroupedData) {
    unsigned char pixels[] = {50, 50, 52, 50, 50, 50, 50, 50, 54, 50, 56, 50, 50, 50, 50, 50};
    cv::Mat const levels = CalculateNoiseLevels(cv::Mat(4, 4, CV_8U, pixels), NoiseMethodWavelet, 4);
    EXPECT_NEAR(2.5 / 2 / 0.6745, levels.at<float>(0, 0), 0.0001);
}

TEST(NoiseLevelsByHand, OddBlockOfTheWavelet_CountsAsTheNextSmallerEvenOne) {
    EXPECT_EQ(cv::Size(5, 5), CalculateNoiseLevels(cv::Mat(20, 20, CV_8U), NoiseMethodWavelet, 5).size());
    EXPECT_EQ(cv::Size(4, 4), CalculateNoiseLevels(cv::Mat(20, 20, CV_8U), NoiseMethodMedian, 5).size());
}

TEST_F(NoiseMap, New_OffersBothMethods) {
    EXPECT_EQ("Noise Map", filter->GetName());
    VecParameter const input = filter->GetParametersInput();
    ASSERT_EQ(3U, input.size());
    EXPECT_EQ("Method", input[0].Name());
    EXPECT_EQ("Block Size", input[1].Name());
    EXPECT_EQ("Strength", input[2].Name());
    ASSERT_EQ(2U, filter->GetConfigurationsSize());
    EXPECT_EQ(NoiseMethodWavelet, filter->GetConfigurationParams(0)[0].GetValue<int>());
    EXPECT_EQ(NoiseMethodMedian, filter->GetConfigurationParams(1)[0].GetValue<int>());
}

// 14.826 times 10, rounded.
TEST_F(NoiseMap, Strength_IsTheMapsScale) {
    wxString const path = Save("a.png", Image::FromMat(Checkerboard(40, 24, 100, 110)));
    Image const map = Show(path, {NoiseMethodWavelet, 8, 10});
    ASSERT_EQ(40, map.Width());
    ASSERT_EQ(24, map.Height());
    EXPECT_EQ(0.0, cv::norm(cv::Mat(map), cv::Mat(24, 40, CV_8UC3, cv::Scalar::all(148)), cv::NORM_INF));
}

TEST_F(NoiseMap, Overlay_FitsThePicture) {
    Load(Jpeg("a.jpg", 61, 47));
    VecParameter post = filter->GetParametersPostProcessing();
    for (int type = 0; type < 4; ++type) {
        post[0].Set(boost::any(type));
        post[1].Set(boost::any(type % 2));
        Run([&] { iface->Configure(filter, -1, filter->GetParametersInput(), post, false); });
        EXPECT_EQ("Ok", filter->GetStatusString(Evidence)) << filter->GetErrorMessage();
        EXPECT_EQ(61, filter->GetOutputImageDisplayedCopy(Evidence).Width());
    }
}

TEST_F(NoiseMap, ValuesOutOfRange_AreNotTaken) {
    Load(Jpeg("a.jpg"));
    GoWith(filter, {2, 3, 0});
    EXPECT_EQ(0, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(16, filter->GetParametersInput()[1].GetValue<int>());
    EXPECT_EQ(50, filter->GetParametersInput()[2].GetValue<int>());
    EXPECT_TRUE(IsDone());
}
