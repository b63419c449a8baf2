// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <filesystem>

#include "tests/support/tempdir.h"
#include "tests/support/webserver.h"
#include "tolbase/limits.h"
#include "tolbase/progress.h"
#include "tolimage/crawler.h"

using support::HttpAnswer;
using support::ReadBytes;
using support::WebReply;
using support::WebServer;

namespace {

std::string const Picture = std::string("\xFF\xD8\xFF\xE0") + std::string(1000, 'p') + "\xFF\xD9";

// Downloads into the folder "d" and looks at what is left there.
class Download : public ::testing::Test {
protected:
    wxString Fetch(wxString const& id, std::string const& link, bool overwrite = false) {
        DownloadTimeout const timeout(1, 20);
        DownloadPhoto download(id, wxString::FromUTF8(link), PhotoSizeOriginal, folder, &timeout);
        download.SetOverwrite(overwrite);
        auto const start = std::chrono::steady_clock::now();
        download.RunAndWait();
        seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
        file = download.GetFile();
        exists = download.IsRefusedByExistingFile();
        return download.GetErrorMsg();
    }
    wxString FetchFrom(WebServer::Handler handler, wxString const& id = "id", std::string const& path = "/a.jpg") {
        WebServer server(std::move(handler));
        return Fetch(id, server.Url(path));
    }
    // All that is in the test's folder, hidden files too.
    std::vector<std::string> Left() const {
        std::vector<std::string> names;
        for (auto const& entry : std::filesystem::recursive_directory_iterator(dir.Path().ToStdString()))
            if (!entry.is_directory()) names.push_back(entry.path().filename().string());
        return names;
    }

    support::TempDir dir;
    wxString folder = dir / "d";
    wxString file;
    bool exists = false;
    double seconds = 0;
};

WebReply GivePicture(std::string const&) {
    return HttpAnswer("200 OK", Picture, "Content-Type: image/jpeg\r\n");
}

}  // namespace

TEST_F(Download, Picture_IsSavedUnderItsId) {
    EXPECT_EQ("", FetchFrom(GivePicture, "123", "/x/server-name.JPG?size=o"));
    EXPECT_EQ(dir / "d/123.JPG", file);
    EXPECT_EQ(Picture, ReadBytes(file));
    EXPECT_EQ((std::vector<std::string>{"123.JPG"}), Left()) << "no temporary file stays";
}

TEST_F(Download, LinkWithoutExtension_GetsThatOfTheBytes) {
    EXPECT_EQ("", FetchFrom(GivePicture, "1", "/picture"));
    EXPECT_EQ(dir / "d/1.jpg", file);
    EXPECT_EQ("", FetchFrom([](auto const&) { return HttpAnswer("200 OK", "\x89PNG\r\n"); }, "2", "/a.b/c"));
    EXPECT_EQ(dir / "d/2.png", file);
    EXPECT_EQ("", FetchFrom([](auto const&) { return HttpAnswer("200 OK", "what"); }, "3", "/a.much-too-long"));
    EXPECT_EQ(dir / "d/3.bin", file);
}

TEST_F(Download, ExtensionOfTheBytes_IsThatOfTheirKind) {
    using namespace std::string_literals;
    std::vector<std::pair<std::string, wxString>> const kinds = {
        {"GIF89a", "gif"},        {"II*\0\1\1\1\1"s, "tif"}, {"MM\0*\1\1\1\1"s, "tif"}, {"MM*\0\1\1\1\1"s, "bin"},
        {"RIFF1234WEBP", "webp"}, {"RIFF1234WAVE", "bin"},   {"RIFF", "bin"},           {"RIFF1234", "bin"},
        {"RIFF1234WEB", "bin"},   {"1234ftypheic", "heic"},  {"1234ftyphevc", "heic"},  {"1234ftypavif", "bin"},
        {"1234", "bin"},          {"1234ftyp", "bin"},       {"\xFF\xD8", "bin"}};
    for (auto const& [bytes, extension] : kinds) {
        std::string const answer = HttpAnswer("200 OK", bytes);
        std::filesystem::remove_all(folder.ToStdString());
        EXPECT_EQ("", FetchFrom([&answer](auto const&) { return WebReply(answer); }, "id", "/picture")) << bytes;
        EXPECT_EQ(dir / "d/id." + extension, file) << bytes;
    }
}

