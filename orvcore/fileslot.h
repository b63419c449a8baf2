// SPDX-License-Identifier: Apache-2.0
// What a file slot of the context holds. Private to the context's sources, and with the context's threading contract.
#pragma once
#include <wx/string.h>

#include "orvcore/context.h"
#include "tolbase/image.h"
#include "tolbase/types.h"
#include "tolimage/imagedetails.h"
#include "tolimage/jpeginfo.h"

// A default-constructed one is the slot before any load.
struct OrvContext::FileSlot {
    wxString filename;          // as it was loaded
    wxString fileInfo;          // the status line
    wxString originalFilename;  // as the user knows the file
    VecString fileList;
    Image image;  // always in colour form
    Image thumbnail;
    Image preview;
    ImageDetailsExifTool details;
    JpegInfo jpegInfo;
    JpegInfo thumbnailJpegInfo;
    JpegInfo previewJpegInfo;
    wxString outputBasePath;
    wxString hash;  // the MD5 that the path holds
    int fileId = -1;
};
