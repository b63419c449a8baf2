// SPDX-License-Identifier: Apache-2.0
#include "filters/errorlevel.h"

#include "tests/filters/filterengine.h"
#include "tolbase/exception.h"
#include "tolbase/progress.h"
#include "tolimage/parallel.h"
#include "tools/sample/camera.h"
#include "tools/sample/photo.h"
#include "tools/sample/scene.h"

namespace {

class ErrorLevel : public support::FilterEngine {
protected:
    ErrorLevel() : filter(Add<OrvFilterErrorLevel>()) {}
    Image Show(wxString const& path, int quality) {
        Load(path);
        GoWith(filter, {quality});
        return filter->GetOutputImageDisplayedCopy(Evidence);
    }
    OrvFilterErrorLevel* filter;
};

// The level of a flat picture.
int LevelOf(int grey, int quality) {
    cv::Mat const level = CalculateErrorLevel(cv::Mat(16, 24, CV_8UC3, cv::Scalar::all(grey)), quality);
    EXPECT_EQ(cv::Size(24, 16), level.size());
    EXPECT_EQ(CV_8UC3, level.type());
    return level.at<cv::Vec3b>(7, 9)[1];
}

cv::Mat Noise(int width, int height) {
    cv::Mat picture(height, width, CV_8UC3);
    cv::RNG random(5);
    random.fill(picture, cv::RNG::UNIFORM, 0, 256);
    return picture;
}

double MeanOf(cv::Mat const& level, cv::Mat const& mask = cv::Mat()) {
    cv::Scalar const mean = mask.empty() ? cv::mean(level) : cv::mean(level, mask);
    return (mean[0] + mean[1] + mean[2]) / 3.0;
}

cv::Mat PixelsOf(std::string const& jpeg) {
    Image const image = DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(jpeg.data()), jpeg.size());
    return cv::Mat(image).clone();
}

// The demonstration photograph, and its copy in which a hut was pasted a second time.
struct Photographs {
    static constexpr int kWidth = 2000;
    static constexpr int kHeight = 1500;
    static constexpr uint32_t kSeed = 1;

    Photographs() {
        sample::Photo const photo =
            sample::MakePhoto(sample::Photograph(sample::RenderScene(kWidth, kHeight, kSeed), kSeed), kSeed);
        sample::Cutout const hut = sample::GetHut(kWidth, kHeight, kSeed);
        sample::TamperedPhoto const copy = sample::Tamper(photo, hut, kSeed);
        untouched = PixelsOf(photo.jpeg);
        tampered = PixelsOf(copy.jpeg);
        pasted = cv::Rect(copy.region.x, copy.region.y, copy.region.width, copy.region.height);
    }
    // Of the pasted part in proportion to all else.
    double Standing(cv::Mat const& picture) const {
        cv::Mat const level = CalculateErrorLevel(picture, 95);
        cv::Mat outside(level.size(), CV_8UC1, cv::Scalar(255));
        outside(pasted).setTo(0);
        return MeanOf(level(pasted)) / MeanOf(level, outside);
    }
    cv::Mat untouched;
    cv::Mat tampered;
    cv::Rect pasted;
};

}  // namespace

// The mean of a block is stored as 8 times its distance from 128, in steps of 16 at quality 50 and of 80 at 10.
TEST(ErrorLevels, FlatPicture_DiffersByTheWayToTheNearestStep) {
    EXPECT_EQ(0, LevelOf(128, 50));
    EXPECT_EQ(0, LevelOf(130, 50));
    EXPECT_EQ(1, LevelOf(131, 50));
    EXPECT_EQ(4, LevelOf(132, 10));
    EXPECT_EQ(3, LevelOf(135, 10));
}

TEST(ErrorLevels, QualityOutOfRange_IsTakenAsTheNearest) {
    cv::Mat const picture = Noise(40, 30);
    EXPECT_EQ(MeanOf(CalculateErrorLevel(picture, 1)), MeanOf(CalculateErrorLevel(picture, -7)));
    EXPECT_EQ(MeanOf(CalculateErrorLevel(picture, 100)), MeanOf(CalculateErrorLevel(picture, 1000)));
}

TEST(ErrorLevels, ThreadCount_ChangesNothing) {
    cv::Mat const picture = Noise(200, 900);
    SetParallelThreads(1);
    cv::Mat const alone = CalculateErrorLevel(picture, 80);
    SetParallelThreads(5);
    EXPECT_EQ(0.0, cv::norm(alone, CalculateErrorLevel(picture, 80), cv::NORM_INF));
    SetParallelThreads(0);
}

TEST(ErrorLevels, Abort_GivesNothing) {
    tcvAbortProgress();
    EXPECT_TRUE(CalculateErrorLevel(Noise(40, 30), 80).empty());
    tcvClearAborted();
}

// The hut comes from the camera's file into a picture that had been saved at quality 62: it alone has fine detail left
// to lose. In the untouched photograph that place is like all others.
TEST(ErrorLevels, PastedHut_StandsOut) {
    Photographs const photographs;
    EXPECT_GT(photographs.Standing(photographs.tampered), 2.0);
    EXPECT_NEAR(photographs.Standing(photographs.untouched), 1.0, 0.1);
}

TEST_F(ErrorLevel, New_OffersThreeQualities) {
    EXPECT_EQ("Error Level Analysis", filter->GetName());
    EXPECT_EQ(OrvFilter::FilterTypeLocalAnalysis, filter->GetAnalysisType());
    EXPECT_FALSE(filter->IsOnlyForJpeg());
    ASSERT_EQ(1U, filter->GetParametersInput().size());
    EXPECT_EQ("Quality", filter->GetParametersInput()[0].Name());
    EXPECT_EQ(95, filter->GetParametersInput()[0].GetValue<int>());
    std::vector<int> qualities;
    for (auto const& configuration : filter->GetConfigurations()) qualities.push_back(configuration[0].GetValue<int>());
    EXPECT_EQ((std::vector<int>{95, 90, 75}), qualities);
}

TEST_F(ErrorLevel, PictureThatSavingDoesNotChange_IsBlack) {
    Image const level = Show(Save("a.png", Image::FromMat(cv::Mat(40, 30, CV_8UC3, cv::Scalar::all(128)))), 50);
    ASSERT_EQ(30, level.Width());
    EXPECT_EQ(0.0, cv::norm(cv::Mat(level), cv::NORM_INF));
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(ErrorLevel, Scale_Multiplies) {
    Load(Save("a.png", Image::FromMat(cv::Mat(40, 30, CV_8UC3, cv::Scalar::all(132)))));
    VecParameter input = filter->GetParametersInput();
    input[0].Set(boost::any(10));
    VecParameter post = filter->GetParametersPostProcessing();
    ASSERT_EQ("Scale (0 = auto)", post[0].Name());
    post[0].Set(boost::any(20));
    Run([&] { iface->Configure(filter, -1, input, post, false); });
    EXPECT_EQ(80, *filter->GetOutputImageDisplayedCopy(Evidence).Data());
}

TEST_F(ErrorLevel, ValuesOutOfRangeOrOfAnotherType_AreNotTaken) {
    Load(Jpeg("a.jpg"));
    for (Parameter const& value :
         {CreateParameterInt("Quality", "", 0), CreateParameterInt("Quality", "", 101),
          CreateParameterString("Quality", "", "high"), CreateParameterDouble("Quality", "", 0.5)}) {
        Go(filter, VecParameter{value});
        EXPECT_EQ(95, filter->GetParametersInput()[0].GetValue<int>());
        EXPECT_TRUE(IsDone()) << value.ToText();
    }
}
