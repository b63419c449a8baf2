// SPDX-License-Identifier: Apache-2.0
#include "orvcore/plotdata.h"

OrvPlotData::OrvPlotData() {
    Clear();
}

void OrvPlotData::Clear() {
    x.clear();
    y.clear();
    verticalMarkers.clear();
    horizontalMarkers.clear();
    firstIndex = 0;
    lastIndex = 0;
    xRange = {0.0, 1.0};
    secondRange = {0.0, 1.0};
    yRange = {0.0, 1.0};
    picture = wxImage();
    pointCount = 0;
    dim = 1;
    coi = 0;
}

void OrvPlotData::InitPlotData(int first, int last, int newDim, int newCoi, bool /*unused*/) {
    std::int64_t const difference = static_cast<std::int64_t>(last) - first;
    auto const count = static_cast<std::size_t>(difference < 0 ? 0 : difference + 1);
    secondRange = {0.0, 0.0};
    yRange = {0.0, 0.0};
    xRange = {static_cast<double>(first), static_cast<double>(last)};
    firstIndex = 0;
    lastIndex = count == 0 ? 0 : count - 1;
    pointCount = count;
    dim = newDim;
    coi = newCoi;
    x.clear();
    x.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        x.push_back(static_cast<float>(first + static_cast<std::int64_t>(i)));
    }
    y.assign(newDim > 0 ? static_cast<std::size_t>(newDim) : 0, std::vector<float>(count, 0.0F));
}
