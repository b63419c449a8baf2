// SPDX-License-Identifier: Apache-2.0
// orvelle compare: what one table says of two files, side by side.
#include <wx/translation.h>

#include <algorithm>

#include "apps/cli/arguments.h"
#include "apps/cli/command.h"
#include "apps/cli/examination.h"
#include "apps/cli/failure.h"
#include "apps/cli/gridtext.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/json.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/separated.h"
#include "apps/cli/socialdatabase.h"
#include "apps/cli/text.h"
#include "orvcore/comparisontable.h"
#include "orvcore/infotable.h"
#include "orvcore/socialmediatable.h"
#include "orvcore/tablewriter.h"
#include "orvcore/translate.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace cli {

namespace {

using Comparison = std::unique_ptr<OrvInfoTableComparison>;

Comparison MakeComparison(std::string const& table) {
    if (table == "exif") return std::make_unique<ExifInfoTableComparison>(true);
    if (table == "jpeg") return std::make_unique<JpegInfoTableComparison>();
    if (table == "huffman") return std::make_unique<JpegInfoTableComparison2>();
    if (table == "dimples") return std::make_unique<JpegDimplesGlobalTableComparison>();
    if (table == "social") return std::make_unique<SocialMediaTableComparison>();
    return std::make_unique<ImageInfoTableComparison>();
}

// The comparison with its files; header row first.
struct Compared {
    std::string table;
    Record evidence;
    Record reference;
    Grid rows;
    int hard = 0;
    int soft = 0;
    int plain = 0;  // differences that any two files have

    bool HasWarnings() const { return rows.at(0).size() == 7; }
    std::vector<std::string> Keys() const {
        if (HasWarnings()) {
            return {"id", "name", "evidence", "evidence_warnings", "reference", "reference_warnings", "comparison"};
        }
        return {"id", "name", "evidence", "reference", "comparison"};
    }

    void Count() {
        for (size_t i = 1; i < rows.size(); ++i) {
            const std::string mark = rows[i].back().substr(0, 1);
            if (mark == OrvMarkerHard) {
                ++hard;
            } else if (mark == OrvMarkerSoft) {
                ++soft;
            } else if (!mark.empty()) {
                ++plain;
            }
        }
    }
};

std::string Title(std::string const& table) {
    if (table == "exif") return "EXIF Comparison";
    if (table == "jpeg") return "JPEG Tables Comparison";
    if (table == "huffman") return "JPEG Huffman Tables Comparison";
    if (table == "dimples") return "JPEG Dimples Comparison";
    if (table == "social") return "Social Media Identification Comparison";
    return "Image Information Comparison";
}

std::string Summary(Compared const& compared) {
    if (compared.hard + compared.soft + compared.plain == 0) return Translated("No differences");
    const auto formatted = [](char const* text, auto... numbers) {
        return ToUtf8(wxString::Format(OrvTranslate(text), numbers...));
    };
    std::string text = formatted(wxTRANSLATE("Differences: %d hard, %d soft"), compared.hard, compared.soft);
    if (compared.plain > 0) text += formatted(wxTRANSLATE(", %d that any two files have"), compared.plain);
    return text;
}

// Columns whose line breaks are the table's own: in the image information those of the warnings, since a value may be a
// file's name; none where the values are the file's texts.
std::vector<size_t> BlockColumns(Compared const& compared) {
    if (compared.table == "exif") return {};
    return compared.HasWarnings() ? std::vector<size_t>{3, 5} : std::vector<size_t>{2, 3};
}

void WriteText(Compared const& compared, bool colour, Output& output) {
    output.Write(Translated("Evidence:  ") + Printable(compared.evidence.path) + "\n" + Translated("Reference: ") +
                 Printable(compared.reference.path) + "\n\n");
    output.Write(GridText(compared.rows, BlockColumns(compared), colour));
    output.Write(Summary(compared) + "\n");
}

void WriteJson(Compared const& compared, bool oneLine, Output& output) {
    Json value = {{"schema", "orvelle/compare/1"},
                  {"tool", ToolJson()},
                  {"run",
                   {{"started", compared.evidence.started},
                    {"seconds", compared.evidence.seconds + compared.reference.seconds}}}};
    value["evidence"] = InputJson(compared.evidence);
    value["reference"] = InputJson(compared.reference);
    value["table"] = compared.table;
    value["counts"] = {{"hard", compared.hard}, {"soft", compared.soft}, {"unmarked", compared.plain}};
    value["rows"] = Json::array();
    const std::vector<std::string> keys = compared.Keys();
    for (size_t i = 1; i < compared.rows.size(); ++i) {
        Json row = Json::object();
        for (size_t c = 0; c < keys.size(); ++c) row[keys[c]] = Valid(compared.rows[i].at(c));
        value["rows"].push_back(row);
    }
    output.Write(JsonText(value, oneLine) + "\n");
}

void WriteHtml(Compared const& compared, Output& output) {
    wxString page = HtmlWriter::DoHeader(wxString(), FromUtf8(Translated(Title(compared.table))));
    const auto tell = [&](char const* name, Record const& record) {
        page += HtmlWriter::DoP(
            EscapeHtmlString(FromUtf8(Translated(name) + ": " + Printable(record.path) + ", SHA256 " + record.sha256)));
    };
    page += HtmlWriter::DoH(1, FromUtf8(Translated(Title(compared.table))), wxString());
    tell("Evidence", compared.evidence);
    tell("Reference", compared.reference);
    wxString rows;
    for (auto const& row : compared.rows) {
        VecString cells;
        for (std::string const& cell : row) cells.push_back(FromUtf8(cell));
        rows += HtmlWriter::DoTrRedExcl(cells);
    }
    page += HtmlWriter::DoTable(rows) + HtmlWriter::DoP(FromUtf8(Summary(compared))) + HtmlWriter::DoFooter();
    output.Write(ToUtf8(page));
}

void Write(Compared const& compared, std::string const& format, bool colour, Output& output) {
    if (format == "json" || format == "jsonl") {
        WriteJson(compared, format == "jsonl", output);
    } else if (format == "html") {
        WriteHtml(compared, output);
    } else if (format == "text") {
        WriteText(compared, colour, output);
    } else {
        for (auto const& row : compared.rows) output.Write(SeparatedLine(format, row));
    }
}

class CompareCommand : public Command {
public:
    void Define(CLI::App& app) override {
        AddText(app, "EVIDENCE", m_evidence, "The questioned image")->required()->type_name("");
        AddText(app, "REFERENCE", m_reference, "The image that it is compared with")->required()->type_name("");
        AddChoice(app, "--table", m_table, {"info", "exif", "jpeg", "huffman", "dimples", "social"},
                  "What is compared; the image information by default");
        m_output.Define(app);
        AddChoice(app, "--fail-on", m_failOn, {"soft", "hard"}, "End with code 1 if there is such a difference");
        app.footer(
            "A difference begins with \"!\" (hard) or \"?\" (soft). Metadata are compared name by name: a name on one\n"
            "side only is hard, a changed value soft. In the image information names, dates, sizes of files and "
            "hashes\n"
            "differ between any two files and have no mark; the warnings of each file stand beside its values and are\n"
            "not counted (\"orvelle info --fail-on\" counts them). Exit codes: 0 done, 1 a difference with --fail-on,\n"
            "2 wrong usage, 3 one of the two could not be examined, 5 the output can't be written, 70 internal, 130\n"
            "interrupted.");
    }

