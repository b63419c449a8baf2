// SPDX-License-Identifier: Apache-2.0
// All metadata of the file in a slot as free rows of name and value. There are no fixed rows and no parameters: what
// the file holds is what the table shows.
//
// Threading: Evaluate reads the context's slots without a lock; it runs on the worker thread or while no load runs.
// Ownership: as OrvInfoTable.
#pragma once

#include "orvcore/infotable.h"
#include "tolbase/export.h"
#include "tolbase/types.h"

class ORV_API ExifInfoTable : public OrvInfoTable {
public:
    // With `useDetails` the rows are those that the load has read; without it the file is read at each Evaluate.
    ExifInfoTable(OrvFileId fileId, bool useDetails);

    // With useDetails the rows are replaced. Without it the file's rows are added to what the table holds: call Reset
    // for a fresh one. An empty slot empties the table. Throws what tcvLoadImageMetadata throws; the table then stays
    // as it was.
    VecVecString Evaluate() override;

    // Empties the table.
    VecVecString Reset() override;

    // The table as it stands.
    VecVecString GenerateTable() override;

private:
    bool m_useDetails;
};
