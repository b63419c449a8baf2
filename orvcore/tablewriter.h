// SPDX-License-Identifier: Apache-2.0
// What is done with a finished table: plain-text layout, sort by a column, translation, files.
//
// Threading: every function touches its arguments alone, and wxWidgets' global translations for reading.
// Cells go into text, CSV, TSV and SSV files as they are, without quoting; HTML alone escapes them, since they hold
// texts from the examined file. Every file is written whole, in one call.
#pragma once

#include <wx/string.h>

#include <cstdint>

#include "orvcore/translate.h"
#include "tolbase/export.h"
#include "tolbase/types.h"

// The table as lines of padded columns, each cell followed by a blank and each row by a line break. A cell that holds
// a line break stands on lines of its own and takes no part in the widths. A column is aligned to the right if its
// widest cell begins with a blank.
ORV_API wxString FormatTable(VecVecString const& table);

// Sorts the rows behind the first one by a column, in place and not stable. The column goes by numbers if its header
// begins with "#" (a leading "!" is skipped, an empty cell counts as -1000000000, a text that is no number as 0), by
// wxString::Cmp otherwise. A row without the column counts as one with an empty cell.
ORV_API void SortVecVecString(VecVecString& table, int columnIndex, bool ascending);

// A copy whose first row is translated wholly and whose other rows in the cell with index 1. Rows are cut to
// maxColumns cells if that is above 0.
ORV_API VecVecString TranslateTable(VecVecString const& table, int maxColumns);

ORV_API void SaveImageInfoTableAsTxt(wxString const& path, VecVecString const& table);
ORV_API void SaveImageInfoTableAsCsv(wxString const& path, VecVecString const& table);
ORV_API void SaveImageInfoTableAsTsv(wxString const& path, VecVecString const& table);
ORV_API void SaveImageInfoTableAsSsv(wxString const& path, VecVecString const& table);

// A table of HTML rows, with the header and footer of a page around it if `wholePage`.
ORV_API void SaveImageInfoTableAsHtml(wxString const& path, VecVecString const& table, bool wholePage);

// The format goes by the path's ending, in any case: .txt, .html, .htm, .csv, .tsv, .ssv. With another ending nothing
// is written. With `statusOnly` the rows behind the first one are reduced to two cells, "Warning" or "Ok" and the
// second cell; rows of fewer than two cells are left out.
ORV_API void SaveImageInfoTableByExtension(wxString const& path, VecVecString const& table, bool statusOnly);

// Index of the first of `count` names that is equivalent to `name` (without case, blanks, "_" and "-"); UINT64_MAX if
// none is.
ORV_API uint64_t OrvStringToEnum(wxString const* names, uint64_t count, wxString const& name);
