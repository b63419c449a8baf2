// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/tablecommand.h"

#include "apps/cli/arguments.h"
#include "apps/cli/text.h"

namespace cli {

std::string KeyOfTitle(std::string const& title) {
    std::string key;
    bool gap = false;
    for (const char c : title) {
        const bool upper = c >= 'A' && c <= 'Z';
        if (!upper && !(c >= 'a' && c <= 'z') && !(c >= '0' && c <= '9')) {
            gap = !key.empty();
            continue;
        }
        if (gap) key.push_back('_');
        gap = false;
        key.push_back(upper ? static_cast<char>(c + 32) : c);
    }
    return key;
}

RecordRow& AddRow(Record& record, std::string const& title, std::string const& value) {
    record.rows.emplace_back();
    RecordRow& row = record.rows.back();
    row.key = KeyOfTitle(title);
    row.title = title;
    row.value = value;
    return row;
}

void AddTableRows(VecVecString const& table, Record& record) {
    for (VecString const& cells : table) {
        RecordRow& row = AddRow(record, ToUtf8(cells.at(0)), ToUtf8(cells.at(1)));
        row.isBlock = row.value.find('\n') != std::string::npos;
    }
}

void TableCommand::Define(CLI::App& app) {
    m_files.Define(app);
    DefineMore(app);
    m_output.Define(app);
    if (HasFixedRows()) {
        app.add_flag("--wide", m_wide, "csv, tsv, ssv: one line for each file instead of one for each row");
    }
    AddChoice(app, "--fail-on", m_failOn, {"soft", "hard"},
              "As for the other commands; this table has no findings, so it never decides the code");
    app.footer(About() +
               "\nExit codes: 0 done, 2 wrong usage, 3 a file could not be examined (the others are), 5 the output\n"
               "can't be written, 70 internal, 130 interrupted.");
}

ExitCode TableCommand::Run(Environment& environment) {
    RecordStyle style;
    style.schema = Schema();
    style.title = Title();
    style.extended = IsExtended();
    style.wide = m_wide;
    style.warnings = false;
    RecordRun run(environment, m_output, m_files, style);
    run.SetFailOn(m_failOn);
    run.SetPrepare([&](Session& session) { Prepare(session, environment); });
    return run.Run([&](OrvFileId slot, Record& record) { Fill(slot, record, environment.terminal); });
}

}  // namespace cli
