// SPDX-License-Identifier: Apache-2.0
// The stored configurations of filters: whatever the list holds, the list made of what was taken gives the same again.
#include "orvcore/filter.h"
#include "tests/fuzz/engine.h"
#include "tests/fuzz/target.h"

namespace fuzz {

namespace {

void Take(VecString const& list) {
    for (OrvFilter* filter : Engine().GetFilters()) filter->SetConfigurationsFromVecString(list);
}

void Run(std::string const& bytes) {
    VecString list;
    for (std::string const& line : Lines(bytes)) list.push_back(Text(line));
    Take(list);
    for (OrvFilter const* filter : Engine().GetFilters()) {
        Require(filter->GetConfigurationsSize() > 0, "a filter always has a configuration");
    }
    VecString const stored = Engine().GetConfigurationsFromFilters(false);
    Take(stored);
    Require(Engine().GetConfigurationsFromFilters(false) == stored, "a stored list is read as it is");
    Engine().ConvertToUntranslatedConfigurations(list);
}

std::vector<std::string> Seeds() {
    for (OrvFilter* filter : Engine().GetFilters()) filter->ResetDefaultConfigurations();
    std::vector<std::string> seeds(1);
    for (wxString const& entry : Engine().GetConfigurationsFromFilters(false)) {
        if (!seeds[0].empty()) seeds[0] += '\n';
        seeds[0] += std::string(entry.utf8_str());
    }
    seeds.emplace_back("!Histogram\nNoise Map---5-\"a-b\"\n-\n!\n--");
    return seeds;
}

}  // namespace

Target ConfigurationsTarget() {
    return {"configurations", Run, Seeds};
}

}  // namespace fuzz
