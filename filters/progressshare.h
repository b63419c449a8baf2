// SPDX-License-Identifier: Apache-2.0
// Private: how far a filter's calculation is. The command that runs the filter has set the scale, and only it may begin
// a new one: that would take an abort back.
#pragma once
#include <cstdint>

#include "tolbase/progress.h"

// Shows that `done` of `all` parts are done. Any thread.
inline void ShowProgressShare(int64_t done, int64_t all) {
    int const total = tcvGetProgress().total;
    if (all > 0) tcvSetProgress(static_cast<int>(done * total / all));
}
