// SPDX-License-Identifier: Apache-2.0
// orvelle verify: a bundle of results against its manifest.
#include "apps/cli/arguments.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/manifest.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"

namespace cli {

namespace {

class VerifyCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "MANIFEST", m_path, "The manifest that a batch wrote beside its report")
            ->required()
            ->type_name("");
        m_output.Define(app);
        app.footer(
            "Each file is hashed anew. Exit code 3 if a result is missing or changed, or an examined file that is\n"
            "there has changed. An examined file that is not there any more is told and is no fault: a bundle may be\n"
            "handed on without its evidence.");
    }

    ExitCode Run(Environment& environment) override {
        Output output(m_output.path, m_output.force);
        if (output.IsFile(m_path)) throw Failure(ExitOutput, m_output.path, "is the manifest itself");
        const Session session(environment);
        PlainTable table;
        table.schema = "orvelle/verify/1";
        table.title = "Verification";
        table.keys = {"state", "role", "path"};
        table.titles = {"State", "Role", "Path"};
        size_t faults = 0;
        for (ManifestFinding const& finding : CheckManifest(m_path)) {
            table.rows.push_back({finding.state, finding.role, finding.path});
            const bool gone = finding.role == "input" && finding.state == "missing";
            if (finding.state != "ok" && !gone) ++faults;
        }
        WritePlainTable(table, m_output.Format(), output);
        output.Commit();
        if (faults == 0) return ExitDone;
        environment.terminal.Error(m_path, std::to_string(faults) + (faults == 1 ? " file differs" : " files differ"));
        return ExitInput;
    }

private:
    std::string m_path;
    OutputOptions m_output;
};

}  // namespace

std::unique_ptr<Command> MakeVerifyCommand() {
    return std::make_unique<VerifyCommand>();
}

}  // namespace cli
