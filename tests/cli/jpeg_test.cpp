// SPDX-License-Identifier: Apache-2.0
// orvelle jpeg: tables of plain, odd and broken JPEGs.
#include <map>
#include <nlohmann/json.hpp>

#include "tests/cli/pictures.h"
#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Jpeg : public CliTest {
protected:
    // The values of a single file by their keys.
    std::map<std::string, json> Values(std::string const& path, std::vector<std::string> options = {}) const {
        std::vector<std::string> arguments = {"jpeg", path, "--format", "json"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const Ended ended = Orvelle(arguments);
        EXPECT_EQ(0, ended.status) << ended.err;
        std::map<std::string, json> values;
        const json results = json::parse(ended.out);
        for (json const& row : results.at(0)["result"]["rows"]) values[row["key"]] = row["value"];
        return values;
    }
};

// ITU-T T.81, table K.1: the IJG tables of quality 50.
constexpr char const* Luminance50 =
    "  16   11   10   16   24   40   51   61\n"
    "  12   12   14   19   26   58   60   55\n"
    "  14   13   16   24   40   57   69   56\n"
    "  14   17   22   29   51   87   80   62\n"
    "  18   22   37   56   68  109  103   77\n"
    "  24   35   55   64   81  104  113   92\n"
    "  49   64   78   87  103  121  120  101\n"
    "  72   92   95   98  112  100  103   99\n";
// Table K.3.
constexpr char const* LuminanceDc = "0 1 5 1 1 1 1 1 1 0 0 0 0 0 0 0 \nTotal:12 ";

TEST_F(Jpeg, Quality50_ShowsTheTablesOfTheStandard) {
    auto values = Values(Write("a.jpg", support::EncodeJpeg(64, 48, 50)));
    EXPECT_EQ(Luminance50, values["qt_1_luma"]);
    EXPECT_EQ(0u, values["qt_2_chroma"].get<std::string>().find("  17   18   24   47   99   99   99   99\n"));
    EXPECT_EQ("", values["qt_3_chroma"]);
    EXPECT_EQ("50", values["image_quality"]);
    EXPECT_EQ("true", values["standard_table"]);
    EXPECT_EQ("4:2:0", values["chroma_subsampling"]);
    EXPECT_EQ("50", values["quality_estimate_all_tables"]);
    EXPECT_EQ("50", values["quality_estimate_qt_1"]);
    EXPECT_EQ("50", values["quality_estimate_qt_2"]);
    EXPECT_EQ("true", values["quality_is_exact_ijg"]);
    EXPECT_EQ(LuminanceDc, values["ht_1_luma_dc_class"]);
    EXPECT_EQ("true", values["hts_are_standard"]);
}

TEST_F(Jpeg, QtHash_IsWhatExifToolPrints) {
    const std::string photo = Photo("a.jpg");
    std::string digest = RunProgram("exiftool", {"-s3", "-n", "-JPEGDigest", photo}).out.substr(0, 32);
    for (char& c : digest) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(digest, Values(photo)["qt_hash"]);
}

TEST_F(Jpeg, Thumbnail_HasRowsOfItsOwn) {
    auto values = Values(Photo("a.jpg"));
    EXPECT_EQ("90", values["image_quality"]);
    EXPECT_EQ("75", values["thumbnail_image_quality"]);
    EXPECT_EQ("true", values["thumbnail_hts_are_standard"]);
    EXPECT_EQ("", values["preview_image_quality"]);
    auto without = Values(Write("b.jpg", support::EncodeJpeg(64, 48)));
    EXPECT_EQ("90", without["image_quality"]);
    EXPECT_EQ("", without["thumbnail_image_quality"]);
    EXPECT_EQ("", without["thumbnail_ht_1_luma_dc_class"]);
}

TEST_F(Jpeg, Text_ShowsATableOnAsManyLines) {
    const std::string out = Orvelle({"jpeg", Write("a.jpg", support::EncodeJpeg(64, 48, 50))}).out;
    const std::string gap(35, ' ');
    EXPECT_TRUE(Contains(out, "\nQT 1 (Luma)" + gap.substr(11) + "  16   11   10   16   24   40   51   61\n" + gap +
                                  "  12   12   14   19   26   58   60   55\n"))
        << out;
    EXPECT_TRUE(Contains(out, "\n" + gap + "Total:12\n")) << out;
}

TEST_F(Jpeg, Table_ShowsOneSideOnly) {
    const std::string photo = Photo("a.jpg");
    const auto all = Values(photo);
    const auto quantisation = Values(photo, {"--table", "jpeg"});
    const auto huffman = Values(photo, {"--table", "huffman"});
    EXPECT_EQ(32u, quantisation.size());
    EXPECT_EQ(21u, huffman.size());
    EXPECT_EQ(53u, all.size());
    EXPECT_EQ(0u, quantisation.count("hts_are_standard"));
    EXPECT_EQ(0u, huffman.count("qt_hash"));
}

TEST_F(Jpeg, GreyPicture_HasOneTable) {
    JpegKind kind;
    kind.components = 1;
    kind.quality = 50;
    auto values = Values(Write("a.jpg", EncodeKind(kind)), {"-x"});
    EXPECT_EQ("Grayscale", values["color_space"]);
    EXPECT_EQ("", values["chroma_subsampling"]);
    EXPECT_EQ(Luminance50, values["qt_1_luma"]);
    EXPECT_EQ("", values["qt_2_chroma"]);
    EXPECT_EQ("50", values["image_quality"]);
    EXPECT_EQ("1", values["components"]);
    EXPECT_EQ("Gray", values["signature_subsampling"]);
}

