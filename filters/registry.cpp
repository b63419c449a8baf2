// SPDX-License-Identifier: Apache-2.0
#include "filters/registry.h"

#include "filters/original.h"

std::vector<OrvNumberedFilter> MakeFilters() {
    return {{OrvFilterNumberOriginal, new OrvFilterOriginal}};
}
