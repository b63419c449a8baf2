// SPDX-License-Identifier: Apache-2.0
// The log of commands, the record of progress texts and the debug channel.
//
// Threads: the worker thread logs; the flags may be changed from another thread while no command is running. A lock of
// the logger's own keeps even a change at another time from harming it. Ownership: a logger owns its two files.
#pragma once
#include <wx/ffile.h>
#include <wx/stopwatch.h>
#include <wx/string.h>

#include <cstdint>
#include <mutex>

#include "tolbase/export.h"

// Writes the command log to "current.txt" and to a dated file, both in the folder "logs" beneath the documents folder,
// and to the standard error. Both are off at start. Nothing here throws: a log that can't be written is no reason to
// stop an examination.
class ORV_API OrvLogger {
public:
    OrvLogger() = default;
    OrvLogger(OrvLogger const&) = delete;
    OrvLogger& operator=(OrvLogger const&) = delete;

    // Turning the log on empties "current.txt" and begins a new dated file; a call that changes nothing does nothing.
    // Turning it off keeps the files open and stops the writing.
    void EnableLogToFile(bool enable);
    void EnableLogToStdErr(bool enable);

    // Writes the time and the text, without a line end, and starts the clock.
    void LogCommandStarted(wxString const& text);
    // Ends that line: the text, then the time elapsed, right-aligned so that the line ends at column 102.
    void LogCommandCompleted(wxString const& text);
    // Writes the text as it is. On the standard error every character beyond ASCII becomes "_".
    void LogText(wxString const& text);

private:
    void OpenFiles();
    void Write(wxString const& text);

    wxFFile m_logFile;
    wxFFile m_currentFile;
    wxString m_logFilename;
    wxString m_currentFilename;
    wxStopWatch m_stopWatch;
    bool m_logToFile = false;
    bool m_logToStdErr = false;
    int m_startedLength = 0;
    std::mutex m_mutex;
};

// What an application shows of a running operation: three texts and two counts. A plain value.
struct OrvProgress {
    wxString title;
    wxString text;
    wxString detail;
    std::uint64_t value = 0;
    std::uint64_t total = 0;
};

// Hands a line to the debug channel: wxWidgets' debug log, which shows it only where the application has switched debug
// messages on. May be called from any thread.
ORV_API void OrvDebugString(wxString const& text);
