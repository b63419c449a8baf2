// SPDX-License-Identifier: Apache-2.0
// wxWidgets for a program without a display: started, told where its messages go, and ended.
#pragma once

namespace cli {

class Terminal;

// One at a time, on the main thread. Throws Failure (ExitInternal) if wxWidgets can't be started.
class Application {
public:
    explicit Application(Terminal& terminal);
    ~Application();
    Application(Application const&) = delete;
    Application& operator=(Application const&) = delete;
};

}  // namespace cli
