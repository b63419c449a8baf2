// SPDX-License-Identifier: Apache-2.0
#include "tools/maketables/tsv.h"

#include <charconv>
#include <fstream>
#include <stdexcept>

namespace maketables {

std::vector<std::string> Split(std::string const& text, char separator) {
    std::vector<std::string> parts;
    size_t from = 0;
    while (true) {
        const size_t to = text.find(separator, from);
        parts.push_back(text.substr(from, to - from));
        if (to == std::string::npos) return parts;
        from = to + 1;
    }
}

Tsv::Tsv(std::string const& path) : m_path(path) {
    std::ifstream in(path, std::ios::binary);
    if (!in) throw std::runtime_error(path + ": can't be read");
    std::string line;
    for (size_t number = 1; std::getline(in, line); ++number) {
        if (line.empty() || line[0] == '#') continue;
        for (const char c : line) {
            const bool isControl = (c >= 0 && c < ' ' && c != '\t') || c == 127;
            if (isControl) throw std::runtime_error(path + ":" + std::to_string(number) + ": a control character");
        }
        std::vector<std::string> cells = Split(line, '\t');
        if (m_columns.empty()) {
            for (size_t i = 0; i < cells.size(); ++i) m_columns[cells[i]] = i;
            continue;
        }
        m_rows.push_back(std::move(cells));
        m_lines.push_back(number);
        if (m_rows.back().size() != m_columns.size()) Fail(m_rows.size() - 1, "another number of cells than columns");
    }
}

std::string const& Tsv::Cell(size_t row, std::string const& column) const {
    const auto found = m_columns.find(column);
    if (found == m_columns.end()) throw std::runtime_error(m_path + ": no column " + column);
    return m_rows.at(row)[found->second];
}

int Tsv::Number(size_t row, std::string const& column) const {
    std::string const& text = Cell(row, column);
    int value = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    if (result.ec != std::errc() || result.ptr != text.data() + text.size()) Fail(row, "no number in " + column);
    return value;
}

void Tsv::Fail(size_t row, std::string const& message) const {
    throw std::runtime_error(m_path + ":" + std::to_string(m_lines.at(row)) + ": " + message);
}

uint32_t Pool::Offset(std::string const& text) {
    const auto found = m_offsets.find(text);
    if (found != m_offsets.end()) return found->second;
    const uint32_t offset = m_size;
    m_offsets[text] = offset;
    m_texts.push_back(text);
    m_size += static_cast<uint32_t>(text.size()) + 1;
    return offset;
}

void Pool::Write(std::ostream& out) const {
    for (std::string const& text : m_texts) {
        out << '"';
        for (const char c : text) {
            if (c == '"' || c == '\\') out << '\\';
            out << c;
        }
        out << "\\0\"\n";
    }
}

}  // namespace maketables
