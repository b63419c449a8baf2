// SPDX-License-Identifier: Apache-2.0
// From the names that were given to the files that are meant.
#pragma once

#include <string>
#include <vector>

#include "apps/cli/terminal.h"

namespace cli {

struct Inputs {
    std::vector<std::string> files;  // in the order given; those of a folder sorted by the bytes of their paths
    bool hasFailures = false;        // a folder that can't be read or has no images, each told already
};

// A name that is a folder stands for the images right in it, or beneath it too if `recursive`: the regular files (links
// to such as well) whose ending is among `extensions`, in any case. Links to folders are not followed. Every other name
// stands for itself, missing or not.
Inputs FindInputs(std::vector<std::string> const& names, std::vector<std::string> const& extensions, bool recursive,
                  Terminal& terminal);

}  // namespace cli
