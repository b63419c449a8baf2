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

// The bytes of a file, or of standard input for "-". Throws Failure (ExitInput) for one that can't be read or is larger
// than the limit "file-bytes".
std::string ReadText(std::string const& path);

// The names in a list: one a line, or, where it has zero bytes, each ended by one. Empty ones are left out. "-" is
// standard input. Throws Failure (ExitInput) for a list that can't be read or is larger than the limit "file-bytes".
std::vector<std::string> ReadNameList(std::string const& list);

// A name that is a folder stands for the images right in it, or beneath it too if `recursive`: the regular files (links
// to such as well) whose ending is among `extensions`, in any case. Links to folders are not followed. Every other name
// stands for itself, missing or not.
Inputs FindInputs(std::vector<std::string> const& names, std::vector<std::string> const& extensions, bool recursive,
                  Terminal& terminal);
// The same for a run to which a folder without images is no failure; it is told all the same.
Inputs FindInputsIfAny(std::vector<std::string> const& names, std::vector<std::string> const& extensions,
                       bool recursive, Terminal& terminal);

}  // namespace cli
