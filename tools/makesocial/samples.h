// SPDX-License-Identifier: Apache-2.0
// The samples of data/social_*.tsv, and what of them goes into the compiled table.
#pragma once
#include <array>
#include <ostream>
#include <set>
#include <string>
#include <tuple>
#include <vector>

namespace makesocial {

// What an encoder decides, whatever the picture's size: exif, markers, sampling, table.
using Profile = std::tuple<int, int, int, int>;

struct Sample {
    std::string group, confidence, collection, file, date;
    int width = 0, height = 0, thumbnailWidth = 0, thumbnailHeight = 0;
    int exif = 0, markers = 0;
    int sampling = 0;  // second digit times ten plus third digit of "4:2:0"
    int table = 0;     // index in Data::tables
    bool isModelled = false;

    int LongerSide() const { return width > height ? width : height; }
    Profile GetProfile() const { return {exif, markers, sampling, table}; }
    std::array<int, 8> Head() const {
        return {width, height, thumbnailWidth, thumbnailHeight, exif, markers, sampling / 10, sampling % 10};
    }
};

struct Group {
    std::string name;
    int records = 0, least = 0, greatest = 0;  // sides: of the pictures' longer one

    bool Admits(Sample const& sample) const { return Admits(sample.LongerSide()); }
    bool Admits(int side) const { return side >= least && side <= greatest; }
};

using Table = std::array<int, 40>;

struct Data {
    std::vector<Group> groups;
    std::vector<Table> tables;
    std::vector<Sample> measured;
    std::vector<Sample> others;
    std::vector<Sample> published;  // profiles without a file: no size, no collection
};

// Reads the five files; throws std::runtime_error with file and line for what is wrong.
Data ReadData(std::string const& folder);

// The ranges by which all comparisons are scaled go from the least to the greatest number of the whole table, so that
// one odd record blurs all others: samples of coarser tables (by the sum of their 40 steps; IJG quality 65 has 777), or
// with more markers, stay out.
constexpr int kCoarsest = 777;
constexpr int kMostMarkers = 29;

// May the measured sample stand in the group, or stand model for records of it?
bool IsUsable(Data const& data, Group const& group, Sample const& sample);

// `count` of the group's measured samples, as different as can be: one with the least side and one with the greatest if
// there are such, then one of each profile in turn, and within a profile one of each collection and year.
std::vector<Sample> Thin(Data const& data, Group const& group, int count);

// `count` records that are modelled on the group's measured samples or on its published profile, each unlike every
// measured sample and every other. `chosen` are those that stand in the table already: where none of them has the
// group's least or greatest side, a modelled one has.
std::vector<Sample> Model(Data const& data, Group const& group, std::vector<Sample> const& chosen, int count);

// How many records of the group have to be modelled.
int CountToModel(Data const& data, Group const& group);

// The first halves of the identifiers of the files behind those records that aren't recognised by their own group: no
// two others of it are so like them that the classifier's mean of three is reached. The first record with a
// group's least side and with its greatest is passed over: one has to be.
std::set<std::string> FindLone(Data const& data, std::vector<Sample> const& table);

// All records in the order of the table, none of them lone, since such a one could never help to name a platform.
std::vector<Sample> MakeTable(Data data);

void WriteTable(Data const& data, std::vector<Sample> const& records, std::ostream& out);
// The samples with their numbers in full, as `orvelle social --evaluate` reads them.
void WriteLabels(Data const& data, std::ostream& out);
// How many records of each group are measured and modelled.
void WriteCounts(Data const& data, std::vector<Sample> const& records, std::ostream& out);

}  // namespace makesocial
