// SPDX-License-Identifier: Apache-2.0
#include "orvcore/workerthread.h"

#include <chrono>

#include "orvcore/context.h"
#include "tolbase/progress.h"

namespace {

// How often a worker that is to end is told so again: a command may lower the abort state on its way out.
constexpr std::chrono::milliseconds kAbortInterval(20);

// Silences the assertions of a handler, which runs where a test has no one to answer them.
class AssertHandlerOff {
public:
    explicit AssertHandlerOff(bool off) : m_off(off), m_handler(wxTheAssertHandler) {
        if (m_off) wxTheAssertHandler = nullptr;
    }
    ~AssertHandlerOff() {
        if (m_off) wxTheAssertHandler = m_handler;
    }
    AssertHandlerOff(AssertHandlerOff const&) = delete;
    AssertHandlerOff& operator=(AssertHandlerOff const&) = delete;

private:
    bool m_off;
    wxAssertHandler_t m_handler;
};

}  // namespace

OrvWorkerThread::OrvWorkerThread() : wxThread(wxTHREAD_JOINABLE) {}

OrvWorkerThread::~OrvWorkerThread() {
    Shutdown();
    m_testEventQueue.ClearP();
}

void OrvWorkerThread::RequireMainThread() const {
    if (m_test) return;
    wxASSERT(wxThread::IsMain());
}

void OrvWorkerThread::DropWaiting() {
    m_commandQueue.ClearP();
    m_queueSize = 0;
    m_queueCapacity = 1;
}

void OrvWorkerThread::PostCommand(OrvCommand* command) {
    RequireMainThread();
    DropWaiting();
    m_commandQueue.Post(command);
    if (OrvProgressHandler* handler = m_progressHandler) {
        AssertHandlerOff const quiet(m_test);
        handler->OnCommandPosted();
    }
    ++m_queueSize;
}

void OrvWorkerThread::PostResponse(int value) {
    RequireMainThread();
    m_responseQueue.Post(value);
    if (m_queueSize != 0) --m_queueSize;
    if (m_queueSize != 0) return;
    if (OrvProgressHandler* handler = m_progressHandler) handler->OnCommandsFinished();
}

void OrvWorkerThread::ClearQueue() {
    DropWaiting();
}

void OrvWorkerThread::AbortProcessing() {
    tcvAbortAllProgress();
    DropWaiting();
}

void OrvWorkerThread::SetTest() {
    m_test = true;
    m_logger.EnableLogToFile(false);
    m_logger.EnableLogToStdErr(true);
}

OrvCommandEvent* OrvWorkerThread::PostTestResponse() {
    if (!m_test) {
        wxASSERT(false);
    }
    // What lies there answers earlier commands; the copies are nobody else's.
    m_testEventQueue.ClearP();
    OrvCommandEvent* event = nullptr;
    if (m_testEventQueue.Receive(event) != OrvMsgQueueNoError && !m_closing) {
        wxASSERT(false);
    }
    return event;
}

std::uint64_t OrvWorkerThread::GetCommandsDone() const {
    std::lock_guard<std::mutex> const lock(m_stateMutex);
    return m_commandsDone;
}

bool OrvWorkerThread::WaitForCommandsDone(std::uint64_t count, int milliseconds) const {
    std::unique_lock<std::mutex> lock(m_stateMutex);
    return m_stateChanged.wait_for(lock, std::chrono::milliseconds(milliseconds),
                                   [&] { return m_commandsDone >= count; });
}

void OrvWorkerThread::Shutdown() {
    if (!m_closing.exchange(true) && IsAlive()) {
        m_commandQueue.Close();
        m_responseQueue.Close();
        m_testEventQueue.Close();
        std::unique_lock<std::mutex> lock(m_stateMutex);
        while (!m_left) {
            tcvAbortAllProgress();
            m_stateChanged.wait_for(lock, kAbortInterval, [&] { return m_left; });
        }
        lock.unlock();
        Wait();
        // The abort was meant for this worker alone.
        tcvClearAborted();
        tcvDeinitProgress2();
    }
    m_commandQueue.ClearP();
}

wxThread::ExitCode OrvWorkerThread::Entry() {
    OrvCommand* received = nullptr;
    while (m_commandQueue.Receive(received) == OrvMsgQueueNoError) {
        std::unique_ptr<OrvCommand> command(received);
        try {
            Process(command);
        } catch (...) {
            // A command deals with its own failures. What it left in the mailbox belongs to no one any more.
            delete GetContext()->PopEvent();
        }
        command.reset();
        {
            std::lock_guard<std::mutex> const lock(m_stateMutex);
            ++m_commandsDone;
        }
        m_stateChanged.notify_all();
        wxThread::Yield();
    }
    std::lock_guard<std::mutex> const lock(m_stateMutex);
    m_left = true;
    m_stateChanged.notify_all();
    return nullptr;
}

void OrvWorkerThread::Process(std::unique_ptr<OrvCommand>& command) {
    bool const logged = command->LogEnabled();
    if (logged) m_logger.LogCommandStarted(command->GetCommandLog());
    tcvInitProgress(10);
    tcvSetProgressString(wxString());
    // Starting the progress has lowered an abort that may have meant this thread's end.
    if (m_closing) return;
    OrvProgressHandler* handler = m_progressHandler;
    m_timerActive = false;
    if (handler != nullptr && handler->IsTimerEnabled()) m_timerActive = true;
    command->Execute();
    std::unique_ptr<OrvCommandEvent> testEvent(Deliver(GetContext()->PopEvent()));
    if (command->GetCommandId() == OrvCommandIdExit) command.reset();
    AwaitResponse(command.get(), logged);
    if (m_test) m_testEventQueue.Post(testEvent.release());
}

// Queues the event to the application; gives a copy of it in test mode.
OrvCommandEvent* OrvWorkerThread::Deliver(OrvCommandEvent* event) const {
    if (event == nullptr) return nullptr;
    std::unique_ptr<OrvCommandEvent> copy;
    if (m_test) copy.reset(static_cast<OrvCommandEvent*>(event->Clone()));
    OrvQueueEvent(event);
    return copy.release();
}

void OrvWorkerThread::AwaitResponse(OrvCommand const* command, bool logged) {
    int token = 0;
    if (m_responseQueue.Receive(token) == OrvMsgQueueNoError) {
        if (logged && command != nullptr) m_logger.LogCommandCompleted(command->GetResultLog());
    } else if (!m_closing) {
        wxASSERT(false);
    }
}
