// SPDX-License-Identifier: Apache-2.0
// The engine's one thread for long work, and the hand-shake with the application around it.
//
// The application posts a command; the worker executes it, queues the event that the command left, and then waits for
// the application's response before it looks for the next command. While it waits, the application may read everything
// that the engine holds. For each command that runs, the application calls PostResponse exactly once.
//
// Threads: PostCommand, PostResponse, ClearQueue, AbortProcessing and SetProgressHandler belong to the main thread, or
// in test mode to any one thread. Ownership: a posted command belongs to the worker; the progress handler stays the
// application's and must outlive the worker or be replaced.
#pragma once
#include <wx/thread.h>

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>

#include "orvcore/command.h"
#include "orvcore/logger.h"
#include "orvcore/messagequeue.h"
#include "tolbase/export.h"

// What the application does when work begins and ends.
class ORV_API OrvProgressHandler {
public:
    virtual ~OrvProgressHandler() = default;
    // A command was posted while none was counted.
    virtual void OnCommandPosted() = 0;
    // The last counted command was answered.
    virtual void OnCommandsFinished() = 0;
    // Whether the application wants a timer to run during the command that now begins; asked on the worker thread.
    virtual bool IsTimerEnabled() = 0;
};

class ORV_API OrvWorkerThread : public wxThread {
public:
    OrvWorkerThread();
    // Shuts the worker down first.
    ~OrvWorkerThread() override;
    OrvWorkerThread(OrvWorkerThread const&) = delete;
    OrvWorkerThread& operator=(OrvWorkerThread const&) = delete;

    // Takes the command. Every command that still waits is deleted and never runs; one that is executing is untouched.
    void PostCommand(OrvCommand* command);
    // Ends the worker's wait behind a command. The value is a token that nothing looks at.
    void PostResponse(int value);
    // Deletes every command that waits.
    void ClearQueue();
    // Raises the abort state of both progress levels and deletes every command that waits. The running command goes on
    // until it looks at the state.
    void AbortProcessing();

    // Commands posted whose response has not come: 0 or 1.
    std::uint64_t GetQueueSize() const { return m_queueSize; }
    bool IsTimerActive() const { return m_timerActive; }
    void SetProgressHandler(OrvProgressHandler* handler) { m_progressHandler = handler; }
    void EnableLog(bool enable) { m_logger.EnableLogToFile(enable); }

    // Test mode: commands and responses may come from another thread than the main one, the log goes to the standard
    // error, and PostTestResponse works.
    void SetTest();
    // Waits for the end of the next command and gives a copy of the event that it pushed, null if it pushed none. The
    // caller owns it. The response to the command has to come from another thread.
    OrvCommandEvent* PostTestResponse();

    // Commands that the worker has done with since it was started, those that threw included. Waiting until the count
    // has been reached gives false after `milliseconds`. A program without an event loop takes its turn so.
    std::uint64_t GetCommandsDone() const;
    bool WaitForCommandsDone(std::uint64_t count, int milliseconds) const;

    // Ends the thread and waits for it: raises the abort state until the running command is left, drops what waits, and
    // asks for no response. Prompt if the running command heeds the abort state. May be called twice, not on the
    // worker.
    void Shutdown();

protected:
    ExitCode Entry() override;

private:
    void RequireMainThread() const;
    void Process(std::unique_ptr<OrvCommand>& command);
    OrvCommandEvent* Deliver(OrvCommandEvent* event) const;
    void AwaitResponse(OrvCommand const* command, bool logged);
    void DropWaiting();

    OrvMessageQueue<OrvCommand*> m_commandQueue;
    OrvMessageQueue<int> m_responseQueue;
    OrvMessageQueue<OrvCommandEvent*> m_testEventQueue;
    std::atomic<std::uint64_t> m_queueSize{0};
    std::atomic<std::uint64_t> m_queueCapacity{1};
    std::atomic<OrvProgressHandler*> m_progressHandler{nullptr};
    OrvLogger m_logger;
    std::atomic<bool> m_test{false};
    std::atomic<bool> m_timerActive{false};
    std::atomic<bool> m_closing{false};
    mutable std::mutex m_stateMutex;
    mutable std::condition_variable m_stateChanged;
    std::uint64_t m_commandsDone = 0;
    bool m_left = false;
};
