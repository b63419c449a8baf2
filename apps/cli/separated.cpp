// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/separated.h"

#include <algorithm>

#include "apps/cli/text.h"

namespace cli {

namespace {

std::string Quoted(std::string const& cell, char separator) {
    if (cell.find_first_of(std::string("\"\r\n") + separator) == std::string::npos) return cell;
    std::string quoted = "\"";
    for (const char c : cell) {
        if (c == '"') quoted.push_back('"');
        quoted.push_back(c);
    }
    return quoted + "\"";
}

std::string Escaped(std::string const& cell) {
    std::string escaped;
    for (const char c : cell) {
        switch (c) {
            case '\t':
                escaped += "\\t";
                break;
            case '\n':
                escaped += "\\n";
                break;
            case '\r':
                escaped += "\\r";
                break;
            case '\\':
                escaped += "\\\\";
                break;
            default:
                escaped.push_back(c);
        }
    }
    return escaped;
}

}  // namespace

std::string SeparatedLine(std::string const& format, std::vector<std::string> const& cells) {
    const bool tabs = format == "tsv";
    const char separator = tabs ? '\t' : format == "ssv" ? ';' : ',';
    std::string line;
    for (size_t i = 0; i < cells.size(); ++i) {
        if (i > 0) line.push_back(separator);
        std::string cell = Valid(cells[i]);
        // No reader of text takes a zero byte.
        cell.erase(std::remove(cell.begin(), cell.end(), '\0'), cell.end());
        line += tabs ? Escaped(cell) : Quoted(cell, separator);
    }
    return line + (tabs ? "\n" : "\r\n");
}

}  // namespace cli
