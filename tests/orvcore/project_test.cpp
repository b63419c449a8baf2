// SPDX-License-Identifier: Apache-2.0
#include "orvcore/project.h"

#include <wx/filename.h>

#include <filesystem>

#include "tests/orvcore/recordingfilter.h"
#include "tolbase/exception.h"
#include "tolbase/json.h"

using support::Number;
using support::ReadBytes;
using support::RecordingFilter;
using support::WriteBytes;

namespace {

class Project : public support::FilterEngine {
protected:
    Project() { filter = Add(new RecordingFilter("My Filter", {Number("Size", 1), Number("Step", 2)})); }

    // The first bookmark of a project with that text in "Bookmarks".
    OrvBookmark ReadOne(const std::string& bookmark) {
        project.LoadProject(WriteBytes(dir / "p.json", "{\"Bookmarks\": [" + bookmark + "]}"));
        return project.GetBookmarks().empty() ? OrvBookmark() : project.GetBookmarks()[0];
    }
    OrvBookmark Sample() {
        return OrvBookmark("one", dir / "case/in/a.jpg", dir / "other/b.jpg", filter, filter->Input(), "",
                           OrvBookmarkWarning);
    }

    RecordingFilter* filter = nullptr;
    OrvProject project;
};

wxString Written(const wxString& path, const char* key) {
    return JsonFromFile(path)["Bookmarks"][0U][key].AsString();
}

}  // namespace

TEST_F(Project, Bookmark_IgnoresItsNoteArgument) {
    const OrvBookmark bookmark("n", "e", "r", filter, {Number("x", 1)}, "a note", OrvBookmarkToCheck);
    EXPECT_EQ("", bookmark.note);
    EXPECT_EQ("n", bookmark.name);
    EXPECT_EQ("e", bookmark.evidence);
    EXPECT_EQ("r", bookmark.reference);
    EXPECT_EQ(OrvBookmarkToCheck, bookmark.status);
    EXPECT_TRUE(bookmark.IsOk());
    EXPECT_EQ("My Filter", bookmark.GetFilterName());
    EXPECT_FALSE(OrvBookmark().IsOk());
}

TEST_F(Project, SavedFlag_FollowsTheList) {
    EXPECT_TRUE(project.IsSaved());
    project.AddBookmark(Sample());
    EXPECT_FALSE(project.IsSaved());
    project.SaveProject(dir / "p.json");
    EXPECT_TRUE(project.IsSaved());
    project.SetBookmarks({});
    EXPECT_FALSE(project.IsSaved());
    project.AddBookmark(Sample());
    project.ResetProject();
    EXPECT_TRUE(project.IsSaved());
    EXPECT_TRUE(project.GetBookmarks().empty());
    EXPECT_EQ("", project.GetFilename());
}

TEST_F(Project, EmptyProject_IsWrittenWithAnEmptyArray) {
    project.SaveProject(dir / "p.json");
    const wxJSONValue value = JsonFromFile(dir / "p.json");
    EXPECT_EQ("Tolmar Orvelle Project", value["Name"].AsString());
    EXPECT_EQ("1.0", value["Version"].AsString());
    EXPECT_TRUE(value["Bookmarks"].IsArray());
    EXPECT_EQ(0, value["Bookmarks"].Size());
}

TEST_F(Project, Bookmark_IsWrittenInOrderWithRelativePaths) {
    project.AddBookmark(Sample());
    std::filesystem::create_directories(std::string((dir / "case").utf8_str()));
    project.SaveProject(dir / "case/p.json");
    const wxJSONValue bookmark = JsonFromFile(dir / "case/p.json")["Bookmarks"][0U];
    const wxArrayString names = bookmark.GetMemberNames();
    ASSERT_EQ(7U, names.size());
    const char* const expected[] = {"Name", "evidence", "reference", "note", "filter", "Parameters", "status"};
    for (size_t i = 0; i < 7; ++i) EXPECT_EQ(expected[i], names[i]);
    EXPECT_EQ("in/a.jpg", bookmark["evidence"].AsString());
    EXPECT_EQ("../other/b.jpg", bookmark["reference"].AsString());
    EXPECT_EQ("My Filter", bookmark["filter"].AsString());
    EXPECT_EQ("Warning", bookmark["status"].AsString());
}

