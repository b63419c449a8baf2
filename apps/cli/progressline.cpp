// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/progressline.h"

#include "apps/cli/session.h"
#include "apps/cli/terminal.h"
#include "apps/cli/text.h"
#include "tolbase/progress.h"

namespace cli {

std::string DurationText(std::chrono::seconds time) {
    const auto twoDigits = [](int64_t value) { return (value < 10 ? "0" : "") + std::to_string(value); };
    const int64_t seconds = time.count();
    const std::string tail = twoDigits(seconds % 60);
    if (seconds < 3600) return std::to_string(seconds / 60) + ":" + tail;
    return std::to_string(seconds / 3600) + ":" + twoDigits(seconds / 60 % 60) + ":" + tail;
}

ProgressLine::ProgressLine(Session& session, Terminal& terminal) : m_session(session), m_terminal(terminal) {
    m_session.SetWaiting([this] { Show(); });
}

ProgressLine::~ProgressLine() {
    m_session.SetWaiting({});
    m_terminal.ClearProgress();
}

void ProgressLine::Show() {
    const TcvProgress list = tcvGetProgress2();
    if (list.total <= 0) return;
    // The unit that is being worked on counts as begun, not as done.
    const int done = list.value > 0 ? list.value - 1 : 0;
    std::string text = "[" + std::to_string(list.value) + "/" + std::to_string(list.total) + "]";
    const auto elapsed = std::chrono::steady_clock::now() - m_started;
    if (done > 0 && elapsed > std::chrono::seconds(1)) {
        const auto left = elapsed * (list.total - done) / done;
        text += " " + DurationText(std::chrono::duration_cast<std::chrono::seconds>(left)) + " left";
    }
    if (!list.text.empty()) text += " " + ToUtf8(list.text);
    m_terminal.Status(text);
}

}  // namespace cli
