// SPDX-License-Identifier: Apache-2.0
// Filters and their parameters as a person names them on the command line.
//
// Names are taken without regard to case, blanks, "_" and "-", and may be cut short as long as they stand for one thing
// alone. A whole name goes before one that it begins.
#pragma once

#include <string>
#include <vector>

#include "orvcore/context.h"
#include "tolbase/parameter.h"

class OrvFilter;

namespace cli {

// The filter of that name. Throws Failure (ExitUsage) for an unknown name and for one that stands for several.
OrvFilter& ChooseFilter(OrvContext const& context, std::string const& name);

// Takes settings of the form "parameter=value" over into `parameters`. Throws Failure (ExitUsage) that names `option`
// and what it takes: for a parameter that isn't there, is meant twice, or does not take the value.
void SetParameters(VecParameter& parameters, std::vector<std::string> const& settings, std::string const& option);

// What a parameter takes, in words: "a whole number from 1 to 100", "one of: Gray, Color".
std::string WhatItTakes(Parameter const& parameter);

// Gives a parameter the value of a text; false where it does not take it. The value that it has is one that it takes.
bool SetFromText(Parameter& parameter, wxString const& text);

}  // namespace cli