TEST_F(Project, ProjectMovedWithItsImages_LoadsWithTheNewPaths) {
    project.AddBookmark(OrvBookmark("one", dir / "old/in/a.jpg", "", filter, filter->Input(), "", OrvBookmarkOk));
    std::filesystem::create_directories(std::string((dir / "old").utf8_str()));
    project.SaveProject(dir / "old/p.json");
    WriteBytes(dir / "new/p.json", ReadBytes(dir / "old/p.json"));
    OrvProject moved;
    moved.LoadProject(dir / "new/p.json");
    EXPECT_EQ(dir / "new/in/a.jpg", moved.GetBookmarks()[0].evidence);
    EXPECT_EQ("", moved.GetBookmarks()[0].reference);
    EXPECT_EQ(dir / "new/p.json", moved.GetFilename());
    EXPECT_TRUE(moved.IsSaved());
}

TEST_F(Project, NoteAndParameters_SurviveAFile) {
    OrvBookmark bookmark = Sample();
    bookmark.note = wxString::FromUTF8("gr\xc3\xb6\xc3\x9f\x65r \"quoted\"\n\xe2\x82\xac");
    bookmark.parameters[0].Set(boost::any(77));
    project.AddBookmark(bookmark);
    project.SaveProject(dir / "p.json");
    project.LoadProject(dir / "p.json");
    const OrvBookmark read = project.GetBookmarks()[0];
    EXPECT_EQ(bookmark.note, read.note);
    EXPECT_EQ(filter, read.filter);
    ASSERT_EQ(2U, read.parameters.size());
    EXPECT_EQ(77, read.parameters[0].GetValue<int>());
    EXPECT_EQ(2, read.parameters[1].GetValue<int>());
    EXPECT_EQ(OrvBookmarkWarning, read.status);
}

TEST_F(Project, Parameters_AreReadByNameIntoTheDefaults) {
    filter->Input()[1].Set(boost::any(50));
    const OrvBookmark bookmark = ReadOne(R"({"filter": "My Filter", "Parameters": {"Size": 9, "Gone": 1}})");
    ASSERT_EQ(2U, bookmark.parameters.size());
    EXPECT_EQ(9, bookmark.parameters[0].GetValue<int>());
    EXPECT_EQ(2, bookmark.parameters[1].GetValue<int>());
    EXPECT_EQ(50, filter->GetParametersInput()[1].GetValue<int>());
}

TEST_F(Project, FilterName_IsFoundByEquivalence) {
    EXPECT_TRUE(ReadOne(R"({"filter": "my_filter"})").IsOk());
}

TEST_F(Project, UnknownFilter_IsKeptAsReadAndWrittenBack) {
    const OrvBookmark bookmark =
        ReadOne(R"({"filter": "Lost Filter", "Parameters": {"a": 3, "list": [1, {"b": null}]}, "status": "OK"})");
    EXPECT_FALSE(bookmark.IsOk());
    EXPECT_EQ("Lost Filter", bookmark.GetFilterName());
    ASSERT_EQ(2U, bookmark.parameters.size());
    EXPECT_EQ("3", bookmark.parameters[0].ToReport());
    project.SaveProject(dir / "q.json");
    EXPECT_EQ("Lost Filter", Written(dir / "q.json", "filter"));
    EXPECT_EQ("{\"a\":3,\"list\":[1,{\"b\":null}]}",
              JsonToText(JsonFromFile(dir / "q.json")["Bookmarks"][0U]["Parameters"], 0));
}

TEST_F(Project, Status_IsReadByEquivalence) {
    EXPECT_EQ(OrvBookmarkUndefined, ReadOne(R"({"status": "Undefined"})").status);
    EXPECT_EQ(OrvBookmarkOk, ReadOne(R"({"status": "ok"})").status);
    EXPECT_EQ(OrvBookmarkWarning, ReadOne(R"({"status": "Warning"})").status);
    EXPECT_EQ(OrvBookmarkToCheck, ReadOne(R"({"status": "to_check"})").status);
}

TEST_F(Project, WarningInOtherLetters_IsTwo) {
    EXPECT_EQ(2, static_cast<int>(ReadOne(R"({"status": "Warning"})").status));
    EXPECT_EQ(2, static_cast<int>(ReadOne(R"({"status": "wARNING"})").status));
    EXPECT_EQ(-1, static_cast<int>(ReadOne(R"({"status": "Warnings"})").status));
}

