// SPDX-License-Identifier: Apache-2.0
// A batch as the commands run it: filters and configurations chosen, the engine's run watched, and what was found.
#pragma once

#include <CLI/App.hpp>
#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "apps/cli/command.h"
#include "apps/cli/exitcodes.h"
#include "orvcore/batchprocessing.h"

namespace cli {

class ManifestWriter;
class Session;

enum class BatchMode : int { StatusOnly = 0, Files = 1, FilesAndReport = 2 };

// --filter, --set, the widths of pictures, --jobs and --no-cache.
struct BatchOptions {
    std::vector<std::string> filters;
    std::vector<std::string> settings;
    int maxImageWidth = 0;
    int minImageWidth = 0;
    int jobs = 1;
    bool noCache = false;

    void Define(CLI::App& app);
    // Sets the engine's options and the filters' configurations accordingly. Throws Failure (ExitUsage).
    void Apply(Session& session) const;
    // As arguments, for a process that does a share of the work.
    std::vector<std::string> Arguments() const;
};

struct BatchRequest {
    std::vector<std::string> files;            // absolute
    std::map<std::string, std::string> names;  // by file: as the person gave it, for messages
    BatchMode mode = BatchMode::StatusOnly;
    std::string report;  // absolute; its folder gets the results
    bool plugin = false;
    std::map<std::string, std::string> identifiers;  // by file, for the plug-in
    std::shared_ptr<ManifestWriter> manifest;        // null for none
    // Called for each result, on the worker thread.
    std::function<void(OrvBatchResult const&)> onResult;
    // Called once the report is whole, with a path at which it can be read, before it takes its place; on the worker
    // thread.
    std::function<void(std::string const&)> onReport;
};

struct BatchOutcome {
    ExitCode code = ExitDone;  // of what failed; each failure is told already
    bool hasWarning = false;   // a filter warns
    size_t results = 0;
    std::string failure;  // why the report could not be written
    GriffeyeOrvBatchReportsMap reports;
};

// The file as the person gave it.
std::string NameOf(BatchRequest const& request, std::string const& file);

// Runs it on the worker thread. After an interruption what was done stands in the report, too.
BatchOutcome RunBatch(Session& session, Environment& environment, BatchRequest const& request);

// Has the filters' results calculated by several processes of this program, each with a share of the files, so that the
// run behind it finds them in the cache. The arguments are those of the whole command but for the files.
void FillCache(std::vector<std::string> const& arguments, std::vector<std::string> const& files, int jobs);

}  // namespace cli
