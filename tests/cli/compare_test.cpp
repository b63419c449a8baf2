// SPDX-License-Identifier: Apache-2.0
// orvelle compare: what differs between two files, and nothing else.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/pictures.h"
#include "tests/cli/program.h"
#include "tests/orvcore/photos.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Compare : public CliTest {
protected:
    std::string Camera(std::string const& name, std::string const& date, int width = 640, int height = 480,
                       unsigned seed = 1) const {
        support::CameraFacts facts;
        facts.modifyDate = date;
        facts.originalDate = date;
        return Write(name, sample::InsertExif(support::EncodeJpeg(width, height, 90, seed), support::MakeExif(facts)));
    }

    // Names of the rows with a mark, and the mark.
    std::map<std::string, std::string> Marked(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "compare");
        arguments.insert(arguments.end(), {"--format", "json"});
        const Ended ended = Orvelle(arguments);
        EXPECT_EQ(0, ended.status) << ended.err;
        std::map<std::string, std::string> marks;
        const json value = json::parse(ended.out);
        for (json const& row : value["rows"]) {
            const std::string mark = row["comparison"];
            if (mark.rfind('!', 0) == 0 || mark.rfind('?', 0) == 0) marks[row["name"]] = mark;
        }
        return marks;
    }
};

using Marks = std::map<std::string, std::string>;

TEST_F(Compare, TwoPhotosOfOneCamera_DifferInTheirDatesAlone) {
    const std::string a = Camera("a.jpg", "2020:01:02 03:04:05", 640, 480, 1);
    const std::string b = Camera("b.jpg", "2020:01:02 03:09:59", 640, 480, 2);
    EXPECT_EQ((Marks{{"IFD0:ModifyDate", "?Different"}, {"ExifIFD:DateTimeOriginal", "?Different"}}),
              Marked({a, b, "--table", "exif"}));
    for (char const* const table : {"info", "jpeg", "huffman"}) {
        EXPECT_EQ(Marks(), Marked({a, b, "--table", table})) << table;
    }
    EXPECT_EQ(0, Orvelle({"compare", a, b, "--table", "exif", "--fail-on", "hard"}).status);
    EXPECT_EQ(1, Orvelle({"compare", a, b, "--table", "exif", "--fail-on", "soft"}).status);
    EXPECT_EQ(0, Orvelle({"compare", a, b, "--fail-on", "soft"}).status);
}

TEST_F(Compare, PhotoAndItsMessengerCopy_ShowTheTrail) {
    const std::string photo = Camera("a.jpg", "2020:01:02 03:04:05", 3200, 2400);
    const std::string copy = Write("IMG-20200102-WA0001.jpg", MessengerCopy(ReadFile(photo), 70));
    const Marks exif = Marked({photo, copy, "--table", "exif"});
    EXPECT_EQ("!Only in Evidence", exif.at("IFD0:Make"));
    EXPECT_EQ("!Only in Evidence", exif.at("ExifIFD:DateTimeOriginal"));
    const Marks jpeg = Marked({photo, copy, "--table", "jpeg"});
    for (char const* const row : {"Image Quality", "QT Hash", "QT 1 (Luma)", "QT 2 (Chroma)"}) {
        EXPECT_EQ("!Different", jpeg.at(row)) << row;
    }
    EXPECT_EQ(0u, jpeg.count("Chroma Subsampling"));
    const Marks huffman = Marked({photo, copy, "--table", "huffman"});
    EXPECT_EQ("!Different", huffman.at("HTs Are Standard"));
    const Marks info = Marked({photo, copy});
    for (char const* const row : {"Image Encoded Size", "Exif Make", "Exif Model", "JPEG Quality", "JPEG QT Hash"}) {
        EXPECT_EQ("!Different", info.at(row)) << row;
    }
    EXPECT_EQ(0u, info.count("File Size"));
    EXPECT_EQ(1, Orvelle({"compare", photo, copy, "--fail-on", "hard"}).status);
}

