// SPDX-License-Identifier: Apache-2.0
// The shares of a batch in processes of their own.
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <thread>

#include "apps/cli/batchrun.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/terminal.h"

extern char** environ;

namespace cli {

namespace {

constexpr std::chrono::milliseconds Poll{50};

// One process of this program, which reads its files from its standard input.
class Share {
public:
    Share(std::vector<std::string> arguments, std::string const& files) {
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_CLOEXEC) != 0) return;
        std::vector<char*> argv;
        for (std::string& argument : arguments) argv.push_back(argument.data());
        argv.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_adddup2(&actions, ends[0], STDIN_FILENO);
        posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
        if (posix_spawn(&m_process, "/proc/self/exe", &actions, nullptr, argv.data(), environ) != 0) m_process = -1;
        posix_spawn_file_actions_destroy(&actions);
        close(ends[0]);
        // The process reads its list whole before it works, so this doesn't wait for its work.
        if (m_process > 0) static_cast<void>(WriteAll(ends[1], files));
        close(ends[1]);
    }
    ~Share() {
        if (m_process > 0) waitpid(m_process, nullptr, 0);
    }
    Share(Share const&) = delete;
    Share& operator=(Share const&) = delete;

    bool HasEnded() {
        if (m_process <= 0) return true;
        const pid_t ended = waitpid(m_process, nullptr, WNOHANG);
        if (ended == 0 || (ended < 0 && errno == EINTR)) return false;
        m_process = -1;
        return true;
    }
    void End() const {
        if (m_process > 0) kill(m_process, SIGTERM);
    }

private:
    pid_t m_process = -1;
};

}  // namespace

void FillCache(std::vector<std::string> const& arguments, std::vector<std::string> const& files, int jobs) {
    const size_t count = std::min(static_cast<size_t>(jobs), files.size());
    std::vector<std::string> lists(count);
    // Dealt out like cards: neighbours in a folder are often of one size.
    for (size_t i = 0; i < files.size(); ++i) lists[i % count].append(files[i]).push_back('\0');
    std::vector<std::unique_ptr<Share>> shares;
    for (std::string const& list : lists) shares.push_back(std::make_unique<Share>(arguments, list));
    for (auto const& share : shares) {
        while (!share->HasEnded()) {
            if (IsInterrupted()) {
                for (auto const& other : shares) other->End();
            }
            std::this_thread::sleep_for(Poll);
        }
    }
}

}  // namespace cli
