// SPDX-License-Identifier: Apache-2.0
// The examiner's list of findings and its file.
#pragma once
#include <wx/jsonval.h>
#include <wx/string.h>

#include <vector>

#include "tolbase/export.h"
#include "tolbase/jsonobject.h"
#include "tolbase/parameter.h"

class OrvFilter;

// What the examiner makes of a finding. The texts in the file are "Undefined", "OK", "Warning" and "To Check".
enum OrvBookmarkStatus : int {
    OrvBookmarkUndefined = 0,
    OrvBookmarkOk = 1,
    OrvBookmarkWarning = 2,
    OrvBookmarkToCheck = 3,
};

// One finding: which filter, with which parameters, was looked at on which files. A plain value; the filter is not
// owned.
class ORV_API OrvBookmark : public JsonObject {
public:
    OrvBookmark();
    // The argument `note` is not taken over: a note comes from a file or is written to the member.
    OrvBookmark(const wxString& title, const wxString& evidencePath, const wxString& referencePath,
                OrvFilter* usedFilter, const VecParameter& usedParameters, const wxString& note,
                OrvBookmarkStatus finding);

    // True if the bookmark's filter is known.
    bool IsOk() const { return filter != nullptr; }

    // The filter's name, or the name that was read where no such filter is registered.
    wxString GetFilterName() const;
    // The finding's text, or the text that was read where it is none of the four.
    wxString GetStatusText() const;
    // The finding that a text stands for, without regard to case, blanks, "_" and "-"; -1 for none.
    static OrvBookmarkStatus StatusFromText(const wxString& text);

    using JsonObject::ReadFromJson;
    using JsonObject::WriteToJson;
    // The bookmark as a JSON object, its paths relative to `projectFolder`. What was read and not understood (an
    // unknown filter with its parameters, an unknown status) is written back as it was.
    wxJSONValue WriteToJson(const wxString& projectFolder) const;
    // Fills the bookmark from a JSON object. Never throws over its content: what is missing or of another kind gives
    // empty members, an unknown filter a null pointer, an unknown status -1. Parameters are read by name into a copy of
    // the filter's own; those of an unknown filter are kept as texts.
    void ReadFromJson(const wxJSONValue& value, const wxString& projectFolder);

    wxString name;
    wxString evidence;
    wxString reference;
    wxString note;
    OrvFilter* filter = nullptr;
    VecParameter parameters;
    OrvBookmarkStatus status = OrvBookmarkUndefined;

private:
    void ReadParameters(const wxJSONValue& value);

    wxString m_unknownFilter;
    wxString m_unknownStatus;
    wxJSONValue m_unknownParameters;
};

// The list of bookmarks and the file it stands in. The context owns one, and the worker thread works on it through
// commands; copies are handed to readers. Has no lock.
class ORV_API OrvProject : public JsonObject {
public:
    OrvProject();

    void AddBookmark(const OrvBookmark& bookmark);
    void SetBookmarks(const std::vector<OrvBookmark>& bookmarks);
    std::vector<OrvBookmark> GetBookmarks() const { return m_bookmarks; }
    wxString GetFilename() const { return m_filename; }
    // False from a change of the list to the next save, load or reset.
    bool IsSaved() const { return m_saved; }

    // Back to an empty project without a file.
    void ResetProject();
    // Replaces the list with that of a file; the paths in it are relative to the file's folder. Throws TolException and
    // leaves the project as it was if the file can't be read or is no JSON text.
    void LoadProject(const wxString& path);
    // Writes the list to a file, which becomes the project's file.
    void SaveProject(const wxString& path);
    // The page that WriteReport writes; empty for a project without bookmarks.
    wxString GetReportText() const;
    // Where it writes it; empty for a project without bookmarks.
    wxString GetReportPath() const;
    // Writes the list as an HTML page beside the project's file, or beside the first Evidence of an unsaved project.
    // False, and an old file whole, where it can't be written; false, and no file, for a project without bookmarks.
    bool WriteReport() const;
    // The same, and gives the page's path, whether it could be written or not; empty for a project without bookmarks.
    wxString GenerateReport() const;

    // The content of the project's file. The paths are relative to the folder of GetFilename.
    wxJSONValue WriteToJson() const override;

private:
    bool m_saved = true;
    wxString m_filename;
    std::vector<OrvBookmark> m_bookmarks;
};
