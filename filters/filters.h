// SPDX-License-Identifier: Apache-2.0
// All of the concrete filters.
#pragma once
#include "filters/channels.h"
#include "filters/dimples.h"
#include "filters/equalisation.h"
#include "filters/exif.h"
#include "filters/fileformat.h"
#include "filters/hexviewer.h"
#include "filters/huffmantables.h"
#include "filters/jpegstructure.h"
#include "filters/jpegtables.h"
#include "filters/original.h"
#include "filters/panelfactory.h"
#include "filters/registry.h"
#include "filters/socialmedia.h"
#include "filters/tablefilter.h"
