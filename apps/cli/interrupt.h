// SPDX-License-Identifier: Apache-2.0
// Ctrl-C and termination: the run is asked to end, finishes what is written, and ends. A second signal ends it at once.
#pragma once

#include <string>

#include "apps/cli/exitcodes.h"

namespace cli {

// Catches SIGINT, SIGTERM and SIGHUP, and leaves a closed pipe to the writers.
void InstallSignalHandlers();

// True once a signal has come.
bool IsInterrupted();

// What the program ends with after the signal; ExitDone before one.
ExitCode InterruptionCode();

// A file to be removed should a second signal end the process on the spot; an empty path: none.
void SetFileToRemove(std::string const& path);
// Removes it now, for an end without destructors.
void RemoveFileToRemove();

}  // namespace cli
