// SPDX-License-Identifier: Apache-2.0
// Everything that tolcore offers.
#pragma once
#include "tolcore/camerasizes.h"  // IWYU pragma: export
#include "tolcore/dimples.h"      // IWYU pragma: export
#include "tolcore/filelist.h"     // IWYU pragma: export
#include "tolcore/levels.h"       // IWYU pragma: export
#include "tolcore/saturation.h"   // IWYU pragma: export
