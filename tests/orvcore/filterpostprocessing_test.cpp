// SPDX-License-Identifier: Apache-2.0
#include "tests/orvcore/resultfilters.h"
#include "tolbase/exception.h"

using support::FirstRow;
using support::ImageFilter;
using support::PixelAt;
using support::Row;
using support::Solid;

namespace {

using Values = std::vector<int>;

// A filter that stands alone, with its parameters made.
ImageFilter Started(ImageFilter::Kind kind) {
    ImageFilter filter("Filter", kind);
    filter.InitFilter();
    return filter;
}

// The sliders Highlights, Midtones, Shadows after a call with these values; -1 leaves one as it is.
Values MoveSliders(ImageFilter& filter, int highlights, int midtones, int shadows) {
    int const values[] = {highlights, midtones, shadows};
    for (size_t i = 0; i < 3; ++i) {
        if (values[i] >= 0) filter.Post()[i].Set(boost::any(values[i]));
    }
    filter.ApplyPostProcessing(Evidence);
    Values result;
    for (size_t i = 0; i < 3; ++i) result.push_back(filter.Post()[i].GetValue<int>());
    return result;
}

Values Scaled(Image const& output, int scale) {
    ImageFilter filter = Started(ImageFilter::Scale);
    filter.Post()[0].Set(boost::any(scale));
    filter.GetOutputImage(Evidence) = output;
    filter.ApplyPostProcessing(Evidence);
    return FirstRow(filter.GetOutputImagePostProcessing(Evidence));
}

// A gray picture of 10 by 10 whose first `count` pixels are `value`, the others `rest`.
Image Dotted(int count, int value, int rest) {
    Image picture = Image::Create(10, 10, IPL_DEPTH_8U, 1);
    for (int i = 0; i < 100; ++i) {
        picture.Data()[i / 10 * picture.Step() + i % 10] = static_cast<unsigned char>(i < count ? value : rest);
    }
    return picture;
}

class FilterMap : public support::ResultEngine {
protected:
    // The post-processed picture of a run on `input` whose output is `output`.
    Image Processed(Image const& input, Image const& output, int type, int saturation) {
        m_filter = Add(new ImageFilter("Map", ImageFilter::Map));
        Load(Png("a.png", input));
        m_filter->onApply = [this, output](OrvFileId id) { m_filter->GetOutputImage(id) = output; };
        VecParameter post = m_filter->GetParametersPostProcessing();
        post[0].Set(boost::any(type));
        post[1].Set(boost::any(saturation));
        Go(m_filter, post);
        return m_filter->GetOutputImagePostProcessing(Evidence);
    }
    ImageFilter* m_filter = nullptr;
};

}  // namespace

// ---- Levels ----

TEST(FilterLevels, FirstCallWithDefaults_ComputesTheMidtone) {
    ImageFilter filter = Started(ImageFilter::Levels);
    EXPECT_EQ((Values{255, 127, 0}), MoveSliders(filter, -1, 30, -1));
}

TEST(FilterLevels, UnchangedEnds_LeaveTheMidtoneToTheUser) {
    ImageFilter filter = Started(ImageFilter::Levels);
    MoveSliders(filter, -1, -1, -1);
    EXPECT_EQ((Values{255, 30, 0}), MoveSliders(filter, -1, 30, -1));
    EXPECT_EQ((Values{255, 132, 10}), MoveSliders(filter, -1, -1, 10));
    EXPECT_EQ((Values{201, 105, 10}), MoveSliders(filter, 201, -1, -1));
}

TEST(FilterLevels, ShadowsMovedAboveHighlights_StopBelowThem) {
    ImageFilter filter = Started(ImageFilter::Levels);
    EXPECT_EQ((Values{100, 50, 0}), MoveSliders(filter, 100, -1, 0));
    EXPECT_EQ((Values{100, 99, 99}), MoveSliders(filter, -1, -1, 200));
}

