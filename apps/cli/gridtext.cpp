// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/gridtext.h"

#include <algorithm>

#include "apps/cli/recordlines.h"
#include "apps/cli/text.h"

namespace cli {

namespace {

// The lines of a cell, printable.
std::vector<std::string> CellLines(std::string const& cell, bool isBlock) {
    if (!isBlock) return {Printable(cell)};
    std::vector<std::string> lines = SplitLines(cell);
    if (lines.size() > 1 && lines.back().empty()) lines.pop_back();
    std::transform(lines.begin(), lines.end(), lines.begin(), [](std::string const& line) { return Printable(line); });
    return lines;
}

using Lines = std::vector<std::vector<std::string>>;

// A row of the grid as rows of single lines.
Lines Spread(std::vector<std::string> const& row, std::vector<size_t> const& blocks) {
    Lines lines(1, std::vector<std::string>(row.size()));
    for (size_t c = 0; c < row.size(); ++c) {
        const std::vector<std::string> cell = CellLines(row[c], std::count(blocks.begin(), blocks.end(), c) > 0);
        if (cell.size() > lines.size()) lines.resize(cell.size(), std::vector<std::string>(row.size()));
        for (size_t i = 0; i < cell.size(); ++i) lines[i][c] = cell[i];
    }
    return lines;
}

std::string Coloured(std::string const& mark) {
    if (mark.empty() || (mark[0] != '!' && mark[0] != '?')) return mark;
    return (mark[0] == '!' ? "\x1b[31m" : "\x1b[33m") + mark + "\x1b[0m";
}

}  // namespace

std::string GridText(Grid const& grid, std::vector<size_t> const& blocks, bool colour) {
    Lines lines;
    for (auto const& row : grid) {
        for (auto& line : Spread(row, blocks)) lines.push_back(std::move(line));
    }
    std::vector<size_t> widths;
    for (auto const& line : lines) {
        widths.resize(std::max(widths.size(), line.size()), 0);
        for (size_t c = 0; c < line.size(); ++c) {
            const size_t width = CountCharacters(line[c]);
            if (width <= WidestGridCell) widths[c] = std::max(widths[c], width);
        }
    }
    std::string text;
    for (auto const& line : lines) {
        std::string out;
        for (size_t c = 0; c < line.size(); ++c) {
            if (c + 1 == line.size()) {
                out += colour ? Coloured(line[c]) : line[c];
                break;
            }
            const size_t width = CountCharacters(line[c]);
            out += line[c] + std::string(width < widths[c] ? widths[c] - width + 1 : 1, ' ');
        }
        out.erase(out.find_last_not_of(' ') + 1);
        text += out + "\n";
    }
    return text;
}

}  // namespace cli
