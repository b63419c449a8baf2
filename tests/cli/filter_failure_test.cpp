// SPDX-License-Identifier: Apache-2.0
// orvelle filter: how it ends where it can't do what was asked, and when it is told to stop.
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class FilterEnds : public CliTest {
protected:
    std::string Out(std::string const& name) const { return Folder() + "/" + name; }
    // Nothing beside the folders that every test has.
    void ExpectNothingWritten() const {
        for (std::string const& name : List(Folder())) {
            EXPECT_TRUE(name == "documents" || name == "evidence") << name;
        }
    }
};

TEST_F(FilterEnds, UnknownFilter_IsWrongUsage) {
    const Ended ended = Orvelle({"filter", "Nonsense", Photo("a.jpg"), "-o", Out("a.png")});
    EXPECT_EQ(2, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: Nonsense: no such filter; \"orvelle filters\" names them all\n", ended.err);
    ExpectNothingWritten();
}

TEST_F(FilterEnds, WrongParameter_IsNamedWithItsRange) {
    const std::string photo = Photo("a.jpg");
    for (auto const& [option, setting, message] : std::vector<std::tuple<std::string, std::string, std::string>>{
             {"--set", "Nonsense=1", "the filter has no parameter \"Nonsense\"; it has: Color Space, Component"},
             {"--set", "Component", "\"Component\" is not of the form PARAMETER=VALUE"},
             {"--set", "=1", "\"=1\" is not of the form PARAMETER=VALUE"},
             {"--set", "Component=Fourth", "Component takes one of: First, Second, Third, not \"Fourth\""},
             {"--set", "C=First", "several parameters begin with \"C\": Color Space, Component"},
             {"--post", "Shadows=256", "Shadows takes a whole number from 0 to 255, not \"256\""},
             {"--post", "Shadows=dark", "Shadows takes a whole number from 0 to 255, not \"dark\""},
             {"--post", "Shadows=", "Shadows takes a whole number from 0 to 255, not \"\""}}) {
        const Ended ended = Orvelle({"filter", "Channels", photo, option, setting});
        EXPECT_EQ(2, ended.status) << setting;
        EXPECT_EQ("orvelle: " + option + ": " + message + "\n", ended.err);
        EXPECT_EQ("", ended.out);
    }
    ExpectNothingWritten();
}

TEST_F(FilterEnds, MissingArguments_AreWrongUsage) {
    EXPECT_EQ(2, Orvelle({"filter"}).status);
    EXPECT_EQ(2, Orvelle({"filter", "Channels"}).status);
    EXPECT_EQ(2, Orvelle({"filter", "Channels", "a", "b", "c"}).status);
    EXPECT_EQ(2, Orvelle({"filter", "Channels", "a", "--fail-on", "all"}).status);
}

TEST_F(FilterEnds, WrongEnding_IsWrongUsage) {
    const std::string photo = Photo("a.jpg");
    const Ended picture = Orvelle({"filter", "Channels", photo, "-o", Out("a.csv")});
    EXPECT_EQ(2, picture.status);
    EXPECT_EQ("orvelle: --output: \"" + Out("a.csv") +
                  "\": Channels gives a picture; endings: jpg jpeg png tif tiff bmp webp\n",
              picture.err);
    EXPECT_EQ(2, Orvelle({"filter", "Channels", photo, "-o", Out("png")}).status);
    EXPECT_EQ(2, Orvelle({"filter", "EXIF", photo, "-o", Out("a.png")}).status);
    ExpectNothingWritten();
}

TEST_F(FilterEnds, UnreadableImage_EndsWithThree) {
    const std::string photo = Photo("a.jpg");
    const std::string broken = Write("broken.jpg", "\xff\xd8 no picture");
    const Ended missing = Orvelle({"filter", "Channels", Path("none.jpg"), "-o", Out("a.png")});
    EXPECT_EQ(3, missing.status);
    EXPECT_EQ("orvelle: " + Path("none.jpg") + ": no such file\n", missing.err);
    const Ended bad = Orvelle({"filter", "Channels", broken, "-o", Out("a.png")});
    EXPECT_EQ(3, bad.status);
    EXPECT_EQ(0u, bad.err.find("orvelle: " + broken + ": ")) << bad.err;
    EXPECT_EQ(3, Orvelle({"filter", "Channels", Path(""), "-o", Out("a.png")}).status);
    const Ended reference = Orvelle({"filter", "Channels", photo, broken, "-o", Out("a.png")});
    EXPECT_EQ(3, reference.status);
    EXPECT_EQ(0u, reference.err.find("orvelle: " + broken + ": ")) << reference.err;
    ExpectNothingWritten();
}

