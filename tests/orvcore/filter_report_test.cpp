// SPDX-License-Identifier: Apache-2.0
#include "tests/orvcore/recordingfilter.h"

using support::Number;
using support::RecordingFilter;

namespace {

class FilterReport : public support::FilterEngine {};

}  // namespace

TEST_F(FilterReport, ExportName_HasNoEmptyParts) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter"));
    Load(Jpeg("a.jpg"));
    EXPECT_EQ("a.jpg-Filter.txt", filter->GetExportFilename(true));
}

TEST_F(FilterReport, ExportName_HoldsBothFilesAndAllParameters) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {Number("n", 3)}));
    filter->PostProcessing().push_back(Number("p", 4));
    Load(Jpeg("a.jpg"));
    Load(Jpeg("b.jpg"), Reference);
    EXPECT_EQ("a.jpg-b.jpg-Filter-3.txt", filter->GetExportFilename(false));
    EXPECT_EQ("a.jpg-b.jpg-Filter-3-4.txt", filter->GetExportFilename(true));
}

TEST_F(FilterReport, ExportName_IsClean) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {CreateParameterString("s", wxString(), "1/2")}));
    Load(Jpeg("a:b.jpg"));
    EXPECT_EQ("a_b.jpg-Filter-1_2.txt", filter->GetExportFilename(true));
}

TEST_F(FilterReport, SaveOutputBase_ReachesTheFilter) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter"));
    filter->SaveOutputBase("/x/result.txt");
    EXPECT_EQ("/x/result.txt", filter->saved);
}

TEST_F(FilterReport, Report_ListsInputAndOutputButNoOutputTexts) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {Number("Size", 3)}));
    filter->Output().push_back(Number("Found", 12));
    filter->Output().push_back(CreateParameterOutputString("Table", wxString()));
    Load(Jpeg("a.jpg"));
    const wxString report = filter->GetReport("/x/a.html", "/x", "here");
    EXPECT_NE(wxString::npos, report.find("Size: 3"));
    EXPECT_NE(wxString::npos, report.find("Found: 12"));
    EXPECT_EQ(wxString::npos, report.find("Table"));
    EXPECT_NE(wxString::npos, report.find("here"));
    EXPECT_EQ(wxString::npos, report.find("WARNING"));
}

TEST_F(FilterReport, Heading_MarksAWarningOfTheEvidenceAlone) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter"));
    Load(Jpeg("a.jpg"));
    filter->SetStatus(Reference, OrvFilterConfiguration::Warning);
    EXPECT_EQ(wxString::npos, filter->GetReport("p", "f", "").find("!- WARNING! -"));
    filter->SetStatus(Evidence, OrvFilterConfiguration::Warning);
    EXPECT_NE(wxString::npos, filter->GetReport("p", "f", "").find("!- WARNING! -"));
}

TEST_F(FilterReport, JpegOnlyFilterOnAnotherFormat_HasNoData) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {Number("Size", 3)}));
    filter->SetOnlyForJpeg();
    Load(Bmp("a.bmp"));
    const wxString report = filter->GetReport("p", "f", "");
    EXPECT_NE(wxString::npos, report.find("Filter 3"));
    EXPECT_NE(wxString::npos, report.find("No data available."));
    EXPECT_EQ(wxString::npos, report.find("Size"));
}

TEST_F(FilterReport, TextsOfTheUser_AreEscaped) {
    RecordingFilter* filter = Add(new RecordingFilter("A<b>", {CreateParameterString("s", wxString(), "<script>")}));
    Load(Jpeg("a.jpg"));
    const wxString report = filter->GetReport("p", "f", "");
    EXPECT_EQ(wxString::npos, report.find("<script>"));
    EXPECT_EQ(wxString::npos, report.find("<b>"));
    EXPECT_NE(wxString::npos, report.find("&lt;script&gt;"));
}
