// SPDX-License-Identifier: Apache-2.0
// Names of the rows and rules of the image information table that stay the same in every language and version.
#pragma once

#include <cstddef>

namespace cli {

// By the row's place in the extended table, by the rule's place in the list of rules. Null beyond the last.
char const* InfoRowKey(size_t row);
char const* InfoRuleKey(size_t rule);

}  // namespace cli
