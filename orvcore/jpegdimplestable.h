// SPDX-License-Identifier: Apache-2.0
// Whether the picture in a slot shows JPEG dimples: the verdict, the strength and the place of the dimple in its block.
//
// Threading: Evaluate reads the context's slots without a lock; it runs on the worker thread or while no load runs.
// Ownership: as OrvInfoTable.
#pragma once

#include "orvcore/infotable.h"
#include "tolbase/export.h"
#include "tolbase/types.h"
#include "tolcore/dimples.h"

class ORV_API JpegDimplesGlobalTable : public OrvInfoTable {
public:
    // A strength from here on counts as present.
    static constexpr double Threshold = 13.0;

    explicit JpegDimplesGlobalTable(OrvFileId fileId);

    // Looks for dimples in the decoded picture, whatever the file's format is. Without a file all rows are empty.
    VecVecString Evaluate() override;

    // Makes the table from a result that is known already. The place of a negative result is "-" while the option
    // "Hide Best Matching Parameters for Negative Compatibility" stands at "Yes".
    VecVecString ShowResult(PCEoutput const& result);
};