TEST_F(FilterEnds, JpegFilterOnAnotherFormat_EndsWithThree) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Original", photo, "-o", Path("a.png")}).status);
    const Ended ended = Orvelle({"filter", "JPEG Tables", Path("a.png")});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("orvelle: " + Path("a.png") + ": JPEG Tables works on JPEG files only\n", ended.err);
    EXPECT_EQ("", ended.out);
    const Ended reference = Orvelle({"filter", "JPEG Tables", photo, Path("a.png")});
    EXPECT_EQ(3, reference.status);
    EXPECT_TRUE(Contains(reference.out, "\nReference Status ")) << reference.out;
    EXPECT_EQ("orvelle: " + Path("a.png") + ": JPEG Tables works on JPEG files only\n", reference.err);
}

TEST_F(FilterEnds, FilterThatFails_EndsWithSix) {
    const std::string photo = Photo("a.jpg");
    const Ended ended = Orvelle({"filter", "Hex Viewer", photo, "--set", "Offset=-1", "-o", Out("a.txt")});
    EXPECT_EQ(6, ended.status);
    EXPECT_EQ("orvelle: " + photo + ": Hex Viewer: The offset and the length must not be negative.\n", ended.err);
    EXPECT_EQ("", ended.out);
    ExpectNothingWritten();
}

TEST_F(FilterEnds, FailOn_EndsWithOne) {
    const std::string odd = Photo("odd.jpg", 1001, 751);
    EXPECT_EQ(0, Orvelle({"filter", "File Format", odd}).status);
    EXPECT_EQ(1, Orvelle({"filter", "File Format", odd, "--fail-on", "hard"}).status);
    EXPECT_EQ(1, Orvelle({"filter", "File Format", odd, "--fail-on", "soft"}).status);
    EXPECT_EQ(1, Orvelle({"filter", "File Format", odd, "--fail-on", "soft", "-o", Out("a.json")}).status);
    EXPECT_TRUE(Exists(Out("a.json")));
    EXPECT_EQ(0, Orvelle({"filter", "Channels", odd, "--fail-on", "soft"}).status);
}

TEST_F(FilterEnds, ExistingOutput_IsKeptWithoutForce) {
    const std::string photo = Photo("a.jpg");
    const std::string target = Out("a.png");
    WriteFile(target, "precious");
    const Ended ended = Orvelle({"filter", "Channels", photo, "-o", target});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: " + target + ": exists (--force replaces it)\n", ended.err);
    EXPECT_EQ("precious", ReadFile(target));
    EXPECT_EQ(0, Orvelle({"filter", "Channels", photo, "-o", target, "--force"}).status);
    EXPECT_EQ("\x89PNG", ReadFile(target).substr(0, 4));
    struct stat status = {};
    ASSERT_EQ(0, stat(target.c_str(), &status));
    const mode_t mask = umask(0);
    umask(mask);
    EXPECT_EQ(0666 & ~mask, status.st_mode & 0777U);
    EXPECT_EQ((std::vector<std::string>{"a.png", "documents", "evidence"}), List(Folder()));
}

TEST_F(FilterEnds, ExaminedFile_IsNeverReplaced) {
    const std::string photo = Photo("a.jpg");
    const std::string other = Photo("b.jpg");
    const std::string before = ReadFile(photo);
    std::filesystem::create_symlink(photo, Path("link.jpg"));
    for (std::string const& target : {photo, Path("link.jpg"), Path("../evidence/a.jpg")}) {
        EXPECT_EQ(5, Orvelle({"filter", "Channels", photo, "-o", target, "--force"}).status) << target;
        EXPECT_EQ(5, Orvelle({"filter", "Channels", other, photo, "-o", target, "--force"}).status) << target;
        EXPECT_EQ(before, ReadFile(photo));
    }
}

