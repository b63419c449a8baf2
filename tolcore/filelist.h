// SPDX-License-Identifier: Apache-2.0
// Lists of files that travel as one text.
//
// Threads: no state; any thread.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"

// True if `text` is a list of at least `leastCount` existing files joined by `separator`. A folder is no file; an empty
// entry is none either.
ORV_API bool IsAConcatenationOfAllExistingFiles(wxString const& text, wxString const& separator, int leastCount);
