// SPDX-License-Identifier: Apache-2.0
#include "orvcore/genericaction.h"

#include <nlohmann/json.hpp>

#include "orvcore/optionnumbers.h"
#include "tests/orvcore/photos.h"
#include "tests/orvcore/recordingfilter.h"
#include "tolbase/limits.h"
#include "tolbase/text.h"

namespace {

using support::Number;
using Json = nlohmann::json;

class Actions : public support::FilterEngine {
protected:
    Actions() { StartOptions(); }

    // The event of the action; fails the test where none came.
    OrvCommandEvent Call(OrvActionId action, const VecParameter& parameters = VecParameter()) {
        recorder.Pump();
        recorder.events.clear();
        Run([&] { iface->CallGenericAction(action, "my text", parameters); });
        for (const OrvCommandEvent& event : recorder.events) {
            if (event.GetId() != OrvCommandIdCallGenericAction) continue;
            EXPECT_EQ("my text", event.GetString());
            EXPECT_EQ(action, event.GetActionId());
            return event;
        }
        ADD_FAILURE() << "no event";
        return OrvCommandEvent();
    }
    static VecVecString TableOf(const OrvCommandEvent& event) {
        const VecParameter parameters = event.GetParams();
        return parameters.size() == 1 ? parameters[0].GetValue<VecVecString>() : VecVecString{{"(no table)"}};
    }
    static Parameter Text(const wxString& text) { return CreateParameterString("text", "", text); }
    // Nothing listens there, and one attempt is enough to know.
    void CloseTheWeb() {
        SetTolLimit(TolLimit::WebAttempts, 1);
        VecVecParameter options = context->GetProgramOptions();
        for (const char* name : {"Flickr Endpoint", "Google Endpoint", "TinEye Endpoint", "Sightings Endpoint"})
            options.Group("Web Services").Find(name)->Set("http://127.0.0.1:9");
        OnWorker([&] { context->SetProgramOptions(options); });
        SetTolLimit(TolLimit::WebAttempts, 1);
    }
};

constexpr const char* NetworkError =
    "Network Connection Error: you may be disconnected from the Internet or the server may be down.";

// With a position in its EXIF data.
std::string LocatedJpeg(bool longitude) {
    support::ExifBytes tiff;
    tiff.Raw(std::string("II*\0", 4));
    tiff.Long(8);
    tiff.Short(1);
    tiff.Entry(0x8825, 4, 1, 26);
    tiff.Long(0);
    const unsigned entries = longitude ? 4 : 2;
    const std::size_t values = 26 + 2 + entries * 12 + 4;
    tiff.Short(entries);
    tiff.Entry(1, 2, 2, 'N');
    tiff.Entry(2, 5, 3, values);
    if (longitude) {
        tiff.Entry(3, 2, 2, 'E');
        tiff.Entry(4, 5, 3, values + 24);
    }
    tiff.Long(0);
    for (const unsigned number : {48U, 1U, 30U, 1U, 0U, 1U, 11U, 1U, 15U, 1U, 0U, 1U}) tiff.Long(number);
    const std::string payload = std::string("Exif\0\0", 6) + tiff.Bytes();
    const std::size_t length = payload.size() + 2;
    const std::string jpeg = support::EncodeJpeg(32, 32);
    return jpeg.substr(0, 2) + "\xFF\xE1" + static_cast<char>(length >> 8) + static_cast<char>(length & 0xFF) +
           payload + jpeg.substr(2);
}

}  // namespace

TEST_F(Actions, NumbersThatAreNone_PostNothing) {
    for (const int number : {12, 100, -1}) {
        OnWorker([&] { OrvCommandCallGenericAction(number, "t", VecParameter()).Execute(); });
    }
    EXPECT_TRUE(recorder.events.empty());
}

TEST_F(Actions, NumberTwelve_LeavesTheWorkerWaitingForItsAnswer) {
    OrvWorkerThread* worker = context->GetOrvThread();
    const std::uint64_t done = worker->GetCommandsDone();
    iface->CallGenericAction(static_cast<OrvActionId>(12), "t", VecParameter());
    EXPECT_FALSE(worker->WaitForCommandsDone(done + 1, 300)) << "nothing has answered";
    iface->PostResponse();
    EXPECT_TRUE(worker->WaitForCommandsDone(done + 1, 60000));
    recorder.Pump();
    EXPECT_TRUE(recorder.events.empty());
}

