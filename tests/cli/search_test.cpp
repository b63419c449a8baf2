// SPDX-License-Identifier: Apache-2.0
// orvelle search: requests, tables and errors, against servers of the tests' own.
#include <chrono>
#include <ctime>
#include <nlohmann/json.hpp>

#include "tests/cli/web.h"

using namespace clitest;
using nlohmann::json;
using support::FakeFlickr;
using support::FakePhoto;
using support::HttpAnswer;
using support::QueryField;
using support::WebReply;
using support::WebServer;

namespace {

FakePhoto Named(std::string const& id) {
    FakePhoto photo;
    photo.id = id;
    return photo;
}

// Against a server that plays Flickr.
class SearchFlickr : public WebTest {
protected:
    SearchFlickr() { Set("Flickr Endpoint", flickr.server.Url("/services/rest/")); }

    Ended Search(std::vector<std::string> arguments, std::string const& key = "key-of-flickr",
                 Surroundings const& surroundings = {}) const {
        arguments.insert(arguments.begin(), "search");
        arguments.insert(arguments.end(), {"--key-file", Key(key)});
        return Orvelle(arguments, surroundings);
    }
    Ended Camera(std::vector<std::string> more = {}) const {
        more.insert(more.begin(), {"camera", "--make", "Canon", "--model", "EOS 5D"});
        return Search(more);
    }

