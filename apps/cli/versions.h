// SPDX-License-Identifier: Apache-2.0
// What made a result: the program, its engine, and every component that has a say in it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cli {

std::string ProgramVersion();
// Name and version, sorted by name. Asks ExifTool for its own.
std::vector<std::pair<std::string, std::string>> const& ComponentVersions();
// The text of --version, lines with their ends.
std::string VersionText();

}  // namespace cli
