// SPDX-License-Identifier: Apache-2.0
// One run of a filter and what it gave.
#pragma once

#include <array>
#include <string>

#include "apps/cli/filterfacts.h"
#include "apps/cli/record.h"
#include "orvcore/context.h"
#include "orvcore/filterconfiguration.h"
#include "orvcore/plotdata.h"

class OrvFilter;

namespace cli {

struct FilterSlot {
    bool loaded = false;
    Record record;  // of the file
    OrvFilterConfiguration::FilterStatus status = OrvFilterConfiguration::NotCalculated;
    bool fromCache = false;
    CvSize picture = {0, 0};  // of the Evidence alone, in pixels; 0 by 0 without one
    int channels = 0;
    OrvPlotData plot;
};

struct FilterResult {
    std::string filter;
    ResultKind kind = ResultKind::Nothing;
    VecParameter parameters;      // as they were when the run ended
    VecParameter postParameters;  // likewise: a step may have moved them
    VecParameter outputs;
    std::string text;  // of a filter that gives one
    // Why the result could not be stored; empty if it could.
    std::string cacheMessage;
    std::array<FilterSlot, 2> slots;

    // "!" a filter that warns; "?" no such filter, but a soft warning in a table; 0 neither.
    char Finding() const;
};

// Runs the filter on the files in the slots and takes down what it gave. On the worker thread, outside of any other
// run. Throws Failure: ExitFilter where the filter failed, ExitInput where it can do nothing with the Evidence.
void RunFilter(OrvFilter& filter, VecParameter const& parameters, VecParameter const& postParameters,
               FilterResult& result);

// True where the parameter's value is a table.
bool IsTable(Parameter const& parameter);

}  // namespace cli
