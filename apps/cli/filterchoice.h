// SPDX-License-Identifier: Apache-2.0
// Filters as a person names them on the command line.
#pragma once

#include <string>

#include "apps/cli/parametertext.h"
#include "orvcore/context.h"

class OrvFilter;

namespace cli {

// The filter of that name, without regard to case, blanks, "_" and "-"; any beginning that only one filter has will do.
// Throws Failure (ExitUsage) for an unknown name and for one that stands for several.
OrvFilter& ChooseFilter(OrvContext const& context, std::string const& name);

}  // namespace cli
