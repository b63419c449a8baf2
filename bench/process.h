// SPDX-License-Identifier: Apache-2.0
// Runs a program and tells what it took. No shell.
#pragma once
#include <string>
#include <vector>

namespace bench {

// What one run of a program took.
struct Cost {
    double wallSeconds = 0;
    double processorSeconds = 0;  // user and system, children that were waited for included
    long peakKilobytes = 0;       // largest resident set of the program or one of its children
    int exitCode = -1;            // -1 when it could not be started or ended by a signal
};

enum class Output { Dropped, Shown };

// What it prints goes to /dev/null unless it is to be shown. Throws std::runtime_error when it can't be started.
Cost Run(const std::vector<std::string>& arguments, Output output = Output::Dropped);

// The run with the median wall time of `times` runs.
Cost MedianRun(const std::vector<std::string>& arguments, int times);

double Median(std::vector<double> values);

// Appends the ratio to the file that the environment variable ORVELLE_RATIOS names; nothing where it names none. So a
// program that runs several benches gathers their ratios.
void NoteRatio(const std::string& what, double ratio);

}  // namespace bench