TEST_F(FilterEnds, UnwritableOutput_EndsWithFiveBeforeTheRun) {
    const Ended ended = Orvelle({"filter", "Channels", "missing.jpg", "-o", "/proc/a.png"});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ(0u, ended.err.find("orvelle: /proc/a.png: can't be written: ")) << ended.err;
    Surroundings full;
    full.outputTo = "/dev/full";
    const Ended disk = Orvelle({"filter", "Channels", Photo("a.jpg")}, full);
    EXPECT_EQ(5, disk.status);
    EXPECT_EQ("orvelle: standard output: can't be written: No space left on device\n", disk.err);
}

TEST_F(FilterEnds, UnwritableCache_IsNoReasonNotToRun) {
    std::filesystem::create_directories(Documents());
    WriteFile(Documents() + "/cache", "a file where the folder should be");
    const Ended ended = Orvelle({"filter", "Channels", Photo("a.jpg"), "-o", Out("a.png")});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("\x89PNG", ReadFile(Out("a.png")).substr(0, 4));
    EXPECT_TRUE(Contains(ended.err, ": warning: The result can't be stored in the cache folder ")) << ended.err;
    EXPECT_EQ("a file where the folder should be", ReadFile(Documents() + "/cache"));
}

TEST_F(FilterEnds, NameLikeAnOption_IsTakenBehindTwoDashes) {
    Photo("-x.jpg");
    Surroundings surroundings;
    surroundings.folder = Path("");
    const Ended ended = Orvelle({"filter", "Channels", "--set", "Component=Third", "--", "-x.jpg"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_TRUE(Contains(ended.out, "\nEvidence        -x.jpg\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, "\nComponent       Third\n")) << ended.out;
}

TEST_F(FilterEnds, HomeAndLocale_PlayNoPart) {
    const std::string home = Folder() + "/home";
    std::filesystem::create_directories(home);
    const std::string photo = Photo("caf\xe9.jpg");
    std::string out[2];
    for (int i = 0; i < 2; ++i) {
        Surroundings surroundings;
        surroundings.environment = {
            {"HOME", home}, {"XDG_CONFIG_HOME", home + "/.config"}, {"LC_ALL", i == 0 ? "C" : "de_DE.UTF-8"}};
        const Ended ended = Orvelle({"filter", "File Format", photo}, surroundings);
        EXPECT_EQ(0, ended.status) << ended.err;
        out[i] = ended.out;
    }
    EXPECT_EQ(out[0], out[1]);
    EXPECT_TRUE(Contains(out[0], "caf\\xe9.jpg")) << out[0];
    EXPECT_TRUE(List(home).empty());
}

TEST_F(FilterEnds, ClosedPipe_EndsQuietly) {
    const std::string photo = Photo("a.jpg");
    Running running({"--documents", Documents(), "filter", "Hex Viewer", photo, "--set", "Length=1000000"});
    EXPECT_TRUE(Contains(running.ReadLine(), "Hex Viewer"));
    running.CloseOutput();
    const Ended ended = running.Wait();
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
}

// Told to stop in the midst of a long calculation.
void Interrupt(int signal, int status, std::string const& documents, std::string const& photo,
               std::string const& target) {
    Running running({"--documents", documents, "filter", "JPEG Ghost Plot", photo, "-o", target});
    std::this_thread::sleep_for(std::chrono::milliseconds(2500));
    const auto asked = std::chrono::steady_clock::now();
    running.Signal(signal);
    EXPECT_EQ(status, running.Wait().status);
    EXPECT_LT(std::chrono::steady_clock::now() - asked, std::chrono::seconds(5));
    EXPECT_FALSE(Exists(target));
}

TEST_F(FilterEnds, Interrupt_LeavesNothingHalfWritten) {
    const std::string photo = Photo("a.jpg", 6000, 5000);
    Interrupt(SIGINT, 130, Documents(), photo, Out("a.png"));
    Interrupt(SIGTERM, 143, Documents(), photo, Out("a.png"));
    ExpectNothingWritten();
    EXPECT_EQ((std::vector<std::string>{"a.jpg"}), List(Path("")));
    for (auto const& entry : std::filesystem::recursive_directory_iterator(Documents() + "/cache")) {
        EXPECT_NE(".status", entry.path().extension()) << entry.path();
        EXPECT_NE(".tmp", entry.path().extension()) << entry.path();
    }
}

}  // namespace
