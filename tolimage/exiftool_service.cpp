// SPDX-License-Identifier: Apache-2.0
#include "tolimage/exiftool_service.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <utility>

#include "tolbase/limits.h"

namespace {

// Sent ahead, so that the child never waits for us.
constexpr size_t kAskedAtOnce = 8;
constexpr int kMaxAttempts = 2;
constexpr char const* kNotInstalled = "ExifTool is not installed.";
constexpr char const* kEnded = "ExifTool ended unexpectedly.";
constexpr char const* kStopped = "ExifTool was stopped.";

// A line of ExifTool's argument file can't hold a line break, and a name that ends in "|" is more to Perl than a name.
bool IsPlainName(std::string const& path) {
    return !path.empty() && path[0] == '/' && path.back() != '|' &&
           std::none_of(path.begin(), path.end(), [](unsigned char c) { return c < 0x20 || c == 0x7F; });
}

// ExifTool takes the extension as a hint at the format.
std::string SafeExtension(std::string const& path) {
    const size_t slash = path.rfind('/');
    const size_t dot = path.rfind('.');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return {};
    const std::string extension = path.substr(dot + 1);
    const bool safe =
        !extension.empty() && extension.size() <= 8 &&
        std::all_of(extension.begin(), extension.end(), [](unsigned char c) { return std::isalnum(c) != 0; });
    return safe ? "." + extension : std::string();
}

std::string Ready(uint64_t number) {
    return "{ready" + std::to_string(number) + "}\n";
}

// While one lives, this thread takes no signal, and neither does one that it starts.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &m_before);
    }
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_before, nullptr); }
    SignalsBlocked(SignalsBlocked const&) = delete;
    SignalsBlocked& operator=(SignalsBlocked const&) = delete;

private:
    sigset_t m_before{};
};

}  // namespace

ExifToolService& ExifToolService::Instance() {
    // Questions may come from static destructors and from threads that outlive main.
    static auto* service = [] {
        auto* made = new ExifToolService;
        std::atexit([] { ExifToolService::Instance().Reset(nullptr); });
        return made;
    }();
    return *service;
}

ExifToolService::ExifToolService() : m_program("exiftool") {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC | O_NONBLOCK) == 0) {
        m_wakeRead = ends[0];
        m_wakeWrite = ends[1];
    }
}

void ExifToolService::Wake() const {
    const char byte = 0;
    while (write(m_wakeWrite, &byte, 1) < 0 && errno == EINTR) {
    }
}

// Signals are the application's business and must not be taken on the service's thread. Throws where none can be had.
void ExifToolService::StartThread() {
    if (m_started) return;
    SignalsBlocked const blocked;
    m_thread = std::thread([this] { Run(); });
    m_thread.detach();
    m_started = true;
}

void ExifToolService::Ask(ExifToolQuestionPtr const& question) {
    const std::lock_guard<std::mutex> lock(m_mutex);
    StartThread();
    m_waiting.push_back(question);
    Wake();
}

void ExifToolService::Await(ExifToolQuestionPtr const& question) {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [&] { return question->done; });
}

void ExifToolService::Reset(std::string const* program) {
    std::unique_lock<std::mutex> lock(m_mutex);
    if (program != nullptr) m_program = program->empty() ? "exiftool" : *program;
    if (!m_started) return;
    m_reset = true;
    Wake();
    m_changed.wait(lock, [&] { return !m_reset; });
}

std::string ExifToolService::ProgramPath() {
    const std::lock_guard<std::mutex> lock(m_mutex);
    return FindExecutable(m_program);
}

void ExifToolService::Finish(ExifToolQuestionPtr const& question, std::string failure) {
    if (!question->link.empty()) unlink(question->link.c_str());
    question->failure = std::move(failure);
    question->done = true;
    m_changed.notify_all();
}

void ExifToolService::FailAll(std::string const& failure) {
    for (ExifToolQuestionPtr const& question : m_asked) Finish(question, failure);
    for (ExifToolQuestionPtr const& question : m_waiting) Finish(question, failure);
    m_asked.clear();
    m_waiting.clear();
}

std::string ExifToolService::NameFor(ExifToolQuestion& question) {
    if (IsPlainName(question.file)) return question.file;
    if (m_folder.empty()) {
        char const* base = std::getenv("TMPDIR");
        std::string name = std::string(base != nullptr && base[0] == '/' ? base : "/tmp") + "/orvelle-names-XXXXXX";
        if (mkdtemp(name.data()) == nullptr || !IsPlainName(name)) return {};
        m_folder = name;
    }
    const std::string link = m_folder + "/" + std::to_string(question.number) + SafeExtension(question.file);
    if (symlink(question.file.c_str(), link.c_str()) != 0) return {};
    question.link = link;
    return link;
}

