// SPDX-License-Identifier: Apache-2.0
// Makes the compiled table of platform samples. Runs during the build:
//   makesocial table <data folder> <output>    constant arrays
//   makesocial labels <data folder> <output>   all samples, for `orvelle social --evaluate`
//   makesocial counts <data folder> <output>   how many records of each platform are measured and modelled
// Samples that contradict themselves, or a table that isn't as social_groups.tsv wants it, end the build.
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>

#include "tools/makesocial/samples.h"

namespace {

void Check(makesocial::Data const& data, std::vector<makesocial::Sample> const& records) {
    size_t place = 0;
    for (makesocial::Group const& group : data.groups) {
        for (int i = 0; i < group.records; ++i, ++place) {
            if (place >= records.size() || records[place].group != group.name || !group.Admits(records[place])) {
                throw std::runtime_error(group.name + ": not as many records, or another size, than wanted");
            }
        }
    }
    if (place != records.size()) throw std::runtime_error("more records than wanted");
}

int Run(std::vector<std::string> const& arguments) {
    if (arguments.size() != 3) {
        std::cerr << "makesocial table|labels|counts <data folder> <output>\n";
        return 2;
    }
    makesocial::Data const data = makesocial::ReadData(arguments[1]);
    std::vector<makesocial::Sample> const records = makesocial::MakeTable(data);
    Check(data, records);
    std::ostringstream text;
    if (arguments[0] == "table") {
        makesocial::WriteTable(data, records, text);
    } else if (arguments[0] == "labels") {
        makesocial::WriteLabels(data, text);
    } else if (arguments[0] == "counts") {
        makesocial::WriteCounts(data, records, text);
    } else {
        throw std::runtime_error("unknown word " + arguments[0]);
    }
    std::ofstream out(arguments[2], std::ios::binary | std::ios::trunc);
    out << text.str();
    out.close();
    if (!out) throw std::runtime_error("can't write " + arguments[2]);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (std::exception const& error) {
        std::cerr << "makesocial: " << error.what() << "\n";
        return 1;
    }
}