TEST_F(Project, UnknownStatus_IsMinusOneAndWrittenBackAsRead) {
    EXPECT_EQ(-1, static_cast<int>(ReadOne(R"({"status": "Rejected"})").status));
    project.SaveProject(dir / "q.json");
    EXPECT_EQ("Rejected", Written(dir / "q.json", "status"));
    std::vector<OrvBookmark> list = project.GetBookmarks();
    list[0].status = OrvBookmarkOk;
    project.SetBookmarks(list);
    project.SaveProject(dir / "q.json");
    EXPECT_EQ("OK", Written(dir / "q.json", "status"));
}

TEST_F(Project, NameAndVersion_AreNotRead) {
    project.LoadProject(WriteBytes(dir / "p.json", R"({"Name": 7, "Version": "99", "Bookmarks": [{"Name": "x"}]})"));
    ASSERT_EQ(1U, project.GetBookmarks().size());
    EXPECT_EQ("x", project.GetBookmarks()[0].name);
}

TEST_F(Project, WithoutBookmarks_IsEmpty) {
    for (const char* text :
         {"{}", R"({"Bookmarks": 5})", R"({"Bookmarks": null})", R"({"Bookmarks": {"a": 1}})", "[1]"}) {
        project.AddBookmark(Sample());
        project.LoadProject(WriteBytes(dir / "p.json", text));
        EXPECT_TRUE(project.GetBookmarks().empty()) << text;
    }
}

TEST_F(Project, BookmarksOfTheWrongKind_ReadAsEmptyOnes) {
    project.LoadProject(
        WriteBytes(dir / "p.json", R"({"Bookmarks": [1, null, "x", [], {"Name": {}, "evidence": [], "filter": 5,
                                       "Parameters": [1, 2], "status": {}}, {"filter": "My Filter", "Parameters": 3}]})"));
    const std::vector<OrvBookmark> bookmarks = project.GetBookmarks();
    ASSERT_EQ(6U, bookmarks.size());
    EXPECT_EQ("", bookmarks[0].name);
    EXPECT_EQ("", bookmarks[0].evidence);
    EXPECT_FALSE(bookmarks[4].IsOk());
    EXPECT_TRUE(bookmarks[5].IsOk());
    EXPECT_EQ(2U, bookmarks[5].parameters.size());
    project.SaveProject(dir / "q.json");
    EXPECT_EQ(6, JsonFromFile(dir / "q.json")["Bookmarks"].Size());
}

TEST_F(Project, BrokenFile_LeavesTheProjectAsItWas) {
    project.AddBookmark(Sample());
    const std::string deep = std::string(100000, '[');
    for (const std::string& text : {std::string(), std::string("\xff\xfe\x00", 3), std::string("nonsense"), deep}) {
        EXPECT_THROW(project.LoadProject(WriteBytes(dir / "p.json", text)), TolException);
    }
    EXPECT_THROW(project.LoadProject(dir / "missing.json"), TolException);
    EXPECT_EQ(1U, project.GetBookmarks().size());
    EXPECT_EQ("", project.GetFilename());
    EXPECT_FALSE(project.IsSaved());
}

TEST_F(Project, HundredThousandBookmarks_Load) {
    std::string text = "{\"Bookmarks\": [";
    for (int i = 0; i < 100000; ++i) {
        text += (i > 0 ? "," : "") + std::string(R"({"Name": "n)") + std::to_string(i) +
                R"(", "evidence": "in/a.jpg", "filter": "My Filter", "Parameters": {"Size": 4}, "status": "OK"})";
    }
    project.LoadProject(WriteBytes(dir / "p.json", text + "]}"));
    const std::vector<OrvBookmark> bookmarks = project.GetBookmarks();
    ASSERT_EQ(100000U, bookmarks.size());
    EXPECT_EQ("n99999", bookmarks.back().name);
    EXPECT_EQ(dir / "in/a.jpg", bookmarks.back().evidence);
}

TEST_F(Project, SaveIntoAMissingFolder_Throws) {
    project.AddBookmark(Sample());
    EXPECT_THROW(project.SaveProject(dir / "missing/p.json"), TolException);
    EXPECT_FALSE(project.IsSaved());
}

// ---- report ----

