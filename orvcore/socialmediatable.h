// SPDX-License-Identifier: Apache-2.0
// What an examiner reads of the comparison with pictures from social platforms, for one file.
//
// Threads and ownership: see infotable.h. Evaluate reads the shared list of smscollection.h without a lock.
#pragma once

#include "orvcore/comparisontable.h"
#include "orvcore/infotable.h"
#include "tolbase/export.h"
#include "tolbase/types.h"

// Seven rows: verdict, platforms, similarities, sources, files, dates, message.
class ORV_API SocialMediaTable : public OrvInfoTable {
public:
    explicit SocialMediaTable(OrvFileId fileId);

    // All values are empty for an empty slot and for a file that is no JPEG.
    VecVecString Evaluate() override;
};

// The same for Evidence and Reference side by side.
class ORV_API SocialMediaTableComparison : public OrvInfoTableComparison {
public:
    SocialMediaTableComparison();
};
