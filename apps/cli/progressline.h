// SPDX-License-Identifier: Apache-2.0
// How far a long run is, told on one line of the terminal while it is waited for.
#pragma once

#include <chrono>
#include <string>

namespace cli {

class Session;
class Terminal;

// "0:42", "12:05", "3:07:10".
std::string DurationText(std::chrono::seconds time);

// Shows the counts of the engine's list of work and the time that is left, from its making to its end.
class ProgressLine {
public:
    ProgressLine(Session& session, Terminal& terminal);
    ~ProgressLine();
    ProgressLine(ProgressLine const&) = delete;
    ProgressLine& operator=(ProgressLine const&) = delete;

private:
    void Show();

    Session& m_session;
    Terminal& m_terminal;
    std::chrono::steady_clock::time_point m_started = std::chrono::steady_clock::now();
};

}  // namespace cli
