// SPDX-License-Identifier: Apache-2.0
#include "filters/jpegtables.h"

OrvFilterJpegTables::OrvFilterJpegTables()
    : OrvFilterTable("JPEG Tables", std::make_unique<JpegInfoTableComparison>()) {
    m_onlyForJpeg = true;
    m_description =
        "Lists the quantisation tables of the picture, of its thumbnail and of its preview, their quality, and the "
        "cameras and programs that are known to write them.";
}
