// SPDX-License-Identifier: Apache-2.0
// Services that answer slowly, too much, something else, or not at all.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>

#include "tests/support/fakeflickr.h"
#include "tests/support/tempdir.h"
#include "tolbase/progress.h"
#include "tolimage/crawler.h"
#include "tolimage/crawler_request.h"

using support::HttpAnswer;
using support::QueryField;
using support::WebReply;
using support::WebServer;

namespace {

char const* const NoPhotos = "{\"photos\":{\"pages\":0,\"photo\":[]},\"stat\":\"ok\"}";

// What a search says of a server that gives this answer; its key must be nowhere in it.
class BadServer : public ::testing::Test {
protected:
    BadServer() {
        SetTolLimit(TolLimit::WebBackoffMs, 1);
        SetTolLimit(TolLimit::WebSeconds, 20);
    }
    wxString Search(std::string const& endpoint) {
        TolWebServices services;
        services.flickrEndpoint = wxString::FromUTF8(endpoint);
        services.flickrKey = "secret-key";
        SetTolWebServices(services);
        GetPhotoListManagerFlickr manager({"canon", "eos"}, "2017-7-14", TagFilter(), 0);
        auto const start = std::chrono::steady_clock::now();
        manager.RunThreadMngrAlt();
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        EXPECT_TRUE(manager.GetRcvdPhotoList().empty());
        EXPECT_FALSE(manager.GetErrorMsg().Contains("secret-key")) << manager.GetErrorMsg();
        return manager.GetErrorMsg();
    }
    wxString SearchWith(WebServer::Handler handler) {
        WebServer server(std::move(handler));
        wxString const error = Search(server.Url("/"));
        requests = server.Requests();
        return error;
    }

    double seconds = 0;
    int requests = 0;
};

}  // namespace

TEST_F(BadServer, Silence_EndsAtTheTimeLimit) {
    SetTolLimit(TolLimit::WebSeconds, 1);
    EXPECT_TRUE(SearchWith([](auto const&) { return ""; }).Contains("Network Connection Error"));
    EXPECT_GT(5.0, seconds);
}

TEST_F(BadServer, SlowAnswer_IsWaitedFor) {
    EXPECT_EQ("", SearchWith([](auto const&) {
                  WebReply reply(HttpAnswer("200 OK", NoPhotos));
                  reply.delay = std::chrono::milliseconds(300);
                  return reply;
              }));
}

TEST_F(BadServer, Garbage_IsNoAnswer) {
    EXPECT_EQ("Flickr: the server's answer can't be read.",
              SearchWith([](auto const&) { return HttpAnswer("200 OK", "\x01\xFF{]"); }));
    EXPECT_EQ("Flickr: the server's answer can't be read.",
              SearchWith([](auto const&) { return HttpAnswer("200 OK", "[1,2]"); }));
    EXPECT_TRUE(SearchWith([](auto const&) { return "no http at all\r\n\r\n"; }).Contains("Network Connection Error"));
    EXPECT_EQ("Flickr: the server's answer has no list of photographs.",
              SearchWith([](auto const&) { return HttpAnswer("200 OK", "{\"stat\":\"ok\",\"photos\":7}"); }));
}

TEST_F(BadServer, WebPage_IsNoAnswer) {
    EXPECT_EQ("Flickr: the server's answer can't be read.", SearchWith([](auto const&) {
                  return HttpAnswer("200 OK", "<!DOCTYPE html><html><body>Log in</body></html>");
              }));
}

TEST_F(BadServer, DeepNesting_IsNoAnswer) {
    EXPECT_EQ("Flickr: the server's answer can't be read.",
              SearchWith([](auto const&) { return HttpAnswer("200 OK", "{\"a\":" + std::string(100000, '[')); }));
}

TEST_F(BadServer, EndlessAnswer_StopsAtTheLimit) {
    SetTolLimit(TolLimit::WebAnswerBytes, 1000000);
    wxString const error = SearchWith([](auto const&) {
        WebReply reply("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n ");
        reply.endless = true;
        return reply;
    });
    EXPECT_TRUE(error.Contains("The answer is longer than the limit.")) << error;
    EXPECT_GT(5.0, seconds);
}

