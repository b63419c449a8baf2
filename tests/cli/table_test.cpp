// SPDX-License-Identifier: Apache-2.0
// orvelle table, multi and plugin.
#include <algorithm>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class Table : public CliTest {
protected:
    // A width that is no multiple of 4 gives a hard warning.
    std::string Flagged(std::string const& name) const {
        return Write(name, ReadFile(Photo("source/s.jpg", 641, 480)));
    }
};

class Multi : public Table {};
class Plugin : public Table {};

TEST_F(Table, Folder_GivesAHeaderAndARowForEachFile) {
    Photo("f/a.jpg");
    Photo("f/b.jpg", 320, 240, 2);
    const std::string output = Folder() + "/table.csv";
    const Ended ended = Orvelle({"table", Path("f"), "--output", output});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("", ended.out);
    const std::string text = ReadFile(output);
    EXPECT_EQ(0U, text.find("#Id,Image,Filename,"));
    EXPECT_TRUE(Contains(text, ",Warnings (hard),Warnings (soft)\r\n"));
    EXPECT_TRUE(Contains(text, "*IMG*0,a.jpg,")) << text;
    EXPECT_TRUE(Contains(text, "*IMG*1,b.jpg,")) << text;
}

TEST_F(Table, StatusOnly_HasTwoColumns) {
    Photo("f/a.jpg");
    Flagged("f/b.png");
    const Ended ended = Orvelle({"table", Path("f"), "--status-only", "--format", "csv"});
    EXPECT_EQ("Ok,*IMG*0\r\nWarning,*IMG*1\r\n", ended.out);
}

TEST_F(Table, FlaggedFolder_GetsTheFilesWithAHardWarning) {
    Photo("f/a.jpg");
    const std::string flagged = Flagged("f/b.png");
    const std::string bytes = ReadFile(flagged);
    const std::string target = Folder() + "/flagged";
    const std::string output = Folder() + "/t.csv";
    const Ended dry = Orvelle({"table", Path("f"), "--flagged-folder", target, "--dry-run", "-o", output});
    EXPECT_EQ(flagged + " -> " + target + "/b.png\n", dry.out);
    EXPECT_TRUE(Exists(flagged));
    EXPECT_FALSE(Exists(target));
    const Ended moved = Orvelle({"table", Path("f"), "--flagged-folder", target, "-o", output, "--force"});
    EXPECT_EQ(dry.out, moved.out);
    EXPECT_FALSE(Exists(flagged));
    EXPECT_EQ(bytes, ReadFile(target + "/b.png"));
    EXPECT_TRUE(Exists(Path("f/a.jpg")));
}

TEST_F(Table, NameThatIsTaken_GetsANumber) {
    Flagged("f/b.png");
    const std::string target = Folder() + "/flagged";
    std::filesystem::create_directories(target);
    WriteFile(target + "/b.png", "another");
    const std::string output = Folder() + "/t.csv";
    for (char const* dry : {"--dry-run", ""}) {
        std::vector<std::string> arguments = {"table", Path("f"), "--flagged-folder", target, "-o", output, "--force"};
        if (*dry != '\0') arguments.emplace_back(dry);
        EXPECT_EQ(Path("f/b.png") + " -> " + target + "/b (2).png\n", Orvelle(arguments).out);
    }
    EXPECT_EQ("another", ReadFile(target + "/b.png"));
    EXPECT_TRUE(Exists(target + "/b (2).png"));
}

TEST_F(Table, BrokenFile_HasNoRowAndStays) {
    const std::string broken = Write("f/a.jpg", "no picture");
    Photo("f/b.jpg");
    const std::string clean = Folder() + "/clean";
    const Ended ended = Orvelle({"table", Path("f"), "--clean-folder", clean, "--format", "jsonl"});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ(1U, CountOf(ended.out, "\n"));
    EXPECT_TRUE(Exists(broken));
    EXPECT_TRUE(Exists(clean + "/b.jpg"));
}

