// SPDX-License-Identifier: Apache-2.0
// The project as an HTML page: a list of what was looked at, without results.
#include <wx/app.h>
#include <wx/filename.h>
#include <wx/translation.h>

#include <algorithm>

#include "orvcore/project.h"
#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"

namespace {

wxString Translated(const wxString& text) {
    return EscapeHtmlString(wxGetTranslation(text));
}

wxString Line(const wxString& format, const wxString& text) {
    return EscapeHtmlString(wxString::Format(wxGetTranslation(format), text));
}

wxString ParameterList(const VecParameter& parameters) {
    if (parameters.empty()) return HtmlWriter::DoEm(Translated("This filter has no parameters."));
    VecString items;
    for (const Parameter& parameter : parameters) {
        items.push_back(HtmlWriter::DoStrong(Translated(parameter.Name())) + ": " +
                        EscapeHtmlString(parameter.ToReport()) + HtmlWriter::DoBr() +
                        HtmlWriter::DoEm(HtmlWriter::EmFromBrackets(Translated(parameter.GetDescription()))));
    }
    return HtmlWriter::DoLi(items);
}

wxString Section(const OrvBookmark& bookmark, const wxString& number) {
    const wxString heading = number + ". " + EscapeHtmlString(bookmark.name);
    const wxString filter = bookmark.GetFilterName();
    return HtmlWriter::DoH(2, heading, "bookmark-" + number) +
           HtmlWriter::DoLi({Line("Evidence Filename: %s", bookmark.evidence),
                             Line("Reference Filename: %s", bookmark.reference), Line("Filter Name: %s", filter),
                             Line("Filter Type: %s", filter)}) +
           HtmlWriter::DoH(3, Translated("Parameters"), wxString()) + ParameterList(bookmark.parameters);
}

// The page's path. It is never that of a file that a bookmark names.
wxString ReportPath(const wxString& project, const std::vector<OrvBookmark>& bookmarks) {
    wxString path = !project.empty() ? project : bookmarks.front().evidence;
    if (path.empty()) path = "New Project";
    wxFileName name(path);
    name.SetExt("html");
    const auto isExamined = [&](const OrvBookmark& bookmark) {
        return bookmark.evidence == name.GetFullPath() || bookmark.reference == name.GetFullPath();
    };
    while (std::any_of(bookmarks.begin(), bookmarks.end(), isExamined)) name.SetName(name.GetName() + "-report");
    return name.GetFullPath();
}

}  // namespace

wxString OrvProject::GetReportText() const {
    if (m_bookmarks.empty()) return {};
    // wxTheApp would promise an application with windows.
    const wxAppConsole* const application = wxAppConsole::GetInstance();
    const wxString program = application != nullptr ? application->GetAppDisplayName() : wxString();
    wxString text = HtmlWriter::DoHeader("style.css", wxString()) +
                    HtmlWriter::DoH(1, Translated(wxString::Format("%s Report", program)), wxString());
    int number = 0;
    for (const OrvBookmark& bookmark : m_bookmarks) text += Section(bookmark, ToString<int>(++number));
    return text;
}

wxString OrvProject::GetReportPath() const {
    return m_bookmarks.empty() ? wxString() : ReportPath(m_filename, m_bookmarks);
}

bool OrvProject::WriteReport() const {
    const wxString path = GetReportPath();
    return !path.empty() && WriteFile(path, GetReportText());
}

wxString OrvProject::GenerateReport() const {
    WriteReport();
    return GetReportPath();
}
