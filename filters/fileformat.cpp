// SPDX-License-Identifier: Apache-2.0
#include "filters/fileformat.h"

#include <algorithm>

OrvFilterFileFormat::OrvFilterFileFormat()
    : OrvFilterTable("File Format", std::make_unique<ImageInfoTableComparison>()) {
    m_description =
        "Lists what is known of the file: format, sizes, number of metadata fields, camera, compression, dates and "
        "hashes, with the warnings that the rules raise on each row.";
}

OrvFilter::FilterStatus OrvFilterFileFormat::GetVerdict(VecVecString const& rows) const {
    bool const hard = std::any_of(rows.begin(), rows.end(), [](VecString const& row) {
        return row.size() > 2 && row[2].StartsWith(OrvMarkerHard);
    });
    return hard ? FilterStatus::Warning : FilterStatus::Ok;
}
