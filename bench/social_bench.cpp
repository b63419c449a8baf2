// SPDX-License-Identifier: Apache-2.0
// Measures the search for the most similar platform samples against its plainest form, on the compiled table.
//   orvelle-social-bench
#include <wx/init.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

#include "bench/process.h"
#include "orvcore/smscollection.h"
#include "tests/support/plainsearch.h"

namespace {

constexpr size_t kSearched = 1000;

template <class Work>
double Milliseconds(Work const& work) {
    auto const start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> times) {
    std::nth_element(times.begin(), times.begin() + static_cast<long>(times.size() / 2), times.end());
    return times[times.size() / 2];
}

}  // namespace

int main() {
    wxInitializer const initializer;
    SMSCollection collection;
    double const loading = Milliseconds([&] { collection.LoadInternalSignatures(); });
    std::vector<std::vector<int>> vectors;
    for (SocialMediaSignature const& signature : collection.GetSignatures()) vectors.push_back(signature.GetFeature());
    auto const ranges = support::PlainRanges(vectors);
    std::vector<double> classify, search, plain;
    for (size_t n = 0; n < vectors.size(); n += 607) {
        std::vector<int> const& questioned = vectors[n];
        int status = 0;
        size_t found = 0;
        for (int repeat = 0; repeat < 5; ++repeat) {
            classify.push_back(Milliseconds([&] { status += collection.ClassifyFeature(questioned, 3, 0.99).status; }));
            search.push_back(
                Milliseconds([&] { found = collection.FindKnns(questioned, kSearched).neighbours.size(); }));
        }
        plain.push_back(
            Milliseconds([&] { found += support::PlainSearch(questioned, vectors, ranges, kSearched).size(); }));
        if (found != 2 * kSearched || status < 0) return 1;
    }
    double const ours = Median(classify), theirs = Median(plain);
    bench::NoteRatio("social platforms: classification to the plain search", ours / theirs);
    std::printf("load the compiled table                 %8.3f ms\n", loading);
    std::printf("classify one picture                    %8.3f ms  (wanted: at most 3)\n", ours);
    std::printf("find its 1000 neighbours, with copies   %8.3f ms\n", Median(search));
    std::printf("the plain search alone                  %8.3f ms\n", theirs);
    std::printf("plain search to classification          %8.1f times (wanted: at least 20)\n", theirs / ours);
    return 0;
}
