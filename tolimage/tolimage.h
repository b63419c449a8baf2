// SPDX-License-Identifier: Apache-2.0
// All of tolimage for its users.
#pragma once
#include "tolimage/components.h"
#include "tolimage/crawler.h"
#include "tolimage/exiftool.h"
#include "tolimage/imagedetails.h"
#include "tolimage/imageio.h"
#include "tolimage/jpeginfo.h"
#include "tolimage/jpegmarkers.h"
#include "tolimage/jpegsignature.h"
#include "tolimage/mapview.h"
#include "tolimage/metadata.h"
#include "tolimage/pdfimages.h"
#include "tolimage/photo.h"
#include "tolimage/subimages.h"
#include "tolimage/webservices.h"
