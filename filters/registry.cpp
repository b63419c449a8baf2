// SPDX-License-Identifier: Apache-2.0
#include "filters/registry.h"

#include "filters/dimples.h"
#include "filters/exif.h"
#include "filters/fileformat.h"
#include "filters/huffmantables.h"
#include "filters/jpegtables.h"
#include "filters/original.h"
#include "filters/socialmedia.h"

std::vector<OrvNumberedFilter> MakeFilters() {
    return {
        {OrvFilterNumberOriginal, new OrvFilterOriginal},
        {OrvFilterNumberFileFormat, new OrvFilterFileFormat},
        {OrvFilterNumberExif, new OrvFilterExif},
        {OrvFilterNumberJpegTables, new OrvFilterJpegTables},
        {OrvFilterNumberHuffmanTables, new OrvFilterHuffmanTables},
        {OrvFilterNumberDimples, new OrvFilterDimples},
        {OrvFilterNumberSocialMedia, new OrvFilterSocialMedia},
    };
}
