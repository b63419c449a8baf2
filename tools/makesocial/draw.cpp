// SPDX-License-Identifier: Apache-2.0
// Which measured samples go into the table.
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>

#include "tools/makesocial/nearness.h"
#include "tools/makesocial/samples.h"

namespace makesocial {

namespace {

using Samples = std::vector<Sample const*>;

// Samples of one encoding, collection and year, the sizes that are there once first.
Samples SizesFirst(Samples samples) {
    std::sort(samples.begin(), samples.end(), [](auto const* a, auto const* b) { return a->file < b->file; });
    std::map<std::pair<int, int>, int> seen;
    std::vector<std::pair<int, Sample const*>> ranked;
    for (Sample const* sample : samples) ranked.emplace_back(seen[{sample->width, sample->height}]++, sample);
    std::stable_sort(ranked.begin(), ranked.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    Samples result;
    for (auto const& one : ranked) result.push_back(one.second);
    return result;
}

template <class Key>
Samples OneOfEachInTurn(std::map<Key, Samples> const& strata) {
    Samples result;
    bool hasMore = true;
    for (size_t turn = 0; hasMore; ++turn) {
        hasMore = false;
        for (auto const& [key, stratum] : strata) {
            if (turn >= stratum.size()) continue;
            result.push_back(stratum[turn]);
            hasMore = true;
        }
    }
    return result;
}

Samples InTurnOfOneCollection(Samples const& samples) {
    std::map<std::pair<std::string, Profile>, Samples> strata;
    for (Sample const* sample : samples) strata[{sample->date.substr(0, 4), sample->GetProfile()}].push_back(sample);
    for (auto& stratum : strata) stratum.second = SizesFirst(std::move(stratum.second));
    return OneOfEachInTurn(strata);
}

// See Draw: each time the one that adds most to what those drawn before it cover.
Samples ByCover(Samples const& samples, Nearness const& nearness) {
    constexpr double kNoneWeight = 0.6;  // of a file from no platform against one of the platform
    constexpr double kCovered = 0.01;    // what one that is covered already still counts
    std::vector<Alike> alike;
    for (Sample const* sample : samples) alike.push_back(nearness.FindAlike(*sample));
    std::map<size_t, size_t> covered;
    auto const worth = [&](size_t place) { return covered[place] < kNeighbours ? 1 : kCovered; };
    std::vector<bool> isDrawn(samples.size(), false);
    Samples drawn;
    while (drawn.size() < samples.size()) {
        size_t best = samples.size();
        double highest = 0;
        for (size_t n = 0; n < samples.size(); ++n) {
            if (isDrawn[n]) continue;
            double gain = 0;
            for (size_t const place : alike[n].own) gain += worth(place);
            for (size_t const place : alike[n].none) gain -= kNoneWeight * worth(place);
            if (best < samples.size() && gain <= highest) continue;
            best = n;
            highest = gain;
        }
        isDrawn[best] = true;
        drawn.push_back(samples[best]);
        for (size_t const place : alike[best].own) ++covered[place];
        for (size_t const place : alike[best].none) ++covered[place];
    }
    return drawn;
}

}  // namespace

Samples InTurn(Samples const& samples) {
    std::map<std::string, Samples> collections;
    for (Sample const* sample : samples) collections[sample->collection].push_back(sample);
    for (auto& collection : collections) collection.second = InTurnOfOneCollection(collection.second);
    return OneOfEachInTurn(collections);
}

std::vector<Sample> Draw(Data const& data, Group const& group, Nearness& nearness, size_t count) {
    Samples order;
    for (int const side : {group.least, group.greatest}) {
        auto const found = std::find_if(data.measured.begin(), data.measured.end(), [&](Sample const& one) {
            return IsUsable(data, group, one) && one.LongerSide() == side;
        });
        if (found != data.measured.end()) order.push_back(&*found);
    }
    std::set<Sample const*> const bounds(order.begin(), order.end());
    Samples own, contested;
    for (Sample const& sample : data.measured) {
        if (!IsUsable(data, group, sample) || bounds.count(&sample) != 0) continue;
        (nearness.Of(sample).IsContested() ? contested : own).push_back(&sample);
    }
    own = InTurn(own);
    std::stable_sort(contested.begin(), contested.end(), [&](Sample const* a, Sample const* b) {
        return nearness.Of(*a).foreign < nearness.Of(*b).foreign;
    });
    own.insert(own.end(), contested.begin(), contested.end());
    if (group.isCovered) own = ByCover(own, nearness);
    order.insert(order.end(), own.begin(), own.end());
    std::vector<Sample> drawn;
    for (size_t i = 0; i < std::min(count, order.size()); ++i) drawn.push_back(*order[i]);
    return drawn;
}

}  // namespace makesocial
