// SPDX-License-Identifier: Apache-2.0
#include "tools/makesocial/samples.h"

#include <algorithm>
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
                          tsv.Number(row, "greatest"), tsv.Cell(row, "draw") == "cover", tsv.Number(row, "beyond")});
        if (!groups.back().isCovered && tsv.Cell(row, "draw") != "turn") tsv.Fail(row, "no way to draw");
        if (row > 0 && !(groups[row - 1].name < groups[row].name)) tsv.Fail(row, "not in the order of the names");
    }
    return groups;
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

bool IsEncodingUsable(Data const& data, Sample const& sample) {
    Table const& table = data.tables[static_cast<size_t>(sample.table)];
    return sample.markers <= kMostMarkers && std::accumulate(table.begin(), table.end(), 0) <= kCoarsest &&
           *std::min_element(table.begin(), table.end()) > 0;
}

bool IsUsable(Data const& data, Group const& group, Sample const& sample) {
    return sample.group == group.name && group.Admits(sample) && IsEncodingUsable(data, sample);
}

}  // namespace makesocial
