// SPDX-License-Identifier: Apache-2.0
// The parts of one calculation on all processors.
//
// Threads: any; calls at the same time are independent. Ownership: the work is borrowed for the time of the call.
#pragma once
#include <functional>

#include "tolbase/export.h"

// Calls `work(index)` once for each index from 0 to `count` - 1, in any order and on several threads at once, and
// returns when all have ended. What the parts calculate must depend neither on the order nor on the threads. Once the
// user has aborted (tcvHasAborted), or a part has thrown, no further part is begun; the first exception is thrown here.
ORV_API void RunInParallel(int count, std::function<void(int index)> const& work);

// How many threads work at once, the caller's included; 0, the start value, stands for as many as there are processors.
// For tests and measurements.
ORV_API void SetParallelThreads(int count);
