// SPDX-License-Identifier: Apache-2.0
#include <wx/ffile.h>
#include <wx/filefn.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>

#include "orvcore/cvplot.h"
#include "tests/orvcore/resultfilters.h"
#include "tolbase/exception.h"

using support::PixelAt;
using support::PlotFilter;
using support::ReadBytes;
using support::WriteBytes;

namespace {

using Floats = std::vector<float>;
using Pixel = std::vector<int>;

std::string Words(std::vector<double> const& words) {
    return std::string(reinterpret_cast<char const*>(words.data()), words.size() * sizeof(double));
}

// X 1 to 3 with two series.
OrvPlotData Sample() {
    OrvPlotData data;
    data.InitPlotData(1, 3, 2, 1, true);
    data.y = {{10, 20, 30}, {0.5F, -2, 1000}};
    data.yRange = {-2, 1000};
    return data;
}
std::vector<double> const SampleWords = {2, 1, 1, 3, -2, 1000, 1, 2, 3, 10, 0.5, 20, -2, 30, 1000};
char const* const SampleText =
    "Dim: 2\nCoi: 1\nRange Values X:1 3\nRange Values Y:-2.000e+00 1.000e+03\n:\n"
    "1 1.000e+01 5.000e-01\n2 2.000e+01 -2.000e+00\n3 3.000e+01 1.000e+03\n";

// Both forms of the data; false as SavePlotData says.
bool Saved(OrvPlotData const& data, std::vector<double>& words, std::string& text) {
    PlotFilter const filter("Filter");
    wxString lines;
    double* buffer = nullptr;
    uint64_t bytes = 1;
    bool const result = filter.SavePlotData(data, lines, &buffer, &bytes);
    words.assign(buffer, buffer + bytes / sizeof(double));
    delete[] buffer;
    text = lines.utf8_str();
    return result;
}

bool Loaded(std::string const& bytes, OrvPlotData& data) {
    support::TempDir const dir;
    wxFFile file(WriteBytes(dir / "p.binary", bytes), "rb");
    return PlotFilter("Filter").LoadPlotData(file, data);
}

double Similarity(Floats const& evidence, Floats const& reference) {
    PlotFilter filter("Filter");
    for (OrvFileId id : {Evidence, Reference}) {
        Floats const& series = id == Evidence ? evidence : reference;
        OrvPlotData data;
        data.InitPlotData(1, static_cast<int>(series.size()), 1, 0, true);
        data.y = {series};
        *filter.GetPlotData(id) = data;
    }
    return filter.ComputePlotSimilarity();
}

// The picture of a plot.
Image Drawn(OrvPlotData const& data) {
    support::TempDir const dir;
    PlotFilter("Filter").SavePlotImage(dir / "p.png", data);
    return Image(tcvLoadImage(dir / "p.png", true, false));
}

class FilterPlot : public support::ResultEngine {
protected:
    PlotFilter* Filter() {
        PlotFilter* filter = Add(new PlotFilter("Filter"));
        filter->onApply = [filter](OrvFileId id) { *filter->GetPlotData(id) = Sample(); };
        return filter;
    }
    bool LoadSlot(PlotFilter* filter) {
        bool result = false;
        OnWorker([&] { filter->Load(Evidence, result); });
        return result;
    }
    wxString Picture() { return Png("a.png", support::Solid(8, 6, {1, 2, 3})); }
};

}  // namespace

// ---- both forms ----

TEST(PlotFiles, BinaryForm_HasSixWordsThenAbscissaeThenPoints) {
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(Sample(), words, text));
    EXPECT_EQ(SampleWords, words);
}

TEST(PlotFiles, TextForm_IsLiteral) {
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(Sample(), words, text));
    EXPECT_EQ(SampleText, text);
}

