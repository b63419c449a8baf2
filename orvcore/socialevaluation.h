// SPDX-License-Identifier: Apache-2.0
// How often the classifier of social platforms is right, measured on samples whose origin is known.
//
// Threads: any, while nobody changes the list of signatures (see smscollection.h). Ownership: plain values.
#pragma once
#include <wx/string.h>

#include <cstdint>
#include <map>
#include <vector>

#include "orvcore/smscollection.h"
#include "tolbase/export.h"
#include "tolbase/types.h"

// A fingerprint of known origin.
struct OrvSocialSample {
    // The platform, compared without case and without what is no letter or digit; its beginning is enough ("google" for
    // "Google+"). "none", or a text that begins with "none:", stands for a file that no platform has touched.
    wxString group;
    wxString source;  // the collection that the file belongs to; may be empty
    wxString fileId;  // as the list of signatures has it; may be empty
    std::vector<int> feature;
};

// What became of the samples of one group.
struct OrvSocialEvaluationRow {
    wxString group;  // the platform's name as the list has it, or the group as it was given
    bool isPlatform = false;
    uint64_t samples = 0;
    uint64_t notClassified = 0;
    uint64_t right = 0;                  // the platform that was named first is the group's
    uint64_t rightAmong = 0;             // the group's platform is among those named, first or not
    std::map<wxString, uint64_t> named;  // how often each platform was named first
};

struct ORV_API OrvSocialEvaluation {
    std::vector<OrvSocialEvaluationRow> rows;  // platforms first, each kind by name
    uint64_t signatures = 0;                   // in the list
    uint64_t leftOut = 0;                      // signatures that were left out of at least one search

    // Adds the samples of another run; `signatures` becomes the larger of the two, `leftOut` the sum.
    void Add(OrvSocialEvaluation const& other);

    // Over all samples that no platform has touched: how many there are and how many a platform was named for.
    uint64_t GetNegatives() const;
    uint64_t GetFalsePositives() const;
    // Header row; then group, samples, right, share, right among several, share, not classified, share.
    VecVecString GetSummary() const;
    // Header row; then, for each group, how often each platform was named first, and how often none.
    VecVecString GetConfusion() const;
};

// Reads a tab-separated text in UTF-8 whose first line names the columns; lines that begin with "#" are remarks.
// Columns: "group", "source" and "file_id" (these two may be missing), and either "file" (a path; relative ones begin
// at the table's folder), or "width" with the further 47 numbers of the vector in the columns behind it. Others are
// passed over. Throws TolException (code 82) that tells the line for what can't be read, and what the readers of a file
// throw. With `failures`, a row whose file can't be had is left out and told there, one text a row, and the others are
// read.
ORV_API std::vector<OrvSocialSample> OrvLoadSocialSamples(wxString const& path, VecString* failures = nullptr);

// Runs the classifier on each sample. With `leaveSourceOut`, a sample is compared with no signature of its own source:
// neither one whose file is among the samples of that source, nor a compiled one that is modelled on such a file.
// Ranges and largest sides are then those of the remaining signatures. Without it, only the file itself is left out.
ORV_API OrvSocialEvaluation OrvEvaluateSocialClassifier(std::vector<OrvSocialSample> const& samples,
                                                        SMSCollection const& collection, bool leaveSourceOut = true,
                                                        unsigned int k = 3, double threshold = 0.99);
// The same with a list of signatures that need not be the collection's.
ORV_API OrvSocialEvaluation OrvEvaluateSocialClassifier(std::vector<OrvSocialSample> const& samples,
                                                        std::vector<SocialMediaSignature> const& list,
                                                        bool leaveSourceOut = true, unsigned int k = 3,
                                                        double threshold = 0.99);
