// SPDX-License-Identifier: Apache-2.0
// The help of every command, and what every command says to options that it does not have.
#include "tests/cli/program.h"

using namespace clitest;

namespace {

using Words = std::vector<std::string>;

// Every command, and what stands in its line of usage.
class Help : public CliTest {
protected:
    static std::vector<Words> Commands() {
        std::vector<Words> all;
        for (char const* const name :
             {"info",     "exif",   "jpeg",    "dimples",  "social", "compare", "match",       "filters",
              "filter",   "cache",  "batch",   "table",    "multi",  "carve",   "coordinates", "search",
              "download", "verify", "project", "bookmark", "plugin", "options", "qt",          "sms"}) {
            all.push_back({name});
        }
        for (Words const& words : std::vector<Words>{
                 {"search", "camera"},   {"search", "geo"},    {"search", "sightings"}, {"search", "reverse"},
                 {"plugin", "analysis"}, {"plugin", "batch"},  {"cache", "show"},       {"cache", "clear"},
                 {"project", "new"},     {"project", "check"}, {"project", "report"},   {"bookmark", "add"},
                 {"bookmark", "list"},   {"bookmark", "set"},  {"bookmark", "remove"},  {"options", "list"},
                 {"options", "get"},     {"options", "set"},   {"qt", "list"},          {"qt", "match"},
                 {"qt", "add"},          {"qt", "remove"},     {"sms", "list"},         {"sms", "add"},
                 {"sms", "remove"},      {"sms", "export"},    {"sms", "import"}}) {
            all.push_back(words);
        }
        return all;
    }
};

TEST_F(Help, EveryCommand_TellsItsUse) {
    for (Words const& command : Commands()) {
        Words asked = command;
        asked.emplace_back("--help");
        const Ended flag = Orvelle(asked);
        std::string path = "orvelle";
        for (std::string const& word : command) path += " " + word;
        EXPECT_EQ(0, flag.status) << path;
        EXPECT_EQ("", flag.err) << path;
        EXPECT_TRUE(Contains(flag.out, "Usage: " + path + " ")) << flag.out;
        Words topic = command;
        topic.insert(topic.begin(), "help");
        const Ended word = Orvelle(topic);
        EXPECT_EQ(0, word.status) << path;
        EXPECT_EQ(flag.out, word.out) << path;
    }
}

TEST_F(Help, Program_NamesEveryCommand) {
    const std::string out = Orvelle({"--help"}).out;
    for (Words const& command : Commands()) EXPECT_TRUE(Contains(out, "\n  " + command[0] + " ")) << command[0];
    EXPECT_EQ(out, Orvelle({"help"}).out);
}

TEST_F(Help, UnknownOption_EndsWithTwo) {
    for (Words const& command : Commands()) {
        Words arguments = command;
        arguments.emplace_back("--no-such-option");
        const Ended ended = Orvelle(arguments);
        EXPECT_EQ(2, ended.status) << command[0];
        EXPECT_EQ("", ended.out) << command[0];
        EXPECT_EQ(0U, ended.err.find("orvelle: ")) << ended.err;
        EXPECT_EQ(1U, CountOf(ended.err, "\n")) << ended.err;
    }
    EXPECT_FALSE(Exists(Documents()));
}

TEST_F(Help, WrongFormat_NamesWhatIsTaken) {
    for (Words const& command : std::vector<Words>{{"info", "a"},
                                                   {"table", "a"},
                                                   {"multi", "a", "b"},
                                                   {"verify", "a"},
                                                   {"carve", "a"},
                                                   {"search", "camera"},
                                                   {"batch", "a"},
                                                   {"bookmark", "list", "a"}}) {
        Words arguments = command;
        arguments.insert(arguments.end(), {"--format", "xml"});
        const Ended ended = Orvelle(arguments);
        EXPECT_EQ(2, ended.status) << command[0];
        EXPECT_TRUE(Contains(ended.err, "--format")) << ended.err;
        EXPECT_TRUE(Contains(ended.err, "jsonl")) << ended.err;
    }
}

}  // namespace
