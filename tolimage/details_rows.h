// SPDX-License-Identifier: Apache-2.0
// What of ExifTool's values is metadata, and how it is listed. Private to this library.
#pragma once
#include "tolbase/types.h"
#include "tolimage/exiftool.h"

// False for the groups ExifTool, File, System and Composite, which describe the file and ExifTool's own work.
bool IsMetadataValue(ExifToolValue const& value);
// "IFD0:Make".
wxString MetadataName(ExifToolValue const& value);
// Rows of name and value.
VecVecString MetadataRows(ExifToolValues const& values);
// True for the file types of cameras' RAW formats, as ExifTool calls them.
bool IsRawType(wxString const& fileType);
