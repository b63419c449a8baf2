// SPDX-License-Identifier: Apache-2.0
#include "orvcore/filtertext.h"

#include <wx/filename.h>

#include "orvcore/tablewriter.h"
#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace {

wxString WithExtension(wxString const& path, wxString const& extension) {
    wxFileName name(path);
    name.SetExt(extension);
    return name.GetFullPath();
}

// A warning table keeps its first three columns; the others are for the program.
int ColumnLimit(VecVecString const& table) {
    return table.empty() ? -1 : static_cast<int>(table[0].size() / 2 + 1);
}

}  // namespace

OrvFilterText::OrvFilterText(wxString const& name) : OrvFilter(name) {}

void OrvFilterText::SaveOutput(wxString const& path) {
    for (Parameter const& parameter : m_parametersOutput) {
        if (parameter.GetType() != ParameterTypeOutput) continue;
        VecVecString const table = parameter.GetValue<VecVecString>();
        VecVecString const translated = TranslateTable(table, ColumnLimit(table));
        if (path.EndsWith(".html")) {
            SaveImageInfoTableAsHtml(path, translated, true);
        } else if (path.EndsWith(".tsv")) {
            SaveImageInfoTableAsTsv(path, translated);
        } else {
            SaveImageInfoTableAsTxt(path, translated);
        }
    }
}

void OrvFilterText::SaveOutputBatch(wxString const& path) {
    SaveOutput(WithExtension(path, "html"));
}

wxString OrvFilterText::GetReportData(wxString const& outputPath, wxString const& /*outputFolder*/) const {
    return ReadFile(WithExtension(outputPath, "html"));
}

wxString OrvFilterText::GetOutputFileSelectorString() const {
    return "text file (*.txt)|*.txt|HTML file (*.html)|*.html|TAB separated values (*.tsv)|*.tsv|All files (*.*)|*.*";
}

OrvFilterTextCustom::OrvFilterTextCustom(wxString const& name) : OrvFilter(name) {}

void OrvFilterTextCustom::SaveOutput(wxString const& path) {
    WriteFile(path, m_text);
}

void OrvFilterTextCustom::SaveOutputBatch(wxString const& path) {
    SaveOutput(WithExtension(path, "txt"));
}

wxString OrvFilterTextCustom::GetReportData(wxString const& outputPath, wxString const& /*outputFolder*/) const {
    return HtmlWriter::DoPre(EscapeHtmlString(ReadFile(WithExtension(outputPath, "txt"))));
}

wxString OrvFilterTextCustom::GetOutputFileSelectorString() const {
    return "text file (*.txt)|All files (*.*)|*.*";
}
