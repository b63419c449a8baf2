// SPDX-License-Identifier: Apache-2.0
#include "orvcore/reportfile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>

#include "tolbase/file.h"
#include "tolbase/text.h"

namespace {

constexpr size_t PendingBytes = size_t{1} << 18;
constexpr int NameAttempts = 100;

std::string FolderOf(std::string const& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "./" : path.substr(0, slash + 1);
}

std::string FreeName(std::string const& target, int attempt) {
    return FolderOf(target) + ".orv-report-" + std::to_string(getpid()) + "-" + std::to_string(attempt) + ".tmp";
}

bool WriteAll(int descriptor, char const* bytes, size_t size) {
    while (size > 0) {
        const ssize_t put = write(descriptor, bytes, size);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        bytes += put;
        size -= static_cast<size_t>(put);
    }
    return true;
}

}  // namespace

OrvReportFile::OrvReportFile(wxString const& path) : m_target(PathToBytes(path)) {
    char resolved[PATH_MAX];
    if (realpath(m_target.c_str(), resolved) != nullptr) m_target = resolved;
    Open();
}

OrvReportFile::~OrvReportFile() {
    if (m_descriptor >= 0) close(m_descriptor);
    if (!m_temporary.empty()) unlink(m_temporary.c_str());
}

void OrvReportFile::Open() {
    struct stat info {};
    const bool exists = stat(m_target.c_str(), &info) == 0;
    if (m_target.empty() || (exists && (S_ISDIR(info.st_mode) || access(m_target.c_str(), W_OK) != 0))) return;
    m_special = exists && !S_ISREG(info.st_mode);
    if (m_special) {
        m_descriptor = open(m_target.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
    } else {
        m_descriptor = open(FolderOf(m_target).c_str(), O_TMPFILE | O_WRONLY | O_CLOEXEC, 0666);
        for (int attempt = 0; m_descriptor < 0 && attempt < NameAttempts; ++attempt) {
            m_temporary = FreeName(m_target, attempt);
            m_descriptor = open(m_temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
            if (m_descriptor < 0) m_temporary.clear();
            if (m_descriptor < 0 && errno != EEXIST) break;
        }
        // A file that is replaced keeps its mode.
        if (m_descriptor >= 0 && exists && fchmod(m_descriptor, info.st_mode & 07777) != 0) return;
    }
    m_ok = m_descriptor >= 0;
}

void OrvReportFile::Append(wxString const& text) {
    if (!m_ok) return;
    m_pending += TolToUtf8(text);
    if (m_pending.size() >= PendingBytes) Flush();
}

void OrvReportFile::Flush() {
    m_ok = m_ok && WriteAll(m_descriptor, m_pending.data(), m_pending.size());
    m_pending.clear();
}

wxString OrvReportFile::FlushedPath() {
    if (m_ok) Flush();
    return m_ok && !m_special ? PathFromBytes(OwnPath()) : wxString();
}

std::string OrvReportFile::OwnPath() const {
    return "/proc/self/fd/" + std::to_string(m_descriptor);
}

bool OrvReportFile::PutInPlace() {
    if (fsync(m_descriptor) != 0) return false;
    const std::string own = OwnPath();
    for (int attempt = 0; m_temporary.empty() && attempt < NameAttempts; ++attempt) {
        const std::string name = FreeName(m_target, attempt);
        if (linkat(AT_FDCWD, own.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0) {
            m_temporary = name;
        } else if (errno != EEXIST) {
            return false;
        }
    }
    if (m_temporary.empty() || rename(m_temporary.c_str(), m_target.c_str()) != 0) return false;
    m_temporary.clear();
    // The new name is on the disk only when the folder is.
    const int folder = open(FolderOf(m_target).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder >= 0) {
        fsync(folder);
        close(folder);
    }
    return true;
}

bool OrvReportFile::Commit() {
    if (m_ok) Flush();
    m_ok = m_ok && (m_special || PutInPlace());
    if (m_descriptor >= 0) m_ok = close(m_descriptor) == 0 && m_ok;
    m_descriptor = -1;
    return m_ok;
}
