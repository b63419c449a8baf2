// SPDX-License-Identifier: Apache-2.0
// orvelle dimples: the verdict, its strength and its place.
#include <nlohmann/json.hpp>

#include "tests/cli/pictures.h"
#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Dimples : public CliTest {};

TEST_F(Dimples, DotInEachBlock_IsPresentAtItsPlace) {
    const std::string path = Write("a.ppm", DottedPpm(3, 5, 120));
    const json rows = json::parse(Orvelle({"dimples", path, "--format", "json"}).out)[0]["result"]["rows"];
    ASSERT_EQ(3u, rows.size());
    EXPECT_EQ("jpeg_dimples_presence", rows[0]["key"]);
    EXPECT_EQ("JPEG dimples presence:", rows[0]["title"]);
    EXPECT_EQ("Image shows JPEG Dimples artifacts.", rows[0]["value"]);
    EXPECT_EQ("Dimples strenght:", rows[1]["title"]);
    EXPECT_GE(std::stod(rows[1]["value"].get<std::string>()), 13.0);
    EXPECT_EQ("[3, 5]", rows[2]["value"]);
}

TEST_F(Dimples, FlatPicture_HasNone) {
    const Ended ended = Orvelle({"dimples", Write("a.ppm", DottedPpm(0, 0, 128))});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(
        "JPEG dimples presence: Image does not show relevant JPEG Dimples artifacts.\n"
        "Dimples strenght:      0.00\n"
        "Offset (x,y):          -\n",
        ended.out);
}

TEST_F(Dimples, Option_ShowsThePlaceOfANegativeResult) {
    const std::string path = Write("a.ppm", DottedPpm(0, 0, 128));
    ASSERT_EQ(0, Orvelle({"options", "set", "Hide Best Matching Parameters for Negative Compatibility", "No"}).status);
    EXPECT_TRUE(Contains(Orvelle({"dimples", path}).out, "\nOffset (x,y):          [0, 0]\n"));
}

TEST_F(Dimples, Numbers_HaveAPointInEveryLocale) {
    const std::string path = Write("a.ppm", DottedPpm(3, 5, 120));
    Surroundings c;
    c.environment = {{"LC_ALL", "C"}};
    Surroundings german;
    german.environment = {{"LC_ALL", "de_DE.UTF-8"}};
    const std::string out = Orvelle({"dimples", path, "--format", "csv"}, c).out;
    EXPECT_EQ(out, Orvelle({"dimples", path, "--format", "csv"}, german).out);
    EXPECT_EQ(4u, Lines(out).size());
}

TEST_F(Dimples, AllFormats_HaveTheVerdict) {
    const std::string path = Write("a.ppm", DottedPpm(3, 5, 120));
    for (char const* const format : {"text", "json", "jsonl", "csv", "tsv", "ssv", "html"}) {
        const Ended ended = Orvelle({"dimples", path, "--format", format, "--fail-on", "soft"});
        EXPECT_EQ(0, ended.status) << format;
        EXPECT_TRUE(Contains(ended.out, "Image shows JPEG Dimples artifacts.")) << format;
        EXPECT_TRUE(Contains(ended.out, "[3, 5]")) << format;
    }
}

TEST_F(Dimples, OddJpegs_GiveAVerdict) {
    JpegKind grey;
    grey.components = 1;
    JpegKind cmyk;
    cmyk.components = 4;
    const std::string a = Write("grey.jpg", EncodeKind(grey));
    const std::string b = Write("cmyk.jpg", EncodeKind(cmyk));
    const std::string c = Write("tiny.jpg", support::EncodeJpeg(1, 1));
    const Ended ended = Orvelle({"dimples", a, b, c, "--format", "csv", "--wide"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(4u, Lines(ended.out).size());
    EXPECT_EQ(3u, CountOf(ended.out, ",Image does not show relevant JPEG Dimples artifacts.,")) << ended.out;
}

TEST_F(Dimples, FailingFile_EndsWithThree) {
    const Ended ended = Orvelle({"dimples", Path("none.jpg")});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ("orvelle: " + Path("none.jpg") + ": no such file\n", ended.err);
}

}  // namespace
