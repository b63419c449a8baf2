// SPDX-License-Identifier: Apache-2.0
// The program in German.
#include "tests/cli/program.h"

namespace {

using clitest::Contains;

class GermanProgram : public clitest::CliTest {
protected:
    GermanProgram() { EXPECT_EQ(0, Orvelle({"options", "set", "Language", "German"}).status); }
};

class EnglishProgram : public clitest::CliTest {};

}  // namespace

TEST_F(GermanProgram, Table_HasGermanHeadings) {
    const std::string table = Orvelle({"info", Photo("a.jpg")}).out;
    EXPECT_TRUE(Contains(table, "Dateiname ")) << table;
    EXPECT_TRUE(Contains(table, "\nAnzahl der Kanäle ")) << table;
    EXPECT_TRUE(Contains(table, "\nHashwert der JPEG-Quantisierungstabellen ")) << table;
    EXPECT_TRUE(Contains(table, "?Auflösung ist niedrig")) << table;
    EXPECT_TRUE(Contains(table, "Warnungen: ")) << table;
    EXPECT_FALSE(Contains(table, "Number of Channels")) << table;
}

TEST_F(GermanProgram, Page_HasGermanHeadings) {
    const std::string page = Orvelle({"info", Photo("a.jpg"), "--format", "html"}).out;
    EXPECT_TRUE(Contains(page, "Seitenverhältnis")) << page;
    EXPECT_FALSE(Contains(page, "Aspect Ratio")) << page;
}

TEST_F(GermanProgram, Comparison_KeepsTheMarksInFront) {
    const std::string table = Orvelle({"compare", Photo("a.jpg"), Photo("b.jpg", 320, 240)}).out;
    EXPECT_TRUE(Contains(table, "!Verschieden")) << table;
    EXPECT_TRUE(Contains(table, "Unterschiede: ")) << table;
}

TEST_F(GermanProgram, FormatsForPrograms_StayEnglish) {
    const std::string photo = Photo("a.jpg");
    for (char const* const format : {"csv", "tsv", "ssv", "jsonl"}) {
        const std::string text = Orvelle({"info", photo, "--format", format}).out;
        EXPECT_TRUE(Contains(text, "Number of Channels")) << text;
        EXPECT_TRUE(Contains(text, "Resolution is low")) << text;
        EXPECT_FALSE(Contains(text, "Kan")) << text;
    }
}

TEST_F(GermanProgram, SettingAnOption_KeepsTheLanguageAndTheConfigurations) {
    const std::string before = Orvelle({"options", "get", "Default Configurations"}).out;
    EXPECT_TRUE(Contains(before, "Error Level Analysis-90")) << before;
    EXPECT_EQ(0, Orvelle({"options", "set", "Language", "German"}).status);
    EXPECT_EQ(before, Orvelle({"options", "get", "Default Configurations"}).out);
    EXPECT_EQ("German\n", Orvelle({"options", "get", "Language"}).out);
}

TEST_F(EnglishProgram, WithoutALanguage_TablesAreEnglishInAnyLocale) {
    clitest::Surroundings german;
    german.environment = {{"LC_ALL", "de_DE.UTF-8"}, {"LANGUAGE", "de"}};
    const std::string table = Orvelle({"info", Photo("a.jpg")}, german).out;
    EXPECT_TRUE(Contains(table, "\nNumber of Channels ")) << table;
    EXPECT_TRUE(Contains(table, "Warnings: ")) << table;
}