TEST(PlotFiles, TextForm_CutsAbscissaeAndRangeTowardsZero) {
    OrvPlotData data;
    data.InitPlotData(0, 1, 1, 0, true);
    data.x = {-1.75F, 2.75F};
    data.y = {{1.23456e-7F, 123456.7F}};
    data.xRange = {-1.9, 2.9};
    data.yRange = {0, 1e-9};
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(data, words, text));
    EXPECT_EQ(
        "Dim: 1\nCoi: 0\nRange Values X:-1 2\nRange Values Y:0.000e+00 1.000e-09\n:\n"
        "-1 1.235e-07\n2 1.235e+05\n",
        text);
    EXPECT_EQ((std::vector<double>{1, 0, -1.9, 2.9, 0, 1e-9, -1.75, 2.75, 1.23456e-7F, 123456.7F}), words);
}

TEST(PlotFiles, PointsBeforeTheRange_AreDropped) {
    OrvPlotData data;
    data.InitPlotData(-3, 1, 1, 0, true);
    data.y = {{1, 2, 3, 4, 5}};
    data.xRange.minimum = -1;
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(data, words, text));
    EXPECT_EQ((std::vector<double>{1, 0, -1, 1, 0, 0, -1, 0, 1, 3, 4, 5}), words);
}

TEST(PlotFiles, StartNearerToZeroThanTheRange_IsKept) {
    OrvPlotData data;
    data.InitPlotData(0, 2, 1, 0, true);
    data.xRange.minimum = 1;
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(data, words, text));
    EXPECT_EQ(12U, words.size());
}

TEST(PlotFiles, RangeThatNoPointMeets_LeavesTheLastPoint) {
    OrvPlotData data;
    data.InitPlotData(5, 7, 1, 0, true);
    data.xRange.minimum = 0.5;
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(data, words, text));
    EXPECT_EQ((std::vector<double>{1, 0, 0.5, 7, 0, 0, 7, 0}), words);
}

TEST(PlotFiles, Indices_BoundTheSavedPoints) {
    OrvPlotData data = Sample();
    data.firstIndex = 0;
    data.lastIndex = 1;
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(data, words, text));
    EXPECT_EQ((std::vector<double>{2, 1, 1, 3, -2, 1000, 1, 2, 10, 0.5, 20, -2}), words);
}

TEST(PlotFiles, ContradictoryData_AreNotSaved) {
    OrvPlotData fewSeries = Sample(), shortSeries = Sample(), farIndex = Sample(), reversed = Sample();
    fewSeries.dim = 3;
    shortSeries.y[1].pop_back();
    farIndex.lastIndex = 3;
    reversed.firstIndex = 2;
    reversed.lastIndex = 1;
    for (OrvPlotData const& data : {fewSeries, shortSeries, farIndex, reversed, OrvPlotData()}) {
        std::vector<double> words;
        std::string text;
        EXPECT_FALSE(Saved(data, words, text));
        EXPECT_TRUE(words.empty());
    }
}

TEST(PlotFiles, LoadedData_AreTheSavedOnes) {
    OrvPlotData data;
    EXPECT_TRUE(Loaded(Words(SampleWords), data));
    EXPECT_EQ((Floats{1, 2, 3}), data.x);
    EXPECT_EQ((std::vector<Floats>{{10, 20, 30}, {0.5F, -2, 1000}}), data.y);
    EXPECT_EQ(2, data.dim);
    EXPECT_EQ(1, data.coi);
    EXPECT_EQ(1.0, data.xRange.minimum);
    EXPECT_EQ(3.0, data.xRange.maximum);
    EXPECT_EQ(-2.0, data.yRange.minimum);
    EXPECT_EQ(1000.0, data.yRange.maximum);
}

TEST(PlotFiles, Load_ClearsIndicesAndKeepsSecondRangeAndMarkers) {
    OrvPlotData data = Sample();
    data.secondRange = {4, 5};
    data.verticalMarkers = {{1}};
    data.horizontalMarkers = {{2}};
    EXPECT_TRUE(Loaded(Words(SampleWords), data));
    EXPECT_EQ(0U, data.firstIndex);
    EXPECT_EQ(0U, data.lastIndex);
    EXPECT_EQ(0U, data.pointCount);
    EXPECT_EQ(5.0, data.secondRange.maximum);
    EXPECT_EQ(1U, data.verticalMarkers.size());
    EXPECT_EQ(1U, data.horizontalMarkers.size());
}

