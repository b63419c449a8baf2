// SPDX-License-Identifier: Apache-2.0
// Prints how often the classifier of social platforms is right:
//   socialreport LABELS.tsv [--shared-sources]         with the compiled table
//   socialreport LABELS.tsv --measured                 with its measured records alone
//   socialreport LABELS.tsv --made-anew DATA_FOLDER    with tables in whose making the questioned files had no part
#include <wx/init.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "orvcore/socialevaluation.h"
#include "orvcore/tablewriter.h"
#include "tools/makesocial/samples.h"

namespace {

using Samples = std::vector<OrvSocialSample>;

// Collections with so many samples are left out one by one, the others by tenths.
constexpr size_t kLarge = 100;
constexpr size_t kParts = 10;

std::vector<std::set<std::string>> Parts(Samples const& samples) {
    std::map<std::string, size_t> counts;
    for (OrvSocialSample const& sample : samples) ++counts[sample.source.utf8_string()];
    std::vector<std::set<std::string>> parts(kParts);
    size_t next = 0;
    for (auto const& [source, count] : counts) {
        if (count >= kLarge) {
            parts.push_back({source});
        } else {
            parts[next++ % kParts].insert(source);
        }
    }
    return parts;
}

std::vector<SocialMediaSignature> MakeList(makesocial::Data data, std::set<std::string> const& without) {
    for (std::vector<makesocial::Sample>* list : {&data.measured, &data.others}) {
        auto const isLeftOut = [&](makesocial::Sample const& one) { return without.count(one.collection) != 0; };
        list->erase(std::remove_if(list->begin(), list->end(), isLeftOut), list->end());
    }
    std::vector<SocialMediaSignature> signatures;
    for (makesocial::Sample const& record : makesocial::MakeTable(data)) {
        std::vector<int> numbers;
        for (int const number : record.Head()) numbers.push_back(number);
        for (int const step : data.tables[static_cast<size_t>(record.table)]) numbers.push_back(step);
        signatures.emplace_back(wxString::FromUTF8(record.file), wxString::FromUTF8(record.group),
                                wxString::FromUTF8(record.date), "-", numbers, SMS_Internal);
    }
    return signatures;
}

OrvSocialEvaluation EvaluateMadeAnew(Samples const& samples, std::string const& folder) {
    makesocial::Data const data = makesocial::ReadData(folder);
    OrvSocialEvaluation evaluation;
    for (std::set<std::string> const& part : Parts(samples)) {
        Samples questioned;
        for (OrvSocialSample const& sample : samples) {
            if (part.count(sample.source.utf8_string()) != 0) questioned.push_back(sample);
        }
        if (!questioned.empty()) evaluation.Add(OrvEvaluateSocialClassifier(questioned, MakeList(data, part)));
    }
    return evaluation;
}

OrvSocialEvaluation Evaluate(Samples const& samples, std::string const& word) {
    SMSCollection collection;
    collection.LoadInternalSignatures();
    std::vector<SocialMediaSignature> list = collection.GetSignatures();
    if (word == "--measured") {
        auto const isModelled = [](SocialMediaSignature const& one) {
            return one.GetFile().StartsWith("000000000000");
        };
        list.erase(std::remove_if(list.begin(), list.end(), isModelled), list.end());
    }
    return OrvEvaluateSocialClassifier(samples, list, word != "--shared-sources");
}

}  // namespace

int main(int argc, char** argv) {
    wxInitializer const initializer;
    std::string const word = argc < 3 ? "" : argv[2];
    bool const isMadeAnew = argc == 4 && word == "--made-anew";
    if (argc < 2 || (argc > 2 && !isMadeAnew && word != "--shared-sources" && word != "--measured")) {
        std::fputs("socialreport LABELS.tsv [--shared-sources | --measured | --made-anew DATA_FOLDER]\n", stderr);
        return 2;
    }
    try {
        Samples const samples = OrvLoadSocialSamples(wxString::FromUTF8(argv[1]));
        OrvSocialEvaluation const evaluation =
            isMadeAnew ? EvaluateMadeAnew(samples, argv[3]) : Evaluate(samples, word);
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
