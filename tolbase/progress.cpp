// SPDX-License-Identifier: Apache-2.0
#include "tolbase/progress.h"

#include <atomic>
#include <mutex>

namespace {

struct Level {
    std::atomic<bool> aborted{false};
    std::mutex mutex;  // of the shown state
    TcvProgress shown;

    void Start(int total) {
        aborted = false;
        const std::lock_guard<std::mutex> lock(mutex);
        shown = TcvProgress();
        shown.total = total;
    }
    void Set(int value) {
        const std::lock_guard<std::mutex> lock(mutex);
        shown.value = value == -1 ? shown.value + 1 : value;
    }
    void SetText(const wxString& text) {
        // A copy of its own: a wxString is shared by no two threads.
        const std::lock_guard<std::mutex> lock(mutex);
        shown.text = text.Clone();
    }
    TcvProgress Get() {
        const std::lock_guard<std::mutex> lock(mutex);
        TcvProgress copy = shown;
        copy.text = shown.text.Clone();
        return copy;
    }
};

Level& First() {
    static Level level;
    return level;
}

Level& Second() {
    static Level level;
    return level;
}

}  // namespace

void tcvInitProgress(int total) {
    First().Start(total);
}
void tcvSetProgress(int value) {
    First().Set(value);
}
void tcvSetProgressString(const wxString& text) {
    First().SetText(text);
}
TcvProgress tcvGetProgress() {
    return First().Get();
}
bool tcvHasAborted() {
    return First().aborted;
}
void tcvAbortProgress() {
    First().aborted = true;
}

void tcvAbortAllProgress() {
    First().aborted = true;
    Second().aborted = true;
}

void tcvClearAborted() {
    First().aborted = false;
}

void tcvInitProgress2(int total) {
    Second().Start(total);
}

int tcvSetProgress2(int value) {
    Second().Set(value);
    return Second().aborted ? 0 : 1;
}

void tcvSetProgressString2(const wxString& text) {
    Second().SetText(text);
}
TcvProgress tcvGetProgress2() {
    return Second().Get();
}
bool tcvHasAborted2() {
    return Second().aborted;
}
void tcvDeinitProgress2() {
    Second().Start(0);
}
