// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/versions.h"

#include <sys/utsname.h>

#include <CLI/Version.hpp>
#include <algorithm>

#include "apps/cli/text.h"
#include "tolimage/components.h"

namespace cli {

std::string ProgramVersion() {
    return ORVELLE_VERSION;
}

std::string BuildDate() {
    return ORVELLE_BUILD_DATE;
}

std::string PlatformName() {
    utsname names{};
    if (::uname(&names) != 0) return "Linux";
    return std::string(names.sysname) + " " + names.release + " " + names.machine;
}

std::vector<std::pair<std::string, std::string>> const& ComponentVersions() {
    static const auto components = [] {
        std::vector<std::pair<std::string, std::string>> list = {{"CLI11", CLI11_VERSION}};
        for (auto const& [name, version] : GetComponentVersions()) list.emplace_back(ToUtf8(name), ToUtf8(version));
        // Without regard to case, so that the order is the one a reader expects.
        const auto lower = [](std::string text) {
            std::transform(text.begin(), text.end(), text.begin(),
                           [](unsigned char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
            return text;
        };
        std::sort(list.begin(), list.end(),
                  [&](auto const& a, auto const& b) { return lower(a.first) < lower(b.first); });
        return list;
    }();
    return components;
}

std::string VersionText() {
    std::string text = "orvelle " + ProgramVersion() + "\norvcore " + ProgramVersion() + "\n";
    for (auto const& [name, version] : ComponentVersions()) text += "  " + name + " " + version + "\n";
    return text;
}

}  // namespace cli
