// SPDX-License-Identifier: Apache-2.0
#include "tolimage/exiftool.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <thread>

#include "tests/tolimage/pictures.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolimage/imagedetails.h"

using namespace pictures;

namespace {

wxString Value(ExifToolValues const& values, wxString const& group, wxString const& tag) {
    for (ExifToolValue const& value : values) {
        if (value.group1 == group && value.tag == tag) return value.value;
    }
    return "(none)";
}

wxString Failure(wxString const& path) {
    try {
        ExifToolRead(path);
    } catch (TolException const& failure) {
        EXPECT_EQ(82, failure.GetCode());
        return failure.GetMessage();
    }
    return wxString();
}

class ExifTool : public ::testing::Test {
protected:
    ~ExifTool() override { ExifToolSetProgram(wxString()); }

    // A program that stands in for ExifTool.
    void Pretend(std::string const& script) {
        const wxString path = support::WriteBytes(dir / "fake", "#!/bin/sh\n" + script);
        ASSERT_EQ(0, chmod(path.utf8_str(), 0700));
        ExifToolSetProgram(path);
    }
    support::TempDir dir;
    wxString picture = SaveJpeg(dir / "a.jpg");
};

// Answers each question with one value and the number of questions so far.
char const* const kCountingScript =
    "n=0\n"
    "while read -r line; do\n"
    "  case \"$line\" in\n"
    "    -execute*) n=$((n+1)); echo \"Array(Array(\\\"A:Count\\\" => \\\"$n\\\"));\"; echo "
    "\"{ready${line#-execute}}\";;\n"
    "    False) exit 0;;\n"
    "  esac\n"
    "done\n";

}  // namespace

TEST_F(ExifTool, Values_KeepTheirText) {
    Exif(picture,
         {"-Software=12.60", "-UserComment=1.10", "-XMP-crs:AlreadyApplied=True", "-Make=a\"b$c\\d", "-Model=0012"});
    const ExifToolValues values = ExifToolRead(picture);
    EXPECT_EQ("12.60", Value(values, "IFD0", "Software"));
    EXPECT_EQ("1.10", Value(values, "ExifIFD", "UserComment"));
    EXPECT_EQ("True", Value(values, "XMP-crs", "AlreadyApplied"));
    EXPECT_EQ("a\"b$c\\d", Value(values, "IFD0", "Make"));
    EXPECT_EQ("0012", Value(values, "IFD0", "Model"));
}

TEST_F(ExifTool, ControlCharactersAndLineBreaks_Survive) {
    const std::string comment = "first\nsecond\x01{ready1}\n{ready2}\n\ttab";
    const std::string payload = std::string("http://ns.adobe.com/xap/1.0/\0", 29) +
                                "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
                                "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description "
                                "xmlns:dc='http://purl.org/dc/elements/1.1/'><dc:source>" +
                                comment + "</dc:source></rdf:Description></rdf:RDF></x:xmpmeta>";
    std::string bytes = support::ReadBytes(picture);
    bytes.insert(2, Bytes({0xFF, 0xE1}) + Big(static_cast<uint32_t>(payload.size()) + 2, 2) + payload);
    support::WriteBytes(picture, bytes);
    EXPECT_EQ(wxString(comment), Value(ExifToolRead(picture), "XMP-dc", "Source"));
    EXPECT_EQ("JPEG", Value(ExifToolRead(picture), "File", "FileType"));
}

TEST_F(ExifTool, RepeatedTags_AreGivenTwice) {
    Exif(picture, {"-IFD0:XResolution=72", "-IFD1:XResolution=96", "-IPTC:Keywords=one", "-IPTC:Keywords=two"});
    const ExifToolValues values = ExifToolRead(picture);
    EXPECT_EQ("72", Value(values, "IFD0", "XResolution"));
    EXPECT_EQ("96", Value(values, "IFD1", "XResolution"));
    EXPECT_EQ("one, two", Value(values, "IPTC", "Keywords"));
}

TEST_F(ExifTool, BinaryTag_IsGivenByteForByte) {
    SaveJpeg(dir / "t.jpg", 32, 24);
    Exif(picture, {std::string("-ThumbnailImage<=") + (dir / "t.jpg").utf8_str().data()});
    EXPECT_EQ(support::ReadBytes(dir / "t.jpg"), ExifToolReadBinary(picture, "ThumbnailImage"));
    EXPECT_EQ("", ExifToolReadBinary(dir / "t.jpg", "ThumbnailImage"));
}

