// SPDX-License-Identifier: Apache-2.0
// What a command tells of one file, ready to be written in any format. All texts are UTF-8, but for the path, which is
// the bytes that were given.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace cli {

struct RecordRow {
    std::string key;  // never changes with the language or a version
    std::string title;
    std::string value;
    std::string warnings;  // the engine's cell: one marker ("!", "?"), messages on lines of their own; mostly empty
    // What stands behind the value where it is a list (JSON only); `value` then has it joined by line breaks.
    std::vector<std::string> items;
    bool isList = false;
    // The value's line breaks are the table's own: it is shown on as many lines. Those of other values are escaped.
    bool isBlock = false;
    // A row that the table as asked for doesn't have, here for its warning alone. Not among the rows in JSON.
    bool isExtra = false;
};

enum class RuleStatus { NotEvaluated, Passed, Failed };

struct RecordRule {
    std::string key;
    std::string row;  // key of the row that it speaks of; empty if none
    std::string message;
    bool hard = false;
    RuleStatus status = RuleStatus::NotEvaluated;
};

struct Record {
    std::string slot = "evidence";  // or "reference"
    std::string path;
    uint64_t bytes = 0;
    std::string sha256;
    // Whoever filled the record has digested the file once more, behind its last reading of it, and found `sha256`.
    bool isSha256Confirmed = false;
    std::vector<RecordRow> rows;
    std::vector<RecordRule> rules;
    std::string started;  // UTC, ISO 8601
    double seconds = 0;

    // Rows by their marker, as the tables over many files and the plug-in count: a row with several findings counts
    // once, as hard if one of them is.
    int CountWarnings(bool hard) const {
        const char marker = hard ? '!' : '?';
        int count = 0;
        for (RecordRow const& row : rows) count += !row.warnings.empty() && row.warnings[0] == marker ? 1 : 0;
        return count;
    }
};

}  // namespace cli
