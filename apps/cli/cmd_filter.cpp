// SPDX-License-Identifier: Apache-2.0
// orvelle filter: one analysis filter on one image.
#include <sys/stat.h>

#include <cstdlib>
#include <filesystem>
#include <memory>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/examination.h"
#include "apps/cli/failure.h"
#include "apps/cli/filterchoice.h"
#include "apps/cli/filterwriter.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/filterimage.h"
#include "orvcore/filterplot.h"
#include "orvcore/filtertext.h"
#include "orvcore/interface.h"
#include "tolbase/file.h"
#include "tolbase/hash.h"
#include "tolbase/progress.h"

namespace cli {

namespace {

std::string LowerEnding(std::string const& path) {
    const std::string name = path.substr(path.rfind('/') + 1);
    const size_t point = name.rfind('.');
    return point == std::string::npos ? "" : ToUtf8(FromUtf8(name.substr(point + 1)).Lower());
}

std::string Joined(VecString const& words) {
    std::string list;
    for (wxString const& word : words) list += (list.empty() ? "" : " ") + ToUtf8(word);
    return list;
}

bool IsEmptyFile(std::string const& path) {
    struct stat status = {};
    return stat(path.c_str(), &status) != 0 || status.st_size == 0;
}

// The text of a filter that holds one can be had by a file alone.
std::string TextOf(OrvFilter& filter) {
    std::string path = (std::filesystem::temp_directory_path() / "orvelle-XXXXXX").string();
    const int descriptor = mkstemp(path.data());
    if (descriptor < 0) throw Failure(ExitOutput, path, "can't be written");
    close(descriptor);
    filter.SaveOutputBase(PathFromBytes(path));
    std::string text;
    const bool read = ReadFileBytes(PathFromBytes(path), text, std::filesystem::file_size(path) + 1);
    unlink(path.c_str());
    if (!read) throw Failure(ExitOutput, path, "can't be written");
    return text;
}

void SavePicture(Session& session, OrvFilter& filter, std::string const& path, Output& output) {
    if (output.Beside().empty()) throw Failure(ExitOutput, path, "can't be written: a picture needs a regular file");
    const wxString beside = PathFromBytes(output.Beside());
    // The limits of width are those of reports.
    session.Context().SetOutputImageMaxWidth(0);
    session.Context().SetOutputImageMinWidth(0);
    if (dynamic_cast<OrvFilterImage*>(&filter) != nullptr || dynamic_cast<OrvFilterPlot*>(&filter) != nullptr) {
        filter.SaveOutputBatch(beside);
    } else {
        filter.SaveOutputBase(beside);
    }
    if (IsEmptyFile(output.Beside())) throw Failure(ExitOutput, path, "can't be written");
}

// What is being done, on one line.
std::string ProgressText() {
    const TcvProgress progress = tcvGetProgress();
    wxString text = progress.text;
    text.Replace("\n", " ");
    std::string line = ToUtf8(text);
    if (progress.total > 0) {
        line += " " + std::to_string(100LL * progress.value / progress.total) + " %";
    }
    return line;
}

class FilterCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "NAME", m_name, "The filter's name, or its beginning; \"orvelle filters\" names them all")
            ->required()
            ->type_name("");
        AddText(app, "EVIDENCE", m_evidence, "The questioned image")->required()->type_name("");
        AddText(app, "REFERENCE", m_reference, "An image to compare it with")->type_name("");
        AddEach(app, "--set", m_settings, "A parameter of the calculation; may be given several times")
            ->type_name("PARAMETER=VALUE");
        AddEach(app, "--post", m_postSettings, "A parameter of the post-processing; may be given several times")
            ->type_name("PARAMETER=VALUE");
        AddText(app, "-o,--output", m_path, "Save the result: a picture by the file's ending, or tables, points, text")
            ->type_name("FILE");
        app.add_flag("--force", m_force, "Replace an output file that exists");
        app.add_flag("--no-cache", m_noCache, "Calculate anew; store nothing");
        AddChoice(app, "--format", m_format, FormatNames(),
                  "Form of what is told; by the ending of the file, else text");
        AddChoice(app, "--fail-on", m_failOn, {"soft", "hard"}, "End with code 1 if the filter warns");
        app.footer(
            "With -o a picture goes to the file, and nothing is told unless --format asks for it. A plot goes to a\n"
            "file as a picture, or as its points (.csv, .tsv, .ssv, .json, .txt, .html).\n"
            "Exit codes: 0 done, 1 a finding with --fail-on, 2 wrong usage, 3 an image can't be examined, 5 the\n"
            "output can't be written, 6 the filter failed, 70 internal, 130 interrupted.");
    }

    ExitCode Run(Environment& environment) override {
        // It outlives the session, which may end the process on the spot.
        std::unique_ptr<Output> file;
        Session session(environment);
        OrvFilter& filter = ChooseFilter(session.Context(), m_name);
        VecParameter parameters = filter.GetParametersInput();
        VecParameter postParameters = filter.GetParametersPostProcessing();
        SetParameters(parameters, m_settings, "--set");
        SetParameters(postParameters, m_postSettings, "--post");
        const bool picture = WantsPicture(session, filter);
        file = std::make_unique<Output>(m_path, m_force);
        RefuseToReplace(*file);
        if (m_noCache) {
            session.KeepNoCopies();
            session.Context().EnableCache(false);
        }
        const auto result = std::make_shared<FilterResult>();
        session.SetWaiting([&environment] { environment.terminal.Status(ProgressText()); });
        const bool done = ExamineFiles(session, filter, parameters, postParameters, result);
        environment.terminal.ClearProgress();
        if (!done) return InterruptionCode();
        if (!m_noCache && !result->cacheMessage.empty()) environment.terminal.Warning(m_evidence, result->cacheMessage);
        WarnOfMoved(environment, postParameters, result->postParameters);
        if (result->kind == ResultKind::Text) result->text = TextOf(filter);
        Tell(session, filter, *result, picture, *file);
        Summarise(environment, *result);
        return Worse(CodeOf(environment, *result), InterruptionCode());
    }

