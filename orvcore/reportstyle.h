// SPDX-License-Identifier: Apache-2.0
// The files "style.css" and "head.html" that reports of batches take their looks from. The engine reads them in the
// folder "report-style" of the documents path; a program puts them there when it starts.
//
// Threads: no state; any thread, one at a time for one folder.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"

// An installed folder: "share/orvelle/<name>" beneath the program's folder or one of the three above it, or else
// <name> in the context's data folder. Empty if there is none.
ORV_API wxString OrvFindShared(wxString const& name);

// The installed "report-style".
ORV_API wxString OrvFindReportStyle();

// Copies those of the two files that the folder "report-style" beneath `documentsPath` lacks; one that is there is the
// user's own and stays. `source` is where they come from; empty means OrvFindReportStyle. True if both are there
// afterwards.
ORV_API bool OrvInstallReportStyle(wxString const& documentsPath, wxString const& source = wxString());
