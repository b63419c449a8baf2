// SPDX-License-Identifier: Apache-2.0
// How a JPEG is built: coding, tables, segments with their places; as a filter.
//
// ITU-T T.81 | ISO/IEC 10918-1. E. Kee, M. K. Johnson and H. Farid, "Digital image authentication from JPEG headers",
// IEEE Transactions on Information Forensics and Security 6 (2011): such facts tell encoders apart.
#pragma once
#include "filters/tablefilter.h"
#include "orvcore/infotable.h"
#include "tolbase/export.h"

// Rows of name and value: coding facts; quality, quantisation and Huffman tables of the main picture as JpegInfoTable
// and JpegInfoTable2 give them, absent ones left out; problems of the structure, each marked as a hard finding; the
// order of the segments; then each marker of the main picture, restart markers excepted, with its place. No row for an
// empty slot and for a file that is no JPEG.
class ORV_API OrvJpegStructureTable : public OrvInfoTable {
public:
    explicit OrvJpegStructureTable(OrvFileId fileId);

    // Reads the file. Throws what FindJpegMarkers throws.
    VecVecString Evaluate() override;
    // Empties the table.
    VecVecString Reset() override;
    // The table as it stands.
    VecVecString GenerateTable() override;
};

// Both sides by name. A value that differs and a name on one side only are hard findings, but not the places of the
// markers: any two files differ there.
class ORV_API OrvJpegStructureComparison : public OrvInfoTableComparison {
public:
    OrvJpegStructureComparison();
    VecVecString GenerateTable() override;
};

// The status is Warning where the structure has a problem.
class ORV_API OrvFilterJpegStructure : public OrvFilterTable {
public:
    OrvFilterJpegStructure();

protected:
    FilterStatus GetVerdict(VecVecString const& rows) const override;
};
