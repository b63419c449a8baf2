// SPDX-License-Identifier: Apache-2.0
// A list of things as a table with a header, in every format.
#pragma once

#include <string>
#include <vector>

#include "apps/cli/output.h"

namespace cli {

struct PlainTable {
    std::string schema;  // "orvelle/options/1"
    std::string title;
    std::vector<std::string> keys;    // of the columns, for JSON
    std::vector<std::string> titles;  // of the columns, for a person
    std::vector<std::vector<std::string>> rows;
};

// JSON: {"schema", "tool", "table", "rows": [{key: value}]}; JSON lines: an object for each row, with "schema".
void WritePlainTable(PlainTable const& table, std::string const& format, Output& output);

}  // namespace cli
