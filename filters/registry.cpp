// SPDX-License-Identifier: Apache-2.0
#include "filters/registry.h"

#include "filters/channels.h"
#include "filters/dcthistogram.h"
#include "filters/dimples.h"
#include "filters/equalisation.h"
#include "filters/errorlevel.h"
#include "filters/exif.h"
#include "filters/fileformat.h"
#include "filters/hexviewer.h"
#include "filters/histogram.h"
#include "filters/huffmantables.h"
#include "filters/jpegghost.h"
#include "filters/jpegstructure.h"
#include "filters/jpegtables.h"
#include "filters/noisemap.h"
#include "filters/original.h"
#include "filters/socialmedia.h"

std::vector<OrvNumberedFilter> MakeFilters() {
    return {
        {OrvFilterNumberOriginal, new OrvFilterOriginal},
        {OrvFilterNumberFileFormat, new OrvFilterFileFormat},
        {OrvFilterNumberExif, new OrvFilterExif},
        {OrvFilterNumberJpegStructure, new OrvFilterJpegStructure},
        {OrvFilterNumberHexViewer, new OrvFilterHexViewer},
        {OrvFilterNumberErrorLevel, new OrvFilterErrorLevel},
        {OrvFilterNumberNoiseMap, new OrvFilterNoiseMap},
        {OrvFilterNumberChannels, new OrvFilterChannels},
        {OrvFilterNumberEqualisation, new OrvFilterEqualisation},
        {OrvFilterNumberHistogram, new OrvFilterHistogram},
        {OrvFilterNumberJpegGhost, new OrvFilterJpegGhost},
        {OrvFilterNumberDctHistogram, new OrvFilterDctHistogram},
        {OrvFilterNumberJpegTables, new OrvFilterJpegTables},
        {OrvFilterNumberHuffmanTables, new OrvFilterHuffmanTables},
        {OrvFilterNumberDimples, new OrvFilterDimples},
        {OrvFilterNumberSocialMedia, new OrvFilterSocialMedia},
    };
}
