// SPDX-License-Identifier: Apache-2.0
// The program from its arguments to its exit code.
#pragma once

namespace cli {

int RunProgram(int argc, char const* const* argv);

}  // namespace cli
