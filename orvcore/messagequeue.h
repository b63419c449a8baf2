// SPDX-License-Identifier: Apache-2.0
// A thread-safe first-in-first-out queue, on which the worker thread and its clients wait for each other.
//
// Threads: every operation may be called from any thread. No operation holds the lock while it runs foreign code,
// except that ClearP deletes what it has already taken out. Ownership: the queue owns nothing; ClearP frees pointers on
// demand.
#pragma once
#include <wx/debug.h>
#include <wx/thread.h>

#include <cstddef>
#include <deque>

// What an operation of a queue answers.
enum OrvMessageQueueError : int {
    OrvMsgQueueNoError = 0,
    OrvMsgQueueMiscError = 2,  // the mutex or the condition can't be used, or the queue is closed
};

// Values of one type from any number of senders to any number of receivers. There is no size limit and no time-out.
template <typename T>
class OrvMessageQueue {
public:
    OrvMessageQueue() : m_condition(m_mutex) {}
    OrvMessageQueue(OrvMessageQueue const&) = delete;
    OrvMessageQueue& operator=(OrvMessageQueue const&) = delete;

    // True if the condition variable is usable.
    bool IsOk() const { return m_condition.IsOk(); }

    // Appends a value and wakes one receiver.
    OrvMessageQueueError Post(T const& value) {
        wxMutexLocker locker(m_mutex);
        wxCHECK(locker.IsOk(), OrvMsgQueueMiscError);
        m_values.push_back(value);
        m_condition.Signal();
        return OrvMsgQueueNoError;
    }

    // Drops every value. What pointers point to is not freed. Needs no memory.
    OrvMessageQueueError Clear() {
        wxCHECK(IsOk(), OrvMsgQueueMiscError);
        wxMutexLocker locker(m_mutex);
        wxCHECK(locker.IsOk(), OrvMsgQueueMiscError);
        m_values.clear();
        return OrvMsgQueueNoError;
    }

    // Takes out every pointer that waits and deletes what it points to. Needs no memory: destructors call it.
    OrvMessageQueueError ClearP() {
        wxCHECK(IsOk(), OrvMsgQueueMiscError);
        std::size_t waiting = 0;
        {
            wxMutexLocker locker(m_mutex);
            wxCHECK(locker.IsOk(), OrvMsgQueueMiscError);
            waiting = m_values.size();
        }
        for (; waiting > 0; --waiting) {
            // A null pointer may wait as well as any other, and a receiver may have been quicker.
            T value = nullptr;
            Take(value);
            delete value;
        }
        return OrvMsgQueueNoError;
    }

    // Waits for a value and takes the first. Fails at once, and silently, when the queue is or becomes closed.
    OrvMessageQueueError Receive(T& value) {
        wxCHECK(IsOk(), OrvMsgQueueMiscError);
        wxMutexLocker locker(m_mutex);
        wxCHECK(locker.IsOk(), OrvMsgQueueMiscError);
        while (m_values.empty() && !m_closed) {
            wxCondError const result = m_condition.Wait();
            wxCHECK(result == wxCOND_NO_ERROR, OrvMsgQueueMiscError);
        }
        if (m_closed) return OrvMsgQueueMiscError;
        value = m_values.front();
        m_values.pop_front();
        return OrvMsgQueueNoError;
    }

    // Lets every waiting and every later Receive fail. A closed queue stays closed; what it holds stays in it.
    void Close() {
        wxMutexLocker locker(m_mutex);
        m_closed = true;
        m_condition.Broadcast();
    }

private:
    // The first value, where there is one.
    void Take(T& value) {
        wxMutexLocker locker(m_mutex);
        if (m_values.empty()) return;
        value = m_values.front();
        m_values.pop_front();
    }

    wxMutex m_mutex;
    wxCondition m_condition;
    std::deque<T> m_values;
    bool m_closed = false;
};
