// SPDX-License-Identifier: Apache-2.0
// CSV, TSV and SSV: a line for each cell, or for each file.
#include "apps/cli/recordwriter.h"
#include "apps/cli/separated.h"

namespace cli {

namespace {

class SeparatedWriter : public RecordWriter {
public:
    SeparatedWriter(std::string format, Output& output, RecordStyle const& style)
        : m_format(std::move(format)), m_output(output), m_style(style) {
        if (!m_style.wide) Line({"Path", "Slot", "Title", "Value", "Warnings"});
    }

    void Add(Record const& record) override {
        if (m_style.wide) {
            AddWide(record);
        } else {
            for (RecordRow const& row : record.rows) {
                Line({record.path, record.slot, row.title, row.value, row.warnings});
            }
        }
        m_output.Flush();
    }

    void End() override {}

private:
    void Line(std::vector<std::string> const& cells) { m_output.Write(SeparatedLine(m_format, cells)); }

    void AddWide(Record const& record) {
        std::vector<std::string> titles = {"Path", "Slot"};
        std::vector<std::string> cells = {record.path, record.slot};
        std::string messages;
        for (RecordRow const& row : record.rows) {
            if (!row.warnings.empty()) messages += (messages.empty() ? "" : "\n") + row.warnings;
            if (row.isExtra) continue;
            titles.push_back(row.title);
            cells.push_back(row.value);
        }
        if (m_style.warnings) {
            titles.insert(titles.end(), {"Hard Warnings", "Soft Warnings", "Warnings"});
            cells.push_back(std::to_string(record.CountWarnings(true)));
            cells.push_back(std::to_string(record.CountWarnings(false)));
            cells.push_back(messages);
        }
        if (!m_headed) Line(titles);
        m_headed = true;
        Line(cells);
    }

    std::string m_format;
    Output& m_output;
    RecordStyle m_style;
    bool m_headed = false;
};

}  // namespace

std::unique_ptr<RecordWriter> MakeSeparatedWriter(std::string const& format, Output& output, RecordStyle const& style) {
    return std::make_unique<SeparatedWriter>(format, output, style);
}

}  // namespace cli
