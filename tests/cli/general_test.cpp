// SPDX-License-Identifier: Apache-2.0
// What holds for every command.
#include <sys/stat.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class General : public CliTest {};

TEST_F(General, HelpEverywhere_EndsWithZero) {
    const std::vector<std::vector<std::string>> calls = {
        {"help"},         {"--help"},          {"help", "info"},    {"info", "--help"},          {"help", "qt", "add"},
        {"qt", "--help"}, {"qt", "add", "-h"}, {"help", "options"}, {"options", "set", "--help"}};
    for (auto const& call : calls) {
        const Ended ended = Orvelle(call);
        EXPECT_EQ(0, ended.status) << call.back();
        EXPECT_TRUE(Contains(ended.out, "Usage: orvelle")) << ended.out;
        EXPECT_EQ("", ended.err);
    }
}

TEST_F(General, HelpOfAll_NamesEveryCommand) {
    const std::string out = Orvelle({"help"}).out;
    for (char const* const name : {"info", "options", "qt", "help"}) EXPECT_TRUE(Contains(out, name)) << name;
}

TEST_F(General, HelpOfCommand_IsThatOfItsOption) {
    EXPECT_EQ(Orvelle({"info", "--help"}).out, Orvelle({"help", "info"}).out);
}

TEST_F(General, HelpOfUnknownCommand_IsWrongUsage) {
    const Ended ended = Orvelle({"help", "nonsense"});
    EXPECT_EQ(2, ended.status);
    EXPECT_EQ("orvelle: nonsense: no such command; \"orvelle help\" names them all\n", ended.err);
}

