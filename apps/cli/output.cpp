// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/output.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "apps/cli/failure.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/terminal.h"

namespace cli {

namespace {

constexpr size_t BufferSize = 64 * 1024;

std::string FolderOf(std::string const& path) {
    const size_t slash = path.rfind('/');
    return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

// With its point; empty for what is none that a program goes by.
std::string EndingOf(std::string const& path) {
    const size_t point = path.find_last_of("./");
    if (point == std::string::npos || path[point] == '/') return "";
    const std::string ending = path.substr(point);
    const bool plain = std::all_of(ending.begin() + 1, ending.end(), [](unsigned char c) { return std::isalnum(c); });
    return plain && ending.size() <= 9 ? ending : "";
}

}  // namespace

Output::Output(std::string path, bool force) : m_path(std::move(path)), m_force(force) {
    if (m_path.empty()) {
        m_descriptor = STDOUT_FILENO;
    } else {
        OpenFile(force);
    }
}

Output::~Output() {
    if (!m_path.empty() && m_descriptor >= 0) close(m_descriptor);
    if (!m_temporary.empty()) {
        unlink(m_temporary.c_str());
        SetFileToRemove("");
    }
}

void Output::OpenFile(bool force) {
    struct stat existing = {};
    if (stat(m_path.c_str(), &existing) == 0) {
        if (S_ISDIR(existing.st_mode)) throw Failure(ExitOutput, m_path, "can't be written: Is a directory");
        if (!S_ISREG(existing.st_mode)) {
            // A device or a pipe is written as it stands.
            m_descriptor = open(m_path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY);
            if (m_descriptor < 0) Fail(std::strerror(errno));
            return;
        }
        if (!force) throw Failure(ExitOutput, m_path, "exists (--force replaces it)");
    }
    const std::string ending = EndingOf(m_path);
    std::string name = FolderOf(m_path) + ".orvelle-XXXXXX" + ending;
    m_descriptor = mkostemps(name.data(), static_cast<int>(ending.size()), O_CLOEXEC);
    if (m_descriptor < 0) Fail(std::strerror(errno));
    m_temporary = name;
    SetFileToRemove(m_temporary);
    const mode_t mask = umask(0);
    umask(mask);
    static_cast<void>(fchmod(m_descriptor, 0666 & ~mask));
}

void Output::Fail(std::string const& reason) {
    throw Failure(ExitOutput, m_path.empty() ? "standard output" : m_path, "can't be written: " + reason);
}

void Output::Write(std::string_view bytes) {
    if (m_closed) return;
    m_buffer.append(bytes);
    if (m_buffer.size() >= BufferSize) Flush();
}

void Output::Flush() {
    if (m_closed || m_buffer.empty()) return;
    const std::string bytes = std::move(m_buffer);
    m_buffer.clear();
    if (WriteAll(m_descriptor, bytes)) return;
    if (errno != EPIPE) Fail(std::strerror(errno));
    m_closed = true;
}

void Output::Commit() {
    Flush();
    if (m_temporary.empty()) return;
    const int synced = fsync(m_descriptor);
    const int closed = close(m_descriptor);
    m_descriptor = -1;
    if (synced != 0 || closed != 0) Fail(std::strerror(errno));
    // Without --force a file that has appeared meanwhile is left alone.
    const unsigned flags = m_force ? 0U : RENAME_NOREPLACE;
    int result = renameat2(AT_FDCWD, m_temporary.c_str(), AT_FDCWD, m_path.c_str(), flags);
    if (result != 0 && flags != 0 && (errno == EINVAL || errno == ENOSYS)) {
        // A file system without that: a link never replaces anything.
        result = link(m_temporary.c_str(), m_path.c_str());
        if (result == 0) unlink(m_temporary.c_str());
    }
    if (result != 0 && errno == EEXIST) throw Failure(ExitOutput, m_path, "exists (--force replaces it)");
    if (result != 0) Fail(std::strerror(errno));
    m_temporary.clear();
    SetFileToRemove("");
}

bool Output::IsFile(std::string const& path) const {
    struct stat mine = {};
    struct stat other = {};
    if (m_path.empty() || stat(m_path.c_str(), &mine) != 0 || stat(path.c_str(), &other) != 0) return false;
    return mine.st_dev == other.st_dev && mine.st_ino == other.st_ino;
}

}  // namespace cli
