// SPDX-License-Identifier: Apache-2.0
#include "orvcore/griffeyetable.h"

#include <gtest/gtest.h>

#include "orvcore/tablewriter.h"
#include "tests/orvcore/photos.h"
#include "tests/orvcore/slotfiles.h"
#include "tolbase/jsonalg.h"

namespace {

using Result = ImageInfoTableGriffeyePluginResult;
using ResultRow = ImageInfoTableGriffeyePlugin::ResultRow;

class PluginTable : public support::Slots {
protected:
    Result Analyse(VecString const& files) {
        Result result;
        OnWorker([&] { result = table.Evaluate(files); });
        return result;
    }
    ImageInfoTableGriffeyePlugin table;
};

ResultRow Rows(std::vector<NameValueDesc> const& rows) {
    return ResultRow{rows, true};
}

}  // namespace

TEST(PluginReport, RowWithoutWarnings_IsTrueAndPlain) {
    const MultiReport::Row row(Rows({{"Format", "JPEG", ""}, {"Warnings", "0", ""}}), "id-1");
    EXPECT_TRUE(std::get<0>(row));
    EXPECT_EQ("id-1", std::get<1>(row));
    EXPECT_EQ("Format: JPEG\r\nWarnings: 0\r\n", std::get<2>(row));
}

TEST(PluginReport, Warnings_LoseTheHardMarkerAloneAndAreBold) {
    const MultiReport::Row row(Rows({{"Width", "801", "!Odd width"},
                                     {"Size", "1", "?File Size is small"},
                                     {"Twice", "2", "!!x"},
                                     {"Warnings", "3", ""}}),
                               "");
    EXPECT_FALSE(std::get<0>(row));
    EXPECT_EQ(
        "Width: 801 - <b>Odd width</b>\r\nSize: 1 - <b>?File Size is small</b>\r\nTwice: 2 - <b>!x</b>\r\n"
        "Warnings: 3\r\n",
        std::get<2>(row));
}

TEST(PluginReport, ValuesAndMessages_AreEscaped) {
    const MultiReport::Row row(Rows({{"Make", "<script>&\"'", ""}, {"Model", "a", "!1 < 2"}}), "<id>");
    EXPECT_EQ("<id>", std::get<1>(row));
    EXPECT_EQ("Make: &lt;script&gt;&amp;&quot;&#39;\r\nModel: a - <b>1 &lt; 2</b>\r\n", std::get<2>(row));
}

TEST(PluginReport, OnlyTheRowOfThatName_DecidesTheFlag) {
    EXPECT_TRUE(std::get<0>(MultiReport::Row(Rows({{"Warnings", "0", ""}, {"Other", "5", ""}}), "")));
    EXPECT_FALSE(std::get<0>(MultiReport::Row(Rows({{"Warnings", "", ""}}), "")));
    EXPECT_TRUE(std::get<0>(MultiReport::Row(ResultRow(), "")));
}

TEST(PluginReport, Reports_ComeInTheOrderOfThePaths) {
    const Result result = {{"/x/b.jpg", Rows({{"Warnings", "1", ""}})}, {"/x/a.jpg", Rows({{"Warnings", "0", ""}})}};
    const MultiReport report(result, {{"/x/a.jpg", "1"}, {"/x/b.jpg", "2"}, {"/x/c.jpg", "3"}});
    EXPECT_EQ(
        "[\n"
        "{\"path\": \"/x/a.jpg\", \"identifier\": \"1\", \"no_warnings\": true, \"text\": \"Warnings: 0\\r\\n\"},\n"
        "{\"path\": \"/x/b.jpg\", \"identifier\": \"2\", \"no_warnings\": false, \"text\": \"Warnings: 1\\r\\n\"}\n"
        "]\n",
        TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(report.rows));
}

TEST(PluginReport, PathWithoutIdentifier_IsAnException) {
    const Result result = {{"/x/b.jpg", ResultRow()}};
    EXPECT_THROW(MultiReport(result, {{"/x/a.jpg", "1"}}), std::out_of_range);
}

