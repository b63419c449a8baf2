// SPDX-License-Identifier: Apache-2.0
// The search and the decision behind the classifier of social platforms, over any list of signatures.
//
// Threads: pure but for BestMatches, which one thread uses at a time. Private to this library.
#pragma once
#include <wx/string.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <vector>

#include "orvcore/socialmediasignature.h"

namespace sms {

using Ranges = std::vector<std::vector<int>>;  // minimum and maximum of each element
using LargestSides = std::map<wxString, uint64_t>;

// How many neighbours a decision looks at, whatever it then counts.
constexpr size_t kSearched = 1000;

struct Match {
    double similarity = 0.0;
    size_t index = 0;  // in the list
};

// The first is worse: less alike, or as much and earlier in the list.
inline bool IsWorse(Match const& a, Match const& b) {
    return a.similarity != b.similarity ? a.similarity < b.similarity : a.index < b.index;
}

// Keeps the best `count` of what is offered, starting with as many matches of no likeness at the index 0. A match gets
// in only if it is truly more alike than the worst one held; of equally bad ones the earliest in the list leaves.
class BestMatches {
public:
    explicit BestMatches(size_t count) : m_heap(count) {}

    void Offer(Match const& match);
    // Best first; empties what is held.
    std::vector<Match> Take();

private:
    std::vector<Match> m_heap;  // its front is the worst
};

// Cosine of the normalised vectors, against one questioned vector.
class Cosine {
public:
    Cosine(std::vector<int> const& questioned, Ranges const& ranges);

    // Not a number where one of them has no length. Compares as many elements as both have.
    double operator()(std::vector<int> const& element) const;

private:
    std::vector<double> m_minimum;
    std::vector<double> m_span;
    std::vector<double> m_questioned;
    std::vector<double> m_squares;  // running sums of the questioned one's squares
};

// Widens the ranges to what the list holds, making those that are missing.
void WidenRanges(std::vector<SocialMediaSignature> const& list, Ranges& ranges);
// Raises the largest side of each platform to what the list holds.
void RaiseSides(std::vector<SocialMediaSignature> const& list, LargestSides& sides);

// The `count` best, best first; nothing for an empty list. Similarities are rounded to single precision.
std::vector<Match> FindBest(std::vector<int> const& feature, std::vector<SocialMediaSignature> const& list,
                            Ranges const& ranges, size_t count);

struct Decision {
    bool classified = false;
    std::vector<Match> reported;  // one for each platform
};

// Decides on what FindBest gave for `feature`.
Decision Decide(std::vector<int> const& feature, std::vector<Match> const& best,
                std::vector<SocialMediaSignature> const& list, LargestSides const& sides, unsigned int k,
                double threshold);

}  // namespace sms
