// SPDX-License-Identifier: Apache-2.0
// JSON for machines: one array of objects, or one object a line.
#include "apps/cli/json.h"
#include "apps/cli/recordwriter.h"
#include "apps/cli/text.h"
#include "apps/cli/versions.h"

namespace cli {

Json ToolJson() {
    Json components = Json::object();
    for (auto const& [name, version] : ComponentVersions()) components[Valid(name)] = Valid(version);
    return {{"name", "orvelle"}, {"version", ProgramVersion()}, {"components", components}};
}

Json InputJson(Record const& record) {
    Json input = {{"path", Valid(record.path)}};
    if (!IsUtf8(record.path)) input["path_bytes"] = PercentEscaped(record.path);
    input["bytes"] = record.bytes;
    input["sha256"] = record.sha256;
    return input;
}

std::string JsonText(Json const& value, bool oneLine) {
    return value.dump(oneLine ? -1 : 2, ' ', false, Json::error_handler_t::replace);
}

namespace {

char const* StatusText(RuleStatus status) {
    switch (status) {
        case RuleStatus::Passed:
            return "passed";
        case RuleStatus::Failed:
            return "failed";
        default:
            return "not evaluated";
    }
}

Json RowsJson(Record const& record) {
    Json rows = Json::array();
    for (RecordRow const& row : record.rows) {
        if (row.isExtra) continue;
        Json value = {{"key", row.key}, {"title", Valid(row.title)}};
        if (row.isList) {
            value["value"] = Json::array();
            for (std::string const& item : row.items) value["value"].push_back(Valid(item));
        } else {
            value["value"] = Valid(row.value);
        }
        rows.push_back(value);
    }
    return rows;
}

void AddRules(Json& object, Record const& record) {
    Json warnings = Json::array();
    Json rules = Json::array();
    const auto row = [](RecordRule const& rule) { return rule.row.empty() ? Json() : Json(rule.row); };
    for (RecordRule const& rule : record.rules) {
        char const* const severity = rule.hard ? "hard" : "soft";
        rules.push_back(
            {{"key", rule.key}, {"severity", severity}, {"row", row(rule)}, {"status", StatusText(rule.status)}});
        if (rule.status != RuleStatus::Failed) continue;
        warnings.push_back(
            {{"key", rule.key}, {"severity", severity}, {"message", Valid(rule.message)}, {"row", row(rule)}});
    }
    object["counts"] = {{"hard", record.CountWarnings(true)}, {"soft", record.CountWarnings(false)}};
    object["warnings"] = std::move(warnings);
    object["rules"] = std::move(rules);
}

class JsonWriter : public RecordWriter {
public:
    JsonWriter(bool lines, Output& output, RecordStyle const& style)
        : m_lines(lines), m_output(output), m_style(style), m_tool(ToolJson()) {}

    void Add(Record const& record) override {
        Json object = {{"schema", m_style.schema},
                       {"tool", m_tool},
                       {"run", {{"started", record.started}, {"seconds", record.seconds}}},
                       {"input", InputJson(record)},
                       {"slot", record.slot}};
        object["result"] = {{"table", m_style.title}, {"extended", m_style.extended}, {"rows", RowsJson(record)}};
        if (m_style.warnings) AddRules(object, record);
        if (!m_lines) m_output.Write(m_first ? "[\n" : ",\n");
        m_first = false;
        m_output.Write(JsonText(object, m_lines) + (m_lines ? "\n" : ""));
        m_output.Flush();
    }

    void End() override {
        if (!m_lines) m_output.Write(m_first ? "[]\n" : "\n]\n");
    }

private:
    bool m_lines;
    Output& m_output;
    RecordStyle m_style;
    Json m_tool;
    bool m_first = true;
};

}  // namespace

std::unique_ptr<RecordWriter> MakeJsonWriter(bool lines, Output& output, RecordStyle const& style) {
    return std::make_unique<JsonWriter>(lines, output, style);
}

}  // namespace cli
