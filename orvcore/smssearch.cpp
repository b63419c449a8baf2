// SPDX-License-Identifier: Apache-2.0
#include "orvcore/smssearch.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace sms {

namespace {

constexpr int kFirstMinimum = 32000;

// The longer side of the picture; a broken vector counts as a picture without size.
uint64_t LongerSide(std::vector<int> const& feature) {
    if (feature.size() <= SMS_FeatureHeight) return 0;
    int const side = std::max(feature[SMS_FeatureWidth], feature[SMS_FeatureHeight]);
    return side > 0 ? static_cast<uint64_t>(side) : 0;
}

bool IsBetter(Match const& a, Match const& b) {
    return IsWorse(b, a);
}

}  // namespace

void BestMatches::Offer(Match const& match) {
    if (m_heap.empty() || !(match.similarity > m_heap.front().similarity)) return;
    std::pop_heap(m_heap.begin(), m_heap.end(), IsBetter);
    m_heap.back() = match;
    std::push_heap(m_heap.begin(), m_heap.end(), IsBetter);
}

std::vector<Match> BestMatches::Take() {
    std::sort_heap(m_heap.begin(), m_heap.end(), IsBetter);
    return std::move(m_heap);
}

Cosine::Cosine(std::vector<int> const& questioned, Ranges const& ranges) {
    double squares = 0.0;
    for (size_t i = 0; i < questioned.size(); ++i) {
        bool const isScaled = i < ranges.size() && ranges[i][0] != ranges[i][1];
        double const minimum = isScaled ? ranges[i][0] : 0.0;
        double const span = isScaled ? static_cast<double>(ranges[i][1]) - ranges[i][0] : 1.0;
        double const value = (questioned[i] - minimum) / span;
        m_minimum.push_back(minimum);
        m_span.push_back(span);
        m_questioned.push_back(value);
        squares += value * value;
        m_squares.push_back(squares);
    }
}

double Cosine::operator()(std::vector<int> const& element) const {
    size_t const count = std::min(element.size(), m_questioned.size());
    double dot = 0.0;
    double squares = 0.0;
    for (size_t i = 0; i < count; ++i) {
        double const value = (element[i] - m_minimum[i]) / m_span[i];
        dot += m_questioned[i] * value;
        squares += value * value;
    }
    double const ownSquares = count == 0 ? 0.0 : m_squares[count - 1];
    return dot / (std::sqrt(squares) * std::sqrt(ownSquares));
}

void WidenRanges(std::vector<SocialMediaSignature> const& list, Ranges& ranges) {
    if (list.empty()) return;
    while (ranges.size() < list.front().GetFeature().size()) ranges.push_back({kFirstMinimum, 0});
    for (SocialMediaSignature const& signature : list) {
        std::vector<int> const& feature = signature.GetFeature();
        for (size_t i = 0; i < std::min(feature.size(), ranges.size()); ++i) {
            ranges[i][0] = std::min(ranges[i][0], feature[i]);
            ranges[i][1] = std::max(ranges[i][1], feature[i]);
        }
    }
}

void RaiseSides(std::vector<SocialMediaSignature> const& list, LargestSides& sides) {
    for (SocialMediaSignature const& signature : list) {
        uint64_t& side = sides[signature.GetSocialName()];
        side = std::max(side, LongerSide(signature.GetFeature()));
    }
}

std::vector<Match> FindBest(std::vector<int> const& feature, std::vector<SocialMediaSignature> const& list,
                            Ranges const& ranges, size_t count) {
    if (list.empty()) return {};
    Cosine const cosine(feature, ranges);
    BestMatches best(count);
    for (size_t n = 0; n < list.size(); ++n) best.Offer({cosine(list[n].GetFeature()), n});
    std::vector<Match> matches = best.Take();
    for (Match& match : matches) match.similarity = static_cast<float>(match.similarity);
    return matches;
}

Decision Decide(std::vector<int> const& feature, std::vector<Match> const& best,
                std::vector<SocialMediaSignature> const& list, LargestSides const& sides, unsigned int k,
                double threshold) {
    uint64_t const side = LongerSide(feature);
    std::vector<size_t> candidates;  // places in `best`
    for (size_t p = 0; p < best.size() && candidates.size() < kSearched; ++p) {
        auto const largest = sides.find(list[best[p].index].GetSocialName());
        if (largest != sides.end() && side <= largest->second) candidates.push_back(p);
    }
    double total = 0.0;
    for (size_t i = 0; i < std::min<size_t>(k, candidates.size()); ++i) total += best[candidates[i]].similarity;
    Decision decision;
    if (candidates.empty() || k * threshold > total) return decision;
    decision.classified = true;
    double const highest = best[candidates.front()].similarity;
    std::set<wxString> names;
    for (size_t i = 0; i < candidates.size(); ++i) {
        // Similarity by candidate, platform and signature by place among all neighbours: where the filter of sizes has
        // passed one over, they are of different signatures.
        double const similarity = best[candidates[i]].similarity;
        size_t const index = best[i].index;
        if (similarity == highest && names.insert(list[index].GetSocialName()).second) {
            decision.reported.push_back({similarity, index});
        }
    }
    return decision;
}

}  // namespace sms