TEST(PlotFiles, FileOf48Bytes_HasSeriesWithoutPoints) {
    OrvPlotData data = Sample();
    EXPECT_TRUE(Loaded(Words({3, 2, 0, 255, 0, 1}), data));
    EXPECT_TRUE(data.x.empty());
    EXPECT_EQ((std::vector<Floats>(3)), data.y);
    EXPECT_EQ(3, data.dim);
}

TEST(PlotFiles, EmptyFile_GivesTrueAndNoData) {
    OrvPlotData data = Sample();
    EXPECT_TRUE(Loaded("", data));
    EXPECT_TRUE(data.x.empty());
    EXPECT_TRUE(data.y.empty());
}

TEST(PlotFiles, DimAndCoi_AreCut) {
    OrvPlotData data;
    EXPECT_TRUE(Loaded(Words({1.9, 2.9, 0, 1, 0, 1, 5, 6}), data));
    EXPECT_EQ(1, data.dim);
    EXPECT_EQ(2, data.coi);
}

TEST(PlotFiles, LyingFiles_AreRefused) {
    double const nan = std::numeric_limits<double>::quiet_NaN(), infinite = std::numeric_limits<double>::infinity();
    std::vector<std::vector<double>> const files = {
        {-1, 0, 0, 1, 0, 1, 5, 6},   {0, 0, 0, 1, 0, 1, 5, 6},     {nan, 0, 0, 1, 0, 1, 5, 6},
        {1e300, 0, 0, 1, 0, 1},      {2147483647, 0, 0, 1, 0, 1},  {2, 0, 0, 1, 0, 1, 5, 6},
        {1, nan, 0, 1, 0, 1, 5, 6},  {1, 1e300, 0, 1, 0, 1, 5, 6}, {1, 0, infinite, 1, 0, 1, 5, 6},
        {1, 0, 0, 1, 0, nan, 5, 6},  {1, 0, 0, 1, 0, 1, nan, 6},   {1, 0, 0, 1, 0, 1, 5, infinite},
        {1, 0, 0, 1, 0, 1, 5, 1e39}, {1, 0, 0, 1, 0, 1, 5},        {1, 0, 0, 1, 0},
        {3e-28, 0, 0, 1, 0, 1, 5, 6}};
    for (std::vector<double> const& words : files) {
        OrvPlotData data = Sample();
        EXPECT_FALSE(Loaded(Words(words), data)) << testing::PrintToString(words);
        EXPECT_TRUE(data.x.empty());
        EXPECT_TRUE(data.y.empty());
    }
}

TEST(PlotFiles, FileThatIsNoWholeNumberOfWords_IsRefused) {
    OrvPlotData data;
    EXPECT_FALSE(Loaded(Words(SampleWords) + "xyz", data));
    EXPECT_FALSE(Loaded("1234567", data));
}

TEST(PlotFiles, CommaLocale_ChangesNothing) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "the locale de_DE.UTF-8 is not installed";
    std::vector<double> words;
    std::string text;
    EXPECT_TRUE(Saved(Sample(), words, text));
    EXPECT_EQ(SampleText, text);
}

// ---- cache ----

TEST_F(FilterPlot, Run_WritesBothFilesAndTheStatus) {
    PlotFilter* filter = Filter();
    Load(Picture());
    Go(filter);
    EXPECT_EQ(SampleText, ReadBytes(CacheStem(Evidence, "Filter.txt")));
    EXPECT_EQ(Words(SampleWords), ReadBytes(CacheStem(Evidence, "Filter.binary")));
    EXPECT_EQ("Ok", ReadBytes(CacheStem(Evidence, "Filter.status")));
    EXPECT_EQ(".png", filter->GetCacheExtension());
}

