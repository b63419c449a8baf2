// SPDX-License-Identifier: Apache-2.0
// The list of all concrete filters.
#pragma once
#include <vector>

#include "orvcore/filter.h"
#include "tolbase/export.h"

// The numbers under which the filters are registered. Fixed: a new filter gets the next one.
enum OrvFilterNumber : int {
    OrvFilterNumberOriginal = 0,
    OrvFilterNumberFileFormat = 1,
    OrvFilterNumberExif = 2,
    OrvFilterNumberJpegStructure = 3,
    OrvFilterNumberHexViewer = 4,
    OrvFilterNumberErrorLevel = 5,
    OrvFilterNumberNoiseMap = 6,
    OrvFilterNumberChannels = 7,
    OrvFilterNumberEqualisation = 8,
    OrvFilterNumberHistogram = 9,
    OrvFilterNumberJpegGhost = 10,
    OrvFilterNumberDctHistogram = 11,
    OrvFilterNumberJpegTables = 12,
    OrvFilterNumberHuffmanTables = 13,
    OrvFilterNumberDimples = 14,
    OrvFilterNumberSocialMedia = 15,
};

// A filter and its number.
struct OrvNumberedFilter {
    int number;
    OrvFilter* filter;
};

// Makes one object of each filter, in the order in which they are shown. The caller hands each to
// OrvContext::AddFilterType, which owns it from then on, and gives it its panel with CreateAnalysisPanel:
//
//     for (const OrvNumberedFilter& entry : MakeFilters()) {
//         AddFilterType(entry.filter, entry.number);
//         entry.filter->CreateAnalysisPanel(parent, entry.filter);
//     }
ORV_API std::vector<OrvNumberedFilter> MakeFilters();
