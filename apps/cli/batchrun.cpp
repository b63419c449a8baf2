// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/batchrun.h"

#include <algorithm>
#include <mutex>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/filterchoice.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/manifest.h"
#include "apps/cli/parametertext.h"
#include "apps/cli/progressline.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "apps/cli/work.h"
#include "orvcore/filter.h"
#include "orvcore/interface.h"
#include "orvcore/optionnumbers.h"
#include "tolbase/file.h"

namespace cli {

namespace {

// A filter may need its time to heed an abort; a second Ctrl-C doesn't wait for it.
constexpr std::chrono::minutes PatienceForReport{2};

void SetOption(VecVecParameter& options, size_t index, int value, char const* name) {
    Parameter& option = options.at(0).at(index);
    if (!SetParameter(option, std::to_string(value))) throw Failure(ExitUsage, name, "takes " + Takes(option));
}

// What the worker fills and the main thread reads once the run has ended. Shared, since a run that does not heed an
// interruption outlives its caller.
struct Watch {
    Watch(Environment& surroundings, BatchRequest batch) : environment(surroundings), request(std::move(batch)) {}

    void OnFile(wxString const& file, wxString const& error);
    void OnResult(OrvBatchResult const& result);

    Environment& environment;
    BatchRequest request;
    BatchOutcome outcome;
    std::string failed;  // the file that could not be loaded: its filters have no failures of their own
    bool finished = false;
};

void Watch::OnFile(wxString const& file, wxString const& error) {
    const std::string path = PathToBytes(file);
    failed = error.empty() ? "" : path;
    if (!error.empty()) {
        environment.terminal.Error(NameOf(request, path), ToUtf8(error));
        outcome.code = Worse(outcome.code, ExitInput);
    } else if (request.manifest) {
        request.manifest->AddInput(path);
    }
}

void Watch::OnResult(OrvBatchResult const& result) {
    ++outcome.results;
    const std::string path = PathToBytes(result.file);
    outcome.hasWarning = outcome.hasWarning || result.status == OrvFilterConfiguration::Warning;
    if (!result.error.empty() && path != failed) {
        environment.terminal.Error(NameOf(request, path), ToUtf8(result.filter) + ": " + ToUtf8(result.error));
        outcome.code = Worse(outcome.code, ExitFilter);
    }
    if (request.manifest && !result.outputPath.empty()) request.manifest->AddOutput(PathToBytes(result.outputPath));
    if (request.onResult) request.onResult(result);
}

VecParameter ParametersOf(BatchRequest const& request) {
    VecString files;
    for (std::string const& file : request.files) files.push_back(PathFromBytes(file));
    VecParameter parameters;
    parameters.push_back(CreateParameterInt("Files", wxString(), 0));
    parameters.push_back(CreateParameterInt("Filters", wxString(), 0));
    parameters.push_back(CreateParameterInt("Output", wxString(), static_cast<int>(request.mode)));
    parameters.push_back(CreateParameterString("Report", wxString(), PathFromBytes(request.report)));
    parameters.push_back(CreateParameterVectorString("Selection", wxString(), files));
    return parameters;
}

void Work(Watch& watch) {
    std::map<wxString, wxString> identifiers;
    for (auto const& [file, identifier] : watch.request.identifiers) {
        identifiers[PathFromBytes(file)] = FromUtf8(identifier);
    }
    OrvBatchMonitor monitor;
    monitor.onFile = [&watch](wxString const& file, wxString const& error) { watch.OnFile(file, error); };
    monitor.onResult = [&watch](OrvBatchResult const& result) { watch.OnResult(result); };
    if (watch.request.onReport) {
        monitor.onReport = [&watch](wxString const& readable) { watch.request.onReport(PathToBytes(readable)); };
    }
    OrvBatchProcessing(ParametersOf(watch.request), watch.request.plugin, identifiers, watch.outcome.reports, &monitor);
    watch.outcome.failure = ToUtf8(monitor.failure);
    watch.finished = true;
}

}  // namespace

void BatchOptions::Define(CLI::App& app) {
    AddEach(app, "--filter", filters, "Only this filter; may be given several times")->type_name("NAME");
    AddEach(app, "--set", settings, "With one --filter: just the configuration with this value")
        ->type_name("PARAMETER=VALUE");
    const auto number = [&app](char const* name, int& value, int least, int most, char const* help) {
        app.add_option(name, value, help)->type_name("NUMBER")->check(CLI::Range(least, most));
    };
    number("--max-image-width", maxImageWidth, 1, 100000, "No picture of the report is wider than so many pixels");
    number("--min-image-width", minImageWidth, 1, 100000, "Smaller pictures are shown enlarged to it");
    number("--jobs", jobs, 1, 256, "Processes that calculate at the same time");
    app.add_flag("--no-cache", noCache, "Calculate everything, and keep nothing");
}

void BatchOptions::Apply(Session& session) const {
    if (noCache) session.KeepNoCopies();
    VecVecParameter options = session.Interface().GetProgramOptions();
    if (maxImageWidth > 0) SetOption(options, OrvOptionReportMaxWidth, maxImageWidth, "--max-image-width");
    if (minImageWidth > 0) SetOption(options, OrvOptionReportMinWidth, minImageWidth, "--min-image-width");
    session.Interface().SetProgramOptions(options);
    if (!settings.empty() && filters.size() != 1) {
        throw Failure(ExitUsage, "--set", "needs one --filter, whose parameter it is");
    }
    std::vector<OrvFilter*> chosen;
    for (std::string const& name : filters) chosen.push_back(&ChooseFilter(session.Context(), name));
    if (chosen.empty()) return;
    for (OrvFilter* const filter : session.Context().GetFilters()) {
        if (std::find(chosen.begin(), chosen.end(), filter) == chosen.end()) filter->DeleteAllConfigurations();
    }
    if (settings.empty()) return;
    VecParameter parameters = chosen.front()->GetParametersInput();
    parameters.Reset();
    SetParameters(parameters, settings, "--set");
    chosen.front()->DeleteAllConfigurations();
    chosen.front()->AddConfiguration(parameters, 0);
}

std::vector<std::string> BatchOptions::Arguments() const {
    std::vector<std::string> arguments;
    for (std::string const& filter : filters) arguments.insert(arguments.end(), {"--filter", filter});
    for (std::string const& setting : settings) arguments.insert(arguments.end(), {"--set", setting});
    return arguments;
}

std::string NameOf(BatchRequest const& request, std::string const& file) {
    const auto given = request.names.find(file);
    return given == request.names.end() ? file : given->second;
}

BatchOutcome RunBatch(Session& session, Environment& environment, BatchRequest const& request) {
    session.SetPatience(PatienceForReport);
    const auto watch = std::make_shared<Watch>(environment, request);
    {
        const ProgressLine progress(session, environment.terminal);
        RunWork(session, "Batch of " + std::to_string(request.files.size()) + " files", [watch] { Work(*watch); });
    }
    if (!watch->finished) throw Failure(ExitInterrupted, "", "interrupted before the report was written");
    return std::move(watch->outcome);
}

}  // namespace cli
