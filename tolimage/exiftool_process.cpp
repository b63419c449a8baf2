// SPDX-License-Identifier: Apache-2.0
#include "tolimage/exiftool_process.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <vector>

namespace {

constexpr int kSendMilliseconds = 5000;
constexpr int kEndMilliseconds = 500;
constexpr int kStepMilliseconds = 2;
// A preview of the greatest size that is taken in, in the forms in which the child holds it.
constexpr rlim_t kMemoryBytes = rlim_t{3} << 30;
constexpr rlim_t kOpenFiles = 64;

// Descriptors that can't be mistaken for the child's first three.
int Above(int descriptor) {
    if (descriptor < 0 || descriptor > 2) return descriptor;
    const int moved = fcntl(descriptor, F_DUPFD_CLOEXEC, 3);
    close(descriptor);
    return moved;
}

// What of our environment concerns how a Perl program is found and how it tells times.
std::vector<std::string> Environment() {
    std::vector<std::string> result = {"LC_ALL=C.UTF-8"};
    for (char const* name : {"PATH", "TZ", "TMPDIR", "PERL5LIB"}) {
        char const* value = std::getenv(name);
        if (value != nullptr) result.push_back(std::string(name) + "=" + value);
    }
    return result;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> result;
    for (std::string& text : texts) result.push_back(text.data());
    result.push_back(nullptr);
    return result;
}

void Limit(decltype(RLIMIT_AS) what, rlim_t most) {
    rlimit limit{};
    if (getrlimit(what, &limit) != 0) return;
    limit.rlim_max = std::min(limit.rlim_max, most);
    limit.rlim_cur = std::min(limit.rlim_cur, most);
    setrlimit(what, &limit);
}

// The child reads hostile files: it gets no more memory than it needs, can write into no file, leaves no core behind
// and can't gain rights by what it starts.
void GiveUpRights() {
    Limit(RLIMIT_AS, kMemoryBytes);
    Limit(RLIMIT_FSIZE, 0);
    Limit(RLIMIT_CORE, 0);
    Limit(RLIMIT_NOFILE, kOpenFiles);
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
}

// Between fork and exec: calls that are safe after a fork of one thread among many, and nothing else.
[[noreturn]] void BecomeChild(pid_t parent, int input, int output, int null, char* const* arguments,
                              char* const* environment) {
    setpgid(0, 0);  // the terminal's interrupt is for us to handle
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent) _exit(127);
    if (dup2(input, 0) < 0 || dup2(output, 1) < 0 || dup2(null, 2) < 0) _exit(127);
    closefrom(3);
    for (int number = 1; number < NSIG; ++number) std::signal(number, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    GiveUpRights();
    execve(arguments[0], arguments, environment);
    _exit(127);
}

}  // namespace

bool ExifToolProcess::Start(std::string const& program) {
    Kill();
    // A socket for the questions, since writing to one can be told not to raise a signal.
    int questions[2] = {-1, -1};
    int answers[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, questions) != 0) return false;
    if (pipe2(answers, O_CLOEXEC) != 0) {
        close(questions[0]);
        close(questions[1]);
        return false;
    }
    for (int* descriptor : {&questions[0], &questions[1], &answers[0], &answers[1]}) *descriptor = Above(*descriptor);
    const int null = Above(open("/dev/null", O_WRONLY | O_CLOEXEC));
    std::vector<std::string> arguments = {program, "-config", "", "-stay_open", "True", "-@", "-"};
    std::vector<std::string> environment = Environment();
    const std::vector<char*> argumentPointers = Pointers(arguments);
    const std::vector<char*> environmentPointers = Pointers(environment);
    const pid_t parent = getpid();
    m_pid = fork();
    if (m_pid == 0) {
        BecomeChild(parent, questions[1], answers[1], null, argumentPointers.data(), environmentPointers.data());
    }
    close(questions[1]);
    close(answers[1]);
    if (null >= 0) close(null);
    m_input = questions[0];
    m_output = answers[0];
    fcntl(m_output, F_SETFL, O_NONBLOCK);
    if (m_pid > 0) return true;
    Close();
    return false;
}

bool ExifToolProcess::Send(std::string const& text) {
    size_t sent = 0;
    while (sent < text.size()) {
        const ssize_t count = send(m_input, text.data() + sent, text.size() - sent, MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count > 0) {
            sent += static_cast<size_t>(count);
            continue;
        }
        if (errno == EINTR) continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) return false;
        pollfd ready{m_input, POLLOUT, 0};
        if (poll(&ready, 1, kSendMilliseconds) <= 0) return false;
    }
    return true;
}

void ExifToolProcess::End() {
    if (m_pid > 0 && Send("-stay_open\nFalse\n")) {
        for (int waited = 0; waited < kEndMilliseconds; waited += kStepMilliseconds) {
            int status = 0;
            if (waitpid(m_pid, &status, WNOHANG) == m_pid) {
                m_pid = -1;
                break;
            }
            poll(nullptr, 0, kStepMilliseconds);
        }
    }
    Kill();
}

void ExifToolProcess::Kill() {
    if (m_pid > 0) {
        // It is our own child and not yet waited for, so the number can't have gone to another process.
        kill(m_pid, SIGKILL);
        int status = 0;
        while (waitpid(m_pid, &status, 0) < 0 && errno == EINTR) {
        }
    }
    m_pid = -1;
    Close();
}

void ExifToolProcess::Close() {
    if (m_input >= 0) close(m_input);
    if (m_output >= 0) close(m_output);
    m_input = m_output = -1;
}

std::string FindExecutable(std::string const& name) {
    const auto usable = [](std::string const& path) {
        struct stat info {};
        return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode) && access(path.c_str(), X_OK) == 0;
    };
    if (name.find('/') != std::string::npos) return usable(name) ? name : std::string();
    char const* path = std::getenv("PATH");
    const std::string folders = path != nullptr ? path : "/usr/local/bin:/usr/bin:/bin";
    for (size_t at = 0; at <= folders.size();) {
        const size_t end = std::min(folders.find(':', at), folders.size());
        const std::string candidate = folders.substr(at, end - at) + "/" + name;
        // A relative entry of the PATH would let the folder that is examined choose the program.
        if (candidate[0] == '/' && end > at && usable(candidate)) return candidate;
        at = end + 1;
    }
    return {};
}
