// SPDX-License-Identifier: Apache-2.0
// Aligned text for a person: one line a row, further warnings of a row on lines beneath.
#include "apps/cli/recordwriter.h"
#include "apps/cli/text.h"
#include "orvcore/tablewriter.h"

namespace cli {

namespace {

constexpr char const* Red = "\x1b[31m";
constexpr char const* Yellow = "\x1b[33m";
constexpr char const* Bold = "\x1b[1m";
constexpr char const* Plain = "\x1b[0m";

std::vector<std::string> Lines(std::string const& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start)) {
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    lines.push_back(text.substr(start));
    return lines;
}

// No cell may hold a line break: text of the file would stand in lines of the program's.
wxString Cell(std::string const& text) {
    return FromUtf8(Printable(text));
}

struct Layout {
    VecVecString table;
    // For each row of the table: what its last cell is, and how severe.
    std::vector<std::string> warnings;
    std::vector<char> markers;

    void Add(std::string const& title, std::string const& value, std::string const& warning, char marker) {
        table.push_back({Cell(title), Cell(value), Cell(warning)});
        warnings.push_back(Printable(warning));
        markers.push_back(marker);
    }
};

void AddRow(Layout& layout, RecordRow const& row) {
    const std::vector<std::string> warnings = Lines(row.warnings);
    const std::vector<std::string> values = row.isList ? row.items : std::vector<std::string>{row.value};
    const char marker = row.warnings.empty() ? '\0' : row.warnings[0];
    const size_t count = std::max({warnings.size(), values.size(), size_t{1}});
    for (size_t i = 0; i < count; ++i) {
        std::string warning = i < warnings.size() ? warnings[i] : "";
        // The cell has one marker for all of its lines.
        if (i > 0 && !warning.empty()) warning.insert(0, 1, marker);
        layout.Add(i == 0 ? row.title : "", i < values.size() ? values[i] : "", warning, marker);
    }
}

std::string Trimmed(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    return line;
}

class TextWriter : public RecordWriter {
public:
    TextWriter(Output& output, RecordStyle const& style) : m_output(output), m_style(style) {}

    void Add(Record const& record) override {
        if (!m_first) m_output.Write("\n");
        m_first = false;
        if (m_style.many || record.slot == "reference") Heading(record);
        Layout layout;
        for (RecordRow const& row : record.rows) AddRow(layout, row);
        Print(layout);
        if (m_style.warnings) Counts(record);
        m_output.Flush();
    }

    void End() override {}

private:
    void Heading(Record const& record) {
        const std::string text = (record.slot == "reference" ? "Reference: " : "") + Printable(record.path);
        m_output.Write((m_style.colour ? Bold + text + Plain : text) + "\n");
        m_output.Write(std::string(CountCharacters(text), '-') + "\n");
    }

    void Print(Layout const& layout) {
        const std::vector<std::string> lines = Lines(ToUtf8(FormatTable(layout.table)));
        for (size_t i = 0; i < layout.table.size() && i < lines.size(); ++i) {
            std::string line = Trimmed(lines[i]);
            std::string const& warning = layout.warnings[i];
            if (m_style.colour && !warning.empty() && line.size() >= warning.size()) {
                line.insert(line.size() - Trimmed(warning).size(), layout.markers[i] == '!' ? Red : Yellow);
                line += Plain;
            }
            m_output.Write(line + "\n");
        }
    }

    void Counts(Record const& record) {
        const int hard = record.CountWarnings(true);
        const int soft = record.CountWarnings(false);
        std::string line = hard + soft == 0
                               ? "No warnings"
                               : "Warnings: " + std::to_string(hard) + " hard, " + std::to_string(soft) + " soft";
        if (m_style.colour && hard + soft > 0) line = (hard > 0 ? Red : Yellow) + line + Plain;
        m_output.Write(line + "\n");
        if (!m_style.verbose) return;
        std::string open;
        for (RecordRule const& rule : record.rules) {
            if (rule.status == RuleStatus::NotEvaluated) open += (open.empty() ? "" : ", ") + rule.key;
        }
        if (!open.empty()) m_output.Write("Not evaluated: " + open + "\n");
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
