// SPDX-License-Identifier: Apache-2.0
// What a filter gave, in every format.
#pragma once

#include <string>

#include "apps/cli/filterresult.h"
#include "apps/cli/output.h"

namespace cli {

// text: what was run, and then the tables, the points of the plot or the text. html: the same as a page. json: one
// object; jsonl: the same on one line. csv, tsv, ssv: tables, points and text alone, with a header; what was run for a
// picture. `savedTo` is the file that the picture went to, empty for none.
void WriteFilterResult(FilterResult const& result, std::string const& format, std::string const& savedTo,
                       Output& output);

}  // namespace cli
