// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/command.h"

namespace cli {

std::vector<CommandEntry> const& AllCommands() {
    static const std::vector<CommandEntry> entries = {
        {"bookmark", "Keep the findings of a project", MakeBookmarkCommand},
        {"info", "Tell what is known of images, and warn of what is odd", MakeInfoCommand},
        {"exif", "List all metadata of images", MakeExifCommand},
        {"jpeg", "Show the compression tables of JPEGs, and who writes such", MakeJpegCommand},
        {"dimples", "Look for JPEG dimples", MakeDimplesCommand},
        {"social", "Tell whether JPEGs look as if they came from a social platform", MakeSocialCommand},
        {"compare", "Put what is known of two images side by side", MakeCompareCommand},
        {"match", "Find the files that are compressed as one is", MakeMatchCommand},
        {"options", "Show and change the settings", MakeOptionsCommand},
        {"project", "Start, check and report a project", MakeProjectCommand},
        {"qt", "Look at and edit the signatures of quantisation tables", MakeQtCommand},
        {"sms", "Look at and edit the signatures of social platforms", MakeSmsCommand},
    };
    return entries;
}

}  // namespace cli