TEST_F(Jpeg, FourComponents_AreTold) {
    JpegKind kind;
    kind.components = 4;
    auto values = Values(Write("a.jpg", EncodeKind(kind)), {"-x"});
    EXPECT_EQ("CMYK", values["color_space"]);
    EXPECT_EQ("4", values["components"]);
    EXPECT_EQ("90", values["image_quality"]);
}

TEST_F(Jpeg, WideTables_KeepTheirNumbers) {
    JpegKind kind;
    kind.quality = 2;
    kind.wideTables = true;
    auto values = Values(Write("a.jpg", EncodeKind(kind)));
    // Quality 2 multiplies by 25: 16 becomes 400, 61 becomes 1525.
    EXPECT_EQ(0u, values["qt_1_luma"].get<std::string>().find(" 400  275  250  400  600 1000 1275 1525\n"));
}

TEST_F(Jpeg, ThousandMarkers_AreWalked) {
    JpegKind kind;
    kind.restartRows = 1;
    kind.height = 480;
    auto values = Values(Write("a.jpg", WithComments(EncodeKind(kind), 1000)), {"-x"});
    EXPECT_EQ("90", values["image_quality"]);
    EXPECT_EQ("true", values["end_of_image"]);
    EXPECT_EQ("4", values["restart_interval"]);
    EXPECT_EQ("1", values["scans"]);
}

TEST_F(Jpeg, Progressive_HasItsScansAndOwnHuffmanTables) {
    JpegKind kind;
    kind.progressive = true;
    auto values = Values(Write("a.jpg", EncodeKind(kind)), {"-x"});
    EXPECT_EQ("10", values["scans"]);
    EXPECT_EQ("false", values["hts_are_standard"]);
    EXPECT_TRUE(Contains(values["coding_process"], "Progressive")) << values["coding_process"];
}

TEST_F(Jpeg, StreamWithoutTables_IsNoResult) {
    const std::string path = Write("a.jpg", WithoutTables(support::EncodeJpeg(64, 48)));
    const Ended ended = Orvelle({"jpeg", path});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ(0u, ended.err.find("orvelle: " + path + ": File format not supported.")) << ended.err;
    EXPECT_EQ(1u, Lines(ended.err).size());
}

TEST_F(Jpeg, NoJpeg_HasEmptyRowsAndAWarning) {
    const std::string path = Write("a.ppm", DottedPpm(0, 0, 128));
    const Ended ended = Orvelle({"jpeg", path, "--format", "csv"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("orvelle: " + path + ": warning: no JPEG with quantisation tables: nothing to tell\n", ended.err);
    EXPECT_TRUE(Contains(ended.out, path + ",evidence,Image Quality,,\r\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, path + ",evidence,HTs Are Standard,,\r\n"));
}

// A second table of eight steps instead of 64: whatever the decoder makes of it, there is an answer.
TEST_F(Jpeg, SecondTableOfOneRow_IsNoCrash) {
    std::string jpeg = support::EncodeJpeg(64, 48);
    const size_t first = jpeg.find("\xFF\xDB");
    const size_t second = jpeg.find("\xFF\xDB", first + 2);
    ASSERT_NE(std::string::npos, second);
    jpeg.replace(second, 2 + 67, std::string("\xFF\xDB\0\x0B\1\2\2\2\2\2\2\2\2", 13));
    const std::string path = Write("a.jpg", jpeg);
    for (char const* const command : {"jpeg", "social", "dimples", "exif"}) {
        const Ended ended = Orvelle({command, path});
        EXPECT_TRUE(ended.status == 0 || ended.status == 3) << command << ended.status;
        if (ended.status == 3) {
            EXPECT_EQ(0u, ended.err.find("orvelle: " + path + ": ")) << ended.err;
        }
    }
}

TEST_F(Jpeg, CutAnywhere_IsNoCrash) {
    const std::string whole = support::EncodeJpeg(64, 48);
    std::vector<std::string> arguments = {"jpeg", "-x", "--format", "json"};
    for (size_t length = 2; length < whole.size(); length += 61) {
        arguments.push_back(Write("cut" + std::to_string(length) + ".jpg", whole.substr(0, length)));
    }
    const Ended ended = Orvelle(arguments);
    EXPECT_TRUE(ended.status == 0 || ended.status == 3) << ended.status;
    EXPECT_TRUE(json::parse(ended.out).is_array());
}

TEST_F(Jpeg, AllFormats_HaveTheSameCells) {
    const std::string photo = Photo("a.jpg");
    for (char const* const format : {"text", "json", "jsonl", "csv", "tsv", "ssv", "html"}) {
        const Ended ended = Orvelle({"jpeg", photo, "--format", format});
        EXPECT_EQ(0, ended.status) << format;
        for (char const* const cell : {"QT 1 (Luma)", "HT 1 (Luma   - DC Class)", "4:2:0", "Total:12"}) {
            EXPECT_TRUE(Contains(ended.out, cell)) << format << ": " << cell;
        }
    }
}

TEST_F(Jpeg, Wide_PutsAFileOnOneLine) {
    const std::string a = Photo("a.jpg");
    const std::string out = Orvelle({"jpeg", a, Photo("b.jpg"), "--format", "tsv", "--wide"}).out;
    ASSERT_EQ(3u, Lines(out).size());
    EXPECT_TRUE(Contains(Lines(out)[0], "\tImage Quality\t"));
    EXPECT_EQ(0u, Lines(out)[1].find(a + "\tevidence\t"));
}

}  // namespace
