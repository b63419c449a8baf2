// SPDX-License-Identifier: Apache-2.0
// The rows of the image information table and the making of its rules.
#pragma once

#include <wx/string.h>

#include <cstddef>
#include <vector>

#include "orvcore/imagewarningrule.h"

// Places of the rows. The first 30 make the short form.
enum ImageRow : size_t {
    RowFilename,
    RowFullPath,
    RowFormat,
    RowFormatDescription,
    RowEncodedSize,
    RowDisplayedSize,
    RowNormalizedSize,
    RowAspectRatio,
    RowChannels,
    RowBpp,
    RowThumbnailSize,
    RowThumbnailNormalizedSize,
    RowPreviewSize,
    RowPreviewNormalizedSize,
    RowRotateTag,
    RowExifFields,
    RowMakerNotesFields,
    RowIptcFields,
    RowXmpFields,
    RowPhotoshopFields,
    RowIccFields,
    RowMake,
    RowModel,
    RowSoftware,
    RowSerialNumber,
    RowJpegQuality,
    RowQtIsStandard,
    RowQtHash,
    RowChromaSubsampling,
    RowHtIsStandard,
    ImageRowCountShort,
    RowDateTimeOriginal = ImageRowCountShort,
    RowCreateDate,
    RowModifyDate,
    RowFileSize,
    RowLastAccess,
    RowCreation,
    RowLastModification,
    RowMd5,
    RowSha1,
    RowSha256,
    RowSha384,
    RowSha512,
    ImageRowCountExtended
};

std::vector<ImageWarningRule> MakeImageWarningRules();
std::vector<std::vector<int>> MakeImageWarningRowMap();

// Two decimals and a point in every locale; infinities and NaN as C prints them.
wxString FormatTwoDecimals(double number);
