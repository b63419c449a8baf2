// SPDX-License-Identifier: Apache-2.0
// The search for the signatures most like a vector in its plainest form: an array that is sorted before every look at
// its worst element. Slow; what is faster has to give the same.
#pragma once
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>
#include <vector>

namespace support {

using PlainMatch = std::pair<double, std::size_t>;  // similarity, index

// Minimum and maximum of each element over the vectors; a maximum is at least 0, a minimum at most 32000.
inline std::vector<std::pair<int, int>> PlainRanges(std::vector<std::vector<int>> const& vectors) {
    std::vector<std::pair<int, int>> ranges(vectors.front().size(), {32000, 0});
    for (std::vector<int> const& vector : vectors) {
        for (std::size_t i = 0; i < vector.size(); ++i) {
            if (vector[i] < ranges[i].first) ranges[i].first = vector[i];
            if (vector[i] > ranges[i].second) ranges[i].second = vector[i];
        }
    }
    return ranges;
}

inline double PlainNormal(int x, std::pair<int, int> const& range) {
    double const minimum = range.first, maximum = range.second;
    return minimum != maximum ? (x - minimum) / (maximum - minimum) : x;
}

inline double PlainSimilarity(std::vector<int> const& q, std::vector<int> const& y,
                              std::vector<std::pair<int, int>> const& ranges) {
    double dot = 0, qq = 0, yy = 0;
    for (std::size_t i = 0; i < q.size(); ++i) {
        double const a = PlainNormal(q[i], ranges[i]), b = PlainNormal(y[i], ranges[i]);
        dot += a * b;
        qq += a * a;
        yy += b * b;
    }
    return dot / (std::sqrt(yy) * std::sqrt(qq));
}

// Best first, similarities in single precision.
inline std::vector<PlainMatch> PlainSearch(std::vector<int> const& q, std::vector<std::vector<int>> const& vectors,
                                           std::vector<std::pair<int, int>> const& ranges, std::size_t k) {
    std::vector<PlainMatch> best(k, PlainMatch{0.0, 0});
    for (std::size_t n = 0; n < vectors.size(); ++n) {
        double const similarity = PlainSimilarity(q, vectors[n], ranges);
        std::sort(best.begin(), best.end());
        if (similarity > best[0].first) best[0] = {similarity, n};
    }
    std::sort(best.begin(), best.end());
    std::reverse(best.begin(), best.end());
    for (PlainMatch& match : best) match.first = static_cast<float>(match.first);
    return best;
}

}  // namespace support
