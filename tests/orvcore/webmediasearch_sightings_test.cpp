// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "orvcore/webmediasearch.h"
#include "tests/support/tempdir.h"
#include "tests/support/webserver.h"
#include "tolbase/limits.h"
#include "tolimage/webservices.h"

using support::HttpAnswer;
using support::QueryField;
using support::WebReply;
using support::WebServer;

namespace {

char const* const NetworkText =
    "Network Connection Error: you may be disconnected from the Internet or the server may be down.";
char const* const Two =
    "{\"results\":[{\"url\":\"https://example.org/a/b.jpg\",\"make\":\"Canon\",\"model\":\"EOS 5D\",\"exifSoftware\":"
    "\"1.0\",\"width\":4000,\"height\":3000},{\"url\":\"plain\",\"width\":null}]}";
std::string const Hash(32, 'A');

struct Question {
    wxString key = "my-api-key";
    wxString make;
    wxString model;
    wxString software = "Any Software";
    wxString qt = "Any QT";
    int count = 25;
    wxString resolution;

    VecParameter Parameters() const {
        return VecParameter{CreateParameterString("Key", "", key),
                            CreateParameterString("Make", "", make),
                            CreateParameterString("Model", "", model),
                            CreateParameterString("Software", "", software),
                            CreateParameterString("QT", "", qt),
                            CreateParameterInt("Results", "", count),
                            CreateParameterString("Resolution", "", resolution)};
    }
};

class Sightings : public ::testing::Test {
protected:
    Sightings() {
        SetTolLimit(TolLimit::WebBackoffMs, 1);
        SetTolLimit(TolLimit::WebSeconds, 20);
    }
    VecVecString SearchAt(std::string const& endpoint, Question const& question = Question()) {
        TolWebServices services;
        services.sightingsEndpoint = wxString::FromUTF8(endpoint);
        SetTolWebServices(services);
        VecParameter params = question.Parameters();
        wxString error = "untouched";
        VecVecString table;
        thrown.clear();
        auto const start = std::chrono::steady_clock::now();
        try {
            table = SearchImageOnCameraForensics(params, 1, error);
        } catch (TolException const& failure) {
            EXPECT_EQ(ExceptionGeneral, failure.GetType());
            EXPECT_EQ(82, failure.GetCode());
            thrown = failure.GetMessage();
        }
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        EXPECT_EQ("untouched", error);
        return table;
    }
    VecVecString Search(Question const& question, WebServer::Handler handler) {
        WebServer server(std::move(handler));
        VecVecString const table = SearchAt(server.Url("/api/"), question);
        request = server.Request();
        requests = server.Requests();
        return table;
    }
    // The first line's address for a question.
    std::string Sent(Question const& question) {
        Search(question, [](auto const&) { return HttpAnswer("200 OK", "{}"); });
        return request.substr(4, request.find(" HTTP/") - 4);
    }
    wxString ThrownBy(std::string const& answer) {
        Search(Question(), [&](auto const&) { return answer; });
        return thrown;
    }

    wxString thrown;
    std::string request;
    int requests = 0;
    double seconds = 0;
};

}  // namespace

TEST_F(Sightings, Results_MakeATable) {
    VecVecString const table = Search(Question(), [](auto const&) { return HttpAnswer("200 OK", Two); });
    ASSERT_EQ(3U, table.size()) << thrown;
    EXPECT_EQ((VecString{"Id", "Filename", "Make", "Model", "Software", "Width", "Height", "url"}), table[0]);
    EXPECT_EQ((VecString{"1", "b.jpg", "Canon", "EOS 5D", "1.0", "4000", "3000", "https://example.org/a/b.jpg"}),
              table[1]);
    EXPECT_EQ((VecString{"2", "plain", "", "", "", "", "", "plain"}), table[2]) << "what is missing is empty";
    EXPECT_EQ("", GetSightingsProblem());
}