private:
    // Whether the output file is a picture. Throws Failure (ExitUsage) for an ending that the filter's result can't
    // have.
    bool WantsPicture(Session& session, OrvFilter const& filter) const {
        if (m_path.empty()) return false;
        const std::string ending = LowerEnding(m_path);
        const VecString pictures = session.Context().GetImageFormatsWrite();
        bool isPicture = false;
        for (wxString const& each : pictures) isPicture = isPicture || ToUtf8(each) == ending;
        const bool isText = FormatOfPath(m_path) != "text" || ending == "txt" || ending == "text";
        const ResultKind kind = ResultKindOf(filter);
        const std::string name = ToUtf8(filter.GetName());
        if (kind == ResultKind::Picture && !isPicture) {
            throw Failure(ExitUsage, "--output",
                          "\"" + m_path + "\": " + name + " gives a picture; endings: " + Joined(pictures));
        }
        if (kind == ResultKind::Plot && !isPicture && !isText && m_format.empty()) {
            throw Failure(ExitUsage, "--output",
                          "\"" + m_path + "\": " + name + " gives a plot; endings: " + Joined(pictures) +
                              ", or csv tsv ssv json jsonl txt html for its points");
        }
        if (isPicture && kind != ResultKind::Picture && kind != ResultKind::Plot) {
            throw Failure(
                ExitUsage, "--output",
                "\"" + m_path + "\": " + name + " gives no picture; endings: txt html csv tsv ssv json jsonl");
        }
        return isPicture;
    }

    void RefuseToReplace(Output const& output) const {
        for (std::string const& path : {m_evidence, m_reference}) {
            if (!path.empty() && output.IsFile(path)) throw Failure(ExitOutput, m_path, "is an examined file itself");
        }
    }

    // False if the person has interrupted. The result is shared, since a worker that does not heed that goes on with
    // it.
    bool ExamineFiles(Session& session, OrvFilter& filter, VecParameter const& parameters,
                      VecParameter const& postParameters, std::shared_ptr<FilterResult> const& result) const {
        AskAhead(m_evidence);
        if (!m_reference.empty()) {
            Record record;
            const auto nothing = [](OrvFileId, Record&) {};
            if (!Examine(session, m_reference, Reference, nothing, record)) return false;
            result->slots[Reference].loaded = true;
            result->slots[Reference].record = record;
        }
        result->slots[Evidence].loaded = true;
        const std::string reference = m_reference;
        const std::string hash = result->slots[Reference].record.sha256;
        const auto run = [&filter, parameters, postParameters, result, reference, hash](OrvFileId, Record&) {
            if (IsInterrupted()) return;
            RunFilter(filter, parameters, postParameters, *result);
            if (reference.empty()) return;
            if (ToUtf8(TcvCalcHashFromFile(PathFromBytes(reference), SHA256, true)) != hash) {
                throw Failure(ExitInput, "", "the reference " + reference + " changed while it was examined");
            }
        };
        Record record;
        if (!Examine(session, m_evidence, Evidence, run, record)) return false;
        result->slots[Evidence].record = record;
        return true;
    }

    void Tell(Session& session, OrvFilter& filter, FilterResult const& result, bool picture, Output& file) const {
        const auto format = [this](std::string const& path) {
            return m_format.empty() ? FormatOfPath(path) : m_format;
        };
        if (!picture) {
            WriteFilterResult(result, format(m_path), "", file);
            if (!IsInterrupted()) file.Commit();
            return;
        }
        if (result.kind == ResultKind::Picture ? result.slots[Evidence].channels == 0
                                               : !result.slots[Evidence].plot.IsOk()) {
            throw Failure(ExitFilter, m_evidence, result.filter + ": there is nothing to show");
        }
        SavePicture(session, filter, m_path, file);
        if (IsInterrupted()) return;
        file.Commit();
        if (m_format.empty()) return;
        Output told("", false);
        WriteFilterResult(result, m_format, m_path, told);
        told.Commit();
    }

    // Values that can't stand beside each other are moved by the filter.
    static void WarnOfMoved(Environment& environment, VecParameter const& given, VecParameter const& taken) {
        for (size_t i = 0; i < given.size() && i < taken.size(); ++i) {
            if (given[i] == taken[i]) continue;
            environment.terminal.Warning("--post", ToUtf8(given[i].Name()) + " became " + ToUtf8(taken[i].ToReport()) +
                                                       " instead of " + ToUtf8(given[i].ToReport()));
        }
    }

    void Summarise(Environment& environment, FilterResult const& result) const {
        if (m_path.empty() || IsInterrupted()) return;
        const auto status = [](FilterSlot const& slot) {
            return ToUtf8(OrvFilterConfiguration::GetStatusString(slot.status));
        };
        environment.terminal.Summary(result.filter + ": " + status(result.slots[Evidence]) + "; " + m_path +
                                     " written");
    }

    ExitCode CodeOf(Environment& environment, FilterResult const& result) const {
        ExitCode code = ExitDone;
        const char finding = result.Finding();
        if ((finding == '!' && !m_failOn.empty()) || (finding == '?' && m_failOn == "soft")) code = ExitFinding;
        if (result.slots[Reference].status == OrvFilterConfiguration::Unsupported) {
            environment.terminal.Error(m_reference, result.filter + " works on JPEG files only");
            code = ExitInput;
        }
        return code;
    }

    std::string m_name;
    std::string m_evidence;
    std::string m_reference;
    std::vector<std::string> m_settings;
    std::vector<std::string> m_postSettings;
    std::string m_path;
    std::string m_format;
    std::string m_failOn;
    bool m_force = false;
    bool m_noCache = false;
};

}  // namespace

std::unique_ptr<Command> MakeFilterCommand() {
    return std::make_unique<FilterCommand>();
}

}  // namespace cli