TEST_F(Actions, SightingsThatCantBeAsked_GiveTheMessageAndNoRows) {
    CloseTheWeb();
    const OrvCommandEvent event = Call(
        OrvActionSearchSightings, {Text("key"), Text("Canon"), Text(""), Text(""), Text(""), Number("n", 5), Text("")});
    EXPECT_EQ(0, event.GetError());
    EXPECT_EQ(NetworkError, event.GetMessage());
    EXPECT_TRUE(TableOf(event).empty());
}

TEST_F(Actions, SearchesThatCantBeAsked_GiveAMessageAndNoRows) {
    CloseTheWeb();
    const OrvCommandEvent camera =
        Call(OrvActionSearchCameraImages, {Text("canon"), Text("canon eos"), Number("days", 1), Number("count", 1),
                                           Number("service", 0), Number("size", 1), Number("tags", 1), Number("f", 1)});
    EXPECT_EQ(0, camera.GetError());
    EXPECT_FALSE(camera.GetMessage().empty());
    EXPECT_TRUE(TableOf(camera).empty());
    const OrvCommandEvent place = Call(OrvActionSearchGeoTagImages, {Text("48"), Text("11"), Text(""), Text(""),
                                                                     Number("radius", 1), Number("unit", 0)});
    EXPECT_FALSE(place.GetMessage().empty());
    EXPECT_TRUE(TableOf(place).empty());
}

TEST_F(Actions, ReverseSearchWithoutEvidence_PostsAnEmptyTableAndNoMessage) {
    CloseTheWeb();
    const OrvCommandEvent event = Call(
        OrvActionSearchImageOnWeb, {CreateParameterBool("t", "", true), CreateParameterBool("g", "", true), Text("")});
    EXPECT_EQ(0, event.GetError());
    EXPECT_EQ("", event.GetMessage());
    EXPECT_TRUE(TableOf(event).empty());
}

TEST_F(Actions, ReverseSearchWithBothFlagsFalse_PostsAnEmptyTable) {
    CloseTheWeb();
    Load(Jpeg("a.jpg"));
    const OrvCommandEvent event = Call(OrvActionSearchImageOnWeb, {CreateParameterBool("t", "", false),
                                                                   CreateParameterBool("g", "", false), Text("")});
    EXPECT_EQ("", event.GetMessage());
    EXPECT_TRUE(TableOf(event).empty());
}

TEST_F(Actions, ReverseSearchThatCantBeAsked_GivesTheNetworkMessage) {
    CloseTheWeb();
    Load(Jpeg("a.jpg"));
    for (const bool tinEye : {true, false}) {
        const OrvCommandEvent event =
            Call(OrvActionSearchImageOnWeb,
                 {CreateParameterBool("t", "", tinEye), CreateParameterBool("g", "", !tinEye), Text("")});
        EXPECT_EQ(NetworkError, event.GetMessage()) << tinEye;
        EXPECT_EQ(0, event.GetError());
        EXPECT_TRUE(TableOf(event).empty());
    }
}

TEST_F(Actions, Coordinates_AreBothWithABlank) {
    Load(support::WriteBytes(dir / "in/a.jpg", LocatedJpeg(true)));
    const OrvCommandEvent event = Call(OrvActionGetCoordinates);
    EXPECT_EQ(0, event.GetError());
    EXPECT_EQ("", event.GetMessage());
    ASSERT_EQ(1U, event.GetParams().size());
    EXPECT_EQ("48.5 11.25", event.GetParams()[0].GetValue<wxString>());
}

TEST_F(Actions, CoordinatesOfHalfAPosition_AreNone) {
    for (const bool loaded : {false, true}) {
        if (loaded) Load(support::WriteBytes(dir / "in/a.jpg", LocatedJpeg(false)));
        const OrvCommandEvent event = Call(OrvActionGetCoordinates);
        EXPECT_EQ(-1, event.GetError());
        EXPECT_EQ("No GPS coordinates available.", event.GetMessage());
        EXPECT_TRUE(event.GetParams().empty());
    }
    EXPECT_EQ("48.5", context->GetImageDetails(Evidence).GpsLatitude);
}

