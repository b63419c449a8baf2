// SPDX-License-Identifier: Apache-2.0
// The thread that owns the ExifTool process: questions in, answers out. Private to this library.
#pragma once
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "tolimage/exiftool_process.h"

// One question. Its text is set before it is handed over; the rest is guarded by the service's lock until it is done.
struct ExifToolQuestion {
    std::string arguments;  // lines without the file's name
    std::string file;       // absolute path, bytes
    uint64_t answerLimit = 0;

    bool done = false;
    std::string answer;
    std::string failure;        // a sentence; empty for an answer
    uint64_t refusedBytes = 0;  // not 0: the answer went past its limit
    int attempts = 0;
    uint64_t number = 0;
    std::string link;  // a symbolic link with a harmless name, where the file's own can't be told to ExifTool
};
using ExifToolQuestionPtr = std::shared_ptr<ExifToolQuestion>;

class ExifToolService {
public:
    // The program's one service; it is never destroyed, its child ends with the program.
    static ExifToolService& Instance();

    void Ask(ExifToolQuestionPtr const& question);
    // Waits until it is done.
    void Await(ExifToolQuestionPtr const& question);
    // Drops all questions (they fail) and ends the child. `program` replaces the name if it is not null.
    void Reset(std::string const* program);
    // The program that would be started; empty if it is not found.
    std::string ProgramPath();

private:
    using Clock = std::chrono::steady_clock;

    ExifToolService();
    void Run();
    void StartThread();
    void Wake() const;
    bool SendWaiting();
    void Pump(std::unique_lock<std::mutex>& lock);
    void TakeAnswers();
    void OnDeath();
    void OnTimeout();
    void Repeat();
    void Finish(ExifToolQuestionPtr const& question, std::string failure);
    void FailAll(std::string const& failure);
    std::string Request(ExifToolQuestion& question);
    std::string NameFor(ExifToolQuestion& question);
    int MillisecondsLeft() const;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::thread m_thread;
    bool m_started = false;
    bool m_reset = false;
    int m_wakeRead = -1;
    int m_wakeWrite = -1;
    std::string m_program;
    std::deque<ExifToolQuestionPtr> m_waiting;
    std::deque<ExifToolQuestionPtr> m_asked;  // sent, in the order in which they are answered
    ExifToolProcess m_process;
    std::string m_buffer;
    size_t m_searched = 0;
    uint64_t m_lastNumber = 0;
    Clock::time_point m_deadline;
    uint64_t m_secondsPerFile = 0;
    std::string m_folder;  // of the links
};