TEST(FilterLevels, HighlightsMovedBelowShadows_StopAboveThem) {
    ImageFilter filter = Started(ImageFilter::Levels);
    EXPECT_EQ((Values{255, 227, 200}), MoveSliders(filter, -1, -1, 200));
    EXPECT_EQ((Values{201, 200, 200}), MoveSliders(filter, 100, -1, -1));
}

TEST(FilterLevels, NothingMoved_LeavesTheOrderReversed) {
    // The memory begins with Shadows 255 and Highlights 0.
    ImageFilter filter = Started(ImageFilter::Levels);
    EXPECT_EQ((Values{0, 40, 255}), MoveSliders(filter, 0, 40, 255));
}

TEST(FilterLevels, EqualEndsAtTheTop_StayAsTheyAre) {
    ImageFilter filter = Started(ImageFilter::Levels);
    MoveSliders(filter, -1, -1, -1);
    EXPECT_EQ((Values{255, 255, 255}), MoveSliders(filter, 255, -1, 255));
}

TEST(FilterLevels, ShadowsMovedAboveZeroHighlights_AreLimitedToZero) {
    ImageFilter filter = Started(ImageFilter::Levels);
    EXPECT_EQ((Values{0, 0, 0}), MoveSliders(filter, 0, -1, 0));
    EXPECT_EQ((Values{0, 0, 0}), MoveSliders(filter, -1, -1, 1));
}

TEST(FilterLevels, Memory_IsSharedByAllFilters) {
    ImageFilter first = Started(ImageFilter::Levels), second = Started(ImageFilter::Levels);
    MoveSliders(first, -1, -1, -1);
    EXPECT_EQ((Values{255, 60, 0}), MoveSliders(second, -1, 60, -1));
}

TEST(FilterLevels, Output_IsMappedAndKept) {
    ImageFilter filter = Started(ImageFilter::Levels);
    filter.GetOutputImage(Evidence) = Row({90, 125, 150, 220});
    MoveSliders(filter, 200, -1, 100);
    EXPECT_EQ((Values{0, 64, 128, 255}), FirstRow(filter.GetOutputImagePostProcessing(Evidence)));
    EXPECT_EQ((Values{90, 125, 150, 220}), FirstRow(filter.GetOutputImage(Evidence)));
}

TEST(FilterLevels, NoOutput_GivesNone) {
    ImageFilter filter = Started(ImageFilter::Levels);
    filter.GetOutputImagePostProcessing(Evidence) = Row({1});
    MoveSliders(filter, -1, -1, -1);
    EXPECT_FALSE(filter.GetOutputImagePostProcessing(Evidence).IsOk());
}

TEST(FilterLevels, MissingParameters_AreReported) {
    static std::string condition;
    ImageFilter filter("Filter", ImageFilter::Levels);
    filter.GetOutputImage(Evidence) = Row({5});
    auto const old = wxSetAssertHandler([](wxString const&, int, wxString const&, wxString const& text,
                                           wxString const&) { condition = text.utf8_str(); });
    filter.ApplyPostProcessing(Evidence);
    wxSetAssertHandler(old);
    EXPECT_EQ("m_parametersPostProcessing.size() > 2", condition);
    EXPECT_EQ((Values{5}), FirstRow(filter.GetOutputImagePostProcessing(Evidence)));
}

// ---- Scale ----

TEST(FilterScale, Factor_AmplifiesAndClips) {
    EXPECT_EQ((Values{0, 60, 255, 255}), Scaled(Row({0, 20, 85, 100}), 3));
    EXPECT_EQ((Values{0, 20, 85, 100}), Scaled(Row({0, 20, 85, 100}), 1));
}

TEST(FilterScale, Auto_TakesTheMiddleOfTheTones) {
    // Ten pixels: two dark and two bright ones fall away; the mean of 30 to 80 is 55, A is 137.5.
    // 10: 2550 / 147.5 = 17.3; 50: 12750 / 187.5 = 68; 100: 25500 / 237.5 = 107.4.
    Values const result = Scaled(Row({10, 20, 30, 40, 50, 60, 70, 80, 90, 100}), 0);
    EXPECT_EQ((Values{17, 32, 45, 57, 68, 77, 86, 93, 100, 107}), result);
}

