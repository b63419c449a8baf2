// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <filesystem>

#include "orvcore/webmediasearch.h"
#include "tests/orvcore/catalogue.h"
#include "tests/support/tempdir.h"
#include "tests/support/webserver.h"
#include "tolbase/progress.h"

using support::HttpAnswer;
using support::ReadBytes;
using support::WebReply;
using support::WebServer;

namespace {

// A site with pictures; those beneath "/bad" are missing. It notes what the progress says at each request.
class DownloadList : public ::testing::Test {
protected:
    DownloadList() : server([this](std::string const& request) { return Answer(request); }) {}
    WebReply Answer(std::string const& request) {
        progress.push_back(tcvGetProgress().text);
        if (request.find("GET /abort") == 0) tcvAbortAllProgress();
        return request.find("GET /bad") == 0 ? HttpAnswer("404 Not Found", "") : HttpAnswer("200 OK", "bytes");
    }
    // Ids are "1", "2", ...; each path is of the server.
    void Download(std::vector<std::string> const& paths) {
        VecString list;
        for (std::size_t i = 0; i < paths.size(); ++i) {
            list.push_back(wxString::FromUTF8(std::to_string(i + 1)));
            list.push_back(wxString::FromUTF8(server.Url(paths[i])));
        }
        DownloadImageFromWeb(list, folder, error);
    }
    bool Has(char const* name) const { return ReadBytes(folder + "/" + name) == "bytes"; }

    support::TempDir dir;
    wxString folder = dir / "new/d";
    wxString error = "left over";
    std::vector<wxString> progress;
    WebServer server;
};

}  // namespace

TEST_F(DownloadList, Pictures_AreSavedUnderTheirIds) {
    Download({"/a.jpg", "/b.png"});
    EXPECT_EQ("", error);
    EXPECT_TRUE(Has("1.jpg"));
    EXPECT_TRUE(Has("2.png"));
    EXPECT_EQ((std::vector<wxString>{"Downloading Image 1 of 2", "Downloading Image 2 of 2"}), progress);
    EXPECT_EQ(2, tcvGetProgress2().value);
    EXPECT_TRUE(tcvHasAborted());
    EXPECT_TRUE(tcvHasAborted2());
}

TEST_F(DownloadList, EmptyList_LeavesTheAbortStateRaisedToo) {
    tcvClearAborted();
    Download({});
    EXPECT_TRUE(tcvHasAborted());
    EXPECT_EQ("left over", error);
    EXPECT_FALSE(std::filesystem::exists(folder.ToStdString()));
}

TEST_F(DownloadList, OddEntry_IsPassedOver) {
    VecString list{"1", wxString::FromUTF8(server.Url("/a.jpg")), "2"};
    DownloadImageFromWeb(list, folder, error);
    EXPECT_EQ(1U, GetDownloadResults().size());
}

TEST_F(DownloadList, FailedItem_IsToldAndTheOthersAreTried) {
    Download({"/a.jpg", "/bad.jpg", "/c.jpg"});
    EXPECT_EQ("", error) << "the last one's alone";
    EXPECT_TRUE(Has("1.jpg"));
    EXPECT_TRUE(Has("3.jpg"));
    EXPECT_EQ(3, server.Requests()) << "none is tried again";
    EXPECT_EQ("Downloading Image 2 of 3", progress[2]) << "counts what is done";
    std::vector<OrvDownloadResult> const results = GetDownloadResults();
    ASSERT_EQ(3U, results.size());
    EXPECT_EQ(folder + "/1.jpg", results[0].file);
    EXPECT_EQ("2", results[1].id);
    EXPECT_EQ(wxString::FromUTF8(server.Url("/bad.jpg")) + ": The server answered 404.", results[1].error);
    EXPECT_EQ("", results[1].file);
}

TEST_F(DownloadList, FourFailuresInARow_EndTheRun) {
    Download({"/bad1", "/bad2", "/bad3", "/bad4", "/a.jpg"});
    EXPECT_EQ(4, server.Requests());
    EXPECT_TRUE(error.Contains("/bad4"));
}

TEST_F(DownloadList, ThreeFailuresInARow_DoNot) {
    Download({"/bad1", "/bad2", "/bad3", "/a.jpg", "/bad5", "/bad6", "/bad7", "/b.jpg"});
    EXPECT_EQ(8, server.Requests());
    EXPECT_TRUE(Has("4.jpg"));
    EXPECT_TRUE(Has("8.jpg"));
}

TEST_F(DownloadList, Abort_EndsBehindTheItem) {
    Download({"/a.jpg", "/abort.jpg", "/c.jpg"});
    EXPECT_TRUE(Has("2.jpg")) << "the item under way arrives";
    EXPECT_EQ(2, server.Requests());
}

TEST_F(DownloadList, ExistingFile_IsKeptUnlessToldElse) {
    support::WriteBytes(folder + "/1.jpg", "old");
    Download({"/a.jpg"});
    EXPECT_EQ("old", ReadBytes(folder + "/1.jpg"));
    EXPECT_TRUE(GetDownloadResults().at(0).exists);
    VecString list{"1", wxString::FromUTF8(server.Url("/a.jpg"))};
    DownloadImageFromWeb(list, folder, error, true);
    EXPECT_TRUE(Has("1.jpg"));
}

TEST_F(DownloadList, HostileItems_StayInTheFolder) {
    VecString list{"../../out", wxString::FromUTF8(server.Url("/../../x.jpg")), "2", "file:///etc/passwd"};
    DownloadImageFromWeb(list, folder, error);
    EXPECT_TRUE(Has("___.._out.jpg"));
    EXPECT_TRUE(error.Contains("no address of http or https"));
    EXPECT_FALSE(std::filesystem::exists((dir / "out.jpg").ToStdString()));
}

TEST_F(DownloadList, Progress_IsTranslated) {
    ASSERT_TRUE(support::UseTranslations(dir, {{"Downloading Image %d of %d", "Scarico %d di %d, 100%s"}}));
    Download({"/a.jpg"});
    EXPECT_EQ("Scarico 1 di 1, 100%s", progress.at(0)) << "a catalogue's text is no format";
}
