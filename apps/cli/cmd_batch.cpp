// SPDX-License-Identifier: Apache-2.0
// orvelle batch: filters over many files, with results, report and manifest.
#include <sys/stat.h>

#include <algorithm>
#include <cctype>
#include <exception>
#include <filesystem>

#include "apps/cli/arguments.h"
#include "apps/cli/batchrun.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/inputs.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/manifest.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/projectfile.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/batchprocessing.h"
#include "orvcore/filterconfiguration.h"
#include "orvcore/reportstyle.h"
#include "tolbase/file.h"

namespace cli {

namespace {

std::string EndingOf(std::string const& path) {
    std::string ending = std::filesystem::path(path).extension().string();
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return ending;
}

bool Exists(std::string const& path) {
    struct stat status = {};
    return lstat(path.c_str(), &status) == 0;
}

// A place that can't be written is told before a file is examined.
void RequireWritable(std::string const& folder, std::string const& told) {
    const bool made = CreateDirIfNotExists(PathFromBytes(folder));
    const std::string trial = folder + "/.orvelle-trial";
    if (!made || !WriteFileAtomically(PathFromBytes(trial), "")) throw Failure(ExitOutput, told, "can't be written");
    std::remove(trial.c_str());
}

class BatchCommand : public Command {
public:
    void Define(CLI::App& app) override {
        m_files.Define(app);
        m_batch.Define(app);
        AddText(app, "-o,--output", m_output.path,
                "The report; results stand beside it. With --no-report, the folder of the results")
            ->type_name("FILE");
        app.add_flag("--no-report", m_noReport, "Results only");
        app.add_flag("--status", m_statusOnly, "Write nothing, print the status of each filter");
        AddChoice(app, "--format", m_output.format, FormatNames(), "Form of the table of --status");
        AddChoice(app, "--fail-on", m_failOn, {"soft", "hard"}, "End with code 1 if a filter warns");
        app.add_flag("--force", m_output.force, "Replace a report that exists");
        app.footer(
            "A report is HTML if its name ends in .html or .htm, and tab-separated text otherwise. Beside it stands a\n"
            "manifest, REPORT.manifest.json, with the SHA-256 of each examined file and each result; \"orvelle "
            "verify\"\n"
            "checks it. A report that this command wrote of the same files, and that nobody has changed, is replaced\n"
            "without --force.");
    }

    ExitCode Run(Environment& environment) override {
        if (m_statusOnly && (m_noReport || !m_output.path.empty())) {
            throw Failure(ExitUsage, "--status", "writes nothing: no --output, no --no-report");
        }
        if (!m_statusOnly && m_output.path.empty()) {
            throw Failure(ExitUsage, "--output",
                          "is missing: the report, or with --no-report the folder of the results");
        }
        environment.isForPeople = !m_statusOnly && !m_noReport && OrvIsHtmlReport(PathFromBytes(m_output.path));
        Session session(environment);
        m_batch.Apply(session);
        FindFiles(session, environment);
        return m_statusOnly ? RunStatus(session, environment) : RunOutput(session, environment);
    }

private:
    // A folder without images is told, and is no failure.
    void FindFiles(Session& session, Environment& environment) {
        std::vector<std::string> extensions;
        for (wxString const& extension : session.Context().GetImageFormatsRead())
            extensions.push_back(ToUtf8(extension));
        const Inputs inputs = FindInputsIfAny(m_files.names, extensions, m_files.recursive, environment.terminal);
        if (inputs.hasFailures) m_code = ExitInput;
        for (std::string const& file : inputs.files) {
            m_request.files.push_back(AbsolutePath(file));
            m_request.names.emplace(m_request.files.back(), file);
        }
    }

    void CalculateAhead(Environment const& environment) const {
        if (m_batch.jobs < 2 || m_batch.noCache || m_request.files.size() < 2) return;
        std::vector<std::string> arguments = {"orvelle"};
        if (!environment.documents.empty()) arguments.insert(arguments.end(), {"--documents", environment.documents});
        arguments.insert(arguments.end(), {"batch", "--status", "--files-from", "-"});
        const std::vector<std::string> chosen = m_batch.Arguments();
        arguments.insert(arguments.end(), chosen.begin(), chosen.end());
        FillCache(arguments, m_request.files, m_batch.jobs);
    }

    ExitCode Finish(BatchOutcome const& outcome) {
        m_code = Worse(m_code, outcome.code);
        if (!m_failOn.empty() && outcome.hasWarning) m_code = Worse(m_code, ExitFinding);
        return Worse(m_code, InterruptionCode());
    }

    ExitCode RunStatus(Session& session, Environment& environment) {
        PlainTable table;
        table.schema = "orvelle/batch-status/1";
        table.title = "Batch Status";
        table.keys = {"file", "filter", "configuration", "status", "message"};
        table.titles = {"File", "Filter", "Configuration", "Status", "Message"};
        m_request.mode = BatchMode::StatusOnly;
        m_request.onResult = [this, &table](OrvBatchResult const& result) {
            const auto status = static_cast<OrvFilterConfiguration::FilterStatus>(result.status);
            table.rows.push_back({NameOf(m_request, PathToBytes(result.file)), ToUtf8(result.filter),
                                  ToUtf8(result.configuration), ToUtf8(OrvFilterConfiguration::GetStatusString(status)),
                                  ToUtf8(result.error)});
        };
        CalculateAhead(environment);
        const BatchOutcome outcome = RunBatch(session, environment, m_request);
        Output output("", false);
        WritePlainTable(table, m_output.format.empty() ? "text" : m_output.format, output);
        output.Commit();
        return Finish(outcome);
    }

