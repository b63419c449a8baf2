// SPDX-License-Identifier: Apache-2.0
// Large pages for large memory. Private to the project's libraries.
#pragma once
#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace tolbase {

// Filling tens of megabytes for the first time costs more in page faults than in writing unless the kernel gives large
// pages. To be called before the memory is written; it is a hint, and nothing depends on it.
inline void UseLargePages(void* memory, std::size_t bytes) {
    constexpr std::uintptr_t largePage = 2U << 20;
    const auto start = reinterpret_cast<std::uintptr_t>(memory);
    const std::uintptr_t first = (start + largePage - 1) / largePage * largePage;
    const std::uintptr_t last = (start + bytes) / largePage * largePage;
    if (last > first) madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
}

}  // namespace tolbase
