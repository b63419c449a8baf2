// SPDX-License-Identifier: Apache-2.0
#include "orvcore/logger.h"

#include <wx/convauto.h>
#include <wx/log.h>

#include <cstdio>

#include "tolbase/file.h"
#include "tolbase/timetext.h"

namespace {

// The line of a command, without the two blanks in front of the time.
constexpr int kLineLength = 100;

}  // namespace

void OrvLogger::EnableLogToFile(bool enable) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    if (enable == m_logToFile) return;
    m_logToFile = enable;
    if (enable) OpenFiles();
}

void OrvLogger::EnableLogToStdErr(bool enable) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_logToStdErr = enable;
}

void OrvLogger::OpenFiles() {
    wxLogNull const silence;
    m_currentFile.Close();
    m_logFile.Close();
    wxString const folder = GetAppDocumentsPath() + wxFILE_SEP_PATH + "logs";
    CreateDirIfNotExists(folder);
    m_currentFilename = folder + wxFILE_SEP_PATH + "current.txt";
    m_logFilename = folder + wxFILE_SEP_PATH + DateTimeNowAsString() + ".txt";
    m_currentFile.Open(m_currentFilename, "w");
    m_logFile.Open(m_logFilename, "w");
}

void OrvLogger::LogCommandStarted(wxString const& text) {
    wxString const line = DateTimeNowAsString() + " " + text;
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_startedLength = static_cast<int>(line.length());
    Write(line);
    m_stopWatch.Start(0);
}

void OrvLogger::LogCommandCompleted(wxString const& text) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    wxString time = MillisecondsToTimeString(m_stopWatch.Time());
    int const width = kLineLength - (static_cast<int>(text.length()) + m_startedLength);
    // A negative width aligns to the left.
    int const length = static_cast<int>(time.length());
    if (width > length) time.Pad(static_cast<size_t>(width - length), ' ', false);
    if (-width > length) time.Pad(static_cast<size_t>(-width - length), ' ', true);
    Write(text + "  " + time + "\n");
}

void OrvLogger::LogText(wxString const& text) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    Write(text);
}

void OrvLogger::Write(wxString const& text) {
    if (m_logToFile) {
        wxLogNull const silence;
        for (wxFFile* file : {&m_logFile, &m_currentFile}) {
            if (!file->IsOpened()) continue;
            file->Write(text, wxConvAuto());
            file->Flush();
        }
    }
    if (m_logToStdErr) std::fprintf(stderr, "%s", text.ToAscii('_').data());
}

void OrvDebugString(wxString const& text) {
    wxLogDebug("%s", text + "\n");
}
