// SPDX-License-Identifier: Apache-2.0
#include "filters/tablefilter.h"

#include "filters/exif.h"
#include "filters/jpegtables.h"
#include "tests/filters/filterengine.h"

namespace {

using support::EncodeJpeg;
using support::ReadBytes;
using support::RowOf;
using support::TableOf;
using support::WithExif;

class TableFilter : public support::FilterEngine {
protected:
    wxString Camera(wxString const& name, std::string const& make) {
        return Bytes(name, WithExif(EncodeJpeg(64, 48), make, "Lumora 60"));
    }
};

}  // namespace

TEST_F(TableFilter, EmptySlots_GiveNoRow) {
    auto* filter = Add<OrvFilterExif>();
    Go(filter);
    EXPECT_TRUE(IsDone());
    EXPECT_TRUE(TableOf(filter).empty());
    EXPECT_EQ(OrvFilterConfiguration::NotCalculated, filter->GetStatus(Evidence));
}

TEST_F(TableFilter, EvidenceAlone_GivesTheRowsOfItsTable) {
    auto* filter = Add<OrvFilterExif>();
    Load(Camera("a.jpg", "Haldenmann"));
    Go(filter);
    EXPECT_EQ(context->GetImageDetails(Evidence).Metadata, TableOf(filter));
    EXPECT_EQ((VecString{"IFD0:Make", "Haldenmann"}), RowOf(TableOf(filter), "IFD0:Make"));
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(TableFilter, Reference_GivesTheComparison) {
    auto* filter = Add<OrvFilterExif>();
    Load(Camera("a.jpg", "Haldenmann"));
    Load(Camera("b.jpg", "Ostermann"), Reference);
    Go(filter);
    VecVecString const table = TableOf(filter);
    EXPECT_EQ((VecString{"#Id", "Name", "Evidence Image Value", "Reference Image Value", "Comparison"}), table.at(0));
    VecString make = RowOf(table, "IFD0:Make");
    make.erase(make.begin());
    EXPECT_EQ((VecString{"IFD0:Make", "Haldenmann", "Ostermann", "?Different"}), make);
    EXPECT_EQ("", RowOf(table, "IFD0:Model").at(4));
}

TEST_F(TableFilter, ReferenceThatComesAndGoes_IsFollowed) {
    auto* filter = Add<OrvFilterExif>();
    Load(Camera("a.jpg", "Haldenmann"));
    Go(filter);
    VecVecString const alone = TableOf(filter);
    Load(Camera("b.jpg", "Ostermann"), Reference);
    Go(filter);
    EXPECT_EQ("#Id", TableOf(filter).at(0).at(0));
    Load("", Reference);
    Go(filter);
    EXPECT_EQ(alone, TableOf(filter));
    Load("", Evidence);
    Go(filter);
    EXPECT_TRUE(TableOf(filter).empty());
}

TEST_F(TableFilter, ReferenceAlone_StandsInItsOwnColumn) {
    auto* filter = Add<OrvFilterExif>();
    Load(Camera("b.jpg", "Ostermann"), Reference);
    Go(filter);
    VecString const make = RowOf(TableOf(filter), "IFD0:Make");
    EXPECT_EQ("", make.at(2));
    EXPECT_EQ("Ostermann", make.at(3));
    EXPECT_EQ("", make.at(4));
    EXPECT_EQ("Ok", filter->GetStatusString(Reference));
}

TEST_F(TableFilter, OtherFormat_IsUnsupportedForAJpegFilter) {
    auto* filter = Add<OrvFilterJpegTables>();
    Load(Save("a.png", support::Ramp(20, 20, IPL_DEPTH_8U, 3)));
    Go(filter);
    EXPECT_TRUE(IsDone());
    EXPECT_TRUE(TableOf(filter).empty());
    EXPECT_EQ("Unsupported", filter->GetStatusString(Evidence));
    EXPECT_NE(wxString::npos, filter->GetReport(dir / "r.html", "", "").find("No data available."));
}

TEST_F(TableFilter, UnsupportedSide_IsBlankAndWithoutMarks) {
    auto* filter = Add<OrvFilterJpegTables>();
    Load(Jpeg("a.jpg"));
    Load(Save("b.png", support::Ramp(20, 20, IPL_DEPTH_8U, 3)), Reference);
    Go(filter);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    EXPECT_EQ("Unsupported", filter->GetStatusString(Reference));
    // As with the Evidence alone.
    EXPECT_EQ((VecString{"Chroma Subsampling", "4:2:0"}), RowOf(TableOf(filter), "Chroma Subsampling"));
}

TEST_F(TableFilter, UnsupportedEvidence_LeavesTheReferenceWithoutMarks) {
    auto* filter = Add<OrvFilterJpegTables>();
    Load(Save("a.png", support::Ramp(20, 20, IPL_DEPTH_8U, 3)));
    Load(Jpeg("b.jpg"), Reference);
    Go(filter);
    VecString const row = RowOf(TableOf(filter), "Chroma Subsampling");
    EXPECT_EQ("", row.at(2));
    EXPECT_EQ("4:2:0", row.at(3));
    for (VecString const& each : TableOf(filter)) {
        EXPECT_EQ(each[0] == "#Id" ? "Comparison" : "", each.at(4)) << each.at(1);
    }
}

TEST_F(TableFilter, SavedText_HasAllColumnsOfOneFile) {
    auto* filter = Add<OrvFilterExif>();
    Load(Camera("a.jpg", "Haldenmann"));
    Go(filter);
    filter->SaveOutputBase(dir / "t.tsv");
    EXPECT_NE(std::string::npos, ReadBytes(dir / "t.tsv").find("IFD0:Make\tHaldenmann\n"));
    filter->SaveOutputBase(dir / "t.txt");
    EXPECT_NE(std::string::npos, ReadBytes(dir / "t.txt").find("IFD0:Make"));
    EXPECT_EQ(".txt", filter->GetExportFilename(false).Right(4));
}

TEST_F(TableFilter, SavedComparison_HasBothSides) {
    auto* filter = Add<OrvFilterExif>();
    Load(Camera("a.jpg", "Haldenmann"));
    Load(Camera("b.jpg", "Ostermann"), Reference);
    Go(filter);
    filter->SaveOutputBase(dir / "t.tsv");
    std::string const text = ReadBytes(dir / "t.tsv");
    EXPECT_EQ(0U, text.find("#Id\tName\tEvidence Image Value\tReference Image Value\tComparison\n"));
    EXPECT_NE(std::string::npos, text.find("\tIFD0:Make\tHaldenmann\tOstermann\t?Different\n"));
}

TEST_F(TableFilter, Report_HoldsTheTableAndNoSecondPage) {
    auto* filter = Add<OrvFilterExif>();
    Load(Camera("a.jpg", "<b>&amp;"));
    Go(filter);
    filter->SaveOutputBatch(dir / "out.png");
    EXPECT_EQ(0U, ReadBytes(dir / "out.html").find("<!DOCTYPE html>"));
    wxString const report = filter->GetReport(dir / "out.png", dir.Path(), "x");
    EXPECT_EQ(wxString::npos, report.find("<html"));
    EXPECT_NE(wxString::npos, report.find("<table"));
    EXPECT_NE(wxString::npos, report.find("&lt;b&gt;&amp;amp;"));
    EXPECT_NE(wxString::npos, report.find("</table>"));
}

TEST_F(TableFilter, ReportWithoutAFile_IsEmpty) {
    auto* filter = Add<OrvFilterExif>();
    EXPECT_EQ("", filter->GetReportData(dir / "missing.html", ""));
}

TEST_F(TableFilter, SecondRun_GivesTheSameBytes) {
    auto* filter = Add<OrvFilterJpegTables>();
    wxString const path = Jpeg("a.jpg");
    Load(path);
    Go(filter);
    std::string const first = Saved(filter);
    Load(Jpeg("b.jpg", 32, 32, 7));
    Go(filter);
    Load(path);
    Go(filter);
    EXPECT_EQ(first, Saved(filter));
    // Tables are made anew each time.
    EXPECT_FALSE(filter->ConfiguredFromCache(Evidence));
}
