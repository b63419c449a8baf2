// SPDX-License-Identifier: Apache-2.0
// Names, reading, writing and listing; see file_move.cpp and file_paths.cpp for the rest.
#include "tolbase/file.h"

#include <sys/stat.h>
#include <wx/strconv.h>

#include <algorithm>
#include <atomic>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tolbase/filebytes.h"
#include "tolbase/text.h"

namespace tolbase {

FileDescriptor OpenRegularFile(const std::string& path) {
    // Without O_NONBLOCK the opening of a pipe would wait for its other end.
    FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat info {};
    if (!file.IsOk() || fstat(file.Get(), &info) != 0 || !S_ISREG(info.st_mode)) return FileDescriptor();
    return file;
}

ssize_t ReadBlock(int descriptor, void* buffer, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = read(descriptor, static_cast<char*>(buffer) + done, size - done);
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) return -1;
        if (got == 0) break;
        done += static_cast<std::size_t>(got);
    }
    return static_cast<ssize_t>(done);
}

bool WriteWhole(int descriptor, const void* data, std::size_t size) {
    std::size_t done = 0;
    while (done < size) {
        const ssize_t put = write(descriptor, static_cast<const char*>(data) + done, size - done);
        if (put < 0 && errno == EINTR) continue;
        if (put <= 0) return false;
        done += static_cast<std::size_t>(put);
    }
    return true;
}

}  // namespace tolbase

using tolbase::FileDescriptor;
using tolbase::OpenRegularFile;

namespace {

wxMBConv& FileNameConversion() {
    static wxMBConvUTF8 conversion(wxMBConvUTF8::MAP_INVALID_UTF8_TO_PUA);
    return conversion;
}

// Runs when the library is loaded, before anything opens a file.
const struct FileNameInit {
    FileNameInit() { TolInitFileNames(); }
} fileNameInit;

}  // namespace

void TolInitFileNames() {
    wxConvFileName = &FileNameConversion();
}

std::string PathToBytes(const wxString& path) {
    std::size_t size = 0;
    const wxCharBuffer bytes = FileNameConversion().cWC2MB(path.wc_str(), path.length(), &size);
    return bytes.data() == nullptr ? std::string() : std::string(bytes.data(), size);
}

wxString PathFromBytes(const std::string& bytes) {
    return wxString(bytes.data(), FileNameConversion(), bytes.size());
}

bool ReadFileBytes(const wxString& path, std::string& bytes, std::size_t maxBytes) {
    bytes.clear();
    const FileDescriptor file = OpenRegularFile(PathToBytes(path));
    struct stat info {};
    if (!file.IsOk() || fstat(file.Get(), &info) != 0) return false;
    if (info.st_size < 0 || static_cast<unsigned long long>(info.st_size) > maxBytes) return false;
    std::string read(static_cast<std::size_t>(info.st_size), '\0');
    ssize_t got = tolbase::ReadBlock(file.Get(), &read[0], read.size());
    if (got < 0) return false;
    read.resize(static_cast<std::size_t>(got));
    // Files of the kernel claim to be empty, and a file may grow meanwhile.
    char block[65536];
    while ((got = tolbase::ReadBlock(file.Get(), block, sizeof block)) > 0) {
        if (read.size() + static_cast<std::size_t>(got) > maxBytes) return false;
        read.append(block, static_cast<std::size_t>(got));
    }
    if (got < 0) return false;
    bytes = std::move(read);
    return true;
}

wxString ReadFile(const wxString& path) {
    std::string bytes;
    if (!ReadFileBytes(path, bytes)) return wxString();
    const bool mark = bytes.compare(0, 3, "\xEF\xBB\xBF") == 0;
    if (bytes.compare(0, 2, "\xFF\xFE") == 0 || bytes.compare(0, 2, "\xFE\xFF") == 0) {
        const bool little = bytes[0] == '\xFF';
        wxMBConvUTF16LE littleEndian;
        wxMBConvUTF16BE bigEndian;
        const wxMBConv& conversion = little ? static_cast<const wxMBConv&>(littleEndian) : bigEndian;
        const wxString text(bytes.data() + 2, conversion, (bytes.size() - 2) / 2 * 2);
        if (!text.empty()) return text;
    }
    return TolFromUtf8(mark ? bytes.substr(3) : bytes);
}

namespace {

// What a path stands for behind its links; the path itself where nothing stands there yet.
std::string FollowLinks(const std::string& path) {
    char resolved[PATH_MAX];
    return realpath(path.c_str(), resolved) == nullptr ? path : std::string(resolved);
}

// True for a pipe or a device, which is written into and not replaced.
bool IsSpecial(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode) && !S_ISDIR(info.st_mode);
}