TEST(FilterScale, Auto_SplitsTheBinsAtTheEnds) {
    // A fifth is 2 pixels. One of the three at 10 and one of the three at 200 belong to the middle:
    // (10 + 4 * 50 + 200) / 6 = 68.33, A = 170.83. 10: 2550 / 180.83 = 14.1; 50: 57.7; 200: 137.5.
    Values const result = Scaled(Row({10, 10, 10, 50, 50, 50, 50, 200, 200, 200}), 0);
    EXPECT_EQ((Values{14, 14, 14, 57, 57, 57, 57, 137, 137, 137}), result);
}

TEST(FilterScale, AutoOfOneTone_LandsBelowHalfScale) {
    // A is 2.5 times 255: 65025 / 892.5 = 72.9.
    EXPECT_EQ((Values{72, 72, 72, 72, 72}), Scaled(Row({255, 255, 255, 255, 255}), 0));
}

TEST(FilterScale, AutoOfBlack_StaysBlack) {
    EXPECT_EQ((Values{0, 0, 0, 0, 0}), Scaled(Row({0, 0, 0, 0, 0}), 0));
}

TEST(FilterScale, AutoOfAColourPicture_GoesByTheGreatestChannel) {
    // Every pixel's greatest channel is 100, so A is 250: 100: 25500 / 350 = 72.9; 50: 12750 / 300 = 42.5; 0 stays.
    EXPECT_EQ((Values{72, 0, 42, 72, 0, 42}), Scaled(Solid(2, 1, {100, 0, 50}), 0));
}

TEST(FilterScale, Output_IsKeptAndEmptyGivesEmpty) {
    ImageFilter filter = Started(ImageFilter::Scale);
    filter.GetOutputImage(Evidence) = Row({10, 20});
    filter.ApplyPostProcessing(Evidence);
    EXPECT_EQ((Values{10, 20}), FirstRow(filter.GetOutputImage(Evidence)));
    filter.GetOutputImage(Evidence) = Image();
    filter.ApplyPostProcessing(Evidence);
    EXPECT_FALSE(filter.GetOutputImagePostProcessing(Evidence).IsOk());
}

// ---- Map ----

TEST_F(FilterMap, Gray_IsAPlainCopy) {
    EXPECT_EQ((Values{10, 20, 30}), PixelAt(Processed(Solid(4, 4, {1, 2, 3}), Solid(4, 4, {10, 20, 30}), 0, 0), 2, 2));
}

TEST_F(FilterMap, GrayOfOneChannel_IsAPlainCopy) {
    EXPECT_EQ((Values{77}), PixelAt(Processed(Solid(4, 4, {1, 2, 3}), Solid(4, 4, {77}), 0, 0), 2, 2));
}

TEST_F(FilterMap, Color_ClearsBlueAndInvertsGreen) {
    EXPECT_EQ((Values{0, 235, 30}), PixelAt(Processed(Solid(4, 4, {1, 2, 3}), Solid(4, 4, {10, 20, 30}), 1, 0), 2, 2));
    EXPECT_EQ((Values{10, 20, 30}), PixelAt(m_filter->GetOutputImage(Evidence), 2, 2));
}

TEST_F(FilterMap, Overlay_ShowsTheDarkPartsOfTheMap) {
    // (10, 250, 0) maps to (0, 5, 0): gray 3, shown. (10, 20, 30) maps to (0, 235, 30): gray 147, not shown.
    Image output = Solid(2, 1, {10, 20, 30});
    output.Data()[1] = 250;
    output.Data()[2] = 0;
    EXPECT_EQ((Values{0, 5, 0, 1, 2, 3}), FirstRow(Processed(Solid(2, 1, {1, 2, 3}), output, 2, 0)));
}

TEST_F(FilterMap, OverlayInverted_ShowsTheBrightParts) {
    Image output = Solid(2, 1, {10, 20, 30});
    output.Data()[1] = 250;
    output.Data()[2] = 0;
    EXPECT_EQ((Values{1, 2, 3, 0, 235, 30}), FirstRow(Processed(Solid(2, 1, {1, 2, 3}), output, 3, 0)));
    EXPECT_EQ((Values{1, 2, 3}), PixelAt(context->GetImage(Evidence), 0, 0));
}