TEST_F(Compare, NameOnOneSideOnly_IsHard) {
    const std::string dated = Camera("a.jpg", "2020:01:02 03:04:05");
    const std::string plain = Camera("b.jpg", "");
    EXPECT_EQ((Marks{{"IFD0:ModifyDate", "!Only in Evidence"}, {"ExifIFD:DateTimeOriginal", "!Only in Evidence"}}),
              Marked({dated, plain, "--table", "exif"}));
    EXPECT_EQ((Marks{{"IFD0:ModifyDate", "!Only in Reference"}, {"ExifIFD:DateTimeOriginal", "!Only in Reference"}}),
              Marked({plain, dated, "--table", "exif"}));
}

TEST_F(Compare, Csv_IsTheEnginesTable) {
    const std::string a = Write("a.jpg", support::EncodeJpeg(64, 48, 50));
    const std::string b = Write("b.jpg", support::EncodeJpeg(64, 48, 90));
    const std::string out = Orvelle({"compare", a, b, "--table", "jpeg", "--format", "csv"}).out;
    EXPECT_EQ(0u, out.find("#Id,Name,Evidence Image Value,Reference Image Value,Comparison\r\n")) << out;
    EXPECT_TRUE(Contains(out, "\r\n5,Image Quality,50,90,!Different\r\n")) << out;
    EXPECT_TRUE(Contains(out, "\r\n8,Chroma Subsampling,4:2:0,4:2:0,\r\n"));
    EXPECT_TRUE(Contains(out, "\r\n28,Preview QT 3 (Chroma),,,\r\n"));
}

TEST_F(Compare, Info_HasTheWarningsOfBothSides) {
    const std::string a = Photo("a.jpg", 1001, 752);
    const std::string b = Photo("b.jpg", 1000, 752);
    const json value = json::parse(Orvelle({"compare", a, b, "--format", "json"}).out);
    EXPECT_EQ("orvelle/compare/1", value["schema"]);
    EXPECT_EQ("info", value["table"]);
    ASSERT_EQ(42u, value["rows"].size());
    json const& row = value["rows"][4];
    EXPECT_EQ("5", row["id"]);
    EXPECT_EQ("Image Encoded Size", row["name"]);
    EXPECT_EQ("1001x752", row["evidence"]);
    EXPECT_EQ("!Odd width (1001 is not multiple of 4)", row["evidence_warnings"]);
    EXPECT_EQ("1000x752", row["reference"]);
    EXPECT_EQ("", row["reference_warnings"]);
    EXPECT_EQ("!Different", row["comparison"]);
    EXPECT_EQ("Different", value["rows"][0]["comparison"]);
    EXPECT_EQ(a, value["evidence"]["path"]);
    EXPECT_EQ(RunProgram("sha256sum", {b}).out.substr(0, 64), value["reference"]["sha256"]);
}

TEST_F(Compare, Text_PutsTheMarkBehindTheValues) {
    const std::string a = Write("a.jpg", support::EncodeJpeg(64, 48, 50));
    const std::string b = Write("b.jpg", support::EncodeJpeg(64, 48, 90));
    const Ended ended = Orvelle({"compare", a, b, "--table", "jpeg"});
    EXPECT_EQ(0u, ended.out.find("Evidence:  " + a + "\nReference: " + b + "\n\n#Id Name ")) << ended.out;
    const std::string gap(38, ' ');
    EXPECT_TRUE(
        Contains(ended.out, "5   Image Quality" + std::string(18, ' ') + "50" + gap + "90" + gap + "!Different\n"))
        << ended.out;
    EXPECT_TRUE(Contains(
        ended.out,
        "10  QT 1 (Luma)                      16   11   10   16   24   40   51   61    3    2    2    3    5    "
        "8   10   12 !Different\n"))
        << ended.out;
    // Cameras and programs that write such tables, quality, hash and two tables.
    EXPECT_EQ("Differences: 6 hard, 0 soft", Lines(ended.out).back());
}

