// SPDX-License-Identifier: Apache-2.0
// The stamp of a cache folder: which versions made its results.
#include <sys/stat.h>
#include <unistd.h>
#include <wx/filefn.h>

#include <algorithm>
#include <charconv>
#include <ctime>
#include <filesystem>

#include "orvcore/filter.h"
#include "orvcore/filtercache.h"
#include "tolbase/file.h"
#include "tolimage/components.h"

namespace filtercache {
namespace {

// To be raised with any change that lets the same program version give other results.
constexpr int kResultsVersion = 1;
constexpr size_t kLongestStamp = size_t{1} << 16;
constexpr char const* kFilterKey = "filter: ";
// A copy that is still being made is younger.
constexpr std::time_t kLeftoverSeconds = 3600;

// What all results depend on, in the lines of the stamp.
std::string const& ProgramLines() {
    static std::string const lines = [] {
        std::string text = "Orvelle cache 1\nengine: " ORVELLE_VERSION "-" + std::to_string(kResultsVersion) + "\n";
        // What reads files and computes; the others have no part in a result.
        wxString const parts[] = {"OpenCV",  "ExifTool", "libjpeg-turbo", "libpng", "zlib",
                                  "libtiff", "libwebp",  "libheif",       "LibRaw"};
        for (auto const& [name, version] : GetComponentVersions()) {
            if (std::find(std::begin(parts), std::end(parts), name) == std::end(parts)) continue;
            text += std::string(name.utf8_str()) + ": " + std::string(version.utf8_str()) + "\n";
        }
        return text;
    }();
    return lines;
}

// A filter's name as it stands in a line.
std::string LineName(OrvFilter const& filter) {
    std::string name(filter.GetName().utf8_str());
    std::replace_if(
        name.begin(), name.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, '_');
    return name;
}

// Reads "filter: 2 Name"; false for any other line.
bool TakeLine(std::string const& line, std::map<std::string, int>& filters) {
    std::string const key = kFilterKey;
    if (line.compare(0, key.size(), key) != 0) return false;
    int version = 0;
    char const* const end = line.data() + line.size();
    auto const number = std::from_chars(line.data() + key.size(), end, version);
    if (number.ec != std::errc() || number.ptr == end || *number.ptr != ' ') return false;
    return filters.emplace(std::string(number.ptr + 1, end), version).second;
}

// The status files of the folder whose names begin with `prefix`, links among them.
std::vector<std::string> StatusFiles(wxString const& folder, std::string const& prefix) {
    std::vector<std::string> paths;
    std::error_code error;
    std::filesystem::directory_iterator entry(PathToBytes(folder), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::string const name = entry->path().filename().native();
        if (entry->path().extension() == ".status" && name.compare(0, prefix.size(), prefix) == 0) {
            paths.push_back(entry->path().native());
        }
    }
    return paths;
}

bool RemoveStatusFiles(wxString const& folder, std::string const& prefix) {
    bool removed = true;
    for (std::string const& path : StatusFiles(folder, prefix)) removed = RemoveFile(PathFromBytes(path)) && removed;
    return removed;
}

bool StartsWith(std::string const& text, char const* start) {
    return text.rfind(start, 0) == 0;
}

// The lock is held, so nobody is writing a result; other temporary files have to be old.
void RemoveLeftovers(wxString const& folder) {
    std::error_code error;
    std::vector<std::string> paths;
    std::filesystem::directory_iterator entry(PathToBytes(folder), error);
    for (; !error && entry != std::filesystem::directory_iterator(); entry.increment(error)) {
        std::string const name = entry->path().filename().native();
        struct stat info {};
        if (entry->path().extension() != ".tmp" && !StartsWith(name, ".copy-")) continue;
        if (::lstat(entry->path().c_str(), &info) != 0 || S_ISDIR(info.st_mode)) continue;
        bool const old = std::time(nullptr) - info.st_mtime > kLeftoverSeconds;
        bool const ours = StartsWith(name, ".copy-") || StartsWith(name, ".orv-");
        if (StartsWith(name, ".cache-") || (ours && old)) paths.push_back(entry->path().native());
    }
    for (std::string const& path : paths) ::unlink(path.c_str());
}

}  // namespace

wxString StampPath(wxString const& folder) {
    return folder + "/.versions";
}

Stamp::Stamp(wxString const& folder) {
    m_valid = false;
    std::string text;
    wxString const path = StampPath(folder);
    if (!IsPlainFile(path) || !ReadFileBytes(path, text, kLongestStamp)) return;
    if (text.compare(0, ProgramLines().size(), ProgramLines()) != 0) return;
    size_t start = ProgramLines().size();
    while (start < text.size()) {
        size_t const end = text.find('\n', start);
        if (end == std::string::npos || !TakeLine(text.substr(start, end - start), m_filters)) return;
        start = end + 1;
    }
    m_valid = true;
}

bool Stamp::Covers(OrvFilter const& filter) const {
    if (!m_valid) return false;
    auto const found = m_filters.find(LineName(filter));
    return (found == m_filters.end() ? 1 : found->second) == filter.GetVersion();
}

void Stamp::Enter(OrvFilter const& filter) {
    m_filters.erase(LineName(filter));
    if (filter.GetVersion() != 1) m_filters[LineName(filter)] = filter.GetVersion();
}

bool Stamp::Write(wxString const& folder) const {
    std::string text = ProgramLines();
    for (auto const& [name, version] : m_filters) text += kFilterKey + std::to_string(version) + " " + name + "\n";
    return WriteWholeFile(StampPath(folder), text, Sync::Yes);
}

bool Prepare(wxString const& folder, OrvFilter const& filter, wxString const& prefix) {
    Stamp const found(folder);
    if (found.Covers(filter)) return true;
    std::string const names = found.IsValid() ? PathToBytes(prefix) : std::string();
    if (!RemoveStatusFiles(folder, names)) return false;
    Stamp stamp = found.IsValid() ? found : Stamp();
    stamp.Enter(filter);
    return stamp.Write(folder);
}

void Refresh(OrvFileId id, std::vector<OrvFilter*> const& filters, bool cacheEnabled) {
    wxString const folder = wxPathOnly(GetContext()->GetOutputBasePath(id));
    FolderLock const lock(folder, FolderLock::Exclusive);
    if (!lock.IsHeld()) return;
    RemoveLeftovers(folder);
    Stamp stamp(folder);
    auto const covered = [&stamp](OrvFilter const* filter) { return stamp.Covers(*filter); };
    if (stamp.IsValid() && std::all_of(filters.begin(), filters.end(), covered)) return;
    if (!cacheEnabled && !StatusFiles(folder, {}).empty()) return;
    if (stamp.IsValid()) {
        for (OrvFilter const* filter : filters) {
            if (!stamp.Covers(*filter)) Prepare(folder, *filter, filter->GetStatusPrefix(id));
        }
        return;
    }
    if (!RemoveStatusFiles(folder, {})) return;
    stamp = Stamp();
    for (OrvFilter const* filter : filters) stamp.Enter(*filter);
    stamp.Write(folder);
}

}  // namespace filtercache
