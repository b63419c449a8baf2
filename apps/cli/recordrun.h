// SPDX-License-Identifier: Apache-2.0
// What commands that tell something of files have in common: their options, and the run over the files.
#pragma once

#include <CLI/App.hpp>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "apps/cli/command.h"
#include "apps/cli/examination.h"
#include "apps/cli/output.h"
#include "apps/cli/recordwriter.h"
#include "apps/cli/session.h"

namespace cli {

// --format, -o and --force.
struct OutputOptions {
    std::string format;
    std::string path;
    bool force = false;

    void Define(CLI::App& app);
    // The format asked for, or that of the file's ending, or text.
    std::string Format() const;
    // Not for programs: text or a page.
    bool IsForPeople() const;
};

// FILE..., -r and --files-from. Once the arguments are parsed `names` holds those of the list, too, and is not empty.
struct FileOptions {
    std::vector<std::string> names;
    std::string list;
    bool recursive = false;

    void Define(CLI::App& app);
    // Adds the list's names, once the arguments are parsed; done by itself unless another final callback is set behind
    // Define. Throws Failure where there is neither a name nor a list.
    void Complete();
};

// Examines all files in turn, each by itself: a failing one is told and the next is done. Ends what is written also
// after an interruption.
class RecordRun {
public:
    RecordRun(Environment& environment, OutputOptions const& output, FileOptions const& files, RecordStyle style);

    // A file for the Reference slot, told behind the others; empty for none.
    void SetReference(std::string const& path) { m_reference = path; }
    // The severity from which on a warning makes the exit code 1: "soft", "hard", or empty for never.
    void SetFailOn(std::string const& severity) { m_failOn = severity; }
    // Called once, with the engine started and before the first file.
    void SetPrepare(std::function<void(Session&)> prepare) { m_prepare = std::move(prepare); }

    ExitCode Run(FillRecord const& fill);

private:
    void RefuseToReplace(std::vector<std::string> const& files, Output const& output) const;
    bool ExamineOne(Session& session, std::string const& path, OrvFileId slot, FillRecord const& fill, Record& record);
    void ExamineAll(Session& session, std::vector<std::string> const& files, FillRecord const& fill, Output& output,
                    RecordWriter& writer);
    void Count(Record const& record);
    void Summarise(size_t total) const;

    Environment& m_environment;
    OutputOptions m_outputOptions;
    FileOptions m_files;
    RecordStyle m_style;
    std::string m_reference;
    std::string m_failOn;
    std::function<void(Session&)> m_prepare;
    ExitCode m_code = ExitDone;
    size_t m_done = 0;
    size_t m_failed = 0;
    size_t m_hard = 0;
    size_t m_soft = 0;
};

}  // namespace cli
