// SPDX-License-Identifier: Apache-2.0
// The ".binary" files of plots: what is loaded is saved and loaded again as the same words.
#include <wx/ffile.h>

#include <cstring>
#include <memory>

#include "orvcore/filterplot.h"
#include "tests/fuzz/engine.h"
#include "tests/fuzz/target.h"

namespace fuzz {

namespace {

OrvFilterPlot const& AnyPlot() {
    for (OrvFilter* filter : Engine().GetFilters()) {
        if (auto const* plot = dynamic_cast<OrvFilterPlot const*>(filter)) return *plot;
    }
    Require(false, "there is a plot filter");
    std::abort();
}

// False if nothing can be saved.
bool Save(OrvPlotData const& data, std::string& words) {
    wxString text;
    double* buffer = nullptr;
    std::uint64_t bytes = 0;
    bool const saved = AnyPlot().SavePlotData(data, text, &buffer, &bytes);
    std::unique_ptr<double[]> const owned(buffer);
    Require(saved == (buffer != nullptr), "a save gives bytes");
    if (saved) words.assign(reinterpret_cast<char const*>(buffer), bytes);
    return saved;
}

bool Load(InputFile const& file, std::string const& bytes, OrvPlotData& data) {
    wxFFile opened(file.Hold(bytes), "rb");
    return AnyPlot().LoadPlotData(opened, data);
}

void Run(std::string const& bytes) {
    static InputFile const file("input.binary");
    OrvPlotData data;
    if (!Load(file, bytes, data)) {
        Require(data.x.empty() && data.y.empty(), "a bad file gives no points");
        return;
    }
    Require(data.x.empty() || data.y.size() == static_cast<size_t>(data.dim), "as many series as dim says");
    for (auto const& series : data.y) Require(series.size() == data.x.size(), "a value for each abscissa");
    std::string words;
    if (data.x.empty()) return;
    // The application sets the part that it shows.
    data.firstIndex = 0;
    data.lastIndex = data.x.size() - 1;
    if (!Save(data, words)) return;
    OrvPlotData again;
    Require(Load(file, words, again), "what is saved can be loaded");
    again.firstIndex = 0;
    again.lastIndex = again.x.empty() ? 0 : again.x.size() - 1;
    std::string second;
    Require(Save(again, second) && second == words, "a saved file is read as it is");
}

std::string Words(std::vector<double> const& values) {
    return {reinterpret_cast<char const*>(values.data()), values.size() * sizeof(double)};
}

std::vector<std::string> Seeds() {
    return {Words({1, 0, 0, 3, 0, 10, 0, 1, 2, 3, 5, 6, 7, 8}),
            Words({2, 1, -1, 1, -1e30, 1e30, -1, 0, 1, 0.5, 1, 1.5, 2, 2.5, 3}),
            Words({1, 0, 2, 3, 0, 1, 1, 2, 3, 7, 8, 9}),
            Words({3, 0, 0, 0, 0, 0}),
            Words({1e300, 0, 0, 0, 0, 0, 1, 1}),
            Words({1, -3, 0, 1, 0, 1, 1e39, 1})};
}

}  // namespace

Target PlotTarget() {
    return {"plot", Run, Seeds};
}

}  // namespace fuzz
