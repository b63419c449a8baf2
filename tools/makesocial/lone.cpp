// SPDX-License-Identifier: Apache-2.0
// The classifier's measure, for records among themselves.
#include <algorithm>
#include <cmath>

#include "tools/makesocial/samples.h"

namespace makesocial {

namespace {

constexpr size_t kElements = 48;
// Three neighbours at a mean of 0.99, less the record itself.
constexpr double kTwoOthers = 1.9702;

using Direction = std::array<double, kElements>;

// Each element from 0 to 1 over the whole table, then all to the length 1: the product of two is their cosine.
std::vector<Direction> Normalise(Data const& data, std::vector<Sample> const& table) {
    std::vector<Direction> directions;
    Direction least, greatest;
    least.fill(32000);
    greatest.fill(0);
    for (Sample const& sample : table) {
        Direction direction;
        auto const head = sample.Head();
        auto const& steps = data.tables[static_cast<size_t>(sample.table)];
        std::copy(steps.begin(), steps.end(), std::copy(head.begin(), head.end(), direction.begin()));
        for (size_t i = 0; i < kElements; ++i) {
            least[i] = std::min(least[i], direction[i]);
            greatest[i] = std::max(greatest[i], direction[i]);
        }
        directions.push_back(direction);
    }
    for (Direction& direction : directions) {
        double squares = 0;
        for (size_t i = 0; i < kElements; ++i) {
            if (least[i] != greatest[i]) direction[i] = (direction[i] - least[i]) / (greatest[i] - least[i]);
            squares += direction[i] * direction[i];
        }
        for (double& element : direction) element /= std::sqrt(squares);
    }
    return directions;
}

bool IsAtBound(Data const& data, Sample const& sample) {
    auto const group = std::find_if(data.groups.begin(), data.groups.end(),
                                    [&](Group const& one) { return one.name == sample.group; });
    return sample.LongerSide() == group->least || sample.LongerSide() == group->greatest;
}

}  // namespace

std::set<std::string> FindLone(Data const& data, std::vector<Sample> const& table) {
    std::vector<Direction> const directions = Normalise(data, table);
    std::set<std::string> lone;
    std::set<std::pair<std::string, int>> bounds;
    for (size_t n = 0; n < table.size(); ++n) {
        // One record with each bound has to stay.
        if (IsAtBound(data, table[n]) && bounds.insert({table[n].group, table[n].LongerSide()}).second) continue;
        double best = 0, second = 0;
        for (size_t m = 0; m < table.size() && best + second < kTwoOthers; ++m) {
            if (m == n || table[m].group != table[n].group) continue;
            double cosine = 0;
            for (size_t i = 0; i < kElements; ++i) cosine += directions[n][i] * directions[m][i];
            second = std::max(second, std::min(best, cosine));
            best = std::max(best, cosine);
        }
        if (best + second < kTwoOthers) lone.insert(table[n].file.substr(table[n].isModelled ? 16 : 0, 16));
    }
    return lone;
}

}  // namespace makesocial
