// SPDX-License-Identifier: Apache-2.0
// orvelle match: which of many files have the compression signature of one.
#include <algorithm>

#include "apps/cli/arguments.h"
#include "apps/cli/clicontext.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/gridtext.h"
#include "apps/cli/inputs.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/json.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/separated.h"
#include "apps/cli/text.h"
#include "orvcore/infotable.h"
#include "orvcore/jpegsignaturetable.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace cli {

namespace {

constexpr char const* Schema = "orvelle/match/1";
constexpr char const* Title = "JPEG Signature Match";
constexpr size_t FilesAskedAhead = 4;
constexpr size_t HashColumn = 6;

std::vector<std::string> Texts(VecString const& cells) {
    std::vector<std::string> texts;
    for (wxString const& cell : cells) texts.push_back(ToUtf8(cell));
    return texts;
}

Json RowJson(std::vector<std::string> const& cells, Record const& record) {
    static char const* const keys[] = {
        "id", "filename", "full_path", "image_size", "image_quality", "chroma_subsampling", "qt_hash"};
    Json row = {{"id", std::stoul(cells.at(0))}};
    for (size_t c = 1; c <= HashColumn; ++c) row[keys[c]] = Valid(cells.at(c));
    row["differences"] = std::stoul(cells.at(HashColumn + 1));
    row["input"] = InputJson(record);
    return row;
}

// The rows on their way out: at once where the format is made of lines, else kept to the end. A row is a few hundred
// bytes; no picture is kept.
class MatchWriter {
public:
    MatchWriter(std::string format, bool colour, Output& output)
        : m_format(std::move(format)), m_colour(colour), m_output(output) {}

    void Begin(VecVecString const& headerAndEvidence, Record const& evidence) {
        m_evidence = evidence;
        if (m_format == "json") m_rows = Json::array();
        if (IsSeparated()) m_output.Write(SeparatedLine(m_format, Texts(headerAndEvidence.at(0))));
        if (IsGrid()) m_grid.push_back(Texts(headerAndEvidence.at(0)));
        Add(Texts(headerAndEvidence.at(1)), evidence);
    }

    void Add(std::vector<std::string> const& cells, Record const& record) {
        if (IsGrid()) {
            m_grid.push_back(cells);
        } else if (m_format == "json") {
            m_rows.push_back(RowJson(cells, record));
        } else if (m_format == "jsonl") {
            Json object = {{"schema", Schema}};
            object.update(RowJson(cells, record));
            m_output.Write(JsonText(object, true) + "\n");
        } else {
            m_output.Write(SeparatedLine(m_format, cells));
        }
        if (!IsGrid()) m_output.Flush();
    }

    void End(double seconds) {
        if (m_format == "text") m_output.Write(GridText(m_grid, {}, m_colour));
        if (m_format == "html") EndPage();
        if (m_format != "json") return;
        Json value = {{"schema", Schema},
                      {"tool", ToolJson()},
                      {"run", {{"started", m_evidence.started}, {"seconds", seconds}}},
                      {"evidence", InputJson(m_evidence)}};
        value["rows"] = std::move(m_rows);
        m_output.Write(JsonText(value, false) + "\n");
    }

private:
    bool IsSeparated() const { return m_format == "csv" || m_format == "tsv" || m_format == "ssv"; }
    bool IsGrid() const { return m_format == "text" || m_format == "html"; }

    void EndPage() {
        wxString rows;
        for (auto const& row : m_grid) {
            VecString cells;
            for (std::string const& cell : row) cells.push_back(FromUtf8(Printable(cell)));
            rows += HtmlWriter::DoTrRedExcl(cells);
        }
        const wxString digest =
            EscapeHtmlString(FromUtf8("Evidence: " + Printable(m_evidence.path) + ", SHA256 " + m_evidence.sha256));
        m_output.Write(ToUtf8(HtmlWriter::DoHeader(wxString(), Title) + HtmlWriter::DoH(1, Title, wxString()) +
                              HtmlWriter::DoP(digest) + HtmlWriter::DoTable(rows) + HtmlWriter::DoFooter()));
    }