    FakeFlickr flickr;
};

using SearchCamera = SearchFlickr;
using SearchGeo = SearchFlickr;

TEST_F(SearchCamera, Photographs_MakeATable) {
    flickr.photos = {Named("11"), Named("12")};
    const Ended ended = Camera({"--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("", ended.err);
    EXPECT_EQ(
        "#Id,Web Photo Id,Owner Id,Size,Make,Model,Software,Date Uploaded,Link\r\n"
        "1,11,owner@N01,4000x3000,Canon,Canon EOS 5D,,2017-07-14 02:40:00 UTC,https://photos.example.org/11_o.jpg\r\n"
        "2,12,owner@N01,4000x3000,Canon,Canon EOS 5D,,2017-07-14 02:40:00 UTC,https://photos.example.org/12_o.jpg\r\n",
        ended.out);
    EXPECT_EQ("", Leak(ended, "key-of-flickr"));
}

TEST_F(SearchCamera, Json_HasStableKeys) {
    flickr.photos = {Named("11")};
    const json value = json::parse(Camera({"--format", "json"}).out);
    ASSERT_EQ(1U, value.size());
    EXPECT_EQ("11", value[0]["web_photo_id"]);
    EXPECT_EQ("https://photos.example.org/11_o.jpg", value[0]["link"]);
    EXPECT_EQ("4000x3000", value[0]["size"]);
}

TEST_F(SearchCamera, Days_BoundTheUpload) {
    const auto now = static_cast<long>(std::time(nullptr));
    EXPECT_EQ(0, Camera({"--days", "30"}).status);
    const std::vector<std::string> requests = flickr.Requests("flickr.photos.search");
    ASSERT_LE(1U, requests.size());
    EXPECT_EQ("canon eos 5d", QueryField(requests[0], "text"));
    EXPECT_NEAR(static_cast<double>(now - 30L * 86400), std::stod(QueryField(requests[0], "min_upload_date")), 86400);
}

TEST_F(SearchCamera, Query_IsTakenApart) {
    EXPECT_EQ(0, Search({"camera", "lg nexus 4"}).status);
    const std::vector<std::string> requests = flickr.Requests("flickr.photos.search");
    ASSERT_LE(1U, requests.size());
    EXPECT_EQ("lge nexus 4", QueryField(requests[0], "text"));
}

TEST_F(SearchCamera, Size_Filters) {
    flickr.photos = {Named("11"), Named("12")};
    flickr.photos[1].width = 640;
    const json value = json::parse(Camera({"--size", "640x3000", "--format", "json"}).out);
    ASSERT_EQ(1U, value.size()) << value;
    EXPECT_EQ("12", value[0]["web_photo_id"]);
}

TEST_F(SearchCamera, NothingFound_IsNoError) {
    const Ended text = Camera();
    EXPECT_EQ(0, text.status);
    EXPECT_EQ("", text.out);
    EXPECT_EQ("orvelle: no photographs\n", text.err);
    EXPECT_EQ("[]\n", Camera({"--format", "json"}).out);
}

TEST_F(SearchCamera, Trace_IsLeftOnlyWhereAskedFor) {
    flickr.photos = {Named("11")};
    Surroundings surroundings;
    surroundings.folder = Home();
    surroundings.environment = {{"HOME", Home()}};
    const std::vector<std::string> arguments = {"camera", "--make", "Canon", "--model", "EOS 5D"};
    EXPECT_EQ(0, Search(arguments, "key-of-flickr", surroundings).status);
    EXPECT_TRUE(List(Home()).empty());
    std::vector<std::string> traced = arguments;
    traced.emplace_back("--trace");
    const Ended ended = Search(traced, "key-of-flickr", surroundings);
    EXPECT_EQ(std::vector<std::string>{"flickr_log.txt"}, List(Home()));
    EXPECT_EQ("", Leak(ended, "key-of-flickr"));
}

TEST_F(SearchCamera, RelativeOutput_IsWrittenIntoTheCurrentFolder) {
    flickr.photos = {Named("11")};
    Surroundings surroundings;
    surroundings.folder = Home();
    const Ended ended = Search({"camera", "--make", "Canon", "-o", "found.csv"}, "key-of-flickr", surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(std::vector<std::string>{"found.csv"}, List(Home()));
    EXPECT_EQ(2U, Lines(ReadFile(Home() + "/found.csv")).size());
}

TEST_F(SearchCamera, WrongKey_EndsWithFour) {
    const Ended ended = Search({"camera", "--make", "Canon"}, "another-key-77");
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_TRUE(Contains(ended.err, "Invalid API Key")) << ended.err;
    EXPECT_EQ("", Leak(ended, "another-key-77"));
}

TEST_F(SearchCamera, AnswersThatCannotBeRead_EndWithFour) {
    for (std::string const& answer :
         {HttpAnswer("200 OK", "<html>sign in</html>"), HttpAnswer("200 OK", "{\"stat\":\"ok\",\"photos\":[1,"),
          HttpAnswer("404 Not Found", "no"), HttpAnswer("200 OK", ""), std::string("\x01\x02\x03")}) {
        flickr.answers["flickr.photos.search"] = answer;
        const Ended ended = Camera({"--format", "json"});
        EXPECT_EQ(4, ended.status) << answer << ended.err;
        EXPECT_EQ(0U, ended.err.find("orvelle: ")) << answer;
        EXPECT_EQ(1U, CountOf(ended.err, "\n")) << ended.err;
        EXPECT_EQ("", Leak(ended, "key-of-flickr"));
    }
}

TEST_F(SearchCamera, NobodyThere_EndsWithFour) {
    Set("Flickr Endpoint", Nowhere());
    const Ended ended = Camera();
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ(1U, CountOf(ended.err, "\n")) << ended.err;
    EXPECT_EQ("", Leak(ended, "key-of-flickr"));
}

TEST_F(SearchCamera, WrongUse_SendsNothing) {
    for (std::vector<std::string> const& arguments :
         std::vector<std::vector<std::string>>{{"camera"},
                                               {"camera", "canon", "--make", "Canon"},
                                               {"camera", "--make", "Canon", "--days", "0"},
                                               {"camera", "--make", "Canon", "--results", "many"},
                                               {"camera", "--make", "Canon", "--service", "bing"},
                                               {"camera", "--make", "Canon", "--size", "large"},
                                               {"camera", "--make", "Canon", "--key", "secret-on-line"}}) {
        const Ended ended = Search(arguments);
        EXPECT_EQ(2, ended.status) << arguments.back();
        EXPECT_EQ("", ended.out);
        EXPECT_EQ("", Leak(ended, "secret-on-line"));
    }
    EXPECT_EQ(0, flickr.server.Connections());
}

TEST_F(SearchCamera, NoKey_TellsWhereToPutOne) {
    const Ended ended = Orvelle({"search", "camera", "--make", "Canon"});
    EXPECT_EQ(2, ended.status);
    EXPECT_TRUE(Contains(ended.err, "orvelle: Flickr API Key: is not set")) << ended.err;
    EXPECT_TRUE(Contains(ended.err, "--key-file"));
    EXPECT_EQ(3, Orvelle({"search", "camera", "--make", "Canon", "--key-file", Path("none")}).status);
    EXPECT_EQ(0, flickr.server.Connections());
}

TEST_F(SearchGeo, Photographs_MakeATable) {
    flickr.photos = {Named("11")};
    flickr.photos[0].place = "\"latitude\":45.51,\"longitude\":9.26,\"accuracy\":16,";
    const Ended ended =
        Search({"geo", "--lat", "45.5", "--lon", "-9.25", "--radius", "5", "--unit", "km", "--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(
        "#Id,Web Photo Id,Size,\"Coordinate (Lat, Lon)\",Accuracy in km,Link\r\n"
        "1,11,4000x3000,\"45.510000, 9.260000\",0.611496,https://photos.example.org/11_o.jpg\r\n",
        ended.out);
    const std::string request = flickr.Requests("flickr.photos.search").at(0);
    EXPECT_EQ("45.5", QueryField(request, "lat"));
    EXPECT_EQ("-9.25", QueryField(request, "lon"));
    EXPECT_EQ("km", QueryField(request, "radius_units"));
}

TEST_F(SearchGeo, WrongUse_SendsNothing) {
    for (std::vector<std::string> const& more : std::vector<std::vector<std::string>>{{"--lat", "95", "--lon", "9"},
                                                                                      {"--lat", "nan", "--lon", "9"},
                                                                                      {"--lat", "4 5", "--lon", "9"},
                                                                                      {"--lat", "45", "--lon", "181"},
                                                                                      {"--lat", "45"}}) {
        std::vector<std::string> arguments = {"geo"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        EXPECT_EQ(2, Search(arguments).status) << more.back();
    }
    for (std::vector<std::string> const& more :
         std::vector<std::vector<std::string>>{{"--unit", "yards"},
                                               {"--radius", "0"},
                                               {"--radius", "33"},
                                               {"--radius", "21", "--unit", "mi"},
                                               {"--from", "yesterday"},
                                               {"--to", "2024-13-01"}}) {
        std::vector<std::string> arguments = {"geo", "--lat", "45", "--lon", "9"};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Ended ended = Search(arguments);
        EXPECT_EQ(2, ended.status) << more.back();
        EXPECT_TRUE(Contains(ended.err, more[0])) << ended.err;
    }
    EXPECT_EQ(0, flickr.server.Connections());
}

TEST_F(SearchGeo, NothingFound_IsNoError) {
    const Ended ended = Search({"geo", "--lat", "45", "--lon", "9", "--format", "json"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("[]\n", ended.out);
    EXPECT_EQ("orvelle: no photographs\n", ended.err);
}

}  // namespace
