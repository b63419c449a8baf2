// SPDX-License-Identifier: Apache-2.0
// The extended information table with its warnings, as a filter.
//
// The facts come from the file itself and from ExifTool; the rules behind the warnings go by ISO/IEC 10918-1 (JPEG) and
// CIPA DC-008 (EXIF) and by the program options of the group "File Format".
#pragma once
#include "filters/tablefilter.h"
#include "tolbase/export.h"

// The table of ImageInfoTable in its extended form, for two files that of ImageInfoTableComparison. The status is
// Warning where a hard finding stands.
class ORV_API OrvFilterFileFormat : public OrvFilterTable {
public:
    OrvFilterFileFormat();

protected:
    FilterStatus GetVerdict(VecVecString const& rows) const override;
};
