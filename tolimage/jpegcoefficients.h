// SPDX-License-Identifier: Apache-2.0
// The quantised DCT coefficients as they stand in a JPEG, before anything is decoded to pixels.
//
// Threads: any; no state. Ownership: plain values. Files are opened read-only.
#pragma once
#include <wx/string.h>

#include <cstdint>
#include <vector>

#include "tolbase/export.h"

// One coefficient of every block of one component.
struct JpegCoefficients {
    std::vector<int16_t> values;  // one a block, in the order of the rows of blocks; quantised, not multiplied
    int step = 0;                 // the quantisation step that they are multiplied with
    int blocksAcross = 0;
    int blocksDown = 0;
    int componentCount = 0;  // of the whole picture
};

// Reads the coefficient at `zigzagIndex` (0 the DC value, 63 the last) of component `component` (0 luma). Blocks that
// only fill up the last unit of an interleaved scan are left out, as they lie outside the picture. An empty record once
// the user has aborted.
//
// Throws TolException (82) for a component that the picture lacks, an index outside 0 to 63, and a file that is
// missing, no JPEG, of a kind that has no such coefficients (12 bits, lossless), or damaged so that blocks are missing
// or wrong: the message begins with "Truncated:", "Corrupt:" or "Unsupported:". Throws TolLimitError for a picture past
// a limit, before memory is taken.
ORV_API JpegCoefficients ReadJpegCoefficients(wxString const& path, int component, int zigzagIndex);
