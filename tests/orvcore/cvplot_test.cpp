// SPDX-License-Identifier: Apache-2.0
#include "orvcore/cvplot.h"

#include <gtest/gtest.h>
#include <wx/debug.h>
#include <wx/filefn.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "tests/support/tempdir.h"
#include "tolbase/exception.h"
#include "tolbase/image.h"
#include "tolimage/imageio.h"

using CvPlot::Figure;
using CvPlot::PlotManager;
using CvPlot::Series;

namespace {

using Pixel = std::vector<int>;
Pixel const White = {255, 255, 255};
Pixel const Black = {0, 0, 0};
Pixel const Red = {0, 0, 255};

Pixel At(Image& picture, int x, int y) {
    unsigned char const* pixel = picture.Data() + y * picture.Step() + x * picture.Channels();
    return Pixel(pixel, pixel + picture.Channels());
}

Image Canvas() {
    return Image::Create(600, 260, IPL_DEPTH_8U, 3);
}

Series Points(std::vector<float> const& x, std::vector<float> const& y) {
    Series series;
    series.SetPoints(x.data(), y.data(), static_cast<int>(x.size()), 1);
    series.SetColour(255, 0, 0);
    return series;
}

Image Drawn(std::vector<Series> const& list, bool bars = false) {
    Figure figure("figure", cvSize(600, 200));
    for (Series const& series : list) figure.Add(series);
    Image canvas = Canvas();
    figure.DrawInto(canvas, bars);
    return canvas;
}

int CountPixels(Image& picture, Pixel const& colour) {
    int count = 0;
    for (int y = 0; y < picture.Height(); ++y) {
        for (int x = 0; x < picture.Width(); ++x) count += At(picture, x, y) == colour ? 1 : 0;
    }
    return count;
}

std::vector<std::string> conditions;
void NoteAssert(wxString const&, int, wxString const&, wxString const& condition, wxString const&) {
    conditions.emplace_back(condition.utf8_str());
}

}  // namespace

TEST(PlotSeries, NewSeries_HasNoPointsAndIsBlack) {
    Series const series;
    EXPECT_TRUE(series.x.empty());
    EXPECT_TRUE(series.label.empty());
    EXPECT_FALSE(series.autoColour);
    for (double value : series.colour.val) EXPECT_EQ(0.0, value);
}

TEST(PlotSeries, Step_TakesEveryNth) {
    std::vector<float> const x = {0, 1, 2, 3, 4}, y = {5, 6, 7, 8, 9};
    Series series;
    series.SetPoints(x.data(), y.data(), 5, 2);
    EXPECT_EQ((std::vector<float>{0, 2, 4}), series.x);
    EXPECT_EQ((std::vector<float>{5, 7, 9}), series.y);
    series.SetPoints(x.data(), y.data(), 3, -7);
    EXPECT_EQ((std::vector<float>{0, 1, 2}), series.x);
}

TEST(PlotSeries, Colour_IsKeptAsBlueGreenRedWithNegativesRaised) {
    Series series;
    series.SetColour(10, -5, 30);
    EXPECT_EQ(30.0, series.colour.val[0]);
    EXPECT_EQ(0.0, series.colour.val[1]);
    EXPECT_EQ(10.0, series.colour.val[2]);
    series.SetColour(0, -1, 0);
    EXPECT_EQ(30.0, series.colour.val[0]);
}

TEST(PlotFigure, SizeThatIsNotPositive_Throws) {
    for (CvSize const size : {cvSize(0, 10), cvSize(10, 0), cvSize(-1, 10)}) {
        try {
            Figure figure("figure", size);
            FAIL() << "accepted";
        } catch (TolException const& error) {
            EXPECT_EQ("size.width > 0 && size.height > 0", error.GetMessage());
        }
    }
}

TEST(PlotFigure, SmallSize_IsRaisedByTheRedraw) {
    Figure figure("figure", cvSize(10, 10));
    Image canvas = Canvas();
    figure.DrawInto(canvas, false);
    EXPECT_EQ(160, figure.GetSize().width);
    EXPECT_EQ(260, figure.GetSize().height);
}

