// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/plaintable.h"

#include "apps/cli/json.h"
#include "apps/cli/separated.h"
#include "apps/cli/text.h"
#include "orvcore/tablewriter.h"
#include "tolbase/htmlwriter.h"

namespace cli {

namespace {

VecString Cells(std::vector<std::string> const& cells) {
    VecString texts;
    for (std::string const& cell : cells) texts.push_back(FromUtf8(Printable(cell)));
    return texts;
}

void WriteText(PlainTable const& table, Output& output) {
    if (table.rows.empty()) return;
    VecVecString texts = {Cells(table.titles)};
    for (auto const& row : table.rows) texts.push_back(Cells(row));
    const std::string text = ToUtf8(FormatTable(texts));
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        std::string line = text.substr(start, end - start);
        line.erase(line.find_last_not_of(' ') + 1);
        output.Write(line + "\n");
        start = end + 1;
    }
}

Json RowJson(PlainTable const& table, std::vector<std::string> const& row) {
    Json object = Json::object();
    for (size_t i = 0; i < row.size(); ++i) object[table.keys.at(i)] = Valid(row[i]);
    return object;
}

void WriteJson(PlainTable const& table, Output& output) {
    Json value = {{"schema", table.schema}, {"tool", ToolJson()}, {"table", table.title}, {"rows", Json::array()}};
    for (auto const& row : table.rows) value["rows"].push_back(RowJson(table, row));
    output.Write(JsonText(value, false) + "\n");
}

void WriteJsonLines(PlainTable const& table, Output& output) {
    for (auto const& row : table.rows) {
        Json object = {{"schema", table.schema}};
        object.update(RowJson(table, row));
        output.Write(JsonText(object, true) + "\n");
    }
}

void WriteHtml(PlainTable const& table, Output& output) {
    wxString rows = HtmlWriter::DoTrRedExcl(Cells(table.titles));
    for (auto const& row : table.rows) rows += HtmlWriter::DoTrRedExcl(Cells(row));
    output.Write(ToUtf8(HtmlWriter::DoHeader(wxString(), FromUtf8(table.title)) + HtmlWriter::DoTable(rows) +
                        HtmlWriter::DoFooter()));
}

}  // namespace

void WritePlainTable(PlainTable const& table, std::string const& format, Output& output) {
    if (format == "json") {
        WriteJson(table, output);
    } else if (format == "jsonl") {
        WriteJsonLines(table, output);
    } else if (format == "html") {
        WriteHtml(table, output);
    } else if (format == "text") {
        WriteText(table, output);
    } else {
        output.Write(SeparatedLine(format, table.titles));
        for (auto const& row : table.rows) output.Write(SeparatedLine(format, row));
    }
}

}  // namespace cli
