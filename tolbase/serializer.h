// SPDX-License-Identifier: Apache-2.0
// How names in files are matched to the names that the program has now. No state: any thread.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"

class ORV_API Serializer {
public:
    // True if the two stand for the same filter or option: case, blanks, "_" and "-" don't count.
    static bool AreNamesEquivalent(const wxString& left, const wxString& right);
};