    // The folder of the results, and the manifest's path as the person would write it; none without a report.
    void PlaceOutput(Environment& environment, std::string& folder, std::string& manifest) {
        const std::string absolute = AbsolutePath(m_output.path);
        if (m_noReport) {
            folder = absolute;
            m_request.mode = BatchMode::Files;
            m_request.report = (std::filesystem::path(absolute) / "results").string();
            if (Exists(folder) && !std::filesystem::is_directory(folder)) {
                throw Failure(ExitOutput, m_output.path, "can't be written: not a folder");
            }
            return;
        }
        folder = std::filesystem::path(absolute).parent_path().string();
        m_request.mode = BatchMode::FilesAndReport;
        m_request.report = absolute;
        manifest = absolute + ".manifest.json";
        if (std::filesystem::is_directory(absolute)) throw Failure(ExitOutput, m_output.path, "is a folder");
        const std::string ending = EndingOf(absolute);
        if (!OrvIsHtmlReport(PathFromBytes(absolute)) && ending != ".tsv" && ending != ".txt") {
            environment.terminal.Warning(m_output.path, "the report is written as tab-separated text");
        }
    }

    void RefuseToReplace(std::string const& path, std::string const& told) const {
        struct stat mine = {};
        if (stat(path.c_str(), &mine) != 0) return;
        for (std::string const& file : m_request.files) {
            struct stat other = {};
            if (stat(file.c_str(), &other) == 0 && other.st_dev == mine.st_dev && other.st_ino == mine.st_ino) {
                throw Failure(ExitOutput, told, "is an examined file itself");
            }
        }
    }

    Json CommandJson() const {
        return {{"name", "batch"},
                {"report", Valid(m_output.path)},
                {"filters", m_batch.filters},
                {"set", m_batch.settings}};
    }

    // The manifest is complete before the report takes its place: a run that is killed in between leaves no report that
    // the next one would have to take for somebody else's.
    void FinishManifest(std::string const& readable) {
        if (m_manifestDone) return;
        m_manifestDone = true;
        try {
            if (!readable.empty()) m_request.manifest->AddOutput(m_request.report, readable);
            m_changed = m_request.manifest->Finish(IsInterrupted());
        } catch (...) {
            m_manifestFailure = std::current_exception();
        }
    }

    ExitCode RunOutput(Session& session, Environment& environment) {
        std::string folder;
        std::string manifest;
        PlaceOutput(environment, folder, manifest);
        RefuseToReplace(m_request.report, m_output.path);
        if (!manifest.empty()) RefuseToReplace(manifest, manifest);
        const bool own = !m_noReport && IsOwnOutput(manifest, m_request.report, m_request.files);
        const bool mayReplace = m_output.force || own;
        // A manifest without its report is what a killed run leaves.
        const bool orphan = !m_noReport && !Exists(m_request.report) && IsManifest(manifest);
        if (!m_noReport && !mayReplace && Exists(m_request.report)) {
            throw Failure(ExitOutput, m_output.path, "exists (--force replaces it)");
        }
        RequireWritable(folder, m_output.path);
        OrvInstallReportStyle(GetAppDocumentsPath());
        CalculateAhead(environment);
        m_request.manifest = std::make_shared<ManifestWriter>(manifest, mayReplace || orphan, CommandJson());
        m_request.onReport = [this](std::string const& readable) { FinishManifest(readable); };
        const BatchOutcome outcome = RunBatch(session, environment, m_request);
        if (!outcome.failure.empty()) m_code = Worse(m_code, ExitOutput);
        FinishManifest(m_noReport || !outcome.failure.empty() ? "" : m_request.report);
        if (m_manifestFailure) std::rethrow_exception(m_manifestFailure);
        for (std::string const& changed : m_changed) {
            environment.terminal.Error(NameOf(m_request, changed), "changed while it was examined");
            m_code = Worse(m_code, ExitInput);
        }
        if (!m_noReport && outcome.failure.empty()) {
            Output printed("", false);
            printed.Write(Printable(m_output.path) + "\n");
            printed.Commit();
        }
        return Finish(outcome);
    }

    FileOptions m_files;
    OutputOptions m_output;
    BatchOptions m_batch;
    BatchRequest m_request;
    std::string m_failOn;
    bool m_noReport = false;
    bool m_statusOnly = false;
    bool m_manifestDone = false;
    std::vector<std::string> m_changed;
    std::exception_ptr m_manifestFailure;
    ExitCode m_code = ExitDone;
};

}  // namespace

std::unique_ptr<Command> MakeBatchCommand() {
    return std::make_unique<BatchCommand>();
}

}  // namespace cli
