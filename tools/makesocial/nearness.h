// SPDX-License-Identifier: Apache-2.0
// How like a picture's numbers are to the samples of each platform, by the classifier's own measure.
#pragma once
#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <tuple>
#include <vector>

#include "tools/makesocial/samples.h"

namespace makesocial {

constexpr size_t kElements = 48;
// The classifier names a platform where the mean similarity of so many nearest records is at least this.
constexpr size_t kNeighbours = 3;
constexpr double kThreshold = 0.99;

// Similarities from 0 to 1.
struct Near {
    double own = 0;      // to samples of the same platform
    double foreign = 0;  // to samples of the other platform that comes nearest
    double none = 0;     // to the nearest file that no platform has touched
    double spared = 0;   // to the nearest of those that Spare was asked to spare

    // Samples of another platform come nearer.
    bool IsContested() const { return own < foreign; }
};

// The places of files that could be taken for a sample: its platform's of other collections, by their place among the
// measured ones, and those from no platform, by theirs after all the measured ones.
struct Alike {
    std::vector<size_t> own, none;
};

// Only samples of other collections than the questioned one's count, so that pictures of one person or one site don't
// vouch for each other. A platform that was measured often has more odd samples too: of each platform's the n-th
// nearest counts, n being one for every 500 samples that there are.
class Nearness {
public:
    explicit Nearness(Data const& data);

    // From now on `Near::spared` is about the files from no platform that these records alone don't claim: which three
    // of them together are less than kThreshold like.
    void Spare(std::vector<Sample> const& records);
    Near const& Of(Sample const& sample);
    // A record outside of the scale would stretch it for all.
    bool IsWithinScale(Sample const& sample) const;
    Alike FindAlike(Sample const& sample) const;

private:
    using Direction = std::array<double, kElements>;
    // So many files at a time as a processor multiplies at once: the first elements of all, then the second, ...
    static constexpr size_t kTile = 8;
    using Tile = std::array<std::array<double, kTile>, kElements>;
    using Key = std::tuple<std::string, std::string, std::array<int, 8>, int>;

    Direction DirectionOf(Sample const& sample) const;
    // To each measured sample, then to each file from no platform.
    std::vector<double> Cosines(Sample const& sample) const;
    Near Measure(Sample const& sample) const;

    Data const& m_data;
    Direction m_least{}, m_span{};
    std::vector<Tile> m_tiles;
    size_t m_count = 0;                         // of files
    std::map<std::string, size_t> m_platforms;  // name to place in m_ranks
    std::vector<size_t> m_platformOf;           // of each measured sample
    std::vector<size_t> m_ranks;                // which of a platform's nearest counts
    std::vector<bool> m_isSpared;               // of each file from no platform
    std::map<Key, Near> m_known;
};

}  // namespace makesocial
