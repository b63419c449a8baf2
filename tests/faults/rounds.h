// SPDX-License-Identifier: Apache-2.0
// How many faults a test tries, and the seed of their moments.
#pragma once
#include <cstdio>
#include <cstdlib>
#include <random>

namespace faults {

// How often a fault is tried: ORV_FAULT_ROUNDS, or `usual`.
inline int Rounds(int usual) {
    char const* const given = std::getenv("ORV_FAULT_ROUNDS");
    int const rounds = given != nullptr ? std::atoi(given) : 0;
    return rounds > 0 ? rounds : usual;
}

// Printed, so that a failure can be repeated: ORV_FAULT_SEED.
inline unsigned Seed() {
    char const* const given = std::getenv("ORV_FAULT_SEED");
    unsigned const seed =
        given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
    std::printf("seed %u (set ORV_FAULT_SEED to repeat it)\n", seed);
    return seed;
}

}  // namespace faults
