// SPDX-License-Identifier: Apache-2.0
// orvelle batch and verify: reports, results, manifests.
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <random>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

constexpr char const* Header = "Input Path\tFilter\tConfiguration\tStatus\tOutput Path";

class Batch : public CliTest {
protected:
    std::string Out(std::string const& name) const { return Folder() + "/out/" + name; }

    // A batch of two quick filters.
    Ended Run(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"batch", "--filter", "EXIF", "--filter", "File Format"});
        return Orvelle(arguments);
    }

    static std::vector<std::string> Cells(std::string const& line) {
        std::vector<std::string> cells(1);
        for (const char c : line) {
            if (c == '\t') {
                cells.emplace_back();
            } else {
                cells.back() += c;
            }
        }
        return cells;
    }

    nlohmann::json Manifest(std::string const& report) const {
        return nlohmann::json::parse(ReadFile(report + ".manifest.json"));
    }
};

TEST_F(Batch, TabSeparatedReport_HasARowForEachFileAndFilter) {
    const std::string a = Photo("a.jpg");
    const std::string b = Photo("b.jpg", 320, 240, 2);
    const Ended ended = Run({"--output", Out("r.tsv"), a, b});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(Out("r.tsv") + "\n", ended.out);
    const std::vector<std::string> lines = Lines(ReadFile(Out("r.tsv")));
    ASSERT_EQ(5U, lines.size());
    EXPECT_EQ(Header, lines[0]);
    EXPECT_EQ(a, Cells(lines[1])[0]);
    EXPECT_EQ("File Format", Cells(lines[1])[1]);
    EXPECT_EQ("EXIF", Cells(lines[2])[1]);
    EXPECT_EQ(Out("a.jpg-EXIF.html"), Cells(lines[2])[4]);
    EXPECT_EQ(b, Cells(lines[3])[0]);
    for (size_t i = 1; i < 5; ++i) {
        ASSERT_EQ(5U, Cells(lines[i]).size());
        EXPECT_TRUE(Exists(Cells(lines[i])[4])) << lines[i];
    }
}

TEST_F(Batch, CapitalEnding_GivesHtml) {
    EXPECT_EQ(0, Run({"--output", Out("R.HTM"), Photo("a.jpg")}).status);
    const std::string page = ReadFile(Out("R.HTM"));
    EXPECT_EQ(0U, page.find("<!DOCTYPE html>"));
    EXPECT_TRUE(Contains(page, "<h2>File: a.jpg</h2>")) << page.substr(0, 4000);
    EXPECT_TRUE(Contains(page, "anchor1"));
}

TEST_F(Batch, OtherEnding_IsTabSeparatedWithAWarning) {
    const Ended ended = Run({"--output", Out("r.pdf"), Photo("a.jpg")});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("orvelle: " + Out("r.pdf") + ": warning: the report is written as tab-separated text\n", ended.err);
    EXPECT_EQ(Header, Lines(ReadFile(Out("r.pdf")))[0]);
}

TEST_F(Batch, NoReport_WritesResultsOnly) {
    const Ended ended = Run({"--no-report", "--output", Out(""), Photo("a.jpg")});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("", ended.out);
    EXPECT_EQ((std::vector<std::string>{"a.jpg-EXIF.html", "a.jpg-File Format.html"}), List(Out("")));
}

