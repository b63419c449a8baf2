// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/command.h"

namespace cli {

std::vector<CommandEntry> const& AllCommands() {
    static const std::vector<CommandEntry> entries = {
        {"bookmark", "Keep the findings of a project", MakeBookmarkCommand},
        {"info", "Tell what is known of images, and warn of what is odd", MakeInfoCommand},
        {"options", "Show and change the settings", MakeOptionsCommand},
        {"project", "Start, check and report a project", MakeProjectCommand},
        {"qt", "Look at and edit the signatures of quantisation tables", MakeQtCommand},
    };
    return entries;
}

}  // namespace cli
