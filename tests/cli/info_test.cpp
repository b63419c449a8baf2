// SPDX-License-Identifier: Apache-2.0
// orvelle info: rows, warnings, formats, failing files, output files.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class Info : public CliTest {
protected:
    // The compression rules off: what is left depends on the picture alone.
    void SwitchCompressionRulesOff() const {
        for (char const* const name : {"Warning if software QT", "Warning if camera not found in QT db",
                                       "Warning if camera present but QT not found"}) {
            ASSERT_EQ(0, Orvelle({"options", "set", name, "No"}).status);
        }
    }
};

// The line of a text table whose title is `title`.
std::string Row(std::string const& text, std::string const& title) {
    for (std::string const& line : Lines(text)) {
        if (line.compare(0, title.size() + 1, title + " ") == 0) return line;
    }
    return "";
}

TEST_F(Info, Photo_GivesTheRowsOfTheTable) {
    const std::string photo = Photo("a.jpg");
    const Ended ended = Orvelle({"info", photo});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
    EXPECT_EQ("Filename                    a.jpg", Row(ended.out, "Filename"));
    EXPECT_EQ("Full Path                   " + photo, Row(ended.out, "Full Path"));
    EXPECT_EQ("Image Displayed Size        640x480", Row(ended.out, "Image Displayed Size"));
    EXPECT_EQ("Thumbnail Size              160x120", Row(ended.out, "Thumbnail Size"));
    EXPECT_EQ("Exif Make                   Acme Optics", Row(ended.out, "Exif Make"));
    EXPECT_EQ("JPEG Quality                90", Row(ended.out, "JPEG Quality"));
    EXPECT_EQ("", Row(ended.out, "SHA256"));
}

TEST_F(Info, QtHash_IsWhatExifToolPrints) {
    const std::string photo = Photo("a.jpg");
    const std::string digest = RunProgram("exiftool", {"-s3", "-n", "-JPEGDigest", photo}).out.substr(0, 32);
    ASSERT_EQ(32u, digest.size());
    std::string upper = digest;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_TRUE(Contains(Row(Orvelle({"info", photo}).out, "JPEG QT Hash"), upper));
}

TEST_F(Info, Extended_AddsHashesAsTheSystemsProgramsGiveThem) {
    const std::string photo = Photo("a.jpg");
    const std::string out = Orvelle({"info", "--extended", photo}).out;
    EXPECT_EQ(45u, Lines(out).size() + 2 - CountOf(out, "\n                            ")) << out;
    for (auto const& [title, program] : std::vector<std::pair<std::string, std::string>>{{"MD5", "md5sum"},
                                                                                         {"SHA1", "sha1sum"},
                                                                                         {"SHA256", "sha256sum"},
                                                                                         {"SHA384", "sha384sum"},
                                                                                         {"SHA512", "sha512sum"}}) {
        const std::string digest = RunProgram(program, {photo}).out;
        EXPECT_TRUE(Contains(Row(out, title), digest.substr(0, digest.find(' ')))) << title;
    }
}

TEST_F(Info, OddSizes_WarnBesideTheirRow) {
    SwitchCompressionRulesOff();
    // A long path does not push the warnings aside.
    const std::string photo = Photo("a folder whose name is longer than a column/a.jpg", 1001, 751);
    const std::string out = Orvelle({"info", photo}).out;
    const std::vector<std::string> lines = Lines(out);
    EXPECT_EQ("Image Encoded Size          1001x751                         !Odd width (1001 is not multiple of 4)",
              lines.at(4));
    EXPECT_EQ("                                                             !Odd height (751 is not multiple of 4)",
              lines.at(5));
    // Both are of one row.
    EXPECT_EQ("Warnings: 1 hard, 0 soft", lines.back());
}

TEST_F(Info, ShortTable_CountsAndShowsWhatTheExtendedOneDoes) {
    const std::string photo = Photo("a.jpg");
    const std::string bytes = std::to_string(std::filesystem::file_size(photo));
    const std::string shortForm = Orvelle({"info", photo}).out;
    const std::string extended = Orvelle({"info", "-x", photo}).out;
    EXPECT_EQ(Lines(extended).back(), Lines(shortForm).back());
    for (std::string const& out : {shortForm, extended}) {
        EXPECT_TRUE(Contains(Row(out, "File Size"), "?File Size is small (" + bytes + " < 100000)")) << out;
    }
}

TEST_F(Info, FailOn_TellsFindingsByTheExitCode) {
    SwitchCompressionRulesOff();
    const std::string soft = Photo("soft.jpg");
    const std::string hard = Photo("hard.jpg", 641, 480);
    EXPECT_EQ(0, Orvelle({"info", soft}).status);
    EXPECT_EQ(0, Orvelle({"info", soft, "--fail-on", "hard"}).status);
    EXPECT_EQ(1, Orvelle({"info", soft, "--fail-on", "soft"}).status);
    EXPECT_EQ(0, Orvelle({"info", hard}).status);
    EXPECT_EQ(1, Orvelle({"info", soft, hard, "--fail-on", "hard"}).status);
    EXPECT_EQ(1, Orvelle({"info", hard, "--fail-on", "soft", "--format", "json"}).status);
    EXPECT_EQ(3, Orvelle({"info", hard, "missing.jpg", "--fail-on", "hard"}).status);
}

