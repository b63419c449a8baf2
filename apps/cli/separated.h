// SPDX-License-Identifier: Apache-2.0
// Lines of cells for machines.
#pragma once

#include <string>
#include <vector>

namespace cli {

// One line with its line end. "csv" and "ssv" quote as RFC 4180 tells, with a comma or a semicolon; "tsv" has no
// quoting: a tab, line feed, carriage return or backslash in a cell is written as \t, \n, \r or \\. A cell is otherwise
// as it is, one that begins with "=" too: what is evidence is not altered for the sake of a spreadsheet.
std::string SeparatedLine(std::string const& format, std::vector<std::string> const& cells);

}  // namespace cli
