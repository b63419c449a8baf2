// SPDX-License-Identifier: Apache-2.0
// Which of many files have the same compression signature as the Evidence: the identifying facts of one file, and those
// of the Evidence above those of a list of files.
//
// Threading: worker thread; the match loads files into the Reference slot. Ownership: plain values.
#pragma once

#include <cstddef>

#include "tolbase/export.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"

enum OrvFileId : int;

// Six rows: file name, path, size, quality, subsampling and hash of the quantisation tables.
class ORV_API JpegInfoTableSignature {
public:
    explicit JpegInfoTableSignature(OrvFileId fileId);

    // Rows of name and value. A slot without a file gives default texts; a file that is no JPEG has a name and a path
    // alone.
    VecVecString Evaluate();

private:
    OrvFileId m_fileId;
    VecParameter m_parameters;
};

class ORV_API JpegInfoTableSignatureMatch {
public:
    JpegInfoTableSignatureMatch();

    // A header row, the Evidence's row under the number 0, and a row for each file, numbered from 1, with the count of
    // its values that differ from the Evidence's in the last cell; a hash that differs begins with "!". Each file is
    // loaded into the Reference slot, which holds the last one afterwards. A file that can't be loaded leaves that slot
    // empty and has a row with its name and path alone. An abort of the second progress level ends the walk; the rows
    // so far are given.
    VecVecString Evaluate(VecString const& files);

    // The same for a caller that loads the files itself: first the header row and the Evidence's row, then, for each
    // file that it has loaded into the Reference slot, that file's row under the number that is given.
    VecVecString Start();
    VecString EvaluateReference(size_t number);

private:
    VecString MakeRow(size_t number, wxString const& file);

    JpegInfoTableSignature m_evidence;
    JpegInfoTableSignature m_reference;
    VecVecString m_evidenceRows;
};
