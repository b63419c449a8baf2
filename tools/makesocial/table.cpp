// SPDX-License-Identifier: Apache-2.0
// The whole table, group after group.
#include <algorithm>
#include <tuple>

#include "tools/makesocial/nearness.h"
#include "tools/makesocial/samples.h"

namespace makesocial {

namespace {

bool HasSide(std::vector<Sample> const& samples, int side) {
    return std::any_of(samples.begin(), samples.end(), [&](Sample const& one) { return one.LongerSide() == side; });
}

void AddGroup(Data const& data, Group const& group, Nearness& nearness, std::vector<Sample> measured,
              std::vector<Sample>& table) {
    auto const wanted = static_cast<size_t>(group.records);
    Modeller modeller(data, group, nearness);
    modeller.AddBeyond(static_cast<size_t>(group.beyond));
    for (int const side : {group.least, group.greatest}) {
        if (!HasSide(measured, side) && !HasSide(modeller.GetRecords(), side)) modeller.AddWithSide(side);
    }
    size_t const room = wanted - modeller.GetRecords().size();
    if (measured.size() > room) measured.resize(room);
    modeller.Fill(room - measured.size());
    // A search names the last of equals: the measured ones stand last, the newest at the end.
    std::sort(measured.begin(), measured.end(),
              [](Sample const& a, Sample const& b) { return std::tie(a.date, a.file) < std::tie(b.date, b.file); });
    table.insert(table.end(), modeller.GetRecords().begin(), modeller.GetRecords().end());
    table.insert(table.end(), measured.begin(), measured.end());
}

}  // namespace

std::vector<Sample> MakeTable(Data const& data) {
    Nearness nearness(data);
    std::vector<Sample> table;
    std::vector<std::vector<Sample>> drawn;
    std::vector<Sample> all;
    for (Group const& group : data.groups) {
        drawn.push_back(Draw(data, group, nearness, static_cast<size_t>(group.records - group.beyond)));
        all.insert(all.end(), drawn.back().begin(), drawn.back().end());
    }
    nearness.Spare(all);
    for (size_t n = 0; n < data.groups.size(); ++n)
        AddGroup(data, data.groups[n], nearness, std::move(drawn[n]), table);
    return table;
}

}  // namespace makesocial
