// SPDX-License-Identifier: Apache-2.0
// orvelle search sightings and reverse, against servers of the tests' own.
#include <atomic>
#include <chrono>
#include <nlohmann/json.hpp>

#include "tests/cli/web.h"

using namespace clitest;
using nlohmann::json;
using support::HttpAnswer;
using support::QueryField;
using support::WebReply;
using support::WebServer;

namespace {

char const* const Secret = "sightings-secret-77";
char const* const One =
    "{\"results\":[{\"url\":\"https://example.org/a/b.jpg\",\"make\":\"Canon\",\"model\":\"EOS 5D\",\"exifSoftware\":"
    "\"1.0\",\"width\":4000,\"height\":3000}]}";

class SearchSightings : public WebTest {
protected:
    Ended Search(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"search", "sightings"});
        Surroundings surroundings;
        surroundings.environment = {{"ORVELLE_API_KEY", Secret}};
        return Orvelle(arguments, surroundings);
    }
    // With a server that gives this answer.
    Ended Answered(WebReply const& reply, std::vector<std::string> arguments = {"--make", "Canon"}) {
        WebServer server([&reply](std::string const&) { return reply; });
        Set("Sightings Endpoint", server.Url("/api/"));
        const auto start = std::chrono::steady_clock::now();
        const Ended ended = Search(std::move(arguments));
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        request = server.Request();
        EXPECT_EQ("", Leak(ended, Secret));
        return ended;
    }

    std::string request;
    double seconds = 0;
};

