// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <numeric>
#include <utility>

#include "tools/maketables/tsv.h"

namespace maketables {

namespace {

std::string Lower(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    }
    return text;
}

std::pair<int, int> ReadSize(Tsv const& file, size_t row, std::string const& text) {
    const std::vector<std::string> sides = Split(text, 'x');
    if (sides.size() != 2) file.Fail(row, "a size is two numbers joined by an x");
    const int a = std::stoi(sides[0]);
    const int b = std::stoi(sides[1]);
    return {std::max(a, b), std::min(a, b)};
}

}  // namespace

void MakeCameraSizes(std::string const& path, std::ostream& out) {
    const Tsv file(path);
    std::vector<size_t> order(file.RowCount());
    std::iota(order.begin(), order.end(), size_t{0});
    const auto key = [&](size_t row) {
        return std::pair(Lower(file.Cell(row, "make")), Lower(file.Cell(row, "model")));
    };
    std::sort(order.begin(), order.end(), [&](size_t a, size_t b) { return key(a) < key(b); });
    Pool pool;
    std::vector<std::pair<int, int>> lists;
    out << "// Made from data/; not to be edited.\n#include \"tolcore/camera_sizetable.h\"\n";
    out << "extern const PackedCameraSize kCameraSizes[] = {\n";
    for (size_t i = 0; i < order.size(); ++i) {
        const size_t row = order[i];
        if (i > 0 && key(order[i - 1]) == key(row)) file.Fail(row, "a model that is there already");
        const int width = file.Number(row, "width");
        const int height = file.Number(row, "height");
        const size_t first = lists.size();
        std::string const& sizes = file.Cell(row, "all_sizes");
        for (std::string const& size : sizes.empty() ? std::vector<std::string>() : Split(sizes, ' ')) {
            lists.push_back(ReadSize(file, row, size));
        }
        // Only a source that can be named makes a list of sizes a whole one.
        if (lists.size() != first && file.Cell(row, "reference").empty()) file.Fail(row, "all sizes, but no reference");
        out << "{" << pool.Offset(file.Cell(row, "make")) << "," << pool.Offset(file.Cell(row, "model")) << ","
            << pool.Offset(file.Cell(row, "reference")) << "," << std::max(width, height) << ","
            << std::min(width, height) << "," << first << "," << lists.size() - first << "},\n";
    }
    out << "};\nextern const size_t kCameraSizeCount = " << order.size() << ";\n";
    out << "extern const PackedResolution kCameraSizeLists[] = {\n";
    for (auto const& size : lists) out << "{" << size.first << "," << size.second << "},\n";
    out << "{0,0}};\nextern const char kCameraSizePool[] =\n";
    pool.Write(out);
    out << ";\n";
}

}  // namespace maketables
