// SPDX-License-Identifier: Apache-2.0
// orvelle exif: the rows of a file's metadata, names from lists, what is common to the commands on tables.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/pictures.h"
#include "tests/cli/program.h"
#include "tests/orvcore/photos.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Exif : public CliTest {
protected:
    std::string Camera(std::string const& name, support::CameraFacts const& facts) const {
        return Write(name, sample::InsertExif(support::EncodeJpeg(64, 48), support::MakeExif(facts)));
    }
};

support::CameraFacts Dated() {
    support::CameraFacts facts;
    facts.modifyDate = "2021:03:04 05:06:07";
    facts.originalDate = "2020:01:02 03:04:05";
    return facts;
}

TEST_F(Exif, Rows_AreNamedByTheirGroupAndTag) {
    const std::string photo = Camera("a.jpg", Dated());
    const Ended ended = Orvelle({"exif", photo, "--format", "csv"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
    EXPECT_EQ(0u, ended.out.find("Path,Slot,Title,Value,Warnings\r\n"));
    EXPECT_TRUE(Contains(ended.out, photo + ",evidence,IFD0:Make,Haldenmann,\r\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, photo + ",evidence,IFD0:Model,Lumora 60,\r\n"));
    EXPECT_TRUE(Contains(ended.out, photo + ",evidence,IFD0:ModifyDate,2021:03:04 05:06:07,\r\n"));
    EXPECT_TRUE(Contains(ended.out, photo + ",evidence,ExifIFD:DateTimeOriginal,2020:01:02 03:04:05,\r\n"));
}

TEST_F(Exif, Text_HasOneLineForEachTag) {
    support::CameraFacts facts;
    facts.make = "Line\nbreak";
    facts.model = "  Blank in front";
    const std::string out = Orvelle({"exif", Camera("a.jpg", facts)}).out;
    const std::vector<std::string> lines = Lines(out);
    ASSERT_LE(2U, lines.size());
    // Blanks in front of a value move no other to the right.
    EXPECT_EQ("IFD0:Make", lines[0].substr(0, 9));
    const size_t column = lines[0].find("Line\\nbreak");
    ASSERT_NE(std::string::npos, column) << out;
    EXPECT_EQ("IFD0:Model" + std::string(column - 10, ' ') + "  Blank in front", lines[1]);
    for (std::string const& line : lines) EXPECT_EQ(' ', line.at(column - 1)) << line;
    EXPECT_FALSE(Contains(out, "Warnings"));
}

TEST_F(Exif, FileWithoutMetadata_HasNoRows) {
    const std::string path = Write("a.ppm", DottedPpm(0, 0, 128));
    const Ended text = Orvelle({"exif", path});
    EXPECT_EQ(0, text.status) << text.err;
    EXPECT_EQ("", text.out);
    EXPECT_EQ("[]", json::parse(Orvelle({"exif", path, "--format", "json"}).out)[0]["result"]["rows"].dump());
}

TEST_F(Exif, AllFormats_HaveTheSameCells) {
    const std::string photo = Camera("a.jpg", Dated());
    for (char const* const format : {"text", "json", "jsonl", "csv", "tsv", "ssv", "html"}) {
        const Ended ended = Orvelle({"exif", photo, "--format", format});
        EXPECT_EQ(0, ended.status) << format;
        for (char const* const cell : {"IFD0:Make", "Haldenmann", "ExifIFD:DateTimeOriginal", "2020:01:02 03:04:05"}) {
            EXPECT_TRUE(Contains(ended.out, cell)) << format << ": " << cell;
        }
    }
}

TEST_F(Exif, Values_AreThoseOfExifToolInEveryLocale) {
    support::CameraFacts facts = Dated();
    facts.make = "Caf\xc3\xa9 Optik";
    const std::string photo = Camera("\xc3\xbc.jpg", facts);
    Surroundings c;
    c.environment = {{"LC_ALL", "C"}};
    const json rows = json::parse(Orvelle({"exif", photo, "--format", "json"}, c).out)[0]["result"]["rows"];
    const std::string expected = Lines(RunProgram("exiftool", {"-s3", "-IFD0:Make", photo}).out).at(0);
    std::string found;
    for (json const& row : rows) {
        if (row["key"] == "IFD0:Make") found = row["value"];
    }
    EXPECT_EQ(expected, found);
}

TEST_F(Exif, FailOn_NeverFiresForATableWithoutFindings) {
    const std::string photo = Camera("a.jpg", Dated());
    EXPECT_EQ(0, Orvelle({"exif", photo, "--fail-on", "soft"}).status);
    EXPECT_EQ(2, Orvelle({"exif", photo, "--fail-on", "medium"}).status);
}

TEST_F(Exif, FailingFiles_AreToldAndTheOthersDone) {
    const std::string good = Camera("good.jpg", Dated());
    const std::string text = Write("text.jpg", "no picture at all, whatever its name says");
    const Ended ended = Orvelle({"exif", text, good, Path("none.jpg"), "--format", "jsonl"});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ(1u, Lines(ended.out).size());
    ASSERT_EQ(2u, Lines(ended.err).size());
    EXPECT_EQ(0u, ended.err.find("orvelle: " + text + ": File format not supported."));
    EXPECT_EQ("orvelle: " + Path("none.jpg") + ": no such file", Lines(ended.err)[1]);
}

TEST_F(Exif, FilesFrom_ReadsNamesOneALine) {
    const std::string a = Camera("a b.jpg", Dated());
    const std::string b = Camera("b.jpg", Dated());
    Surroundings surroundings;
    surroundings.input = a + "\n\n" + b + "\n";
    const Ended ended = Orvelle({"exif", "--files-from", "-", "--format", "jsonl"}, surroundings);
    EXPECT_EQ(0, ended.status) << ended.err;
    ASSERT_EQ(2u, Lines(ended.out).size());
    EXPECT_EQ(a, json::parse(Lines(ended.out)[0])["input"]["path"]);
    EXPECT_EQ(b, json::parse(Lines(ended.out)[1])["input"]["path"]);
}

TEST_F(Exif, FilesFrom_TakesNamesEndedByZeroBytes) {
    const std::string odd = Camera("line\nbreak.jpg", Dated());
    const std::string list = Write("list", odd + std::string(1, '\0'));
    const Ended ended = Orvelle({"exif", "--files-from", list, "--format", "jsonl"});
    EXPECT_EQ(0, ended.status) << ended.err;
    ASSERT_EQ(1u, Lines(ended.out).size());
    EXPECT_EQ(odd, json::parse(ended.out)["input"]["path"]);
}

TEST_F(Exif, FilesFrom_MissingOrEmptyListIsTold) {
    const Ended missing = Orvelle({"exif", "--files-from", Path("none")});
    EXPECT_EQ(3, missing.status);
    EXPECT_EQ("orvelle: " + Path("none") + ": no such file\n", missing.err);
    const Ended empty = Orvelle({"exif", "--files-from", Write("list", ""), "--format", "json"});
    EXPECT_EQ(0, empty.status);
    EXPECT_EQ("[]\n", empty.out);
    const Ended none = Orvelle({"exif"});
    EXPECT_EQ(2, none.status);
    EXPECT_EQ("orvelle: FILE: is required, or --files-from\n", none.err);
}

}  // namespace
