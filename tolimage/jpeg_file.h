// SPDX-License-Identifier: Apache-2.0
// A file's bytes in memory, for the readers that look into a JPEG.
#pragma once
#include <wx/string.h>

#include <string>

// Reads a regular file whole. False, and `bytes` empty, if it is missing, can't be read or is no regular file; with
// `onlyJpeg` also if it doesn't begin with an SOI marker, and then no more than two bytes are read. Throws
// TolLimitError past the limit "file-bytes", before memory is taken.
bool ReadJpegFile(wxString const& path, bool onlyJpeg, std::string& bytes);
