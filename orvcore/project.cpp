// SPDX-License-Identifier: Apache-2.0
#include "orvcore/project.h"

#include <wx/filename.h>

#include <utility>

#include "orvcore/context.h"
#include "orvcore/filter.h"
#include "tolbase/file.h"
#include "tolbase/json.h"
#include "tolbase/parser.h"
#include "tolbase/serializer.h"

namespace {

const char* const statusTexts[] = {"Undefined", "OK", "Warning", "To Check"};
constexpr int statusCount = 4;

wxString Text(const wxJSONValue& value, const char* key) {
    return FromJson<wxString>(value.ItemAt(key));
}

// The parameters of a filter that isn't there, each as the text that was read.
VecParameter AsTexts(const wxJSONValue& value) {
    VecParameter parameters;
    for (const auto& [name, item] : value.Members()) {
        parameters.push_back(CreateParameterString(name, wxString(), item.AsString()));
    }
    return parameters;
}

}  // namespace

OrvBookmark::OrvBookmark() = default;

OrvBookmark::OrvBookmark(const wxString& title, const wxString& evidencePath, const wxString& referencePath,
                         OrvFilter* usedFilter, const VecParameter& usedParameters, const wxString& /*note*/,
                         OrvBookmarkStatus finding)
    : name(title),
      evidence(evidencePath),
      reference(referencePath),
      filter(usedFilter),
      parameters(usedParameters),
      status(finding) {}

wxString OrvBookmark::GetFilterName() const {
    return filter != nullptr ? filter->GetName() : m_unknownFilter;
}

wxString OrvBookmark::GetStatusText() const {
    if (status >= 0 && status < statusCount) return statusTexts[status];
    return m_unknownStatus.empty() ? wxString(statusTexts[OrvBookmarkUndefined]) : m_unknownStatus;
}

OrvBookmarkStatus OrvBookmark::StatusFromText(const wxString& text) {
    for (int i = 0; i < statusCount; ++i) {
        if (Serializer::AreNamesEquivalent(text, statusTexts[i])) return static_cast<OrvBookmarkStatus>(i);
    }
    return static_cast<OrvBookmarkStatus>(-1);
}

wxJSONValue OrvBookmark::WriteToJson(const wxString& projectFolder) const {
    const bool asRead = filter == nullptr && m_unknownParameters.IsValid();
    wxJSONValue value(wxJSONTYPE_OBJECT);
    value["Name"] = ToJson<wxString>(name);
    value["evidence"] = ToJson<wxString>(FilenameAbsoluteToRelative(evidence, projectFolder));
    value["reference"] = ToJson<wxString>(FilenameAbsoluteToRelative(reference, projectFolder));
    value["note"] = ToJson<wxString>(note);
    value["filter"] = ToJson<wxString>(GetFilterName());
    value["Parameters"] = asRead ? m_unknownParameters : parameters.WriteToJson();
    value["status"] = ToJson<wxString>(GetStatusText());
    return value;
}

void OrvBookmark::ReadFromJson(const wxJSONValue& value, const wxString& projectFolder) {
    name = Text(value, "Name");
    evidence = FilenameRelativeToAbsolute(Text(value, "evidence"), projectFolder);
    reference = FilenameRelativeToAbsolute(Text(value, "reference"), projectFolder);
    note = Text(value, "note");
    const wxString filterName = Text(value, "filter");
    filter = GetContext()->GetFilterFromName(filterName);
    m_unknownFilter = filter == nullptr ? filterName : wxString();
    ReadParameters(value.ItemAt("Parameters"));

    const wxString text = Text(value, "status");
    status = StatusFromText(text);
    m_unknownStatus = status < 0 ? text : wxString();
}

void OrvBookmark::ReadParameters(const wxJSONValue& value) {
    if (filter == nullptr) {
        parameters = AsTexts(value);
        m_unknownParameters = value;
        return;
    }
    m_unknownParameters = wxJSONValue(wxJSONTYPE_INVALID);
    parameters = filter->GetParametersInput();
    // A parameter that the file lacks must not depend on what was looked at last.
    parameters.Reset();
    if (value.IsObject()) parameters.ReadFromJson(value);
}

OrvProject::OrvProject() = default;

void OrvProject::AddBookmark(const OrvBookmark& bookmark) {
    m_bookmarks.push_back(bookmark);
    m_saved = false;
}

void OrvProject::SetBookmarks(const std::vector<OrvBookmark>& bookmarks) {
    m_bookmarks = bookmarks;
    m_saved = false;
}

void OrvProject::ResetProject() {
    m_bookmarks.clear();
    m_filename.clear();
    m_saved = true;
}

void OrvProject::LoadProject(const wxString& path) {
    const wxJSONValue content = JsonFromFile(path);
    const wxString folder = wxPathOnly(path);
    std::vector<OrvBookmark> bookmarks;
    for (const wxJSONValue& element : content.ItemAt("Bookmarks").Elements()) {
        OrvBookmark bookmark;
        bookmark.ReadFromJson(element, folder);
        bookmarks.push_back(std::move(bookmark));
    }
    m_bookmarks = std::move(bookmarks);
    m_filename = path;
    m_saved = true;
}

void OrvProject::SaveProject(const wxString& path) {
    m_filename = path;
    Write(path);
    m_saved = true;
}

wxJSONValue OrvProject::WriteToJson() const {
    const wxString folder = wxPathOnly(m_filename);
    wxJSONValue bookmarks(wxJSONTYPE_ARRAY);
    for (const OrvBookmark& bookmark : m_bookmarks) bookmarks.Append(bookmark.WriteToJson(folder));
    wxJSONValue value(wxJSONTYPE_OBJECT);
    value["Name"] = wxString("Tolmar Orvelle Project");
    value["Version"] = wxString("1.0");
    value["Bookmarks"] = std::move(bookmarks);
    return value;
}