TEST_F(SearchSightings, Results_MakeATable) {
    const Ended ended = Answered(HttpAnswer("200 OK", One),
                                 {"--make", "Canon", "--model", "EOS 5D", "--results", "25", "--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(
        "Id,Filename,Make,Model,Software,Width,Height,url\r\n"
        "1,b.jpg,Canon,EOS 5D,1.0,4000,3000,https://example.org/a/b.jpg\r\n",
        ended.out);
    EXPECT_EQ(Secret, QueryField(request, "api_key"));
    EXPECT_EQ("25", QueryField(request, "resultSize"));
    EXPECT_TRUE(Contains(request, "Canon"));
    EXPECT_TRUE(Contains(request, "EOS%205D"));
}

TEST_F(SearchSightings, KeyFile_GoesBeforeTheEnvironment) {
    Answered(HttpAnswer("200 OK", "{}"), {"--make", "Canon", "--key-file", Key("another-secret")});
    EXPECT_EQ("another-secret", QueryField(request, "api_key"));
}

TEST_F(SearchSightings, Filters_AreSent) {
    const std::string hash(32, 'A');
    Answered(HttpAnswer("200 OK", "{}"), {"--qt", hash, "--software", "Editor 3", "--size", "4000x3000"});
    const std::string line = request.substr(0, request.find('\r'));
    for (char const* const part : {hash.c_str(), "Editor%203", "4000", "3000"}) {
        EXPECT_TRUE(Contains(line, part)) << line;
    }
}

TEST_F(SearchSightings, Like_TakesTheDataOfAFile) {
    const std::string photo = Photo("a.jpg");
    Answered(HttpAnswer("200 OK", "{}"), {"--like", photo, "--model", "Other 6"});
    const std::string line = request.substr(0, request.find('\r'));
    const std::string digest = RunProgram("exiftool", {"-n", "-s3", "-JPEGDigest", photo}).out.substr(0, 32);
    std::string capitals = digest;
    for (char& c : capitals) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (std::string const& part :
         {std::string("Acme%20Optics"), std::string("Other%206"), capitals, std::string("640"), std::string("480")}) {
        EXPECT_TRUE(Contains(line, part)) << line;
    }
    EXPECT_FALSE(Contains(line, "Shooter"));
    EXPECT_FALSE(Contains(line, "a.jpg"));
}

TEST_F(SearchSightings, Like_NeedsAFileThatCanBeRead) {
    EXPECT_EQ(3, Answered(HttpAnswer("200 OK", One), {"--like", Path("none.jpg")}).status);
    EXPECT_EQ("", request);
}

TEST_F(SearchSightings, NothingFound_IsNoError) {
    const Ended text = Answered(HttpAnswer("200 OK", "{\"results\":[]}"));
    EXPECT_EQ(0, text.status);
    EXPECT_EQ("", text.out);
    EXPECT_EQ("orvelle: no sightings\n", text.err);
    EXPECT_EQ("[]\n", Answered(HttpAnswer("200 OK", "{\"results\":[]}"), {"--make", "Canon", "--format", "json"}).out);
}

TEST_F(SearchSightings, WrongKey_IsNamedAsSuch) {
    const Ended ended = Answered(HttpAnswer("401 Unauthorized", std::string("no: ") + Secret));
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: Invalid CameraForensics API Key\n", ended.err);
}

TEST_F(SearchSightings, NobodyThere_IsANetworkError) {
    Set("Sightings Endpoint", Nowhere());
    const Ended ended = Search({"--make", "Canon"});
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ(NetworkError, ended.err);
}

TEST_F(SearchSightings, CertificateOfNobody_GetsNoKey) {
    WebServer server([](std::string const&) { return HttpAnswer("200 OK", One); }, true);
    Set("Sightings Endpoint", server.Url("/api/"));
    const Ended ended = Search({"--make", "Canon"});
    EXPECT_EQ(4, ended.status);
    EXPECT_EQ(NetworkError, ended.err);
    EXPECT_EQ(0, server.Requests());
    EXPECT_EQ("", Leak(ended, Secret));
}

TEST_F(SearchSightings, AnswersThatCannotBeRead_EndWithFour) {
    for (std::string const& answer :
         {HttpAnswer("200 OK", "<html>sign in</html>"), HttpAnswer("200 OK", "{\"res"),
          HttpAnswer("404 Not Found", "no"), HttpAnswer("200 OK", "[1,2]"), std::string("\x01\x02\x03")}) {
        const Ended ended = Answered(answer, {"--make", "Canon", "--format", "json"});
        EXPECT_EQ(4, ended.status) << answer << ended.err;
        EXPECT_EQ(0U, ended.err.find("orvelle: ")) << answer;
    }
}

TEST_F(SearchSightings, EndlessAndSilentAnswers_EndInTime) {
    WebReply endless(std::string("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n{\"results\":[ "));
    endless.endless = true;
    EXPECT_EQ(4, Answered(endless).status);
    EXPECT_LT(seconds, 30);
    EXPECT_EQ(4, Answered(WebReply(""), {"--make", "Canon", "--timeout", "1"}).status);
    EXPECT_LT(seconds, 20);
}

TEST_F(SearchSightings, BusyServer_IsAskedAgain) {
    std::atomic<int> count{0};
    WebServer server([&count](std::string const&) {
        return ++count < 3 ? HttpAnswer("429 Too Many Requests", "") : HttpAnswer("200 OK", One);
    });
    Set("Sightings Endpoint", server.Url("/api/"));
    const Ended ended = Search({"--make", "Canon", "--format", "json"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("b.jpg", json::parse(ended.out).at(0).at("filename"));
    EXPECT_EQ(3, server.Requests());
}

TEST_F(SearchSightings, WrongUse_SendsNothing) {
    WebServer server([](std::string const&) { return HttpAnswer("200 OK", One); });
    EXPECT_EQ(2, Search({"--make", "Canon"}).status) << "no address";
    Set("Sightings Endpoint", server.Url("/api/"));
    const Ended keyless = Orvelle({"search", "sightings", "--make", "Canon"});
    EXPECT_EQ(2, keyless.status);
    EXPECT_TRUE(Contains(keyless.err, "--key-file")) << keyless.err;
    EXPECT_TRUE(Contains(keyless.err, "ORVELLE_API_KEY")) << keyless.err;
    const Ended large = Search({"--size", "large"});
    EXPECT_EQ(2, large.status);
    EXPECT_TRUE(Contains(large.err, "--size")) << large.err;
    const Ended key = Orvelle({"search", "sightings", "--make", "Canon", "--key", Secret});
    EXPECT_EQ(2, key.status);
    EXPECT_EQ("", Leak(key, Secret));
    EXPECT_EQ(0, server.Connections());
}

// Reverse searches upload the picture.
class SearchReverse : public WebTest {
protected:
    SearchReverse()
        : server([](std::string const&) {
              return HttpAnswer("200 OK",
                                "{\"code\":200,\"messages\":[],\"results\":{\"matches\":[{\"image_url\":"
                                "\"https://img.example.org/1.jpg\",\"domain\":\"example.org\",\"score\":87.5,"
                                "\"width\":640,\"height\":480,\"format\":\"JPEG\",\"backlinks\":[{\"backlink\":"
                                "\"https://example.org/p\",\"crawl_date\":\"2020-01-02\"}]}]}}");
          }) {
        Set("TinEye Endpoint", server.Url("/rest/"));
    }
    Ended Search(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"search", "reverse"});
        arguments.insert(arguments.end(), {"--key-file", Key(Secret)});
        return Orvelle(arguments);
    }

    WebServer server;
};

TEST_F(SearchReverse, WithoutAYes_NothingIsSent) {
    const std::string photo = Photo("a.jpg");
    const Ended ended = Search({photo, "--tineye"});
    EXPECT_EQ(2, ended.status);
    EXPECT_EQ("orvelle: " + photo + ": the image itself is uploaded to TinEye", Lines(ended.err).at(0));
    EXPECT_TRUE(Contains(ended.err, "--yes"));
    EXPECT_EQ(2, Search({photo, "--yes"}).status) << "no service";
    EXPECT_EQ(2, Orvelle({"search", "reverse", photo, "--tineye", "--yes"}).status) << "no key";
    EXPECT_EQ(0, server.Connections());
}

TEST_F(SearchReverse, WithAYes_TheMatchesAreListed) {
    const std::string photo = Photo("a.jpg");
    const Ended ended = Search({photo, "--tineye", "--yes", "--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("orvelle: " + photo + ": the image itself is uploaded to TinEye", Lines(ended.err).at(0));
    EXPECT_TRUE(Contains(Lines(ended.err).at(1), "the answer as a page: ")) << ended.err;
    EXPECT_TRUE(Contains(Lines(ended.err).at(1), "tineye.html")) << ended.err;
    EXPECT_EQ(
        "#Id,Domain,Score,Width,Height,Format,Image,Page,Crawl Date\r\n"
        "1,example.org,87.5,640,480,JPEG,https://img.example.org/1.jpg,https://example.org/p,2020-01-02\r\n",
        ended.out);
    EXPECT_TRUE(Contains(server.Request(), ReadFile(photo)));
    EXPECT_EQ("", Leak(ended, Secret));
}

TEST_F(SearchReverse, MissingPictureAndDeadServer_AreTold) {
    const Ended missing = Search({Path("none.jpg"), "--tineye", "--yes"});
    EXPECT_EQ(3, missing.status);
    EXPECT_EQ(0, server.Connections());
    Set("TinEye Endpoint", Nowhere());
    const Ended dead = Search({Photo("a.jpg"), "--tineye", "--yes"});
    EXPECT_EQ(4, dead.status);
    EXPECT_TRUE(Contains(dead.err, NetworkError)) << dead.err;
}

}  // namespace
