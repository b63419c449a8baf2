// SPDX-License-Identifier: Apache-2.0
// orvelle search by Google, and how searches and downloads bear busy and broken services and no network at all.
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <filesystem>
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

constexpr char const* Secret = "key-of-google-8271";

// Plays Google's image search, its recognition of pictures, and the site that has the pictures.
class SearchGoogle : public WebTest {
protected:
    SearchGoogle() : server([this](std::string const& request) { return Answer(request); }) {
        Set("Google Endpoint", server.Url("/customsearch/v1?cx=engine"));
    }
    WebReply Answer(std::string const& request) {
        if (request.find("GET /pictures/") == 0) {
            return HttpAnswer("200 OK", support::WithExif(support::EncodeJpeg(64, 48), "Canon", "Canon EOS 5D"));
        }
        if (failures > 0) {
            --failures;
            return HttpAnswer(failure, "");
        }
        if (!answer.empty()) return HttpAnswer("200 OK", answer);
        return HttpAnswer("200 OK", "{\"searchInformation\":{\"totalResults\":\"1\"},\"items\":[{\"link\":\"" +
                                        server.Url("/pictures/1.jpg") +
                                        "\",\"displayLink\":\"example.org\",\"image\":{\"width\":4000,\"height\":3000}}"
                                        "]}");
    }
    Ended Camera(std::vector<std::string> const& more = {}) const {
        std::vector<std::string> arguments = {"search", "camera",    "--make", "Canon",      "--model",
                                              "EOS 5D", "--service", "google", "--key-file", Key(Secret)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Orvelle(arguments);
    }
    Ended Reverse(std::vector<std::string> const& more) const {
        std::vector<std::string> arguments = {"search", "reverse", "--google", "--key-file", Key(Secret)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Orvelle(arguments);
    }
    // The page that the program says it wrote.
    static std::string PageOf(Ended const& ended) {
        const std::string words = "the answer as a page: ";
        const std::size_t at = ended.err.find(words);
        if (at == std::string::npos) return "";
        const std::size_t from = at + words.size();
        return ended.err.substr(from, ended.err.find('\n', from) - from);
    }

    std::string answer;
    std::string failure = "429 Too Many Requests";
    std::atomic<int> failures{0};
    WebServer server;
};

TEST_F(SearchGoogle, Camera_IsReadFromThePictures) {
    const Ended ended = Camera({"--format", "json"});
    EXPECT_EQ(0, ended.status) << ended.err;
    const json value = json::parse(ended.out);
    ASSERT_EQ(1U, value.size()) << value;
    EXPECT_EQ("Canon", value[0]["make"]);
    EXPECT_EQ("Canon EOS 5D", value[0]["model"]);
    EXPECT_EQ("4000x3000", value[0]["size"]);
    EXPECT_EQ("example.org", value[0]["owner_id"]);
    EXPECT_EQ(server.Url("/pictures/1.jpg"), value[0]["link"]);
    EXPECT_EQ("canon eos 5d", QueryField(server.AllRequests().at(0), "q"));
    EXPECT_EQ("", Leak(ended, Secret));
}

TEST_F(SearchGoogle, BusyService_IsAskedAgain) {
    failures = 2;
    const Ended ended = Camera({"--format", "json"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(1U, json::parse(ended.out).size());
    EXPECT_EQ(4, server.Requests()) << "two refusals, the list, the picture";
}

TEST_F(SearchGoogle, ServiceThatStaysBusyOrBroken_EndsWithFour) {
    for (char const* status : {"429 Too Many Requests", "503 Service Unavailable", "403 Forbidden"}) {
        failure = status;
        failures = 1000;
        const Ended ended = Camera();
        EXPECT_EQ(4, ended.status) << status << ended.err;
        EXPECT_EQ("", ended.out);
        EXPECT_EQ(0U, ended.err.find("orvelle: ")) << ended.err;
        EXPECT_EQ("", Leak(ended, Secret));
    }
    EXPECT_LT(server.Requests(), 20);
}

TEST_F(SearchGoogle, AnswersThatCannotBeRead_EndWithFour) {
    for (char const* bad : {"<html>sign in</html>", "{\"items\":[{\"link\":", "\x01\x02\x03"}) {
        answer = bad;
        const Ended ended = Camera({"--format", "json"});
        EXPECT_EQ(4, ended.status) << bad << ended.err;
        EXPECT_EQ(1U, CountOf(ended.err, "\n")) << ended.err;
    }
}

TEST_F(SearchGoogle, Reverse_WritesAPage) {
    answer =
        "{\"responses\":[{\"webDetection\":{\"bestGuessLabels\":[{\"label\":\"a <b>cat\"}],\"fullMatchingImages\":"
        "[{\"url\":\"https://example.org/cat.jpg\"}]}}]}";
    const std::string photo = Photo("a.jpg");
    const Ended ended = Reverse({photo, "--yes"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("orvelle: " + photo + ": the image itself is uploaded to Google", Lines(ended.err).at(0));
    const std::string page = ReadFile(PageOf(ended));
    EXPECT_TRUE(Contains(page, "a &lt;b&gt;cat")) << ended.err;
    EXPECT_TRUE(Contains(page, "href=\"https://example.org/cat.jpg\""));
    EXPECT_TRUE(Contains(server.Request(), "\"WEB_DETECTION\""));
    EXPECT_EQ("", Leak(ended, Secret));
}

TEST_F(SearchGoogle, ReverseWithoutAYes_SendsNothing) {
    EXPECT_EQ(2, Reverse({Photo("a.jpg")}).status);
    EXPECT_EQ(0, server.Connections());
}

TEST_F(SearchGoogle, ReverseThatIsRefused_EndsWithFour) {
    answer = "{\"responses\":[{\"error\":{\"message\":\"Bad image data.\"}}]}";
    const Ended ended = Reverse({Photo("a.jpg"), "--yes"});
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ("", PageOf(ended));
    EXPECT_EQ("", Leak(ended, Secret));
}

// Flickr and a site of pictures.
class BusyFlickr : public WebTest {
protected:
    BusyFlickr() {
        FakePhoto photo;
        photo.id = "11";
        photo.place = "\"latitude\":45.51,\"longitude\":9.26,\"accuracy\":16,";
        flickr.photos = {photo};
    }
    Ended Ask(std::string const& endpoint, std::vector<std::string> arguments) const {
        Set("Flickr Endpoint", endpoint);
        arguments.insert(arguments.begin(), "search");
        arguments.insert(arguments.end(), {"--format", "json", "--key-file", Key("key-of-flickr")});
        return Orvelle(arguments);
    }
    FakeFlickr flickr;
};

TEST_F(BusyFlickr, Refusals_AreTriedAgain) {
    const std::string endpoint = flickr.server.Url("/services/rest/");
    flickr.refusals = 2;
    const Ended camera = Ask(endpoint, {"camera", "--make", "Canon", "--model", "EOS 5D"});
    EXPECT_EQ(0, camera.status) << camera.err;
    EXPECT_EQ(1U, json::parse(camera.out).size());
    EXPECT_EQ(0, flickr.refusals);
    flickr.refusals = 2;
    const Ended geo = Ask(endpoint, {"geo", "--lat", "45.5", "--lon", "9.25"});
    EXPECT_EQ(0, geo.status) << geo.err;
    EXPECT_EQ("11", json::parse(geo.out).at(0).at("web_photo_id"));
}

TEST_F(BusyFlickr, GeoAnswersThatCannotBeRead_EndWithFour) {
    for (std::string const& bad :
         {HttpAnswer("200 OK", "<html>sign in</html>"), HttpAnswer("200 OK", "{\"stat\":\"ok\",\"photos\":[1,"),
          HttpAnswer("404 Not Found", "no"), HttpAnswer("200 OK", ""), std::string("\x01\x02\x03")}) {
        WebServer server([&bad](std::string const&) { return WebReply(bad); });
        const Ended ended = Ask(server.Url("/services/rest/"), {"geo", "--lat", "45.5", "--lon", "9.25"});
        EXPECT_EQ(4, ended.status) << bad << ended.err;
        EXPECT_EQ("", Leak(ended, "key-of-flickr"));
    }
}

TEST_F(BusyFlickr, BusySite_GivesItsPictureAtLast) {
    std::atomic<int> count{0};
    WebServer server([&count](std::string const&) {
        return ++count <= 2 ? HttpAnswer("429 Too Many Requests", "") : HttpAnswer("200 OK", "bytes");
    });
    Surroundings surroundings;
    surroundings.input = json::array({{{"web_photo_id", "7"}, {"link", server.Url("/a.jpg")}}}).dump();
    const Ended ended = Orvelle({"download", "--folder", Folder() + "/d", "-"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("bytes", ReadFile(Folder() + "/d/7.jpg"));
    EXPECT_EQ(3, server.Requests());
}

// A machine without a network, not even a loopback: a name space of its own.
class NoNetwork : public WebTest {
protected:
    void SetUp() override {
        if (RunProgram("/usr/bin/unshare", {"--net", "--", "/bin/true"}).status != 0) {
            GTEST_SKIP() << "only root makes a name space for its network";
        }
    }
    Ended Cut(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--net", "--", ORVELLE_PROGRAM, "--documents", Documents()});
        return RunProgram("/usr/bin/unshare", arguments);
    }
};

TEST_F(NoNetwork, Examination_IsTheSame) {
    const std::string photo = Photo("a.jpg");
    const Ended with = Orvelle({"info", "--format", "csv", photo});
    const Ended without = Cut({"info", "--format", "csv", photo});
    EXPECT_EQ(0, without.status) << without.err;
    EXPECT_EQ(with.out, without.out);
    EXPECT_EQ(with.err, without.err);
}

TEST_F(NoNetwork, Searches_EndWithFour) {
    Set("Sightings Endpoint", "https://sightings.example.org/api/");
    const std::string key = Key(Secret);
    const Ended camera = Cut({"search", "camera", "--make", "Canon", "--key-file", key});
    EXPECT_EQ(4, camera.status) << camera.err;
    EXPECT_EQ("", Leak(camera, Secret));
    EXPECT_EQ(4, Cut({"search", "geo", "--lat", "45", "--lon", "9", "--key-file", key}).status);
    EXPECT_EQ(4, Cut({"search", "sightings", "--make", "Canon", "--key-file", key}).status);
    EXPECT_EQ(4, Cut({"search", "reverse", Photo("a.jpg"), "--tineye", "--yes", "--key-file", key}).status);
}

}  // namespace
