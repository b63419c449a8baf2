// SPDX-License-Identifier: Apache-2.0
// What a filter is, for those who list, explain and run filters.
#pragma once

#include <string>
#include <vector>

#include "apps/cli/json.h"
#include "orvcore/filterconfiguration.h"
#include "tolbase/parameter.h"

class OrvFilter;

namespace cli {

// What a filter gives, by its base class.
enum class ResultKind { Nothing, Picture, Plot, Tables, Text };

ResultKind ResultKindOf(OrvFilter const& filter);
// "picture", "plot", "tables", "text", "nothing".
char const* ResultKindName(ResultKind kind);

// A value in its own kind: a number stays a number, an option is its text, a table an array of rows.
Json ValueJson(Parameter const& parameter);
// {name: value}, in the order of the parameters.
Json ValuesJson(VecParameter const& parameters);
// All that there is to tell of a filter, but for its long explanation.
Json FilterJson(OrvFilter const& filter);

// "Quality=90, Scale=2"; empty without parameters.
std::string ValuesText(VecParameter const& parameters);

}  // namespace cli
