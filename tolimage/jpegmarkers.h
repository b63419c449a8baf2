// SPDX-License-Identifier: Apache-2.0
// The markers of a JPEG file, with their places.
//
// Threads: no state; any thread. Ownership: plain values. Files are opened read-only.
#pragma once
#include <wx/string.h>

#include <cstdint>
#include <vector>

#include "tolbase/export.h"

// A marker code of ITU-T T.81: the second byte, 0x01 to 0xFE, and its name without blanks ("SOI", "APP1", "RST0").
struct JpegMarker {
    int code = 0;
    wxString name;
};

// A marker found in a file.
struct JpegMarkerPos {
    int code = 0;
    wxString name;
    int64_t offset = 0;  // of its 0xFF byte, from the start of the file
    int64_t length = 0;  // of the whole segment with the two marker bytes, as far as the file goes; 0 without a segment
};

// All markers that T.81 names.
ORV_API std::vector<JpegMarker> InitJpegMarkers();

// The markers of the main image from SOI to EOI, both counted, all scans and restart markers included; the pictures
// inside segments are not entered. Those that `markers` does not hold are left out. A file that is missing, or is no
// JPEG, has none; one that breaks off has those that are there. Throws TolLimitError past the limits "file-bytes" and
// "segments".
ORV_API std::vector<JpegMarkerPos> FindJpegMarkers(wxString const& path, std::vector<JpegMarker> const& markers);
