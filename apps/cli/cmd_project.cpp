// SPDX-License-Identifier: Apache-2.0
// orvelle project: an empty project, a project's faults, and its page.
#include <sys/stat.h>

#include <filesystem>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/plaintable.h"
#include "apps/cli/projectfile.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "tolbase/file.h"

namespace cli {

namespace {

bool IsRegularFile(wxString const& path) {
    struct stat status = {};
    return stat(PathToBytes(path).c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

class ProjectCommand : public Command {
public:
    void Define(CLI::App& app) override {
        app.require_subcommand(1);
        m_new = app.add_subcommand("new", "Write an empty project");
        AddText(*m_new, "PROJECT", m_path, "The project's file")->required()->type_name("");
        m_new->add_flag("--force", m_force, "Replace a file that exists");
        m_check = app.add_subcommand("check", "Tell what is wrong in a project, and change nothing");
        AddText(*m_check, "PROJECT", m_path, "The project's file")->required()->type_name("");
        m_output.Define(*m_check);
        m_report = app.add_subcommand("report", "Write the bookmarks as an HTML page");
        AddText(*m_report, "PROJECT", m_path, "The project's file")->required()->type_name("");
        AddText(*m_report, "-o,--output", m_output.path, "The page; beside the project, with its name, by default")
            ->type_name("FILE");
        m_report->add_flag("--force", m_output.force, "Replace a file given with --output that exists");
        m_report->footer("A page beside the project is replaced without a question.");
        app.footer("A project is a JSON file; paths in it are relative to it, so that a case folder can be moved.");
    }

    ExitCode Run(Environment& environment) override {
        if (m_report->parsed()) return Report(environment);
        Session session(environment);
        if (m_check->parsed()) return Check();
        CreateProjectFile(m_path, m_force);
        return ExitDone;
    }

private:
    void AddFinding(size_t number, std::string const& name, std::string const& finding) {
        m_findings.rows.push_back({number == 0 ? "" : std::to_string(number), name, finding});
    }

    void CheckBookmark(size_t number, OrvBookmark const& bookmark) {
        const std::string name = ToUtf8(bookmark.name);
        if (!bookmark.IsOk()) {
            AddFinding(number, name, "unknown filter \"" + ToUtf8(bookmark.GetFilterName()) + "\"");
        }
        if (bookmark.status < 0) {
            AddFinding(number, name, "unknown status \"" + ToUtf8(bookmark.GetStatusText()) + "\"");
        }
        for (wxString const* const image : {&bookmark.evidence, &bookmark.reference}) {
            if (image->empty() || IsRegularFile(*image)) continue;
            AddFinding(number, name, "missing image " + ToUtf8(*image));
        }
    }

    ExitCode Check() {
        m_findings.schema = "orvelle/project-check/1";
        m_findings.title = "Findings";
        m_findings.keys = {"bookmark", "name", "finding"};
        m_findings.titles = {"Bookmark", "Name", "Finding"};
        Output output(m_output.path, m_output.force);
        const ProjectFile file(m_path);
        if (output.IsFile(m_path)) throw Failure(ExitOutput, m_output.path, "is the project itself");
        if (file.Version() != "1.0") AddFinding(0, "", "version \"" + ToUtf8(file.Version()) + "\", not \"1.0\"");
        size_t number = 0;
        for (OrvBookmark const& bookmark : file.Project().GetBookmarks()) CheckBookmark(++number, bookmark);
        if (m_output.Format() != "text") {
            WritePlainTable(m_findings, m_output.Format(), output);
        } else {
            for (auto const& row : m_findings.rows) {
                const std::string place = row[0].empty() ? "project" : "bookmark " + row[0] + " \"" + row[1] + "\"";
                output.Write(Printable(place + ": " + row[2]) + "\n");
            }
        }
        output.Commit();
        return m_findings.rows.empty() ? ExitDone : ExitInput;
    }

    // Bookmarks that can't be reported are told, and left out.
    static OrvProject Reportable(ProjectFile const& file, Environment& environment, std::string const& path,
                                 ExitCode& code) {
        OrvProject project = file.Project();
        std::vector<OrvBookmark> kept;
        size_t number = 0;
        for (OrvBookmark const& bookmark : project.GetBookmarks()) {
            ++number;
            if (bookmark.IsOk()) {
                kept.push_back(bookmark);
                continue;
            }
            environment.terminal.Error(path, "bookmark " + std::to_string(number) + " is left out: unknown filter \"" +
                                                 ToUtf8(bookmark.GetFilterName()) + "\"");
            code = ExitInput;
        }
        project.SetBookmarks(kept);
        return project;
    }

    ExitCode Report(Environment& environment) {
        environment.isForPeople = true;
        Session session(environment);
        const ProjectFile file(m_path);
        ExitCode code = ExitDone;
        const OrvProject project = Reportable(file, environment, m_path, code);
        if (project.GetBookmarks().empty()) {
            environment.terminal.Error(m_path, "no bookmarks");
            return code;
        }
        std::string page = m_output.path;
        if (page.empty()) {
            const std::filesystem::path folder = std::filesystem::path(m_path).parent_path();
            page = (folder / std::filesystem::path(PathToBytes(project.GetReportPath())).filename()).string();
        }
        Output output(page, m_output.path.empty() || m_output.force);
        RefuseToReplace(output, project, page);
        output.Write(ToUtf8(project.GetReportText()));
        output.Commit();
        Output printed("", false);
        printed.Write(Printable(page) + "\n");
        printed.Commit();
        return code;
    }

    void RefuseToReplace(Output const& output, OrvProject const& project, std::string const& page) const {
        if (output.IsFile(m_path)) throw Failure(ExitOutput, page, "is the project itself");
        for (OrvBookmark const& bookmark : project.GetBookmarks()) {
            for (wxString const* const image : {&bookmark.evidence, &bookmark.reference}) {
                if (!output.IsFile(PathToBytes(*image))) continue;
                throw Failure(ExitOutput, page, "is an examined file itself");
            }
        }
    }

    CLI::App* m_new = nullptr;
    CLI::App* m_check = nullptr;
    CLI::App* m_report = nullptr;
    OutputOptions m_output;
    PlainTable m_findings;
    std::string m_path;
    bool m_force = false;
};

}  // namespace

std::unique_ptr<Command> MakeProjectCommand() {
    return std::make_unique<ProjectCommand>();
}

}  // namespace cli