TEST_F(ExifTool, NoRegularFile_HasNoValues) {
    ASSERT_EQ(0, mkfifo((dir / "pipe").utf8_str(), 0600));
    for (wxString const& path : {dir / "missing", dir.Path(), dir / "pipe", wxString()}) {
        EXPECT_TRUE(ExifToolRead(path).empty()) << path.utf8_str();
        EXPECT_EQ("", ExifToolReadBinary(path, "ThumbnailImage"));
    }
}

TEST_F(ExifTool, OddNames_AreReadAsFilesAndNothingElse) {
    Exif(picture, {"-Make=Acme"});
    const std::string folder = dir.Path().utf8_str().data();
    for (std::string const& name :
         {std::string("-Make="), std::string("=x"), std::string("@list"), std::string("#[CSTR]x"),
          std::string("a\nb.jpg"), std::string("-execute\n"), std::string("touch owned |"), std::string(" blank "),
          std::string("q'\"$(x)`\\.jpg"), std::string("\xFF\xFE.jpg"), std::string("tab\tand\rreturn.jpg"),
          std::string(255, 'n')}) {
        std::filesystem::copy_file(folder + "/a.jpg", folder + "/" + name);
        EXPECT_EQ("Acme", Value(ExifToolRead(PathFromBytes(folder + "/" + name)), "IFD0", "Make")) << name;
    }
    EXPECT_FALSE(std::filesystem::exists(folder + "/owned"));
    EXPECT_FALSE(std::filesystem::exists("owned"));
}

TEST_F(ExifTool, RelativePath_StartsWithADash) {
    Exif(picture, {"-Make=Acme"});
    std::filesystem::current_path(dir.Path().utf8_str().data());
    std::filesystem::copy_file("a.jpg", "-Make=Other");
    EXPECT_EQ("Acme", Value(ExifToolRead("-Make=Other"), "IFD0", "Make"));
    std::filesystem::current_path("/");
}

TEST_F(ExifTool, Evidence_IsNotTouched) {
    const std::string before = support::ReadBytes(picture);
    const auto time = std::filesystem::last_write_time(picture.utf8_str().data());
    ExifToolRead(picture);
    EXPECT_EQ(before, support::ReadBytes(picture));
    EXPECT_EQ(time, std::filesystem::last_write_time(picture.utf8_str().data()));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(dir.Path().utf8_str().data()),
                               std::filesystem::directory_iterator()));
}

TEST_F(ExifTool, Prefetch_IsUsedOnceAndOnlyForTheSameFile) {
    Pretend(kCountingScript);
    ExifToolPrefetch(picture);
    ExifToolPrefetch(picture);  // asked already
    EXPECT_EQ("1", Value(ExifToolRead(picture), "A", "Count"));
    EXPECT_EQ("2", Value(ExifToolRead(picture), "A", "Count"));
    ExifToolPrefetch(picture);
    support::WriteBytes(picture, support::ReadBytes(picture) + "more");
    EXPECT_EQ("4", Value(ExifToolRead(picture), "A", "Count"));
}

TEST_F(ExifTool, ManyPrefetches_AreBounded) {
    Pretend(kCountingScript);
    std::vector<wxString> paths;
    for (int i = 0; i < 40; ++i) {
        paths.push_back(support::WriteBytes(dir / wxString::FromUTF8(std::to_string(i)), "x"));
        ExifToolPrefetch(paths.back());
    }
    EXPECT_EQ("40", Value(ExifToolRead(paths[39]), "A", "Count"));
    EXPECT_EQ("25", Value(ExifToolRead(paths[24]), "A", "Count"));
    EXPECT_EQ("41", Value(ExifToolRead(paths[23]), "A", "Count"));
}

