// SPDX-License-Identifier: Apache-2.0
#include "tolimage/mapview.h"

#include <gtest/gtest.h>

#include "tests/support/tempdir.h"
#include "tests/support/webserver.h"
#include "tolbase/limits.h"
#include "tolimage/webservices.h"

using support::HttpAnswer;
using support::QueryField;
using support::ReadBytes;
using support::WebServer;

namespace {

// A picture, and a service that gives one answer.
class MapViewTest : public ::testing::Test {
protected:
    MapViewTest() : server([this](std::string const&) { return answer; }) {
        TolWebServices services;
        services.tinEyeEndpoint = wxString::FromUTF8(server.Url("/rest/"));
        services.tinEyeKey = "key-of-tineye";
        services.googleEndpoint = wxString::FromUTF8(server.Url("/google"));
        services.googleKey = "key-of-google";
        SetTolWebServices(services);
        SetTolLimit(TolLimit::WebBackoffMs, 1);
        support::WriteBytes(picture, "picture bytes");
    }

    support::TempDir dir;
    wxString picture = dir / "a.jpg";
    wxString stem = dir / "out/a-";
    std::string answer;
    WebServer server;
};

char const* const Matches =
    "{\"code\":200,\"messages\":[],\"results\":{\"matches\":[{\"image_url\":\"https://img.example.org/1.jpg\","
    "\"domain\":\"example.org\",\"score\":87.5,\"width\":640,\"height\":480,\"format\":\"JPEG\",\"backlinks\":["
    "{\"backlink\":\"https://example.org/p?<script>\",\"crawl_date\":\"2020-01-02\"},"
    "{\"backlink\":\"javascript:alert(1)\",\"crawl_date\":\"<b>\"}]}]}}";

}  // namespace

TEST_F(MapViewTest, TinEye_GivesARowForEachPage) {
    answer = HttpAnswer("200 OK", Matches);
    VecVecString const table = MapView::ShowTinEyeFileSearch(picture, stem);
    ASSERT_EQ(3U, table.size()) << MapView::GetLastProblem();
    EXPECT_EQ((VecString{"#Id", "Domain", "Score", "Width", "Height", "Format", "Image", "Page", "Crawl Date"}),
              table[0]);
    EXPECT_EQ((VecString{"1", "example.org", "87.5", "640", "480", "JPEG", "https://img.example.org/1.jpg",
                         "https://example.org/p?<script>", "2020-01-02"}),
              table[1]);
    EXPECT_EQ("", table[2][7]) << "no link that is none of the web";
}

TEST_F(MapViewTest, TinEye_GetsTheFileAndTheKeyAsDocumented) {
    answer = HttpAnswer("200 OK", Matches);
    MapView::ShowTinEyeFileSearch(picture, stem);
    std::string const request = server.Request();
    EXPECT_EQ(0U, request.find("POST /rest/search/?offset=0&"));
    EXPECT_NE(std::string::npos, request.find("\r\nx-api-key: key-of-tineye\r\n"));
    EXPECT_NE(std::string::npos, request.find("multipart/form-data"));
    EXPECT_NE(std::string::npos, request.find("name=\"image_upload\"; filename=\"image\""));
    EXPECT_NE(std::string::npos, request.find("\r\n\r\npicture bytes\r\n"));
    EXPECT_EQ(std::string::npos, request.find("a.jpg")) << "the file's name stays here";
}

TEST_F(MapViewTest, TinEyePage_EscapesAndFetchesNothing) {
    answer = HttpAnswer("200 OK", Matches);
    MapView::ShowTinEyeFileSearch(picture, stem);
    std::string const page = ReadBytes(stem + "tineye.html");
    EXPECT_NE(std::string::npos, page.find("href=\"https://example.org/p?&lt;script&gt;\""));
    EXPECT_EQ(std::string::npos, page.find("<script"));
    EXPECT_EQ(std::string::npos, page.find("<img"));
    EXPECT_EQ(std::string::npos, page.find("javascript:"));
    EXPECT_EQ(std::string::npos, page.find("key-of-tineye"));
}

TEST_F(MapViewTest, TinEyeWithoutMatch_GivesTheHeaderAlone) {
    answer = HttpAnswer("200 OK", "{\"code\":200,\"results\":{\"matches\":[]}}");
    EXPECT_EQ(1U, MapView::ShowTinEyeFileSearch(picture, stem).size());
    EXPECT_EQ("", MapView::GetLastProblem());
}

TEST_F(MapViewTest, TinEyeFailures_GiveNoTable) {
    for (char const* bad : {"<html></html>", "{\"code\":401,\"results\":[]}", "{}"}) {
        answer = HttpAnswer("200 OK", bad);
        EXPECT_TRUE(MapView::ShowTinEyeFileSearch(picture, stem).empty()) << bad;
        EXPECT_TRUE(MapView::GetLastProblem().StartsWith("TinEye: ")) << bad;
    }
    answer = HttpAnswer("403 Forbidden", "key-of-tineye");
    EXPECT_TRUE(MapView::ShowTinEyeFileSearch(picture, stem).empty());
    EXPECT_EQ("TinEye: the server answered 403.", MapView::GetLastProblem());
    EXPECT_FALSE(wxFileExists(stem + "tineye.html"));
}

