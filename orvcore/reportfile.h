// SPDX-License-Identifier: Apache-2.0
// A file that is written piece by piece and appears whole or not at all: until Commit it has no name (or one of its
// own, where the file system can't do that), and what stands at its place stays as it is. One thread. Private to this
// library.
#pragma once
#include <sys/types.h>
#include <wx/string.h>

#include <string>

class OrvReportFile {
public:
    // The file's folder has to exist. A link is followed; a pipe or device is written into.
    explicit OrvReportFile(wxString const& path);
    // Drops what was not committed.
    ~OrvReportFile();
    OrvReportFile(OrvReportFile const&) = delete;
    OrvReportFile& operator=(OrvReportFile const&) = delete;

    // False once anything has failed.
    bool IsOk() const { return m_ok; }
    // Adds the text in UTF-8.
    void Append(wxString const& text);
    // Writes what is pending. Empty if that, or any writing before, failed, and for a pipe or device; else a path at
    // which this process can read all that was written, until Commit.
    wxString FlushedPath();
    // Brings all to the disk and puts the file in its place. False if that, or any writing before, failed.
    bool Commit();

private:
    void Open();
    void Flush();
    std::string OwnPath() const;
    bool PutInPlace();

    std::string m_target;
    std::string m_temporary;  // empty while the file has no name
    std::string m_pending;
    int m_descriptor = -1;
    bool m_special = false;
    bool m_ok = false;
};
