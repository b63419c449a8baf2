// SPDX-License-Identifier: Apache-2.0
// What a reader has to know of each filter before he relies on its result.
//
// Threads: any; the texts are constants. Ownership: the process's own, nothing has to be freed.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"

// The long explanation of one filter, in English and UTF-8. Paragraphs are parted by one empty line ("\n\n"); no text
// ends in a line feed, none is empty. The ranges and defaults of parameters are not told here: the filter itself has
// them.
struct OrvFilterExplanation {
    char const* name;    // the filter's name, OrvFilter::GetName
    char const* method;  // what is shown, how it is calculated, and what each parameter does to it
    char const* source;  // the literature or standard that it goes by, one work a line
    char const* limits;  // where it fails, and what it must not be taken for
};

// The explanation of the filter of that name, whatever its case; null for a name that is no filter's.
ORV_API OrvFilterExplanation const* OrvExplainFilter(wxString const& name);
