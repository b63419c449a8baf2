// SPDX-License-Identifier: Apache-2.0
// A table with a row for each file on its way out, each row as soon as it is done. Text alone has to wait for the last
// row, since its columns are as wide as their widest cell.
#pragma once

#include <string>
#include <vector>

#include "apps/cli/gridtext.h"
#include "apps/cli/json.h"
#include "apps/cli/output.h"

namespace cli {

class GridWriter {
public:
    // `schema` is told in JSON: {"schema", ..., "cells": {title: cell}} for each row.
    GridWriter(std::string format, std::string schema, std::string title, Output& output);

    // The header, before the first row; may be left out.
    void SetTitles(std::vector<std::string> const& titles, bool shown);
    // `facts` are further members of the row's JSON object, in front of its cells.
    void AddRow(std::vector<std::string> const& cells, Json const& facts);
    void End();

private:
    void WriteRow(std::vector<std::string> const& cells);
    void Start();

    std::string m_format;
    std::string m_schema;
    std::string m_title;
    Output& m_output;
    std::vector<std::string> m_titles;
    Grid m_text;
    bool m_titlesShown = false;
    bool m_started = false;
    bool m_hasRows = false;
};

}  // namespace cli