TEST_F(Actions, BatchTableOfNamedFiles_TakesJustThese) {
    const wxString first = Jpeg("a.jpg");
    const wxString second = Jpeg("b.jpg");
    Jpeg("c.jpg");
    const VecVecString table = TableOf(Call(OrvActionBatchTable, {Text(first + "|" + second)}));
    ASSERT_EQ(3U, table.size());
    EXPECT_EQ("a.jpg", table[1][2]);
    EXPECT_EQ("b.jpg", table[2][2]);
    EXPECT_EQ(2U, TableOf(Call(OrvActionBatchTable, {Text(first)})).size());
}

TEST_F(Actions, BatchTableWithAMissingFile_TakesTheTextAsAFolder) {
    const wxString first = Jpeg("a.jpg");
    EXPECT_TRUE(TableOf(Call(OrvActionBatchTable, {Text(first + "|" + dir / "in/gone.jpg")})).empty());
    EXPECT_EQ(2U, TableOf(Call(OrvActionBatchTable, {Text(dir / "in")})).size());
    EXPECT_TRUE(TableOf(Call(OrvActionBatchTable)).empty());
}

TEST_F(Actions, BatchTableOfAFolderWithABarInItsName_TakesWhatTheFolderHolds) {
    const wxString first = Jpeg("a.jpg");
    Jpeg("a.jpg|gone/b.jpg");
    const VecVecString table = TableOf(Call(OrvActionBatchTable, {Text(first + "|gone")}));
    ASSERT_EQ(2U, table.size());
    EXPECT_EQ("b.jpg", table[1][2]);
    EXPECT_EQ(first + "|gone/b.jpg", table[1][3]);
}

TEST_F(Actions, SubfolderOption_DecidesHowDeepAFolderIsSearched) {
    Jpeg("a.jpg");
    Jpeg("deep/b.jpg");
    VecVecParameter options = context->GetProgramOptions();
    for (const int setting : {0, 1}) {
        options[0].Find("Search Subfolders for Batch File Format")->Set(boost::any(setting));
        OnWorker([&] { context->SetProgramOptions(options); });
        EXPECT_EQ(2U + static_cast<size_t>(setting), TableOf(Call(OrvActionBatchTable, {Text(dir / "in")})).size());
    }
}

TEST_F(Actions, OptionsThatEndBeforeSubfolders_SearchNone) {
    Jpeg("a.jpg");
    Jpeg("deep/b.jpg");
    VecVecParameter options = context->GetProgramOptions();
    options[0].Find("Search Subfolders for Batch File Format")->Set(boost::any(1));
    options[0].resize(OrvOptionSearchSubfolders);
    OnWorker([&] { context->SetProgramOptions(options); });
    EXPECT_EQ(2U, TableOf(Call(OrvActionBatchTable, {Text(dir / "in")})).size());
    OnWorker([&] { context->SetProgramOptions({}); });
    EXPECT_EQ(2U, TableOf(Call(OrvActionBatchTable, {Text(dir / "in")})).size());
}

TEST_F(Actions, BatchTable_WritesItsFileAndMovesFiles) {
    const wxString small = support::WriteBytes(dir / "in/a.bmp", support::EncodeBmp());
    Call(OrvActionBatchTable, {Text(small), Text(dir / "new/deep/t.tsv"), Text(""), Text(dir / "flagged"),
                               CreateParameterBool("status", "", true)});
    EXPECT_EQ("Warning\t*IMG*0", support::ReadBytes(dir / "new/deep/t.tsv"));
    EXPECT_FALSE(wxFileExists(small));
    EXPECT_TRUE(wxFileExists(dir / "flagged/a.bmp"));
}

TEST_F(Actions, MultiComparison_PutsTheFolderBesideTheEvidence) {
    const wxString first = Jpeg("a.jpg");
    Jpeg("b.jpg");
    Load(first);
    const OrvCommandEvent event = Call(OrvActionMultiComparison, {Text(dir / "in")});
    EXPECT_EQ(0, event.GetError());
    const VecVecString table = TableOf(event);
    ASSERT_EQ(3U, table.size());
    EXPECT_EQ("Differences", table[0][2]);
    EXPECT_EQ("b.jpg", table[2][3]);
}

