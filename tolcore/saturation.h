// SPDX-License-Identifier: Apache-2.0
// Where a picture is saturated.
//
// Threading: a pure function of its arguments. Ownership: both pictures stay the caller's.
#pragma once
#include <opencv2/core/core_c.h>

#include "tolbase/export.h"

// Fills `destination` (one channel of 8 bits, of the size of `source`) with 0 where all channels of `source` (8 bits a
// channel) are at `level` or above, and with 255 elsewhere. Inverted pictures give the saturated shadows.
// Throws TolException for a null pointer or pictures that don't fit together.
ORV_API void saturationMap(_IplImage* source, _IplImage* destination, double level);
