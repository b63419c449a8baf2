// SPDX-License-Identifier: Apache-2.0
// Reading the tab-separated files of data/ and writing constant arrays of C++.
#pragma once
#include <cstdint>
#include <map>
#include <ostream>
#include <string>
#include <vector>

namespace maketables {

// Lines that begin with "#" are remarks; the first other line names the columns.
class Tsv {
public:
    // Throws std::runtime_error with the file's name and the line for whatever is no table.
    explicit Tsv(std::string const& path);

    size_t RowCount() const { return m_rows.size(); }
    std::string const& Cell(size_t row, std::string const& column) const;
    // Throws with the file's name and the line.
    int Number(size_t row, std::string const& column) const;
    [[noreturn]] void Fail(size_t row, std::string const& message) const;

private:
    std::string m_path;
    std::map<std::string, size_t> m_columns;
    std::vector<std::vector<std::string>> m_rows;
    std::vector<size_t> m_lines;
};

// Each text once, ended by a zero byte; offset 0 is the empty text.
class Pool {
public:
    Pool() { Offset(""); }
    uint32_t Offset(std::string const& text);
    // As the initialiser of a char array.
    void Write(std::ostream& out) const;

private:
    std::map<std::string, uint32_t> m_offsets;
    std::vector<std::string> m_texts;
    uint32_t m_size = 0;
};

std::vector<std::string> Split(std::string const& text, char separator);

void MakeSignatures(std::string const& tablesPath, std::string const& signaturesPath, std::ostream& out);
void MakeCameraSizes(std::string const& path, std::ostream& out);

}  // namespace maketables
