// SPDX-License-Identifier: Apache-2.0
// Makes constant arrays out of the readable tables in data/. Runs during the build:
//   maketables signatures <tables> <signatures> <output>
//   maketables cameras <sizes> <output>
// A table that contradicts itself (a digest that its tables don't have, a model told twice) ends the build.
#include <exception>
#include <fstream>
#include <iostream>
#include <sstream>

#include "tools/maketables/tsv.h"

namespace {

int Run(std::vector<std::string> const& arguments) {
    std::ostringstream text;
    if (arguments.size() == 4 && arguments[0] == "signatures") {
        maketables::MakeSignatures(arguments[1], arguments[2], text);
    } else if (arguments.size() == 3 && arguments[0] == "cameras") {
        maketables::MakeCameraSizes(arguments[1], text);
    } else {
        std::cerr << "maketables signatures <tables> <signatures> <output>\nmaketables cameras <sizes> <output>\n";
        return 2;
    }
    std::ofstream out(arguments.back(), std::ios::binary | std::ios::trunc);
    out << text.str();
    out.close();
    if (!out) {
        std::cerr << "maketables: can't write " << arguments.back() << "\n";
        return 1;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Run(std::vector<std::string>(argv + 1, argv + argc));
    } catch (std::exception const& error) {
        std::cerr << "maketables: " << error.what() << "\n";
        return 1;
    }
}
