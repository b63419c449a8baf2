// SPDX-License-Identifier: Apache-2.0
// The program of one target under libFuzzer; ORV_FUZZ_TARGET names the target's function.
#include <cstddef>
#include <cstdint>

#include "tests/fuzz/target.h"

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
    fuzz::Start();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size) {
    static const fuzz::Target target = fuzz::ORV_FUZZ_TARGET();
    target.run(std::string(reinterpret_cast<char const*>(data), size));
    return 0;
}