TEST_F(Download, HostileIds_StayInTheFolder) {
    std::vector<std::pair<wxString, wxString>> const names = {
        {"../../up", "d/___.._up.jpg"}, {"/etc/passwd", "d/_etc_passwd.jpg"}, {"..", "d/__.jpg"}, {"", "d/_.jpg"},
        {".hidden", "d/_hidden.jpg"},   {"a\nb\\c:d", "d/a_b_c_d.jpg"}};
    for (auto const& [id, name] : names) {
        EXPECT_EQ("", FetchFrom(GivePicture, id)) << id;
        EXPECT_EQ(dir / name, file);
        EXPECT_EQ(Picture, ReadBytes(dir / name));
    }
    EXPECT_EQ(names.size(), Left().size());
}

TEST_F(Download, HostileLinkNames_DoNotMatter) {
    for (char const* path : {"/../../../etc/passwd", "/..%2F..%2Fx.jpg/../y", "/a.%2e%2e", "/b./"}) {
        std::filesystem::remove_all(folder.ToStdString());
        EXPECT_EQ("", FetchFrom(GivePicture, "id", path)) << path;
        EXPECT_EQ((std::vector<std::string>{"id.jpg"}), Left()) << path;
    }
}

TEST_F(Download, OtherSchemes_AreRefused) {
    support::WriteBytes(dir / "secret.jpg", Picture);
    for (std::string const& link :
         {"file://" + (dir / "secret.jpg").ToStdString(), std::string("ftp://127.0.0.1/a.jpg"), std::string("a.jpg"),
          std::string(), std::string("data:image/jpeg;base64,AAAA"), std::string("/etc/passwd")})
        EXPECT_TRUE(Fetch("id", link).Contains("The link is no address of http or https.")) << link;
    EXPECT_EQ((std::vector<std::string>{"secret.jpg"}), Left());
}

TEST_F(Download, ExistingFile_IsKept) {
    support::WriteBytes(dir / "d/id.jpg", "old");
    WebServer server(GivePicture);
    EXPECT_TRUE(Fetch("id", server.Url("/a.jpg")).Contains("The file exists already"));
    EXPECT_TRUE(exists);
    EXPECT_EQ(0, server.Requests()) << "known before anything is asked";
    EXPECT_TRUE(Fetch("id", server.Url("/a")).Contains("The file exists already"));
    EXPECT_EQ("old", ReadBytes(dir / "d/id.jpg"));
    EXPECT_EQ("", Fetch("id", server.Url("/a.jpg"), true));
    EXPECT_EQ(Picture, ReadBytes(dir / "d/id.jpg"));
    EXPECT_EQ(1U, Left().size());
}

TEST_F(Download, LinkInTheFolder_IsNotWrittenThrough) {
    support::WriteBytes(dir / "precious", "old");
    std::filesystem::create_directory(folder.ToStdString());
    std::filesystem::create_symlink((dir / "precious").ToStdString(), (dir / "d/id.jpg").ToStdString());
    EXPECT_NE("", FetchFrom(GivePicture));
    std::filesystem::remove((dir / "precious").ToStdString());
    EXPECT_NE("", FetchFrom(GivePicture)) << "a dangling one";
    EXPECT_FALSE(std::filesystem::exists((dir / "precious").ToStdString()));
}

TEST_F(Download, FolderThatIsAFile_IsAnError) {
    support::WriteBytes(folder, "file");
    EXPECT_TRUE(FetchFrom(GivePicture).Contains("The folder can't be made"));
    EXPECT_EQ("file", ReadBytes(folder));
}

TEST_F(Download, ErrorStatus_LeavesNothing) {
    WebServer server([](auto const&) { return HttpAnswer("404 Not Found", Picture); });
    EXPECT_EQ(wxString::FromUTF8(server.Url("/a.jpg")) + ": The server answered 404.",
              Fetch("id", server.Url("/a.jpg?token=secret")));
    EXPECT_EQ("", file);
    EXPECT_TRUE(Left().empty());
    EXPECT_EQ(1, server.Requests());
}

TEST_F(Download, WebPage_IsNoPicture) {
    EXPECT_TRUE(FetchFrom([](auto const&) { return HttpAnswer("200 OK", " \n<HTML>Log in"); }).Contains("a web page"));
    EXPECT_TRUE(FetchFrom([](auto const&) {
                    return HttpAnswer("200 OK", Picture, "Content-Type: text/html; charset=utf-8\r\n");
                }).Contains("a web page"));
    EXPECT_TRUE(FetchFrom([](auto const&) { return HttpAnswer("200 OK", ""); }).Contains("an empty file"));
    EXPECT_TRUE(Left().empty());
}