TEST_F(BadServer, LongAnnouncedAnswer_StopsAtTheLimit) {
    SetTolLimit(TolLimit::WebAnswerBytes, 1000000);
    wxString const error = SearchWith([](auto const&) {
        WebReply reply("HTTP/1.1 200 OK\r\nContent-Length: 10000000000\r\n\r\n ");
        reply.endless = true;
        return reply;
    });
    EXPECT_TRUE(error.Contains("The answer is longer than the limit.")) << error;
}

TEST_F(BadServer, CutAnswer_IsAFailure) {
    EXPECT_TRUE(SearchWith([](auto const&) {
                    return "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"photos\":";
                }).Contains("Network Connection Error"));
    EXPECT_EQ(1, requests);
}

TEST_F(BadServer, Redirection_IsNotFollowed) {
    WebServer target([](auto const&) { return HttpAnswer("200 OK", NoPhotos); });
    wxString const error = SearchWith([&](auto const&) {
        return HttpAnswer("302 Found", "", "Location: " + target.Url("/elsewhere?api_key=secret-key") + "\r\n");
    });
    EXPECT_EQ("Flickr: the server redirects elsewhere (302); that is not followed.", error);
    EXPECT_EQ(0, target.Connections());
}

TEST_F(BadServer, UnknownCertificate_GetsNoRequest) {
    WebServer server([](auto const&) { return HttpAnswer("200 OK", NoPhotos); }, true);
    wxString const error = Search(server.Url("/"));
    EXPECT_TRUE(error.Contains("Network Connection Error")) << error;
    EXPECT_TRUE(error.Lower().Contains("certificate")) << error;
    EXPECT_EQ(0, server.Requests());
    EXPECT_LT(0, server.Connections());
}

TEST_F(BadServer, PlainHttpElsewhere_IsNotAsked) {
    EXPECT_TRUE(Search("http://api.example.org/services/rest/").Contains("https is needed"));
}

TEST_F(BadServer, TooManyRequests_AreTriedAgain) {
    std::atomic<int> count{0};
    EXPECT_EQ("", SearchWith([&](auto const&) {
                  return ++count < 3 ? HttpAnswer("429 Too Many Requests", "") : HttpAnswer("200 OK", NoPhotos);
              }));
    EXPECT_EQ(3, requests);
}

TEST_F(BadServer, RetryAfter_IsHonoured) {
    std::atomic<int> count{0};
    EXPECT_EQ("", SearchWith([&](auto const&) {
                  return ++count < 2 ? HttpAnswer("503 Busy", "", "Retry-After: 1\r\n")
                                     : HttpAnswer("200 OK", NoPhotos);
              }));
    EXPECT_LE(1.0, seconds);
    EXPECT_GT(5.0, seconds);
}

TEST_F(BadServer, RetryAfterBeyondTheTimeLimit_EndsAtOnce) {
    EXPECT_EQ("Flickr: the server answered 429.",
              SearchWith([](auto const&) { return HttpAnswer("429 Too Many", "", "Retry-After: 86400\r\n"); }));
    EXPECT_EQ(1, requests);
    EXPECT_GT(3.0, seconds);
}

TEST_F(BadServer, ServerError_EndsAfterTheAttempts) {
    SetTolLimit(TolLimit::WebAttempts, 3);
    EXPECT_EQ("Flickr: the server answered 500.",
              SearchWith([](auto const&) { return HttpAnswer("500 Broken", "<html>secret-key</html>"); }));
    EXPECT_EQ(3, requests);
}

TEST_F(BadServer, Backoff_Doubles) {
    SetTolLimit(TolLimit::WebBackoffMs, 100);
    SetTolLimit(TolLimit::WebAttempts, 4);
    SearchWith([](auto const&) { return HttpAnswer("500 Broken", ""); });
    EXPECT_LE(0.7, seconds) << "100 + 200 + 400 milliseconds";
    EXPECT_GT(4.0, seconds);
}

