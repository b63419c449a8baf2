// SPDX-License-Identifier: Apache-2.0
// One engine with all filters, for the targets that need it: made at the first call, never ended.
#pragma once
#include "orvcore/context.h"

namespace fuzz {

class FuzzContext : public OrvContext {
public:
    FuzzContext();
    using OrvContext::AddFilterType;
    using OrvContext::GetConfigurationsFromFilters;
    using OrvContext::ParseQtDatabaseString;
};

FuzzContext& Engine();

}  // namespace fuzz
