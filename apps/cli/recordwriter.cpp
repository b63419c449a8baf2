// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/recordwriter.h"

#include <algorithm>
#include <cctype>

namespace cli {

std::vector<std::string> const& FormatNames() {
    static const std::vector<std::string> names = {"text", "json", "jsonl", "csv", "tsv", "ssv", "html"};
    return names;
}

std::string FormatOfPath(std::string const& path) {
    const size_t point = path.rfind('.');
    std::string ending = point == std::string::npos ? "" : path.substr(point + 1);
    std::transform(ending.begin(), ending.end(), ending.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    if (ending == "htm") return "html";
    std::vector<std::string> const& names = FormatNames();
    return std::find(names.begin(), names.end(), ending) != names.end() ? ending : "text";
}

std::unique_ptr<RecordWriter> MakeRecordWriter(std::string const& format, Output& output, RecordStyle const& style) {
    if (format == "json" || format == "jsonl") return MakeJsonWriter(format == "jsonl", output, style);
    if (format == "csv" || format == "tsv" || format == "ssv") return MakeSeparatedWriter(format, output, style);
    if (format == "html") return MakeHtmlWriter(output, style);
    return MakeTextWriter(output, style);
}

}  // namespace cli
