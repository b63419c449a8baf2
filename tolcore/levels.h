// SPDX-License-Identifier: Apache-2.0
// Levels: moves the dark end, the middle and the bright end of a picture's tones.
//
// Threading: a pure function of its arguments. Ownership: both pictures stay the caller's.
#pragma once
#include <opencv2/core/core_c.h>

#include "tolbase/export.h"

// Maps every channel of `source` into `destination` (both 8 bits a channel, of one size and number of channels; they
// may be the same picture). levels[0] is the highlight h, levels[1] the midtone m, levels[2] the shadow s, each 0 to
// 255. A value v at or below s becomes 0, one at or above h becomes 255, and between them
//
//     255 * ((v - s) / (h - s)) ^ gamma, rounded,
//
// with gamma = ln(n / (h - s)) / ln((m - s) / (h - s)) and n = (h - s) / 2 truncated: the midtone is moved to where the
// neutral midtone s + n lies on the straight line. So m = s + n is that line itself, a smaller m brightens, a greater
// one darkens. An m that isn't between the ends counts as the nearest value that is. With h at or below s, values below
// s become 0 and all others 255. The last two numbers have no effect.
// Throws TolException for a null pointer or pictures that don't fit together.
ORV_API void tcvLevels(_IplImage* source, _IplImage* destination, int* levels, int unused1, int unused2);
