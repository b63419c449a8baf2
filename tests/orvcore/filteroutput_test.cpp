// SPDX-License-Identifier: Apache-2.0
// What the result-typed filters write beside a report, and their part of it.
#include <wx/filefn.h>

#include "tests/orvcore/resultfilters.h"

using support::CustomFilter;
using support::ImageFilter;
using support::PlotFilter;
using support::Solid;
using support::TextFilter;

namespace {

class ResultReport : public support::ResultEngine {
protected:
    // Saves a filter's picture of that size for a report; the saved one's size, and the remembered width.
    std::pair<wxSize, int> BatchSize(int width, int height, int most, int least) {
        ImageFilter filter("Filter");
        filter.GetOutputImagePostProcessing(Evidence) = Solid(width, height, {10, 20, 30});
        context->SetOutputImageMaxWidth(most);
        context->SetOutputImageMinWidth(least);
        filter.SaveOutputBatch(dir / "r.png");
        Image const saved(tcvLoadImage(dir / "r.png", true, false));
        return {wxSize(saved.Width(), saved.Height()), filter.GetOutputBatchSize()};
    }
    PlotFilter* Plot() {
        PlotFilter* filter = Add(new PlotFilter("Plot"));
        auto const data = filter->GetPlotData(Evidence);
        data->InitPlotData(0, 3, 1, 0, true);
        return filter;
    }
};

using Sized = std::pair<wxSize, int>;

}  // namespace

TEST_F(ResultReport, NarrowPicture_IsEnlargedBelowTheGreatestWidth) {
    EXPECT_EQ(Sized(wxSize(800, 400), 800), BatchSize(500, 250, 1000, 800));
}

TEST_F(ResultReport, WidePicture_IsReduced) {
    EXPECT_EQ(Sized(wxSize(1000, 500), 1000), BatchSize(1200, 600, 1000, 0));
}

TEST_F(ResultReport, LeastWidthAlone_NeverEnlarges) {
    EXPECT_EQ(Sized(wxSize(500, 250), 500), BatchSize(500, 250, 0, 800));
}

TEST_F(ResultReport, NoLimits_KeepTheSize) {
    EXPECT_EQ(Sized(wxSize(500, 333), 500), BatchSize(500, 333, 0, 0));
    EXPECT_EQ(Sized(wxSize(500, 250), 500), BatchSize(500, 250, 600, 400));
}

TEST_F(ResultReport, Height_IsCutAndNeverZero) {
    // 100 / (300 / 200) = 66.7; 100 / (3000 / 1) = 0.03.
    EXPECT_EQ(Sized(wxSize(100, 66), 100), BatchSize(300, 200, 100, 0));
    EXPECT_EQ(Sized(wxSize(100, 1), 100), BatchSize(3000, 1, 100, 0));
}

TEST_F(ResultReport, HeightThatComesOutALittleShort_IsCutUnderALimitAlone) {
    // In doubles 2 / (2 / 93) is a little below 93.
    EXPECT_EQ(Sized(wxSize(2, 93), 2), BatchSize(2, 93, 0, 0));
    EXPECT_EQ(Sized(wxSize(2, 92), 2), BatchSize(2, 93, 0, 1));
    EXPECT_EQ(Sized(wxSize(2, 92), 2), BatchSize(2, 93, 100, 0));
}

TEST_F(ResultReport, NoPicture_LeavesNoFileAndNoImage) {
    ImageFilter filter("Filter");
    filter.SaveOutputBatch(dir / "r.png");
    EXPECT_FALSE(wxFileExists(dir / "r.png"));
    EXPECT_EQ(0, filter.GetOutputBatchSize());
    EXPECT_EQ("", filter.GetReportData(dir / "r.png", ""));
}

TEST_F(ResultReport, PictureThatCantBeSaved_IsNotShown) {
    ImageFilter filter("Filter");
    filter.GetOutputImagePostProcessing(Evidence) = Solid(5, 5, {1, 2, 3});
    filter.SaveOutputBatch(dir / "none/r.png");
    EXPECT_EQ(0, filter.GetOutputBatchSize());
    EXPECT_EQ("", filter.GetReportData(dir / "none/r.png", ""));
}

TEST_F(ResultReport, WidePicture_IsShownInTheDefaultWidth) {
    ImageFilter filter("Filter");
    filter.GetOutputImagePostProcessing(Evidence) = Solid(641, 4, {1, 2, 3});
    filter.SaveOutputBatch(dir / "a b.png");
    EXPECT_EQ("<img src=\"a b.png\" width=\"640\" alt=\"\">\n", filter.GetReportData(dir / "a b.png", "elsewhere"));
}

TEST_F(ResultReport, NarrowPicture_IsShownInItsOwnSize) {
    ImageFilter filter("Filter");
    filter.GetOutputImagePostProcessing(Evidence) = Solid(640, 4, {1, 2, 3});
    filter.SaveOutputBatch(dir / "r.png");
    EXPECT_EQ("<img src=\"r.png\" alt=\"\">\n", filter.GetReportData(dir / "r.png", "elsewhere"));
}

