// SPDX-License-Identifier: Apache-2.0
// Progress and abort of long work, process-wide. Two levels: the first follows one long operation, the second counts
// the units of a long list. Every function may be called from any thread at any time.
//
// An abort is a wish: long work polls it and leaves early. Starting a level lowers the abort state of that level, so an
// abort never outlives what it was meant for.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"

// What an application shows of a level. `total` 0: nothing is known, or the level isn't running.
struct TcvProgress {
    int total = 0;
    int value = 0;
    wxString text;
};

ORV_API void tcvInitProgress(int total);
// Sets the first level's value, or advances it by one for -1.
ORV_API void tcvSetProgress(int value);
ORV_API void tcvSetProgressString(const wxString& text);
ORV_API TcvProgress tcvGetProgress();
ORV_API bool tcvHasAborted();
ORV_API void tcvAbortProgress();
ORV_API void tcvAbortAllProgress();
// Lowers the abort state of the first level.
ORV_API void tcvClearAborted();

ORV_API void tcvInitProgress2(int total);
// Sets the second level's value, or advances it by one for -1. Returns 0 if the work is to stop, else 1.
ORV_API int tcvSetProgress2(int value);
ORV_API void tcvSetProgressString2(const wxString& text);
ORV_API TcvProgress tcvGetProgress2();
ORV_API bool tcvHasAborted2();
ORV_API void tcvDeinitProgress2();
