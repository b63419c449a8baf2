// SPDX-License-Identifier: Apache-2.0
// The JSON values that all commands share.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "apps/cli/record.h"

namespace cli {

// Members stay in the order in which they are written.
using Json = nlohmann::ordered_json;

// {"name", "version", "components": {name: version}}.
Json ToolJson();
// {"path", "path_bytes" (a path that is not UTF-8), "bytes", "sha256"}.
Json InputJson(Record const& record);
// The text on several lines, or on one.
std::string JsonText(Json const& value, bool oneLine);

}  // namespace cli
