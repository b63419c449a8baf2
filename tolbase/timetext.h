// SPDX-License-Identifier: Apache-2.0
// Times as text. No state: any thread; the same texts in every locale.
#pragma once
#include <wx/string.h>

#include <cstdint>

#include "tolbase/export.h"

// The local time as "2024-05-31_23-59-58.123": sorts by time and may stand in a file name.
ORV_API wxString DateTimeNowAsString();
// A duration as "0:00:01.250" (hours, minutes, seconds); a negative one has a minus in front.
ORV_API wxString MillisecondsToTimeString(int64_t milliseconds);
// A point in time, in milliseconds since 1970-01-01 UTC, as "2017-07-14 02:40:00 UTC", with ".123" behind the seconds
// where there are such.
ORV_API wxString MillisecondsFromEpochToDateTimeString(int64_t milliseconds);
// The inverse. Also reads a date alone, "T" between date and time, "Z" or nothing for "UTC"; a text of digits is that
// number of milliseconds. 0 for what is none of these.
ORV_API int64_t StringToMillisecondsFromEpoch(const wxString& text);
