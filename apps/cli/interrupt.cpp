// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/interrupt.h"

#include <unistd.h>

#include <array>
#include <csignal>
#include <cstring>

namespace cli {

namespace {

volatile std::sig_atomic_t g_signal = 0;
// A handler may not touch a std::string.
std::array<char, 4096> g_fileToRemove{};
volatile std::sig_atomic_t g_hasFile = 0;

void OnSignal(int number) {
    if (g_signal != 0) {
        RemoveFileToRemove();
        _exit(g_signal == SIGINT ? ExitInterrupted : ExitTerminated);
    }
    g_signal = number;
}

}  // namespace

void InstallSignalHandlers() {
    struct sigaction action = {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        // What a parent ignores (nohup) stays ignored.
        struct sigaction before = {};
        if (sigaction(number, nullptr, &before) == 0 && before.sa_handler == SIG_IGN && number == SIGHUP) continue;
        sigaction(number, &action, nullptr);
    }
    struct sigaction ignore = {};
    ignore.sa_handler = SIG_IGN;
    sigaction(SIGPIPE, &ignore, nullptr);
}

bool IsInterrupted() {
    return g_signal != 0;
}

ExitCode InterruptionCode() {
    if (g_signal == 0) return ExitDone;
    return g_signal == SIGINT ? ExitInterrupted : ExitTerminated;
}

void SetFileToRemove(std::string const& path) {
    g_hasFile = 0;
    if (path.empty() || path.size() >= g_fileToRemove.size()) return;
    std::memcpy(g_fileToRemove.data(), path.c_str(), path.size() + 1);
    g_hasFile = 1;
}

void RemoveFileToRemove() {
    if (g_hasFile != 0) unlink(g_fileToRemove.data());
}

}  // namespace cli
