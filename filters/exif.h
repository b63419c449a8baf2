// SPDX-License-Identifier: Apache-2.0
// All metadata of the file, as a filter.
//
// Read by ExifTool (exiftool.org); the fields themselves are told in CIPA DC-008 (EXIF), ISO 16684-1 (XMP), IPTC IIM
// and ISO 15076-1 (ICC).
#pragma once
#include "filters/tablefilter.h"
#include "tolbase/export.h"

// Rows of "Group:Tag" and value in the order of the file, as they were read when it was loaded.
class ORV_API OrvFilterExif : public OrvFilterTable {
public:
    OrvFilterExif();
};
