// SPDX-License-Identifier: Apache-2.0
// Aligned text for a person: one line a row, further warnings of a row on lines beneath.
#include <algorithm>

#include "apps/cli/recordlines.h"
#include "apps/cli/recordwriter.h"
#include "apps/cli/text.h"
#include "orvcore/tablewriter.h"
#include "orvcore/translate.h"

namespace cli {

namespace {

constexpr char const* Red = "\x1b[31m";
constexpr char const* Yellow = "\x1b[33m";
constexpr char const* Bold = "\x1b[1m";
constexpr char const* Plain = "\x1b[0m";

std::string Trimmed(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

// No cell may hold a line break: text of the file would stand in lines of the program's.
wxString Cell(std::string const& text) {
    return FromUtf8(Printable(text));
}

// A value longer than this and without a warning beside it does not push the warnings of all other rows aside.
constexpr size_t WidestValue = 36;

struct Layout {
    VecVecString table;
    std::vector<std::string> longValues;
    std::vector<std::string> warnings;  // for each row of the table, its last cell

    void Add(RecordLine const& line) {
        // A blank in front would move the whole column to the right.
        const bool isLong = line.warning.empty() && (CountCharacters(Printable(line.value)) > WidestValue ||
                                                     (!line.value.empty() && line.value[0] == ' '));
        const std::string title = Translated(line.title);
        table.push_back({Cell(title), Cell(isLong ? "" : line.value), Cell(line.warning)});
        longValues.push_back(isLong ? Printable(line.value) : "");
        warnings.push_back(Printable(line.warning));
        titleWidth = std::max(titleWidth, CountCharacters(Printable(title)));
    }

    // The engine's layout, with the long values put in.
    std::vector<std::string> Format() const {
        std::vector<std::string> lines = SplitLines(ToUtf8(FormatTable(table)));
        lines.resize(table.size());
        for (size_t i = 0; i < lines.size(); ++i) {
            if (!longValues[i].empty()) {
                std::string title = Trimmed(ToUtf8(table[i][0]));
                title.append(titleWidth + 1 - CountCharacters(title), ' ');
                lines[i] = title + longValues[i];
            }
            lines[i] = Trimmed(lines[i]);
        }
        return lines;
    }

    size_t titleWidth = 0;
};

class TextWriter : public RecordWriter {
public:
    TextWriter(Output& output, RecordStyle const& style) : m_output(output), m_style(style) {}

    void Add(Record const& record) override {
        if (!m_first) m_output.Write("\n");
        m_first = false;
        if (m_style.many || record.slot == "reference") Heading(record);
        Layout layout;
        for (RecordLine const& line : LinesOf(record)) layout.Add(line);
        Print(layout);
        if (m_style.warnings) Counts(record);
        m_output.Flush();
    }

    void End() override {}

private:
    void Heading(Record const& record) {
        const std::string text = (record.slot == "reference" ? Translated("Reference: ") : "") + Printable(record.path);
        m_output.Write((m_style.colour ? Bold + text + Plain : text) + "\n");
        m_output.Write(std::string(CountCharacters(text), '-') + "\n");
    }

    void Print(Layout const& layout) {
        std::vector<std::string> lines = layout.Format();
        for (size_t i = 0; i < lines.size(); ++i) {
            std::string& line = lines[i];
            std::string const& warning = layout.warnings[i];
            if (m_style.colour && !warning.empty() && line.size() >= warning.size()) {
                line.insert(line.size() - Trimmed(warning).size(), warning[0] == '!' ? Red : Yellow);
                line += Plain;
            }
            m_output.Write(line + "\n");
        }
    }

    void Counts(Record const& record) {
        const int hard = record.CountWarnings(true);
        const int soft = record.CountWarnings(false);
        std::string line = hard + soft == 0
                               ? Translated("No warnings")
                               : ToUtf8(wxString::Format(OrvTranslate("Warnings: %d hard, %d soft"), hard, soft));
        if (m_style.colour && hard + soft > 0) line = (hard > 0 ? Red : Yellow) + line + Plain;
        m_output.Write(line + "\n");
        if (!m_style.verbose) return;
        std::string open;
        for (RecordRule const& rule : record.rules) {
            if (rule.status == RuleStatus::NotEvaluated) open += (open.empty() ? "" : ", ") + rule.key;
        }
        if (!open.empty()) m_output.Write(Translated("Not evaluated: ") + open + "\n");
    }

    Output& m_output;
    RecordStyle m_style;
    bool m_first = true;
};

}  // namespace

std::unique_ptr<RecordWriter> MakeTextWriter(Output& output, RecordStyle const& style) {
    return std::make_unique<TextWriter>(output, style);
}

}  // namespace cli
