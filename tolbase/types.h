// SPDX-License-Identifier: Apache-2.0
// The two containers that every table and list of the house is made of. Plain values: no lock, no owner.
#pragma once
#include <wx/string.h>

#include <vector>

// A list of texts, or one row of a table.
using VecString = std::vector<wxString>;
// A table, row by row. Rows may differ in length.
using VecVecString = std::vector<VecString>;
