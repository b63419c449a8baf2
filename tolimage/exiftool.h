// SPDX-License-Identifier: Apache-2.0
// ExifTool, kept open as one child process of this program.
//
// It is started by the first question and ended with the program, orderly or not. No shell is involved, no file name
// can be read as an option, the user's own ExifTool configuration is not read, and evidence is only ever read.
// Questions are sent on at once and answered in their order, so that a caller may ask early and decode meanwhile. A
// child that ends is started again and the question repeated once; one that does not answer within the limit
// "seconds-per-file" is killed.
//
// Threads: everything here may be called from any thread at any time. Ownership: results are plain values.
#pragma once
#include <wx/string.h>

#include <string>
#include <vector>

#include "tolbase/export.h"

// One value as ExifTool prints it, never as a number: a version "12.60" stays "12.60".
struct ExifToolValue {
    wxString group0;  // ExifTool's family 0: "EXIF", "MakerNotes", "XMP"; tells the kind of metadata
    wxString group1;  // family 1: "IFD0", "ExifIFD", "XMP-dc"; tells the place
    wxString tag;     // "Make"
    wxString value;   // text; bytes that are no UTF-8 are taken as ISO 8859-1; the items of a list joined by ", "
};
using ExifToolValues = std::vector<ExifToolValue>;

// All values of a file in ExifTool's order, a tag that occurs twice given twice. Among them are ExifTool's own groups
// "ExifTool" (warnings and errors), "File", "System" and "Composite". Composite:GPSLatitude and Composite:GPSLongitude
// alone are given as signed decimal degrees. A value longer than the limit "metadata-value-bytes" is cut and ends with
// " [truncated]"; behind the limit "metadata-values" the rest is left out and a last value, tag "Truncated" of the
// group "Orvelle", says how many. Empty for a path that is no readable regular file. Throws TolException, code 82:
// "ExifTool is not installed.", "ExifTool did not answer within 60 s.", "ExifTool ended unexpectedly.". Uses the answer
// to ExifToolPrefetch if the file has not changed since.
ORV_API ExifToolValues ExifToolRead(wxString const& path);

// Asks for a file's values and returns at once; the next ExifToolRead of the same path (of tcvLoadImageDetailsExifTool
// too) takes the answer. At most 16 such answers are kept; the oldest are forgotten. Throws never.
ORV_API void ExifToolPrefetch(wxString const& path);

// The bytes of one binary tag ("ThumbnailImage"); empty if the file has none. Throws as ExifToolRead does.
ORV_API std::string ExifToolReadBinary(wxString const& path, char const* tag);

// The version of the ExifTool that would be run, read from its library's file without starting it; empty if it is not
// found.
ORV_API wxString ExifToolVersion();

// Another program than "exiftool" from the PATH; for tests and special installations. The running child is ended. Empty
// restores the default.
ORV_API void ExifToolSetProgram(wxString const& program);
// Ends the child now, if it runs; a later question starts it again. Questions under way throw.
ORV_API void ExifToolShutdown();