TEST_F(Sightings, Key_IsSentTwiceEncoded) {
    Question question;
    question.key = "a b=c&d\r\nX-Evil: 1";
    EXPECT_EQ("/api/sightings?api_key=a%20b%3Dc%26dX-Evil%3A%201&resultSize=25", Sent(question));
    EXPECT_NE(std::string::npos, request.find("\r\napi_key: a%20b%3Dc%26dX-Evil%3A%201\r\n"));
    EXPECT_EQ(std::string::npos, request.find("\r\nX-Evil"));
}

TEST_F(Sightings, NothingGiven_StillAsks) {
    Question question;
    question.key.clear();
    EXPECT_EQ("/api/sightings?&resultSize=25", Sent(question));
    EXPECT_EQ(std::string::npos, request.find("api_key"));
}

TEST_F(Sightings, Pieces_StandInTheirOrder) {
    Question question;
    question.make = "Canon & Co";
    question.model = "EOS";
    question.software = wxString::FromUTF8("\xC3\xBC");
    question.qt = wxString::FromUTF8(Hash);
    question.resolution = " 4000 x 3000 ";
    EXPECT_EQ("/api/sightings?api_key=my-api-key&make=Canon%20%26%20Co&model=EOS&exifSoftware=%C3%BC&qtHash=" + Hash +
                  "&exactQTHashMatch=false&resultSize=25&width=4000&height=3000",
              Sent(question));
}

TEST_F(Sightings, AnyQtAndAnySoftware_SendNothing) {
    EXPECT_EQ("/api/sightings?api_key=my-api-key&resultSize=25", Sent(Question()));
    Question question;
    question.software.clear();
    question.qt.clear();
    EXPECT_EQ("/api/sightings?api_key=my-api-key&resultSize=25", Sent(question));
}

TEST_F(Sightings, WordsAroundHashes_AreLeftOut) {
    Question question;
    std::string const second(32, '7');
    question.qt = wxString::FromUTF8("the hash " + Hash + "," + second + " of a camera");
    std::string const sent = Sent(question);
    EXPECT_EQ(Hash + "," + second, QueryField("GET " + sent + " HTTP/", "qtHash"));
    EXPECT_NE(std::string::npos, sent.find("&exactQTHashMatch=false"));
}

TEST_F(Sightings, NoHashInTheText_SendsAnEmptyOne) {
    Question question;
    question.qt = "short";
    EXPECT_EQ("/api/sightings?api_key=my-api-key&qtHash=&exactQTHashMatch=false&resultSize=25", Sent(question));
}

TEST_F(Sightings, BadResolution_IsLeftOut) {
    for (char const* text : {"large", "4000", "4000x", "x3000", "4000xhigh", "4000x99999999999", "1x2x3"}) {
        Question question;
        question.resolution = text;
        EXPECT_EQ(std::string::npos, Sent(question).find("width")) << text;
    }
}

TEST_F(Sightings, NoAddress_SaysSo) {
    SearchAt("");
    EXPECT_TRUE(thrown.Contains("Sightings Endpoint")) << thrown;
}

TEST_F(Sightings, NobodyThere_IsANetworkError) {
    std::string gone;
    {
        gone = WebServer([](auto const&) { return ""; }).Url("/");
    }
    SearchAt(gone);
    EXPECT_EQ(NetworkText, thrown);
}

TEST_F(Sightings, FailedTransfers_AreNetworkErrors) {
    EXPECT_EQ(NetworkText, ThrownBy("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{"));
    EXPECT_EQ(NetworkText, ThrownBy("rubbish\r\n\r\n"));
    SearchAt("http://sightings.example.org/");
    EXPECT_EQ(NetworkText, thrown) << "the key does not go out in the clear";
    SetTolLimit(TolLimit::WebSeconds, 1);
    EXPECT_EQ(NetworkText, ThrownBy(""));
    EXPECT_GT(5.0, seconds);
}

