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

TEST_F(GermanProgram, PageOfABatch_IsGermanAndItsManifestEnglish) {
    const std::string page = Folder() + "/out/r.html";
    EXPECT_EQ(
        0, Orvelle({"batch", "--filter", "File Format", "--filter", "Error Level Analysis", "-o", page, Photo("a.jpg")})
               .status);
    const std::string report = clitest::ReadFile(page);
    EXPECT_TRUE(Contains(report, "Anzahl der Kanäle")) << report;
    EXPECT_TRUE(Contains(report, "Fehlerpegelanalyse")) << report;
    EXPECT_FALSE(Contains(report, "Number of Channels")) << report;
    const std::string manifest = clitest::ReadFile(page + ".manifest.json");
    EXPECT_TRUE(Contains(manifest, "\"File Format\"")) << manifest;
    // What is kept of a German run is shown in English to programs.
    const std::string table = Orvelle({"filter", "File Format", Photo("a.jpg"), "--format", "json"}).out;
    EXPECT_TRUE(Contains(table, "Number of Channels")) << table;
    EXPECT_FALSE(Contains(table, "Kan")) << table;
}

TEST_F(GermanProgram, PageOfAProject_IsGerman) {
    const std::string project = Folder() + "/case.orv";
    ASSERT_EQ(0, Orvelle({"project", "new", project}).status);
    ASSERT_EQ(
        0,
        Orvelle({"bookmark", "add", project, "--filter", "Error Level Analysis", "--evidence", Photo("a.jpg")}).status);
    EXPECT_EQ(0, Orvelle({"project", "report", project, "-o", Folder() + "/case.html"}).status);
    const std::string page = clitest::ReadFile(Folder() + "/case.html");
    EXPECT_TRUE(Contains(page, "Orvelle: Bericht")) << page;
    EXPECT_TRUE(Contains(page, "Qualität")) << page;
}

TEST_F(GermanProgram, BatchAsTabSeparatedText_StaysEnglish) {
    const std::string report = Folder() + "/out/r.tsv";
    EXPECT_EQ(0, Orvelle({"batch", "--filter", "File Format", "-o", report, Photo("a.jpg")}).status);
    const std::string lines = clitest::ReadFile(report);
    EXPECT_TRUE(Contains(lines, "\tFile Format\t")) << lines;
    EXPECT_FALSE(Contains(lines, "Dateiformat")) << lines;
}

TEST_F(GermanProgram, ReportThatIsAPageByItsWholeName_IsGermanToo) {
    const std::string report = Folder() + "/out/html";
    const clitest::Ended ended = Orvelle({"batch", "--filter", "File Format", "-o", report, Photo("a.jpg")});
    EXPECT_EQ(0, ended.status);
    EXPECT_FALSE(Contains(ended.err, "tab-separated")) << ended.err;
    EXPECT_TRUE(Contains(clitest::ReadFile(report), "Anzahl der Kanäle")) << clitest::ReadFile(report);
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
