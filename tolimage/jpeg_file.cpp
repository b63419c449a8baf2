// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeg_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>

#include "tolbase/file.h"
#include "tolbase/limits.h"

namespace {

class Descriptor {
public:
    // A named pipe must not block: it is refused as soon as it is open.
    explicit Descriptor(std::string const& name) : m_value(open(name.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    ~Descriptor() {
        if (m_value >= 0) close(m_value);
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    int Get() const { return m_value; }

private:
    int m_value;
};

// As many bytes as there are, up to `size`; -1 on an error.
ssize_t ReadAt(int file, char* target, size_t size, off_t offset) {
    size_t done = 0;
    while (done < size) {
        const ssize_t got = pread(file, target + done, size - done, offset + static_cast<off_t>(done));
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += static_cast<size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

}  // namespace

bool ReadJpegFile(wxString const& path, bool onlyJpeg, std::string& bytes) {
    bytes.clear();
    if (path.empty()) return false;
    const Descriptor file(PathToBytes(path));
    struct stat facts {};
    if (file.Get() < 0 || fstat(file.Get(), &facts) != 0 || !S_ISREG(facts.st_mode)) return false;
    if (onlyJpeg) {
        char head[2] = {};
        if (ReadAt(file.Get(), head, 2, 0) != 2 || head[0] != '\xFF' || head[1] != '\xD8') return false;
    }
    CheckTolLimit(TolLimit::FileBytes, static_cast<uint64_t>(facts.st_size));
    bytes.resize(static_cast<size_t>(facts.st_size));
    const ssize_t got = ReadAt(file.Get(), bytes.data(), bytes.size(), 0);
    bytes.resize(got < 0 ? 0 : static_cast<size_t>(got));
    return got >= 0;
}