TEST_F(Info, SeveralFiles_HaveHeadings) {
    const std::string a = Photo("a.jpg");
    const std::string b = Photo("b.jpg", 644, 480, 2);
    const std::string out = Orvelle({"info", a, b}).out;
    EXPECT_LT(out.find(a + "\n---"), out.find("\n" + b + "\n---"));
    EXPECT_EQ(1u, CountOf(out,
                          " 644x480"
                          "\n") > 0
                      ? 1u
                      : 0u)
        << out;
}

TEST_F(Info, Folder_StandsForTheImagesInIt) {
    Photo("b.JPG");
    Photo("a.jpg", 640, 480, 2);
    Photo("sub/c.jpeg", 640, 480, 3);
    Write("notes.txt", "no image");
    const std::string flat = Orvelle({"info", Path(""), "--format", "jsonl"}).out;
    ASSERT_EQ(2u, Lines(flat).size());
    EXPECT_TRUE(Contains(Lines(flat)[0], Path("a.jpg")));
    EXPECT_TRUE(Contains(Lines(flat)[1], Path("b.JPG")));
    const std::string deep = Orvelle({"info", "-r", Path(""), "--format", "jsonl"}).out;
    ASSERT_EQ(3u, Lines(deep).size());
    EXPECT_TRUE(Contains(Lines(deep)[2], Path("sub/c.jpeg")));
}

TEST_F(Info, FolderWithLinkToItself_EndsAllTheSame) {
    Photo("a.jpg");
    std::filesystem::create_directory_symlink(Path(""), Path("loop"));
    EXPECT_EQ(1u, Lines(Orvelle({"info", "-r", Path(""), "--format", "jsonl"}).out).size());
}

TEST_F(Info, FailingFiles_AreToldAndTheOthersDone) {
    const std::string good = Photo("good.jpg");
    const std::string last = Photo("last.jpg", 644, 480, 2);
    const std::string text = Write("text.jpg", "this is no picture at all, whatever its name says");
    const std::string empty = Write("empty.jpg", "");
    std::filesystem::create_directories(Path("folder"));
    mkfifo(Path("pipe.jpg").c_str(), 0600);
    const Ended ended = Orvelle({"info", good, Path("missing.jpg"), text, empty, Path("folder"), Path("pipe.jpg"),
                                 "/dev/zero", last, "--format", "jsonl"});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ(2u, Lines(ended.out).size());
    const std::vector<std::string> lines = Lines(ended.err);
    ASSERT_EQ(6u, lines.size()) << ended.err;
    // Folders are looked through before the first file is examined.
    EXPECT_EQ("orvelle: " + Path("folder") + ": no images", lines[0]);
    EXPECT_EQ("orvelle: " + Path("missing.jpg") + ": no such file", lines[1]);
    EXPECT_EQ(0u, lines[2].find("orvelle: " + text + ": File format not supported.")) << lines[2];
    EXPECT_EQ("orvelle: " + empty + ": empty file", lines[3]);
    EXPECT_EQ("orvelle: " + Path("pipe.jpg") + ": not a regular file", lines[4]);
    EXPECT_EQ("orvelle: /dev/zero: not a regular file", lines[5]);
}

TEST_F(Info, FailedFile_GetsNoResultOfTheOneBefore) {
    const std::string good = Photo("good.jpg");
    const std::string broken = Write("broken.jpg", "\xff\xd8\xff\xe0 broken");
    const Ended ended = Orvelle({"info", good, broken, "--format", "csv"});
    EXPECT_EQ(3, ended.status);
    EXPECT_FALSE(Contains(ended.out, "broken.jpg")) << ended.out;
}

