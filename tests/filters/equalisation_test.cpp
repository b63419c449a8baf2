// SPDX-License-Identifier: Apache-2.0
#include "filters/equalisation.h"

#include "tests/filters/filterengine.h"

namespace {

class Equalisation : public support::FilterEngine {
protected:
    Equalisation() : filter(Add<OrvFilterEqualisation>()) {}
    Image Show(int method) {
        GoWith(filter, {method});
        return filter->GetOutputImageDisplayedCopy(Evidence);
    }
    OrvFilterEqualisation* filter;
};

using Values = std::vector<int>;

Values Bytes(cv::Mat const& row) {
    return Values(row.data, row.data + row.total() * row.elemSize());
}

cv::Mat const FourGreys = (cv::Mat_<uchar>(1, 4) << 10, 20, 30, 40);

}  // namespace

// The share of the pixels above the darkest tone, times 255: 0, 1/3, 2/3, 1.
TEST(EqualisedTones, FourTones_AreSpreadEvenly) {
    EXPECT_EQ((Values{0, 85, 170, 255}), Bytes(OrvCalculateEqualisation(FourGreys, OrvEqualisationLuminance)));
}

TEST(EqualisedTones, EachChannel_IsSpreadByItself) {
    cv::Mat const green(1, 4, CV_8U, cv::Scalar(50));
    cv::Mat const red = (cv::Mat_<uchar>(1, 4) << 40, 30, 20, 10);
    cv::Mat picture;
    cv::merge(std::vector<cv::Mat>{FourGreys, green, red}, picture);
    EXPECT_EQ((Values{0, 50, 255, 85, 50, 170, 170, 50, 85, 255, 50, 0}),
              Bytes(OrvCalculateEqualisation(picture, OrvEqualisationEachChannel)));
}

// Y is 112 and 152 and becomes 0 and 255; Cb - 128 is -7 and Cr - 128 is 6 in both.
TEST(EqualisedTones, Luminance_LeavesChroma) {
    cv::Mat const picture = (cv::Mat_<uchar>(1, 6) << 100, 110, 120, 140, 150, 160);
    EXPECT_EQ((Values{0, 0, 8, 243, 253, 255}),
              Bytes(OrvCalculateEqualisation(picture.reshape(3), OrvEqualisationLuminance)));
}

TEST(EqualisedTones, OneTone_Stays) {
    cv::Mat const picture(40, 40, CV_8UC3, cv::Scalar(90, 90, 90));
    EXPECT_EQ(0, cv::norm(picture, OrvCalculateEqualisation(picture, OrvEqualisationLuminance), cv::NORM_INF));
    EXPECT_EQ(0, cv::norm(picture, OrvCalculateEqualisation(picture, OrvEqualisationEachChannel), cv::NORM_INF));
}

TEST(EqualisedTones, Adaptive_RaisesFaintDetail) {
    cv::Mat picture(256, 256, CV_8UC1, cv::Scalar(20));
    picture(cv::Rect(128, 0, 128, 256)).setTo(235);
    for (int x = 0; x < 128; x += 2) picture.col(x).setTo(24);
    cv::Mat const result = OrvCalculateEqualisation(picture, OrvEqualisationAdaptive);
    cv::Rect const dark(32, 32, 64, 192);
    cv::Scalar mean, before, after;
    cv::meanStdDev(picture(dark), mean, before);
    cv::meanStdDev(result(dark), mean, after);
    EXPECT_GT(after[0], 1.2 * before[0]);
}

TEST_F(Equalisation, New_HasThreeMethodsAndLevels) {
    EXPECT_EQ("Histogram Equalisation", filter->GetName());
    EXPECT_EQ(3U, filter->GetConfigurationsSize());
    EXPECT_EQ((VecString{"Luminance", "Each Channel", "Adaptive"}), filter->GetParametersInput()[0].Strings());
    EXPECT_EQ("Highlights", filter->GetParametersPostProcessing()[0].Name());
}

TEST_F(Equalisation, GreyPicture_StaysGrey) {
    Load(Save("a.png", Image::FromMat(FourGreys)));
    Image const shown = Show(OrvEqualisationLuminance);
    cv::Mat const pixels = shown.ToColor();
    EXPECT_EQ(cv::Vec3b(170, 170, 170), pixels.at<cv::Vec3b>(0, 2));
}

TEST_F(Equalisation, ThinPictures_PassEveryMethod) {
    for (auto const& [width, height] : {std::pair{1, 1}, {1, 20000}, {20000, 1}, {31, 65}}) {
        Load(Save("a.png", support::Ramp(width, height, IPL_DEPTH_8U, 3)));
        for (int method = 0; method < 3; ++method) {
            Image const shown = Show(method);
            EXPECT_TRUE(IsDone());
            EXPECT_EQ(width, shown.Width());
            EXPECT_EQ(height, shown.Height());
        }
    }
}

TEST_F(Equalisation, ValueOutOfRangeOrOfAnotherType_IsNotTaken) {
    Load(Jpeg("a.jpg"));
    for (boost::any const& value : {boost::any(3), boost::any(-1), boost::any(1.0), boost::any(wxString("x"))}) {
        GoWith(filter, {value});
        EXPECT_EQ(0, filter->GetParametersInput()[0].GetValue<int>());
        EXPECT_TRUE(IsDone());
    }
}
