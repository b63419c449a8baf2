// SPDX-License-Identifier: Apache-2.0
// Making folders and moving files.
#include <linux/fs.h>
#include <sys/stat.h>
#include <sys/syscall.h>

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
    return unlink(from.c_str()) == 0;
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

// The times and the mode are evidence too.
bool CopyAttributes(int from, int to) {
    struct stat info {};
    if (fstat(from, &info) != 0) return false;
    const timespec times[2] = {info.st_atim, info.st_mtim};
    return fchmod(to, info.st_mode & 0777) == 0 && futimens(to, times) == 0;
}

// To another file system: copied, brought to the disk, compared, and only then removed. `errno` is EEXIST if something
// stands at the target.
bool MoveByCopy(const std::string& from, const std::string& to) {
    const FileDescriptor source = OpenRegularFile(from);
    if (!source.IsOk()) {
        errno = EIO;
        return false;
    }
    FileDescriptor target(open(to.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    if (!target.IsOk()) return false;
    const bool good = CopyContent(source.Get(), target.Get()) && fsync(target.Get()) == 0 &&
                      SameContent(source.Get(), target.Get()) && CopyAttributes(source.Get(), target.Get()) &&
                      target.Close();
    if (good && unlink(from.c_str()) == 0) return true;
    unlink(to.c_str());
    errno = EIO;
    return false;
}

bool MoveTo(const std::string& from, const std::string& to) {
    if (RenameWithoutReplacing(from, to)) return true;
    return errno == EXDEV && MoveByCopy(from, to);
}

// "a.jpg" for 1, "a (2).jpg" for 2.
std::string Numbered(const std::string& name, int number) {
    if (number == 1) return name;
    const std::size_t point = name.rfind('.');
    const std::size_t cut = point == std::string::npos || point == 0 ? name.size() : point;
    return name.substr(0, cut) + " (" + std::to_string(number) + ")" + name.substr(cut);
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

bool MoveFileToFolder(const wxString& file, const wxString& folder, wxString* movedTo) {
    constexpr int MaxNumber = 100000;
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
    for (int number = 1; number <= MaxNumber; ++number) {
        const std::string to = target + (target.back() == '/' ? "" : "/") + Numbered(name, number);
        if (MoveTo(from, to)) {
            if (movedTo != nullptr) *movedTo = PathFromBytes(to);
            return true;
        }
        if (errno != EEXIST) return false;
    }
    return false;
}
