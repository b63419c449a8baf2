// SPDX-License-Identifier: Apache-2.0
// Data together with the lock that guards them.
#pragma once
#include <wx/thread.h>

// Holds a mutex for as long as it lives and hands out the data that the mutex guards. Returned by value by the
// accessors of data that both the worker thread and the user interface thread touch:
//
//     auto picture = filter.GetOutputImageDisplayed(Evidence);  // locked from here
//     Show(*picture);                                           // unlocked at the end of the scope
//
// Neither copied nor moved. The data are not owned. Never hold two lockers of one slot in one thread: the mutexes are
// not recursive.
template <typename T>
class OrvDataLocker {
public:
    // Locks `mutex`; blocks while another thread holds it.
    OrvDataLocker(T* data, wxMutex& mutex) : m_data(data), m_locker(mutex) {}
    OrvDataLocker(const OrvDataLocker&) = delete;
    OrvDataLocker& operator=(const OrvDataLocker&) = delete;

    T* operator->() const { return m_data; }
    T& operator*() const { return *m_data; }
    T* Get() const { return m_data; }

private:
    T* m_data;
    wxMutexLocker m_locker;
};
