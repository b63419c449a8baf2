// SPDX-License-Identifier: Apache-2.0
// The shape in which every information about a file travels: a table of texts whose cells may begin with a marker.
//
// Threading: a table object belongs to the thread that evaluates it; nothing here locks.
// Ownership: a table owns its parameters and the last table made; both are copied and moved member-wise.
#pragma once

#include "tolbase/export.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"

enum OrvFileId : int;

// First characters of a cell. They are data: writers, sorts and displays read them.
inline constexpr char const* OrvMarkerHard = "!";       // a hard finding
inline constexpr char const* OrvMarkerSoft = "?";       // a soft finding, shown and not counted as hard
inline constexpr char const* OrvMarkerNumeric = "#";    // a header cell: its column sorts as numbers
inline constexpr char const* OrvMarkerImage = "*IMG*";  // followed by a decimal image index: the cell stands for it

// Base of all tables of one file: one output parameter a row, in row order.
class ORV_API OrvInfoTable {
public:
    explicit OrvInfoTable(OrvFileId fileId);
    OrvInfoTable(OrvInfoTable const&) = default;
    OrvInfoTable(OrvInfoTable&&) = default;
    OrvInfoTable& operator=(OrvInfoTable const&) = default;
    OrvInfoTable& operator=(OrvInfoTable&&) = default;
    virtual ~OrvInfoTable() = default;

    // Reads the current state of the file slot, fills the parameters, keeps the table and returns it.
    virtual VecVecString Evaluate() = 0;

    // Returns every parameter to its default, then makes the table anew.
    virtual VecVecString Reset();

    // Makes the table from the parameters as they stand: a row for each, its name and its text. No header row.
    virtual VecVecString GenerateTable();

    // The table of the last Evaluate, Reset or GenerateTable; empty before the first.
    VecVecString const& GetTable() const { return m_table; }

    // The file slot that the table speaks of.
    OrvFileId GetFileSlot() const { return m_fileId; }

protected:
    OrvFileId m_fileId;
    VecParameter m_parameters;
    VecVecString m_table;
};
