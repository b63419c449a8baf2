// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/recordrun.h"

#include <wx/arrstr.h>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/inputs.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/text.h"

namespace cli {

namespace {
// Enough that ExifTool always has a next file while one is decoded and hashed.
constexpr size_t FilesAskedAhead = 4;
}  // namespace

void OutputOptions::Define(CLI::App& app) {
    AddChoice(app, "--format", format, FormatNames(),
              "Form of the result; by the ending of the output file, else text");
    AddText(app, "-o,--output", path, "Write the result to a file")->type_name("FILE");
    app.add_flag("--force", force, "Replace an output file that exists");
}

std::string OutputOptions::Format() const {
    return format.empty() ? FormatOfPath(path) : format;
}

bool OutputOptions::IsForPeople() const {
    const std::string form = Format();
    return form == "text" || form == "html";
}

void FileOptions::Define(CLI::App& app) {
    AddList(app, "FILE", names, 0, "Images, and folders of images");
    AddText(app, "--files-from", list,
            "Read further names from a file, one a line (or each ended by a zero byte); - is standard input")
        ->type_name("LIST");
    app.add_flag("-r,--recursive", recursive, "Look into the folders beneath a folder, too");
    app.final_callback([this] { Complete(); });
}

void FileOptions::Complete() {
    if (!list.empty()) {
        for (std::string const& name : ReadNameList(list)) names.push_back(name);
    } else if (names.empty()) {
        throw Failure(ExitUsage, "FILE", "is required, or --files-from");
    }
}

RecordRun::RecordRun(Environment& environment, OutputOptions const& output, FileOptions const& files, RecordStyle style)
    : m_environment(environment), m_outputOptions(output), m_files(files), m_style(std::move(style)) {}

void RecordRun::RefuseToReplace(std::vector<std::string> const& files, Output const& output) const {
    const auto refuse = [&](std::string const& file) {
        if (output.IsFile(file)) throw Failure(ExitOutput, m_outputOptions.path, "is an examined file itself");
    };
    for (std::string const& file : files) refuse(file);
    if (!m_reference.empty()) refuse(m_reference);
}

ExitCode RecordRun::Run(FillRecord const& fill) {
    Output output(m_outputOptions.path, m_outputOptions.force);
    m_environment.isForPeople = m_outputOptions.IsForPeople();
    Session session(m_environment);
    session.KeepNoCopies();
    if (m_prepare) m_prepare(session);
    std::vector<std::string> extensions;
    for (wxString const& extension : session.Context().GetImageFormatsRead()) extensions.push_back(ToUtf8(extension));
    const Inputs inputs = FindInputs(m_files.names, extensions, m_files.recursive, m_environment.terminal);
    if (inputs.hasFailures) m_code = ExitInput;
    RefuseToReplace(inputs.files, output);
    m_style.many = inputs.files.size() + (m_reference.empty() ? 0 : 1) > 1 || m_files.names.size() > 1;
    m_style.colour = m_environment.terminal.HasColour() && output.IsStandardOutput();
    m_style.verbose = m_environment.terminal.IsVerbose();
    const std::unique_ptr<RecordWriter> writer = MakeRecordWriter(m_outputOptions.Format(), output, m_style);
    ExamineAll(session, inputs.files, fill, output, *writer);
    m_environment.terminal.ClearProgress();
    writer->End();
    output.Commit();
    Summarise(inputs.files.size());
    return Worse(m_code, InterruptionCode());
}

bool RecordRun::ExamineOne(Session& session, std::string const& path, OrvFileId slot, FillRecord const& fill,
                           Record& record) {
    try {
        return Examine(session, path, slot, fill, record);
    } catch (Failure const& failure) {
        m_environment.terminal.Error(failure.Subject(), failure.what());
        m_code = Worse(m_code, failure.Code());
        ++m_failed;
        return false;
    }
}

void RecordRun::ExamineAll(Session& session, std::vector<std::string> const& files, FillRecord const& fill,
                           Output& output, RecordWriter& writer) {
    Record reference;
    const bool hasReference = !m_reference.empty() && ExamineOne(session, m_reference, Reference, fill, reference);
    size_t asked = 0;
    for (size_t i = 0; i < files.size() && !IsInterrupted() && !output.IsClosed(); ++i) {
        m_environment.terminal.Progress(i + 1, files.size(), files[i]);
        for (; asked < files.size() && asked <= i + FilesAskedAhead; ++asked) AskAhead(files[asked]);
        Record record;
        if (!ExamineOne(session, files[i], Evidence, fill, record)) continue;
        m_environment.terminal.ClearProgress();
        Count(record);
        writer.Add(record);
    }
    if (hasReference && !IsInterrupted()) {
        Count(reference);
        writer.Add(reference);
    }
}

void RecordRun::Count(Record const& record) {
    const int hard = record.CountWarnings(true);
    const int soft = record.CountWarnings(false);
    ++m_done;
    m_hard += static_cast<size_t>(hard);
    m_soft += static_cast<size_t>(soft);
    const bool finding = (m_failOn == "hard" && hard > 0) || (m_failOn == "soft" && hard + soft > 0);
    if (finding) m_code = Worse(m_code, ExitFinding);
}

void RecordRun::Summarise(size_t total) const {
    std::string text = std::to_string(m_done) + (m_done == 1 ? " file done" : " files done");
    if (m_failed > 0) text += ", " + std::to_string(m_failed) + " failed";
    if (m_style.warnings) {
        text += "; " + std::to_string(m_hard) + " hard and " + std::to_string(m_soft) + " soft warnings";
    }
    if (IsInterrupted()) {
        m_environment.terminal.Error(
            "", "interrupted: " + std::to_string(m_done) + " of " + std::to_string(total) + " files done");
    } else if (m_style.many) {
        m_environment.terminal.Summary(text);
    }
}

}  // namespace cli
