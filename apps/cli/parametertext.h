// SPDX-License-Identifier: Apache-2.0
// Parameters as a person names and sets them.
#pragma once

#include <string>
#include <vector>

#include "tolbase/parameter.h"

namespace cli {

// What a parameter takes, in words: "a whole number from 1 to 100", "one of: RGB, HSV".
std::string Takes(Parameter const& parameter);

// Sets one value from its text. False if the parameter does not take it; it is unchanged then.
bool SetParameter(Parameter& parameter, std::string const& text);

// Sets parameters from texts of the form NAME=VALUE; names without regard to case, blanks, "_" and "-", and by any
// beginning that only one of them has; none twice. Throws Failure (ExitUsage) that names `option`, the parameter and
// its range.
void SetParameters(VecParameter& parameters, std::vector<std::string> const& settings, std::string const& option);

// The place of the one name that is `wanted` or, failing that, the only one that begins with it; names.size() if there
// is none, and more than that if several begin with it.
size_t FindName(std::vector<wxString> const& names, wxString const& wanted);

}  // namespace cli
