// SPDX-License-Identifier: Apache-2.0
// orvelle filters: the list, and what is told of each.
#include <filesystem>
#include <nlohmann/json.hpp>

#include "tests/cli/program.h"

using namespace clitest;
using nlohmann::json;

namespace {

class Filters : public CliTest {
protected:
    // The list as JSON.
    json List() const { return json::parse(Orvelle({"filters", "--format", "json"}).out).at("filters"); }

    static json Named(json const& list, std::string const& name) {
        for (json const& filter : list) {
            if (filter.at("name") == name) return filter;
        }
        ADD_FAILURE() << "no filter " << name;
        return json::object();
    }
};

std::string Pages() {
    return ReadFile(std::string(ORVELLE_SCHEMAS) + "/../filters.md");
}

TEST_F(Filters, List_NamesFiltersOfEveryKind) {
    const Ended ended = Orvelle({"filters"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.err);
    EXPECT_TRUE(Contains(ended.out, "Original (Overview; gives a picture)\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, "\nFile Format (File Analysis; gives a table)\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, "\nHex Viewer (File Analysis; gives a text)\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, "\nChannels (Visual Analysis; gives a picture)\n")) << ended.out;
    EXPECT_TRUE(Contains(ended.out, "\nJPEG Tables (File Analysis; gives a table; JPEG files only)\n")) << ended.out;
}

TEST_F(Filters, List_TellsWhatParametersTake) {
    const std::vector<std::string> lines = Lines(Orvelle({"filters"}).out);
    const auto find = [&lines](std::string const& start, std::string const& end) {
        for (std::string const& line : lines) {
            if (line.find(start) == 0 && line.size() > end.size() &&
                line.compare(line.size() - end.size(), end.size(), end) == 0) {
                return true;
            }
        }
        return false;
    };
    EXPECT_TRUE(find("    --set  Color Space ", "one of: RGB, YCbCr, HSV, Lab; default YCbCr"));
    EXPECT_TRUE(find("    --post Highlights ", "a whole number from 0 to 255; default 255"));
    EXPECT_TRUE(find("    --set Length ", "a whole number from 1 to 1048576; default 4096"))
        << Orvelle({"filters"}).out;
}

TEST_F(Filters, Json_HasRangesDefaultsAndConfigurations) {
    const json channels = Named(List(), "Channels");
    EXPECT_EQ("Visual Analysis", channels.at("group"));
    EXPECT_EQ("picture", channels.at("gives"));
    EXPECT_EQ(json({"RGB", "YCbCr", "HSV", "Lab"}), channels.at("parameters").at(0).at("options"));
    EXPECT_EQ("YCbCr", channels.at("parameters").at(0).at("default"));
    json const& highlights = channels.at("post_parameters").at(0);
    EXPECT_EQ("Highlights", highlights.at("name"));
    EXPECT_EQ(0, highlights.at("minimum"));
    EXPECT_EQ(255, highlights.at("maximum"));
    EXPECT_EQ(255, highlights.at("default"));
    // Four spaces of three components.
    ASSERT_EQ(12u, channels.at("configurations").size());
    EXPECT_EQ(json({{"Color Space", "RGB"}, {"Component", "Second"}}),
              channels.at("configurations").at(1).at("parameters"));
    EXPECT_EQ(true, channels.at("configurations").at(3).at("enabled"));
    EXPECT_EQ(false, channels.at("configurations").at(0).at("enabled"));
}

TEST_F(Filters, Separated_HasALineForEachParameter) {
    const std::string out = Orvelle({"filters", "--format", "csv"}).out;
    EXPECT_EQ(0u, out.find("Filter,Kind,Name,Takes,Value,Description\r\n"));
    EXPECT_TRUE(Contains(out, "Channels,post-processing,Midtones,a whole number from 0 to 255,127,\r\n")) << out;
    EXPECT_TRUE(Contains(out, "Channels,configuration,\"Color Space=Lab, Component=Third\",,disabled,\r\n")) << out;
    EXPECT_EQ(0u, Orvelle({"filters", "--format", "tsv"}).out.find("Filter\tKind\tName\tTakes\tValue\tDescription\n"));
}

TEST_F(Filters, JsonLines_HasALineForEachFilter) {
    const std::vector<std::string> lines = Lines(Orvelle({"filters", "--format", "jsonl"}).out);
    ASSERT_EQ(List().size(), lines.size());
    for (std::string const& line : lines) EXPECT_EQ("orvelle/filters/1", json::parse(line).at("schema"));
}

TEST_F(Filters, Html_IsAPage) {
    const std::string out = Orvelle({"filters", "--format", "html"}).out;
    EXPECT_EQ(0u, out.find("<!DOCTYPE html>"));
    EXPECT_TRUE(Contains(out, "<td>Channels</td><td>parameter</td><td>Color Space</td>")) << out;
    EXPECT_TRUE(Contains(out, "</html>"));
}

TEST_F(Filters, EveryFilter_IsExplained) {
    for (json const& filter : List()) {
        for (char const* const key : {"description", "method", "source", "limits"}) {
            ASSERT_TRUE(filter.contains(key)) << filter.at("name") << " " << key;
            EXPECT_NE("", filter.at(key)) << filter.at("name");
        }
    }
}

TEST_F(Filters, Explanation_HasMethodSourceLimitsAndParameters) {
    const Ended ended = Orvelle({"filters", "Channels"});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ(0u, ended.out.find("Channels\nVisual Analysis; gives a picture\n\nShows one component")) << ended.out;
    size_t last = 0;
    for (char const* const title : {"Method", "Source", "Where it fails", "Parameters (--set)",
                                    "Post-processing (--post)", "Outputs", "Configurations"}) {
        const size_t at = ended.out.find("\n\n" + std::string(title) + "\n    ");
        ASSERT_NE(std::string::npos, at) << title << " in " << ended.out;
        EXPECT_LT(last, at) << title;
        last = at;
    }
    for (std::string const& line : Lines(ended.out)) EXPECT_LE(line.size(), 120u) << line;
}

TEST_F(Filters, Name_IsTakenWithoutCaseAndByItsBeginning) {
    const std::string out = Orvelle({"filters", "Channels"}).out;
    for (char const* const name : {"channels", "CHANNELS", "chan", "Chan nels", "c_h-a"}) {
        EXPECT_EQ(out, Orvelle({"filters", name}).out) << name;
    }
    // A whole name goes before one that it begins.
    EXPECT_EQ(0u, Orvelle({"filters", "file format"}).out.find("File Format\n"));
}

TEST_F(Filters, WrongName_IsWrongUsage) {
    const Ended unknown = Orvelle({"filters", "Nonsense"});
    EXPECT_EQ(2, unknown.status);
    EXPECT_EQ("", unknown.out);
    EXPECT_EQ("orvelle: Nonsense: no such filter; \"orvelle filters\" names them all\n", unknown.err);
    const Ended several = Orvelle({"filters", "JPEG"});
    EXPECT_EQ(2, several.status);
    EXPECT_TRUE(Contains(several.err, "orvelle: JPEG: stands for several filters")) << several.err;
}

TEST_F(Filters, Settings_ChangeTheConfigurations) {
    EXPECT_EQ(0, Orvelle({"options", "set", "Default Configurations", "Channels-Lab-Second"}).status);
    const json channels = Named(List(), "Channels");
    ASSERT_EQ(1u, channels.at("configurations").size());
    EXPECT_EQ(json({{"Color Space", "Lab"}, {"Component", "Second"}}),
              channels.at("configurations").at(0).at("parameters"));
    EXPECT_EQ("YCbCr", channels.at("parameters").at(0).at("default"));
}

TEST_F(Filters, Locale_ChangesNoByte) {
    Surroundings c;
    c.environment = {{"LC_ALL", "C"}};
    Surroundings utf8;
    utf8.environment = {{"LC_ALL", "C.UTF-8"}};
    EXPECT_EQ(Orvelle({"filters"}, c).out, Orvelle({"filters"}, utf8).out);
}

TEST_F(Filters, Documentation_IsWhatTheProgramPrints) {
    const std::string pages = Pages();
    EXPECT_TRUE(Contains(pages, "```\n" + Orvelle({"filters"}).out + "```\n")) << "run tools/filterspage";
    for (json const& filter : List()) {
        const std::string page = Orvelle({"filters", filter.at("name")}).out;
        EXPECT_TRUE(Contains(pages, "```\n" + page + "```\n")) << filter.at("name") << ": run tools/filterspage";
    }
    EXPECT_EQ(List().size() + 1, CountOf(pages, "```\n") / 2);
}

}  // namespace
