// SPDX-License-Identifier: Apache-2.0
// The JPEG pictures inside a file: thumbnail, previews of whatever maker, the further pictures of a multi-picture file.
//
// They are found by what they are, not by a maker's offsets: a whole JPEG (SOI, quantisation table, frame, scan, EOI)
// that begins in a segment's payload or behind the end of the main picture. Pictures inside an embedded picture are its
// own.
//
// Threads: any; only the dump folder is shared, and it is guarded. Files are opened read-only.
#pragma once
#include <wx/string.h>

#include <cstdint>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/image.h"
#include "tolbase/types.h"
#include "tolimage/jpeginfo.h"

// The embedded pictures of a JPEG file, decoded, with their records; both lists are emptied first and have the same
// order. The order is that of the file, so that the EXIF thumbnail is first; pictures behind the main one come last. A
// picture that can't be decoded is left out. No more than the limit "embedded-images" are taken. A file that is missing
// or is no JPEG has none. Throws TolLimitError past the limit "file-bytes".
ORV_API void tcvSaveSubImages(wxString const& path, std::vector<Image>& images, std::vector<JpegInfo>& infos);

// Writes each embedded JPEG of a file of any format byte for byte to a file of its own, and gives the paths in the
// order of the file. They go to the file's cache folder (the dump folder, and in it the file's name cut to 32
// characters, "-" and its MD5), never beside the examined file. Throws TolException, code 82, if one can't be written.
ORV_API VecString tcvDumpSubImages(wxString const& path);
// The same into a folder of the caller's choice, which is made if it isn't there.
ORV_API VecString tcvDumpSubImages(wxString const& path, wxString const& folder);

// The folder that holds the cache folders of all files. Empty (the start value) means "cache" in the documents folder.
ORV_API void TolSetDumpFolder(wxString const& folder);
ORV_API wxString TolGetDumpFolder();
