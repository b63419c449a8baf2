// SPDX-License-Identifier: Apache-2.0
// The image information of many files side by side: one row for each file, with its warnings counted, or its
// differences from the Evidence.
//
// Both take over the slots for their run and put back what stood there, also after an abort and where an exception
// leaves the run. Each file's thumbnail goes into the context's list, cropped to 20 by 20 pixels; cells name it by
// "*IMG*" and its index. Threads: worker thread only; progress and abort go through the second level of the progress
// functions. Ownership: plain values.
#pragma once
#include <utility>
#include <vector>

#include "orvcore/imageinfotable.h"
#include "tolbase/export.h"
#include "tolbase/types.h"

// A file that could not be loaded, and why; or a file and where it is now.
using OrvFileAndText = std::pair<wxString, wxString>;

class ORV_API ImageInfoTableBatch : public ImageInfoTable {
public:
    // Of the extended form.
    ImageInfoTableBatch();
    explicit ImageInfoTableBatch(bool extended);

    using ImageInfoTable::Evaluate;
    // A header row, "#Id", "Image", the names of the rows, "Warnings (hard)", "Warnings (soft)", and a row for each
    // file. Empty for no file. A value with a warning begins with its marker, and so does the first cell of its row.
    //
    // A file with a hard warning is moved into `flaggedFolder`, any other into `cleanFolder`, unless that is empty. A
    // file that can't be loaded gives the row of an empty slot with the file's name; its first cell begins with the
    // hard marker, no warning is counted, and it stays where it is.
    VecVecString Evaluate(VecString const& files, wxString const& cleanFolder, wxString const& flaggedFolder);

    // The same for a caller that loads the files itself: the header row, and the row of the file that the Evidence slot
    // holds under the number that is given (from 1), its thumbnail added to the context's list. `hard` tells whether a
    // hard warning was counted.
    VecString GetHeader() const;
    VecString EvaluateEvidence(size_t number, bool& hard);

    // Of the last run: the files that could not be loaded with the reason, those that were moved with their new path,
    // and those that should have been moved and are where they were.
    std::vector<OrvFileAndText> const& GetFailures() const { return m_failures; }
    std::vector<OrvFileAndText> const& GetMoved() const { return m_moved; }
    VecString const& GetNotMoved() const { return m_notMoved; }

private:
    VecString EvaluateFile(wxString const& file, size_t number, wxString const& cleanFolder,
                           wxString const& flaggedFolder);
    void MoveFile(wxString const& file, wxString const& folder);

    std::vector<OrvFileAndText> m_failures;
    std::vector<OrvFileAndText> m_moved;
    VecString m_notMoved;
};

class ORV_API ImageInfoTableMultiComparison : public ImageInfoTable {
public:
    // Of the extended form.
    ImageInfoTableMultiComparison();
    explicit ImageInfoTableMultiComparison(bool extended);

    using ImageInfoTable::Evaluate;
    // A header row, "#Id", "Image", "Differences" and the names of the rows; the Evidence, which has to be loaded, as
    // row 0; and a row for each file but the Evidence itself. A value that differs from the Evidence's begins with the
    // hard marker and counts, except in the first two rows and from row 30 on, which differ between any two files.
    VecVecString Evaluate(VecString const& files);

    // The same for a caller that loads the files itself: first the header row and the Evidence's row, then the row of
    // the file that the Reference slot holds under the number that is given (from 1).
    VecVecString Start();
    VecString EvaluateReference(size_t number);

    // The files of the last run that could not be loaded, and why.
    std::vector<OrvFileAndText> const& GetFailures() const { return m_failures; }

private:
    ImageInfoTable m_second;
    VecVecString m_standard;
    std::vector<OrvFileAndText> m_failures;
};
