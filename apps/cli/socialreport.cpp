// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/socialreport.h"

#include <charconv>
#include <cmath>

#include "apps/cli/gridtext.h"
#include "apps/cli/json.h"
#include "apps/cli/separated.h"
#include "apps/cli/text.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace cli {

namespace {

constexpr char const* Schema = "orvelle/social-evaluation/1";

Grid ToGrid(VecVecString const& table) {
    Grid grid;
    for (VecString const& row : table) {
        grid.emplace_back();
        for (wxString const& cell : row) grid.back().push_back(ToUtf8(cell));
    }
    return grid;
}

// Null for a share of nothing.
Json Rate(uint64_t part, uint64_t whole) {
    if (whole == 0) return Json();
    const double share = static_cast<double>(part) / static_cast<double>(whole);
    return std::round(share * 1e6) / 1e6;
}

std::string Percent(uint64_t part, uint64_t whole) {
    char digits[32];
    const auto end =
        std::to_chars(digits, digits + sizeof digits, 100.0 * static_cast<double>(part) / static_cast<double>(whole),
                      std::chars_format::fixed, 1);
    return std::string(digits, end.ptr) + " %";
}

std::vector<std::string> Totals(SocialReport const& report) {
    OrvSocialEvaluation const& evaluation = report.evaluation;
    const uint64_t negatives = evaluation.GetNegatives();
    std::vector<std::string> lines;
    lines.push_back("Files that no platform touched: " + std::to_string(negatives));
    if (negatives > 0) {
        lines.back() += ", said to be from one: " + std::to_string(evaluation.GetFalsePositives()) + " (" +
                        Percent(evaluation.GetFalsePositives(), negatives) + ")";
    }
    lines.push_back("Samples: " + std::to_string(report.samples) +
                    (report.leaveSourceOut ? ", each without its whole source" : ", each without itself alone"));
    lines.push_back("Signatures: " + std::to_string(evaluation.signatures) +
                    ", left out of some comparison: " + std::to_string(evaluation.leftOut));
    return lines;
}

Json GroupJson(OrvSocialEvaluationRow const& row) {
    Json group = {{"group", ToUtf8(row.group)}, {"platform", row.isPlatform}, {"samples", row.samples}};
    group["named"] = Json::object();
    for (auto const& [name, count] : row.named) group["named"][ToUtf8(name)] = count;
    group["not_classified"] = row.notClassified;
    if (row.isPlatform) {
        group["right"] = row.right;
        group["recall"] = Rate(row.right, row.samples);
        group["right_among_several"] = row.rightAmong;
    } else {
        group["false_positives"] = row.samples - row.notClassified;
        group["false_positive_rate"] = Rate(row.samples - row.notClassified, row.samples);
    }
    return group;
}

void WriteJson(SocialReport const& report, Output& output) {
    OrvSocialEvaluation const& evaluation = report.evaluation;
    Json value = {{"schema", Schema}, {"tool", ToolJson()}};
    value["labels"] = {{"path", Valid(report.labels)}, {"sha256", report.labelsSha256}};
    value["left_out"] = report.leaveSourceOut ? "source" : "file";
    value["samples"] = report.samples;
    value["signatures"] = evaluation.signatures;
    value["signatures_left_out"] = evaluation.leftOut;
    value["negatives"] = evaluation.GetNegatives();
    value["false_positives"] = evaluation.GetFalsePositives();
    value["false_positive_rate"] = Rate(evaluation.GetFalsePositives(), evaluation.GetNegatives());
    value["groups"] = Json::array();
    for (OrvSocialEvaluationRow const& row : evaluation.rows) value["groups"].push_back(GroupJson(row));
    output.Write(JsonText(value, false) + "\n");
}

void WriteJsonLines(SocialReport const& report, Output& output) {
    for (OrvSocialEvaluationRow const& row : report.evaluation.rows) {
        Json object = {{"schema", Schema}};
        object.update(GroupJson(row));
        output.Write(JsonText(object, true) + "\n");
    }
}

void WriteSeparated(SocialReport const& report, std::string const& format, Output& output) {
    Grid lines = ToGrid(report.evaluation.GetSummary());
    const Grid confusion = ToGrid(report.evaluation.GetConfusion());
    for (size_t i = 0; i < lines.size() && i < confusion.size(); ++i) {
        // Group and "not classified" stand in both.
        for (size_t c = 1; c + 1 < confusion[i].size(); ++c) {
            lines[i].push_back((i == 0 ? "Taken for " : "") + confusion[i][c]);
        }
        output.Write(SeparatedLine(format, lines[i]));
    }
}

void WriteText(SocialReport const& report, Output& output) {
    output.Write(GridText(ToGrid(report.evaluation.GetSummary())) + "\n");
    output.Write(GridText(ToGrid(report.evaluation.GetConfusion())) + "\n");
    for (std::string const& line : Totals(report)) output.Write(line + "\n");
}

void WriteHtml(SocialReport const& report, Output& output) {
    wxString page = HtmlWriter::DoHeader(wxString(), "Platform Classifier");
    for (VecVecString const& table : {report.evaluation.GetSummary(), report.evaluation.GetConfusion()}) {
        wxString rows;
        for (VecString const& row : table) rows += HtmlWriter::DoTrRedExcl(row);
        page += HtmlWriter::DoTable(rows);
    }
    for (std::string const& line : Totals(report)) page += HtmlWriter::DoP(EscapeHtmlString(FromUtf8(line)));
    output.Write(ToUtf8(page + HtmlWriter::DoFooter()));
}

}  // namespace

void WriteSocialReport(SocialReport const& report, std::string const& format, Output& output) {
    if (format == "json") {
        WriteJson(report, output);
    } else if (format == "jsonl") {
        WriteJsonLines(report, output);
    } else if (format == "html") {
        WriteHtml(report, output);
    } else if (format == "text") {
        WriteText(report, output);
    } else {
        WriteSeparated(report, format, output);
    }
}

}  // namespace cli
