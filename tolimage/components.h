// SPDX-License-Identifier: Apache-2.0
// The libraries and programs that a result depends on, for the head of a report.
//
// Threads: any. Nothing is started: the versions are those that the libraries tell at run time, and ExifTool's is read
// from its own file.
#pragma once
#include <wx/string.h>

#include <utility>
#include <vector>

#include "tolbase/export.h"

// Name and version in a fixed order ("OpenCV", "4.6.0"); "not found" for an ExifTool that is not installed. Of
// libraries that consist of headers, and of wxWidgets, it is the version that this program was built with: wxWidgets
// starts shells to learn about the system before it tells its own.
ORV_API std::vector<std::pair<wxString, wxString>> GetComponentVersions();