TEST_F(BadServer, OtherStatus_IsNotTriedAgain) {
    EXPECT_EQ("Flickr: the server answered 404.",
              SearchWith([](auto const&) { return HttpAnswer("404 Not Found", ""); }));
    EXPECT_EQ(1, requests);
    EXPECT_EQ("Flickr: the key is refused (401).", SearchWith([](auto const&) { return HttpAnswer("401 No", "x"); }));
}

TEST_F(BadServer, MessageThatEchoesTheKey_IsShownWithoutIt) {
    EXPECT_EQ("Flickr: bad *** and *** (100)", SearchWith([](auto const& request) {
                  return HttpAnswer("200 OK", "{\"stat\":\"fail\",\"code\":100,\"message\":\"bad " +
                                                  QueryField(request, "api_key") + " and\\nsecret-key\"}");
              }));
}

TEST_F(BadServer, Abort_EndsAPause) {
    SetTolLimit(TolLimit::WebBackoffMs, 15000);
    std::thread aborter([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        tcvAbortProgress();
    });
    EXPECT_NE("", SearchWith([](auto const&) { return HttpAnswer("500 Broken", ""); }));
    aborter.join();
    EXPECT_GT(5.0, seconds);
}

TEST_F(BadServer, DetailsThatAllFail_EndTheSearchWithTheReason) {
    support::FakeFlickr flickr;
    for (int i = 0; i < 100; ++i) {
        flickr.photos.emplace_back();
        flickr.photos.back().id = std::to_string(i);
    }
    flickr.answers["flickr.photos.getExif"] = HttpAnswer("404 Gone", "");
    GetPhotoListManagerFlickr manager({"canon", "eos"}, "2017-7-14", TagFilter(), 0);
    manager.RunThreadMngrAlt();
    EXPECT_EQ("Flickr: the server answered 404.", manager.GetErrorMsg());
    EXPECT_GE(8U, flickr.Requests("flickr.photos.getExif").size()) << "one round of the threads, not a hundred";
}

TEST_F(BadServer, Threads_AreBounded) {
    std::atomic<int> now{0};
    std::atomic<int> most{0};
    std::string list;
    for (int i = 0; i < 20; ++i)
        list += (i == 0 ? "" : ",") + std::string("{\"id\":\"") + std::to_string(i) +
                "\",\"url_o\":\"https://e.org/a.jpg\"}";
    WebServer server([&](std::string const& request) -> WebReply {
        if (QueryField(request, "method") == "flickr.photos.search")
            return HttpAnswer("200 OK", "{\"photos\":{\"pages\":1,\"photo\":[" + list + "]},\"stat\":\"ok\"}");
        int const running = ++now;
        for (int seen = most; seen < running && !most.compare_exchange_weak(seen, running);) continue;
        std::this_thread::sleep_for(std::chrono::milliseconds(30));
        --now;
        return HttpAnswer("200 OK", "{\"stat\":\"fail\",\"code\":2,\"message\":\"m\"}");
    });
    SetTolLimit(TolLimit::WebThreads, 3);
    TolWebServices services;
    services.flickrEndpoint = wxString::FromUTF8(server.Url("/"));
    services.flickrKey = "secret-key";
    SetTolWebServices(services);
    GetPhotoListManagerFlickr manager({"a", "b"}, "2017-7-14", TagFilter(), 0);
    manager.RunThreadMngrAlt();
    EXPECT_EQ(20U, manager.GetRcvdPhotoList().size());
    EXPECT_EQ(3, most);
}

TEST(WebAddress, Query_GoesBehindWhatIsThere) {
    using tolimage::WithPath;
    using tolimage::WithQuery;
    EXPECT_EQ("http://h/p?a=1%262&b=", WithQuery("http://h/p#f", {{"a", "1&2"}, {"b", ""}}));
    EXPECT_EQ("http://h/p?cx=9&a=1", WithQuery("http://h/p?cx=9", {{"a", "1"}}));
    EXPECT_EQ("http://h/p?a=1", WithQuery("http://h/p?", {{"a", "1"}}));
    EXPECT_EQ("http://h/rest/search/", WithPath("http://h/rest", "search/"));
    EXPECT_EQ("http://h/rest/search/?x=1", WithPath("http://h/rest/?x=1", "search/"));
}
