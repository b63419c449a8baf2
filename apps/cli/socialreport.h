// SPDX-License-Identifier: Apache-2.0
// How often the classifier of platforms is right, in every format.
#pragma once

#include <string>

#include "apps/cli/output.h"
#include "orvcore/socialevaluation.h"

namespace cli {

struct SocialReport {
    std::string labels;  // the table of samples, as given
    std::string labelsSha256;
    bool leaveSourceOut = true;
    uint64_t samples = 0;
    OrvSocialEvaluation evaluation;
};

// text and html: summary, confusion matrix, totals. csv, tsv, ssv: both tables side by side, a line for each group.
// json: one object; jsonl: an object for each group.
void WriteSocialReport(SocialReport const& report, std::string const& format, Output& output);

}  // namespace cli
