// SPDX-License-Identifier: Apache-2.0
// orvelle social: does a JPEG look as if it came from a social platform? And how often is that answer right?
#include <sys/stat.h>

#include <cerrno>
#include <cstring>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/socialdatabase.h"
#include "apps/cli/socialreport.h"
#include "apps/cli/tablecommand.h"
#include "apps/cli/text.h"
#include "apps/cli/work.h"
#include "orvcore/socialmediatable.h"
#include "tolbase/file.h"
#include "tolbase/hash.h"

namespace cli {

namespace {

// What is worth knowing of a verdict that rests on less than the whole fingerprint.
std::string Shortage(JpegInfo const& info) {
    if (!info.IsValid) return "no JPEG with quantisation tables: not classified";
    if (info.QuantizationTables.empty() || info.QuantizationTables[0].empty()) {
        return "no quantisation table of index 0: the verdict rests on size, metadata and markers alone";
    }
    return "";
}

// The engine's message as a line about a file: it begins with the path.
Failure AboutFile(std::string const& path, std::string const& message) {
    const bool named = message.compare(0, path.size(), path) == 0 && message.size() > path.size() + 2;
    return Failure(ExitInput, path, named ? message.substr(path.size() + 2) : message);
}

void RequireRegularFile(std::string const& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        const std::string reason = errno == ENOENT ? "no such file" : std::string(std::strerror(errno));
        throw Failure(ExitInput, path, reason);
    }
    if (!S_ISREG(status.st_mode)) throw Failure(ExitInput, path, "not a regular file");
}

// What the worker leaves.
struct Evaluated {
    SocialReport report;
    VecString failures;
};

void Evaluate(std::string const& labels, bool leaveSourceOut, Evaluated& result) {
    SocialReport& report = result.report;
    report.labels = labels;
    report.leaveSourceOut = leaveSourceOut;
    report.labelsSha256 = ToUtf8(TcvCalcHashFromFile(PathFromBytes(labels), SHA256, true));
    std::vector<OrvSocialSample> samples;
    try {
        samples = OrvLoadSocialSamples(PathFromBytes(labels), &result.failures);
    } catch (TolException const& error) {
        throw AboutFile(labels, ToUtf8(error.GetMessage()));
    }
    report.samples = samples.size();
    report.evaluation = OrvEvaluateSocialClassifier(samples, SMSCollection(), leaveSourceOut);
}

class SocialCommand : public TableCommand {
public:
    void Define(CLI::App& app) override {
        TableCommand::Define(app);
        app.final_callback([this] {
            if (m_labels.empty()) {
                m_files.Complete();
            } else if (!m_files.names.empty() || !m_files.list.empty()) {
                throw Failure(ExitUsage, "--evaluate", "takes a table of labels and no FILE besides");
            }
        });
    }

    ExitCode Run(Environment& environment) override {
        return m_labels.empty() ? TableCommand::Run(environment) : RunEvaluation(environment);
    }

protected:
    void DefineMore(CLI::App& app) override {
        AddText(app, "--evaluate", m_labels,
                "Tell how often the classifier is right on samples of known origin: a tab-separated table whose first "
                "line names the columns: \"group\" (a platform, or \"none:\" and a kind), \"source\", \"file_id\", and "
                "\"file\" with paths or \"width\" with the 47 further numbers behind it")
            ->type_name("LABELS");
        AddChoice(app, "--leave-out", m_leaveOut, {"source", "file"},
                  "With --evaluate: compare a sample with no signature of its whole source (the default), or leave out "
                  "only the file itself");
    }
    std::string Schema() const override { return "orvelle/social/1"; }
    std::string Title() const override { return "Social Media Identification"; }
    std::string About() const override {
        return "A verdict speaks of how the file was last encoded, not of who made or uploaded it. docs/social.md "
               "tells\n"
               "how often it is right, and what may be concluded. Your own signatures (\"orvelle sms\") are compared, "
               "too.";
    }

    void Prepare(Session& session, Environment& environment) override {
        LoadSocialSignatures(session, environment.terminal);
    }

    void Fill(OrvFileId slot, Record& record, Terminal& terminal) override {
        const std::string shortage = Shortage(GetContext()->GetImageJpegInfo(slot));
        if (!shortage.empty()) terminal.Warning(record.path, shortage);
        AddTableRows(SocialMediaTable(slot).Evaluate(), record);
    }

private:
    ExitCode RunEvaluation(Environment& environment) {
        RequireRegularFile(m_labels);
        Output output(m_output.path, m_output.force);
        if (output.IsFile(m_labels)) throw Failure(ExitOutput, m_output.path, "is the table of labels itself");
        Session session(environment);
        session.KeepNoCopies();
        LoadSocialSignatures(session, environment.terminal);
        const auto result = std::make_shared<Evaluated>();
        const bool bySource = m_leaveOut != "file";
        const auto work = [labels = m_labels, bySource, result] { Evaluate(labels, bySource, *result); };
        if (!RunWork(session, "Evaluate the platform classifier: " + m_labels, work)) return InterruptionCode();
        for (wxString const& message : result->failures) {
            const Failure failure = AboutFile(m_labels, ToUtf8(message));
            environment.terminal.Error(failure.Subject(), failure.what());
        }
        if (result->report.samples == 0) throw Failure(ExitInput, m_labels, "no samples");
        WriteSocialReport(result->report, m_output.Format(), output);
        output.Commit();
        return result->failures.empty() ? ExitDone : ExitInput;
    }

    std::string m_labels;
    std::string m_leaveOut;
};

}  // namespace

std::unique_ptr<Command> MakeSocialCommand() {
    return std::make_unique<SocialCommand>();
}

}  // namespace cli
