// SPDX-License-Identifier: Apache-2.0
// The Huffman side of a JPEG's compression, as a filter.
//
// ITU-T T.81 | ISO/IEC 10918-1, Annex K.3, gives the standard tables. E. Kee, M. K. Johnson and H. Farid, "Digital
// image authentication from JPEG headers", IEEE Transactions on Information Forensics and Security 6 (2011), counts
// codes by length as a part of an encoder's signature.
#pragma once
#include "filters/tablefilter.h"
#include "tolbase/export.h"

// The table of JpegInfoTable2: counts of codes by length for the picture, its thumbnail and its preview, and whether
// all sets are the standard ones.
class ORV_API OrvFilterHuffmanTables : public OrvFilterTable {
public:
    OrvFilterHuffmanTables();
};
