// SPDX-License-Identifier: Apache-2.0
// An order between a test and a server of its own that a program asks.
#pragma once
#include <mutex>

namespace support {

// Between a program's request and what the test set up for it lies another process, through which a thread sanitizer
// sees no order. The test passes the gate before it starts a program and once that has ended, a server before and
// behind each answer.
inline void PassGate() {
    static std::mutex gate;
    const std::lock_guard<std::mutex> lock(gate);
}

}  // namespace support