TEST_F(Table, UnknownEnding_IsRefusedFirst) {
    const Ended ended = Orvelle({"table", Path("none"), "--output", Folder() + "/t.xml"});
    EXPECT_EQ(2, ended.status);
    EXPECT_TRUE(Contains(ended.err, ".csv .tsv .ssv")) << ended.err;
    EXPECT_FALSE(Exists(Folder() + "/t.xml"));
}

TEST_F(Table, JsonLines_ComeFromAListOfNames) {
    const std::string a = Photo("a.jpg");
    const std::string b = Photo("b.jpg", 320, 240, 2);
    Surroundings surroundings;
    surroundings.input = a + "\n" + b + "\n";
    const Ended ended = Orvelle({"table", "--files-from", "-", "--format", "jsonl"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    const std::vector<std::string> lines = Lines(ended.out);
    ASSERT_EQ(2U, lines.size());
    EXPECT_EQ("orvelle/table/1", nlohmann::json::parse(lines[0])["schema"]);
    EXPECT_EQ(b, nlohmann::json::parse(lines[1])["input"]["path"]);
    EXPECT_EQ("320x240", nlohmann::json::parse(lines[1])["cells"]["Image Displayed Size"]);
}

TEST_F(Table, Counts_AreThoseOfInfo) {
    // Two findings in the row of the size, one in each of those of the thumbnail, the make and the model.
    const std::string odd = Write("odd.jpg", support::EncodeJpeg(1001, 751));
    const auto table = nlohmann::json::parse(Orvelle({"table", odd, "--format", "jsonl"}).out);
    EXPECT_EQ(4, table["counts"]["hard"]);
    EXPECT_EQ("4", table["cells"]["Warnings (hard)"]);
    for (char const* const level : {"-q", "-x"}) {
        const auto info = nlohmann::json::parse(Orvelle({"info", odd, level, "--format", "json"}).out);
        EXPECT_EQ(4, info[0]["counts"]["hard"]) << level;
        EXPECT_EQ(table["counts"]["soft"], info[0]["counts"]["soft"]) << level;
        EXPECT_EQ(2, std::count_if(info[0]["warnings"].begin(), info[0]["warnings"].end(),
                                   [](auto const& warning) { return warning["row"] == "image_encoded_size"; }));
    }
    EXPECT_TRUE(Contains(Orvelle({"info", odd}).out, "\nWarnings: 4 hard, "));
    const std::string map = Write("map.json", nlohmann::json{{odd, "1"}}.dump());
    const auto plugin = nlohmann::json::parse(Orvelle({"plugin", "analysis", "--map", map}).out);
    const int all = 4 + table["counts"]["soft"].get<int>();
    EXPECT_TRUE(Contains(plugin[0]["text"], "\r\nWarnings: " + std::to_string(all) + "\r\n")) << plugin;
    EXPECT_EQ(1, Orvelle({"table", odd, "--fail-on", "hard"}).status);
}

TEST_F(Table, EachFormat_IsWritten) {
    Photo("f/a.jpg");
    EXPECT_EQ(1U, nlohmann::json::parse(Orvelle({"table", Path("f"), "--format", "json"}).out).size());
    EXPECT_TRUE(Contains(Orvelle({"table", Path("f"), "--format", "html"}).out, "</table>"));
    EXPECT_TRUE(Contains(Orvelle({"table", Path("f")}).out, "Warnings (hard)"));
}

TEST_F(Multi, Differences_AreMarkedAndCounted) {
    const std::string a = Photo("f/a.jpg");
    Photo("f/b.jpg", 320, 240, 2);
    const Ended ended = Orvelle({"multi", a, Path("f"), "--format", "json"});
    EXPECT_EQ(0, ended.status) << ended.err;
    const auto rows = nlohmann::json::parse(ended.out);
    ASSERT_EQ(2U, rows.size());
    EXPECT_EQ("0", rows[0]["cells"]["#Id"]);
    EXPECT_EQ("a.jpg", rows[0]["cells"]["Filename"]);
    EXPECT_EQ(0, rows[0]["differences"]);
    EXPECT_EQ("!320x240", rows[1]["cells"]["Image Displayed Size"]);
    EXPECT_EQ(std::to_string(rows[1]["differences"].get<int>()), rows[1]["cells"]["Differences"]);
    EXPECT_GT(rows[1]["differences"], 0);
    EXPECT_EQ("b.jpg", rows[1]["cells"]["Filename"]);
}

TEST_F(Multi, BrokenEvidence_EndsTheRun) {
    EXPECT_EQ(3, Orvelle({"multi", Write("a.jpg", "x"), Photo("b.jpg")}).status);
    EXPECT_EQ(2, Orvelle({"multi", Path("a.jpg")}).status);
}

TEST_F(Multi, EachFormat_IsWritten) {
    const std::string a = Photo("f/a.jpg");
    Photo("f/b.jpg", 320, 240, 2);
    const Ended csv = Orvelle({"multi", a, Path("f"), "--format", "csv"});
    EXPECT_EQ(3U, Lines(csv.out).size()) << csv.out;
    EXPECT_EQ(0U, csv.out.find("#Id,"));
    EXPECT_TRUE(Contains(Orvelle({"multi", a, Path("f"), "--format", "html"}).out, "</table>"));
    EXPECT_TRUE(Contains(Orvelle({"multi", a, Path("f")}).out, "b.jpg"));
    const std::string file = Folder() + "/multi.csv";
    EXPECT_EQ(0, Orvelle({"multi", a, Path("f"), "-o", file}).status);
    EXPECT_EQ(csv.out, ReadFile(file));
    EXPECT_EQ(5, Orvelle({"multi", a, Path("f"), "-o", file}).status) << "it exists";
}

TEST_F(Multi, FileThatCannotBeRead_IsToldAndTheOthersFollow) {
    const std::string a = Photo("a.jpg");
    const std::string broken = Write("b.jpg", "x");
    const Ended ended = Orvelle({"multi", a, broken, Path("none.jpg"), Photo("c.jpg"), "--format", "json"});
    EXPECT_EQ(3, ended.status);
    EXPECT_TRUE(Contains(ended.err, broken)) << ended.err;
    EXPECT_TRUE(Contains(ended.err, "none.jpg")) << ended.err;
    const auto rows = nlohmann::json::parse(ended.out);
    ASSERT_EQ(2U, rows.size()) << rows;
    EXPECT_EQ("c.jpg", rows[1]["cells"]["Filename"]);
    EXPECT_EQ("0", rows[1]["cells"]["Differences"]) << "names don't count";
}

TEST_F(Multi, ListOfNames_StandsForFiles) {
    const std::string a = Photo("a.jpg");
    Surroundings surroundings;
    surroundings.input = Photo("b.jpg", 320, 240, 2) + "\n" + Photo("c.jpg", 320, 240, 3) + "\n";
    const Ended ended = Orvelle({"multi", a, "--files-from", "-", "--format", "json"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(3U, nlohmann::json::parse(ended.out).size());
}

TEST_F(Plugin, Analysis_AnswersForEachFile) {
    const std::string a = Photo("a.jpg");
    const std::string flagged = Flagged("b.png");
    const nlohmann::json map = {{a, "id-1"}, {flagged, "id-2"}};
    const Ended ended = Orvelle({"--verbose", "plugin", "analysis", "--map", Write("map.json", map.dump())});
    EXPECT_EQ(0, ended.status) << ended.err;
    const auto answer = nlohmann::json::parse(ended.out);
    ASSERT_EQ(2U, answer.size());
    EXPECT_EQ(a, answer[0]["path"]);
    EXPECT_EQ("id-1", answer[0]["identifier"]);
    EXPECT_EQ("id-2", answer[1]["identifier"]);
    EXPECT_EQ(false, answer[1]["no_warnings"]);
    EXPECT_TRUE(Contains(answer[1]["text"], "Filename: b.png"));
}

TEST_F(Plugin, EmptyMap_GivesAnEmptyAnswer) {
    Surroundings surroundings;
    surroundings.input = "{}";
    const Ended ended = Orvelle({"plugin", "analysis", "--map", "-"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(nlohmann::json::array(), nlohmann::json::parse(ended.out));
    const Ended batch = Orvelle({"plugin", "batch", "--map", "-", "--output", Folder() + "/out/r.html"}, surroundings);
    EXPECT_EQ(nlohmann::json::array(), nlohmann::json::parse(batch.out));
}

TEST_F(Plugin, MissingFile_HasAnEntryAllTheSame) {
    const nlohmann::json map = {{Photo("a.jpg"), "1"}, {Path("missing.jpg"), "2"}, {Write("c.jpg", "x"), "3"}};
    const Ended ended = Orvelle({"plugin", "analysis", "--map", Write("map.json", map.dump())});
    EXPECT_EQ(3, ended.status);
    const auto answer = nlohmann::json::parse(ended.out);
    ASSERT_EQ(3U, answer.size());
    EXPECT_EQ(false, answer[2]["no_warnings"]);
    EXPECT_TRUE(Contains(ended.err, "missing.jpg"));
}

TEST_F(Plugin, WhatIsNoMap_IsRefused) {
    for (char const* text : {"", "[]", "{\"a\":1}", "\"x\"", "{\"a\":null}"}) {
        const Ended ended = Orvelle({"plugin", "analysis", "--map", Write("map.json", text)});
        EXPECT_EQ(2, ended.status) << text;
        EXPECT_EQ("", ended.out);
        EXPECT_TRUE(Contains(ended.err, "--map")) << ended.err;
    }
}

TEST_F(Plugin, Batch_AnswersWithSeverityAndReport) {
    const std::string a = Photo("a.jpg");
    const std::string flagged = Flagged("b.png");
    const nlohmann::json map = {{a, "id-1"}, {flagged, "id-2"}};
    const std::string report = Folder() + "/out/r.html";
    const Ended ended = Orvelle(
        {"plugin", "batch", "--filter", "File Format", "--map", Write("map.json", map.dump()), "--output", report});
    EXPECT_EQ(0, ended.status) << ended.err;
    const auto answer = nlohmann::json::parse(ended.out);
    ASSERT_EQ(2U, answer.size());
    EXPECT_EQ(1, answer[1]["severity"]);
    EXPECT_EQ("id-2", answer[1]["identifier"]);
    EXPECT_TRUE(Contains(answer[1]["text"], report));
    EXPECT_TRUE(Exists(report));
}

TEST_F(Plugin, BatchWithAMissingAndABrokenFile_AnswersForAll) {
    const std::string missing = Path("missing.jpg");
    const nlohmann::json map = {{Photo("a.jpg"), "1"}, {missing, "2"}, {Write("n.jpg", "x"), "3"}};
    const Ended ended = Orvelle({"plugin", "batch", "--filter", "File Format", "--map", Write("map.json", map.dump()),
                                 "--output", Folder() + "/out/r.html"});
    EXPECT_EQ(3, ended.status) << ended.err;
    EXPECT_TRUE(Contains(ended.err, "missing.jpg")) << ended.err;
    const auto answer = nlohmann::json::parse(ended.out);
    ASSERT_EQ(3U, answer.size()) << answer;
    std::map<std::string, int> severities;
    for (auto const& entry : answer) severities[entry["identifier"]] = entry["severity"];
    EXPECT_EQ(3U, severities.size());
    EXPECT_GT(severities["2"], 0);
    EXPECT_GT(severities["3"], 0);
    EXPECT_TRUE(Exists(Folder() + "/out/r.html"));
}

TEST_F(Plugin, Bytes_AreTheSameInEveryLocale) {
    const nlohmann::json map = {{Photo("\xe5\x86\x99 \"q\" \\ \xf0\x9f\x93\xb7.jpg", 64, 48), "\xc3\xa9\x01"}};
    const std::string file = Write("map.json", map.dump());
    Surroundings plain;
    plain.environment = {{"LC_ALL", "C"}};
    Surroundings utf8;
    utf8.environment = {{"LC_ALL", "C.UTF-8"}};
    const Ended ended = Orvelle({"plugin", "analysis", "--map", file}, plain);
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("\xc3\xa9\x01", nlohmann::json::parse(ended.out)[0]["identifier"]);
    EXPECT_EQ(ended.out, Orvelle({"plugin", "analysis", "--map", file}, utf8).out);
}

}  // namespace
