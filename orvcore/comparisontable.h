// SPDX-License-Identifier: Apache-2.0
// What one table says of the Evidence beside what it says of the Reference, row by row, with a mark on what differs.
//
// Each side keeps the table of its last Evaluate or Reset: evaluating one side never makes the other one anew, so that
// the warnings of both stay.
//
// Threading: as the tables compared. Ownership: a comparison owns its two tables; a copy shares them with its source.
#pragma once

#include <memory>

#include "orvcore/infotable.h"
#include "tolbase/export.h"
#include "tolbase/types.h"

class ORV_API OrvInfoTableComparison {
public:
    OrvInfoTableComparison(OrvInfoTableComparison const&) = default;
    OrvInfoTableComparison(OrvInfoTableComparison&&) = default;
    OrvInfoTableComparison& operator=(OrvInfoTableComparison const&) = default;
    OrvInfoTableComparison& operator=(OrvInfoTableComparison&&) = default;
    virtual ~OrvInfoTableComparison();

    // Evaluates the side of that slot alone (neither for any other value), then compares.
    VecVecString Evaluate(OrvFileId id);

    // Resets the side of that slot alone (neither for any other value), then compares.
    VecVecString Reset(OrvFileId id);

    // Compares the two tables as they stand. The first row is a header; behind it come a running number from 1, the
    // name, the value of each side (empty for a side without a file) and "!Different" where both sides have a file and
    // their values differ.
    virtual VecVecString GenerateTable();

protected:
    // Takes over both tables, which have the same rows in the same order unless GenerateTable is overridden, and
    // resets them, the Evidence's first.
    OrvInfoTableComparison(OrvInfoTable* evidence, OrvInfoTable* reference);

    std::shared_ptr<OrvInfoTable> m_evidence;
    std::shared_ptr<OrvInfoTable> m_reference;
};

// Metadata have no fixed rows: they are matched by name, a name that occurs twice first with first and second with
// second. A changed value is a soft finding ("?Different"), a name on one side only a hard one ("!Only in Evidence",
// "!Only in Reference"). Rows of the Reference alone come last.
class ORV_API ExifInfoTableComparison : public OrvInfoTableComparison {
public:
    // `useDetails` as for ExifInfoTable.
    explicit ExifInfoTableComparison(bool useDetails);
    VecVecString GenerateTable() override;
};

// The extended image information of both sides with their warnings: seven columns. A difference is marked hard in the
// rows from the format to the Huffman tables only; names, dates, size and hashes differ between any two files.
class ORV_API ImageInfoTableComparison : public OrvInfoTableComparison {
public:
    ImageInfoTableComparison();
    using OrvInfoTableComparison::Evaluate;
    // As Evaluate; on the Evidence's side, and there alone, `hardWarningCount` receives the number of hard warnings
    // unless it is null.
    VecVecString Evaluate(OrvFileId id, int* hardWarningCount);
    VecVecString GenerateTable() override;
};

class ORV_API JpegInfoTableComparison : public OrvInfoTableComparison {
public:
    JpegInfoTableComparison();
};

class ORV_API JpegInfoTableComparison2 : public OrvInfoTableComparison {
public:
    JpegInfoTableComparison2();
};

class ORV_API JpegDimplesGlobalTableComparison : public OrvInfoTableComparison {
public:
    JpegDimplesGlobalTableComparison();
};
