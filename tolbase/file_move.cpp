// SPDX-License-Identifier: Apache-2.0
// Making folders and moving files.
#include <linux/fs.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/xattr.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "tolbase/file.h"
#include "tolbase/filebytes.h"

using tolbase::FileDescriptor;
using tolbase::OpenRegularFile;

namespace {

constexpr std::size_t BlockBytes = std::size_t{1} << 20;

// Renames unless something stands at the target: the two are one step, so nothing is ever replaced. `errno` tells why
// not.
bool RenameWithoutReplacing(const std::string& from, const std::string& to) {
    if (syscall(SYS_renameat2, AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) return true;
    if (errno != EINVAL && errno != ENOSYS) return false;
    // Some network file systems lack it; a hard link doesn't replace anything either.
    if (link(from.c_str(), to.c_str()) != 0) return false;
    if (unlink(from.c_str()) == 0) return true;
    const int reason = errno;
    unlink(to.c_str());
    errno = reason;
    return false;
}

bool CopyContent(int from, int to) {
    std::vector<char> block(BlockBytes);
    ssize_t got = 0;
    while ((got = tolbase::ReadBlock(from, block.data(), block.size())) > 0)
        if (!tolbase::WriteWhole(to, block.data(), static_cast<std::size_t>(got))) return false;
    return got == 0;
}

bool SameContent(int left, int right) {
    std::vector<char> leftBlock(BlockBytes);
    std::vector<char> rightBlock(BlockBytes);
    if (lseek(left, 0, SEEK_SET) != 0 || lseek(right, 0, SEEK_SET) != 0) return false;
    while (true) {
        const ssize_t gotLeft = tolbase::ReadBlock(left, leftBlock.data(), leftBlock.size());
        const ssize_t gotRight = tolbase::ReadBlock(right, rightBlock.data(), rightBlock.size());
        if (gotLeft < 0 || gotLeft != gotRight) return false;
        if (gotLeft == 0) return true;
        if (std::memcmp(leftBlock.data(), rightBlock.data(), static_cast<std::size_t>(gotLeft)) != 0) return false;
    }
}

// The texts that a file carries beside its content, such as where a browser took it from; the system's own are none.
bool CopyOwnAttributes(int from, int to) {
    const ssize_t size = flistxattr(from, nullptr, 0);
    if (size < 0) return errno == ENOTSUP;
    std::vector<char> names(static_cast<std::size_t>(size));
    const ssize_t got = flistxattr(from, names.data(), names.size());
    if (got < 0) return false;
    std::vector<char> value(65536);
    for (const char* name = names.data(); name < names.data() + got; name += std::strlen(name) + 1) {
        if (std::strncmp(name, "user.", 5) != 0) continue;
        const ssize_t length = fgetxattr(from, name, value.data(), value.size());
        if (length < 0 || fsetxattr(to, name, value.data(), static_cast<std::size_t>(length), 0) != 0) return false;
    }
    return true;
}

// The times and the mode are evidence too; the owner is kept where that is allowed.
bool CopyAttributes(const struct stat& info, int from, int to) {
    const timespec times[2] = {info.st_atim, info.st_mtim};
    if (!CopyOwnAttributes(from, to)) return false;
    const bool owned = fchown(to, info.st_uid, info.st_gid) == 0;
    static_cast<void>(owned);
    return fchmod(to, info.st_mode & 0777) == 0 && futimens(to, times) == 0 && fsync(to) == 0;
}

// A copy in the folder of its own name, brought to the disk and compared with the source; empty on failure. What is
// there under the final name is always whole.
std::string CopyBeside(const std::string& from, const std::string& folder) {
    const FileDescriptor source = OpenRegularFile(from);
    struct stat info {};
    if (!source.IsOk() || fstat(source.Get(), &info) != 0) return {};
    for (int attempt = 0; attempt < 100; ++attempt) {
        const std::string name = folder + ".orv-move-" + std::to_string(getpid()) + "-" + std::to_string(attempt);
        FileDescriptor target(open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (!target.IsOk() && errno == EEXIST) continue;
        if (!target.IsOk()) return {};
        bool good = CopyContent(source.Get(), target.Get()) && fsync(target.Get()) == 0;
        // What is compared comes from the disk and not from memory, where the system can do that.
        if (good) posix_fadvise(target.Get(), 0, 0, POSIX_FADV_DONTNEED);
        good = good && SameContent(source.Get(), target.Get()) && CopyAttributes(info, source.Get(), target.Get());
        good = target.Close() && good;
        if (good) return name;
        unlink(name.c_str());
        return {};
    }
    return {};
}

void SyncFolder(const std::string& folder) {
    const FileDescriptor handle(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.IsOk()) fsync(handle.Get());
}

// "a.jpg" for 1, "a (2).jpg" for 2.
std::string Numbered(const std::string& name, int number) {
    if (number == 1) return name;
    const std::size_t point = name.rfind('.');
    const std::size_t cut = point == std::string::npos || point == 0 ? name.size() : point;
    return name.substr(0, cut) + " (" + std::to_string(number) + ")" + name.substr(cut);
}

// Under the first name that is free. `errno` tells why not.
bool RenameNumbered(const std::string& from, const std::string& folder, const std::string& name, std::string& moved) {
    constexpr int MaxNumber = 100000;
    for (int number = 1; number <= MaxNumber; ++number) {
        moved = folder + Numbered(name, number);
        if (RenameWithoutReplacing(from, moved)) return true;
        if (errno != EEXIST) return false;
    }
    return false;
}

bool IsLink(const std::string& path) {
    struct stat info {};
    return lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

bool PlaceInFolder(const std::string& from, const std::string& folder, const std::string& name, std::string& moved) {
    // A relative link would lead nowhere from another folder: its file's content is what has to arrive.
    if (!IsLink(from)) {
        if (RenameNumbered(from, folder, name, moved)) return true;
        if (errno != EXDEV) return false;
    }
    const std::string copy = CopyBeside(from, folder);
    if (copy.empty()) return false;
    if (!RenameNumbered(copy, folder, name, moved)) {
        unlink(copy.c_str());
        return false;
    }
    SyncFolder(folder);
    if (unlink(from.c_str()) == 0) return true;
    unlink(moved.c_str());
    return false;
}

bool IsSameFolder(const std::string& left, const std::string& right) {
    struct stat leftInfo {};
    struct stat rightInfo {};
    return stat(left.c_str(), &leftInfo) == 0 && stat(right.c_str(), &rightInfo) == 0 &&
           leftInfo.st_dev == rightInfo.st_dev && leftInfo.st_ino == rightInfo.st_ino;
}

}  // namespace

bool CreateDirIfNotExists(const wxString& path) {
    const std::filesystem::path folder(PathToBytes(path));
    if (folder.empty()) return false;
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    // Another process may have made it at the same time.
    std::error_code unknown;
    return std::filesystem::is_directory(folder, unknown);
}

wxString NumberedFilename(const wxString& name, int number) {
    return PathFromBytes(Numbered(PathToBytes(name), number));
}

bool RenameFileToNew(const wxString& from, const wxString& to, bool& exists) {
    const bool done = RenameWithoutReplacing(PathToBytes(from), PathToBytes(to));
    exists = !done && errno == EEXIST;
    return done;
}

bool MoveFileToFolder(const wxString& file, const wxString& folder, wxString* movedTo) {
    const std::string from = PathToBytes(file);
    struct stat info {};
    if (stat(from.c_str(), &info) != 0 || !S_ISREG(info.st_mode)) return false;
    if (!CreateDirIfNotExists(folder)) return false;
    const std::string target = PathToBytes(folder);
    const std::size_t slash = from.rfind('/');
    const std::string home = slash == std::string::npos ? "." : from.substr(0, slash + 1);
    const std::string name = slash == std::string::npos ? from : from.substr(slash + 1);
    if (IsSameFolder(home, target)) {
        if (movedTo != nullptr) *movedTo = file;
        return true;
    }
    std::string moved;
    if (!PlaceInFolder(from, target + (target.back() == '/' ? "" : "/"), name, moved)) return false;
    if (movedTo != nullptr) *movedTo = PathFromBytes(moved);
    return true;
}
