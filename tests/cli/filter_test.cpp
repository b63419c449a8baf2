// SPDX-License-Identifier: Apache-2.0
// orvelle filter: one filter on one image, or on two.
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Filter : public CliTest {
protected:
    json Json(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), "filter");
        arguments.insert(arguments.end(), {"--format", "json"});
        const Ended ended = Orvelle(arguments);
        EXPECT_EQ(0, ended.status) << ended.err;
        return json::parse(ended.out, nullptr, false);
    }

    std::string Out(std::string const& name) const { return Folder() + "/" + name; }

    // What python3 prints of a picture: size, mode and the values of its pixel at 5,7.
    static std::string Picture(std::string const& path) {
        const Ended ended = RunProgram("exiftool", {"-s3", "-FileType", "-ImageWidth", "-ImageHeight", path});
        return ended.out;
    }
};

TEST_F(Filter, Picture_IsSavedInTheFormatOfTheEnding) {
    const std::string photo = Photo("a.jpg", 200, 120);
    for (auto const& [ending, type] : std::vector<std::pair<std::string, std::string>>{
             {"png", "PNG"}, {"jpg", "JPEG"}, {"PNG", "PNG"}, {"tif", "TIFF"}, {"bmp", "BMP"}}) {
        const std::string target = Out("out." + ending);
        const Ended ended = Orvelle({"filter", "Channels", photo, "-o", target});
        EXPECT_EQ(0, ended.status) << ended.err;
        EXPECT_EQ("", ended.out);
        EXPECT_EQ("", ended.err);
        EXPECT_EQ(type + "\n200\n120\n", Picture(target)) << ending;
        std::filesystem::remove(target);
    }
    EXPECT_EQ((std::vector<std::string>{"documents", "evidence"}), List(Folder()));
}

TEST_F(Filter, Picture_IsNotScaledToTheWidthOfReports) {
    // Reports show pictures at most 600 pixels wide.
    const std::string photo = Photo("a.jpg", 1000, 500);
    ASSERT_EQ(0, Orvelle({"filter", "Original", photo, "-o", Out("o.png")}).status);
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo, "-o", Out("c.png")}).status);
    EXPECT_EQ("PNG\n1000\n500\n", Picture(Out("o.png")));
    EXPECT_EQ("PNG\n1000\n500\n", Picture(Out("c.png")));
}

TEST_F(Filter, Json_CarriesWhatWasRunAndWhatItGave) {
    const std::string photo = Photo("a.jpg", 200, 120);
    const json value = Json({"Channels", photo, "--set", "Component=Second"});
    EXPECT_EQ("orvelle/filter/1", value.at("schema"));
    EXPECT_EQ("Channels", value.at("filter"));
    EXPECT_EQ(json({{"Color Space", "YCbCr"}, {"Component", "Second"}}), value.at("parameters"));
    EXPECT_EQ(json({{"Highlights", 255}, {"Midtones", 127}, {"Shadows", 0}}), value.at("post_parameters"));
    EXPECT_EQ(photo, value.at("evidence").at("path"));
    const std::string hash = RunProgram("sha256sum", {photo}).out.substr(0, 64);
    EXPECT_EQ(hash, value.at("evidence").at("sha256"));
    EXPECT_EQ(nullptr, value.at("reference"));
    EXPECT_EQ("Ok", value.at("status"));
    const json shown =
        json::array({json::object({{"name", "Component Shown"}, {"value", "Cb (blue difference, 128 is neutral)"}})});
    EXPECT_EQ(shown, value.at("outputs"));
    EXPECT_EQ(json::parse(R"({"kind":"picture","width":200,"height":120,"channels":1})"), value.at("result"));
    EXPECT_FALSE(value.contains("saved_to"));
}

TEST_F(Filter, Json_WithOutput_StandsOnStandardOutputBesideThePicture) {
    const std::string photo = Photo("a.jpg");
    const json value = Json({"Channels", photo, "-o", Out("a.png")});
    EXPECT_EQ(Out("a.png"), value.at("saved_to"));
    EXPECT_EQ("PNG\n640\n480\n", Picture(Out("a.png")));
}

TEST_F(Filter, Text_TellsFilterParametersAndStatus) {
    const std::string photo = Photo("a.jpg", 200, 120);
    const Ended ended = Orvelle({"filter", "channels", photo});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
    EXPECT_EQ(
        "Filter          Channels\n"
        "Evidence        " +
            photo +
            "\n"
            "Evidence SHA256 " +
            RunProgram("sha256sum", {photo}).out.substr(0, 64) +
            "\n"
            "Color Space     YCbCr\n"
            "Component       First\n"
            "Highlights      255\n"
            "Midtones        127\n"
            "Shadows         0\n"
            "Status          Ok\n"
            "Component Shown Y (luma)\n"
            "Result          picture of 200x120 pixels, 1 channel\n",
        ended.out);
}

