// SPDX-License-Identifier: Apache-2.0
// Bases of the filters whose result is text: tables, or one free text. Neither is cached, so such a filter calculates
// anew whenever its parameters or the file change.
//
// Threading: as in OrvFilter; the texts are touched on the worker thread only. Both are copied and moved member-wise.
#pragma once
#include "orvcore/filter.h"
#include "tolbase/types.h"

// Shows tables. A concrete filter puts them into output parameters of type 90; a saved file is plain text, HTML
// (".html") or tab-separated values (".tsv") by the case-sensitive ending of its name.
class ORV_API OrvFilterText : public OrvFilter {
public:
    explicit OrvFilterText(wxString const& name);

    // Saves the tables as HTML: the path's extension is replaced.
    void SaveOutputBatch(wxString const& path) override;
    // The content of the file of SaveOutputBatch, as it stands.
    wxString GetReportData(wxString const& outputPath, wxString const& outputFolder) const override;
    wxString GetOutputFileSelectorString() const override;

protected:
    // Every table goes to the same path, so of several the last remains. Throws TolException for a table parameter that
    // holds neither a table nor a text.
    void SaveOutput(wxString const& path) override;

    VecString& GetTextData(OrvFileId id) { return m_textData[id]; }

    VecString m_textData[2];
};

// Holds one text, which the concrete filter sets.
class ORV_API OrvFilterTextCustom : public OrvFilter {
public:
    explicit OrvFilterTextCustom(wxString const& name);

    // Saves the text: the path's extension is replaced by "txt".
    void SaveOutputBatch(wxString const& path) override;
    // The content of the file of SaveOutputBatch as preformatted text.
    wxString GetReportData(wxString const& outputPath, wxString const& outputFolder) const override;
    wxString GetOutputFileSelectorString() const override;

protected:
    void SaveOutput(wxString const& path) override;

    wxString m_text;
};
