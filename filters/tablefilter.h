// SPDX-License-Identifier: Apache-2.0
// What the filters have in common whose result is one table of the file or of both files.
//
// Threading: as OrvFilter: everything here runs on the worker thread.
#pragma once
#include <memory>

#include "orvcore/comparisontable.h"
#include "orvcore/filtertext.h"
#include "tolbase/export.h"

// Shows what a comparison table says of the slots. The result is the output parameter "Table" (type 90):
//
// - with the Evidence alone, its rows as its own table gives them: name, value and, where the table has them, warnings;
// - with a Reference, the comparison: a header row that begins with "#Id", then a row for each name, with the values
//   of both sides and a mark where they differ. A side that the filter does not support is left blank, without marks;
// - without any file that the filter can read, no row.
//
// A saved file holds the whole of that table.
class ORV_API OrvFilterTable : public OrvFilterText {
public:
    void Apply(OrvFileId id) override;
    void UpdateOutputData() override;
    // The table of the file of SaveOutputBatch, without the page around it.
    wxString GetReportData(wxString const& outputPath, wxString const& outputFolder) const override;

protected:
    // A filter of files, with one configuration and without parameters. Takes the comparison over; a copy of the filter
    // shares it with its source.
    OrvFilterTable(wxString const& name, std::unique_ptr<OrvInfoTableComparison> comparison);

    // What a slot that has been evaluated says of its file. `rows` are the slot's own: name, value and perhaps
    // warnings. Here always Ok.
    virtual FilterStatus GetVerdict(VecVecString const& rows) const;

    void Reset(OrvFileId id) override;
    // Plain text, HTML (".html") or tab-separated values (".tsv") by the case-sensitive ending of the name.
    void SaveOutput(wxString const& path) override;
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    VecVecString MakeTable() const;

    std::shared_ptr<OrvInfoTableComparison> m_comparison;
    bool m_hasTable[2] = {false, false};
};