TEST_F(FilterMap, Overlay_SplitsAtAGrayValueOf100) {
    // Map (0, 170, 0) has the gray value 99.79, rounded 100; map (0, 171, 0) has 100.4, rounded 100; (0, 172, 0) 101.
    Image output = Solid(3, 1, {0, 85, 0});
    output.Data()[4] = 84;
    output.Data()[7] = 83;
    EXPECT_EQ((Values{0, 170, 0, 0, 171, 0, 1, 2, 3}), FirstRow(Processed(Solid(3, 1, {1, 2, 3}), output, 2, 0)));
}

TEST_F(FilterMap, OverlayOfAnotherSize_FailsTheRun) {
    Processed(Solid(4, 4, {1, 2, 3}), Solid(5, 4, {10, 20, 30}), 2, 0);
    EXPECT_EQ(OrvCommandIdFilterFailed, recorder.Ids().back());
    EXPECT_FALSE(m_filter->GetErrorMessage().empty());
    EXPECT_FALSE(m_filter->GetOutputImage(Evidence).IsOk());
}

TEST_F(FilterMap, ColourMapOfOneChannel_FailsTheRun) {
    Processed(Solid(4, 4, {1, 2, 3}), Solid(4, 4, {10}), 1, 0);
    EXPECT_EQ(OrvCommandIdFilterFailed, recorder.Ids().back());
    EXPECT_FALSE(m_filter->GetErrorMessage().empty());
}

TEST_F(FilterMap, Saturation_ShowsHighlightsYellowAndShadowsBlue) {
    Image input = Row({250, 249, 5, 6}).ToColor().Clone();
    EXPECT_EQ((Values{0, 255, 255, 7, 7, 7, 255, 0, 0, 7, 7, 7}),
              FirstRow(Processed(input, Solid(4, 1, {7, 7, 7}), 0, 1)));
    EXPECT_EQ((Values{7, 7, 7}), PixelAt(m_filter->GetOutputImage(Evidence), 0, 0));
}

TEST_F(FilterMap, SaturationOfAnotherSize_FailsTheRun) {
    Processed(Solid(4, 4, {1, 2, 3}), Solid(5, 4, {10, 20, 30}), 0, 1);
    EXPECT_EQ(OrvCommandIdFilterFailed, recorder.Ids().back());
}

// ---- warning ----

TEST(FilterWarning, ExactlyTwoPercent_IsNone) {
    ImageFilter const filter("Filter");
    Image const first = Dotted(0, 0, 0);
    EXPECT_FALSE(filter.CalculateWarningFromMap(first, Dotted(2, 255, 0)));
    EXPECT_TRUE(filter.CalculateWarningFromMap(first, Dotted(3, 255, 0)));
}

TEST(FilterWarning, Thresholds_Are240And200) {
    ImageFilter const filter("Filter");
    EXPECT_TRUE(filter.CalculateWarningFromMap(Dotted(0, 0, 240), Dotted(100, 201, 0)));
    EXPECT_FALSE(filter.CalculateWarningFromMap(Dotted(0, 0, 241), Dotted(100, 201, 0)));
    EXPECT_FALSE(filter.CalculateWarningFromMap(Dotted(0, 0, 240), Dotted(100, 200, 0)));
}

TEST(FilterWarning, Pictures_AreNotChanged) {
    ImageFilter const filter("Filter");
    Image const first = Dotted(5, 10, 20), second = Dotted(5, 210, 30);
    filter.CalculateWarningFromMap(first, second);
    EXPECT_EQ((Values{10}), PixelAt(first, 0, 0));
    EXPECT_EQ((Values{30}), PixelAt(second, 9, 9));
}

TEST(FilterWarning, MissingMap_Throws) {
    ImageFilter const filter("Filter");
    EXPECT_THROW(filter.CalculateWarningFromMap(Image(), Dotted(1, 1, 1)), TolException);
}
