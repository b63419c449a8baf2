// SPDX-License-Identifier: Apache-2.0
// What one evaluation knows of the file in the slot: copies, so that rows and rules speak of the same file.
#pragma once

#include <wx/string.h>

#include <vector>

#include "orvcore/imageinfotable.h"
#include "tolbase/image.h"
#include "tolimage/imagedetails.h"
#include "tolimage/jpeginfo.h"

// The answer of one search for the file's quantisation tables.
struct OrvSignatureSearch {
    bool softwareFound = false;
    bool cameraFound = false;
    VecString cameras;
    VecString software;
    VecString standard;
};

struct ImageInfoTable::Facts {
    wxString path;
    ImageDetailsExifTool details;
    Image image;
    Image thumbnail;
    Image preview;
    JpegInfo jpeg;
    double aspectRatio = 0;
    OrvSignatureSearch internal;
    OrvSignatureSearch user;

    bool HasStandardHuffmanTables() const {
        return jpeg.HtIsStandard[0] && jpeg.HtIsStandard[1] && jpeg.HtIsStandard[2];
    }
};