TEST_F(Compare, AllFormats_HaveTheSameCells) {
    const std::string a = Write("a.jpg", support::EncodeJpeg(64, 48, 50));
    const std::string b = Write("b.jpg", support::EncodeJpeg(64, 48, 90));
    for (char const* const format : {"text", "json", "jsonl", "csv", "tsv", "ssv", "html"}) {
        const Ended ended = Orvelle({"compare", a, b, "--table", "jpeg", "--format", format});
        EXPECT_EQ(0, ended.status) << format;
        for (char const* const cell : {"Image Quality", "!Different", "4:2:0"}) {
            EXPECT_TRUE(Contains(ended.out, cell)) << format << ": " << cell;
        }
        EXPECT_EQ(1, Orvelle({"compare", a, b, "--table", "jpeg", "--format", format, "--fail-on", "hard"}).status);
    }
}

TEST_F(Compare, SameFileTwice_HasNoDifference) {
    const std::string a = Photo("a.jpg");
    for (char const* const table : {"info", "exif", "jpeg", "huffman", "dimples", "social"}) {
        const Ended ended = Orvelle({"compare", a, a, "--table", table, "--fail-on", "soft"});
        EXPECT_EQ(0, ended.status) << table;
        EXPECT_TRUE(Contains(ended.out, "\nNo differences\n")) << ended.out;
    }
}

TEST_F(Compare, Social_PutsVerdictsSideBySide) {
    JpegKind kind;
    kind.width = 6000;
    const std::string a = Write("a.jpg", EncodeKind(kind));
    const std::string b = Write("12_34_56_n.jpg", EncodeKind(kind));
    EXPECT_EQ((Marks{{"Optional message:", "!Different"}}), Marked({a, b, "--table", "social"}));
}

TEST_F(Compare, MetadataWithLineBreaks_AddNoLine) {
    support::CameraFacts facts;
    facts.make = "x\n1 IFD0:Make forged";
    const std::string a = Write("a.jpg", sample::InsertExif(support::EncodeJpeg(64, 48), support::MakeExif(facts)));
    const Ended ended = Orvelle({"compare", a, Photo("b.jpg"), "--table", "exif"});
    EXPECT_EQ(0, ended.status);
    EXPECT_TRUE(Contains(ended.out, "x\\n1 IFD0:Make forged")) << ended.out;
    EXPECT_FALSE(Contains(ended.out, "\n1 IFD0:Make forged"));
}

TEST_F(Compare, FileThatCannotBeExamined_GivesNoTable) {
    const std::string a = Photo("a.jpg");
    const std::string text = Write("text.jpg", "no picture");
    for (auto const& [first, second] :
         std::vector<std::pair<std::string, std::string>>{{a, Path("none.jpg")}, {text, a}, {a, Path("")}}) {
        const Ended ended = Orvelle({"compare", first, second});
        EXPECT_EQ(3, ended.status);
        EXPECT_EQ("", ended.out);
        EXPECT_EQ(1u, Lines(ended.err).size()) << ended.err;
    }
    const Ended both = Orvelle({"compare", text, Path("none.jpg")});
    EXPECT_EQ(3, both.status);
    EXPECT_EQ(2u, Lines(both.err).size()) << both.err;
}

TEST_F(Compare, WrongUsage_EndsWithTwo) {
    EXPECT_EQ(2, Orvelle({"compare"}).status);
    EXPECT_EQ(2, Orvelle({"compare", "a.jpg"}).status);
    EXPECT_EQ(2, Orvelle({"compare", "a.jpg", "b.jpg", "c.jpg"}).status);
    const Ended ended = Orvelle({"compare", "a.jpg", "b.jpg", "--table", "all"});
    EXPECT_EQ(2, ended.status);
    EXPECT_EQ("orvelle: --table: \"all\" is none of: info exif jpeg huffman dimples social\n", ended.err);
}

TEST_F(Compare, OutputFile_NeverReplacesAnExaminedOne) {
    const std::string a = Photo("a.jpg");
    const std::string b = Photo("b.jpg");
    const std::string before = ReadFile(b);
    EXPECT_EQ(5, Orvelle({"compare", a, b, "-o", b, "--force"}).status);
    EXPECT_EQ(before, ReadFile(b));
    const std::string out = Path("c.csv");
    EXPECT_EQ(0, Orvelle({"compare", a, b, "-o", out}).status);
    EXPECT_EQ(0u, ReadFile(out).find("#Id,Name,"));
    EXPECT_EQ(5, Orvelle({"compare", a, b, "-o", out}).status);
}

}  // namespace
