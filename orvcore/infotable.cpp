// SPDX-License-Identifier: Apache-2.0
#include "orvcore/infotable.h"

OrvInfoTable::OrvInfoTable(OrvFileId fileId) : m_fileId(fileId) {}

VecVecString OrvInfoTable::Reset() {
    m_parameters.Reset();
    return GenerateTable();
}

VecVecString OrvInfoTable::GenerateTable() {
    m_table.clear();
    m_table.reserve(m_parameters.size());
    for (size_t i = 0; i < m_parameters.size(); ++i) {
        m_table.push_back({m_parameters[i].Name(), m_parameters[i].ToText()});
    }
    return m_table;
}
