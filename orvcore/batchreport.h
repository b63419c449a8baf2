// SPDX-License-Identifier: Apache-2.0
// The texts of a batch's report, as HTML and as tab-separated values, and how the files beside it are named. Pure
// functions but for the start, which reads the style files. Private to this library.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <set>
#include <utility>
#include <vector>

#include "tolbase/types.h"

// The page's start with the style inside, the head of the user's own and the facts on the program.
wxString OrvBatchHtmlStart();
// The heading of a file; `number` 0 gives none.
wxString OrvBatchHtmlHeading(wxString const& path, size_t number);
// A line that stands out.
wxString OrvBatchHtmlProblem(wxString const& text);
// In the place of a filter's own fragment, where the filter's state belongs to something else.
wxString OrvBatchHtmlFailure(wxString const& filter, wxString const& parameters, wxString const& anchor,
                             wxString const& error);

extern char const* const OrvBatchTsvHeader;
// The cells with tabs between them and a line end; a tab or line end within a cell is written as "\t", "\r", "\n".
wxString OrvBatchTsvLine(VecString const& cells);

// Names for output files, none of which is the report, an examined file, or the result of another file.
class OrvBatchNames {
public:
    // `outputFolder` without a separator at its end.
    OrvBatchNames(VecString const& files, wxString const& outputFolder, wxString const& report);

    // Whether the path leads to one of the examined files.
    bool IsExamined(wxString const& path) const;
    // Begins with the names of the file at this place in the list.
    void StartFile(size_t index);
    // The path for a proposed name.
    wxString Place(wxString const& name);

private:
    bool IsFree(wxString const& path) const;

    wxString m_folder;
    wxString m_report;
    std::vector<unsigned> m_ordinals;                              // how many files before have the same name, by file
    std::set<std::pair<unsigned long, unsigned long>> m_examined;  // device and inode
    std::set<wxString> m_used;                                     // of the present file
    size_t m_index = 0;
};