TEST_F(Download, EndlessFile_StopsAtTheLimit) {
    SetTolLimit(TolLimit::DownloadBytes, 3000000);
    auto const endless = [](char const* head) {
        WebReply reply(head);
        reply.endless = true;
        return reply;
    };
    EXPECT_TRUE(FetchFrom([&](auto const&) {
                    return endless("HTTP/1.1 200 OK\r\nContent-Length: 10737418240\r\n\r\nx");
                }).Contains("longer than the limit"));
    EXPECT_TRUE(FetchFrom([&](auto const&) {
                    return endless("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nx");
                }).Contains("longer than the limit"));
    EXPECT_TRUE(Left().empty());
    EXPECT_GT(5.0, seconds);
}

TEST_F(Download, CutFile_LeavesNothing) {
    EXPECT_NE("", FetchFrom([](auto const&) { return "HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\nabc"; }));
    EXPECT_TRUE(Left().empty());
}

TEST_F(Download, SilentServer_EndsAfterTheStallLimit) {
    SetTolLimit(TolLimit::WebSeconds, 1);
    EXPECT_NE("", FetchFrom([](auto const&) { return ""; }));
    EXPECT_GT(6.0, seconds);
}

TEST_F(Download, UnknownCertificate_IsAFailure) {
    WebServer server(GivePicture, true);
    EXPECT_TRUE(Fetch("id", server.Url("/a.jpg")).Lower().Contains("certificate"));
    EXPECT_EQ(0, server.Requests());
}

TEST_F(Download, Redirection_IsFollowed) {
    WebServer target(GivePicture);
    EXPECT_EQ("", FetchFrom([&](auto const&) {
                  return HttpAnswer("302 Found", "moved", "Location: " + target.Url("/other.png") + "\r\n");
              }));
    EXPECT_EQ(dir / "d/id.jpg", file) << "named by the link that was chosen";
    EXPECT_EQ(Picture, ReadBytes(file));
}

TEST_F(Download, RedirectionElsewhere_IsRefused) {
    EXPECT_TRUE(FetchFrom([](auto const&) {
                    return HttpAnswer("302 Found", "", "Location: file:///etc/passwd\r\n");
                }).Contains("redirects to where no download may go"));
    std::atomic<int> count{0};
    EXPECT_TRUE(FetchFrom([&](auto const&) {
                    ++count;
                    return HttpAnswer("302 Found", "", "Location: /again.jpg\r\n");
                }).Contains("redirects too often"));
    EXPECT_EQ(6, count);
    EXPECT_TRUE(Left().empty());
}

TEST_F(Download, Attempts_AreAsManyAsTold) {
    std::atomic<int> count{0};
    WebServer server([&](auto const&) -> WebReply {
        return ++count < 2 ? HttpAnswer("503 Busy", "x") : HttpAnswer("200 OK", Picture);
    });
    DownloadTimeout const timeout(2, 20);
    DownloadPhoto download("id", wxString::FromUTF8(server.Url("/a.jpg")), PhotoSizeOriginal, folder, &timeout);
    download.RunAndWait();
    EXPECT_EQ("", download.GetErrorMsg());
    EXPECT_EQ(Picture, ReadBytes(download.GetFile())) << "nothing of the first answer";
}

TEST_F(Download, BusyServer_IsAskedAgain) {
    SetTolLimit(TolLimit::WebBackoffMs, 1);
    std::atomic<int> count{0};
    EXPECT_EQ("", FetchFrom([&](auto const&) {
                  return ++count < 4 ? HttpAnswer("429 Too Many Requests", "x") : HttpAnswer("200 OK", Picture);
              }));
    EXPECT_EQ(Picture, ReadBytes(file));
    EXPECT_EQ(4, count);
}

TEST_F(Download, ServerThatStaysBusy_IsAskedFourTimes) {
    SetTolLimit(TolLimit::WebBackoffMs, 1);
    std::atomic<int> count{0};
    EXPECT_TRUE(FetchFrom([&](auto const&) {
                    ++count;
                    return HttpAnswer("503 Busy", "x");
                }).Contains("The server answered 503."));
    EXPECT_EQ(4, count);
    EXPECT_TRUE(Left().empty());
}

TEST_F(Download, Abort_LetsASmallFileArrive) {
    tcvAbortProgress();
    EXPECT_EQ("", FetchFrom(GivePicture));
    EXPECT_EQ(Picture, ReadBytes(dir / "d/id.jpg"));
}

TEST_F(Download, Mode_IsThatOfAnyFile) {
    EXPECT_EQ("", FetchFrom(GivePicture));
    struct stat info {};
    ASSERT_EQ(0, stat(file.utf8_str(), &info));
    mode_t const mask = umask(0);
    umask(mask);
    EXPECT_EQ(0666U & ~mask, info.st_mode & 0777U);
}
