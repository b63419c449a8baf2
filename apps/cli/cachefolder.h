// SPDX-License-Identifier: Apache-2.0
// The folder that holds the stored results of one examined file.
#pragma once

#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "apps/cli/record.h"

namespace cli {

class Session;

struct CachedFile {
    std::string name;
    uint64_t bytes = 0;
    std::time_t modified = 0;
    bool isOwn = false;  // the cache's: a result, the copy of the file, the stamp of versions, or a leftover
    bool isResult = false;
};

struct CachedResult {
    std::string filter;
    std::string parameters;  // "Quality=90"; as in the file's name where it fits no parameters of the filter
    std::string status;      // "Ok", "Warning", ...
    std::string modified;    // UTC, ISO 8601
    uint64_t bytes = 0;      // of all its files
    std::vector<std::string> files;
};

// Threads: the main thread's alone. Nothing is opened but status files, no link is followed.
class CacheFolder {
public:
    // Examines the file to learn where its results lie by the settings; stores nothing. Throws Failure (ExitInput), and
    // (ExitInterrupted) where the person has interrupted.
    CacheFolder(Session& session, std::string const& path);

    std::string const& Path() const { return m_folder; }
    Record const& Input() const { return m_input; }
    // In the order of their names. Empty where there is no folder.
    std::vector<CachedFile> const& Files() const { return m_files; }
    std::vector<CachedResult> const& Results() const { return m_results; }
    // Of the cache's own files.
    size_t CountOwn() const;
    uint64_t OwnBytes() const;

    // Removes the cache's own files, the status files first, and the folder where that leaves it empty. Throws Failure
    // (ExitOutput).
    void Remove();

private:
    void Locate(Session& session, std::string const& path);
    void ReadFiles();
    void ReadResults(Session& session);

    Record m_input;
    std::string m_folder;
    std::string m_stem;  // what the names of all results begin with
    std::string m_copy;  // the name of the copy of the file
    std::vector<CachedFile> m_files;
    std::vector<CachedResult> m_results;
};

}  // namespace cli