TEST_F(General, Version_NamesProgramAndComponents) {
    const Ended ended = Orvelle({"--version"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("orvelle " ORVELLE_VERSION, Lines(ended.out).at(0));
    for (char const* const name : {"CLI11 2.", "OpenCV 4.", "wxWidgets 3."}) {
        EXPECT_TRUE(Contains(ended.out, name)) << name << " in " << ended.out;
    }
    // ExifTool tells its version itself.
    const std::string exiftool = Lines(RunProgram("exiftool", {"-ver"}).out).at(0);
    EXPECT_TRUE(Contains(ended.out, "ExifTool " + exiftool + "\n")) << ended.out;
}

TEST_F(General, WrongUsage_EndsWithTwoAndOneLine) {
    const std::vector<std::vector<std::string>> calls = {{},
                                                         {"nonsense"},
                                                         {"info"},
                                                         {"info", "--nonsense", "a.jpg"},
                                                         {"info", "a.jpg", "--format", "xml"},
                                                         {"info", "a.jpg", "--fail-on", "all"},
                                                         {"options"},
                                                         {"qt", "add"},
                                                         {"info", "a.jpg", "-o"}};
    for (auto const& call : calls) {
        const Ended ended = Orvelle(call);
        EXPECT_EQ(2, ended.status) << (call.empty() ? "" : call.back());
        EXPECT_EQ("", ended.out);
        EXPECT_EQ(1u, Lines(ended.err).size()) << ended.err;
        EXPECT_EQ(0u, ended.err.find("orvelle: ")) << ended.err;
    }
}

TEST_F(General, WrongValue_IsNamedWithWhatTheOptionTakes) {
    const Ended ended = Orvelle({"info", "a.jpg", "--format", "xml"});
    EXPECT_EQ("orvelle: --format: \"xml\" is none of: text json jsonl csv tsv ssv html\n", ended.err);
}

TEST_F(General, Documents_KeepHomeUntouched) {
    const std::string home = Folder() + "/home";
    std::filesystem::create_directories(home);
    Surroundings surroundings;
    surroundings.environment = {{"HOME", home}, {"XDG_CONFIG_HOME", home + "/.config"}};
    const std::string photo = Photo("a.jpg");
    EXPECT_EQ(0, Orvelle({"info", "-x", photo}, surroundings).status);
    EXPECT_EQ(0, Orvelle({"options", "set", "Width Multiple", "8"}, surroundings).status);
    EXPECT_EQ(0, Orvelle({"qt", "add", "--class", "camera", photo}, surroundings).status);
    EXPECT_TRUE(List(home).empty());
    EXPECT_TRUE(Exists(Documents() + "/settings/default.ovs"));
    EXPECT_TRUE(Exists(Documents() + "/qt/userqt.csv"));
}

TEST_F(General, Locale_ChangesNoByte) {
    const std::string photo = Photo("a.jpg");
    Surroundings c;
    c.environment = {{"LC_ALL", "C"}};
    Surroundings utf8;
    utf8.environment = {{"LC_ALL", "C.UTF-8"}};
    Surroundings comma;
    comma.environment = {{"LC_ALL", "de_DE.UTF-8"}};
    const std::string out = Orvelle({"info", photo}, c).out;
    EXPECT_TRUE(Contains(out, "1.33")) << out;
    EXPECT_EQ(out, Orvelle({"info", photo}, utf8).out);
    EXPECT_EQ(out, Orvelle({"info", photo}, comma).out);
}

TEST_F(General, NameLikeAnOption_IsTakenBehindTwoDashes) {
    Photo("-x.jpg");
    Surroundings surroundings;
    surroundings.folder = Path("");
    const Ended ended = Orvelle({"info", "--", "-x.jpg"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_TRUE(Contains(ended.out, Path("-x.jpg"))) << ended.out;
}

TEST_F(General, NamesThatMeanSomethingElsewhere_AreFiles) {
    for (std::string const name : {"[1]", "[a,b]", "{}", "++", "info", "%%", "a;b $(id) 'c' \"d\".jpg", " x", "@x"}) {
        Photo(name);
        Surroundings surroundings;
        surroundings.folder = Path("");
        const Ended ended = Orvelle({"info", name}, surroundings);
        EXPECT_EQ(0, ended.status) << name << ": " << ended.err;
        EXPECT_TRUE(Contains(ended.out, "Full Path                   " + Path(name))) << ended.out;
    }
}

TEST_F(General, NameWithLineBreak_AddsNoLine) {
    const Ended missing = Orvelle({"info", "a\norvelle: b.jpg: forged\x1b[2J"});
    EXPECT_EQ(3, missing.status);
    EXPECT_EQ("orvelle: a\\norvelle: b.jpg: forged\\x1b[2J: no such file\n", missing.err);
    const std::string photo = Photo("a\nFormat  PNG\x1b[2J.jpg");
    const Ended ended = Orvelle({"info", photo});
    EXPECT_EQ(0, ended.status);
    EXPECT_TRUE(Contains(ended.out, "a\\nFormat  PNG\\x1b[2J.jpg")) << ended.out;
    EXPECT_EQ(1u, CountOf(ended.out, "\nFormat  "));
}

TEST_F(General, NameNotInUtf8_IsExamined) {
    const std::string photo = Photo("caf\xe9.jpg");
    for (char const* const locale : {"C", "C.UTF-8"}) {
        Surroundings surroundings;
        surroundings.environment = {{"LC_ALL", locale}};
        const Ended ended = Orvelle({"info", photo}, surroundings);
        EXPECT_EQ(0, ended.status) << ended.err;
        EXPECT_TRUE(Contains(ended.out, "caf\\xe9.jpg")) << ended.out;
    }
}

TEST_F(General, Utf8Name_IsShownAsItIs) {
    const std::string photo = Photo("\xc3\xbc\xe6\xbc\xa2\xf0\x9f\x98\x80.jpg");
    Surroundings surroundings;
    surroundings.environment = {{"LC_ALL", "C"}};
    EXPECT_TRUE(Contains(Orvelle({"info", photo}, surroundings).out, "\xc3\xbc\xe6\xbc\xa2\xf0\x9f\x98\x80.jpg"));
}

TEST_F(General, ClosedPipe_EndsQuietly) {
    std::vector<std::string> arguments = {"--documents", Documents(), "info", "--format", "jsonl"};
    for (unsigned i = 0; i < 40; ++i) arguments.push_back(Photo(std::to_string(i) + ".jpg", 640, 480, i));
    Running running(arguments);
    EXPECT_TRUE(Contains(running.ReadLine(), "orvelle/info/1"));
    running.CloseOutput();
    const Ended ended = running.Wait();
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
}

TEST_F(General, FullDisk_EndsWithFive) {
    Surroundings surroundings;
    surroundings.outputTo = "/dev/full";
    const Ended ended = Orvelle({"info", Photo("a.jpg")}, surroundings);
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: standard output: can't be written: No space left on device\n", ended.err);
}

TEST_F(General, ClosedOutput_EndsWithFiveAndWritesNowhereElse) {
    const std::string photo = Photo("a.jpg");
    const std::string before = ReadFile(photo);
    Surroundings surroundings;
    surroundings.closeOutput = true;
    const Ended ended = Orvelle({"info", photo}, surroundings);
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: standard output: can't be written: Bad file descriptor\n", ended.err);
    EXPECT_EQ(before, ReadFile(photo));
    EXPECT_FALSE(Contains(ReadFile(Documents() + "/logs/current.txt"), "Acme Optics"));
}

// Many files, so that the signal comes in their midst; what is written by then is whole.
void Interrupt(int signal, int status, std::vector<std::string> arguments, std::string const& photo) {
    for (int i = 0; i < 3000; ++i) arguments.push_back(photo);
    Running running(arguments);
    ASSERT_TRUE(Contains(running.ReadLine(), "orvelle/info/1"));
    running.Signal(signal);
    const Ended ended = running.Wait();
    EXPECT_EQ(status, ended.status);
    EXPECT_EQ('\n', ended.out.empty() ? '\n' : ended.out.back());
    EXPECT_TRUE(Contains(ended.err, "orvelle: interrupted: ")) << ended.err;
    EXPECT_TRUE(Contains(ended.err, " of 3000 files done\n")) << ended.err;
}

TEST_F(General, Interrupt_EndsSoonWith130) {
    Interrupt(SIGINT, 130, {"--documents", Documents(), "info", "--format", "jsonl"}, Photo("a.jpg"));
}

TEST_F(General, Terminate_EndsSoonWith143) {
    Interrupt(SIGTERM, 143, {"--documents", Documents(), "info", "--format", "jsonl"}, Photo("a.jpg"));
}

TEST_F(General, Interrupt_KeepsAReportOfWhatWasDone) {
    const std::string report = Folder() + "/report.json";
    std::vector<std::string> arguments = {"--documents", Documents(), "info", "-o", report};
    for (int i = 0; i < 3000; ++i) arguments.push_back(Photo("a.jpg"));
    Running running(arguments);
    std::this_thread::sleep_for(std::chrono::seconds(3));
    running.Signal(SIGINT);
    EXPECT_EQ(130, running.Wait().status);
    const Ended parsed =
        RunProgram("python3", {"-c", "import json,sys; print(len(json.load(open(sys.argv[1]))) < 3000)", report});
    EXPECT_EQ("True\n", parsed.out) << parsed.err;
    EXPECT_EQ((std::vector<std::string>{"documents", "evidence", "report.json"}), List(Folder()));
}

TEST_F(General, UnwritableDocuments_AreNoReasonNotToExamine) {
    WriteFile(Folder() + "/documents", "a file");
    const std::string photo = Photo("a.jpg");
    const Ended ended = Orvelle({"info", photo});
    EXPECT_EQ(0, ended.status);
    EXPECT_TRUE(Contains(ended.out, "Acme Optics"));
    EXPECT_EQ("orvelle: " + Documents() + ": warning: the documents folder can't be written: no log, no cache\n",
              ended.err);
    EXPECT_EQ("", Orvelle({"--quiet", "info", photo}).err);
    EXPECT_EQ(5, Orvelle({"options", "set", "Width Multiple", "8"}).status);
    EXPECT_EQ(5, Orvelle({"qt", "add", "--class", "camera", photo}).status);
    EXPECT_EQ("a file", ReadFile(Folder() + "/documents"));
}

}  // namespace
