// SPDX-License-Identifier: Apache-2.0
// Records on their way out, each as soon as it is done; nothing of a written one is kept.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "apps/cli/output.h"
#include "apps/cli/record.h"

namespace cli {

struct RecordStyle {
    std::string schema;  // name and version of the JSON form, "orvelle/info/1"
    std::string title;   // of the table, for a person
    bool wide = false;   // CSV and its kin: a row for each file instead of one for each cell
    bool many = false;   // text: a heading for each file
    bool colour = false;
    bool verbose = false;   // text: rules that were not evaluated
    bool warnings = true;   // the table has rules
    bool extended = false;  // told in JSON
};

class RecordWriter {
public:
    virtual ~RecordWriter() = default;
    virtual void Add(Record const& record) = 0;
    // What has to stand behind the last record; no record comes behind it.
    virtual void End() = 0;
};

// text, json, jsonl, csv, tsv, ssv, html.
std::vector<std::string> const& FormatNames();
// The format that a file's ending asks for; text for any other.
std::string FormatOfPath(std::string const& path);

std::unique_ptr<RecordWriter> MakeRecordWriter(std::string const& format, Output& output, RecordStyle const& style);

std::unique_ptr<RecordWriter> MakeTextWriter(Output& output, RecordStyle const& style);
std::unique_ptr<RecordWriter> MakeSeparatedWriter(std::string const& format, Output& output, RecordStyle const& style);
std::unique_ptr<RecordWriter> MakeJsonWriter(bool lines, Output& output, RecordStyle const& style);
std::unique_ptr<RecordWriter> MakeHtmlWriter(Output& output, RecordStyle const& style);

}  // namespace cli
