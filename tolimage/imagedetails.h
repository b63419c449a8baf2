// SPDX-License-Identifier: Apache-2.0
// What is known of one image file from its head and its metadata.
//
// Threads: any. Ownership: plain values.
#pragma once
#include <wx/string.h>

#include <cstdint>

#include "tolbase/export.h"
#include "tolbase/types.h"

// A missing file and one without metadata give empty texts and zero counts.
struct ORV_API ImageDetailsExifTool {
    bool IsOk = false;     // the file could be read and its size is known
    bool IsJpeg = false;   // by content, whatever the file is called
    int EncodedWidth = 0;  // pixels as stored in the file, never turned
    int EncodedHeight = 0;
    int NormalizedShortSide = 0;  // the lesser and the greater of the two
    int NormalizedLongSide = 0;
    int Channels = 0;      // of the encoded picture: 1 for a grey JPEG
    int BitsPerPixel = 0;  // all channels together: 8 for a grey JPEG
    int BitsPerChannel = 0;
    int Orientation = 0;               // 1 to 8 as EXIF counts, 0 if the file does not tell
    int64_t FileSize = 0;              // bytes
    int64_t FileModificationTime = 0;  // seconds since 1970-01-01 UTC
    wxString Filename;                 // the path as given
    wxString Format;                   // "JPEG", "TIFF", "PNG", "RAW" (every camera RAW), "HEIC", "WEBP", ...
    wxString FormatDescription;        // ExifTool's MIME type and file type: "image/jpeg (JPEG)"
    wxString FileTypeExtension;        // the extension that ExifTool would give such a file: "jpg"
    wxString RotateTag;                // EXIF Orientation as ExifTool words it: "Rotate 90 CW"
    wxString LensModel;
    wxString Make;  // texts as ExifTool prints them; EXIF first, else XMP or the format's own
    wxString Model;
    wxString Software;
    wxString SerialNumber;      // the camera's, from EXIF or the maker's notes
    wxString DateTimeOriginal;  // "%Y:%m:%d %H:%M:%S", as stored
    wxString CreateDate;
    wxString ModifyDate;
    wxString ChromaSubsampling;  // "4:2:0"; empty if the format has none
    wxString EncodingProcess;    // "Baseline DCT, Huffman coding"
    wxString GpsLatitude;   // signed decimal degrees, south negative; ExifTool's own text if the hemisphere is missing
    wxString GpsLongitude;  // west negative
    wxString GpsAltitude;   // ExifTool's own text
    wxString GpsDateTime;
    int64_t MetadataCount = 0;   // rows of Metadata
    int64_t WarningCount = 0;    // warnings and errors that ExifTool gave
    int64_t CompositeCount = 0;  // values that ExifTool derived and that are in no row
    VecVecString Metadata;       // rows ["Group:Tag", value], the group by ExifTool's family 1: ["IFD0:Make", "Canon"]
    // How many tags `exiftool -a -G0` lists for the groups EXIF, MakerNotes, IPTC, XMP, Photoshop and ICC_Profile;
    // unknown tags, which it lists with -u only, are not among them, and tags of the EXIF thumbnail's directory are.
    int ExifFieldCount = 0;
    int MakerNotesFieldCount = 0;
    int IptcFieldCount = 0;
    int XmpFieldCount = 0;
    int PhotoshopFieldCount = 0;
    int IccFieldCount = 0;
};

// Reads the file's details. A file that is missing or not readable gives a record with its path in `Filename` and
// nothing else. Throws TolException (code 82) if ExifTool is not installed, ends or does not answer; uses what
// ExifToolPrefetch has asked for.
ORV_API ImageDetailsExifTool tcvLoadImageDetailsExifTool(wxString const& path);
