// SPDX-License-Identifier: Apache-2.0
#include "tools/makesocial/samples.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <set>
#include <stdexcept>

#include "tools/maketables/tsv.h"

namespace makesocial {

namespace {

using maketables::Tsv;

int ReadSteps(Tsv const& tsv, size_t row, std::string const& column, size_t count, int* to) {
    std::vector<std::string> const steps = maketables::Split(tsv.Cell(row, column), ',');
    if (steps.size() != count) tsv.Fail(row, "another number of steps in " + column);
    for (std::string const& step : steps) {
        *to = std::stoi(step);
        if (*to < 0 || *to > 255) tsv.Fail(row, "no quantisation step: " + step);
        ++to;
    }
    return static_cast<int>(count);
}

std::vector<Table> ReadTables(std::string const& path) {
    Tsv const tsv(path);
    std::vector<Table> tables;
    for (size_t row = 0; row < tsv.RowCount(); ++row) {
        if (tsv.Number(row, "table") != static_cast<int>(row) + 1) tsv.Fail(row, "not the next number");
        Table table{};
        ReadSteps(tsv, row, "luminance", 32, table.data());
        ReadSteps(tsv, row, "chrominance", 8, table.data() + 32);
        tables.push_back(table);
    }
    return tables;
}

bool IsHexadecimal(std::string const& text) {
    return text.size() == 32 && text.find_first_not_of("0123456789abcdef") == std::string::npos;
}

bool IsDate(std::string const& text) {
    if (text.size() != 10 || text[4] != '-' || text[7] != '-') return false;
    return text.find_first_not_of("0123456789-") == std::string::npos;
}

Sample ReadProfile(Tsv const& tsv, size_t row, size_t tableCount) {
    Sample sample;
    sample.group = tsv.Cell(row, "group");
    sample.date = tsv.Cell(row, "date");
    sample.exif = tsv.Number(row, "exif");
    sample.markers = tsv.Number(row, "markers");
    sample.sampling = tsv.Number(row, "sampling");
    sample.table = tsv.Number(row, "table") - 1;
    if (!IsDate(sample.date)) tsv.Fail(row, "no date");
    if (sample.table < 0 || sample.table >= static_cast<int>(tableCount)) tsv.Fail(row, "no such table");
    // SOI, DQT, SOF, SOS and EOI are the least that a JPEG has (Huffman tables may be left out of an abbreviated one).
    if (sample.markers < 5 || sample.markers > 65535 || sample.exif < 0) tsv.Fail(row, "counts that no file has");
    if (sample.sampling < 0 || sample.sampling > 44) tsv.Fail(row, "no sampling");
    return sample;
}

std::vector<Sample> ReadSamples(std::string const& path, size_t tableCount) {
    Tsv const tsv(path);
    std::vector<Sample> samples;
    std::set<std::string> files;
    for (size_t row = 0; row < tsv.RowCount(); ++row) {
        Sample sample = ReadProfile(tsv, row, tableCount);
        sample.confidence = tsv.Cell(row, "confidence");
        sample.collection = tsv.Cell(row, "collection");
        sample.file = tsv.Cell(row, "file");
        sample.width = tsv.Number(row, "width");
        sample.height = tsv.Number(row, "height");
        sample.thumbnailWidth = tsv.Number(row, "thumb_width");
        sample.thumbnailHeight = tsv.Number(row, "thumb_height");
        if (!IsHexadecimal(sample.file) || !files.insert(sample.file).second)
            tsv.Fail(row, "no file, or one told twice");
        if (sample.width < 1 || sample.height < 1 || sample.LongerSide() > 65535) tsv.Fail(row, "no size of a JPEG");
        samples.push_back(std::move(sample));
    }
    return samples;
}

std::vector<Sample> ReadPublished(std::string const& path, size_t tableCount) {
    Tsv const tsv(path);
    std::vector<Sample> profiles;
    for (size_t row = 0; row < tsv.RowCount(); ++row) profiles.push_back(ReadProfile(tsv, row, tableCount));
    return profiles;
}

std::vector<Group> ReadGroups(std::string const& path) {
    Tsv const tsv(path);
    std::vector<Group> groups;
    for (size_t row = 0; row < tsv.RowCount(); ++row) {
        groups.push_back({tsv.Cell(row, "group"), tsv.Number(row, "records"), tsv.Number(row, "least"),
                          tsv.Number(row, "greatest")});
        if (row > 0 && !(groups[row - 1].name < groups[row].name)) tsv.Fail(row, "not in the order of the names");
    }
    return groups;
}

// Samples of one profile, collection and year, the sizes that are there once first.
std::vector<Sample const*> SizesFirst(std::vector<Sample const*> samples) {
    std::sort(samples.begin(), samples.end(), [](auto const* a, auto const* b) { return a->file < b->file; });
    std::map<std::pair<int, int>, int> seen;
    std::vector<std::pair<int, Sample const*>> ranked;
    for (Sample const* sample : samples) ranked.emplace_back(seen[{sample->width, sample->height}]++, sample);
    std::stable_sort(ranked.begin(), ranked.end(), [](auto const& a, auto const& b) { return a.first < b.first; });
    std::vector<Sample const*> result;
    for (auto const& one : ranked) result.push_back(one.second);
    return result;
}

// One of each collection and year in turn.
std::vector<Sample const*> CollectionsInTurn(std::vector<Sample const*> const& samples) {
    std::map<std::pair<std::string, std::string>, std::vector<Sample const*>> strata;
    for (Sample const* sample : samples) strata[{sample->collection, sample->date.substr(0, 4)}].push_back(sample);
    for (auto& stratum : strata) stratum.second = SizesFirst(std::move(stratum.second));
    std::vector<Sample const*> result;
    for (size_t turn = 0; result.size() < samples.size(); ++turn) {
        for (auto const& [key, stratum] : strata) {
            if (turn < stratum.size()) result.push_back(stratum[turn]);
        }
    }
    return result;
}

// Takes one of each profile in turn until there are `count`.
void TakeInTurn(std::vector<Sample const*> const& samples, size_t count, std::vector<Sample>& taken) {
    std::map<Profile, std::vector<Sample const*>> profiles;
    for (Sample const* sample : samples) profiles[sample->GetProfile()].push_back(sample);
    for (auto& profile : profiles) profile.second = CollectionsInTurn(profile.second);
    bool hasMore = true;
    for (size_t turn = 0; hasMore && taken.size() < count; ++turn) {
        hasMore = false;
        for (auto const& [key, ranked] : profiles) {
            if (turn >= ranked.size() || taken.size() >= count) continue;
            taken.push_back(*ranked[turn]);
            hasMore = true;
        }
    }
}

}  // namespace

Data ReadData(std::string const& folder) {
    Data data;
    data.groups = ReadGroups(folder + "/social_groups.tsv");
    data.tables = ReadTables(folder + "/social_tables.tsv");
    data.measured = ReadSamples(folder + "/social_measured.tsv", data.tables.size());
    data.others = ReadSamples(folder + "/social_others.tsv", data.tables.size());
    data.published = ReadPublished(folder + "/social_published.tsv", data.tables.size());
    return data;
}

bool IsUsable(Data const& data, Group const& group, Sample const& sample) {
    Table const& table = data.tables[static_cast<size_t>(sample.table)];
    return sample.group == group.name && group.Admits(sample) && sample.markers <= kMostMarkers &&
           std::accumulate(table.begin(), table.end(), 0) <= kCoarsest &&
           *std::min_element(table.begin(), table.end()) > 0;
}

std::vector<Sample> Thin(Data const& data, Group const& group, int count) {
    std::vector<Sample> taken;
    std::set<std::string> bounds;
    for (int const side : {group.least, group.greatest}) {
        auto const found = std::find_if(data.measured.begin(), data.measured.end(), [&](Sample const& one) {
            return IsUsable(data, group, one) && one.LongerSide() == side;
        });
        if (found == data.measured.end()) continue;
        taken.push_back(*found);
        bounds.insert(found->file);
    }
    std::vector<Sample const*> samples;
    for (Sample const& sample : data.measured) {
        if (IsUsable(data, group, sample) && bounds.count(sample.file) == 0) samples.push_back(&sample);
    }
    TakeInTurn(samples, static_cast<size_t>(count), taken);
    return taken;
}

int CountToModel(Data const& data, Group const& group) {
    int admitted = 0;
    bool hasLeast = false;
    bool hasGreatest = false;
    for (Sample const& sample : data.measured) {
        if (!IsUsable(data, group, sample)) continue;
        ++admitted;
        hasLeast = hasLeast || sample.LongerSide() == group.least;
        hasGreatest = hasGreatest || sample.LongerSide() == group.greatest;
    }
    return std::max(group.records - admitted, (hasLeast ? 0 : 1) + (hasGreatest ? 0 : 1));
}

std::vector<Sample> MakeGroups(Data const& data) {
    std::vector<Sample> table;
    for (Group const& group : data.groups) {
        int const toModel = CountToModel(data, group);
        std::vector<Sample> measured = Thin(data, group, group.records - toModel);
        std::vector<Sample> const modelled =
            Model(data, group, measured, group.records - static_cast<int>(measured.size()));
        // A search names the last of equals: the measured ones stand last, the newest at the end.
        std::sort(measured.begin(), measured.end(),
                  [](Sample const& a, Sample const& b) { return std::tie(a.date, a.file) < std::tie(b.date, b.file); });
        table.insert(table.end(), modelled.begin(), modelled.end());
        table.insert(table.end(), measured.begin(), measured.end());
    }
    return table;
}

std::vector<Sample> MakeTable(Data data) {
    for (;;) {
        std::vector<Sample> table = MakeGroups(data);
        std::set<std::string> const lone = FindLone(data, table);
        if (lone.empty()) return table;
        size_t const before = data.measured.size();
        auto const isLone = [&](Sample const& one) { return lone.count(one.file.substr(0, 16)) != 0; };
        data.measured.erase(std::remove_if(data.measured.begin(), data.measured.end(), isLone), data.measured.end());
        if (data.measured.size() == before) throw std::runtime_error("a record that no other is like");
    }
}

}  // namespace makesocial
