// SPDX-License-Identifier: Apache-2.0
// The pictures inside a PDF document.
//
// Threads: any. The document is opened read-only and may be hostile: every count and size is bounded.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"

// Writes the document's pictures to the file's cache folder (see tcvDumpSubImages), never beside the document, and
// gives their paths in the order of the document's objects: a JPEG stream byte for byte as .jpg, a JPEG 2000 stream as
// .jp2, and a grey, RGB or palette picture of 8 bits in a lossless stream as .png. Others are passed over. The names
// are made here:
// "<name>-<object number>.jpg".
// `parameters` may hold "Minimum Side", the least number of pixels of the shorter side; without it all pictures count.
// Empty for a file that is missing or no PDF. Throws TolException (code 82) if a picture can't be written,
// TolLimitError past the limits "file-bytes" and "pdf-objects"; at most "embedded-images" pictures are written.
ORV_API VecString tcvDumpImagesFromPdf(wxString const& path, VecParameter const& parameters);
