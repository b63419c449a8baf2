// SPDX-License-Identifier: Apache-2.0
// orvelle table and multi: many files side by side, a row for each.
#include <algorithm>
#include <filesystem>
#include <map>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/examination.h"
#include "apps/cli/failure.h"
#include "apps/cli/gridwriter.h"
#include "apps/cli/inputs.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/projectfile.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/session.h"
#include "apps/cli/text.h"
#include "orvcore/batchtable.h"
#include "tolbase/file.h"

namespace cli {

namespace {

// Enough that ExifTool always has a next file while one is decoded and hashed.
constexpr size_t FilesAskedAhead = 4;

std::vector<std::string> Texts(VecString const& cells) {
    std::vector<std::string> texts;
    for (wxString const& cell : cells) texts.push_back(ToUtf8(cell));
    return texts;
}

// What both commands do: files one by one through a slot, a row for each, failures told.
class ManyFiles : public Command {
protected:
    // An ending that stands for no format is refused before anything is examined.
    void CheckOutput() const {
        if (m_output.path.empty() || !m_output.format.empty()) return;
        const std::string format = FormatOfPath(m_output.path);
        const bool isText = std::filesystem::path(m_output.path).extension() == ".txt";
        if (format == "text" && !isText) {
            throw Failure(ExitUsage, m_output.path,
                          "the ending is none of: .txt .html .htm .csv .tsv .ssv .json .jsonl");
        }
    }

    std::vector<std::string> FindFiles(Session& session, Environment& environment, Output const& output) {
        std::vector<std::string> extensions;
        for (wxString const& extension : session.Context().GetImageFormatsRead()) {
            extensions.push_back(ToUtf8(extension));
        }
        const Inputs inputs = FindInputs(m_files.names, extensions, m_files.recursive, environment.terminal);
        if (inputs.hasFailures) m_code = ExitInput;
        for (std::string const& file : inputs.files) {
            if (output.IsFile(file)) throw Failure(ExitOutput, m_output.path, "is an examined file itself");
        }
        return inputs.files;
    }

    bool ExamineOne(Session& session, Environment& environment, std::string const& path, OrvFileId slot,
                    FillRecord const& fill, Record& record) {
        try {
            return Examine(session, path, slot, fill, record);
        } catch (Failure const& failure) {
            environment.terminal.Error(failure.Subject(), failure.what());
            m_code = Worse(m_code, failure.Code());
            return false;
        }
    }

    template <class Each>
    void ForEach(std::vector<std::string> const& files, Environment& environment, Output const& output, Each each) {
        size_t asked = 0;
        for (size_t i = 0; i < files.size() && !IsInterrupted() && !output.IsClosed(); ++i) {
            environment.terminal.Progress(i + 1, files.size(), files[i]);
            for (; asked < files.size() && asked <= i + FilesAskedAhead; ++asked) AskAhead(files[asked]);
            each(files[i]);
        }
        environment.terminal.ClearProgress();
    }

    static Json Facts(Record const& record) { return {{"input", InputJson(record)}}; }

    FileOptions m_files;
    OutputOptions m_output;
    ExitCode m_code = ExitDone;
};

class TableCommand : public ManyFiles {
public:
    void Define(CLI::App& app) override {
        m_files.Define(app);
        m_output.Define(app);
        AddText(app, "--clean-folder", m_clean, "Move files without a hard warning there")->type_name("DIR");
        AddText(app, "--flagged-folder", m_flagged, "Move files with a hard warning there")->type_name("DIR");
        app.add_flag("--dry-run", m_dryRun, "Move nothing, and tell what would be moved");
        app.add_flag("--status-only", m_statusOnly, "Two columns, \"Ok\" or \"Warning\" and the image");
        AddChoice(app, "--fail-on", m_failOn, {"soft", "hard"}, "End with code 1 if there is such a warning");
        app.footer(
            "Moves are told on standard output if the table goes to a file, and on standard error otherwise. Nothing\n"
            "is ever overwritten: where a name is taken, the moved file gets a number. A file that can't be examined\n"
            "is told, has no row, and stays where it is.");
    }

    ExitCode Run(Environment& environment) override {
        CheckOutput();
        Output output(m_output.path, m_output.force);
        environment.isForPeople = m_output.IsForPeople();
        Session session(environment);
        session.KeepNoCopies();
        const std::vector<std::string> files = FindFiles(session, environment, output);
        GridWriter writer(m_output.Format(), "orvelle/table/1", "Image Information", output);
        writer.SetTitles(
            m_statusOnly ? std::vector<std::string>{"Status", "Image"} : Texts(ImageInfoTableBatch().GetHeader()),
            !m_statusOnly);
        ForEach(files, environment, output,
                [&](std::string const& path) { AddFile(session, environment, path, writer); });
        writer.End();
        output.Commit();
        // The rows are safe before the first file moves.
        Move(environment);
        return Worse(m_code, InterruptionCode());
    }

private:
    void AddFile(Session& session, Environment& environment, std::string const& path, GridWriter& writer) {
        const auto row = std::make_shared<VecString>();
        const auto hard = std::make_shared<bool>(false);
        const size_t number = m_number + 1;
        const auto fill = [row, hard, number](OrvFileId, Record&) {
            GetContext()->ClearThumbnails();
            *row = ImageInfoTableBatch().EvaluateEvidence(number, *hard);
        };
        Record record;
        if (!ExamineOne(session, environment, path, Evidence, fill, record)) return;
        m_number = number;
        std::vector<std::string> cells = Texts(*row);
        const int hardCount = std::stoi(cells.at(cells.size() - 2));
        const int softCount = std::stoi(cells.back());
        if (m_failOn == "hard" && hardCount > 0) m_code = Worse(m_code, ExitFinding);
        if (m_failOn == "soft" && hardCount + softCount > 0) m_code = Worse(m_code, ExitFinding);
        Json facts = Facts(record);
        facts["counts"] = {{"hard", hardCount}, {"soft", softCount}};
        if (m_statusOnly) cells = {*hard ? "Warning" : "Ok", cells.at(1)};
        environment.terminal.ClearProgress();
        writer.AddRow(cells, facts);
        std::string const& folder = *hard ? m_flagged : m_clean;
        if (!folder.empty()) m_moves.emplace_back(path, folder);
    }

