// SPDX-License-Identifier: Apache-2.0
// The writer of the user's file of quantisation-table signatures, userqt.csv. The engine reads that file and never
// writes it. Comments and lines that are no signatures stay as they are.
#pragma once

#include <string>
#include <vector>

#include "tolimage/jpegsignature.h"

namespace cli {

// Why a record can't be written: a class other than 1 and 2, a field with a slash (it begins a comment), a double quote
// or a line break (there is no escape for either). Empty if it can.
std::string ReasonAgainst(JpegSignature const& record);

// The record's line, without a line end.
wxString SignatureLine(JpegSignature const& record);

// The file while it is being changed; no other such object of any process has it meanwhile.
class UserQtFile {
public:
    // Makes the folder if need be and reads the file, which may be missing. Throws Failure (ExitOutput) if the folder
    // can't be made or locked, (ExitInput) if the file is there and can't be read.
    explicit UserQtFile(std::string path);
    ~UserQtFile();
    UserQtFile(UserQtFile const&) = delete;
    UserQtFile& operator=(UserQtFile const&) = delete;

    // How many lines are signatures, as the engine counts them.
    size_t Count() const { return m_signatureLines.size(); }

    void Append(JpegSignature const& record);
    // `index` from 0, in the order of the file.
    void Remove(size_t index);
    // In UTF-8, in one step. Throws Failure (ExitOutput).
    void Save() const;

private:
    void Scan();

    std::string m_path;
    int m_lock = -1;
    std::vector<wxString> m_lines;         // without their line feeds
    std::vector<size_t> m_signatureLines;  // places in m_lines
};

}  // namespace cli
