// SPDX-License-Identifier: Apache-2.0
// Work of the engine that is no examination of a single file.
#pragma once

#include <functional>
#include <string>

namespace cli {

class Session;

// Does the work on the worker thread and waits for it; `log` is its line in the log. False if the person has
// interrupted. Throws Failure: what the work throws as such, ExitInput for the engine's own failures.
bool RunWork(Session& session, std::string const& log, std::function<void()> const& work);

}  // namespace cli