TEST_F(Actions, DownloadOfNothing_PostsNothing) {
    const OrvCommandEvent event =
        Call(OrvActionDownloadImages, {CreateParameterVectorString("list", "", {}), Text(dir / "down")});
    EXPECT_EQ(0, event.GetError());
    EXPECT_EQ("", event.GetMessage());
    EXPECT_TRUE(event.GetParams().empty());
}

TEST_F(Actions, BatchProcessing_PostsTheReportsPath) {
    Add(new support::RecordingFilter("Alpha"));
    VecParameter parameters = {Number("files", 0), Number("filters", 0), Number("output", 2), Text(dir / "out/r.tsv"),
                               Text(Jpeg("a.jpg"))};
    const OrvCommandEvent event = Call(OrvActionBatchProcessing, parameters);
    EXPECT_EQ(0, event.GetError());
    ASSERT_EQ(1U, event.GetParams().size());
    EXPECT_EQ(dir / "out/r.tsv", event.GetParams()[0].GetValue<wxString>());
    EXPECT_TRUE(wxFileExists(dir / "out/r.tsv"));
}

TEST_F(Actions, PluginAnalysis_WritesNothingButJson) {
    const wxString name = wxString::FromUTF8("写真 \"quoted\".jpg");
    const wxString first = Jpeg(name);
    const wxString gone = dir / "in/gone.jpg";
    context->SetBatchFileMap({{first, "id-1"}, {gone, "id-2"}});
    testing::internal::CaptureStdout();
    const OrvCommandEvent event =
        Call(OrvActionGriffeyeAnalysis, {CreateParameterStringMap("files", "", {{first, "x"}, {gone, "y"}})});
    const Json json = Json::parse(testing::internal::GetCapturedStdout());
    EXPECT_EQ(0, event.GetError());
    EXPECT_TRUE(event.GetParams().empty());
    ASSERT_EQ(2U, json.size());
    EXPECT_EQ(TolToUtf8(gone), json[0]["path"]);
    EXPECT_EQ("id-2", json[0]["identifier"]);
    EXPECT_EQ(false, json[0]["no_warnings"]);
    EXPECT_EQ(TolToUtf8(first), json[1]["path"]);
}

TEST_F(Actions, PluginAnalysisOfAnUnknownFile_WritesAndPostsNothing) {
    const wxString first = Jpeg("a.jpg");
    testing::internal::CaptureStdout();
    const VecParameter parameters = {CreateParameterStringMap("files", "", {{first, "x"}})};
    EXPECT_THROW(OnWorker([&] { OrvCommandCallGenericAction(9, "t", parameters).Execute(); }), std::out_of_range);
    EXPECT_EQ("", testing::internal::GetCapturedStdout());
    EXPECT_TRUE(recorder.events.empty());
}

TEST_F(Actions, PluginBatch_WritesNothingButJson) {
    Add(new support::RecordingFilter("Alpha"));
    const wxString first = Jpeg("a.jpg");
    context->SetBatchFileMap({{first, "id-1"}});
    VecParameter parameters = {Number("files", 0), Number("filters", 0), Number("output", 0), Text("r.html"),
                               CreateParameterVectorString("files", "", {first})};
    testing::internal::CaptureStdout();
    const OrvCommandEvent event = Call(OrvActionGriffeyeBatch, parameters);
    EXPECT_EQ("[\n{\"path\": \"" + TolToUtf8(first) +
                  "\", \"identifier\": \"id-1\", \"severity\": 0, \"text\": \"Orvelle report: "
                  "\\\"r.html\\\"\\n\"}\n]\n",
              testing::internal::GetCapturedStdout());
    EXPECT_TRUE(event.GetParams().empty());
}

TEST_F(Actions, PluginOfNothing_IsAnEmptyArray) {
    testing::internal::CaptureStdout();
    Call(OrvActionGriffeyeAnalysis, {CreateParameterStringMap("files", "", {})});
    EXPECT_EQ("[]\n", testing::internal::GetCapturedStdout());
}

TEST_F(Actions, BrowserFiles_ThatAreNotThereAreNotOpened) {
    context->SetBrowserFiles({dir / "in/gone.html"});
    const OrvCommandEvent event = Call(OrvActionOpenBrowserFiles);
    EXPECT_EQ(0, event.GetError());
    EXPECT_TRUE(event.GetParams().empty());
}