    ExitCode Run(Environment& environment) override {
        Output output(m_output.path, m_output.force);
        for (std::string const& file : {m_evidence, m_reference}) {
            if (output.IsFile(file)) throw Failure(ExitOutput, m_output.path, "is an examined file itself");
        }
        environment.isForPeople = m_output.IsForPeople();
        Session session(environment);
        session.KeepNoCopies();
        if (m_table == "social") LoadSocialSignatures(session, environment.terminal);
        AskAhead(m_evidence);
        AskAhead(m_reference);
        Compared compared;
        compared.table = m_table.empty() ? "info" : m_table;
        if (!Compare(session, environment.terminal, compared)) return Worse(m_code, InterruptionCode());
        const bool colour = environment.terminal.HasColour() && output.IsStandardOutput();
        Write(compared, m_output.Format(), colour, output);
        output.Commit();
        const bool finding =
            (m_failOn == "hard" && compared.hard > 0) || (m_failOn == "soft" && compared.hard + compared.soft > 0);
        return finding ? ExitFinding : ExitDone;
    }

private:
    // Both are tried, so that both are told of if both fail.
    bool Compare(Session& session, Terminal& terminal, Compared& compared) {
        // The worker may be left behind with it.
        const std::shared_ptr<OrvInfoTableComparison> comparison = MakeComparison(compared.table);
        const auto rows = std::make_shared<VecVecString>();
        const auto fill = [comparison, rows](OrvFileId slot, Record&) { *rows = comparison->Evaluate(slot); };
        bool done = true;
        const auto examine = [&](std::string const& path, OrvFileId slot, Record& record) {
            try {
                done = Examine(session, path, slot, fill, record) && done;
            } catch (Failure const& failure) {
                terminal.Error(failure.Subject(), failure.what());
                m_code = Worse(m_code, failure.Code());
                done = false;
            }
        };
        examine(m_evidence, Evidence, compared.evidence);
        examine(m_reference, Reference, compared.reference);
        if (!done) return false;
        for (VecString const& row : TranslateTable(*rows, 0)) {
            compared.rows.emplace_back();
            for (wxString const& cell : row) compared.rows.back().push_back(ToUtf8(cell));
        }
        compared.Count();
        return true;
    }

    std::string m_evidence;
    std::string m_reference;
    std::string m_table;
    OutputOptions m_output;
    std::string m_failOn;
    ExitCode m_code = ExitDone;
};

}  // namespace

std::unique_ptr<Command> MakeCompareCommand() {
    return std::make_unique<CompareCommand>();
}

}  // namespace cli
