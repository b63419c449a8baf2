// SPDX-License-Identifier: Apache-2.0
#include "filters/registry.h"

#include "filters/channels.h"
#include "filters/dimples.h"
#include "filters/equalisation.h"
#include "filters/exif.h"
#include "filters/fileformat.h"
#include "filters/hexviewer.h"
#include "filters/huffmantables.h"
#include "filters/jpegstructure.h"
#include "filters/jpegtables.h"
#include "filters/original.h"
#include "filters/socialmedia.h"

std::vector<OrvNumberedFilter> MakeFilters() {
    return {
        {OrvFilterNumberOriginal, new OrvFilterOriginal},
        {OrvFilterNumberFileFormat, new OrvFilterFileFormat},
        {OrvFilterNumberExif, new OrvFilterExif},
        {OrvFilterNumberJpegStructure, new OrvFilterJpegStructure},
        {OrvFilterNumberHexViewer, new OrvFilterHexViewer},
        {OrvFilterNumberChannels, new OrvFilterChannels},
        {OrvFilterNumberEqualisation, new OrvFilterEqualisation},
        {OrvFilterNumberJpegTables, new OrvFilterJpegTables},
        {OrvFilterNumberHuffmanTables, new OrvFilterHuffmanTables},
        {OrvFilterNumberDimples, new OrvFilterDimples},
        {OrvFilterNumberSocialMedia, new OrvFilterSocialMedia},
    };
}