    std::string m_format;
    bool m_colour;
    Output& m_output;
    Record m_evidence;
    Grid m_grid;
    Json m_rows;
};

class MatchCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "EVIDENCE", m_evidence, "The image whose signature is looked for")->required()->type_name("");
        m_files.Define(app);
        m_output.Define(app);
        AddChoice(app, "--fail-on", m_failOn, {"soft", "hard"},
                  "End with code 1 if a file's signature differs, which is a hard finding");
        app.footer(
            "The evidence's row has the number 0. Each file's row ends with the count of its values that differ from\n"
            "the evidence's, name and path among them; a hash of quantisation tables that differs begins with \"!\".\n"
            "Exit codes: 0 done, 1 a differing hash with --fail-on, 2 wrong usage, 3 a file could not be examined "
            "(the\n"
            "others are), 5 the output can't be written, 70 internal, 130 interrupted.");
    }

    ExitCode Run(Environment& environment) override {
        Output output(m_output.path, m_output.force);
        Session session(environment);
        session.KeepNoCopies();
        std::vector<std::string> extensions;
        for (wxString const& name : session.Context().GetImageFormatsRead()) extensions.push_back(ToUtf8(name));
        const Inputs inputs = FindInputs(m_files.names, extensions, m_files.recursive, environment.terminal);
        if (inputs.hasFailures) m_code = ExitInput;
        RefuseToReplace(inputs.files, output);
        const bool colour = environment.terminal.HasColour() && output.IsStandardOutput();
        MatchWriter writer(m_output.Format(), colour, output);
        if (!ExamineEvidence(session, environment.terminal, writer)) return Worse(m_code, InterruptionCode());
        ExamineFiles(session, environment.terminal, inputs.files, output, writer);
        environment.terminal.ClearProgress();
        writer.End(m_seconds);
        output.Commit();
        Summarise(environment.terminal, inputs.files.size());
        return Worse(m_code, InterruptionCode());
    }

private:
    void RefuseToReplace(std::vector<std::string> const& files, Output const& output) const {
        const auto isOutput = [&](std::string const& file) { return output.IsFile(file); };
        if (isOutput(m_evidence) || std::any_of(files.begin(), files.end(), isOutput)) {
            throw Failure(ExitOutput, m_output.path, "is an examined file itself");
        }
    }

    // False with the reason told where the file can't be examined.
    bool ExamineOne(Session& session, Terminal& terminal, std::string const& path, OrvFileId slot,
                    FillRecord const& fill, Record& record) {
        try {
            if (!Examine(session, path, slot, fill, record)) return false;
            m_seconds += record.seconds;
            return true;
        } catch (Failure const& failure) {
            terminal.Error(failure.Subject(), failure.what());
            m_code = Worse(m_code, failure.Code());
            ++m_failed;
            return false;
        }
    }

    bool ExamineEvidence(Session& session, Terminal& terminal, MatchWriter& writer) {
        AskAhead(m_evidence);
        Record record;
        const auto rows = std::make_shared<VecVecString>();
        const auto fill = [match = m_match, rows](OrvFileId, Record&) { *rows = match->Start(); };
        if (!ExamineOne(session, terminal, m_evidence, Evidence, fill, record)) return false;
        if (rows->at(1).at(HashColumn).empty()) {
            terminal.Warning(m_evidence, "no JPEG with quantisation tables: it has no signature to match");
        }
        writer.Begin(*rows, record);
        return true;
    }

    void ExamineFiles(Session& session, Terminal& terminal, std::vector<std::string> const& files, Output& output,
                      MatchWriter& writer) {
        size_t asked = 0;
        for (size_t i = 0; i < files.size() && !IsInterrupted() && !output.IsClosed(); ++i) {
            terminal.Progress(i + 1, files.size(), files[i]);
            for (; asked < files.size() && asked <= i + FilesAskedAhead; ++asked) AskAhead(files[asked]);
            const auto cells = std::make_shared<VecString>();
            const auto fill = [match = m_match, cells, number = i + 1](OrvFileId, Record&) {
                *cells = match->EvaluateReference(number);
            };
            Record record;
            if (!ExamineOne(session, terminal, files[i], Reference, fill, record)) continue;
            terminal.ClearProgress();
            Count(*cells);
            writer.Add(Texts(*cells), record);
        }
    }

    void Count(VecString const& cells) {
        ++m_done;
        if (!cells.at(HashColumn).StartsWith(OrvMarkerHard)) {
            ++m_same;
        } else if (!m_failOn.empty()) {
            m_code = Worse(m_code, ExitFinding);
        }
    }

    void Summarise(Terminal& terminal, size_t total) const {
        std::string text = std::to_string(m_done) + " of " + std::to_string(total) + " files done";
        if (m_failed > 0) text += ", " + std::to_string(m_failed) + " failed";
        if (IsInterrupted()) {
            terminal.Error("", "interrupted: " + text);
        } else {
            terminal.Summary(text + "; " + std::to_string(m_same) + " with the same hash");
        }
    }

    std::string m_evidence;
    FileOptions m_files;
    OutputOptions m_output;
    std::string m_failOn;
    // Shared with the work that may be left behind after an interruption.
    std::shared_ptr<JpegInfoTableSignatureMatch> m_match = std::make_shared<JpegInfoTableSignatureMatch>();
    ExitCode m_code = ExitDone;
    size_t m_done = 0;
    size_t m_failed = 0;
    size_t m_same = 0;
    double m_seconds = 0;
};

}  // namespace

std::unique_ptr<Command> MakeMatchCommand() {
    return std::make_unique<MatchCommand>();
}

}  // namespace cli