TEST_F(Filter, Table_HasTheRowsOfInfo) {
    const std::string photo = Photo("a.jpg", 1001, 751);
    const std::string csv = Orvelle({"filter", "File Format", photo, "--format", "csv"}).out;
    EXPECT_EQ(0u, csv.find("Output,Column 1,Column 2,Column 3\r\nTable,Filename,a.jpg,\r\n")) << csv;
    EXPECT_TRUE(Contains(csv,
                         "Table,Image Encoded Size,1001x751,\"!Odd width (1001 is not multiple of 4)\nOdd height (751 "
                         "is not multiple of 4)\"\r\n"))
        << csv;
    const json value = Json({"File Format", photo});
    EXPECT_EQ("Warning", value.at("status"));
    EXPECT_EQ("tables", value.at("result").at("kind"));
    json const& rows = value.at("outputs").at(0).at("table");
    EXPECT_EQ(json({"Filename", "a.jpg", ""}), rows.at(0));
    const std::string text = Orvelle({"filter", "File Format", photo}).out;
    EXPECT_TRUE(Contains(text, "\n\nFilename ")) << text;
    EXPECT_TRUE(Contains(text, "!Odd width (1001 is not multiple of 4)\n")) << text;
}

TEST_F(Filter, Table_GoesToAFileInTheFormOfItsEnding) {
    const std::string photo = Photo("a.jpg");
    for (char const* const ending : {"csv", "tsv", "html", "json", "txt"}) {
        const std::string target = Out(std::string("t.") + ending);
        ASSERT_EQ(0, Orvelle({"filter", "EXIF", photo, "-o", target}).status) << ending;
        const std::string format = std::string(ending) == "txt" ? "text" : ending;
        if (format == "json") {
            EXPECT_EQ("EXIF", json::parse(ReadFile(target)).at("filter"));
            continue;
        }
        EXPECT_EQ(Orvelle({"filter", "EXIF", photo, "--format", format}).out, ReadFile(target)) << ending;
    }
}

TEST_F(Filter, Reference_StandsBesideTheEvidence) {
    const std::string a = Photo("a.jpg");
    const std::string b = Photo("b.jpg", 320, 240);
    const json value = Json({"File Format", a, b});
    EXPECT_EQ(a, value.at("evidence").at("path"));
    EXPECT_EQ(b, value.at("reference").at("path"));
    EXPECT_EQ("Ok", value.at("status"));
    EXPECT_EQ("Ok", value.at("reference_status"));
    json const& rows = value.at("outputs").at(0).at("table");
    EXPECT_EQ("#Id", rows.at(0).at(0));
    bool found = false;
    for (json const& row : rows) {
        if (row.at(1) != "Image Encoded Size") continue;
        found = true;
        EXPECT_EQ("640x480", row.at(2));
        EXPECT_EQ("320x240", row.at(4));
    }
    EXPECT_TRUE(found);
}

TEST_F(Filter, CustomText_IsShownLineByLine) {
    // The first bytes of a JPEG as they were written.
    const std::string photo = Photo("a.jpg");
    const Ended ended = Orvelle({"filter", "Hex Viewer", photo, "--set", "Length=2", "--set", "offset=0"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_TRUE(Contains(ended.out, "\n00000000  ff d8 ")) << ended.out;
    const json value = Json({"Hex Viewer", photo, "--set", "Length=2"});
    EXPECT_EQ("text", value.at("result").at("kind"));
    EXPECT_TRUE(Contains(value.at("result").at("text"), "ff d8 ")) << value.at("result");
    ASSERT_EQ(0, Orvelle({"filter", "Hex Viewer", photo, "--set", "Length=2", "-o", Out("h.csv")}).status);
    EXPECT_EQ(0u, ReadFile(Out("h.csv")).find("Text\r\n")) << ReadFile(Out("h.csv"));
}

TEST_F(Filter, Plot_GivesItsPoints) {
    const std::string photo = Photo("a.jpg", 64, 64);
    const json value = Json({"Histogram", photo});
    json const& plot = value.at("result").at("evidence");
    ASSERT_EQ(256u, plot.at("x").size());
    EXPECT_EQ(255, plot.at("x").at(255));
    for (json const& series : plot.at("series")) {
        double sum = 0;
        for (json const& count : series) sum += count.get<double>();
        EXPECT_EQ(64.0 * 64.0, sum);
    }
    EXPECT_EQ(nullptr, value.at("result").at("reference"));
    const std::vector<std::string> lines = Lines(Orvelle({"filter", "Histogram", photo, "--format", "tsv"}).out);
    ASSERT_EQ(257u, lines.size());
    EXPECT_EQ(0u, lines[0].find("Slot\tX\tY1"));
    EXPECT_EQ(0u, lines[256].find("evidence\t255\t"));
}

TEST_F(Filter, Plot_IsSavedAsPictureOrPoints) {
    const std::string photo = Photo("a.jpg", 64, 64);
    ASSERT_EQ(0, Orvelle({"filter", "Histogram", photo, "-o", Out("p.png")}).status);
    EXPECT_EQ(0u, Picture(Out("p.png")).find("PNG\n"));
    ASSERT_EQ(0, Orvelle({"filter", "Histogram", photo, "-o", Out("p.csv")}).status);
    EXPECT_EQ(257u, Lines(ReadFile(Out("p.csv"))).size());
    const Ended ended = Orvelle({"filter", "Histogram", photo, "-o", Out("p.xyz")});
    EXPECT_EQ(2, ended.status);
    EXPECT_TRUE(Contains(ended.err, "gives a plot; endings: jpg jpeg png ")) << ended.err;
}

TEST_F(Filter, PostProcessing_ChangesThePictureAlone) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo, "-o", Out("1.png")}).status);
    const json value = Json(
        {"Channels", photo, "--post", "high=200", "--post", "Midtones=40", "--post", "shadows=20", "-o", Out("2.png")});
    EXPECT_EQ(json({{"Highlights", 200}, {"Midtones", 40}, {"Shadows", 20}}), value.at("post_parameters"));
    EXPECT_EQ(true, value.at("run").at("from_cache").at("evidence"));
    EXPECT_NE(ReadFile(Out("1.png")), ReadFile(Out("2.png")));
}

