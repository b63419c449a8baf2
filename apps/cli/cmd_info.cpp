// SPDX-License-Identifier: Apache-2.0
// orvelle info: the image information table with its warnings.
#include "apps/cli/arguments.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/infokeys.h"
#include "apps/cli/recordrun.h"
#include "apps/cli/text.h"
#include "orvcore/imageinfotable.h"

namespace cli {

namespace {

constexpr size_t Sha256Row = 39;

void FillRules(ImageInfoTable const& table, Record& record) {
    std::vector<ImageWarningRule> const& rules = table.GetRules();
    for (size_t i = 0; i < rules.size(); ++i) {
        RecordRule rule;
        rule.key = InfoRuleKey(i);
        rule.hard = rules[i].Severity == 1;
        if (rules[i].Evaluated) rule.status = rules[i].Passed ? RuleStatus::Passed : RuleStatus::Failed;
        if (rule.status == RuleStatus::Failed) rule.message = ToUtf8(rules[i].Message());
        record.rules.push_back(rule);
    }
    std::vector<std::vector<int>> const& rows = table.GetRowRules();
    for (size_t row = 0; row < rows.size(); ++row) {
        for (const int rule : rows[row]) record.rules.at(static_cast<size_t>(rule)).row = InfoRowKey(row);
    }
}

// A finding counts the same in the short table as in the extended one, so it is shown there as well.
void AddHiddenWarnings(ImageInfoTable const& table, VecVecString const& titles, Record& record) {
    std::vector<std::vector<int>> const& rows = table.GetRowRules();
    for (size_t row = record.rows.size(); row < rows.size() && row < titles.size(); ++row) {
        RecordRow extra;
        bool hard = false;
        for (const int index : rows[row]) {
            RecordRule const& rule = record.rules.at(static_cast<size_t>(index));
            if (rule.status != RuleStatus::Failed) continue;
            extra.warnings += (extra.warnings.empty() ? "" : "\n") + rule.message;
            hard = hard || rule.hard;
        }
        if (extra.warnings.empty()) continue;
        extra.key = InfoRowKey(row);
        extra.title = ToUtf8(titles[row].at(0));
        extra.warnings.insert(0, hard ? OrvMarkerHard : OrvMarkerSoft);
        extra.isExtra = true;
        record.rows.push_back(extra);
    }
}

void FillInfo(OrvFileId slot, bool extended, Record& record) {
    ImageInfoTable table(slot, extended);
    for (VecString const& cells : table.Evaluate()) {
        RecordRow row;
        row.key = InfoRowKey(record.rows.size());
        row.title = ToUtf8(cells.at(0));
        row.value = ToUtf8(cells.at(1));
        row.warnings = ToUtf8(cells.at(2));
        record.rows.push_back(row);
    }
    FillRules(table, record);
    if (extended) {
        if (record.rows.at(Sha256Row).value != record.sha256) {
            throw Failure(ExitInput, record.path, "changed while it was examined");
        }
        // The table takes its digests from the file, when all else that it tells has been read.
        record.isSha256Confirmed = true;
        return;
    }
    static const VecVecString titles = ImageInfoTable(slot, true).Reset();
    AddHiddenWarnings(table, titles, record);
}

class InfoCommand : public Command {
public:
    void Define(CLI::App& app) override {
        m_files.Define(app);
        app.add_flag("-x,--extended", m_extended, "Add dates, file size, file times and hashes");
        AddText(app, "--reference", m_reference, "Load a comparison image, and tell of it behind the others")
            ->type_name("FILE");
        m_output.Define(app);
        app.add_flag("--wide", m_wide, "csv, tsv, ssv: one line for each file instead of one for each row");
        AddChoice(app, "--fail-on", m_failOn, {"soft", "hard"}, "End with code 1 if there is such a warning");
        app.footer(
            "Warnings begin with \"!\" (hard) or \"?\" (soft). The short table counts and shows every finding that "
            "the\n"
            "extended one has. Exit codes: 0 done, 1 a finding with --fail-on, 2 wrong usage, 3 a file could not be\n"
            "examined (the others are), 5 the output can't be written, 70 internal, 130 interrupted.");
    }

    ExitCode Run(Environment& environment) override {
        RecordStyle style;
        style.schema = "orvelle/info/1";
        style.title = "Image Information";
        style.extended = m_extended;
        style.wide = m_wide;
        RecordRun run(environment, m_output, m_files, style);
        run.SetReference(m_reference);
        run.SetFailOn(m_failOn);
        return run.Run([extended = m_extended](OrvFileId slot, Record& record) { FillInfo(slot, extended, record); });
    }

private:
    FileOptions m_files;
    OutputOptions m_output;
    bool m_extended = false;
    bool m_wide = false;
    std::string m_reference;
    std::string m_failOn;
};

}  // namespace

std::unique_ptr<Command> MakeInfoCommand() {
    return std::make_unique<InfoCommand>();
}

}  // namespace cli