TEST_F(Batch, Status_WritesNothing) {
    const Ended ended = Run({"--status", Photo("a.jpg"), "--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    const std::vector<std::string> lines = Lines(ended.out);
    ASSERT_EQ(3U, lines.size());
    EXPECT_EQ("File,Filter,Configuration,Status,Message\r", lines[0]);
    EXPECT_EQ(Path("a.jpg") + ",File Format,,Ok,\r", lines[1]);
    EXPECT_EQ(Path("a.jpg") + ",EXIF,,Ok,\r", lines[2]);
    EXPECT_FALSE(Exists(Out("")));
    EXPECT_EQ(2, Run({"--status", "--output", Out("r.tsv"), Path("a.jpg")}).status);
}

TEST_F(Batch, Folder_TakesTheImagesRightInIt) {
    Photo("f/a.jpg");
    Photo("f/sub/b.jpg");
    Write("f/notes.txt", "hello");
    EXPECT_EQ(0, Run({"--output", Out("r.tsv"), Path("f")}).status);
    EXPECT_EQ(3U, Lines(ReadFile(Out("r.tsv"))).size());
    EXPECT_EQ(0, Run({"--output", Out("s.tsv"), "--recursive", Path("f")}).status);
    EXPECT_EQ(5U, Lines(ReadFile(Out("s.tsv"))).size());
}

TEST_F(Batch, EmptyFolder_GivesTheHeaderAlone) {
    std::filesystem::create_directories(Path("empty"));
    const Ended ended = Run({"--output", Out("r.tsv"), Path("empty")});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("orvelle: no images in " + Path("empty") + "\n", ended.err);
    EXPECT_EQ(std::string(Header) + "\n", ReadFile(Out("r.tsv")));
}

TEST_F(Batch, FileBehindAFilter_IsAFile) {
    const std::string photo = Photo("a.jpg");
    const Ended ended =
        Orvelle({"batch", "--status", "--filter", "EXIF", "--filter", "File Format", photo, "--format", "csv"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(3U, Lines(ended.out).size());
    EXPECT_EQ(0, Orvelle({"batch", "--status", "--filter", "Noise", "--set", "Strength=5", photo}).status);
}

TEST_F(Batch, Set_GivesJustThatConfiguration) {
    const Ended ended =
        Orvelle({"batch", "--filter", "Noise", "--set", "Strength=5", "--output", Out("r.tsv"), Photo("a.jpg")});
    ASSERT_EQ(0, ended.status) << ended.err;
    const std::vector<std::string> lines = Lines(ReadFile(Out("r.tsv")));
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("Noise Map", Cells(lines[1])[1]);
    EXPECT_TRUE(Contains(Cells(lines[1])[2], "5")) << lines[1];
}

TEST_F(Batch, WrongChoices_AreRefusedBeforeAnything) {
    const std::string photo = Photo("a.jpg");
    for (std::vector<std::string> const& arguments : std::vector<std::vector<std::string>>{
             {"batch", "--filter", "Nonsense", "--output", Out("r.tsv"), photo},
             {"batch", "--set", "Quality=90", "--output", Out("r.tsv"), photo},
             {"batch", "--filter", "Error Level Analysis", "--set", "Quality=high", "--output", Out("r.tsv"), photo},
             {"batch", "--jobs", "0", "--output", Out("r.tsv"), photo},
             {"batch", photo}}) {
        EXPECT_EQ(2, Orvelle(arguments).status);
    }
    EXPECT_FALSE(Exists(Out("")));
}

TEST_F(Batch, BrokenAndMissingFiles_CostTheOthersNothing) {
    const std::string a = Photo("a.jpg");
    const std::string b = Photo("b.jpg", 320, 240, 2);
    const std::string broken = Write("broken.jpg", "this is no picture");
    const Ended ended = Run({"--output", Out("r.tsv"), a, broken, Path("missing.jpg"), b});
    EXPECT_EQ(3, ended.status);
    EXPECT_TRUE(Contains(ended.err, "orvelle: " + broken + ": File format not supported.")) << ended.err;
    EXPECT_TRUE(Contains(ended.err, "orvelle: " + Path("missing.jpg") + ": "));
    size_t good = 0;
    for (std::string const& line : Lines(ReadFile(Out("r.tsv")))) {
        const std::vector<std::string> cells = Cells(line);
        if (cells[0] == a || cells[0] == b) ++good;
        if (cells[0] == broken || cells[0] == Path("missing.jpg")) {
            EXPECT_EQ("", cells[4]) << line;
            EXPECT_NE("Ok", cells[3]) << line;
        }
    }
    EXPECT_EQ(4U, good);
}

TEST_F(Batch, Messages_NameAFileAsItWasGiven) {
    Photo("a.jpg");
    Write("broken.jpg", "this is no picture");
    Surroundings surroundings;
    surroundings.folder = Folder() + "/evidence";
    const Ended ended = Orvelle(
        {"batch", "--filter", "EXIF", "--output", "out/r.tsv", "a.jpg", "broken.jpg", "none.jpg"}, surroundings);
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("out/r.tsv\n", ended.out);
    EXPECT_EQ(
        "orvelle: broken.jpg: File format not supported.\n"
        "orvelle: none.jpg: The file does not exist.\n",
        ended.err);
}

TEST_F(Batch, FilesOfOneName_KeepBothResults) {
    const std::string jpeg = support::EncodeJpeg(64, 48);
    const std::string a = Write("one/a.jpg", support::WithExif(jpeg, "First Make", "Model"));
    const std::string b = Write("two/a.jpg", support::WithExif(jpeg, "Second Make", "Model"));
    EXPECT_EQ(0, Orvelle({"batch", "--filter", "EXIF", "--output", Out("r.tsv"), a, b}).status);
    const std::vector<std::string> lines = Lines(ReadFile(Out("r.tsv")));
    ASSERT_EQ(3U, lines.size());
    const std::string first = Cells(lines[1])[4];
    const std::string second = Cells(lines[2])[4];
    EXPECT_EQ(Out("a.jpg-EXIF.html"), first);
    EXPECT_EQ(Out("a.jpg-EXIF (2).html"), second);
    EXPECT_TRUE(Contains(ReadFile(first), "First Make"));
    EXPECT_TRUE(Contains(ReadFile(second), "Second Make"));
}

TEST_F(Batch, FailOn_EndsWithOneBehindTheReport) {
    const std::string odd = Photo("odd.jpg", 641, 480);
    const Ended ended = Run({"--fail-on", "hard", "--output", Out("r.tsv"), odd});
    EXPECT_EQ(1, ended.status) << ended.err;
    EXPECT_TRUE(Contains(ReadFile(Out("r.tsv")), "File Format\t\tWarning\t")) << ReadFile(Out("r.tsv"));
}

TEST_F(Batch, OutputThatCannotBeWritten_IsToldFirst) {
    const Ended ended = Run({"--output", "/proc/r.html", Photo("a.jpg")});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: /proc/r.html: can't be written\n", ended.err);
    const std::string file = Write("file", "x");
    EXPECT_EQ(5, Run({"--output", file + "/r.html", Path("a.jpg")}).status);
    EXPECT_EQ(5, Run({"--no-report", "--output", file, Path("a.jpg")}).status);
    EXPECT_EQ("x", ReadFile(file));
}

TEST_F(Batch, ForeignFileAtTheReportsPlace_StaysWithoutForce) {
    std::filesystem::create_directories(Out(""));
    WriteFile(Out("r.tsv"), "mine");
    const std::string photo = Photo("a.jpg");
    EXPECT_EQ(5, Run({"--output", Out("r.tsv"), photo}).status);
    EXPECT_EQ("mine", ReadFile(Out("r.tsv")));
    EXPECT_EQ(0, Run({"--output", Out("r.tsv"), "--force", photo}).status);
}

TEST_F(Batch, SameCommandTwice_GivesTheSameRows) {
    const std::string photo = Photo("a.jpg");
    EXPECT_EQ(0, Run({"--output", Out("r.tsv"), photo}).status);
    const std::string first = ReadFile(Out("r.tsv"));
    const Ended again = Run({"--output", Out("r.tsv"), photo});
    EXPECT_EQ(0, again.status) << again.err;
    EXPECT_EQ(first, ReadFile(Out("r.tsv")));
    WriteFile(Out("r.tsv"), first + "a remark of the examiner's\n");
    EXPECT_EQ(5, Run({"--output", Out("r.tsv"), photo}).status);
}

TEST_F(Batch, Jobs_GiveTheSameReport) {
    std::vector<std::string> files;
    for (unsigned i = 1; i <= 5; ++i) files.push_back(Photo("p" + std::to_string(i) + ".jpg", 320, 240, i));
    std::vector<std::string> one = {"--output", Out("r.tsv")};
    one.insert(one.end(), files.begin(), files.end());
    EXPECT_EQ(0, Run(one).status);
    const std::string first = ReadFile(Out("r.tsv"));
    one.insert(one.end(), {"--jobs", "4", "--force"});
    std::filesystem::remove_all(Documents());
    EXPECT_EQ(0, Run(one).status);
    EXPECT_EQ(first, ReadFile(Out("r.tsv")));
}

TEST_F(Batch, OddNames_AreFilesLikeOthers) {
    for (char const* name : {"a b.jpg", "q\"u'ote.jpg", "s;$(touch x).jpg", "line\nbreak.jpg", "tab\tin.jpg",
                             "bytes\xff\xfe.jpg", "-x.jpg", "\xe5\x86\x99\xe7\x9c\x9f.jpg"}) {
        const std::string photo = Photo(name, 64, 48);
        const Ended ended = Orvelle({"batch", "--filter", "EXIF", "--force", "--output", Out("r.tsv"), "--", photo});
        EXPECT_EQ(0, ended.status) << name << ended.err;
        const std::vector<std::string> lines = Lines(ReadFile(Out("r.tsv")));
        ASSERT_EQ(2U, lines.size()) << name;
        EXPECT_EQ(5U, Cells(lines[1]).size()) << name;
    }
}

TEST_F(Batch, ManifestHoldsWhatSha256sumSays) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Run({"--output", Out("r.html"), photo}).status);
    const nlohmann::json manifest = Manifest(Out("r.html"));
    ASSERT_EQ(1U, manifest["inputs"].size());
    EXPECT_EQ(photo, manifest["inputs"][0]["path"]);
    EXPECT_EQ(false, manifest["inputs"][0]["changed"]);
    const Ended sum = RunProgram("/usr/bin/sha256sum", {photo});
    EXPECT_EQ(sum.out.substr(0, 64), manifest["inputs"][0]["sha256"]);
    ASSERT_EQ(3U, manifest["outputs"].size());
    EXPECT_EQ("r.html", manifest["outputs"][2]["path"]);
    EXPECT_EQ(RunProgram("/usr/bin/sha256sum", {Out("r.html")}).out.substr(0, 64), manifest["outputs"][2]["sha256"]);
    EXPECT_EQ("orvelle", manifest["tool"]["name"]);
    EXPECT_FALSE(Contains(ReadFile(Out("r.html.manifest.json")), "API Key"));
}

TEST_F(Batch, Verify_TellsWhatChanged) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Run({"--output", Out("r.html"), photo}).status);
    const std::string manifest = Out("r.html.manifest.json");
    EXPECT_EQ(0, Orvelle({"verify", manifest}).status);
    // The bundle is handed on without its evidence.
    const std::string elsewhere = Folder() + "/elsewhere";
    std::filesystem::copy(Out(""), elsewhere, std::filesystem::copy_options::recursive);
    std::filesystem::remove(photo);
    const Ended moved = Orvelle({"verify", elsewhere + "/r.html.manifest.json", "--format", "csv"});
    EXPECT_EQ(0, moved.status) << moved.err;
    EXPECT_TRUE(Contains(moved.out, "missing,input," + photo)) << moved.out;
    WriteFile(elsewhere + "/r.html", "forged");
    const Ended forged = Orvelle({"verify", elsewhere + "/r.html.manifest.json", "--format", "csv"});
    EXPECT_EQ(3, forged.status);
    EXPECT_TRUE(Contains(forged.out, "changed,output,r.html")) << forged.out;
    std::filesystem::remove(elsewhere + "/r.html");
    EXPECT_EQ(3, Orvelle({"verify", elsewhere + "/r.html.manifest.json"}).status);
}