TEST_F(Project, ReportOfAnEmptyProject_IsNone) {
    EXPECT_EQ("", project.GenerateReport());
}

TEST_F(Project, ReportOfASavedProjectWithoutBookmarks_LeavesNoFile) {
    std::filesystem::create_directories(std::string((dir / "alone").utf8_str()));
    project.SaveProject(dir / "alone/p.json");
    EXPECT_EQ("", project.GenerateReport());
    VecString names;
    for (auto const& entry : std::filesystem::directory_iterator(std::string((dir / "alone").utf8_str())))
        names.push_back(wxString::FromUTF8(entry.path().filename().string()));
    EXPECT_EQ(VecString({"p.json"}), names);
}

TEST_F(Project, ReportThatCannotBeWritten_IsNamedAllTheSame) {
    project.SaveProject(dir / "p.json");
    project.AddBookmark(Sample());
    std::filesystem::create_directories(std::string((dir / "p.html").utf8_str()));
    EXPECT_EQ(dir / "p.html", project.GenerateReport());
    EXPECT_FALSE(project.WriteReport());
}

TEST_F(Project, ReportOfAnUnsavedProject_StandsBesideTheFirstEvidence) {
    project.AddBookmark(OrvBookmark("one", dir / "a.jpg", "", filter, filter->Input(), "", OrvBookmarkOk));
    project.AddBookmark(OrvBookmark("two", dir / "other/b.jpg", "", filter, {}, "", OrvBookmarkOk));
    EXPECT_EQ(dir / "a.html", project.GenerateReport());
    const std::string text = ReadBytes(dir / "a.html");
    EXPECT_NE(std::string::npos, text.find("1. one"));
    EXPECT_NE(std::string::npos, text.find("style.css"));
    EXPECT_NE(std::string::npos, text.find("Filter Name: My Filter"));
    EXPECT_NE(std::string::npos, text.find("Filter Type: My Filter"));
    EXPECT_NE(std::string::npos, text.find("Size"));
    EXPECT_EQ(std::string::npos, text.find("</html>"));
}

TEST_F(Project, ReportOfASavedProject_StandsBesideItsFile) {
    project.AddBookmark(Sample());
    project.SaveProject(dir / "p.json");
    EXPECT_EQ(dir / "p.html", project.GenerateReport());
}

TEST_F(Project, ReportPath_IsNeverAnExaminedFile) {
    const wxString evidence = WriteBytes(dir / "a.html", "evidence");
    project.AddBookmark(OrvBookmark("one", evidence, "", filter, {}, "", OrvBookmarkOk));
    EXPECT_EQ(dir / "a-report.html", project.GenerateReport());
    EXPECT_EQ("evidence", ReadBytes(evidence));
}

TEST_F(Project, ReportOfABookmarkWithoutParameters_SaysSo) {
    project.AddBookmark(OrvBookmark("one", dir / "a.jpg", "", filter, {}, "", OrvBookmarkOk));
    const std::string text = ReadBytes(project.GenerateReport());
    const size_t heading = text.find("<h3>");
    ASSERT_NE(std::string::npos, heading);
    EXPECT_EQ("<h3>Parameters</h3>\n<em>This filter has no parameters.</em>", text.substr(heading));
}

TEST_F(Project, ThirdBookmark_HasItsAnchor) {
    for (const char* name : {"one", "two", "three"}) {
        project.AddBookmark(OrvBookmark(name, dir / "a.jpg", "", filter, {}, "", OrvBookmarkOk));
    }
    const std::string text = ReadBytes(project.GenerateReport());
    EXPECT_NE(std::string::npos, text.find("<h2 id=\"bookmark-3\">3. three</h2>\n"));
    EXPECT_EQ(std::string::npos, text.find("bookmark-4"));
}

TEST_F(Project, ReportOfAnUnknownFilter_UsesWhatWasReadAndEscapesIt) {
    ReadOne(R"({"Name": "<x>", "filter": "Lost & Found", "Parameters": {"a": "<b>3</b>"}})");
    const std::string text = ReadBytes(project.GenerateReport());
    EXPECT_NE(std::string::npos, text.find("Filter Name: Lost &amp; Found"));
    EXPECT_NE(std::string::npos, text.find("&lt;b&gt;3"));
    EXPECT_NE(std::string::npos, text.find("1. &lt;x&gt;"));
}
