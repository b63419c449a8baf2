// SPDX-License-Identifier: Apache-2.0
// The project file and the page made of it.
#include "orvcore/project.h"

#include "orvcore/filter.h"

#include "tests/fuzz/engine.h"
#include "tests/fuzz/target.h"
#include "tolbase/exception.h"

namespace fuzz {

namespace {

void Run(std::string const& bytes) {
    static InputFile const file("project.json");
    Engine();
    OrvProject project;
    try {
        project.LoadProject(file.Hold(bytes));
    } catch (TolException const&) {
        Require(project.GetBookmarks().empty(), "a project that can't be read stays empty");
        return;
    }
    for (OrvBookmark const& bookmark : project.GetBookmarks()) bookmark.GetStatusText();
    wxString const path = Folder() + "/saved.json";
    project.SaveProject(path);
    std::string const saved = BytesOf(path);
    OrvProject again;
    again.LoadProject(path);
    Require(again.GetBookmarks().size() == project.GetBookmarks().size(), "no bookmark is lost");
    again.SaveProject(path);
    Require(BytesOf(path) == saved, "a saved project is read as it is");
    wxString const page = again.GetReportText();
    Require(page.empty() == again.GetBookmarks().empty(), "there is a page for bookmarks alone");
}

std::vector<std::string> Seeds() {
    Engine();
    OrvFilter* const filter = Engine().GetFilters().back();
    OrvBookmark bookmark("A <title>", Folder() + "/evidence.jpg", Folder() + "/sub/reference.jpg", filter,
                         filter->GetParametersInput(), "", OrvBookmarkWarning);
    bookmark.note = wxString::FromUTF8("a note\nof two lines \xC3\xA4");
    OrvProject project;
    for (OrvFilter* each : Engine().GetFilters()) {
        bookmark.filter = each;
        bookmark.parameters = each->GetParametersInput();
        project.AddBookmark(bookmark);
    }
    wxString const path = Folder() + "/seed.json";
    project.SaveProject(path);
    std::string const whole = BytesOf(path);
    OrvProject one;
    one.AddBookmark(bookmark);
    one.SaveProject(path);
    std::string unknown = BytesOf(path);
    for (size_t at = unknown.find("Warning"); at != std::string::npos; at = unknown.find("Warning", at + 1))
        unknown[at] = 'M';
    return {whole, BytesOf(path), unknown, "[]", "{}"};
}

}  // namespace

Target ProjectTarget() {
    return {"project", Run, Seeds};
}

}  // namespace fuzz