TEST_F(Info, FileThatChangesMeanwhile_IsRefused) {
    const std::string photo = Photo("a.jpg", 5000, 4000);
    std::atomic<bool> go{true};
    std::thread changer([&] {
        while (go) {
            const int descriptor = open(photo.c_str(), O_WRONLY | O_APPEND);
            if (write(descriptor, "x", 1) != 1) break;
            close(descriptor);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    const Ended ended = Orvelle({"info", photo});
    go = false;
    changer.join();
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: " + photo + ": changed while it was examined\n", ended.err);
}

// Neither size nor time tells of it, the digests do.
TEST_F(Info, BytesThatChangeUnderTheSameTime_AreRefused) {
    const std::string photo = Photo("a.jpg", 5000, 4000);
    std::atomic<bool> go{true};
    std::thread changer([&] {
        const timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
        const int descriptor = open(photo.c_str(), O_WRONLY);
        const off_t end = lseek(descriptor, 0, SEEK_END);
        for (int count = 0; go; ++count) {
            if (pwrite(descriptor, &count, sizeof count, end) < 0 || futimens(descriptor, times) != 0) break;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        close(descriptor);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    const Ended brief = Orvelle({"info", photo});
    const Ended extended = Orvelle({"info", "--extended", photo});
    go = false;
    changer.join();
    EXPECT_EQ("orvelle: " + photo + ": changed while it was examined\n", brief.err);
    EXPECT_EQ(brief.err, extended.err);
}

TEST_F(Info, ExifToolMissing_IsToldForEachFile) {
    const std::string photo = Photo("a.jpg");
    Surroundings surroundings;
    surroundings.environment = {{"PATH", Folder()}};
    const Ended ended = Orvelle({"info", photo}, surroundings);
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: " + photo + ": ExifTool is not installed.\n", ended.err);
}

TEST_F(Info, RefusedByLimit_NamesIt) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"options", "set", "pixels-per-image", "1000"}).status);
    const Ended ended = Orvelle({"info", photo});
    EXPECT_EQ(3, ended.status);
    EXPECT_TRUE(Contains(ended.err, "pixels-per-image")) << ended.err;
}

TEST_F(Info, Evidence_IsNeverChanged) {
    const std::string photo = Photo("a.jpg");
    const std::string before = ReadFile(photo);
    struct stat was = {};
    ASSERT_EQ(0, stat(photo.c_str(), &was));
    for (char const* const format : {"text", "json", "csv", "html"}) {
        EXPECT_EQ(0, Orvelle({"info", "-x", "--format", format, photo, "--reference", photo}).status);
    }
    EXPECT_EQ(0, Orvelle({"qt", "match", photo}).status);
    EXPECT_EQ(0, Orvelle({"qt", "add", "--class", "camera", photo}).status);
    struct stat is = {};
    ASSERT_EQ(0, stat(photo.c_str(), &is));
    EXPECT_EQ(before, ReadFile(photo));
    EXPECT_EQ(was.st_mtim.tv_sec, is.st_mtim.tv_sec);
    EXPECT_EQ(was.st_mtim.tv_nsec, is.st_mtim.tv_nsec);
    EXPECT_EQ(was.st_ctim.tv_nsec, is.st_ctim.tv_nsec);
    EXPECT_EQ(was.st_ino, is.st_ino);
    EXPECT_EQ((std::vector<std::string>{"a.jpg"}), List(Path("")));
}

TEST_F(Info, CacheBesideImages_IsNotMadeByLooking) {
    ASSERT_EQ(0, Orvelle({"options", "set", "Cache Location", "Image Local Folder"}).status);
    EXPECT_EQ(0, Orvelle({"info", Photo("a.jpg")}).status);
    EXPECT_EQ((std::vector<std::string>{"a.jpg"}), List(Path("")));
    EXPECT_EQ("Image Local Folder\n", Orvelle({"options", "get", "Cache Location"}).out);
    EXPECT_FALSE(Exists(Documents() + "/cache"));
}

TEST_F(Info, Reference_IsToldBehindTheOthers) {
    const std::string evidence = Photo("e.jpg");
    const std::string reference = Photo("r.jpg", 648, 480, 2);
    const std::string out = Orvelle({"info", evidence, "--reference", reference}).out;
    const size_t heading = out.find("\nReference: " + reference + "\n");
    ASSERT_NE(std::string::npos, heading) << out;
    EXPECT_LT(out.find("640x480"), heading);
    EXPECT_GT(out.find("648x480"), heading);
    const Ended missing = Orvelle({"info", evidence, "--reference", Path("none.jpg")});
    EXPECT_EQ(3, missing.status);
    EXPECT_TRUE(Contains(missing.out, "640x480"));
    EXPECT_EQ("orvelle: " + Path("none.jpg") + ": no such file\n", missing.err);
}

TEST_F(Info, BrokenSettings_MeanDefaultsAndAWarning) {
    const std::string settings = Documents() + "/settings/default.ovs";
    std::filesystem::create_directories(Documents() + "/settings");
    WriteFile(settings, "{ \"File Format\": \x01 [");
    const Ended ended = Orvelle({"info", Photo("a.jpg")});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ(0u, ended.err.find("orvelle: " + settings + ": warning: broken settings, defaults are used: "));
    EXPECT_EQ(1u, Lines(ended.err).size());
    EXPECT_EQ("{ \"File Format\": \x01 [", ReadFile(settings));
}

TEST_F(Info, Verbose_NamesRulesThatWereNotEvaluated) {
    EXPECT_TRUE(Contains(Orvelle({"-v", "info", Photo("a.jpg")}).out, "Not evaluated: exif_missing, "));
}

TEST_F(Info, NotOnATerminal_NoColourNoProgress) {
    const Ended ended = Orvelle({"info", Photo("a.jpg"), Photo("b.jpg")});
    EXPECT_FALSE(Contains(ended.out, "\x1b"));
    EXPECT_EQ("", ended.err);
}

}  // namespace
