// SPDX-License-Identifier: Apache-2.0
// JPEG dimples, as a filter.
//
// S. Agarwal and H. Farid, "Photo forensics from JPEG dimples", IEEE International Workshop on Information Forensics
// and Security (2017).
#pragma once
#include "filters/tablefilter.h"
#include "tolbase/export.h"

// The table of JpegDimplesGlobalTable, for pictures of any format: dimples outlive a later lossless form. Neither their
// presence nor their absence is a warning.
class ORV_API OrvFilterDimples : public OrvFilterTable {
public:
    OrvFilterDimples();
};
