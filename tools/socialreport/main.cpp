// SPDX-License-Identifier: Apache-2.0
// Prints how often the classifier of social platforms is right: socialreport LABELS.tsv [--shared-sources]
#include <wx/init.h>

#include <cstdio>
#include <exception>
#include <string>

#include "orvcore/socialevaluation.h"
#include "orvcore/tablewriter.h"

int main(int argc, char** argv) {
    wxInitializer const initializer;
    if (argc < 2) {
        std::fputs("socialreport LABELS.tsv [--shared-sources]\n", stderr);
        return 2;
    }
    try {
        bool const leaveSourceOut = argc < 3 || std::string(argv[2]) != "--shared-sources";
        SMSCollection collection;
        collection.LoadInternalSignatures();
        OrvSocialEvaluation const evaluation =
            OrvEvaluateSocialClassifier(OrvLoadSocialSamples(wxString::FromUTF8(argv[1])), collection, leaveSourceOut);
        std::fputs(FormatTable(evaluation.GetSummary()).utf8_str(), stdout);
        std::fputs(("\n" + FormatTable(evaluation.GetConfusion())).utf8_str(), stdout);
        std::printf("\nfrom no platform: %llu, said to be from one: %llu\n",
                    static_cast<unsigned long long>(evaluation.GetNegatives()),
                    static_cast<unsigned long long>(evaluation.GetFalsePositives()));
        return 0;
    } catch (std::exception const& error) {
        std::fprintf(stderr, "socialreport: %s\n", error.what());
        return 1;
    }
}
