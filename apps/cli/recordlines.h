// SPDX-License-Identifier: Apache-2.0
// A record as lines for a person: one warning and one value a line.
#pragma once

#include <string>
#include <vector>

#include "apps/cli/record.h"

namespace cli {

struct RecordLine {
    std::string title;  // empty on the further lines of a row
    std::string value;
    std::string warning;  // with the marker of its own severity; the engine's cell has only that of its worst line
};

std::vector<RecordLine> LinesOf(Record const& record);

// At line feeds; one more than there are of them.
std::vector<std::string> SplitLines(std::string const& text);

}  // namespace cli