    void Move(Environment& environment) {
        Output moves("", false);
        std::vector<std::string> taken;
        for (auto const& [file, folder] : m_moves) {
            std::string target;
            if (m_dryRun) {
                target = Foretold(file, folder, taken);
            } else {
                wxString movedTo;
                if (IsInterrupted()) break;
                if (!MoveFileToFolder(PathFromBytes(file), PathFromBytes(folder), &movedTo)) {
                    environment.terminal.Error(file, "can't be moved to " + folder);
                    m_code = Worse(m_code, ExitOutput);
                    continue;
                }
                target = PathToBytes(movedTo);
            }
            if (target == file) continue;
            const std::string text = Printable(file) + " -> " + Printable(target);
            if (m_output.path.empty()) {
                environment.terminal.Error("", file + " -> " + target);
            } else {
                moves.Write(text + "\n");
            }
        }
        moves.Commit();
    }

    // Where a move would lead, those before it counted.
    static std::string Foretold(std::string const& file, std::string const& folder, std::vector<std::string>& taken) {
        const std::filesystem::path name = std::filesystem::path(file).filename();
        std::error_code failed;
        const std::filesystem::path home = std::filesystem::path(AbsolutePath(file)).parent_path();
        if (std::filesystem::equivalent(home, folder, failed)) return file;
        const std::string base = folder.back() == '/' ? folder : folder + "/";
        for (int number = 1;; ++number) {
            const std::string target = base + PathToBytes(NumberedFilename(PathFromBytes(name.string()), number));
            const bool exists =
                std::filesystem::symlink_status(target, failed).type() != std::filesystem::file_type::not_found;
            if (exists || std::find(taken.begin(), taken.end(), target) != taken.end()) continue;
            taken.push_back(target);
            return target;
        }
    }

    std::string m_clean;
    std::string m_flagged;
    std::string m_failOn;
    bool m_dryRun = false;
    bool m_statusOnly = false;
    size_t m_number = 0;
    std::vector<std::pair<std::string, std::string>> m_moves;
};

class MultiCommand : public ManyFiles {
public:
    void Define(CLI::App& app) override {
        AddText(app, "EVIDENCE", m_evidence, "The image that the others are compared with")->required()->type_name("");
        m_files.Define(app);
        m_output.Define(app);
        app.footer(
            "Row 0 is the Evidence. A cell that differs from it begins with \"!\". File names, paths, dates and "
            "hashes\n"
            "differ between any two files and do not count.");
    }

    ExitCode Run(Environment& environment) override {
        CheckOutput();
        Output output(m_output.path, m_output.force);
        if (output.IsFile(m_evidence)) throw Failure(ExitOutput, m_output.path, "is an examined file itself");
        environment.isForPeople = m_output.IsForPeople();
        Session session(environment);
        session.KeepNoCopies();
        const std::vector<std::string> files = FindFiles(session, environment, output);
        GridWriter writer(m_output.Format(), "orvelle/multi/1", "Comparison", output);
        const auto table = std::make_shared<ImageInfoTableMultiComparison>();
        AddEvidence(session, writer, table);
        const std::string evidence = AbsolutePath(m_evidence);
        size_t number = 0;
        ForEach(files, environment, output, [&](std::string const& path) {
            if (AbsolutePath(path) == evidence) return;
            const auto row = std::make_shared<VecString>();
            const auto fill = [table, row, next = number + 1](OrvFileId, Record&) {
                *row = table->EvaluateReference(next);
                GetContext()->ClearThumbnails();
            };
            Record record;
            if (!ExamineOne(session, environment, path, Reference, fill, record)) return;
            ++number;
            environment.terminal.ClearProgress();
            AddRow(*row, record, writer);
        });
        writer.End();
        output.Commit();
        return Worse(m_code, InterruptionCode());
    }

private:
    static void AddRow(VecString const& row, Record const& record, GridWriter& writer) {
        Json facts = Facts(record);
        facts["differences"] = std::stoi(ToUtf8(row.at(2)));
        writer.AddRow(Texts(row), facts);
    }

    void AddEvidence(Session& session, GridWriter& writer,
                     std::shared_ptr<ImageInfoTableMultiComparison> const& table) const {
        const auto head = std::make_shared<VecVecString>();
        const auto fill = [table, head](OrvFileId, Record&) { *head = table->Start(); };
        Record record;
        if (!Examine(session, m_evidence, Evidence, fill, record)) throw Failure(ExitInterrupted, "", "interrupted");
        writer.SetTitles(Texts(head->at(0)), true);
        AddRow(head->at(1), record, writer);
    }

    std::string m_evidence;
};

}  // namespace

std::unique_ptr<Command> MakeTableCommand() {
    return std::make_unique<TableCommand>();
}

std::unique_ptr<Command> MakeMultiCommand() {
    return std::make_unique<MultiCommand>();
}

}  // namespace cli
