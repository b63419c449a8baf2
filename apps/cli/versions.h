// SPDX-License-Identifier: Apache-2.0
// What made a result: the program, its engine, and every component that has a say in it.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace cli {

std::string ProgramVersion();
// The day, in UTC: 2026-01-31.
std::string BuildDate();
// System, its version and processor, as in: Linux 6.1.0 x86_64.
std::string PlatformName();
// Name and version, sorted by name. Asks ExifTool for its own.
std::vector<std::pair<std::string, std::string>> const& ComponentVersions();
// The text of --version, lines with their ends.
std::string VersionText();

}  // namespace cli