bool WriteInto(const std::string& path, const std::string& bytes) {
    FileDescriptor file(open(path.c_str(), O_WRONLY | O_CLOEXEC | O_NOCTTY));
    return file.IsOk() && tolbase::WriteWhole(file.Get(), bytes.data(), bytes.size()) && file.Close();
}

// The mode of the file that is replaced; 0 for none, which leaves the new file its own.
mode_t ModeFor(const std::string& path) {
    struct stat info {};
    return stat(path.c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

// Creates a file beside `path` that nobody else uses.
FileDescriptor CreateBeside(const std::string& path, std::string& name) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
    static std::atomic<unsigned> counter{0};
    for (int attempt = 0; attempt < 100; ++attempt) {
        name = folder + ".orv-" + std::to_string(getpid()) + "-" + std::to_string(counter++) + ".tmp";
        FileDescriptor file(open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (file.IsOk() || errno != EEXIST) return file;
    }
    return FileDescriptor();
}

// The rename is on the disk only when the folder is.
void SyncFolderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
    const FileDescriptor handle(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle.IsOk()) fsync(handle.Get());
}

}  // namespace

bool WriteFileAtomically(const wxString& path, const std::string& bytes) {
    const std::string target = FollowLinks(PathToBytes(path));
    if (target.empty()) return false;
    if (IsSpecial(target)) return WriteInto(target, bytes);
    // A file that may not be written isn't replaced either, though its folder would allow that.
    if (access(target.c_str(), F_OK) == 0 && access(target.c_str(), W_OK) != 0) return false;
    std::string temporary;
    FileDescriptor file = CreateBeside(target, temporary);
    if (!file.IsOk()) return false;
    bool good = tolbase::WriteWhole(file.Get(), bytes.data(), bytes.size());
    const mode_t mode = ModeFor(target);
    if (good && mode != 0) good = fchmod(file.Get(), mode) == 0;
    good = good && fsync(file.Get()) == 0;
    good = file.Close() && good;
    good = good && rename(temporary.c_str(), target.c_str()) == 0;
    if (good)
        SyncFolderOf(target);
    else
        unlink(temporary.c_str());
    return good;
}

bool WriteFile(const wxString& path, const wxString& text) {
    return WriteFileAtomically(path, TolToUtf8(text));
}

namespace {

std::string LowerAscii(std::string text) {
    for (char& c : text)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return text;
}

// The extensions as they stand behind a file's last point.
std::vector<std::string> LowerExtensions(const VecString& extensions) {
    std::vector<std::string> lower;
    for (const wxString& extension : extensions) {
        std::string bytes = LowerAscii(PathToBytes(extension));
        if (!bytes.empty() && bytes[0] == '.') bytes.erase(0, 1);
        if (!bytes.empty()) lower.push_back(bytes);
    }
    return lower;
}

bool HasExtension(const std::string& path, const std::vector<std::string>& extensions) {
    const std::string name = path.substr(path.rfind('/') + 1);
    for (const std::string& extension : extensions) {
        // A name that is an extension alone has none.
        if (name.size() < extension.size() + 2) continue;
        const std::size_t at = name.size() - extension.size();
        if (name[at - 1] == '.' && LowerAscii(name.substr(at)) == extension) return true;
    }
    return false;
}

template <class Iterator>
void Collect(const std::string& folder, const std::vector<std::string>& extensions, std::vector<std::string>& paths) {
    std::error_code error;
    Iterator entry(folder, std::filesystem::directory_options::skip_permission_denied, error);
    while (!error && entry != Iterator()) {
        std::error_code unreadable;
        if (HasExtension(entry->path().native(), extensions) && entry->is_regular_file(unreadable))
            paths.push_back(entry->path().native());
        entry.increment(error);
    }
}

}  // namespace

VecString GetAllFiles(const wxString& folder, const VecString& extensions, bool recursive) {
    VecString files;
    if (folder.empty()) return files;
    std::vector<std::string> paths;
    const std::vector<std::string> lower = LowerExtensions(extensions);
    if (recursive)
        Collect<std::filesystem::recursive_directory_iterator>(PathToBytes(folder), lower, paths);
    else
        Collect<std::filesystem::directory_iterator>(PathToBytes(folder), lower, paths);
    std::sort(paths.begin(), paths.end());
    for (const std::string& path : paths) files.push_back(PathFromBytes(path));
    return files;
}