TEST_F(FilterPlot, CachedResult_IsReloadedFromTheBinaryFileAlone) {
    PlotFilter* filter = Filter();
    Load(Picture());
    WriteBytes(CacheStem(Evidence, "Filter.binary"), Words({1, 3, 0, 1, 0, 9, 0, 1, 8, 9}));
    WriteBytes(CacheStem(Evidence, "Filter.status"), "Warning");
    Go(filter);
    EXPECT_EQ(0, filter->applied);
    EXPECT_EQ(OrvFilterConfiguration::Warning, filter->GetStatus(Evidence));
    EXPECT_EQ((std::vector<Floats>{{8, 9}}), filter->GetPlotDataCopy(Evidence).y);
    EXPECT_EQ(3, filter->GetPlotDataCopy(Evidence).coi);
}

TEST_F(FilterPlot, LyingCache_IsCalculatedAnewAndReplaced) {
    PlotFilter* filter = Filter();
    Load(Picture());
    for (std::string const& bytes : {Words({-1, 0, 0, 1, 0, 1, 5, 6}), std::string(), Words({1e18, 0, 0, 1, 0, 1})}) {
        WriteBytes(CacheStem(Evidence, "Filter.binary"), bytes);
        WriteBytes(CacheStem(Evidence, "Filter.status"), "Ok");
        EXPECT_FALSE(LoadSlot(filter));
    }
    Go(filter);
    EXPECT_EQ(1, filter->applied);
    EXPECT_EQ(Words(SampleWords), ReadBytes(CacheStem(Evidence, "Filter.binary")));
}

TEST_F(FilterPlot, MissingCache_GivesFalse) {
    PlotFilter* filter = Filter();
    Load(Picture());
    EXPECT_FALSE(LoadSlot(filter));
}

TEST_F(FilterPlot, CacheOf48Bytes_Loads) {
    PlotFilter* filter = Filter();
    Load(Picture());
    WriteBytes(CacheStem(Evidence, "Filter.binary"), Words({1, 0, 0, 1, 0, 1}));
    EXPECT_TRUE(LoadSlot(filter));
    EXPECT_FALSE(filter->GetPlotDataCopy(Evidence).IsOk());
}

TEST_F(FilterPlot, EmptyPlot_LeavesNoFileButItsStatus) {
    PlotFilter* filter = Filter();
    filter->onApply = nullptr;
    Load(Picture());
    Go(filter);
    EXPECT_FALSE(wxFileExists(CacheStem(Evidence, "Filter.txt")));
    EXPECT_FALSE(wxFileExists(CacheStem(Evidence, "Filter.binary")));
    EXPECT_EQ("Ok", ReadBytes(CacheStem(Evidence, "Filter.status")));
    EXPECT_FALSE(LoadSlot(filter));
}

TEST_F(FilterPlot, EmptyPlot_TakesAnOlderResultAway) {
    PlotFilter* filter = Filter();
    Load(Picture());
    WriteBytes(CacheStem(Evidence, "Filter.binary"), Words(SampleWords));
    OnWorker([&] { filter->Save(Evidence); });
    EXPECT_FALSE(wxFileExists(CacheStem(Evidence, "Filter.binary")));
}

TEST_F(FilterPlot, SaveCache_LeavesNoTemporaryFile) {
    PlotFilter* filter = Filter();
    Load(Picture());
    *filter->GetPlotData(Evidence) = Sample();
    OnWorker([&] { filter->Save(Evidence); });
    VecString const all = GetAllFiles(wxPathOnly(CacheStem(Evidence, "")), {"txt", "binary", "tmp", ""}, false);
    size_t ours = 0;
    for (wxString const& path : all) ours += path.Contains("-Filter.") ? 1 : 0;
    EXPECT_EQ(2U, ours);
}