TEST(PlotFigure, SinglePoint_StandsInTheMiddle) {
    // Y from 5 to 15 over rows 230 to 30; X from 0 to 5 over columns 30 to 570.
    Image canvas = Drawn({Points({5}, {10})});
    EXPECT_EQ(Red, At(canvas, 569, 130));
    EXPECT_EQ(Red, At(canvas, 571, 130));
    EXPECT_EQ(Red, At(canvas, 570, 129));
    EXPECT_EQ(Red, At(canvas, 570, 131));
    EXPECT_EQ(White, At(canvas, 560, 130));
}

TEST(PlotFigure, XAxis_SpansTheDataAndZero) {
    Figure figure("figure", cvSize(600, 200));
    figure.Add(Points({5, 10}, {1, 2}));
    Image canvas = Canvas();
    figure.DrawInto(canvas, false);
    EXPECT_EQ(0.0F, figure.GetScale().xMinimum);
    EXPECT_EQ(10.0F, figure.GetScale().xMaximum);
    EXPECT_EQ(54.0F, figure.GetScale().xScale);
    EXPECT_EQ(1.0F, figure.GetScale().yMinimum);
    EXPECT_EQ(2.0F, figure.GetScale().yMaximum);
    EXPECT_EQ(200.0F, figure.GetScale().yScale);
}

TEST(PlotFigure, CustomXRange_Stays) {
    Figure figure("figure", cvSize(600, 200), 2.0F, 4.0F);
    figure.Add(Points({0, 10}, {1, 2}));
    Image canvas = Canvas();
    figure.DrawInto(canvas, false);
    EXPECT_EQ(2.0F, figure.GetScale().xMinimum);
    EXPECT_EQ(4.0F, figure.GetScale().xMaximum);
    EXPECT_EQ(270.0F, figure.GetScale().xScale);
}

TEST(PlotFigure, AllZeroes_ScaleByOne) {
    Figure figure("figure", cvSize(600, 200));
    figure.Add(Points({0}, {0}));
    Image canvas = Canvas();
    figure.DrawInto(canvas, false);
    EXPECT_EQ(1.0F, figure.GetScale().xScale);
    EXPECT_EQ(200.0F, figure.GetScale().yScale);
}

TEST(PlotFigure, NegativeFlatSeries_ReachesUpToTheSmallestPositive) {
    Figure figure("figure", cvSize(600, 200));
    figure.Add(Points({0, 1}, {-4, -4}));
    Image canvas = Canvas();
    figure.DrawInto(canvas, false);
    EXPECT_EQ(-4.0F, figure.GetScale().yMinimum);
    EXPECT_EQ(1.1754944e-38F, figure.GetScale().yMaximum);
    EXPECT_EQ(50.0F, figure.GetScale().yScale);
}

TEST(PlotFigure, Axes_CrossAtZero) {
    // Y from -10 to 30: 0 is 50 rows above 230. X from -10 to 10: 0 is 270 columns left of 570.
    Image canvas = Drawn({Points({-10, 10}, {-10, 30})});
    EXPECT_EQ(Black, At(canvas, 31, 180));
    EXPECT_EQ(Black, At(canvas, 569, 180));
    EXPECT_EQ(Black, At(canvas, 300, 31));
    EXPECT_EQ(Black, At(canvas, 300, 240));
    EXPECT_EQ(White, At(canvas, 300, 242));
    EXPECT_EQ(White, At(canvas, 29, 180));
    EXPECT_EQ(White, At(canvas, 571, 178));
}

TEST(PlotFigure, Points_AreJoinedOrStandOnBars) {
    // (0, 0) is at (30, 230), (10, 10) at (570, 30); the line passes (300, 130).
    Image joined = Drawn({Points({0, 10}, {0, 10})});
    EXPECT_NE(White, At(joined, 300, 130));
    Image bars = Drawn({Points({0, 10}, {0, 10})}, true);
    EXPECT_EQ(White, At(bars, 300, 130));
    EXPECT_NE(White, At(bars, 570, 130));
    EXPECT_EQ(White, At(joined, 570, 130));
}

