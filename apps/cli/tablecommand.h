// SPDX-License-Identifier: Apache-2.0
// A command whose result is one of the engine's tables for each file.
#pragma once

#include <functional>
#include <string>

#include "apps/cli/command.h"
#include "apps/cli/recordrun.h"
#include "tolbase/types.h"

namespace cli {

// "HT 1 (Luma   - DC Class)" becomes "ht_1_luma_dc_class": letters and digits in lower case, one "_" for what is
// between them.
std::string KeyOfTitle(std::string const& title);

// A row for each row of name and value. A value of several lines is a block.
void AddTableRows(VecVecString const& table, Record& record);
// One row more.
RecordRow& AddRow(Record& record, std::string const& title, std::string const& value);

class TableCommand : public Command {
public:
    void Define(CLI::App& app) override;
    ExitCode Run(Environment& environment) override;

protected:
    // Options of the command's own, defined between those of the files and those of the output.
    virtual void DefineMore(CLI::App&) {}
    // Name and version of the JSON form, and the table's name for a person.
    virtual std::string Schema() const = 0;
    virtual std::string Title() const = 0;
    // What the help tells of the table.
    virtual std::string About() const = 0;
    // The same rows for every file, so that a file fits on one line.
    virtual bool HasFixedRows() const { return true; }
    virtual bool IsExtended() const { return false; }
    // Before the first file; on the main thread.
    virtual void Prepare(Session&, Environment&) {}
    // On the worker thread, with the file loaded. What has to be said besides goes to the terminal.
    virtual void Fill(OrvFileId slot, Record& record, Terminal& terminal) = 0;

    FileOptions m_files;
    OutputOptions m_output;

private:
    std::string m_failOn;
    bool m_wide = false;
};

}  // namespace cli
