// SPDX-License-Identifier: Apache-2.0
// orvelle project and bookmark: the file, the list, the findings and the page.
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <thread>

#include "tests/cli/program.h"

using namespace clitest;

namespace {

class Project : public CliTest {
protected:
    Project() { std::filesystem::create_directories(Path("")); }

    std::string Case() const { return Path("case.orv"); }

    std::string New() const {
        EXPECT_EQ(0, Orvelle({"project", "new", Case()}).status);
        return Case();
    }

    Ended Add(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"bookmark", "add", Case()});
        return Orvelle(arguments);
    }

    // A project with bookmarks First, Second and Third.
    void Three() const {
        New();
        const std::string photo = Photo("img/a.jpg");
        for (char const* name : {"First", "Second", "Third"}) {
            ASSERT_EQ(0, Add({"--name", name, "--filter", "Original", "--evidence", photo}).status);
        }
    }

    nlohmann::json File() const { return nlohmann::json::parse(ReadFile(Case())); }
};

constexpr char const* Empty =
    "{\n   \"Name\" : \"Tolmar Orvelle Project\",\n   \"Version\" : \"1.0\",\n   \"Bookmarks\" : []\n}\n";

// As an application of another maker wrote it.
std::string Foreign(std::string const& bookmark) {
    return "{\"Name\":\"Tolmar Orvelle Project\",\"Version\":\"1.0\",\"Bookmarks\":[" + bookmark + "]}";
}

constexpr char const* Unknown = R"({"Name":"Odd","evidence":"a.jpg","reference":"","note":"n","filter":"Tea Leaves",)"
                                R"("Parameters":{"Cups":3},"status":"maybe"})";

TEST_F(Project, New_WritesAnEmptyProject) {
    const nlohmann::ordered_json value = nlohmann::ordered_json::parse(ReadFile(New()));
    EXPECT_EQ(R"({"Name":"Tolmar Orvelle Project","Version":"1.0","Bookmarks":[]})", value.dump());
}

TEST_F(Project, NewAgain_LeavesTheFile) {
    Write("case.orv", "mine");
    const Ended ended = Orvelle({"project", "new", Case()});
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ("orvelle: " + Case() + ": exists\n", ended.err);
    EXPECT_EQ("mine", ReadFile(Case()));
    EXPECT_EQ(0, Orvelle({"project", "new", "--force", Case()}).status);
    EXPECT_NE("mine", ReadFile(Case()));
}

TEST_F(Project, NewWithoutFolder_CannotBeWritten) {
    EXPECT_EQ(5, Orvelle({"project", "new", Path("no/such/case.orv")}).status);
}

TEST_F(Project, Add_WritesPathsRelativeToTheProject) {
    New();
    const std::string photo = Photo("img/a.jpg");
    Photo("img/b.jpg");
    Surroundings inside;
    inside.folder = Path("");
    const Ended ended = Orvelle({"bookmark", "add", "case.orv", "--name", "Sky", "--filter", "original", "--evidence",
                                 "img/a.jpg", "--reference", "img/b.jpg", "--note", "ask Ann", "--status", "to check"},
                                inside);
    EXPECT_EQ(0, ended.status) << ended.err;
    const nlohmann::json bookmark = File()["Bookmarks"][0];
    EXPECT_EQ("Sky", bookmark["Name"]);
    EXPECT_EQ("img/a.jpg", bookmark["evidence"]);
    EXPECT_EQ("img/b.jpg", bookmark["reference"]);
    EXPECT_EQ("ask Ann", bookmark["note"]);
    EXPECT_EQ("Original", bookmark["filter"]);
    EXPECT_EQ("To Check", bookmark["status"]);
}

TEST_F(Project, Add_TakesParametersAndKeepsTheOthersAtTheirDefaults) {
    New();
    const std::string photo = Photo("a.jpg");
    const Ended ended = Add({"--filter", "Error Level Analysis", "--set", "Quality=83", "--evidence", photo});
    ASSERT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ("Error Level Analysis", File()["Bookmarks"][0]["filter"]);
    EXPECT_EQ(83, File()["Bookmarks"][0]["Parameters"]["Quality"]);
    EXPECT_EQ("Undefined", File()["Bookmarks"][0]["status"]);
}

