// SPDX-License-Identifier: Apache-2.0
// orvelle batch and verify where files change, vanish, lie or try to write into the report.
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <functional>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class BatchFailure : public CliTest {
protected:
    std::string Out(std::string const& name) const { return Folder() + "/out/" + name; }

    // Photographs whose results take a while.
    std::vector<std::string> Photos(int count) const {
        std::vector<std::string> files;
        for (int i = 0; i < count; ++i) {
            files.push_back(Photo("p" + std::to_string(i) + ".jpg", 1200, 900, static_cast<unsigned>(i + 1)));
        }
        return files;
    }
    bool HasResult() const {
        const std::vector<std::string> names = List(Out(""));
        return std::any_of(names.begin(), names.end(), [](auto const& name) { return name[0] != '.'; });
    }
    // A batch over the files; `meanwhile` is done when the first result is there and the last file not yet begun.
    Ended RunWith(std::vector<std::string> const& files, std::function<void()> const& meanwhile) const {
        std::vector<std::string> arguments = {"--documents", Documents(), "batch",
                                              "--no-cache",  "--output",  Out("r.tsv")};
        arguments.insert(arguments.end(), files.begin(), files.end());
        Running running(arguments);
        for (int wait = 0; wait < 3000 && !HasResult(); ++wait) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        meanwhile();
        return running.Wait();
    }
    std::string Report() const { return ReadFile(Out("r.tsv")); }
};

class Verify : public CliTest {
protected:
    // A bundle of two filters' results.
    std::string Bundle() const {
        const std::string photo = Photo("a.jpg");
        const std::string report = Folder() + "/out/r.html";
        EXPECT_EQ(0, Orvelle({"batch", "--filter", "EXIF", "--filter", "Noise", "--output", report, photo}).status);
        return report + ".manifest.json";
    }
    std::vector<std::string> Check(std::string const& manifest, int status) const {
        const Ended ended = Orvelle({"verify", manifest, "--format", "csv"});
        EXPECT_EQ(status, ended.status) << ended.out << ended.err;
        return Lines(ended.out);
    }
};

TEST_F(BatchFailure, FileThatChangesMeanwhile_IsTold) {
    const std::vector<std::string> files = Photos(3);
    // Its results are being written.
    const Ended ended = RunWith(files, [&files] { WriteFile(files[0], ReadFile(files[0]) + "x"); });
    EXPECT_EQ(3, ended.status) << ended.err;
    EXPECT_EQ("orvelle: " + files[0] + ": changed while it was examined\n", ended.err);
    const auto manifest = nlohmann::json::parse(ReadFile(Out("r.tsv.manifest.json")));
    EXPECT_EQ(true, manifest["inputs"][0]["changed"]);
    EXPECT_EQ(false, manifest["inputs"][1]["changed"]);
}

TEST_F(BatchFailure, FileThatVanishes_CostsTheOthersNothing) {
    const std::vector<std::string> files = Photos(3);
    const Ended ended = RunWith(files, [&files] { std::filesystem::remove(files.back()); });
    EXPECT_EQ(3, ended.status) << ended.err;
    EXPECT_EQ(0U, ended.err.find("orvelle: " + files[2] + ": ")) << ended.err;
    for (std::string const& line : Lines(Report())) {
        const bool ofVanished = line.find(files[2]) == 0;
        EXPECT_EQ(ofVanished, line.back() == '\t') << line;
    }
    EXPECT_LT(10U, CountOf(Report(), "\n" + files[1] + "\t"));
}

TEST_F(BatchFailure, FileThatIsReplacedByAnother_GivesResultsOfWhatIsThere) {
    const std::vector<std::string> files = Photos(3);
    const Ended ended = RunWith(files, [&files] { WriteFile(files.back(), "no picture"); });
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("orvelle: " + files[2] + ": File format not supported.\n", ended.err);
}

TEST_F(BatchFailure, WhatIsNoPlainFile_DoesNotHoldTheRunUp) {
    const std::string a = Photo("a.jpg");
    const std::string pipe = Path("pipe.jpg");
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    std::filesystem::create_symlink(Path("nowhere"), Path("link.jpg"));
    const Ended ended = Orvelle({"batch", "--filter", "EXIF", "--output", Out("r.tsv"), pipe, Path("link.jpg"),
                                 "/dev/zero", Write("empty.jpg", ""), a});
    EXPECT_EQ(3, ended.status);
    for (std::string const& path : {pipe, Path("link.jpg"), std::string("/dev/zero"), Path("empty.jpg")}) {
        EXPECT_TRUE(Contains(ended.err, "orvelle: " + path + ": ")) << ended.err;
    }
    EXPECT_TRUE(Contains(Report(), a + "\tEXIF\t\tOk\t" + Out("a.jpg-EXIF.html"))) << Report();
}

