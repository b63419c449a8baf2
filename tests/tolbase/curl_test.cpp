// SPDX-License-Identifier: Apache-2.0
#include "tolbase/curl.h"

#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "tests/support/tempdir.h"
#include "tests/tolbase/localserver.h"
#include "tolbase/progress.h"

extern char** environ;

using support::HttpAnswer;
using support::LocalServer;

namespace {

int Send(CurlClass& curl, const std::string& url, const wxString& header = wxString(),
         const std::vector<NameValueDesc>& fields = {}, const wxString& body = wxString()) {
    tcvClearAborted();
    curl.SetRequest(wxString::FromUTF8(url));
    return curl.SendSSLRequest(header, fields, body);
}

// Runs a program without a shell, its output thrown away; 0 where it can't be started.
pid_t Start(std::vector<std::string> words) {
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(&word[0]);
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    for (const int descriptor : {0, 1, 2})
        posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", O_RDWR, 0);
    pid_t process = 0;
    const int failed = posix_spawnp(&process, arguments[0], &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return failed == 0 ? process : 0;
}

// Answers "ok" to each request and leaves every connection open.
class KeepingServer {
public:
    KeepingServer() : m_sockets{{socket(AF_INET, SOCK_STREAM, 0), POLLIN, 0}} {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        bind(m_sockets[0].fd, reinterpret_cast<sockaddr*>(&address), size);
        listen(m_sockets[0].fd, 8);
        getsockname(m_sockets[0].fd, reinterpret_cast<sockaddr*>(&address), &size);
        url = "http://127.0.0.1:" + std::to_string(ntohs(address.sin_port)) + "/";
        m_thread = std::thread([this] { Run(); });
    }
    ~KeepingServer() {
        m_stop = true;
        m_thread.join();
        for (const pollfd& each : m_sockets) close(each.fd);
    }
    KeepingServer(const KeepingServer&) = delete;
    KeepingServer& operator=(const KeepingServer&) = delete;

    std::string url;
    std::atomic<int> connections{0};

private:
    void Run() {
        while (!m_stop) {
            if (poll(m_sockets.data(), m_sockets.size(), 20) < 1) continue;
            for (std::size_t i = m_sockets.size() - 1; i > 0; --i)
                if (m_sockets[i].revents != 0) Answer(i);
            if (m_sockets[0].revents == 0) continue;
            m_sockets.push_back({accept(m_sockets[0].fd, nullptr, nullptr), POLLIN, 0});
            ++connections;
        }
    }
    // A request is small enough to come in one piece.
    void Answer(std::size_t i) {
        char request[4096];
        const std::string answer = "HTTP/1.1 200 OK\r\nContent-Length: 2\r\n\r\nok";
        if (recv(m_sockets[i].fd, request, sizeof request, 0) > 0) {
            send(m_sockets[i].fd, answer.data(), answer.size(), MSG_NOSIGNAL);
            return;
        }
        close(m_sockets[i].fd);
        m_sockets.erase(m_sockets.begin() + static_cast<std::ptrdiff_t>(i));
    }

    std::vector<pollfd> m_sockets;
    std::atomic<bool> m_stop{false};
    std::thread m_thread;
};

}  // namespace

TEST(Curl, Answer_IsGivenWithItsStatus) {
    LocalServer server(HttpAnswer("200 OK", "\xC3\xBC text"));
    CurlClass curl;
    EXPECT_TRUE(curl.InitCurl());
    EXPECT_EQ(0, Send(curl, server.Url("/sightings?make=a%20b"), "api_key: secret"));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC text"), curl.GetResponseString());
    EXPECT_EQ(200, curl.GetHttpStatus());
    EXPECT_EQ(wxString(), curl.GetErrorMessage());
    EXPECT_EQ(0u, server.Request().find("GET /sightings?make=a%20b HTTP/1.1\r\n"));
    EXPECT_NE(std::string::npos, server.Request().find("\r\napi_key: secret\r\n"));
}

TEST(Curl, SeveralRequests_GoOverOneConnection) {
    KeepingServer server;
    CurlClass curl;
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(curl.InitCurl());
        EXPECT_EQ(0, Send(curl, server.url));
        EXPECT_EQ("ok", curl.GetResponseString());
    }
    EXPECT_EQ(1, server.connections);
}

TEST(Curl, OtherStatus_IsAnAnswerToo) {
    LocalServer server(HttpAnswer("500 Broken", "oops"));
    CurlClass curl;
    EXPECT_EQ(0, Send(curl, server.Url("/")));
    EXPECT_EQ(500, curl.GetHttpStatus());
    EXPECT_EQ(wxString("oops"), curl.GetResponseString());
}

TEST(Curl, Unauthorized_HasAnEmptyAnswer) {
    LocalServer server(HttpAnswer("401 Unauthorized", "{\"error\": \"key\"}"));
    CurlClass curl;
    EXPECT_EQ(0, Send(curl, server.Url("/"), "api_key: x"));
    EXPECT_EQ(401, curl.GetHttpStatus());
    EXPECT_EQ(wxString(), curl.GetResponseString());
}

