// SPDX-License-Identifier: Apache-2.0
#include "filters/dimples.h"

OrvFilterDimples::OrvFilterDimples()
    : OrvFilterTable("JPEG Dimples", std::make_unique<JpegDimplesGlobalTableComparison>()) {
    m_filterType = FilterTypeGlobalAnalysis;
    m_description =
        "Looks for JPEG dimples, a darker or brighter pixel in each block of 8 by 8 that some encoders leave, and "
        "tells "
        "their strength and their place in the block.";
}