TEST_F(Sightings, UnknownCertificate_GetsNoKey) {
    WebServer server([](auto const&) { return HttpAnswer("200 OK", Two); }, true);
    SearchAt(server.Url("/"));
    EXPECT_EQ(NetworkText, thrown);
    EXPECT_EQ(0, server.Requests());
    EXPECT_LT(0, server.Connections());
}

TEST_F(Sightings, EndlessAnswer_StopsAtTheLimit) {
    SetTolLimit(TolLimit::WebAnswerBytes, 1000000);
    Search(Question(), [](auto const&) {
        WebReply reply("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n ");
        reply.endless = true;
        return reply;
    });
    EXPECT_EQ(NetworkText, thrown);
    EXPECT_GT(5.0, seconds);
}

TEST_F(Sightings, Redirection_IsNotFollowed) {
    WebServer target([](auto const&) { return HttpAnswer("200 OK", Two); });
    EXPECT_EQ(NetworkText, ThrownBy(HttpAnswer("307 Elsewhere", "", "Location: " + target.Url("/") + "\r\n")));
    EXPECT_EQ(0, target.Connections());
}

TEST_F(Sightings, BusyServer_IsAskedAgain) {
    std::atomic<int> count{0};
    VecVecString const table = Search(Question(), [&](auto const&) {
        return ++count < 2 ? HttpAnswer("429 Too Many Requests", "") : HttpAnswer("200 OK", Two);
    });
    EXPECT_EQ(3U, table.size());
    EXPECT_EQ(2, requests);
}

TEST_F(Sightings, BrokenServer_IsANetworkError) {
    EXPECT_EQ(NetworkText, ThrownBy(HttpAnswer("500 Broken", "<html>oops</html>")));
    EXPECT_EQ(4, requests);
}

TEST_F(Sightings, RefusedKey_IsToldWhateverTheBody) {
    EXPECT_EQ("Invalid CameraForensics API Key", ThrownBy(HttpAnswer("401 Unauthorized", "{\"error\":\"key\"}")));
    EXPECT_EQ("Invalid CameraForensics API Key", ThrownBy(HttpAnswer("200 OK", "")));
}

TEST_F(Sightings, AnswerThatCannotBeRead_GivesNoRow) {
    for (char const* bad : {"<html><body>Log in</body></html>", "{\"results\":[", "nonsense", "{\"results\":}"}) {
        EXPECT_TRUE(Search(Question(), [&](auto const&) { return HttpAnswer("200 OK", bad); }).empty()) << bad;
        EXPECT_EQ("", thrown) << bad;
    }
    Search(Question(), [](auto const&) { return HttpAnswer("200 OK", "<html></html>"); });
    EXPECT_NE("", GetSightingsProblem());
}

TEST_F(Sightings, NoResults_GiveNoRow) {
    EXPECT_TRUE(Search(Question(), [](auto const&) { return HttpAnswer("200 OK", "{\"results\":[]}"); }).empty());
    EXPECT_EQ("", GetSightingsProblem());
    EXPECT_TRUE(Search(Question(), [](auto const&) { return HttpAnswer("200 OK", "{\"results\":7}"); }).empty());
    EXPECT_NE("", GetSightingsProblem());
}

TEST_F(Sightings, DeepNesting_IsNoCrash) {
    std::string const deep = "{\"results\":" + std::string(200000, '[');
    EXPECT_TRUE(Search(Question(), [&](auto const&) { return HttpAnswer("200 OK", deep); }).empty());
}

TEST_F(Sightings, EchoedKey_IsInNoCell) {
    VecVecString const table = Search(Question(), [](auto const&) {
        return HttpAnswer("200 OK",
                          "{\"results\":[{\"url\":\"https://example.org/a.jpg?api_key=my-api-key\",\"make\":7,"
                          "\"model\":{\"my-api-key\":1}}]}");
    });
    ASSERT_EQ(2U, table.size());
    for (wxString const& cell : table[1]) EXPECT_FALSE(cell.Contains("my-api-key")) << cell;
    EXPECT_EQ("7", table[1][2]);
}