TEST(PlotFigure, ValuesThatAreNoNumbers_AreLeftOut) {
    float const nan = std::numeric_limits<float>::quiet_NaN(), infinite = std::numeric_limits<float>::infinity();
    Image clean = Drawn({Points({5}, {10})});
    Image canvas = Drawn({Points({5, nan, 3, infinite, 2}, {10, 1, nan, 2, -infinite})});
    EXPECT_EQ(CountPixels(clean, Red), CountPixels(canvas, Red));
    Image none = Drawn({Points({nan}, {nan})});
    EXPECT_EQ(0, CountPixels(none, Red));
}

TEST(PlotFigure, GreatestValues_AreDrawn) {
    float const most = std::numeric_limits<float>::max();
    EXPECT_NO_THROW(Drawn({Points({-most, most}, {-most, most})}));
    EXPECT_NO_THROW(Drawn({Points({0, most}, {0, most})}, true));
}

TEST(PlotFigure, LongNumber_KeepsItsFirstDigit) {
    // Both curves look alike: only the number at the Y axis tells them apart.
    Image first = Drawn({Points({0, 10}, {0, 1234567})});
    Image second = Drawn({Points({0, 10}, {0, 2234567})});
    int different = 0;
    for (int y = 0; y < 60; ++y) {
        for (int x = 0; x < 90; ++x) different += At(first, x, y) != At(second, x, y) ? 1 : 0;
    }
    EXPECT_GT(different, 0);
}

TEST(PlotFigure, AutomaticColours_StartAgainAfterTen) {
    Figure figure("figure", cvSize(600, 200));
    Series series = Points({1}, {1});
    series.autoColour = true;
    for (int i = 0; i < 12; ++i) figure.Add(series);
    Image canvas = Canvas();
    figure.DrawInto(canvas, false);
    auto const colourOf = [&figure](size_t i) {
        double const* value = figure.GetSeries()[i].colour.val;
        return std::vector<double>(value, value + 3);
    };
    EXPECT_EQ((std::vector<double>{200, 200, 200}), colourOf(0));
    EXPECT_EQ((std::vector<double>{40, 60, 255}), colourOf(3));
    EXPECT_EQ((std::vector<double>{0, 0, 185}), colourOf(9));
    EXPECT_EQ((std::vector<double>{200, 200, 200}), colourOf(10));
    EXPECT_EQ((std::vector<double>{255, 60, 60}), colourOf(11));
}

TEST(PlotFigure, Labels_GiveALegend) {
    Series first = Points({0, 10}, {0, 10}), second = first;
    Image plain = Drawn({first, second});
    EXPECT_EQ(White, At(plain, 507, 6));
    first.label = "one";
    second.label = "two";
    Image canvas = Drawn({first, second});
    EXPECT_NE(White, At(canvas, 507, 6));
    EXPECT_NE(White, At(canvas, 507, 18));
    EXPECT_EQ(White, At(canvas, 507, 30));
}

TEST(PlotManagerTest, NoPoints_DoNothing) {
    support::TempDir const dir;
    float const value = 1.0F;
    EXPECT_FALSE(PlotManager::Instance().Plot(dir / "p.png", &value, &value, 0, 1, 0, 0, 0, 0, 0, false));
    EXPECT_FALSE(wxFileExists(dir / "p.png"));
    EXPECT_EQ(0U, PlotManager::Instance().CountSeries(dir / "p.png"));
}

TEST(PlotManagerTest, Plot_WritesAPictureOf600By260) {
    support::TempDir const dir;
    std::vector<float> const x = {0, 1, 2}, y = {3, 1, 2};
    EXPECT_TRUE(PlotManager::Instance().Plot(dir / "p.png", x.data(), y.data(), 3, 1, 0, 0, 0, 0, 0, false));
    Image const picture(tcvLoadImage(dir / "p.png", true, false));
    EXPECT_EQ(600, picture.Width());
    EXPECT_EQ(260, picture.Height());
}

TEST(PlotManagerTest, SecondPlot_AddsASeriesAndReplacesTheFile) {
    support::TempDir const dir;
    PlotManager& manager = PlotManager::Instance();
    support::WriteBytes(dir / "p.png", "older");
    std::vector<float> const x = {0, 1}, y = {1, 2}, other = {2, 1};
    manager.Plot(dir / "p.png", x.data(), y.data(), 2, 1, 0, 0, 255, 0, 0, false);
    std::string const first = support::ReadBytes(dir / "p.png");
    EXPECT_EQ("\x89PNG", first.substr(0, 4));
    manager.Plot(dir / "p.png", x.data(), other.data(), 2, 1, 0, 0, 255, 0, 0, false);
    EXPECT_NE(first, support::ReadBytes(dir / "p.png"));
    EXPECT_EQ(2U, manager.CountSeries(dir / "p.png"));
}