TEST_F(Project, AddRefused_LeavesTheFile) {
    New();
    const std::string before = ReadFile(Case());
    const std::string photo = Photo("a.jpg");
    const std::vector<std::pair<std::vector<std::string>, int>> cases = {
        {{"--filter", "Original", "--evidence", photo, "--status", "maybe"}, 2},
        {{"--filter", "Nonsense", "--evidence", photo}, 2},
        {{"--filter", "Error Level Analysis", "--set", "Nonsense=1", "--evidence", photo}, 2},
        {{"--filter", "Error Level Analysis", "--set", "Quality=high", "--evidence", photo}, 2},
        {{"--filter", "Original", "--evidence", Path("missing.jpg")}, 3},
        {{"--filter", "Original", "--evidence", Path("")}, 3},
        {{"--filter", "Original"}, 2}};
    for (auto const& [arguments, status] : cases) {
        const Ended ended = Add(arguments);
        EXPECT_EQ(status, ended.status) << ended.err;
        EXPECT_EQ(before, ReadFile(Case()));
    }
}

TEST_F(Project, AddRefused_NamesTheReason) {
    New();
    const std::string photo = Photo("a.jpg");
    EXPECT_EQ("orvelle: --status: \"maybe\" is none of: Undefined, OK, Warning, To Check\n",
              Add({"--filter", "Original", "--evidence", photo, "--status", "maybe"}).err);
    EXPECT_EQ("orvelle: missing.jpg: no such file\n", Add({"--filter", "Original", "--evidence", "missing.jpg"}).err);
    const std::string unknown = Add({"--filter", "Nonsense", "--evidence", photo}).err;
    EXPECT_TRUE(Contains(unknown, "Nonsense"));
    EXPECT_TRUE(Contains(unknown, "orvelle filters"));
    const std::string quality =
        Add({"--filter", "Error Level Analysis", "--set", "Quality=high", "--evidence", photo}).err;
    EXPECT_TRUE(Contains(quality, "Quality"));
    EXPECT_TRUE(Contains(quality, "100")) << quality;
}

TEST_F(Project, List_HasOneLineForEachBookmark) {
    Three();
    const std::vector<std::string> lines = Lines(Orvelle({"bookmark", "list", Case()}).out);
    ASSERT_EQ(3U, lines.size());
    EXPECT_EQ("1  Undefined  First   Original  " + Path("img/a.jpg"), lines[0]);
    EXPECT_EQ("2  Undefined  Second  Original  " + Path("img/a.jpg"), lines[1]);
}

TEST_F(Project, ListOfAnEmptyProject_PrintsNothing) {
    New();
    EXPECT_EQ("", Orvelle({"bookmark", "list", Case()}).out);
    EXPECT_EQ("[]\n", Orvelle({"bookmark", "list", Case(), "--format", "json"}).out);
}

TEST_F(Project, ListAsJson_IsAnArrayWithAbsolutePaths) {
    Three();
    const Ended ended = Orvelle({"bookmark", "list", Case(), "--format", "json"});
    const nlohmann::json value = nlohmann::json::parse(ended.out);
    ASSERT_EQ(3U, value.size());
    EXPECT_EQ(3, value[2]["number"]);
    EXPECT_EQ("Third", value[2]["name"]);
    EXPECT_EQ(Path("img/a.jpg"), value[2]["evidence"]);
}

TEST_F(Project, MovedFolder_KeepsItsImages) {
    Three();
    const std::string elsewhere = Folder() + "/elsewhere";
    std::filesystem::rename(Path(""), elsewhere);
    const Ended ended = Orvelle({"bookmark", "list", elsewhere + "/case.orv", "--format", "json"});
    EXPECT_EQ(elsewhere + "/img/a.jpg", nlohmann::json::parse(ended.out)[0]["evidence"]);
}