TEST_F(FilterPlot, Reset_ClearsTheSlot) {
    PlotFilter* filter = Filter();
    *filter->GetPlotData(Evidence) = Sample();
    *filter->GetPlotData(Reference) = Sample();
    filter->ResetSlot(Evidence);
    EXPECT_FALSE(filter->GetPlotDataCopy(Evidence).IsOk());
    EXPECT_EQ(1, filter->GetPlotDataCopy(Evidence).dim);
    EXPECT_TRUE(filter->GetPlotDataCopy(Reference).IsOk());
}

TEST(FilterPlotCopy, CopiedFilter_HasTheDataAndItsOwnLocks) {
    PlotFilter filter("Filter");
    *filter.GetPlotData(Reference) = Sample();
    PlotFilter copy(filter);
    PlotFilter assigned("Other");
    assigned = filter;
    auto const locked = filter.GetPlotData(Reference);
    EXPECT_EQ(Sample().y, copy.GetPlotDataCopy(Reference).y);
    EXPECT_EQ(Sample().y, assigned.GetPlotDataCopy(Reference).y);
    EXPECT_EQ("Filter", assigned.GetName());
}

// ---- similarity ----

TEST(PlotSimilarity, MissingData_GivesZero) {
    EXPECT_EQ(0.0, PlotFilter("Filter").ComputePlotSimilarity());
    EXPECT_EQ(0.0, Similarity({1, 2, 3}, {}));
}

TEST(PlotSimilarity, EqualLengths_GiveTheCorrelationCoefficient) {
    EXPECT_NEAR(1.0, Similarity({1, 2, 4, 3}, {1, 2, 4, 3}), 1e-6);
    EXPECT_NEAR(1.0, Similarity({1, 2, 4, 3}, {10, 20, 40, 30}), 1e-6);
    EXPECT_NEAR(-1.0, Similarity({1, 2, 4, 3}, {4, 3, 1, 2}), 1e-6);
    // Deviations (-1, 0, 1) and (-1, 1, 0): 1 / 2.
    EXPECT_NEAR(0.5, Similarity({1, 2, 3}, {1, 3, 2}), 1e-6);
}

TEST(PlotSimilarity, ShorterReference_IsFoundWithin) {
    EXPECT_NEAR(1.0, Similarity({9, 1, 5, 2, 7, 7}, {1, 5, 2}), 1e-6);
}

TEST(PlotSimilarity, LongerReference_Throws) {
    EXPECT_THROW(Similarity({1, 5, 2}, {9, 1, 5, 2}), TolException);
}

// ---- pictures ----

TEST(PlotPicture, CoiZero_IsBlack) {
    OrvPlotData data;
    data.InitPlotData(0, 10, 1, 0, true);
    data.y[0][10] = 10;
    Image picture = Drawn(data);
    ASSERT_EQ(600, picture.Width());
    ASSERT_EQ(260, picture.Height());
    // (10, 10) stands at (570, 30); nothing else is drawn there but its own joining line.
    EXPECT_EQ((Pixel{0, 0, 0}), PixelAt(picture, 571, 30));
}

TEST(PlotPicture, Coi_GivesTheColour) {
    OrvPlotData data;
    data.InitPlotData(0, 10, 4, 1, true);
    for (Floats& series : data.y) series[10] = 10;
    EXPECT_EQ((Pixel{255, 0, 0}), PixelAt(Drawn(data), 571, 30));
    data.coi = 2;
    EXPECT_EQ((Pixel{0, 255, 0}), PixelAt(Drawn(data), 571, 30));
    data.coi = 3;
    EXPECT_EQ((Pixel{0, 0, 255}), PixelAt(Drawn(data), 571, 30));
}

TEST(PlotPicture, CoiWithoutASeries_DrawsTheFirstInItsColour) {
    OrvPlotData data;
    data.InitPlotData(0, 10, 1, 3, true);
    data.y[0][10] = 10;
    EXPECT_EQ((Pixel{0, 0, 255}), PixelAt(Drawn(data), 571, 30));
}

