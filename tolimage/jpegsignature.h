// SPDX-License-Identifier: Apache-2.0
// Signatures of quantisation tables: the record of a user's own database and the record of the compiled one.
//
// A signature is the MD5 over the DQT segments that ExifTool prints as JPEGDigest, as 32 upper-case hexadecimal digits
// and without the sampling suffix. What the compiled records rest on is told in data/README.md.
//
// Threads: plain values; the compiled table is constant and may be read from any thread.
// Ownership: the compiled table and all its texts live as long as the library.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <cstdint>

#include "tolbase/export.h"

// The classes of a record; any other number is no signature.
enum JpegEditorClass : int32_t { JpegEditorNone = 0, JpegEditorCamera = 1, JpegEditorSoftware = 2 };

// A record of the user's database. It holds digests only, no tables.
struct ORV_API JpegSignature {
    wxString editorClass;  // "1" camera, "2" software
    wxString make;
    wxString model;
    wxString quality;  // the maker's own label, such as "FINE"; mostly empty
    wxString signature;
    wxString signatureRot;  // the same for the picture turned by a quarter
    wxString subsampling;   // "2x1", "2x2", "1x1", "1x2", "Gray", or empty where the record doesn't tell
    wxString softwareVendor;
    wxString softwareName;
};

// A record of the compiled table: UTF-8 texts, never null. A table is eight rows joined by "!", each eight decimal
// integers joined by commas, in the picture's own (row-major) order; empty where there is none.
struct JpegsnoopSignature {
    int32_t editorClass;  // 1, 2, or 0 in the terminating record
    char const* make;
    char const* model;
    char const* quality;
    char const* signature;     // where it isn't known how a program lays its tables out: of one table a segment
    char const* signatureRot;  // empty where only the digest is known
    char const* subsampling;
    char const* softwareVendor;
    char const* softwareName;
    char const* table0;
    char const* table1;
    char const* table2;
    char const* table3;
};

// The first record of the compiled table. The last one has class 0 and the make "*"; its other texts are empty.
ORV_API JpegsnoopSignature const* GetInternalJpegSignatures();
// How many records there are, the terminating one not counted.
ORV_API size_t GetInternalJpegSignatureCount();