TEST_F(ExifTool, ManyThreads_GetTheirOwnAnswers) {
    std::vector<wxString> paths;
    for (int i = 0; i < 6; ++i)
        paths.push_back(SaveJpeg(dir / wxString::FromUTF8(std::to_string(i) + ".jpg"), 16 + i, 16));
    std::vector<std::thread> threads;
    std::vector<int> wrong(6, 0);
    for (size_t i = 0; i < 6; ++i) {
        threads.emplace_back([&, i] {
            for (int k = 0; k < 5; ++k) {
                if (Value(ExifToolRead(paths[i]), "File", "ImageWidth") != wxString::FromUTF8(std::to_string(16 + i)))
                    ++wrong[i];
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(std::vector<int>(6, 0), wrong);
}

TEST_F(ExifTool, Missing_IsTold) {
    ExifToolSetProgram(dir / "nothing here");
    EXPECT_EQ("ExifTool is not installed.", Failure(picture));
    EXPECT_EQ("", ExifToolVersion());
    ExifToolSetProgram(wxString());
    EXPECT_EQ("", Failure(picture));
}

TEST_F(ExifTool, OneThatHangs_IsKilledAndStartedAgain) {
    Pretend("sleep 1000\n");
    SetTolLimit(TolLimit::SecondsPerFile, 1);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ("ExifTool did not answer within 1 s.", Failure(picture));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(10));
    SetTolLimit(TolLimit::SecondsPerFile, 0);
    ExifToolSetProgram(wxString());
    EXPECT_EQ("JPEG", Value(ExifToolRead(picture), "File", "FileType"));
}

TEST_F(ExifTool, OneThatHangsOnOneFile_AnswersTheOthers) {
    Pretend(
        "while read -r line; do case \"$line\" in */bad) sleep 1000;; -execute*) echo \"Array(Array(\\\"A:T\\\" => "
        "\\\"ok\\\"));\"; "
        "echo \"{ready${line#-execute}}\";; esac; done\n");
    const wxString bad = support::WriteBytes(dir / "bad", "x");
    SetTolLimit(TolLimit::SecondsPerFile, 1);
    ExifToolPrefetch(bad);
    ExifToolPrefetch(picture);
    EXPECT_EQ("ok", Value(ExifToolRead(picture), "A", "T"));
    EXPECT_EQ("ExifTool did not answer within 1 s.", Failure(bad));
    SetTolLimit(TolLimit::SecondsPerFile, 0);
}

TEST_F(ExifTool, OneThatEnds_IsStartedOnceMore) {
    const std::string mark = (dir / "mark").utf8_str().data();
    Pretend("if [ ! -e " + mark + " ]; then : > " + mark + "; exit 1; fi\n" + kCountingScript);
    EXPECT_EQ("1", Value(ExifToolRead(picture), "A", "Count"));
}

TEST_F(ExifTool, OneThatAlwaysEnds_IsGivenUp) {
    Pretend("exit 1\n");
    EXPECT_EQ("ExifTool ended unexpectedly.", Failure(picture));
    EXPECT_EQ("ExifTool ended unexpectedly.", Failure(picture));
}

TEST_F(ExifTool, OneThatTalksNonsense_IsTold) {
    Pretend(
        "while read -r line; do case \"$line\" in -execute*) echo nonsense; echo \"{ready${line#-execute}}\";; esac; "
        "done\n");
    EXPECT_EQ("ExifTool's answer can't be understood.", Failure(picture));
}

TEST_F(ExifTool, EndlessAnswer_IsRefused) {
    Pretend(
        "while :; do echo aaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaaa; "
        "done\n");
    SetTolLimit(TolLimit::SegmentBytes, 100000);
    EXPECT_TRUE(Failure(picture).Contains("the limit \"segment-bytes\" is 100000"));
    SetTolLimit(TolLimit::SegmentBytes, 0);
}

// The stand-in answers with what the shell says of its limits: memory in kB, size of files it may write, cores, open
// files.
TEST_F(ExifTool, Child_RunsWithinLimits) {
    const std::string facts =
        "$(ulimit -v) $(ulimit -f) $(ulimit -c) $(ulimit -n) $(sed -n s/NoNewPrivs:.//p /proc/self/status)";
    Pretend("while read -r line; do case \"$line\" in -execute*) echo \"Array(Array(\\\"A:Limits\\\" => \\\"" + facts +
            "\\\"));\"; echo \"{ready${line#-execute}}\";; esac; done\n");
    EXPECT_EQ("3145728 0 0 64 1", Value(ExifToolRead(picture), "A", "Limits"));
}

TEST_F(ExifTool, Child_HasNoneOfOurSecrets) {
    ::setenv("ORVELLE_API_KEY", "secret", 1);
    Pretend(
        "while read -r line; do case \"$line\" in -execute*) echo \"Array(Array(\\\"A:Names\\\" => \\\"$(env | sed "
        "'s/=.*//' | grep -cx -e ORVELLE_API_KEY -e HOME -e LD_PRELOAD)\\\"));\"; echo "
        "\"{ready${line#-execute}}\";; esac; done\n");
    EXPECT_EQ("0", Value(ExifToolRead(picture), "A", "Names"));
    ::unsetenv("ORVELLE_API_KEY");
}

// A process that waits for an answer is killed. Its child, whose name an empty file tells, comes to us and is found
// dead.
TEST_F(ExifTool, Child_DiesWithItsParent) {
    const std::string folder = dir.Path().utf8_string();
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    const pid_t parent = fork();
    if (parent == 0) {
        Pretend(": > \"" + folder + "/pid$$\"; exec sleep 100\n");
        Failure(picture);
        _exit(0);
    }
    pid_t child = 0;
    for (int tries = 0; child == 0 && tries < 500; ++tries) {
        usleep(10000);
        for (auto const& entry : std::filesystem::directory_iterator(folder)) {
            const std::string name = entry.path().filename().string();
            if (name.rfind("pid", 0) == 0) child = std::stoi(name.substr(3));
        }
    }
    ASSERT_GT(child, 0);
    kill(parent, SIGKILL);
    waitpid(parent, nullptr, 0);
    int status = 0;
    ASSERT_EQ(child, waitpid(child, &status, 0));
    EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL);
}

TEST_F(ExifTool, Shutdown_LeavesItUsable) {
    EXPECT_EQ("", Failure(picture));
    ExifToolShutdown();
    ExifToolShutdown();
    EXPECT_EQ("", Failure(picture));
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
// A thread's stack is larger than what is left.
TEST_F(ExifTool, WithoutAThread_ThrowsAndSignalsArriveAsBefore) {
    pthread_attr_t attributes;
    ASSERT_EQ(0, pthread_attr_init(&attributes));
    ASSERT_EQ(0, pthread_attr_setstacksize(&attributes, size_t{64} << 20));
    ASSERT_EQ(0, pthread_setattr_default_np(&attributes));
    std::string const pages = support::ReadBytes("/proc/self/statm");
    rlimit const memory{std::strtoul(pages.c_str(), nullptr, 10) * 4096 + (rlim_t{32} << 20), RLIM_INFINITY};
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &memory));
    EXPECT_THROW(ExifToolRead(picture), std::system_error);
    sigset_t blocked;
    ASSERT_EQ(0, pthread_sigmask(SIG_SETMASK, nullptr, &blocked));
    EXPECT_EQ(0, sigismember(&blocked, SIGTERM));
    EXPECT_EQ(0, sigismember(&blocked, SIGINT));
    rlimit const enough{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(0, setrlimit(RLIMIT_AS, &enough));
    EXPECT_FALSE(ExifToolRead(picture).empty());
}
#endif

TEST_F(ExifTool, DetailsWithoutExifTool_Throw) {
    ExifToolSetProgram(dir / "nothing here");
    EXPECT_THROW(tcvLoadImageDetailsExifTool(picture), TolException);
    EXPECT_NO_THROW(tcvLoadImageDetailsExifTool(dir / "missing"));
}

TEST_F(ExifTool, ChainOfDirectories_ComesToAnEnd) {
    // A hundred EXIF directories, each pointing at the next and the last at the first.
    std::string tiff = std::string("MM\0*", 4) + Big(8, 4);
    for (uint32_t i = 0; i < 100; ++i) {
        const uint32_t next = i == 99 ? 8 : 8 + (i + 1) * 18;
        tiff += Big(1, 2) + Big(0x0131, 2) + Big(2, 2) + Big(4, 4) + "abc" + std::string(1, '\0') + Big(next, 4);
    }
    std::string bytes = support::ReadBytes(picture);
    const std::string payload = std::string("Exif\0\0", 6) + tiff;
    bytes.insert(2, Bytes({0xFF, 0xE1}) + Big(static_cast<uint32_t>(payload.size()) + 2, 2) + payload);
    support::WriteBytes(picture, bytes);
    EXPECT_EQ("abc", Value(ExifToolRead(picture), "IFD0", "Software"));
}

TEST_F(ExifTool, DeepXmp_IsAnsweredOrToldAsAFailure) {
    std::string xmp = std::string("http://ns.adobe.com/xap/1.0/\0", 29) + "<x:xmpmeta xmlns:x='adobe:ns:meta/'>";
    for (int i = 0; i < 9000; ++i) xmp += "<a>";
    std::string bytes = support::ReadBytes(picture);
    bytes.insert(2, Bytes({0xFF, 0xE1}) + Big(static_cast<uint32_t>(xmp.size()) + 2, 2) + xmp);
    support::WriteBytes(picture, bytes);
    const wxString failure = Failure(picture);
    EXPECT_TRUE(failure.empty() || failure.StartsWith("ExifTool")) << failure.utf8_str();
    EXPECT_EQ(64, tcvProbeImage(picture).width);
}
