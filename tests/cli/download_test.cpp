// SPDX-License-Identifier: Apache-2.0
// orvelle download: what a search found, fetched from servers of the tests' own.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/web.h"

using namespace clitest;
using nlohmann::json;
using support::HttpAnswer;
using support::WebReply;
using support::WebServer;

namespace {

// A site with pictures; those beneath "/bad" are missing.
class Download : public WebTest {
protected:
    Download() : server(Answer) {}

    static WebReply Answer(std::string const& request) {
        if (request.find("GET /bad") == 0) return HttpAnswer("404 Not Found", "");
        if (request.find("GET /page") == 0) {
            return HttpAnswer("200 OK", "<!DOCTYPE html><html></html>", "Content-Type: text/html\r\n");
        }
        return HttpAnswer("200 OK", "bytes");
    }
    // A list as a search prints it: pairs of id and link.
    static std::string ListOf(std::vector<std::pair<std::string, std::string>> const& entries) {
        json list = json::array();
        for (auto const& [id, link] : entries) list.push_back({{"web_photo_id", id}, {"link", link}});
        return list.dump();
    }
    Ended Fetch(std::string const& list, std::vector<std::string> more = {}) const {
        Surroundings surroundings;
        surroundings.input = list;
        more.insert(more.begin(), {"download", "--folder", Target(), "-"});
        return Orvelle(more, surroundings);
    }
    std::string Target() const { return Folder() + "/d"; }
    std::vector<std::string> Names() const { return List(Target()); }

    WebServer server;
};

using Texts = std::vector<std::string>;

TEST_F(Download, Pictures_AreSavedUnderTheirIds) {
    const Ended ended = Fetch(ListOf({{"11", server.Url("/a.jpg")}, {"12", server.Url("/b.png")}}));
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(Target() + "/11.jpg\n" + Target() + "/12.png\n", ended.out);
    EXPECT_EQ("Downloading Image 1 of 2\nDownloading Image 2 of 2\n", ended.err);
    EXPECT_EQ((Texts{"11.jpg", "12.png"}), Names());
    EXPECT_EQ("bytes", ReadFile(Target() + "/11.jpg"));
}

TEST_F(Download, SearchResult_IsTakenAsItIsPrinted) {
    support::FakeFlickr flickr;
    flickr.photos.resize(1);
    flickr.photos[0].id = "77";
    flickr.photos[0].link = server.Url("/x_o.jpg");
    Set("Flickr Endpoint", flickr.server.Url("/services/rest/"));
    const std::string list =
        Orvelle({"search", "camera", "--make", "Canon", "--format", "json", "--key-file", Key("key-of-flickr")}).out;
    EXPECT_EQ(0, Fetch(list, {"--quiet"}).status) << list;
    EXPECT_EQ(Texts{"77.jpg"}, Names());
}

TEST_F(Download, FailedLink_IsToldAndTheOthersAreTried) {
    const Ended ended = Fetch(ListOf({{"1", server.Url("/a.jpg")},
                                      {"2", server.Url("/bad.jpg")},
                                      {"3", server.Url("/page.jpg")},
                                      {"4", server.Url("/c.jpg")}}));
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ((Texts{"1.jpg", "4.jpg"}), Names());
    EXPECT_TRUE(Contains(ended.err, "orvelle: " + server.Url("/bad.jpg") + ": ")) << ended.err;
    EXPECT_TRUE(Contains(ended.err, "orvelle: " + server.Url("/page.jpg") + ": ")) << ended.err;
}

TEST_F(Download, FourFailuresInARow_EndTheRun) {
    std::vector<std::pair<std::string, std::string>> list;
    for (int i = 1; i <= 6; ++i) list.emplace_back(std::to_string(i), server.Url("/bad" + std::to_string(i)));
    list.emplace_back("7", server.Url("/a.jpg"));
    const Ended ended = Fetch(ListOf(list));
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ(4, server.Requests());
    EXPECT_TRUE(Contains(ended.err, "orvelle: 3 left out behind more than three failures in a row\n")) << ended.err;
    EXPECT_TRUE(Names().empty());
}

TEST_F(Download, NamesThatLeadOut_StayInTheFolder) {
    const Ended ended = Fetch(ListOf({{"../../evil", server.Url("/a.jpg")},
                                      {"/etc/passwd", server.Url("/b.jpg")},
                                      {"3", server.Url("/../../c.jpg/..%2f..%2fd")},
                                      {"..", server.Url("/e.jpg")}}));
    size_t files = 0;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(Folder())) {
        if (!entry.is_regular_file() || ReadFile(entry.path().string()) != "bytes") continue;
        ++files;
        EXPECT_EQ(Target(), entry.path().parent_path().string());
    }
    EXPECT_LE(2U, files) << ended.err;
}

TEST_F(Download, OtherSchemes_AreRefused) {
    WriteFile(Folder() + "/secret", "secret");
    for (std::string const& link :
         {"file://" + Folder() + "/secret", std::string("ftp://127.0.0.1/x.jpg"), std::string("/etc/passwd")}) {
        const Ended ended = Fetch(ListOf({{"1", link}}));
        EXPECT_EQ(4, ended.status) << link;
        EXPECT_TRUE(Contains(ended.err, "orvelle: " + link + ": ")) << ended.err;
        EXPECT_TRUE(Names().empty()) << link;
    }
}

TEST_F(Download, FileThatExists_StaysWithoutForce) {
    std::filesystem::create_directories(Target());
    WriteFile(Target() + "/1.jpg", "mine");
    const std::string list = ListOf({{"1", server.Url("/a.jpg")}});
    EXPECT_EQ(5, Fetch(list).status);
    EXPECT_EQ("mine", ReadFile(Target() + "/1.jpg"));
    EXPECT_EQ(0, Fetch(list, {"--force"}).status);
    EXPECT_EQ("bytes", ReadFile(Target() + "/1.jpg"));
}

TEST_F(Download, BrokenLists_AreRefused) {
    for (char const* text : {"", "hello", "{}", "[1]", "[{}]", R"([{"link":""}])", R"([{"id":"1","link":7.5}])"}) {
        const Ended ended = Fetch(text);
        EXPECT_EQ(3, ended.status) << text;
        EXPECT_EQ(0U, ended.err.find("orvelle: standard input: ")) << ended.err;
    }
    EXPECT_EQ(3, Orvelle({"download", "--folder", Target(), Path("none.json")}).status);
    EXPECT_EQ(2, Orvelle({"download", "-"}).status);
    EXPECT_EQ(2, Fetch("[]", {"--timeout", "0"}).status);
    EXPECT_EQ(0, server.Connections());
}

TEST_F(Download, EmptyList_DoesNothing) {
    const Ended ended = Fetch("[]");
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("", ended.out + ended.err);
}

TEST_F(Download, FolderThatIsAFile_EndsWithFive) {
    WriteFile(Target(), "x");
    EXPECT_EQ(5, Fetch(ListOf({{"1", server.Url("/a.jpg")}})).status);
    EXPECT_EQ("x", ReadFile(Target()));
    EXPECT_EQ(0, server.Connections());
}

TEST_F(Download, NobodyThere_EndsWithFour) {
    const std::string link = Nowhere() + "a.jpg";
    const Ended ended = Fetch(ListOf({{"1", link}}));
    EXPECT_EQ(4, ended.status);
    EXPECT_TRUE(Contains(ended.err, "orvelle: " + link + ": ")) << ended.err;
}

}  // namespace
