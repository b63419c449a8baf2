// SPDX-License-Identifier: Apache-2.0
// Operations on files that fail on demand: the test program has its own write, open, rename and the like in front of
// the C library's. Only what is done beneath one folder counts.
#pragma once
#include <string>

namespace faults {

enum class Failing {
    Once,        // this operation alone fails
    FromThenOn,  // the disk is full: this write is cut in half, and everything after it fails
};

// The `at`-th operation beneath the folder, counted from 1, fails; none does for 0. One thread of the program is to
// work there at a time.
void FailWrites(std::string const& folder, int at, Failing failing);
// All works again. How many operations there were.
int StopFailing();

}  // namespace faults