TEST_F(Project, Set_ChangesOneBookmarkOnly) {
    Three();
    const nlohmann::json before = File();
    EXPECT_EQ(0, Orvelle({"bookmark", "set", Case(), "2", "--status", "ok", "--note", "cleared"}).status);
    const nlohmann::json after = File();
    EXPECT_EQ(before["Bookmarks"][0], after["Bookmarks"][0]);
    EXPECT_EQ(before["Bookmarks"][2], after["Bookmarks"][2]);
    EXPECT_EQ("OK", after["Bookmarks"][1]["status"]);
    EXPECT_EQ("cleared", after["Bookmarks"][1]["note"]);
    EXPECT_EQ("Second", after["Bookmarks"][1]["Name"]);
}

TEST_F(Project, Remove_MovesTheLaterOnesUp) {
    Three();
    EXPECT_EQ(0, Orvelle({"bookmark", "remove", Case(), "2"}).status);
    ASSERT_EQ(2U, File()["Bookmarks"].size());
    EXPECT_EQ("Third", File()["Bookmarks"][1]["Name"]);
    const Ended ended = Orvelle({"bookmark", "remove", Case(), "9"});
    EXPECT_EQ(2, ended.status);
    EXPECT_EQ("orvelle: " + Case() + ": no bookmark 9: the project has 2\n", ended.err);
}

TEST_F(Project, UnknownBookmark_StaysAsItWas) {
    Write("case.orv", Foreign(Unknown));
    const nlohmann::json before = File()["Bookmarks"][0];
    const std::string photo = Photo("a.jpg");
    EXPECT_EQ(0, Add({"--filter", "Original", "--evidence", photo}).status);
    ASSERT_EQ(2U, File()["Bookmarks"].size());
    EXPECT_EQ(before, File()["Bookmarks"][0]);
}

TEST_F(Project, Check_TellsEachFaultOnALine) {
    Write("case.orv", Foreign(Unknown));
    const std::string before = ReadFile(Case());
    const Ended ended = Orvelle({"project", "check", Case()});
    EXPECT_EQ(3, ended.status);
    EXPECT_EQ(
        "bookmark 1 \"Odd\": unknown filter \"Tea Leaves\"\nbookmark 1 \"Odd\": unknown status \"maybe\"\n"
        "bookmark 1 \"Odd\": missing image " +
            Path("a.jpg") + "\n",
        ended.out);
    EXPECT_EQ(before, ReadFile(Case()));
}

TEST_F(Project, CheckOfASoundProject_IsSilent) {
    Three();
    const Ended ended = Orvelle({"project", "check", Case()});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.out);
}

TEST_F(Project, WhatIsNoProject_IsRefusedAndStays) {
    for (std::string const& text : {std::string("hello"), std::string("[1,2]"), std::string("{\"a\":1}"), std::string(),
                                    std::string("\xff\xfe\0", 3)}) {
        Write("case.orv", text);
        for (char const* command : {"check", "report"}) {
            const Ended ended = Orvelle({"project", command, Case()});
            EXPECT_EQ(3, ended.status);
            EXPECT_EQ(0U, ended.err.find("orvelle: " + Case() + ": not a project file: ")) << ended.err;
        }
        EXPECT_EQ(3, Add({"--filter", "Original", "--evidence", Photo("a.jpg")}).status);
        EXPECT_EQ(text, ReadFile(Case()));
    }
    EXPECT_EQ("orvelle: " + Path("none.orv") + ": no such file\n", Orvelle({"project", "check", Path("none.orv")}).err);
}

TEST_F(Project, BrokenJson_IsToldWithItsLine) {
    Write("case.orv", "hello");
    EXPECT_TRUE(Contains(Orvelle({"project", "check", Case()}).err, "not a project file: line 1, "))
        << Orvelle({"project", "check", Case()}).err;
}

