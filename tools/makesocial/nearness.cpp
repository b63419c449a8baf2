// SPDX-License-Identifier: Apache-2.0
#include "tools/makesocial/nearness.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace makesocial {

namespace {

constexpr size_t kFilesPerRank = 500;

std::array<double, kElements> Numbers(Data const& data, Sample const& sample) {
    std::array<double, kElements> numbers;
    auto const head = sample.Head();
    auto const& steps = data.tables[static_cast<size_t>(sample.table)];
    std::copy(steps.begin(), steps.end(), std::copy(head.begin(), head.end(), numbers.begin()));
    return numbers;
}

// So that the order of additions can't decide anything.
double Rounded(double cosine) {
    return std::nearbyint(cosine * 1e9) / 1e9;
}

// The n best of what is offered.
class Best {
public:
    explicit Best(size_t count) : m_count(count) {}
    void Offer(double similarity) {
        if (m_heap.size() == m_count) {
            if (similarity <= m_heap.front()) return;
            std::pop_heap(m_heap.begin(), m_heap.end(), std::greater<>());
            m_heap.pop_back();
        }
        m_heap.push_back(similarity);
        std::push_heap(m_heap.begin(), m_heap.end(), std::greater<>());
    }
    double Last() const { return m_heap.size() < m_count ? 0 : Rounded(m_heap.front()); }

private:
    size_t m_count;
    std::vector<double> m_heap;
};

}  // namespace

Nearness::Nearness(Data const& data) : m_data(data) {
    Direction greatest{};
    m_least.fill(32000);
    std::vector<size_t> counts;
    for (Sample const& sample : data.measured) {
        auto const [found, isNew] = m_platforms.insert({sample.group, m_platforms.size()});
        if (isNew) counts.push_back(0);
        m_platformOf.push_back(found->second);
        ++counts[found->second];
        auto const group = std::find_if(data.groups.begin(), data.groups.end(),
                                        [&](Group const& one) { return one.name == sample.group; });
        if (group == data.groups.end() || !IsUsable(data, *group, sample)) continue;
        Direction const numbers = Numbers(data, sample);
        for (size_t i = 0; i < kElements; ++i) {
            m_least[i] = std::min(m_least[i], numbers[i]);
            greatest[i] = std::max(greatest[i], numbers[i]);
        }
    }
    // Each platform has records with its greatest side, lying and upright.
    for (Group const& group : data.groups) {
        for (size_t const side : {0, 1}) greatest[side] = std::max<double>(greatest[side], group.greatest);
    }
    for (size_t i = 0; i < kElements; ++i) {
        bool const isScaled = m_least[i] < greatest[i];
        m_span[i] = isScaled ? greatest[i] - m_least[i] : 1;
        if (!isScaled) m_least[i] = 0;
    }
    for (size_t const count : counts)
        m_ranks.push_back(std::max<size_t>(1, (count + kFilesPerRank / 2) / kFilesPerRank));
    m_count = data.measured.size() + data.others.size();
    m_isSpared.resize(data.others.size(), true);
    m_tiles.resize((m_count + kTile - 1) / kTile);
    for (size_t n = 0; n < m_count; ++n) {
        bool const isMeasured = n < data.measured.size();
        Direction const direction = DirectionOf(isMeasured ? data.measured[n] : data.others[n - data.measured.size()]);
        for (size_t i = 0; i < kElements; ++i) m_tiles[n / kTile][i][n % kTile] = direction[i];
    }
}

void Nearness::Spare(std::vector<Sample> const& records) {
    size_t const others = m_data.others.size();
    std::vector<std::array<double, kNeighbours>> best(others);
    for (Sample const& record : records) {
        std::vector<double> const cosines = Cosines(record);
        for (size_t n = 0; n < others; ++n) {
            double const cosine = Rounded(cosines[m_data.measured.size() + n]);
            auto& three = best[n];
            if (cosine <= three.back()) continue;
            three.back() = cosine;
            std::sort(three.begin(), three.end(), std::greater<>());
        }
    }
    for (size_t n = 0; n < others; ++n) {
        m_isSpared[n] = best[n][0] + best[n][1] + best[n][2] < kNeighbours * kThreshold;
    }
    m_known.clear();
}

std::vector<double> Nearness::Cosines(Sample const& sample) const {
    Direction const direction = DirectionOf(sample);
    std::vector<double> cosines;
    cosines.reserve(m_tiles.size() * kTile);
    for (Tile const& tile : m_tiles) {
        std::array<double, kTile> sums{};
        for (size_t i = 0; i < kElements; ++i) {
            for (size_t n = 0; n < kTile; ++n) sums[n] += direction[i] * tile[i][n];
        }
        cosines.insert(cosines.end(), sums.begin(), sums.end());
    }
    return cosines;
}

Nearness::Direction Nearness::DirectionOf(Sample const& sample) const {
    Direction direction = Numbers(m_data, sample);
    double squares = 0;
    for (size_t i = 0; i < kElements; ++i) {
        direction[i] = (direction[i] - m_least[i]) / m_span[i];
        squares += direction[i] * direction[i];
    }
    for (double& element : direction) element /= std::sqrt(squares);
    return direction;
}

Near Nearness::Measure(Sample const& sample) const {
    std::vector<double> const cosines = Cosines(sample);
    std::vector<Best> best;
    for (size_t const rank : m_ranks) best.emplace_back(rank);
    size_t const measured = m_data.measured.size();
    for (size_t n = 0; n < measured; ++n) {
        if (m_data.measured[n].collection != sample.collection) best[m_platformOf[n]].Offer(cosines[n]);
    }
    Near near;
    for (auto const& [name, place] : m_platforms) {
        double& to = name == sample.group ? near.own : near.foreign;
        to = std::max(to, best[place].Last());
    }
    for (size_t n = measured; n < m_count; ++n) {
        near.none = std::max(near.none, cosines[n]);
        if (m_isSpared[n - measured]) near.spared = std::max(near.spared, cosines[n]);
    }
    near.none = Rounded(near.none);
    near.spared = Rounded(near.spared);
    return near;
}

bool Nearness::IsWithinScale(Sample const& sample) const {
    Direction const numbers = Numbers(m_data, sample);
    for (size_t i = 0; i < kElements; ++i) {
        if (numbers[i] < m_least[i] || numbers[i] > m_least[i] + m_span[i]) return false;
    }
    return true;
}

Near const& Nearness::Of(Sample const& sample) {
    Key key{sample.group, sample.collection, sample.Head(), sample.table};
    auto const found = m_known.find(key);
    if (found != m_known.end()) return found->second;
    return m_known.emplace(std::move(key), Measure(sample)).first->second;
}

Alike Nearness::FindAlike(Sample const& sample) const {
    std::vector<double> const cosines = Cosines(sample);
    Alike alike;
    for (size_t n = 0; n < m_count; ++n) {
        if (Rounded(cosines[n]) < kThreshold) continue;
        if (n >= m_data.measured.size()) {
            alike.none.push_back(n);
        } else if (m_data.measured[n].group == sample.group && m_data.measured[n].collection != sample.collection) {
            alike.own.push_back(n);
        }
    }
    return alike;
}

}  // namespace makesocial
