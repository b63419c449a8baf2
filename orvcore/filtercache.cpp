// SPDX-License-Identifier: Apache-2.0
// Files and folders of the cache; see filtercache_stamp.cpp for the versions.
#include "orvcore/filtercache.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>
#include <zlib.h>

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <thread>

#include "tolbase/file.h"
#include "tolbase/filebytes.h"
#include "tolbase/progress.h"

namespace filtercache {
namespace {

using namespace std::chrono_literals;
using tolbase::FileDescriptor;

// So long does one program wait for another; it then does without the cache.
constexpr auto kLockPatience = 3s;
constexpr auto kLockPause = 5ms;
constexpr size_t kLargestChunk = size_t{1} << 24;
constexpr int kMostChunks = 1 << 20;

std::function<bool(Step)>& Hook() {
    static std::function<bool(Step)> hook;
    return hook;
}

bool MayDo(Step step) {
    return !Hook() || Hook()(step);
}

// Names of no two writers are the same, on whatever machines they run.
std::string RandomName() {
    std::array<unsigned char, 8> bytes{};
    if (::getrandom(bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) return {};
    std::string name;
    for (unsigned char const byte : bytes) {
        name += "0123456789abcdef"[byte >> 4];
        name += "0123456789abcdef"[byte & 15];
    }
    return name;
}

// Creates a file that nobody else has, whatever stands in the folder.
int CreateUnique(std::string const& folder, char const* prefix, std::string& path) {
    std::string const name = RandomName();
    if (name.empty()) return -1;
    path = folder + "/" + prefix + name + ".tmp";
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
}

bool WriteBytes(int target, char const* bytes, size_t size) {
    bool const whole = MayDo(Step::Write);
    // What a full disk takes before it is full.
    if (!whole) size /= 2;
    while (size > 0) {
        ssize_t const written = ::write(target, bytes, size);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes += written;
        size -= static_cast<size_t>(written);
    }
    return whole;
}

bool ReadAt(int file, off_t offset, void* target, size_t size) {
    auto* bytes = static_cast<char*>(target);
    while (size > 0) {
        ssize_t const got = ::pread(file, bytes, size, offset);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        bytes += got;
        offset += got;
        size -= static_cast<size_t>(got);
    }
    return true;
}

uint32_t BigEndian(unsigned char const* bytes) {
    return static_cast<uint32_t>(bytes[0]) << 24 | static_cast<uint32_t>(bytes[1]) << 16 |
           static_cast<uint32_t>(bytes[2]) << 8 | bytes[3];
}

// True if the chunk at `offset` has the checksum that it claims.
bool IsChunkSound(int file, off_t offset, size_t length) {
    if (length > kLargestChunk) return false;
    std::vector<unsigned char> bytes(length + 8);
    if (!ReadAt(file, offset + 4, bytes.data(), bytes.size())) return false;
    uLong const sum = ::crc32(0, bytes.data(), static_cast<uInt>(length + 4));
    return BigEndian(bytes.data() + length + 4) == sum;
}

// The decoder checks every chunk but the last ones, which it does not need for the last row.
bool IsWholePng(int file, off_t size) {
    unsigned char head[8];
    constexpr unsigned char kSignature[8] = {0x89, 'P', 'N', 'G', 0x0D, 0x0A, 0x1A, 0x0A};
    if (!ReadAt(file, 0, head, 8) || std::memcmp(head, kSignature, 8) != 0) return false;
    off_t offset = 8;
    off_t lastData = 0;
    size_t lastLength = 0;
    for (int chunk = 0; chunk < kMostChunks && ReadAt(file, offset, head, 8); ++chunk) {
        size_t const length = BigEndian(head);
        off_t const next = offset + static_cast<off_t>(length) + 12;
        if (next > size) return false;
        if (std::memcmp(head + 4, "IDAT", 4) == 0) {
            lastData = offset;
            lastLength = length;
        }
        if (std::memcmp(head + 4, "IEND", 4) == 0) {
            return next == size && lastData != 0 && IsChunkSound(file, lastData, lastLength);
        }
        offset = next;
    }
    return false;
}

bool IsPlain(std::string const& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace

void SetStepHook(std::function<bool(Step)> hook) {
    Hook() = std::move(hook);
}

bool WriteWholeFile(wxString const& path, std::string const& bytes, Sync sync) {
    std::string const target = PathToBytes(path);
    size_t const slash = target.rfind('/');
    if (slash == std::string::npos || !MayDo(Step::Create)) return false;
    std::string temporary;
    FileDescriptor file(CreateUnique(target.substr(0, slash), ".cache-", temporary));
    if (!file.IsOk()) return false;
    bool good = WriteBytes(file.Get(), bytes.data(), bytes.size());
    if (good && sync == Sync::Yes) good = MayDo(Step::Sync) && ::fsync(file.Get()) == 0;
    good = file.Close() && good;
    good = good && MayDo(Step::Rename) && ::rename(temporary.c_str(), target.c_str()) == 0;
    if (!good) ::unlink(temporary.c_str());
    return good;
}

bool RemoveFile(wxString const& path) {
    std::string const bytes = PathToBytes(path);
    struct stat info {};
    if (::lstat(bytes.c_str(), &info) != 0) return errno == ENOENT || errno == ENOTDIR || errno == ENAMETOOLONG;
    return MayDo(Step::Remove) && (::unlink(bytes.c_str()) == 0 || errno == ENOENT);
}

bool IsPlainFile(wxString const& path) {
    return IsPlain(PathToBytes(path));
}

bool IsLink(wxString const& path) {
    struct stat info {};
    return ::lstat(PathToBytes(path).c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

bool IsWholePicture(wxString const& path) {
    FileDescriptor const file(::open(PathToBytes(path).c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    struct stat info {};
    if (!file.IsOk() || ::fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    if (path.EndsWith(".png")) return IsWholePng(file.Get(), info.st_size);
    unsigned char head[3];
    return ReadAt(file.Get(), 0, head, 3) && head[0] == 0xFF && head[1] == 0xD8 && head[2] == 0xFF;
}

int CreateCopyFile(std::string const& folder, std::string& path) {
    return CreateUnique(folder, ".copy-", path);
}

// True when there is no use in trying again: the lock is held, or can't be.
bool FolderLock::TryLock(std::string const& path, int operation) {
    FileDescriptor folder(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW));
    if (!folder.IsOk()) return true;
    // A file system without locks leaves us with what renaming gives.
    if (::flock(folder.Get(), operation | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR)) return false;
    struct stat held {};
    struct stat named {};
    if (::fstat(folder.Get(), &held) != 0 || ::lstat(path.c_str(), &named) != 0) return true;
    // It was deleted while we waited, and perhaps made anew.
    if (held.st_dev != named.st_dev || held.st_ino != named.st_ino) return false;
    m_folder = folder.Release();
    return true;
}

FolderLock::FolderLock(wxString const& folder, Kind kind) {
    if (folder.empty()) return;
    std::string const path = PathToBytes(folder);
    auto const end = std::chrono::steady_clock::now() + kLockPatience;
    while (!TryLock(path, kind == Shared ? LOCK_SH : LOCK_EX)) {
        if (std::chrono::steady_clock::now() > end || tcvHasAborted()) return;
        std::this_thread::sleep_for(kLockPause);
    }
}

FolderLock::~FolderLock() {
    if (m_folder >= 0) ::close(m_folder);
}

void DeleteFolder(wxString const& folder) {
    namespace fs = std::filesystem;
    std::string const path = PathToBytes(folder);
    if (path.empty()) return;
    if (IsLink(folder)) {
        ::unlink(path.c_str());
        return;
    }
    // Who holds the lock longer than we wait finds its folder gone, and stores nothing.
    FolderLock const lock(folder, FolderLock::Exclusive);
    for (wxString const& status : GetAllFiles(folder, {"status"}, false)) RemoveFile(status);
    // What others put there meanwhile makes a removal fail.
    for (int attempt = 0; attempt < 10; ++attempt) {
        std::error_code error;
        fs::remove_all(path, error);
        if (!error) return;
    }
}

}  // namespace filtercache