TEST_F(PluginTable, EachRowOfTheTable_AndTheCountBehindThem) {
    const wxString path = support::WriteBytes(dir / "in/b.bmp", support::PlainBmp());
    const Result result = Analyse({path});
    ASSERT_EQ(1U, result.results.count(path));
    const ResultRow& row = result.results.at(path);
    ASSERT_EQ(43U, row.rows.size());
    EXPECT_EQ("Filename", row.rows[0].Name);
    EXPECT_EQ("b.bmp", row.rows[0].Value);
    EXPECT_EQ("Warnings", row.rows[42].Name);
    size_t warned = 0;
    for (NameValueDesc const& each : row.rows) warned += each.Desc.empty() ? 0U : 1U;
    EXPECT_GT(warned, 0U);
    EXPECT_EQ(wxString::Format("%zu", warned), row.rows[42].Value);
    EXPECT_FALSE(row.noWarnings);
    EXPECT_EQ(1U, context->GetThumbnails().size());
}

TEST_F(PluginTable, WarningOnAnEmptyValue_ShowsEmpty) {
    const wxString path = support::WriteBytes(dir / "in/b.bmp", support::PlainBmp());
    const MultiReport report(Analyse({path}), {{path, "7"}});
    EXPECT_TRUE(std::get<2>(report.rows.at(path)).Contains("Exif Make: - empty - - <b>EXIF Make is missing"))
        << std::get<2>(report.rows.at(path)).utf8_str().data();
}

TEST_F(PluginTable, FileWithoutWarnings_IsClean) {
    VecVecParameter options = context->GetProgramOptions();
    const auto set = [&](wxString const& name, boost::any const& value) {
        ASSERT_NE(nullptr, options.Group("File Format").Find(name)) << name.utf8_str().data();
        options.Group("File Format").Find(name)->Set(value);
    };
    set("Min File Size", int64_t{1});
    set("Min Pixel Size", 1);
    for (const char* name : {"Warning if software QT", "Warning if camera not found in QT db",
                             "Warning if camera present but QT not found"})
        set(name, 0);
    OnWorker([&] { context->SetProgramOptions(options); });
    support::CameraFacts facts;
    facts.thumbnail = support::EncodeJpeg(160, 120);
    const wxString path = support::WriteBytes(dir / "in/a.jpg", support::MakePhoto(support::JpegForm(), facts));
    const ResultRow row = Analyse({path}).results.at(path);
    EXPECT_EQ("Warnings", row.rows.back().Name);
    EXPECT_EQ("0", row.rows.back().Value) << std::get<2>(MultiReport::Row(row, "")).utf8_str().data();
    EXPECT_TRUE(row.noWarnings);
    EXPECT_TRUE(std::get<0>(MultiReport::Row(row, "")));
}

TEST_F(PluginTable, FileThatCantBeLoaded_IsFlaggedWithTheReason) {
    const wxString broken = support::WriteBytes(dir / "in/broken.jpg", "no picture");
    const wxString gone = dir / "in/gone.jpg";
    const Result result = Analyse({broken, gone});
    EXPECT_FALSE(result.results.at(broken).noWarnings);
    EXPECT_EQ("1", result.results.at(broken).rows.back().Value);
    EXPECT_EQ("!File format not supported.", result.results.at(broken).rows[2].Desc);
    EXPECT_EQ("!The file does not exist.", result.results.at(gone).rows[2].Desc);
    EXPECT_EQ(gone, result.results.at(gone).rows[1].Value);
    EXPECT_EQ(2U, table.GetFailures().size());
}

TEST_F(PluginTable, Slots_AreRestored) {
    const wxString first = Jpeg("a.jpg");
    Load(first);
    Analyse({Jpeg("b.jpg", 32, 32)});
    EXPECT_EQ(first, context->GetFilename(Evidence));
    EXPECT_EQ(64, context->GetImage(Evidence).Width());
    EXPECT_FALSE(context->HasFile(Reference));
}
