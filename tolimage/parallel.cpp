// SPDX-License-Identifier: Apache-2.0
#include "tolimage/parallel.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

#include "tolbase/progress.h"

namespace {

constexpr int kMostThreads = 16;
std::atomic<int> wantedThreads{0};

int CountThreads(int parts) {
    int const wanted = wantedThreads;
    int const threads = wanted > 0 ? wanted : static_cast<int>(std::thread::hardware_concurrency());
    return std::clamp(std::min(threads, parts), 1, kMostThreads);
}

// What the threads of one call share.
class Parts {
public:
    Parts(int count, std::function<void(int)> const& work) : m_count(count), m_work(work) {}

    void Work() {
        while (!m_failed && !tcvHasAborted()) {
            int const index = m_next++;
            if (index >= m_count) return;
            try {
                m_work(index);
            } catch (...) {
                std::lock_guard<std::mutex> const lock(m_mutex);
                if (!m_failed) m_exception = std::current_exception();
                m_failed = true;
            }
        }
    }
    void Rethrow() const {
        if (m_exception) std::rethrow_exception(m_exception);
    }

private:
    int m_count;
    std::function<void(int)> const& m_work;
    std::atomic<int> m_next{0};
    std::atomic<bool> m_failed{false};
    std::mutex m_mutex;
    std::exception_ptr m_exception;
};

}  // namespace

void RunInParallel(int count, std::function<void(int)> const& work) {
    Parts parts(count, work);
    std::vector<std::thread> threads;
    int const helpers = CountThreads(count) - 1;
    threads.reserve(static_cast<size_t>(helpers));
    try {
        for (int i = 0; i < helpers; ++i) threads.emplace_back([&parts] { parts.Work(); });
    } catch (std::system_error const&) {
        // No further thread to be had: those that there are do all the work.
    }
    parts.Work();
    for (std::thread& thread : threads) thread.join();
    parts.Rethrow();
}

void SetParallelThreads(int count) {
    wantedThreads = count;
}
