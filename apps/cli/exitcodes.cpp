// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/exitcodes.h"

#include <algorithm>
#include <array>

namespace cli {

ExitCode Worse(ExitCode first, ExitCode second) {
    static constexpr std::array order = {ExitDone,   ExitFinding, ExitInput,    ExitNetwork,     ExitFilter,
                                         ExitOutput, ExitUsage,   ExitInternal, ExitInterrupted, ExitTerminated};
    const auto rank = [](ExitCode code) { return std::find(order.begin(), order.end(), code) - order.begin(); };
    return rank(first) < rank(second) ? second : first;
}

}  // namespace cli
