// SPDX-License-Identifier: Apache-2.0
// The compression of a JPEG file in detail: its quantisation tables and its Huffman tables, each for the picture, its
// thumbnail and its preview.
//
// Threading: Evaluate reads the context's slots without a lock; it runs on the worker thread or while no load runs.
// Ownership: as OrvInfoTable.
#pragma once

#include "orvcore/infotable.h"
#include "tolbase/export.h"
#include "tolbase/types.h"

// 28 rows: who writes such tables, then quality, standard table, colour space, subsampling, hash and three quantisation
// tables of the picture, of its thumbnail and of its preview. What the file does not have keeps its default text.
class ORV_API JpegInfoTable : public OrvInfoTable {
public:
    explicit JpegInfoTable(OrvFileId fileId);

    VecVecString Evaluate() override;
};

// 21 rows: the code counts of three Huffman table sets, and whether all are standard, of the picture, of its thumbnail
// and of its preview.
class ORV_API JpegInfoTable2 : public OrvInfoTable {
public:
    explicit JpegInfoTable2(OrvFileId fileId);

    VecVecString Evaluate() override;
};
