// SPDX-License-Identifier: Apache-2.0
#include "filters/exif.h"

OrvFilterExif::OrvFilterExif() : OrvFilterTable("EXIF", std::make_unique<ExifInfoTableComparison>(true)) {
    m_description =
        "Lists all metadata of the file, EXIF, maker notes, XMP, IPTC, ICC profile and others, each with the group "
        "that "
        "it stands in.";
}
