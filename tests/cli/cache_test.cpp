// SPDX-License-Identifier: Apache-2.0
// orvelle cache: what is stored of a file's results, and its removal.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;
namespace fs = std::filesystem;

namespace {

class Cache : public CliTest {
protected:
    json Show(std::string const& path) const {
        const Ended ended = Orvelle({"cache", "show", path, "--format", "json"});
        EXPECT_EQ(0, ended.status) << ended.err;
        return json::parse(ended.out, nullptr, false);
    }

    // The one folder in the cache.
    std::string CacheFolder() const {
        const std::vector<std::string> names = List(Documents() + "/cache");
        EXPECT_EQ(1u, names.size());
        return Documents() + "/cache/" + (names.empty() ? "" : names.front());
    }
};

TEST_F(Cache, Folder_IsNamedAfterTheFileAndItsMd5) {
    const std::string photo = Photo("a.jpg");
    const std::string md5 = RunProgram("md5sum", {photo}).out.substr(0, 32);
    const json value = Show(photo);
    EXPECT_EQ(Documents() + "/cache/a-" + md5, value.at("folder")) << value;
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    EXPECT_EQ(CacheFolder(), value.at("folder"));
}

TEST_F(Cache, Show_MakesNoCache) {
    const std::string photo = Photo("a.jpg");
    const json value = Show(photo);
    EXPECT_EQ(json::array(), value.at("results"));
    EXPECT_EQ(json::parse(R"({"results":0,"files":0,"bytes":0})"), value.at("total"));
    EXPECT_FALSE(Exists(Documents() + "/cache"));
    const std::string folder = value.at("folder");
    EXPECT_EQ("Folder " + folder + "\n0 results; 0 files, 0 bytes\n", Orvelle({"cache", "show", photo}).out);
}

TEST_F(Cache, Show_ListsResultsWithTheirParameters) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo, "--set", "Color Space=Lab"}).status);
    ASSERT_EQ(0, Orvelle({"filter", "Histogram", photo}).status);
    const json value = Show(photo);
    ASSERT_EQ(2u, value.at("results").size()) << value;
    json const& channels = value.at("results").at(0);
    EXPECT_EQ("Channels", channels.at("filter"));
    EXPECT_EQ("Color Space=Lab, Component=First", channels.at("parameters"));
    EXPECT_EQ("Ok", channels.at("status"));
    uint64_t bytes = 0;
    for (std::string const name : channels.at("files")) bytes += fs::file_size(CacheFolder() + "/" + name);
    EXPECT_EQ(2u, channels.at("files").size());
    EXPECT_EQ(bytes, channels.at("bytes"));
    EXPECT_EQ("Histogram", value.at("results").at(1).at("filter"));
    // The picture and the plot's two files, two status files, the copy and the versions.
    uint64_t all = 0;
    for (std::string const& name : List(CacheFolder())) all += fs::file_size(CacheFolder() + "/" + name);
    EXPECT_EQ(7u, value.at("total").at("files")) << value;
    EXPECT_EQ(all, value.at("total").at("bytes"));
}

TEST_F(Cache, Show_HasTheSameCellsInOtherFormats) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    const json result = Show(photo).at("results").at(0);
    const std::string bytes = std::to_string(result.at("bytes").get<uint64_t>());
    const std::string date = result.at("modified");
    EXPECT_EQ("Filter,Parameters,Status,Bytes,Date\r\nChannels,\"Color Space=YCbCr, Component=First\",Ok," + bytes +
                  "," + date + "\r\n",
              Orvelle({"cache", "show", photo, "--format", "csv"}).out);
    const std::string text = Orvelle({"cache", "show", photo}).out;
    EXPECT_TRUE(Contains(text, "\nChannels Color Space=YCbCr, Component=First Ok     " + bytes)) << text;
    EXPECT_TRUE(Contains(text, "\n1 result; 4 files, ")) << text;
    const json line = json::parse(Orvelle({"cache", "show", photo, "--format", "jsonl"}).out);
    EXPECT_EQ("Channels", line.at("filter"));
    EXPECT_TRUE(Contains(Orvelle({"cache", "show", photo, "--format", "html"}).out, "<td>Channels</td>"));
}

TEST_F(Cache, Clear_RemovesTheFolderAndSaysHowMuch) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    const json value = Show(photo);
    const std::string folder = value.at("folder");
    const std::string bytes = std::to_string(value.at("total").at("bytes").get<uint64_t>());
    const Ended ended = Orvelle({"cache", "clear", photo});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
    EXPECT_EQ(folder + ": removed 4 files, " + bytes + " bytes\n", ended.out);
    EXPECT_FALSE(Exists(folder));
    EXPECT_TRUE(Exists(photo));
    // The next run calculates anew.
    const json again = json::parse(Orvelle({"filter", "Channels", photo, "--format", "json"}).out);
    EXPECT_EQ(false, again.at("run").at("from_cache").at("evidence"));
}