TEST_F(BatchFailure, MetadataWithScripts_IsEscapedInTheReport) {
    const std::string photo = Photo("<b onclick=x>&\"a.jpg");
    const std::string evil = "<script>alert(1)</script><img src=x onerror=alert(2)>\"'&";
    std::vector<std::string> arguments = {"-q", "-q", "-m", "-overwrite_original"};
    for (char const* const tag :
         {"IFD0:Make", "IFD0:Model", "IFD0:Software", "IFD0:Artist", "IFD0:Copyright", "IFD0:ImageDescription",
          "ExifIFD:UserComment", "ExifIFD:LensModel", "ExifIFD:OwnerName", "XMP-dc:Title", "XMP-dc:Creator",
          "XMP-xmp:CreatorTool", "IPTC:Caption-Abstract", "IPTC:Keywords", "Comment", "XMP-photoshop:City"}) {
        arguments.push_back("-" + std::string(tag) + "=" + evil);
    }
    arguments.push_back(photo);
    ASSERT_EQ(0, RunProgram("exiftool", arguments).status);
    ASSERT_EQ(0, Orvelle({"batch", "--output", Out("r.html"), photo}).status);
    for (std::string const& name : List(Out(""))) {
        if (!Contains(name, ".html") || Contains(name, "manifest")) continue;
        const std::string page = ReadFile(Out(name));
        for (char const* const part : {"<script", "<img src=x", "<b onclick"}) {
            EXPECT_FALSE(Contains(page, part)) << name;
        }
    }
    EXPECT_LT(10U, CountOf(ReadFile(Out("r.html")), "&lt;script&gt;alert(1)&lt;/script&gt;"));
    EXPECT_TRUE(Contains(ReadFile(Out("r.html")), "&lt;b onclick=x&gt;&amp;"));
}

TEST_F(BatchFailure, ForeignManifest_StaysWithoutForce) {
    std::filesystem::create_directories(Out(""));
    const std::string manifest = Out("r.html.manifest.json");
    WriteFile(manifest, "{\"name\":\"somebody's web page\"}");
    const std::string photo = Photo("a.jpg");
    EXPECT_EQ(5, Orvelle({"batch", "--filter", "EXIF", "--output", Out("r.html"), photo}).status);
    EXPECT_EQ("{\"name\":\"somebody's web page\"}", ReadFile(manifest));
    EXPECT_EQ(0, Orvelle({"batch", "--filter", "EXIF", "--force", "--output", Out("r.html"), photo}).status);
    // Its own one is replaced.
    EXPECT_EQ(0, Orvelle({"batch", "--filter", "EXIF", "--output", Out("r.html"), photo}).status);
}

TEST_F(BatchFailure, ManifestWithoutItsReport_StopsNoFurtherRun) {
    const std::string photo = Photo("a.jpg");
    const std::vector<std::string> arguments = {"batch", "--filter", "EXIF", "--output", Out("r.tsv"), photo};
    ASSERT_EQ(0, Orvelle(arguments).status);
    // As a run leaves it that is killed between the two.
    std::filesystem::remove(Out("r.tsv"));
    EXPECT_EQ(0, Orvelle(arguments).status);
    EXPECT_EQ(0, Orvelle({"verify", Out("r.tsv.manifest.json")}).status);
}

TEST_F(Verify, IntactBundle_IsOkFileByFile) {
    const std::vector<std::string> lines = Check(Bundle(), 0);
    ASSERT_EQ(6U, lines.size());
    EXPECT_EQ("State,Role,Path\r", lines[0]);
    EXPECT_EQ("ok,output,a.jpg-EXIF.html\r", lines[1]);
    EXPECT_EQ("ok,output,r.html\r", lines[4]);
    EXPECT_EQ("ok,input," + Path("a.jpg") + "\r", lines[5]);
}

TEST_F(Verify, EachKindOfFault_IsNamed) {
    const std::string manifest = Bundle();
    WriteFile(Folder() + "/out/a.jpg-EXIF.html", "forged");
    std::filesystem::remove(Folder() + "/out/r.html");
    WriteFile(Path("a.jpg"), "another");
    const Ended ended = Orvelle({"verify", manifest, "--format", "csv"});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("orvelle: " + manifest + ": 3 files differ\n", ended.err);
    EXPECT_TRUE(Contains(ended.out, "\r\nchanged,output,a.jpg-EXIF.html\r\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, "\r\nmissing,output,r.html\r\n"));
    EXPECT_TRUE(Contains(ended.out, "\r\nchanged,input," + Path("a.jpg") + "\r\n"));
}

TEST_F(Verify, PathsThatLeadOut_AreNotRead) {
    std::filesystem::create_directories(Folder() + "/b/in");
    WriteFile(Folder() + "/secret", "x");
    std::filesystem::create_symlink(Folder() + "/secret", Folder() + "/b/link");
    std::filesystem::create_symlink(Folder(), Folder() + "/b/in/up");
    // The SHA-256 of "x".
    const std::string sum = "2d711642b726b04401627ca9fbac32f5c8530fb1903cc4db02258717921a4881";
    for (std::string const& path : {std::string("../secret"), std::string("in/../../secret"), Folder() + "/secret",
                                    std::string("link"), std::string("in/up/secret"), std::string("")}) {
        const nlohmann::json manifest = {{"schema", "orvelle/manifest/1"},
                                         {"inputs", nlohmann::json::array()},
                                         {"outputs", {{{"path", path}, {"bytes", 1}, {"sha256", sum}}}}};
        WriteFile(Folder() + "/b/m.json", manifest.dump());
        const std::vector<std::string> lines = Check(Folder() + "/b/m.json", 3);
        ASSERT_EQ(2U, lines.size());
        EXPECT_EQ("outside,output," + path + "\r", lines[1]);
    }
}

TEST_F(Verify, WhatIsNoManifest_EndsWithThree) {
    for (std::string const& path : {Path("none.json"), Folder(), std::string("/dev/zero"), Photo("a.jpg")}) {
        const Ended ended = Orvelle({"verify", path});
        EXPECT_EQ(3, ended.status) << path;
        EXPECT_EQ("", ended.out);
        EXPECT_EQ(0U, ended.err.find("orvelle: " + path + ": ")) << ended.err;
    }
    EXPECT_EQ(2, Orvelle({"verify"}).status);
}

}  // namespace