TEST(Curl, Header_CannotBecomeTwo) {
    LocalServer server(HttpAnswer("200 OK", ""));
    CurlClass curl;
    EXPECT_EQ(0, Send(curl, server.Url("/"), "api_key: a\r\nX-Evil: b"));
    EXPECT_NE(std::string::npos, server.Request().find("\r\napi_key: aX-Evil: b\r\n"));
}

TEST(Curl, FieldsAndBody_ArePosted) {
    LocalServer server(HttpAnswer("200 OK", ""));
    CurlClass curl;
    EXPECT_EQ(0, Send(curl, server.Url("/"), "", {{"a b", "1&2", ""}, {"c", wxString::FromUTF8("\xC3\xBC"), ""}}));
    EXPECT_EQ(0u, server.Request().find("POST "));
    EXPECT_NE(std::string::npos, server.Request().find("\r\n\r\na%20b=1%262&c=%C3%BC"));
    EXPECT_EQ(0, Send(curl, server.Url("/"), "", {}, "{\"raw\": 1}"));
    EXPECT_NE(std::string::npos, server.Request().find("\r\n\r\n{\"raw\": 1}"));
    EXPECT_EQ(0, Send(curl, server.Url("/")));
    EXPECT_EQ(0u, server.Request().find("GET ")) << "nothing of an earlier request stays";
}

TEST(Curl, NobodyThere_IsAFailure) {
    std::string url;
    { url = LocalServer("x").Url("/"); }
    CurlClass curl;
    EXPECT_EQ(-1, Send(curl, url));
    EXPECT_EQ(0, curl.GetHttpStatus());
    EXPECT_FALSE(curl.GetErrorMessage().empty());
}

TEST(Curl, AddressesThatAreNotAllowed_AreNeverAsked) {
    CurlClass curl;
    for (const char* url :
         {"", "http://example.org/", "ftp://127.0.0.1/", "file:///etc/passwd", "http://127.example.org/", "no address",
          "http://localhost.example.org/", "gopher://localhost/"})
        EXPECT_EQ(-1, Send(curl, url)) << url;
}

TEST(Curl, LongAnswer_IsAFailure) {
    LocalServer server(HttpAnswer("200 OK", std::string(100000, 'x')));
    CurlClass curl;
    curl.SetMaxResponseBytes(99999);
    EXPECT_EQ(-1, Send(curl, server.Url("/")));
    EXPECT_EQ(wxString(), curl.GetResponseString());
    curl.SetMaxResponseBytes(100000);
    EXPECT_EQ(0, Send(curl, server.Url("/")));
    EXPECT_EQ(100000u, curl.GetResponseBytes().size());
}

TEST(Curl, CutAnswer_IsAFailure) {
    LocalServer server("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nabc");
    CurlClass curl;
    EXPECT_EQ(-1, Send(curl, server.Url("/")));
    EXPECT_EQ(wxString(), curl.GetResponseString());
}

TEST(Curl, SilentServer_EndsAtTheTimeLimit) {
    LocalServer server("");
    CurlClass curl;
    curl.SetTimeLimit(1);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(-1, Send(curl, server.Url("/")));
    EXPECT_GT(std::chrono::seconds(10), std::chrono::steady_clock::now() - start);
}

TEST(Curl, Abort_EndsTheTransfer) {
    LocalServer server("");
    CurlClass curl;
    std::thread aborter([] {
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        tcvAbortProgress();
    });
    EXPECT_EQ(-1, Send(curl, server.Url("/")));
    aborter.join();
    tcvClearAborted();
}

TEST(Curl, RequestWithAHeader_FollowsNoRedirection) {
    LocalServer target(HttpAnswer("200 OK", "target"));
    LocalServer server(HttpAnswer("302 Found", "", "Location: " + target.Url("/") + "\r\n"));
    CurlClass curl;
    EXPECT_EQ(0, Send(curl, server.Url("/"), "api_key: secret"));
    EXPECT_EQ(302, curl.GetHttpStatus());
    EXPECT_EQ(-1, Send(curl, server.Url("/"))) << "a redirection leads to https alone";
    EXPECT_EQ(0, target.Requests());
}

TEST(Curl, BadCertificate_IsAFailure) {
    const support::TempDir dir;
    const std::string key = (dir / "key.pem").ToStdString();
    const std::string certificate = (dir / "cert.pem").ToStdString();
    const pid_t maker = Start({"openssl", "req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", key, "-out",
                               certificate, "-days", "2", "-subj", "/CN=localhost"});
    int status = 1;
    if (maker == 0 || waitpid(maker, &status, 0) != maker || status != 0) GTEST_SKIP() << "openssl is not installed";
    // The listener has a free port, which the server then takes.
    std::string port;
    { port = LocalServer("x").Url(""); }
    port = port.substr(port.rfind(':') + 1);
    const pid_t server = Start({"openssl", "s_server", "-accept", port, "-key", key, "-cert", certificate, "-www"});
    CurlClass curl;
    int result = 0;
    for (int attempt = 0; attempt < 50; ++attempt) {
        result = Send(curl, "https://localhost:" + port + "/");
        if (result == 0 || curl.GetErrorMessage().Lower().Contains("certificate")) break;
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    kill(server, SIGTERM);
    waitpid(server, nullptr, 0);
    EXPECT_EQ(-1, result);
    EXPECT_TRUE(curl.GetErrorMessage().Lower().Contains("certificate")) << curl.GetErrorMessage();
}