TEST_F(Project, Report_StandsBesideTheProject) {
    Three();
    ASSERT_EQ(0, Orvelle({"bookmark", "set", Case(), "1", "--name", "<b>& \"x\""}).status);
    Surroundings inside;
    inside.folder = Path("");
    for (int run = 0; run < 2; ++run) {
        const Ended ended = Orvelle({"project", "report", "case.orv"}, inside);
        EXPECT_EQ(0, ended.status) << ended.err;
        EXPECT_EQ("case.html\n", ended.out);
    }
    const std::string page = ReadFile(Path("case.html"));
    EXPECT_TRUE(Contains(page, "1. &lt;b&gt;&amp; &quot;x&quot;")) << page;
    EXPECT_TRUE(Contains(page, "3. Third"));
    EXPECT_TRUE(Contains(page, "Filter Type: Original"));
}

TEST_F(Project, ReportElsewhere_NeedsForceToReplace) {
    Three();
    const std::string other = Write("other.html", "mine");
    EXPECT_EQ(5, Orvelle({"project", "report", Case(), "--output", other}).status);
    EXPECT_EQ("mine", ReadFile(other));
    EXPECT_EQ(0, Orvelle({"project", "report", Case(), "--output", other, "--force"}).status);
    EXPECT_NE("mine", ReadFile(other));
    EXPECT_EQ(5, Orvelle({"project", "report", Case(), "--output", Path("img/a.jpg"), "--force"}).status);
}

TEST_F(Project, ReportOfAnEmptyProject_WritesNothing) {
    New();
    const Ended ended = Orvelle({"project", "report", Case()});
    EXPECT_EQ(0, ended.status);
    EXPECT_EQ("", ended.out);
    EXPECT_EQ("orvelle: " + Case() + ": no bookmarks\n", ended.err);
    EXPECT_FALSE(Exists(Path("case.html")));
}

TEST_F(Project, ReportWithAnUnknownFilter_LeavesThatOut) {
    Three();
    nlohmann::json value = File();
    value["Bookmarks"].insert(value["Bookmarks"].begin() + 1, nlohmann::json::parse(Unknown));
    Write("case.orv", value.dump());
    const Ended ended = Orvelle({"project", "report", Case()});
    EXPECT_EQ(3, ended.status);
    EXPECT_TRUE(Contains(ended.err, "bookmark 2 is left out: unknown filter \"Tea Leaves\"")) << ended.err;
    const std::string page = ReadFile(Path("case.html"));
    EXPECT_FALSE(Contains(page, "Tea Leaves"));
    EXPECT_TRUE(Contains(page, "3. Third"));
}

TEST_F(Project, TwoAtOnce_LoseNoBookmark) {
    New();
    const std::string photo = Photo("a.jpg");
    const auto add = [&](std::string const& name) {
        for (int i = 0; i < 5; ++i) Add({"--name", name, "--filter", "Original", "--evidence", photo});
    };
    std::thread other(add, "one");
    add("two");
    other.join();
    EXPECT_EQ(10U, File()["Bookmarks"].size());
}

TEST_F(Project, FolderThatCannotBeWritten_LeavesTheFile) {
    if (geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
    Three();
    const std::string before = ReadFile(Case());
    chmod(Path("").c_str(), 0555);
    const Ended ended = Orvelle({"bookmark", "remove", Case(), "1"});
    chmod(Path("").c_str(), 0755);
    EXPECT_EQ(5, ended.status);
    EXPECT_EQ(before, ReadFile(Case()));
}

TEST_F(Project, HundredThousandBookmarks_AreListed) {
    const std::string one = R"({"Name":"n","evidence":"a.jpg","reference":"","note":"","filter":"Original",)"
                            R"("Parameters":{},"status":"OK"})";
    std::string list = one;
    for (int i = 1; i < 100000; ++i) list += "," + one;
    Write("case.orv", Foreign(list));
    const Ended ended = Orvelle({"bookmark", "list", Case(), "--format", "jsonl"});
    EXPECT_EQ(0, ended.status) << ended.err;
    EXPECT_EQ(100000U, CountOf(ended.out, "\n"));
}

}  // namespace
