// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/filterchoice.h"

#include "apps/cli/failure.h"
#include "apps/cli/text.h"
#include "orvcore/filter.h"

namespace cli {

OrvFilter& ChooseFilter(OrvContext const& context, std::string const& name) {
    std::vector<wxString> names;
    const std::vector<OrvFilter*> filters = context.GetFilters();
    for (OrvFilter const* filter : filters) names.push_back(filter->GetName());
    const size_t index = FindName(names, FromUtf8(name));
    if (index < filters.size()) return *filters[index];
    throw Failure(ExitUsage, name,
                  index == filters.size() ? "no such filter; \"orvelle filters\" names them all"
                                          : "stands for several filters; \"orvelle filters\" names them all");
}

}  // namespace cli