TEST(PlotPicture, PointsOutsideTheRange_AreLeftOut) {
    OrvPlotData data;
    data.InitPlotData(0, 10, 1, 1, true);
    data.y[0] = {0, 1, 2, 3, 4, 5, 900, 900, 900, 900, 900};
    data.xRange = {0, 5};
    // (5, 5) is the last point then, at (570, 30).
    EXPECT_EQ((Pixel{255, 0, 0}), PixelAt(Drawn(data), 571, 30));
}

TEST(PlotPicture, MarkerLines_HaveTheColourOfTheirGroup) {
    OrvPlotData data;
    data.InitPlotData(0, 100, 1, 0, true);
    data.y[0][100] = 100;
    data.verticalMarkers = {{20}, {40}, {60}, {80}};
    Image picture = Drawn(data);
    // Y spans 0 to 105, X 0 to 100 (5.4 columns each); the upper end of a line stands at row 30.
    EXPECT_EQ((Pixel{255, 128, 0}), PixelAt(picture, 30 + 108 + 1, 30));
    EXPECT_EQ((Pixel{0, 255, 0}), PixelAt(picture, 30 + 216 + 1, 30));
    EXPECT_EQ((Pixel{255, 0, 255}), PixelAt(picture, 30 + 324 + 1, 30));
    EXPECT_EQ((Pixel{255, 0, 255}), PixelAt(picture, 30 + 432 + 1, 30));
}

TEST(PlotPicture, HorizontalMarker_SpansTheAbscissae) {
    OrvPlotData data;
    data.InitPlotData(0, 100, 1, 0, true);
    data.y[0][100] = 100;
    data.horizontalMarkers = {{50}};
    // X spans 0 to 105; the right end of the line stands at column 570, in the middle row.
    EXPECT_EQ((Pixel{255, 128, 0}), PixelAt(Drawn(data), 571, 130));
}

TEST(PlotPicture, SecondSave_GivesTheSamePictureAndLeavesNoFigure) {
    support::TempDir const dir;
    PlotFilter const filter("Filter");
    OrvPlotData data = Sample();
    data.verticalMarkers = {{2}};
    filter.SavePlotImage(dir / "p.png", data);
    std::string const first = ReadBytes(dir / "p.png");
    filter.SavePlotImage(dir / "p.png", data);
    EXPECT_EQ(first, ReadBytes(dir / "p.png"));
    EXPECT_EQ(0U, CvPlot::PlotManager::Instance().CountSeries(dir / "p.png"));
}

TEST(PlotPicture, ReloadedData_GiveTheSamePicture) {
    support::TempDir const dir;
    PlotFilter const filter("Filter");
    OrvPlotData reloaded;
    ASSERT_TRUE(Loaded(Words(SampleWords), reloaded));
    filter.SavePlotImage(dir / "a.png", Sample());
    filter.SavePlotImage(dir / "b.png", reloaded);
    EXPECT_EQ(ReadBytes(dir / "a.png"), ReadBytes(dir / "b.png"));
}

TEST(PlotPicture, Bars_AreDrawnWhereTheFilterAsksForThem) {
    support::TempDir const dir;
    PlotFilter filter("Filter");
    filter.SavePlotImage(dir / "a.png", Sample());
    filter.ShowBars();
    filter.SavePlotImage(dir / "b.png", Sample());
    EXPECT_NE(ReadBytes(dir / "a.png"), ReadBytes(dir / "b.png"));
}

TEST(PlotPicture, EmptyData_WriteNothing) {
    support::TempDir const dir;
    OrvPlotData empty;
    empty.verticalMarkers = {{1}};
    empty.horizontalMarkers = {{1}};
    PlotFilter("Filter").SavePlotImage(dir / "p.png", empty);
    EXPECT_FALSE(wxFileExists(dir / "p.png"));
}
