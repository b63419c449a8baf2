// SPDX-License-Identifier: Apache-2.0
// The samples of data/social_*.tsv, and what of them goes into the compiled table.
#pragma once
#include <array>
#include <memory>
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
    bool isCovered = false;                    // how measured samples are drawn, see Draw
    int beyond = 0;                            // how many records may be modelled on files of other sizes

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

// May the sample's encoding stand in the table?
bool IsEncodingUsable(Data const& data, Sample const& sample);
// Its size too?
bool IsUsable(Data const& data, Group const& group, Sample const& sample);

class Nearness;

// Samples in the order in which they are drawn: one of each collection in turn, and within a collection one of each
// year and encoding, sizes that are there once first.
std::vector<Sample const*> InTurn(std::vector<Sample const*> const& samples);

// `count` of the group's measured samples, fewer if there are no more: one with the least side and one with the
// greatest if there are such, then in turn. Those that another platform's samples come nearer to than samples of their
// own from other collections come last, those first that other platforms' samples are farthest from. In a covered group
// the next one is always that which most samples from other collections are like that fewer than three of those drawn
// are like; files from no platform that are like it count against it, each 0.6 of one.
std::vector<Sample> Draw(Data const& data, Group const& group, Nearness& nearness, size_t count);

// Makes records that are modelled on the group's measured samples or on its published profile, each unlike every
// measured sample and every other record. The samples have to outlive it.
class Modeller {
public:
    Modeller(Data const& data, Group const& group, Nearness& nearness);
    ~Modeller();
    Modeller(Modeller const&) = delete;
    Modeller& operator=(Modeller const&) = delete;

    // Up to `count` records on files of other sizes than the group admits, reduced (or enlarged) to its limits.
    void AddBeyond(size_t count);
    // One lying and one upright with this longer side.
    void AddWithSide(int side);
    // As many as are still wanted, on all measured files.
    void Fill(size_t count);
    std::vector<Sample> const& GetRecords() const;

private:
    class Maker;
    std::unique_ptr<Maker> m_maker;
};

// All records in the order of the table.
std::vector<Sample> MakeTable(Data const& data);

void WriteTable(Data const& data, std::vector<Sample> const& records, std::ostream& out);
// The samples with their numbers in full, as `orvelle social --evaluate` reads them.
void WriteLabels(Data const& data, std::ostream& out);
// How many records of each group are measured and modelled.
void WriteCounts(Data const& data, std::vector<Sample> const& records, std::ostream& out);

}  // namespace makesocial
