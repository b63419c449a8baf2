// SPDX-License-Identifier: Apache-2.0
// orvelle plugin: answers for the Griffeye platform, one JSON value on standard output.
#include <filesystem>
#include <set>

#include "apps/cli/arguments.h"
#include "apps/cli/batchrun.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/inputs.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/json.h"
#include "apps/cli/output.h"
#include "apps/cli/progressline.h"
#include "apps/cli/projectfile.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "apps/cli/work.h"
#include "orvcore/griffeyetable.h"
#include "orvcore/reportstyle.h"
#include "tolbase/file.h"
#include "tolbase/jsonalg.h"

namespace cli {

namespace {

// From path as given to identifier, in the order of the paths.
using FileMap = std::map<std::string, std::string>;

FileMap ReadMap(std::string const& path) {
    const auto refuse = [&path](std::string const& reason) -> Failure {
        return {ExitUsage, "--map", path + ": " + reason};
    };
    FileMap map;
    try {
        const Json value = Json::parse(ReadText(path));
        if (!value.is_object()) throw refuse("is no object of paths and identifiers");
        for (auto const& [file, identifier] : value.items()) {
            if (!identifier.is_string()) throw refuse("the identifier of \"" + file + "\" is no text");
            map[file] = identifier.get<std::string>();
        }
    } catch (nlohmann::json::exception const& error) {
        throw refuse("is no JSON: " + std::string(error.what()));
    }
    return map;
}

class PluginCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        m_analysis = app.add_subcommand("analysis", "Whether each file is without warnings, and its table");
        m_batch = app.add_subcommand("batch", "A batch over the files, and the severity of what it found for each");
        for (CLI::App* const command : {m_analysis, m_batch}) {
            AddText(*command, "--map", m_map, "A JSON object: path to identifier; - is standard input")
                ->required()
                ->type_name("FILE");
        }
        AddText(*m_batch, "-o,--output", m_output, "The report; results stand beside it")
            ->required()
            ->type_name("FILE");
        m_batch->add_flag("--force", m_force, "Replace a report that exists");
        m_options.Define(*m_batch);
    }

    ExitCode Run(Environment& environment) override {
        m_files = ReadMap(m_map);
        for (auto const& [file, identifier] : m_files) m_byAbsolute[AbsolutePath(file)].push_back(file);
        return m_analysis->parsed() ? Analyse(environment) : RunBatchOf(environment);
    }

private:
    static void Print(wxString const& json) {
        Output output("", false);
        output.Write(ToUtf8(json) + "\n");
        output.Commit();
    }

    // The answer names each file as the map does.
    template <class Map, class SetIdentifier>
    Map AsGiven(Map const& byAbsolute, SetIdentifier setIdentifier) const {
        Map answer;
        for (auto const& [path, row] : byAbsolute) {
            const auto names = m_byAbsolute.find(PathToBytes(path));
            if (names == m_byAbsolute.end()) continue;
            for (std::string const& name : names->second) {
                auto& own = answer[FromUtf8(name)] = row;
                setIdentifier(own, FromUtf8(m_files.at(name)));
            }
        }
        return answer;
    }

    ExitCode Analyse(Environment& environment) {
        Session session(environment);
        session.KeepNoCopies();
        struct Found {
            MultiReport report;
            std::vector<OrvFileAndText> failures;
        };
        const auto found = std::make_shared<Found>();
        VecString files;
        std::map<wxString, wxString> identifiers;
        for (auto const& [path, names] : m_byAbsolute) {
            files.push_back(PathFromBytes(path));
            identifiers[files.back()];
        }
        {
            const ProgressLine progress(session, environment.terminal);
            const auto work = [found, files, identifiers] {
                ImageInfoTableGriffeyePlugin table;
                found->report = MultiReport(table.Evaluate(files), identifiers);
                found->failures = table.GetFailures();
            };
            if (!RunWork(session, "Plug-in analysis", work)) return InterruptionCode();
        }
        for (auto const& [file, reason] : found->failures) {
            const std::string path = PathToBytes(file);
            const auto names = m_byAbsolute.find(path);
            environment.terminal.Error(names == m_byAbsolute.end() ? path : names->second.front(), ToUtf8(reason));
            m_code = ExitInput;
        }
        const auto identify = [](MultiReport::Row& row, wxString const& identifier) { std::get<1>(row) = identifier; };
        Print(TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(AsGiven(found->report.rows, identify)));
        return Worse(m_code, InterruptionCode());
    }

    ExitCode RunBatchOf(Environment& environment) {
        Session session(environment);
        m_options.Apply(session);
        const std::string absolute = AbsolutePath(m_output);
        std::error_code failed;
        if (!m_force && std::filesystem::exists(absolute, failed)) {
            throw Failure(ExitOutput, m_output, "exists (--force replaces it)");
        }
        OrvInstallReportStyle(GetAppDocumentsPath());
        BatchRequest request;
        for (auto const& [path, names] : m_byAbsolute) {
            request.files.push_back(path);
            request.names.emplace(path, names.front());
        }
        request.mode = BatchMode::FilesAndReport;
        request.report = absolute;
        request.plugin = true;
        const BatchOutcome outcome = RunBatch(session, environment, request);
        const auto identify = [](TolJsonAlg::GriffeyeOrvBatchReport& report, wxString const& identifier) {
            report.identifier = identifier;
        };
        Print(TolJsonAlg::GetGriffeyeOrvBatchAsJSONString(AsGiven(outcome.reports, identify)));
        m_code = Worse(m_code, outcome.code);
        if (!outcome.failure.empty()) m_code = Worse(m_code, ExitOutput);
        return Worse(m_code, InterruptionCode());
    }

    CLI::App* m_analysis = nullptr;
    CLI::App* m_batch = nullptr;
    BatchOptions m_options;
    std::string m_map;
    std::string m_output;
    bool m_force = false;
    FileMap m_files;
    std::map<std::string, std::vector<std::string>> m_byAbsolute;
    ExitCode m_code = ExitDone;
};

}  // namespace

std::unique_ptr<Command> MakePluginCommand() {
    return std::make_unique<PluginCommand>();
}

}  // namespace cli
