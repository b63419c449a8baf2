// SPDX-License-Identifier: Apache-2.0
// The tables of a JPEG as texts. Pure functions: any thread.
#pragma once

#include <wx/string.h>

#include <cstddef>
#include <vector>

// A line for each row: eight numbers, right-aligned to four, a blank between them, a line break at the end. An empty
// table gives an empty text.
wxString QuantizationTableText(std::vector<std::vector<int>> const& table);

// The 16 code counts of a row (0 the DC class, 1 the AC class), each with a blank behind it, and on a second line their
// total. A row that is missing or all zero gives an empty text. The word is translated once in the life of the process.
wxString HuffmanRowText(std::vector<std::vector<int>> const& table, std::size_t row);
