// SPDX-License-Identifier: Apache-2.0
// Turns JSON as people write it by hand into JSON as the parser takes it. Pure: any thread. Private to this library.
#pragma once
#include <string>
#include <vector>

// One thing that was put right.
struct wxJSONRepairNote {
    std::size_t line = 0;
    std::string message;
};

// The text with what the reader's flags tolerate put right, and a note on each. What isn't tolerated stays as it is,
// for the parser to refuse. Comments become blanks, so that lines keep their numbers.
std::string wxJSONRepair(const std::string& text, int flags, std::vector<wxJSONRepairNote>& notes);
