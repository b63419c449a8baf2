// SPDX-License-Identifier: Apache-2.0
#include "filters/channels.h"

#include "tests/filters/filterengine.h"
#include "tolbase/exception.h"

namespace {

class Channels : public support::FilterEngine {
protected:
    Channels() : filter(Add<OrvFilterChannels>()) {}
    Image Show(int space, int component) {
        GoWith(filter, {space, component});
        return filter->GetOutputImageDisplayedCopy(Evidence);
    }
    OrvFilterChannels* filter;
};

// The three components of one colour (red, green, blue).
std::vector<int> Components(OrvChannelSpace space, int red, int green, int blue) {
    cv::Mat const picture(1, 1, CV_8UC3, cv::Scalar(blue, green, red));
    std::vector<int> values;
    for (int i = 0; i < 3; ++i) values.push_back(OrvCalculateChannel(picture, space, i).at<uchar>(0, 0));
    return values;
}

using Values = std::vector<int>;

}  // namespace

TEST(ChannelValues, Rgb_StandsInItsOrder) {
    EXPECT_EQ((Values{10, 20, 30}), Components(OrvChannelSpaceRgb, 10, 20, 30));
}

// Y = 0.299 R + 0.587 G + 0.114 B, Cb = 128 + (B - Y) / 1.772, Cr = 128 + (R - Y) / 1.402, limited to 255.
TEST(ChannelValues, YCbCr_IsThatOfJpeg) {
    EXPECT_EQ((Values{100, 128, 128}), Components(OrvChannelSpaceYCbCr, 100, 100, 100));
    EXPECT_EQ((Values{76, 85, 255}), Components(OrvChannelSpaceYCbCr, 255, 0, 0));
    EXPECT_EQ((Values{150, 44, 21}), Components(OrvChannelSpaceYCbCr, 0, 255, 0));
    EXPECT_EQ((Values{29, 255, 107}), Components(OrvChannelSpaceYCbCr, 0, 0, 255));
}

TEST(ChannelValues, Hsv_HasHueInPartsOf256) {
    EXPECT_EQ((Values{0, 0, 100}), Components(OrvChannelSpaceHsv, 100, 100, 100));
    EXPECT_EQ((Values{0, 255, 255}), Components(OrvChannelSpaceHsv, 255, 0, 0));
    EXPECT_EQ((Values{85, 255, 255}), Components(OrvChannelSpaceHsv, 0, 255, 0));
    EXPECT_EQ((Values{171, 255, 128}), Components(OrvChannelSpaceHsv, 0, 0, 128));
}

// sRGB's primaries: L* 53.24, a* 80.09, b* 67.20 for red; 87.73, -86.18, 83.18 for green.
TEST(ChannelValues, Lab_IsScaledToBytes) {
    EXPECT_EQ((Values{255, 128, 128}), Components(OrvChannelSpaceLab, 255, 255, 255));
    EXPECT_EQ((Values{136, 208, 195}), Components(OrvChannelSpaceLab, 255, 0, 0));
    EXPECT_EQ((Values{224, 42, 211}), Components(OrvChannelSpaceLab, 0, 255, 0));
}

TEST(ChannelValues, NumbersOutOfRange_AreTakenAsTheNearest) {
    cv::Mat const picture(1, 1, CV_8UC3, cv::Scalar(30, 20, 10));
    EXPECT_EQ(10, OrvCalculateChannel(picture, OrvChannelSpaceRgb, -3).at<uchar>(0, 0));
    EXPECT_EQ(30, OrvCalculateChannel(picture, OrvChannelSpaceRgb, 99).at<uchar>(0, 0));
    EXPECT_EQ(10, OrvCalculateChannel(picture, static_cast<OrvChannelSpace>(-1), 0).at<uchar>(0, 0));
}

TEST_F(Channels, List_HasTwelveAndEnablesYCbCr) {
    EXPECT_EQ(12U, filter->GetConfigurationsSize());
    auto const enabled = filter->GetEnabledConfigurations();
    ASSERT_EQ(3U, enabled.size());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(OrvChannelSpaceYCbCr, enabled[static_cast<size_t>(i)][0].GetValue<int>());
        EXPECT_EQ(i, enabled[static_cast<size_t>(i)][1].GetValue<int>());
    }
}

TEST_F(Channels, Component_IsShownAsAGreyPicture) {
    cv::Mat const picture(5, 7, CV_8UC3, cv::Scalar(30, 20, 10));
    Load(Save("a.png", Image::FromMat(picture)));
    Image const shown = Show(OrvChannelSpaceRgb, 2);
    EXPECT_EQ(7, shown.Width());
    EXPECT_EQ(5, shown.Height());
    EXPECT_EQ(1, shown.Channels());
    EXPECT_EQ(30, shown.Data()[0]);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(Channels, NameOfTheComponent_IsToldFreshAndFromTheCache) {
    Load(Jpeg("a.jpg"));
    Show(OrvChannelSpaceYCbCr, 1);
    EXPECT_FALSE(filter->ConfiguredFromCache(Evidence));
    EXPECT_EQ("Cb (blue difference, 128 is neutral)", filter->GetParametersOutput()[0].GetValue<wxString>());
    Show(OrvChannelSpaceHsv, 0);
    EXPECT_EQ("Hue (0 to 255 for 0 to 360 degrees)", filter->GetParametersOutput()[0].GetValue<wxString>());
    Show(OrvChannelSpaceYCbCr, 1);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    EXPECT_EQ("Cb (blue difference, 128 is neutral)", filter->GetParametersOutput()[0].GetValue<wxString>());
}

TEST_F(Channels, GreyAndDeepPictures_AreShown) {
    for (int const channels : {1, 3, 4}) {
        Load(Save("a.png", support::Ramp(9, 8, IPL_DEPTH_16U, channels)));
        Image const shown = Show(OrvChannelSpaceYCbCr, 0);
        EXPECT_TRUE(IsDone()) << channels;
        EXPECT_EQ(9, shown.Width());
    }
}

TEST_F(Channels, ChromaOfGrey_IsNeutral) {
    Load(Save("a.png", support::Ramp(9, 8, IPL_DEPTH_8U, 1)));
    cv::Mat const shown = Show(OrvChannelSpaceYCbCr, 2);
    EXPECT_EQ(0, cv::countNonZero(shown != 128));
}

TEST_F(Channels, Levels_SpreadTheTones) {
    cv::Mat const picture(5, 7, CV_8UC3, cv::Scalar(120, 110, 100));
    Load(Save("a.png", Image::FromMat(picture)));
    VecParameter post = filter->GetParametersPostProcessing();
    ASSERT_EQ(3U, post.size());
    post[0].Set(boost::any(150));
    post[2].Set(boost::any(100));
    Run([&] { iface->Configure(filter, -1, filter->GetParametersInput(), post, false); });
    // Y is 108: 255 * 8 / 50.
    EXPECT_EQ(41, filter->GetOutputImageDisplayedCopy(Evidence).Data()[0]);
}

TEST_F(Channels, ValuesOutOfRangeOrOfAnotherType_AreNotTaken) {
    Load(Jpeg("a.jpg"));
    GoWith(filter, {4, -1});
    EXPECT_EQ(OrvChannelSpaceYCbCr, filter->GetParametersInput()[0].GetValue<int>());
    GoWith(filter, {wxString("violet"), 2.5});
    EXPECT_EQ(OrvChannelSpaceYCbCr, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(0, filter->GetParametersInput()[1].GetValue<int>());
    EXPECT_TRUE(IsDone());
}
