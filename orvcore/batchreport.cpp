// SPDX-License-Identifier: Apache-2.0
#include "orvcore/batchreport.h"

#include <sys/stat.h>
#include <wx/datetime.h>
#include <wx/filename.h>

#include <functional>
#include <map>

#include "orvcore/context.h"
#include "orvcore/filter.h"
#include "orvcore/translate.h"
#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"

char const* const OrvBatchTsvHeader = "Input Path\tFilter\tConfiguration\tStatus\tOutput Path\n";

namespace {

// What a name on a usual file system may have, with room for the ending of a temporary file.
constexpr size_t NameBytes = 240;

wxString Translated(wxString const& text) {
    return EscapeHtmlString(OrvTranslate(text));
}

wxString Fact(char const* label, wxString const& value) {
    return Translated(label) + EscapeHtmlString(value) + HtmlWriter::DoBr();
}

wxString OneLine(wxString cell) {
    cell.Replace("\t", "\\t");
    cell.Replace("\r", "\\r");
    cell.Replace("\n", "\\n");
    return cell;
}

std::pair<wxString, wxString> SplitExtension(wxString const& name) {
    const size_t point = name.rfind('.');
    if (point == wxString::npos || point == 0) return {name, wxString()};
    return {name.substr(0, point), name.substr(point)};
}

// `stem` + `behind`; a stem that is too long is cut and marked by its hash, so that two long ones stay two.
wxString Fitting(wxString stem, wxString const& behind) {
    const size_t room = NameBytes - std::min(PathToBytes(behind).size(), NameBytes / 2);
    if (PathToBytes(stem).size() <= room) return stem + behind;
    const wxString mark = wxString::Format("~%08x", static_cast<unsigned>(std::hash<std::string>()(PathToBytes(stem))));
    while (PathToBytes(stem).size() + mark.length() > room) stem.RemoveLast();
    return stem + mark + behind;
}

}  // namespace

wxString OrvBatchHtmlStart() {
    const wxString folder = GetAppDocumentsPath() + wxFILE_SEP_PATH + "report-style" + wxFILE_SEP_PATH;
    const AppVersion version = GetContext()->GetAppVersion();
    const wxString title = wxString::Format(OrvTranslate("%s Report"), version.GetAppName());
    return HtmlWriter::DoHeaderInternalStyle(folder + "style.css") + ReadFile(folder + "head.html") +
           HtmlWriter::DoH(1, EscapeHtmlString(title), wxString()) + HtmlWriter::DoHr() +
           Fact("Report Generation: ", wxDateTime::Now().Format("%Y-%m-%d %H:%M:%S")) +
           Fact("Program Version Info: ", wxString()) + Fact("Build date: ", version.GetBuildDate()) +
           Fact("Revision: ", version.GetEngineRevision()) + Fact("Platform: ", version.GetPlatform()) +
           HtmlWriter::DoHr();
}

wxString OrvBatchHtmlHeading(wxString const& path, size_t number) {
    const wxString counted = number == 0 ? wxString() : " " + ToString<uint64_t>(number);
    const wxString text = wxString::Format(OrvTranslate("File%s: %s"), counted, GetFilenameNoPath(path));
    return HtmlWriter::DoH(2, EscapeHtmlString(text), wxString());
}

wxString OrvBatchHtmlProblem(wxString const& text) {
    return HtmlWriter::DoP(HtmlWriter::DoSpan(EscapeHtmlString(text)));
}

wxString OrvBatchHtmlFailure(wxString const& filter, wxString const& parameters, wxString const& anchor,
                             wxString const& error) {
    return HtmlWriter::DoBr() + HtmlWriter::DoH(3, Translated(filter) + " " + EscapeHtmlString(parameters), anchor) +
           HtmlWriter::DoBr() + OrvBatchHtmlProblem(error) + HtmlWriter::DoBr();
}

wxString OrvBatchTsvLine(VecString const& cells) {
    VecString lines;
    for (wxString const& cell : cells) lines.push_back(OneLine(cell));
    return CatVecString(lines, "\t") + "\n";
}

OrvBatchNames::OrvBatchNames(VecString const& files, wxString const& outputFolder, wxString const& report)
    : m_folder(outputFolder), m_report(report) {
    std::map<wxString, unsigned> seen;
    for (wxString const& file : files) {
        m_ordinals.push_back(seen[CleanFileName(GetFilenameNoPath(file))]++);
        struct stat info {};
        if (stat(PathToBytes(file).c_str(), &info) == 0) m_examined.emplace(info.st_dev, info.st_ino);
    }
}

bool OrvBatchNames::IsExamined(wxString const& path) const {
    struct stat info {};
    return stat(PathToBytes(path).c_str(), &info) == 0 && m_examined.count({info.st_dev, info.st_ino}) > 0;
}

void OrvBatchNames::StartFile(size_t index) {
    m_index = index;
    m_used.clear();
}

// Filters with texts give the path another ending.
bool OrvBatchNames::IsFree(wxString const& path) const {
    const wxString stem = path.substr(0, path.length() - SplitExtension(GetFilenameNoPath(path)).second.length());
    for (wxString const& candidate : {path, stem + ".html", stem + ".txt"}) {
        if (candidate == m_report || m_used.count(candidate) > 0 || IsExamined(candidate)) return false;
    }
    return true;
}

wxString OrvBatchNames::Place(wxString const& name) {
    const auto [stem, extension] = SplitExtension(GetFilenameNoPath(name));
    wxString path;
    for (uint64_t number = m_ordinals.at(m_index) + uint64_t{1};; ++number) {
        const wxString counted = number == 1 ? wxString() : " (" + ToString<uint64_t>(number) + ")";
        path = m_folder + wxFILE_SEP_PATH + Fitting(stem, counted + extension);
        if (IsFree(path)) break;
    }
    m_used.insert(path);
    return path;
}