TEST_F(Batch, VerifyOfNoManifest_IsRefused) {
    for (char const* text : {"", "hello", "[]", "{}", R"({"schema":"orvelle/manifest/1"})",
                             R"({"schema":"orvelle/manifest/1","inputs":[],"outputs":[1]})"}) {
        EXPECT_EQ(3, Orvelle({"verify", Write("m.json", text)}).status) << text;
    }
    const std::string outside = R"({"schema":"orvelle/manifest/1","inputs":[],"outputs":[{"path":"../../etc/passwd",)"
                                R"("bytes":1,"sha256":""}]})";
    const Ended ended = Orvelle({"verify", Write("m.json", outside), "--format", "csv"});
    EXPECT_EQ(3, ended.status);
    EXPECT_TRUE(Contains(ended.out, "outside,output,../../etc/passwd"));
}

TEST_F(Batch, Interrupted_KeepsWhatWasDone) {
    std::vector<std::string> arguments = {"--documents", Documents(), "batch", "--no-cache", "--output", Out("r.tsv")};
    for (unsigned i = 0; i < 40; ++i) arguments.push_back(Photo("p" + std::to_string(i) + ".jpg", 1600, 1200, i + 1));
    Running running(arguments);
    // Results appear while the run goes on.
    for (int wait = 0; wait < 600 && (!Exists(Out("")) || List(Out("")).size() < 4); ++wait) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    running.Signal(SIGINT);
    const Ended ended = running.Wait();
    EXPECT_EQ(130, ended.status) << ended.err;
    const std::vector<std::string> lines = Lines(ReadFile(Out("r.tsv")));
    EXPECT_GT(lines.size(), 1U);
    for (std::string const& name : List(Out(""))) EXPECT_FALSE(Contains(name, ".orvelle-")) << name;
}

