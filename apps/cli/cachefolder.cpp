// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/cachefolder.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <memory>
#include <set>
#include <thread>

#include "apps/cli/clicontext.h"
#include "apps/cli/examination.h"
#include "apps/cli/failure.h"
#include "apps/cli/filterfacts.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/filter.h"
#include "orvcore/interface.h"
#include "orvcore/optionnumbers.h"
#include "tolbase/file.h"

namespace cli {

namespace {

constexpr std::array<char const*, 5> ResultEndings = {".status", ".png", ".jpg", ".binary", ".txt"};
constexpr char const* StampName = ".versions";
// Another program that stores a result is done within this time.
constexpr std::chrono::seconds LockPatience{5};

bool StartsWith(std::string const& text, std::string const& start) {
    return text.compare(0, start.size(), start) == 0;
}

bool EndsWith(std::string const& text, std::string const& end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

bool IsLeftover(std::string const& name) {
    return (EndsWith(name, ".tmp") && (StartsWith(name, ".cache-") || StartsWith(name, ".orv-"))) ||
           StartsWith(name, ".copy-");
}

std::string TimeText(std::time_t time) {
    std::tm parts = {};
    gmtime_r(&time, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

// The folder of all caches for a file, by the settings.
std::string RootFor(Session& session, std::string const& path) {
    const VecVecParameter options = session.Interface().GetProgramOptions();
    VecParameter const& general = options.at(0);
    switch (general.at(OrvOptionCacheLocation).GetValue<int>()) {
        case 1:
            return std::filesystem::absolute(path).parent_path().string();
        case 2:
            return PathToBytes(general.at(OrvOptionCacheFolder).GetValue<wxString>());
        default:
            return PathToBytes(GetAppDocumentsPath()) + "/cache";
    }
}

// Values as a file's name has them, behind the names of the filter's parameters where that can be told.
std::string ParametersOf(OrvFilter const& filter, wxString const& text) {
    for (OrvFilterConfiguration const& configuration : filter.GetConfigurations()) {
        if (CleanFileName(GetParametersString(configuration, true)) == text) return ValuesText(configuration);
    }
    VecString values = text.empty() ? VecString() : VecString{wxString()};
    for (const wxUniChar c : text) {
        if (c == '-') {
            values.push_back(wxString());
        } else {
            values.back() += c;
        }
    }
    const VecParameter parameters = filter.GetParametersInput();
    if (values.size() != parameters.size()) return ToUtf8(text);
    std::string named;
    for (size_t i = 0; i < values.size(); ++i) {
        named += (i == 0 ? "" : ", ") + ToUtf8(parameters[i].Name()) + "=" + ToUtf8(values[i]);
    }
    return named;
}

// The filter with the longest name that `text` begins with, wholly or up to a dash; null if there is none.
OrvFilter const* FilterOf(std::vector<OrvFilter*> const& filters, wxString const& text) {
    OrvFilter const* found = nullptr;
    for (OrvFilter const* filter : filters) {
        const wxString name = filter->GetName();
        if (text != name && !text.StartsWith(name + "-")) continue;
        if (found == nullptr || name.length() > found->GetName().length()) found = filter;
    }
    return found;
}

// Holds the folder's lock as the engine does.
class FolderLock {
public:
    explicit FolderLock(std::string const& folder)
        : m_descriptor(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NOFOLLOW)) {
        if (m_descriptor < 0)
            throw Failure(ExitOutput, folder, "can't be removed: " + std::string(std::strerror(errno)));
        const auto end = std::chrono::steady_clock::now() + LockPatience;
        while (flock(m_descriptor, LOCK_EX | LOCK_NB) != 0 && (errno == EWOULDBLOCK || errno == EINTR)) {
            if (IsInterrupted() || std::chrono::steady_clock::now() > end) {
                close(m_descriptor);
                throw Failure(ExitOutput, folder, "can't be removed: it is in use");
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
    }
    ~FolderLock() { close(m_descriptor); }
    FolderLock(FolderLock const&) = delete;
    FolderLock& operator=(FolderLock const&) = delete;
    int Descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

}  // namespace

CacheFolder::CacheFolder(Session& session, std::string const& path) {
    Locate(session, path);
    ReadFiles();
    ReadResults(session);
}

void CacheFolder::Locate(Session& session, std::string const& path) {
    const std::string root = RootFor(session, path);
    // The engine makes the folder's name out of the file. It makes no folder where none can be.
    session.KeepNoCopies();
    const auto base = std::make_shared<std::string>();
    const auto look = [base](OrvFileId slot, Record&) { *base = PathToBytes(GetContext()->GetOutputBasePath(slot)); };
    if (!Examine(session, path, Evidence, look, m_input)) throw Failure(ExitInterrupted, path, "interrupted");
    const std::filesystem::path stem(*base);
    m_folder = root + "/" + stem.parent_path().filename().string();
    m_stem = stem.filename().string() + "-";
    m_copy = PathToBytes(GetFilenameNoPath(PathFromBytes(path)));
}

void CacheFolder::ReadFiles() {
    m_files.clear();
    struct stat status = {};
    if (lstat(m_folder.c_str(), &status) != 0 || !S_ISDIR(status.st_mode)) return;
    const std::unique_ptr<DIR, int (*)(DIR*)> handle(opendir(m_folder.c_str()), closedir);
    if (!handle) throw Failure(ExitInput, m_folder, "can't be read: " + std::string(std::strerror(errno)));
    while (dirent const* const entry = readdir(handle.get())) {
        CachedFile file;
        file.name = entry->d_name;
        if (file.name == "." || file.name == ".." || lstat((m_folder + "/" + file.name).c_str(), &status) != 0)
            continue;
        file.bytes = S_ISREG(status.st_mode) ? static_cast<uint64_t>(status.st_size) : 0;
        file.modified = status.st_mtim.tv_sec;
        file.isOwn =
            S_ISREG(status.st_mode) && (file.name == m_copy || file.name == StampName || IsLeftover(file.name));
        m_files.push_back(file);
    }
    std::sort(m_files.begin(), m_files.end(), [](auto const& a, auto const& b) { return a.name < b.name; });
}

void CacheFolder::ReadResults(Session& session) {
    const std::vector<OrvFilter*> filters = session.Context().GetFilters();
    for (CachedFile& file : m_files) {
        const size_t point = file.name.rfind('.');
        if (point == std::string::npos || file.name == m_copy || !StartsWith(file.name, m_stem)) continue;
        const std::string ending = file.name.substr(point);
        if (std::find(ResultEndings.begin(), ResultEndings.end(), ending) == ResultEndings.end()) continue;
        const wxString what = PathFromBytes(file.name.substr(m_stem.size(), point - std::min(point, m_stem.size())));
        OrvFilter const* const filter = FilterOf(filters, what);
        struct stat status = {};
        const std::string path = m_folder + "/" + file.name;
        if (filter == nullptr || lstat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) continue;
        file.isOwn = true;
        file.isResult = true;
        if (ending != ResultEndings[0]) continue;
        CachedResult result;
        result.filter = ToUtf8(filter->GetName());
        const size_t used = filter->GetName().length() + 1;
        result.parameters = ParametersOf(*filter, what.length() > used ? what.substr(used) : wxString());
        result.status = ToUtf8(
            OrvFilterConfiguration::GetStatusString(OrvFilterConfiguration::GetStatusFromFile(PathFromBytes(path))));
        result.modified = TimeText(file.modified);
        const std::string base = file.name.substr(0, point);
        for (CachedFile const& each : m_files) {
            const bool belongs = std::any_of(ResultEndings.begin(), ResultEndings.end(),
                                             [&](char const* other) { return each.name == base + other; });
            if (!belongs) continue;
            result.files.push_back(each.name);
            result.bytes += each.bytes;
        }
        m_results.push_back(result);
    }
}

size_t CacheFolder::CountOwn() const {
    return static_cast<size_t>(
        std::count_if(m_files.begin(), m_files.end(), [](CachedFile const& file) { return file.isOwn; }));
}

uint64_t CacheFolder::OwnBytes() const {
    uint64_t bytes = 0;
    for (CachedFile const& file : m_files) bytes += file.isOwn ? file.bytes : 0;
    return bytes;
}

void CacheFolder::Remove() {
    const FolderLock lock(m_folder);
    const auto remove = [&](bool statusFiles) {
        for (CachedFile const& file : m_files) {
            if (!file.isOwn || EndsWith(file.name, ResultEndings[0]) != statusFiles) continue;
            if (unlinkat(lock.Descriptor(), file.name.c_str(), 0) == 0 || errno == ENOENT) continue;
            throw Failure(ExitOutput, m_folder + "/" + file.name,
                          "can't be removed: " + std::string(std::strerror(errno)));
        }
    };
    // What is left of a removal that was cut short promises no result.
    remove(true);
    remove(false);
    if (rmdir(m_folder.c_str()) != 0 && errno != ENOTEMPTY && errno != EEXIST && errno != ENOENT) {
        throw Failure(ExitOutput, m_folder, "can't be removed: " + std::string(std::strerror(errno)));
    }
}

}  // namespace cli