TEST_F(Cache, Clear_LeavesOtherFilesCachesAlone) {
    const std::string a = Photo("a.jpg", 640, 480, 1);
    const std::string b = Photo("b.jpg", 640, 480, 2);
    ASSERT_EQ(0, Orvelle({"filter", "Channels", a}).status);
    ASSERT_EQ(0, Orvelle({"filter", "Channels", b}).status);
    ASSERT_EQ(0, Orvelle({"cache", "clear", a}).status);
    EXPECT_EQ(0u, Show(a).at("results").size());
    EXPECT_EQ(1u, Show(b).at("results").size());
}

TEST_F(Cache, Clear_LeavesWhatTheCacheDidNotMake) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    const std::string folder = CacheFolder();
    WriteFile(folder + "/notes.txt", "precious");
    fs::create_symlink(photo, folder + "/a.jpg-Channels-link.png");
    fs::create_directories(folder + "/mine");
    const Ended ended = Orvelle({"cache", "clear", photo});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("orvelle: " + folder + ": warning: 3 files that the cache did not make stayed\n", ended.err);
    EXPECT_EQ((std::vector<std::string>{"a.jpg-Channels-link.png", "mine", "notes.txt"}), List(folder));
    EXPECT_EQ("precious", ReadFile(folder + "/notes.txt"));
    EXPECT_TRUE(Exists(photo));
}

TEST_F(Cache, Clear_OfNothing_SaysSo) {
    const std::string photo = Photo("a.jpg");
    const Ended ended = Orvelle({"cache", "clear", photo});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: " + photo + ": warning: nothing is stored\n", ended.err);
}

TEST_F(Cache, FolderThatIsALink_IsNotFollowed) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    const std::string folder = CacheFolder();
    fs::rename(folder, Folder() + "/elsewhere");
    fs::create_symlink(Folder() + "/elsewhere", folder);
    const size_t before = List(Folder() + "/elsewhere").size();
    EXPECT_EQ(0, Orvelle({"cache", "clear", photo}).status);
    EXPECT_EQ(before, List(Folder() + "/elsewhere").size());
    EXPECT_EQ(0u, Show(photo).at("results").size());
}

TEST_F(Cache, Location_IsThatOfTheSettings) {
    const std::string photo = Photo("a.jpg");
    const std::string md5 = RunProgram("md5sum", {photo}).out.substr(0, 32);
    ASSERT_EQ(0, Orvelle({"options", "set", "Cache Location", "Image Local Folder"}).status);
    EXPECT_EQ(Path("a-" + md5), Show(photo).at("folder"));
    ASSERT_EQ(0, Orvelle({"options", "set", "Custom Cache Folder", Folder() + "/mine"}).status);
    ASSERT_EQ(0, Orvelle({"options", "set", "Cache Location", "Custom Cache Folder"}).status);
    EXPECT_EQ(Folder() + "/mine/a-" + md5, Show(photo).at("folder"));
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    EXPECT_EQ(1u, Show(photo).at("results").size());
    EXPECT_EQ(0, Orvelle({"cache", "clear", photo}).status);
    EXPECT_TRUE(List(Folder() + "/mine").empty());
}

TEST_F(Cache, WrongInput_EndsWithThree) {
    for (char const* const verb : {"show", "clear"}) {
        const Ended ended = Orvelle({"cache", verb, Path("none.jpg")});
        EXPECT_EQ(3, ended.status);
        EXPECT_EQ("orvelle: " + Path("none.jpg") + ": no such file\n", ended.err);
    }
    EXPECT_EQ(2, Orvelle({"cache"}).status);
    EXPECT_EQ(2, Orvelle({"cache", "show"}).status);
}

TEST_F(Cache, FileThatCantBeRemoved_EndsWithFive) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo}).status);
    const std::string folder = CacheFolder();
    if (RunProgram("chattr", {"+i", folder}).status != 0) GTEST_SKIP() << "no folder can be made immutable here";
    const Ended ended = Orvelle({"cache", "clear", photo});
    EXPECT_EQ(0, RunProgram("chattr", {"-i", folder}).status);
    EXPECT_EQ(5, ended.status);
    EXPECT_TRUE(Contains(ended.err, ": can't be removed: ")) << ended.err;
}

TEST_F(Cache, NameLikeAnOption_IsTakenBehindTwoDashes) {
    Photo("-x.jpg");
    Surroundings surroundings;
    surroundings.folder = Path("");
    const Ended ended = Orvelle({"cache", "show", "--", "-x.jpg"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_TRUE(Contains(ended.out, "0 results")) << ended.out;
}

}  // namespace
