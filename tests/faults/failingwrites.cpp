// SPDX-License-Identifier: Apache-2.0
// The names of the C library as it exports them, so no macros may turn them into others.
#undef _FILE_OFFSET_BITS
#undef _FORTIFY_SOURCE
#include "tests/faults/failingwrites.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <climits>
#include <cstdarg>
#include <mutex>

namespace {

std::atomic<bool> active{false};
std::mutex mutex;
std::string root;
int failAt = 0;
int counted = 0;
faults::Failing kind = faults::Failing::Once;

bool IsBeneath(char const* path) {
    return path != nullptr && std::string(path).compare(0, root.size(), root) == 0;
}

bool IsBeneath(int descriptor) {
    char target[PATH_MAX];
    std::string const link = "/proc/self/fd/" + std::to_string(descriptor);
    long const size = syscall(SYS_readlink, link.c_str(), target, sizeof target - 1);
    if (size <= 0) return false;
    target[size] = '\0';
    return IsBeneath(target);
}

enum class Verdict { Works, Fails, Halved };

// What becomes of the operation that is now to be done on a path or descriptor.
template <class Place>
Verdict Judge(Place place) {
    if (!active) return Verdict::Works;
    std::lock_guard<std::mutex> const lock(mutex);
    if (!IsBeneath(place)) return Verdict::Works;
    ++counted;
    if (failAt == 0 || counted < failAt) return Verdict::Works;
    if (kind == faults::Failing::Once) return counted == failAt ? Verdict::Fails : Verdict::Works;
    return counted == failAt ? Verdict::Halved : Verdict::Fails;
}

int Refuse() {
    errno = kind == faults::Failing::Once ? EIO : ENOSPC;
    return -1;
}

int Open(int folder, char const* path, int flags, mode_t mode) {
    bool const makes = (flags & (O_CREAT | O_TRUNC)) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    if (makes && Judge(path) != Verdict::Works) return Refuse();
    return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode));
}

mode_t ModeOf(int flags, va_list arguments) {
    bool const takesMode = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return takesMode ? va_arg(arguments, mode_t) : 0;
}

}  // namespace

namespace faults {

void FailWrites(std::string const& folder, int at, Failing failing) {
    std::lock_guard<std::mutex> const lock(mutex);
    root = folder;
    failAt = at;
    kind = failing;
    counted = 0;
    active = true;
}

int StopFailing() {
    std::lock_guard<std::mutex> const lock(mutex);
    active = false;
    return counted;
}

}  // namespace faults

// NOLINTBEGIN: the names and forms are the C library's
extern "C" {

#define ORV_SHOWN __attribute__((visibility("default")))

ORV_SHOWN ssize_t write(int descriptor, void const* bytes, size_t size) {
    Verdict const verdict = Judge(descriptor);
    if (verdict == Verdict::Fails || (verdict == Verdict::Halved && size < 2)) return Refuse();
    return syscall(SYS_write, descriptor, bytes, verdict == Verdict::Halved ? size / 2 : size);
}

ORV_SHOWN ssize_t pwrite(int descriptor, void const* bytes, size_t size, off_t offset) {
    if (Judge(descriptor) != Verdict::Works) return Refuse();
    return syscall(SYS_pwrite64, descriptor, bytes, size, offset);
}

ORV_SHOWN ssize_t pwrite64(int descriptor, void const* bytes, size_t size, off64_t offset) {
    return pwrite(descriptor, bytes, size, offset);
}

ORV_SHOWN ssize_t writev(int descriptor, iovec const* parts, int count) {
    if (Judge(descriptor) != Verdict::Works) return Refuse();
    return syscall(SYS_writev, descriptor, parts, count);
}

ORV_SHOWN int open(char const* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Open(AT_FDCWD, path, flags, mode);
}

ORV_SHOWN int open64(char const* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Open(AT_FDCWD, path, flags, mode);
}

ORV_SHOWN int openat(int folder, char const* path, int flags, ...) {
    va_list arguments;
    va_start(arguments, flags);
    mode_t const mode = ModeOf(flags, arguments);
    va_end(arguments);
    return Open(folder, path, flags, mode);
}

ORV_SHOWN int fsync(int descriptor) {
    if (Judge(descriptor) != Verdict::Works) return Refuse();
    return static_cast<int>(syscall(SYS_fsync, descriptor));
}

ORV_SHOWN int fdatasync(int descriptor) {
    if (Judge(descriptor) != Verdict::Works) return Refuse();
    return static_cast<int>(syscall(SYS_fdatasync, descriptor));
}

ORV_SHOWN int fchmod(int descriptor, mode_t mode) {
    if (Judge(descriptor) != Verdict::Works) return Refuse();
    return static_cast<int>(syscall(SYS_fchmod, descriptor, mode));
}

ORV_SHOWN int rename(char const* from, char const* to) noexcept {
    if (Judge(to) != Verdict::Works) return Refuse();
    return static_cast<int>(syscall(SYS_rename, from, to));
}

ORV_SHOWN int linkat(int fromFolder, char const* from, int toFolder, char const* to, int flags) noexcept {
    if (Judge(to) != Verdict::Works) return Refuse();
    return static_cast<int>(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
}

ORV_SHOWN int mkdir(char const* path, mode_t mode) noexcept {
    if (Judge(path) != Verdict::Works) return Refuse();
    return static_cast<int>(syscall(SYS_mkdir, path, mode));
}

}  // extern "C"
// NOLINTEND
