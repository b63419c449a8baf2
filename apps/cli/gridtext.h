// SPDX-License-Identifier: Apache-2.0
// A table with a header as aligned text for a person.
#pragma once

#include <string>
#include <vector>

namespace cli {

using Grid = std::vector<std::vector<std::string>>;

// One line a row, columns a blank apart, no blanks at a line's end. Cells are made printable. A cell of a column among
// `blocks` has line breaks of the program's own and stands on as many lines. A cell that is wider than
// `WidestGridCell` stands whole, and pushes the rest of its own line aside instead of the whole column. With `colour`,
// a last cell that begins with "!" or "?" is coloured.
constexpr size_t WidestGridCell = 40;
std::string GridText(Grid const& grid, std::vector<size_t> const& blocks = {}, bool colour = false);

}  // namespace cli
