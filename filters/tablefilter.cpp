// SPDX-License-Identifier: Apache-2.0
#include "filters/tablefilter.h"

#include <wx/filename.h>

#include <utility>

#include "filters/panelfactory.h"
#include "orvcore/tablewriter.h"
#include "tolbase/file.h"

namespace {

// A comparison's columns are a number, the name, so many of the Evidence, as many of the Reference, and the mark.
size_t ColumnsOfOneSide(VecString const& header) {
    return header.size() < 5 ? 0 : (header.size() - 3) / 2;
}

// The rows of one side of a comparison: the name and that side's cells.
VecVecString RowsOf(VecVecString const& comparison, OrvFileId id) {
    VecVecString rows;
    if (comparison.empty()) return rows;
    size_t const count = ColumnsOfOneSide(comparison[0]);
    size_t const first = id == Evidence ? 2 : 2 + count;
    for (size_t i = 1; i < comparison.size(); ++i) {
        VecString const& row = comparison[i];
        if (row.size() < first + count) continue;
        VecString cells = {row[1]};
        for (size_t column = first; column < first + count; ++column) cells.push_back(row[column]);
        rows.push_back(std::move(cells));
    }
    return rows;
}

bool IsComparison(VecVecString const& table) {
    return !table.empty() && !table[0].empty() && table[0][0].StartsWith(OrvMarkerNumeric);
}

VecVecString Translated(VecVecString const& table) {
    if (IsComparison(table)) return TranslateTable(table, -1);
    VecVecString translated = table;
    for (VecString& row : translated) row[0] = OrvTranslate(row[0]);
    return translated;
}

}  // namespace

OrvFilterTable::OrvFilterTable(wxString const& name, std::unique_ptr<OrvInfoTableComparison> comparison)
    : OrvFilterText(name), m_comparison(std::move(comparison)) {
    m_filterType = FilterTypeFileAnalysis;
    m_singleConfiguration = true;
    m_parametersOutput.push_back(CreateParameterTable("Table", "The rows of the file, or of both files"));
}

void OrvFilterTable::Apply(OrvFileId id) {
    VecVecString const comparison = m_comparison->Evaluate(id);
    m_hasTable[id] = true;
    m_status[id] = GetVerdict(RowsOf(comparison, id));
}

OrvFilter::FilterStatus OrvFilterTable::GetVerdict(VecVecString const& /*rows*/) const {
    return FilterStatus::Ok;
}

void OrvFilterTable::Reset(OrvFileId id) {
    m_comparison->Reset(id);
    m_hasTable[id] = false;
}

VecVecString OrvFilterTable::MakeTable() const {
    if (!m_hasTable[Evidence] && !m_hasTable[Reference]) return {};
    VecVecString comparison = m_comparison->GenerateTable();
    if (!m_hasTable[Reference]) return RowsOf(comparison, Evidence);
    if (m_hasTable[Evidence]) return comparison;
    // A file that the filter can't read differs from none.
    for (size_t i = 1; i < comparison.size(); ++i) comparison[i].back().clear();
    return comparison;
}

void OrvFilterTable::UpdateOutputData() {
    m_parametersOutput[0].Set(boost::any(MakeTable()));
}

void OrvFilterTable::SaveOutput(wxString const& path) {
    VecVecString const table = Translated(m_parametersOutput[0].GetValue<VecVecString>());
    if (path.EndsWith(".html")) {
        SaveImageInfoTableAsHtml(path, table, true);
    } else if (path.EndsWith(".tsv")) {
        SaveImageInfoTableAsTsv(path, table);
    } else {
        SaveImageInfoTableAsTxt(path, table);
    }
}

wxString OrvFilterTable::GetReportData(wxString const& outputPath, wxString const& outputFolder) const {
    wxString const page = OrvFilterText::GetReportData(outputPath, outputFolder);
    // Cells are escaped, so these are the page's own.
    size_t const start = page.find("<table");
    size_t const end = page.rfind("</table>");
    if (start == wxString::npos || end == wxString::npos || end < start) return page;
    return page.substr(start, end - start) + "</table>\n";
}

OrvFilterGuiBase* OrvFilterTable::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}
