// SPDX-License-Identifier: Apache-2.0
// The quantisation side of a JPEG's compression, as a filter.
//
// H. Farid, "Digital image ballistics from JPEG quantization", technical report TR2006-583, Dartmouth College (2006):
// quantisation tables tell encoders apart.
#pragma once
#include "filters/tablefilter.h"
#include "tolbase/export.h"

// The table of JpegInfoTable: who writes such tables, quality, sampling and the tables of the picture, of its thumbnail
// and of its preview.
class ORV_API OrvFilterJpegTables : public OrvFilterTable {
public:
    OrvFilterJpegTables();
};