TEST_F(Filter, PostProcessingThatCantStand_IsTold) {
    const Ended ended =
        Orvelle({"filter", "Channels", Photo("a.jpg"), "--post", "Shadows=200", "--post", "Highlights=100"});
    EXPECT_EQ(0, ended.status);
    EXPECT_TRUE(Contains(ended.err, "orvelle: --post: warning: Shadows became 99 instead of 200\n")) << ended.err;
    EXPECT_TRUE(Contains(ended.out, "\nShadows         99\n")) << ended.out;
}

TEST_F(Filter, Cache_ChangesNoByte) {
    const std::string photo = Photo("a.jpg");
    std::vector<std::string> names;
    json const list = json::parse(Orvelle({"filters", "--format", "json"}).out);
    for (json const& filter : list.at("filters")) {
        names.push_back(filter.at("name"));
    }
    for (std::string const& name : names) {
        json results[3];
        std::string texts[3];
        for (int i = 0; i < 3; ++i) {
            std::vector<std::string> arguments = {name, photo};
            if (i == 2) arguments.push_back("--no-cache");
            results[i] = Json(arguments);
            EXPECT_EQ(
                i == 1 &&
                    (results[i].at("result").at("kind") == "picture" || results[i].at("result").at("kind") == "plot") &&
                    name != "Original",
                results[i].at("run").at("from_cache").at("evidence"))
                << name << " " << i;
            results[i].erase("run");
        }
        EXPECT_EQ(results[0], results[1]) << name;
        EXPECT_EQ(results[0], results[2]) << name;
    }
}

TEST_F(Filter, Cache_GivesTheSamePicture) {
    const std::string photo = Photo("a.jpg");
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo, "-o", Out("1.png"), "--no-cache"}).status);
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo, "-o", Out("2.png")}).status);
    ASSERT_EQ(0, Orvelle({"filter", "Channels", photo, "-o", Out("3.png")}).status);
    EXPECT_EQ(ReadFile(Out("1.png")), ReadFile(Out("2.png")));
    EXPECT_EQ(ReadFile(Out("1.png")), ReadFile(Out("3.png")));
}

TEST_F(Filter, NoCache_StoresNothing) {
    EXPECT_EQ(0, Orvelle({"filter", "Channels", Photo("a.jpg"), "--no-cache"}).status);
    EXPECT_FALSE(Exists(Documents() + "/cache"));
    EXPECT_EQ(0, Orvelle({"filter", "Channels", Photo("a.jpg")}).status);
    EXPECT_TRUE(Exists(Documents() + "/cache"));
}

TEST_F(Filter, Evidence_IsNotChanged) {
    const std::string photo = Photo("a.jpg");
    const std::string before = ReadFile(photo);
    const auto time = std::filesystem::last_write_time(photo);
    for (char const* const name : {"Channels", "EXIF", "Hex Viewer", "Histogram"}) {
        EXPECT_EQ(0, Orvelle({"filter", name, photo}).status) << name;
    }
    EXPECT_EQ(before, ReadFile(photo));
    EXPECT_EQ(time, std::filesystem::last_write_time(photo));
    EXPECT_EQ((std::vector<std::string>{"a.jpg"}), List(Path("")));
}

}  // namespace
