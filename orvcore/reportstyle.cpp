// SPDX-License-Identifier: Apache-2.0
#include "orvcore/reportstyle.h"

#include <wx/filename.h>
#include <wx/stdpaths.h>

#include <string>

#include "orvcore/context.h"
#include "tolbase/file.h"

namespace {

constexpr char const* StyleFiles[] = {"style.css", "head.html"};
// A build's programs stand deeper than installed ones.
constexpr int FoldersAbove = 3;

bool CopyIfMissing(wxString const& from, wxString const& to) {
    if (wxFileName::FileExists(to)) return true;
    std::string bytes;
    return ReadFileBytes(from, bytes) && WriteFileAtomically(to, bytes);
}

}  // namespace

wxString OrvFindShared(wxString const& name) {
    wxString folder = wxPathOnly(wxStandardPaths::Get().GetExecutablePath());
    for (int level = 0; level <= FoldersAbove && !folder.empty(); ++level) {
        const wxString candidate = folder + "/share/orvelle/" + name;
        if (wxFileName::DirExists(candidate)) return candidate;
        folder = wxPathOnly(folder);
    }
    if (GetContext() == nullptr) return {};
    const wxString own = GetContext()->GetConfigDir() + name;
    return wxFileName::DirExists(own) ? own : wxString();
}

wxString OrvFindReportStyle() {
    return OrvFindShared("report-style");
}

bool OrvInstallReportStyle(wxString const& documentsPath, wxString const& source) {
    const wxString from = source.empty() ? OrvFindReportStyle() : source;
    const wxString folder = documentsPath + wxFILE_SEP_PATH + "report-style";
    if (documentsPath.empty() || !CreateDirIfNotExists(folder)) return false;
    bool complete = true;
    for (char const* name : StyleFiles) {
        complete = CopyIfMissing(from + wxFILE_SEP_PATH + name, folder + wxFILE_SEP_PATH + name) && complete;
    }
    return complete;
}
