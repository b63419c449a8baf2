// SPDX-License-Identifier: Apache-2.0
// How the program ends, the same for every command and every output format.
#pragma once

namespace cli {

enum ExitCode : int {
    ExitDone = 0,
    ExitFinding = 1,    // a finding at or above --fail-on
    ExitUsage = 2,      // an unknown option, a missing argument, a value that can't be read
    ExitInput = 3,      // an input is missing, unreadable, unsupported, or changed while it was examined
    ExitNetwork = 4,    // the network or a service failed
    ExitOutput = 5,     // an output can't be written, or exists and --force was not given
    ExitFilter = 6,     // a filter failed
    ExitInternal = 70,  // an error of the program itself
    ExitInterrupted = 130,
    ExitTerminated = 143
};

// The worse of two: what a run over many files ends with. An interruption outweighs all, then an error of the program,
// of the output, of a filter, of the network, of an input, then a finding.
ExitCode Worse(ExitCode first, ExitCode second);

}  // namespace cli