TEST_F(ResultReport, Plot_RemembersTheDefaultWidthAndShowsItsOwnSize) {
    PlotFilter* filter = Plot();
    EXPECT_EQ("", filter->GetReportData(dir / "p.png", ""));
    filter->SaveOutputBatch(dir / "p.png");
    EXPECT_TRUE(wxFileExists(dir / "p.png"));
    EXPECT_EQ(640, filter->GetOutputBatchSize());
    EXPECT_EQ("<img src=\"p.png\" alt=\"\">\n", filter->GetReportData(dir / "p.png", ""));
}

TEST_F(ResultReport, EmptyPlot_IsNotShown) {
    PlotFilter* filter = Plot();
    filter->SaveOutputBatch(dir / "p.png");
    filter->ResetSlot(Evidence);
    filter->SaveOutputBatch(dir / "p.png");
    EXPECT_EQ(0, filter->GetOutputBatchSize());
    EXPECT_EQ("", filter->GetReportData(dir / "p.png", ""));
}

TEST_F(ResultReport, PlotWithoutPointsInItsRange_DoesNotShowAnOlderPicture) {
    PlotFilter* filter = Plot();
    filter->SaveOutputBatch(dir / "p.png");
    filter->GetPlotData(Evidence)->xRange = {50, 60};
    filter->SaveOutputBatch(dir / "p.png");
    EXPECT_EQ(0, filter->GetOutputBatchSize());
    EXPECT_FALSE(wxFileExists(dir / "p.png"));
}

TEST_F(ResultReport, SaveOutput_WritesThePictureHandedOver) {
    ImageFilter image("Image");
    PlotFilter plot("Plot");
    for (OrvFilter* filter : std::vector<OrvFilter*>{&image, &plot}) {
        filter->SaveOutputBase(dir / "before.png");
        EXPECT_FALSE(wxFileExists(dir / "before.png"));
        filter->SetImageToSave(Solid(7, 5, {1, 2, 3}));
        filter->SaveOutputBase(dir / (filter->GetName() + ".png"));
        Image const saved(tcvLoadImage(dir / (filter->GetName() + ".png"), true, false));
        EXPECT_EQ(7, saved.Width());
        EXPECT_EQ((std::vector<int>{1, 2, 3}), support::PixelAt(saved, 6, 4));
    }
}

TEST_F(ResultReport, SelectorString_IsThatOfTheWritableFormats) {
    EXPECT_EQ("Pictures|*.jpg;*.png", ImageFilter("Filter").GetOutputFileSelectorString());
    EXPECT_EQ("Pictures|*.jpg;*.png", PlotFilter("Filter").GetOutputFileSelectorString());
}

TEST_F(ResultReport, ExportNames_EndInTheCacheFormat) {
    Load(Png("a.png", Solid(8, 6, {1, 2, 3})));
    EXPECT_EQ("a.png-Filter.png", ImageFilter("Filter").GetExportFilename(true));
    EXPECT_EQ("a.png-Filter.png", PlotFilter("Filter").GetExportFilename(true));
    EXPECT_EQ("a.png-Filter.txt", TextFilter("Filter").GetExportFilename(true));
}

TEST_F(ResultReport, ExportName_HoldsPostProcessingOnDemand) {
    Load(Png("a.png", Solid(8, 6, {1, 2, 3})));
    ImageFilter* filter = Add(new ImageFilter("Filter", ImageFilter::Scale, {CreateParameterInt("n", "", 3)}));
    EXPECT_EQ("a.png-Filter-3-0.png", filter->GetExportFilename(true));
    EXPECT_EQ("a.png-Filter-3.png", filter->GetExportFilename(false));
}

TEST_F(ResultReport, Report_IsHeadingResultAndParameters) {
    Load(Png("a.png", Solid(8, 6, {1, 2, 3})));
    CustomFilter filter("My <Filter>", {CreateParameterInt("Size", "", 3)});
    filter.Out() = {CreateParameterInt("Found", "", 12), CreateParameterTable("Table", "")};
    filter.SetText("result");
    filter.SaveOutputBatch(dir / "r.txt");
    filter.SetStatusOf(Evidence, OrvFilterConfiguration::Warning);
    EXPECT_EQ(
        "<br>\n<h3 id=\"here\">My &lt;Filter&gt; 3<span class=\"warning\">!- WARNING! -</span></h3>\n<br>\n"
        "<pre>result</pre>\n<p>Size: 3<br>\n</p>\n<p>Found: 12<br>\n</p>\n<br>\n",
        filter.GetReport(dir / "r.txt", dir.Path(), "here"));
}

TEST_F(ResultReport, WarningOfTheReference_MarksNothing) {
    Load(Png("a.png", Solid(8, 6, {1, 2, 3})));
    CustomFilter filter("Filter");
    filter.SetStatusOf(Reference, OrvFilterConfiguration::Warning);
    EXPECT_EQ(wxString::npos, filter.GetReport(dir / "r.txt", dir.Path(), "").find("WARNING"));
}

TEST_F(ResultReport, JpegFilterOnAPng_HasNoDataAndNoParameters) {
    Load(Png("a.png", Solid(8, 6, {1, 2, 3})));
    CustomFilter filter("Filter", {CreateParameterInt("Size", "", 3)});
    filter.OnlyForJpeg();
    EXPECT_EQ("<br>\n<h3>Filter 3</h3>\n<br>\n<p>No data available.</p>\n<br>\n",
              filter.GetReport(dir / "r.txt", dir.Path(), ""));
}