TEST_F(MapViewTest, MissingFileOrKey_SendsNothing) {
    EXPECT_TRUE(MapView::ShowTinEyeFileSearch(dir / "none.jpg", stem).empty());
    EXPECT_EQ(-1, MapView::ShowGoogleFileSearch(dir / "none.jpg", stem, ""));
    SetTolWebServices(TolWebServices());
    EXPECT_TRUE(MapView::ShowTinEyeFileSearch(picture, stem).empty());
    EXPECT_TRUE(MapView::GetLastProblem().Contains("TinEye API Key"));
    EXPECT_EQ(-1, MapView::ShowGoogleFileSearch(picture, stem, ""));
    EXPECT_TRUE(MapView::GetLastProblem().Contains("Google API Key"));
    EXPECT_EQ(0, server.Connections());
}

TEST_F(MapViewTest, Google_WritesWhatItFound) {
    answer = HttpAnswer("200 OK",
                        "{\"responses\":[{\"webDetection\":{\"bestGuessLabels\":[{\"label\":\"a <b>cat\"}],"
                        "\"pagesWithMatchingImages\":[{\"url\":\"https://example.org/cat\",\"pageTitle\":\"<i>Cat\"}],"
                        "\"fullMatchingImages\":[{\"url\":\"file:///etc/passwd\"}]}}]}");
    EXPECT_EQ(0, MapView::ShowGoogleFileSearch(picture, stem, "")) << MapView::GetLastProblem();
    std::string const page = ReadBytes(stem + "google.html");
    EXPECT_NE(std::string::npos, page.find("a &lt;b&gt;cat"));
    EXPECT_NE(std::string::npos, page.find("href=\"https://example.org/cat\""));
    EXPECT_EQ(std::string::npos, page.find("passwd"));
    std::string const request = server.Request();
    EXPECT_EQ(0U, request.find("POST /google HTTP/1.1"));
    EXPECT_NE(std::string::npos, request.find("\r\nX-Goog-Api-Key: key-of-google\r\n"));
    EXPECT_NE(std::string::npos, request.find("{\"image\":{\"content\":\"cGljdHVyZSBieXRlcw==\"}"));
    EXPECT_NE(std::string::npos, request.find("\"WEB_DETECTION\""));
}

TEST_F(MapViewTest, GoogleWithText_AlsoSearchesForIt) {
    answer = HttpAnswer("200 OK",
                        "{\"responses\":[{\"webDetection\":{}}],\"items\":[{\"title\":\"T\",\"link\":"
                        "\"https://example.org/t.jpg\",\"image\":{\"contextLink\":\"https://example.org/t\"}}]}");
    EXPECT_EQ(0, MapView::ShowGoogleFileSearch(picture, stem, "black cat")) << MapView::GetLastProblem();
    EXPECT_EQ("black cat", QueryField(server.Request(), "q"));
    EXPECT_NE(std::string::npos, ReadBytes(stem + "google.html").find("https://example.org/t.jpg"));
}

TEST_F(MapViewTest, GoogleFailures_AreToldByTheResult) {
    for (char const* bad : {"<html></html>", "{}", "{\"responses\":[{\"error\":{\"message\":\"m\"}}]}"}) {
        answer = HttpAnswer("200 OK", bad);
        EXPECT_EQ(-1, MapView::ShowGoogleFileSearch(picture, stem, "")) << bad;
        EXPECT_TRUE(MapView::GetLastProblem().StartsWith("Google: ")) << bad;
    }
    EXPECT_FALSE(wxFileExists(stem + "google.html"));
}

TEST_F(MapViewTest, GoogleRefusal_IsToldInItsOwnWords) {
    answer = HttpAnswer("403 Forbidden", "{\"error\":{\"message\":\"No such key.\"}}");
    EXPECT_EQ(-1, MapView::ShowGoogleFileSearch(picture, stem, ""));
    EXPECT_EQ("Google: No such key.", MapView::GetLastProblem());
    answer = HttpAnswer("403 Forbidden", "no");
    EXPECT_EQ(-1, MapView::ShowGoogleFileSearch(picture, stem, ""));
    EXPECT_TRUE(MapView::GetLastProblem().Contains("403")) << MapView::GetLastProblem();
}

TEST_F(MapViewTest, PageThatCannotBeWritten_IsAFailure) {
    answer = HttpAnswer("200 OK", "{\"responses\":[{}]}");
    support::WriteBytes(dir / "out", "a file where the folder should be");
    EXPECT_EQ(-1, MapView::ShowGoogleFileSearch(picture, stem, ""));
    EXPECT_TRUE(MapView::GetLastProblem().Contains("can't be written"));
}
