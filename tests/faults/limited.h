// SPDX-License-Identifier: Apache-2.0
// A program under limits of the system, or killed at a chosen moment. No shell.
#pragma once
#include <fcntl.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "tests/cli/program.h"

namespace faults {

struct Limits {
    rlim_t memory = RLIM_INFINITY;    // address space, bytes
    rlim_t fileSize = RLIM_INFINITY;  // longest file, bytes; longer writes fail
    std::string path;                 // PATH; the test's own if empty
};

class Program {
public:
    // Output and errors go to files in the folder.
    Program(std::string const& program, std::vector<std::string> arguments, std::string const& folder,
            Limits const& limits = {})
        : m_out(folder + "/stdout"), m_err(folder + "/stderr") {
        arguments.insert(arguments.begin(), program);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) pointers.push_back(argument.data());
        pointers.push_back(nullptr);
        clitest::WriteFile(m_out, "");
        clitest::WriteFile(m_err, "");
        m_process = fork();
        if (m_process == 0) Become(pointers.data(), limits);
    }
    ~Program() {
        if (m_process > 0) {
            Kill();
            Wait();
        }
    }
    Program(Program const&) = delete;
    Program& operator=(Program const&) = delete;

    pid_t Id() const { return m_process; }
    void Kill() const { kill(m_process, SIGKILL); }
    // The program of that name that this one has started; -1 if there is none.
    pid_t Child(std::string const& name) const {
        std::string const folder = "/proc/" + std::to_string(m_process) + "/task";
        for (std::string const& thread : clitest::List(folder)) {
            std::string const children = clitest::ReadFile(folder + "/" + thread + "/children");
            size_t at = 0;
            while (at < children.size()) {
                pid_t const child = std::atoi(children.c_str() + at);
                std::string const line = clitest::ReadFile("/proc/" + std::to_string(child) + "/cmdline");
                if (line.find(name) != std::string::npos) return child;
                at = children.find(' ', at) + 1;
                if (at == 0) break;
            }
        }
        return -1;
    }
    // 1000 and the signal's number if a signal ended it; 2000 if it had to be killed for taking longer than a minute.
    clitest::Ended Wait() {
        clitest::Ended ended;
        int status = 0;
        bool late = false;
        for (int waited = 0; waitpid(m_process, &status, WNOHANG) == 0; ++waited) {
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
            late = late || waited > 12000;
            if (late) Kill();
        }
        m_process = -1;
        ended.status = WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
        if (late) ended.status = 2000;
        ended.out = clitest::ReadFile(m_out);
        ended.err = clitest::ReadFile(m_err);
        return ended;
    }

private:
    [[noreturn]] void Become(char** arguments, Limits const& limits) const {
        int const out = open(m_out.c_str(), O_WRONLY);
        int const err = open(m_err.c_str(), O_WRONLY);
        dup2(out, 1);
        dup2(err, 2);
        if (!limits.path.empty()) setenv("PATH", limits.path.c_str(), 1);
        // A write past the limit is an error and no signal.
        signal(SIGXFSZ, SIG_IGN);
        rlimit const memory{limits.memory, limits.memory};
        rlimit const fileSize{limits.fileSize, limits.fileSize};
        rlimit const noCore{0, 0};
        setrlimit(RLIMIT_CORE, &noCore);
        if (limits.memory != RLIM_INFINITY) setrlimit(RLIMIT_AS, &memory);
        if (limits.fileSize != RLIM_INFINITY) setrlimit(RLIMIT_FSIZE, &fileSize);
        execv(arguments[0], arguments);
        _exit(126);
    }

    std::string m_out;
    std::string m_err;
    pid_t m_process = -1;
};

}  // namespace faults
