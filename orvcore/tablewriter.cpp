// SPDX-License-Identifier: Apache-2.0
#include "orvcore/tablewriter.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <utility>

#include "orvcore/infotable.h"
#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/parser.h"
#include "tolbase/serializer.h"
#include "tolbase/text.h"

namespace {

bool IsMultiLine(wxString const& cell) {
    return cell.Find('\n') != wxNOT_FOUND;
}

int SignedLength(wxString const& cell) {
    const int length = static_cast<int>(std::min<size_t>(cell.length(), std::numeric_limits<int>::max()));
    return cell.StartsWith(" ") ? -length : length;
}

// The width of each column, negative for one that is aligned to the right. A new width goes to the end of the list
// even if earlier columns have none yet.
std::vector<int> ColumnWidths(VecVecString const& table) {
    std::vector<int> widths;
    for (VecString const& row : table) {
        for (size_t column = 0; column < row.size(); ++column) {
            if (IsMultiLine(row[column])) continue;
            const int length = SignedLength(row[column]);
            if (column >= widths.size()) {
                widths.push_back(length);
            } else if (std::abs(length) > std::abs(widths[column])) {
                widths[column] = length;
            }
        }
    }
    return widths;
}

void AppendPadded(wxString& text, wxString const& cell, int width) {
    const size_t wanted = static_cast<size_t>(std::abs(width));
    const size_t missing = wanted > cell.length() ? wanted - cell.length() : 0;
    if (width < 0) text.append(missing, ' ');
    text += cell;
    if (width > 0) text.append(missing, ' ');
    text += ' ';
}

// What a cell counts for in a column of numbers. A cell that says "nan" must not break the order: it counts as any
// other text that is no number.
double NumericKey(wxString const& cell) {
    wxString text = cell.StartsWith(OrvMarkerHard) ? cell.Mid(1) : cell;
    if (text.empty()) text = "-1000000000";
    const double number = FromString<double>(text);
    return std::isnan(number) ? 0.0 : number;
}

// Sorts rows by keys that are made once a row.
template <typename Key, typename MakeKey, typename Less>
void SortRows(VecVecString& table, size_t column, MakeKey makeKey, Less less) {
    std::vector<std::pair<Key, VecString>> rows;
    rows.reserve(table.size() - 1);
    for (auto row = table.begin() + 1; row != table.end(); ++row) {
        Key key = makeKey(column < row->size() ? (*row)[column] : wxString());
        rows.emplace_back(std::move(key), std::move(*row));
    }
    std::sort(rows.begin(), rows.end(), [&less](auto const& a, auto const& b) { return less(a.first, b.first); });
    std::transform(std::make_move_iterator(rows.begin()), std::make_move_iterator(rows.end()), table.begin() + 1,
                   [](auto&& row) { return std::move(row.second); });
}

VecVecString ReduceToStatus(VecVecString const& table) {
    VecVecString reduced;
    for (size_t i = 1; i < table.size(); ++i) {
        VecString const& row = table[i];
        if (row.size() < 2) continue;
        reduced.push_back({row[0].StartsWith(OrvMarkerHard) ? "Warning" : "Ok", row[1]});
    }
    return reduced;
}

}  // namespace

wxString FormatTable(VecVecString const& table) {
    const std::vector<int> widths = ColumnWidths(table);
    wxString text;
    for (VecString const& row : table) {
        for (size_t column = 0; column < row.size(); ++column) {
            if (IsMultiLine(row[column])) {
                text += '\n';
                text += row[column];
            } else if (column + 1 == row.size()) {
                AppendPadded(text, row[column], 1);
            } else {
                AppendPadded(text, row[column], column < widths.size() ? widths[column] : 0);
            }
        }
        text += '\n';
    }
    return text;
}

void SortVecVecString(VecVecString& table, int columnIndex, bool ascending) {
    if (columnIndex < 0 || table.empty() || static_cast<size_t>(columnIndex) >= table[0].size()) return;
    const auto column = static_cast<size_t>(columnIndex);
    if (table[0][column].StartsWith(OrvMarkerNumeric)) {
        SortRows<double>(table, column, NumericKey,
                         [ascending](double a, double b) { return ascending ? a < b : a > b; });
        return;
    }
    SortRows<wxString>(
        table, column, [](wxString const& cell) { return cell; },
        [ascending](wxString const& a, wxString const& b) { return ascending ? a.Cmp(b) < 0 : a.Cmp(b) > 0; });
}

VecVecString TranslateTable(VecVecString const& table, int maxColumns) {
    VecVecString translated;
    translated.reserve(table.size());
    for (VecString const& row : table) {
        const size_t count = maxColumns > 0 ? std::min(row.size(), static_cast<size_t>(maxColumns)) : row.size();
        const bool header = translated.empty();
        VecString cells;
        cells.reserve(count);
        for (size_t i = 0; i < count; ++i) cells.push_back(header || i == 1 ? OrvTranslate(row[i]) : row[i]);
        translated.push_back(std::move(cells));
    }
    return translated;
}

void SaveImageInfoTableAsTxt(wxString const& path, VecVecString const& table) {
    WriteFile(path, FormatTable(table));
}

void SaveImageInfoTableAsCsv(wxString const& path, VecVecString const& table) {
    WriteFile(path, CatVecVecString(table, ",", "\n"));
}

void SaveImageInfoTableAsTsv(wxString const& path, VecVecString const& table) {
    WriteFile(path, CatVecVecString(table, "\t", "\n"));
}

void SaveImageInfoTableAsSsv(wxString const& path, VecVecString const& table) {
    WriteFile(path, CatVecVecString(table, ";", "\n"));
}

void SaveImageInfoTableAsHtml(wxString const& path, VecVecString const& table, bool wholePage) {
    wxString rows;
    for (VecString const& row : table) rows += HtmlWriter::DoTrRedExcl(row);
    wxString text;
    if (wholePage) text = HtmlWriter::DoHeader("style.css", "");
    text += HtmlWriter::DoTable(rows);
    if (wholePage) text += HtmlWriter::DoFooter();
    WriteFile(path, text);
}

void SaveImageInfoTableByExtension(wxString const& path, VecVecString const& table, bool statusOnly) {
    const VecVecString rows = statusOnly ? ReduceToStatus(table) : table;
    const wxString ending = path.Lower();
    if (ending.EndsWith(".txt")) {
        SaveImageInfoTableAsTxt(path, rows);
    } else if (ending.EndsWith(".html") || ending.EndsWith(".htm")) {
        SaveImageInfoTableAsHtml(path, rows, true);
    } else if (ending.EndsWith(".csv")) {
        SaveImageInfoTableAsCsv(path, rows);
    } else if (ending.EndsWith(".tsv")) {
        SaveImageInfoTableAsTsv(path, rows);
    } else if (ending.EndsWith(".ssv")) {
        SaveImageInfoTableAsSsv(path, rows);
    }
}

uint64_t OrvStringToEnum(wxString const* names, uint64_t count, wxString const& name) {
    for (uint64_t i = 0; i < count; ++i) {
        if (Serializer::AreNamesEquivalent(names[i], name)) return i;
    }
    return std::numeric_limits<uint64_t>::max();
}
