// SPDX-License-Identifier: Apache-2.0
#include "filters/jpegghost.h"

#include <chrono>
#include <opencv2/imgproc.hpp>

#include "tests/filters/filterengine.h"
#include "tolbase/progress.h"
#include "tolimage/jpegrecompress.h"
#include "tolimage/parallel.h"

namespace {

using Curve = std::vector<float>;
using Indices = std::vector<int>;

class JpegGhost : public support::FilterEngine {
protected:
    JpegGhost() : filter(Add<OrvFilterJpegGhost>()) {}
    wxString Told(size_t index) { return filter->GetParametersOutput()[index].GetValue<wxString>(); }
    OrvFilterJpegGhost* filter;
};

// Soft shapes with a little noise, as a photograph has them.
cv::Mat Photograph(int width, int height) {
    cv::Mat noise(height, width, CV_32F);
    cv::RNG random(3);
    random.fill(noise, cv::RNG::NORMAL, 0.0, 1.0);
    cv::Mat shapes;
    cv::GaussianBlur(noise, shapes, cv::Size(), 6.0);
    cv::Mat const sum = 128.0 + 500.0 * shapes + 3.0 * noise;
    cv::Mat picture;
    sum.convertTo(picture, CV_8U);
    return picture;
}

cv::Mat SavedAt(cv::Mat const& picture, int quality) {
    JpegEncoding encoding;
    encoding.quality = quality;
    return RecompressJpeg(picture, encoding);
}

}  // namespace

TEST(CurveMinima, Dips_AreFoundTheDeepestFirst) {
    EXPECT_EQ((Indices{3, 7}), FindCurveMinima(Curve{9, 8, 7, 3, 6, 5, 4, 1, 2}));
}

TEST(CurveMinima, ShallowDipsPlateausAndEnds_AreNone) {
    EXPECT_EQ((Indices{}), FindCurveMinima(Curve{10, 9.5F, 9.9F, 3}));
    EXPECT_EQ((Indices{}), FindCurveMinima(Curve{5, 2, 2, 5}));
    EXPECT_EQ((Indices{}), FindCurveMinima(Curve{1, 2, 3}));
    EXPECT_EQ((Indices{}), FindCurveMinima(Curve{3, 2, 1}));
    EXPECT_EQ((Indices{}), FindCurveMinima(Curve{1}));
    EXPECT_EQ((Indices{}), FindCurveMinima(Curve{}));
}

// The dip counts by its lower rim: 0.9 of 2 is 1.8.
TEST(CurveMinima, Depth_IsMeasuredFromTheLowerRim) {
    EXPECT_EQ((Indices{1}), FindCurveMinima(Curve{9, 1.8F, 2}));
    EXPECT_EQ((Indices{}), FindCurveMinima(Curve{9, 1.81F, 2}));
}

// A block's mean of 132 is 4 off at quality 10 and right at 50 (steps of 80 and 16): see the error levels.
TEST(GhostCurve, FlatPicture_HasTheSquareOfItsDifference) {
    cv::Mat const flat(40, 24, CV_8U, cv::Scalar(132));
    EXPECT_EQ((Curve{16}), CalculateGhostCurve(flat, 10, 10));
    EXPECT_EQ((Curve{0}), CalculateGhostCurve(flat, 50, 50));
    EXPECT_EQ(3U, CalculateGhostCurve(flat, 40, 42).size());
}

TEST(GhostCurve, FirstQuality_IsWhereItDips) {
    for (int const quality : {62, 77, 90}) {
        Curve const curve = CalculateGhostCurve(SavedAt(Photograph(256, 192), quality), 40, 98);
        Indices const minima = FindCurveMinima(curve);
        ASSERT_FALSE(minima.empty()) << quality;
        EXPECT_EQ(quality, 40 + minima[0]);
    }
}

TEST(GhostCurve, EarlierLowerQuality_LeavesADipToo) {
    cv::Mat const twice = SavedAt(SavedAt(Photograph(256, 192), 60), 90);
    Indices const minima = FindCurveMinima(CalculateGhostCurve(twice, 40, 98));
    EXPECT_EQ(1, std::count(minima.begin(), minima.end(), 20));
    EXPECT_EQ(1, std::count(minima.begin(), minima.end(), 50));
}

TEST(GhostCurve, PictureThatWasNoJpeg_HasNoDip) {
    EXPECT_EQ((Indices{}), FindCurveMinima(CalculateGhostCurve(Photograph(256, 192), 40, 98)));
}

TEST(GhostCurve, ThreadCount_ChangesNothing) {
    cv::Mat const picture = Photograph(200, 700);
    SetParallelThreads(1);
    Curve const alone = CalculateGhostCurve(picture, 70, 75);
    SetParallelThreads(5);
    EXPECT_EQ(alone, CalculateGhostCurve(picture, 70, 75));
    SetParallelThreads(0);
}

TEST_F(JpegGhost, New_HasOneConfiguration) {
    EXPECT_EQ("JPEG Ghost Plot", filter->GetName());
    EXPECT_FALSE(filter->IsOnlyForJpeg());
    EXPECT_EQ(1U, filter->GetConfigurationsSize());
    EXPECT_EQ(40, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(100, filter->GetParametersInput()[1].GetValue<int>());
}

TEST_F(JpegGhost, Minimum_IsMarkedAndToldFreshAndFromTheCache) {
    wxString const path = Save("a.png", Image::FromMat(SavedAt(Photograph(128, 96), 70)));
    for (bool const cached : {false, true}) {
        Load(path);
        GoWith(filter, {60, 80});
        EXPECT_EQ(cached, filter->ConfiguredFromCache(Evidence));
        OrvPlotData const data = filter->GetPlotDataCopy(Evidence);
        EXPECT_EQ(21U, data.x.size());
        ASSERT_EQ(1U, data.verticalMarkers.size());
        EXPECT_EQ((Curve{70.0F}), data.verticalMarkers[0]);
        EXPECT_EQ("70", Told(0));
        EXPECT_EQ("none", Told(1));
        Load(Jpeg("b.jpg"));
        GoWith(filter, {60, 80});
    }
}

TEST_F(JpegGhost, RangeWithoutRoomForADip_IsRefused) {
    Load(Jpeg("a.jpg"));
    GoWith(filter, {80, 81});
    EXPECT_FALSE(IsDone());
    EXPECT_EQ("The maximum quality has to be at least 2 above the minimum quality.", filter->GetErrorMessage());
    GoWith(filter, {80, 82});
    EXPECT_TRUE(IsDone());
}

TEST_F(JpegGhost, Abort_EndsTheRunPromptlyWithoutAResult) {
    Load(Save("a.png", Image::FromMat(Photograph(2000, 1500))));
    std::chrono::steady_clock::time_point aborted;
    std::thread aborter([&aborted] {
        support::Eventually([] { return tcvGetProgress().value > 0; });
        aborted = std::chrono::steady_clock::now();
        tcvAbortProgress();
    });
    Go(filter);
    auto const waited = std::chrono::steady_clock::now() - aborted;
    aborter.join();
    EXPECT_FALSE(IsDone());
    EXPECT_EQ("Processing interrupted by user.", filter->GetErrorMessage());
    EXPECT_LT(waited, std::chrono::seconds(2));
    EXPECT_FALSE(filter->GetPlotDataCopy(Evidence).IsOk());
    EXPECT_FALSE(wxFileExists(filter->GetStatusFilename(Evidence, filter->GetParametersInput())));
}