std::string ExifToolService::Request(ExifToolQuestion& question) {
    if (!question.link.empty()) unlink(question.link.c_str());
    question.link.clear();
    question.number = ++m_lastNumber;
    const std::string name = NameFor(question);
    if (name.empty()) return {};
    return question.arguments + name + "\n-execute" + std::to_string(question.number) + "\n";
}

// False if the child could not be started or does not listen.
bool ExifToolService::SendWaiting() {
    while (!m_waiting.empty() && m_asked.size() < kAskedAtOnce) {
        if (!m_process.IsRunning()) {
            const std::string path = FindExecutable(m_program);
            if (path.empty() || !m_process.Start(path)) {
                FailAll(path.empty() ? kNotInstalled : "ExifTool could not be started.");
                return false;
            }
            m_buffer.clear();
            m_searched = 0;
        }
        const ExifToolQuestionPtr question = m_waiting.front();
        m_waiting.pop_front();
        const std::string request = Request(*question);
        if (request.empty()) {
            Finish(question, "The file's name can't be given to ExifTool.");
            continue;
        }
        if (m_asked.empty()) {
            m_secondsPerFile = GetTolLimit(TolLimit::SecondsPerFile);
            m_deadline = Clock::now() + std::chrono::seconds(m_secondsPerFile);
        }
        m_asked.push_back(question);
        if (!m_process.Send(request)) {
            OnDeath();
            return false;
        }
    }
    return true;
}

int ExifToolService::MillisecondsLeft() const {
    if (m_asked.empty()) return -1;
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(m_deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<int64_t>(left, 0, 3600000));
}

// The questions that the child took with it go back to the front of the queue.
void ExifToolService::Repeat() {
    m_process.Kill();
    m_buffer.clear();
    m_searched = 0;
    m_waiting.insert(m_waiting.begin(), m_asked.begin(), m_asked.end());
    m_asked.clear();
}

void ExifToolService::OnDeath() {
    if (!m_asked.empty() && ++m_asked.front()->attempts >= kMaxAttempts) {
        Finish(m_asked.front(), kEnded);
        m_asked.pop_front();
    }
    Repeat();
}

void ExifToolService::OnTimeout() {
    Finish(m_asked.front(), "ExifTool did not answer within " + std::to_string(m_secondsPerFile) + " s.");
    m_asked.pop_front();
    Repeat();
}

void ExifToolService::TakeAnswers() {
    while (!m_asked.empty()) {
        const ExifToolQuestionPtr question = m_asked.front();
        const std::string mark = Ready(question->number);
        // Inside an answer a line break is always escaped, so the mark can't be part of a value.
        const size_t from = m_searched > mark.size() ? m_searched - mark.size() : 0;
        const size_t found = m_buffer.find(mark, from);
        if (found == std::string::npos) {
            m_searched = m_buffer.size();
            if (m_buffer.size() <= question->answerLimit) return;
            question->refusedBytes = m_buffer.size();
            Finish(question, "refused");
            m_asked.pop_front();
            Repeat();
            return;
        }
        question->answer = m_buffer.substr(0, found);
        m_buffer.erase(0, found + mark.size());
        m_searched = 0;
        Finish(question, std::string());
        m_asked.pop_front();
        m_deadline = Clock::now() + std::chrono::seconds(m_secondsPerFile);
    }
}

// Waits for the child, for a new question, or for the time to run out.
void ExifToolService::Pump(std::unique_lock<std::mutex>& lock) {
    pollfd events[2] = {{m_wakeRead, POLLIN, 0}, {m_process.Output(), POLLIN, 0}};
    const int timeout = MillisecondsLeft();
    lock.unlock();
    poll(events, m_process.IsRunning() ? 2 : 1, timeout);
    char bytes[65536];
    if (events[0].revents != 0) {
        while (read(m_wakeRead, bytes, sizeof bytes) > 0) {
        }
    }
    const ssize_t count = events[1].revents != 0 ? read(m_process.Output(), bytes, sizeof bytes) : -1;
    const bool died = events[1].revents != 0 && (count == 0 || (count < 0 && errno != EAGAIN && errno != EINTR));
    lock.lock();
    if (count > 0) {
        m_buffer.append(bytes, static_cast<size_t>(count));
        TakeAnswers();
    } else if (died) {
        OnDeath();
    } else if (!m_asked.empty() && Clock::now() >= m_deadline) {
        OnTimeout();
    }
}

void ExifToolService::Run() {
    std::unique_lock<std::mutex> lock(m_mutex);
    for (;;) {
        if (m_reset) {
            FailAll(kStopped);
            lock.unlock();
            m_process.End();
            lock.lock();
            if (!m_folder.empty()) rmdir(m_folder.c_str());
            m_folder.clear();
            m_reset = false;
            m_changed.notify_all();
        }
        if (!SendWaiting()) continue;
        Pump(lock);
    }
}
