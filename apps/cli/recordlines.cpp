// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/recordlines.h"

#include <algorithm>

namespace cli {

namespace {

char MarkerOf(Record const& record, RecordRow const& row, std::string const& message) {
    for (RecordRule const& rule : record.rules) {
        if (rule.row == row.key && rule.message == message) return rule.hard ? '!' : '?';
    }
    return row.warnings[0];
}

std::vector<std::string> ValueLines(RecordRow const& row) {
    if (row.isList) return row.items;
    if (!row.isBlock) return {row.value};
    std::vector<std::string> lines = SplitLines(row.value);
    if (lines.size() > 1 && lines.back().empty()) lines.pop_back();
    return lines;
}

}  // namespace

std::vector<std::string> SplitLines(std::string const& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start)) {
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    lines.push_back(text.substr(start));
    return lines;
}

std::vector<RecordLine> LinesOf(Record const& record) {
    std::vector<RecordLine> lines;
    for (RecordRow const& row : record.rows) {
        std::vector<std::string> warnings;
        if (!row.warnings.empty()) warnings = SplitLines(row.warnings.substr(1));
        for (std::string& warning : warnings) warning.insert(0, 1, MarkerOf(record, row, warning));
        const std::vector<std::string> values = ValueLines(row);
        const size_t count = std::max({warnings.size(), values.size(), size_t{1}});
        for (size_t i = 0; i < count; ++i) {
            lines.push_back(
                {i == 0 ? row.title : "", i < values.size() ? values[i] : "", i < warnings.size() ? warnings[i] : ""});
        }
    }
    return lines;
}

}  // namespace cli