TEST(PlotManagerTest, Names_AreComparedWithCase) {
    support::TempDir const dir;
    float const value = 1.0F;
    PlotManager& manager = PlotManager::Instance();
    manager.Plot(dir / "p.png", &value, &value, 1, 1, 0, 0, 0, 0, 0, false);
    manager.Plot(dir / "P.png", &value, &value, 1, 1, 0, 0, 0, 0, 0, false);
    EXPECT_EQ(1U, manager.CountSeries(dir / "p.png"));
    manager.Remove(dir / "p.png");
    EXPECT_EQ(0U, manager.CountSeries(dir / "p.png"));
    EXPECT_EQ(1U, manager.CountSeries(dir / "P.png"));
}

TEST(PlotManagerTest, XLimits_HaveNoEffect) {
    support::TempDir const dir;
    std::vector<float> const x = {0, 10}, y = {1, 2};
    PlotManager& manager = PlotManager::Instance();
    manager.Plot(dir / "a.png", x.data(), y.data(), 2, 1, 0, 0, 0, 0, 0, false);
    manager.Plot(dir / "b.png", x.data(), y.data(), 2, 1, 0, 0, 0, 2, 4, false);
    EXPECT_EQ(support::ReadBytes(dir / "a.png"), support::ReadBytes(dir / "b.png"));
}

TEST(PlotManagerTest, FolderThatIsMissing_GivesFalse) {
    support::TempDir const dir;
    float const value = 1.0F;
    EXPECT_FALSE(PlotManager::Instance().Plot(dir / "none/p.png", &value, &value, 1, 1, 0, 0, 0, 0, 0, false));
}

TEST(PlotIm, Picture_IsFilledAndPlottedInRedFirst) {
    Image canvas = Canvas();
    cvSet(static_cast<_IplImage*>(canvas), cvScalar(9, 9, 9));
    int const indices[2] = {1, 1};
    CvPlot::plotim(canvas, {0, 5, 7}, {0, 10, 9}, indices, cvScalar(255, 0, 0));
    EXPECT_EQ(White, At(canvas, 0, 0));
    EXPECT_EQ(Red, At(canvas, 569, 130));
}

TEST(PlotIm, SmallPicture_IsDrawnAsFarAsItReaches) {
    Image canvas = Image::Create(20, 10, IPL_DEPTH_8U, 3);
    int const indices[2] = {0, 1};
    CvPlot::plotim(canvas, {0, 1}, {0, 1}, indices, cvScalar(0));
    EXPECT_EQ(20, canvas.Width());
    EXPECT_EQ(White, At(canvas, 0, 0));
}

TEST(PlotIm, NoPointsOrNoPicture_AreReported) {
    Image canvas = Canvas();
    int const empty[2] = {1, 0}, one[2] = {0, 0};
    wxAssertHandler_t const old = wxSetAssertHandler(NoteAssert);
    CvPlot::plotim(canvas, {0, 1}, {0, 1}, empty, cvScalar(0));
    CvPlot::plotim(nullptr, {0, 1}, {0, 1}, one, cvScalar(0));
    wxSetAssertHandler(old);
    EXPECT_EQ((std::vector<std::string>{"psize > 0", "figure_image"}), conditions);
    EXPECT_EQ(Black, At(canvas, 0, 0));
}

TEST(PlotIm, IndexOutsideTheValues_Throws) {
    Image canvas = Canvas();
    int const behind[2] = {0, 2}, before[2] = {-1, 0};
    EXPECT_THROW(CvPlot::plotim(canvas, {0, 1}, {0, 1, 2}, behind, cvScalar(0)), TolException);
    EXPECT_THROW(CvPlot::plotim(canvas, {0, 1}, {0, 1}, before, cvScalar(0)), TolException);
}
