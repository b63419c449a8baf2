// SPDX-License-Identifier: Apache-2.0
// orvelle options: the settings file.
#include <sys/stat.h>

#include <filesystem>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class Options : public CliTest {
protected:
    std::string Settings() const { return Documents() + "/settings/default.ovs"; }
};

TEST_F(Options, List_ShowsGroupsAndNames) {
    const Ended ended = Orvelle({"options", "list", "--format", "csv"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
    EXPECT_TRUE(Contains(ended.out, "Group,Name,Value,Takes,Description\r\n"));
    EXPECT_TRUE(Contains(ended.out, "General Settings,JPG Save Quality,90,a whole number from 1 to 100,\r\n"));
    EXPECT_TRUE(Contains(ended.out, "General Settings,Processing Cache,Enabled,\"one of: Enabled, Disabled\",\r\n"));
    EXPECT_TRUE(Contains(ended.out, "File Format,Format Whitelist,JPEG; TIFF; RAW,one or more texts,\r\n"));
    EXPECT_FALSE(Exists(Settings()));
}

TEST_F(Options, SetThenGet_GivesTheValue) {
    EXPECT_EQ(0, Orvelle({"options", "set", "JPG Save Quality", "75"}).status);
    EXPECT_EQ("75\n", Orvelle({"options", "get", "JPG Save Quality"}).out);
    EXPECT_EQ(0, Orvelle({"options", "set", "general settings/jpg_save_quality", "60"}).status);
    EXPECT_EQ("60\n", Orvelle({"options", "get", "jpgsavequality"}).out);
    EXPECT_EQ(0, Orvelle({"options", "set", "Threshold for PRNU Camera Identification", "12.5"}).status);
    EXPECT_EQ("12.5\n", Orvelle({"options", "get", "Threshold for PRNU Camera Identification"}).out);
    // The same again is no failure.
    EXPECT_EQ(0, Orvelle({"options", "set", "JPG Save Quality", "60"}).status);
}

TEST_F(Options, Set_StandsInTheFileUnderGroupAndName) {
    EXPECT_EQ(0, Orvelle({"options", "set", "Image Cache Format", "JPG"}).status);
    const Ended read = RunProgram(
        "python3",
        {"-c", "import json,sys; print(json.load(open(sys.argv[1]))['General Settings']['Image Cache Format'])",
         Settings()});
    EXPECT_EQ("JPG\n", read.out) << read.err;
    EXPECT_EQ((std::vector<std::string>{"default.ovs"}), List(Documents() + "/settings"));
}

TEST_F(Options, List_TakesSeveralValues) {
    EXPECT_EQ(0, Orvelle({"options", "set", "Format Whitelist", "JPEG", "[PNG,GIF]", "\xc3\xbc"}).status);
    EXPECT_EQ("JPEG\n[PNG,GIF]\n\xc3\xbc\n", Orvelle({"options", "get", "Format Whitelist"}).out);
    EXPECT_EQ(0, Orvelle({"options", "set", "Format Whitelist", ""}).status);
    EXPECT_EQ("", Orvelle({"options", "get", "Format Whitelist"}).out);
}

TEST_F(Options, Set_CountsInTheNextExamination) {
    const std::string photo = Photo("a.jpg", 644, 480);
    EXPECT_FALSE(Contains(Orvelle({"info", photo}).out, "Odd width"));
    EXPECT_EQ(0, Orvelle({"options", "set", "Width Multiple", "8"}).status);
    EXPECT_TRUE(Contains(Orvelle({"info", photo}).out, "!Odd width (644 is not multiple of 8)"));
}

TEST_F(Options, WrongValue_IsRefusedWithWhatItTakes) {
    for (auto const& [name, value, takes] : std::vector<std::tuple<std::string, std::string, std::string>>{
             {"JPG Save Quality", "101", "a whole number from 1 to 100"},
             {"JPG Save Quality", "high", "a whole number from 1 to 100"},
             {"JPG Save Quality", "", "a whole number from 1 to 100"},
             {"Width Multiple", "4x", "a whole number"},
             {"Processing Cache", "Maybe", "one of: Enabled, Disabled"},
             {"Threshold for PRNU Camera Identification", "nan", "a number"}}) {
        const Ended ended = Orvelle({"options", "set", name, value});
        EXPECT_EQ(2, ended.status);
        EXPECT_EQ("orvelle: " + name + ": takes " + takes + "\n", ended.err);
    }
    EXPECT_EQ(2, Orvelle({"options", "set", "JPG Save Quality", "80", "90"}).status);
    EXPECT_FALSE(Exists(Settings()));
}

TEST_F(Options, UnknownName_IsWrongUsage) {
    for (char const* const verb : {"get", "set"}) {
        const Ended ended = Orvelle({"options", verb, "Nonsense", "1"});
        EXPECT_EQ(2, ended.status);
    }
    EXPECT_EQ("orvelle: Nonsense: no such option; \"orvelle options list\" names them all\n",
              Orvelle({"options", "get", "Nonsense"}).err);
}

TEST_F(Options, Key_IsReadFromStandardInputAndNotListed) {
    Surroundings surroundings;
    surroundings.input = "SECRET-123\n";
    const Ended set = Orvelle({"options", "set", "TinEye API Key", "-"}, surroundings);
    EXPECT_EQ(0, set.status);
    EXPECT_EQ("", set.err);
    EXPECT_EQ("SECRET-123\n", Orvelle({"options", "get", "TinEye API Key"}).out);
    for (char const* const format : {"text", "json", "csv", "html"}) {
        const std::string out = Orvelle({"options", "list", "--format", format}).out;
        EXPECT_FALSE(Contains(out, "SECRET")) << format;
        EXPECT_TRUE(Contains(out, "(set)")) << format;
    }
    const Ended shown = Orvelle({"options", "set", "TinEye API Key", "OTHER"});
    EXPECT_EQ(0, shown.status);
    EXPECT_TRUE(Contains(shown.err, "warning")) << shown.err;
    EXPECT_FALSE(Contains(shown.err, "OTHER"));
}

TEST_F(Options, BrokenFile_StaysAsItWasWithoutForce) {
    std::filesystem::create_directories(Documents() + "/settings");
    WriteFile(Settings(), "]broken");
    EXPECT_EQ(0, Orvelle({"options", "get", "JPG Save Quality"}).status);
    const Ended ended = Orvelle({"options", "set", "JPG Save Quality", "75"});
    EXPECT_EQ(3, ended.status);
    EXPECT_TRUE(Contains(ended.err, "is broken and stays as it was (--force replaces it)\n")) << ended.err;
    EXPECT_EQ("]broken", ReadFile(Settings()));
    EXPECT_EQ(0, Orvelle({"options", "set", "JPG Save Quality", "75", "--force"}).status);
    EXPECT_EQ("75\n", Orvelle({"options", "get", "JPG Save Quality"}).out);
}

TEST_F(Options, UnwritablePlace_EndsWithFive) {
    std::filesystem::create_directories(Documents());
    WriteFile(Documents() + "/settings", "a file where the folder should be");
    const Ended ended = Orvelle({"options", "set", "JPG Save Quality", "75"});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: " + Settings() + ": can't be written\n", ended.err);
}

}  // namespace