TEST_F(Batch, KilledAndRunAgain_GivesTheReportOfOneRun) {
    std::vector<std::string> arguments = {"batch",       "--filter", "EXIF",      "--filter",
                                          "File Format", "--output", Out("r.tsv")};
    for (unsigned i = 0; i < 6; ++i) arguments.push_back(Photo("p" + std::to_string(i) + ".jpg", 640, 480, i + 1));
    ASSERT_EQ(0, Orvelle(arguments).status);
    const std::string whole = ReadFile(Out("r.tsv"));
    const unsigned seed = std::random_device()();
    std::mt19937 random(seed);
    for (int round = 0; round < 5; ++round) {
        std::filesystem::remove_all(Out(""));
        std::filesystem::remove_all(Documents());
        std::vector<std::string> killed = {"--documents", Documents()};
        killed.insert(killed.end(), arguments.begin(), arguments.end());
        {
            Running running(killed);
            std::this_thread::sleep_for(std::chrono::milliseconds(random() % 600));
            running.Signal(SIGKILL);
            running.Wait();
        }
        EXPECT_EQ(0, Orvelle(arguments).status) << "seed " << seed;
        EXPECT_EQ(whole, ReadFile(Out("r.tsv"))) << "seed " << seed;
    }
}

TEST_F(Batch, MaxImageWidth_BoundsThePicturesOfTheReport) {
    const std::string photo = Photo("a.jpg", 1200, 900);
    ASSERT_EQ(0,
              Orvelle({"batch", "--filter", "Channels", "--max-image-width", "320", "--output", Out("r.html"), photo})
                  .status);
    size_t pictures = 0;
    for (std::string const& name : List(Out(""))) {
        if (!Contains(name, ".png")) continue;
        ++pictures;
        // The width in the PNG's header: 320 is 0x140.
        EXPECT_EQ(std::string("\0\0\x01\x40", 4), ReadFile(Out(name)).substr(16, 4)) << name;
        EXPECT_TRUE(Contains(ReadFile(Out("r.html")), "<img src=\"" + name + "\"")) << name;
    }
    // Three of the configurations are enabled.
    EXPECT_EQ(3U, pictures);
}

TEST_F(Batch, EvidenceStaysAsItIs) {
    const std::string photo = Photo("a.jpg");
    struct stat before = {};
    ASSERT_EQ(0, stat(photo.c_str(), &before));
    const std::string bytes = ReadFile(photo);
    ASSERT_EQ(0, Orvelle({"batch", "--output", Out("r.html"), photo}).status);
    struct stat after = {};
    ASSERT_EQ(0, stat(photo.c_str(), &after));
    EXPECT_EQ(before.st_mtim.tv_nsec, after.st_mtim.tv_nsec);
    EXPECT_EQ(bytes, ReadFile(photo));
    EXPECT_EQ(5, Run({"--force", "--output", photo, photo}).status);
    EXPECT_EQ(bytes, ReadFile(photo));
}

}  // namespace
