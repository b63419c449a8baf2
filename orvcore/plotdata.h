// SPDX-License-Identifier: Apache-2.0
// The result of a plot filter: one vector of abscissae, series over it, and lines across the plot.
//
// Threading: a plain value without a lock. A plot filter guards the two that it holds; what it hands out is a copy.
#pragma once
#include <wx/image.h>

#include <cstdint>
#include <vector>

#include "tolbase/export.h"

// A closed range of numbers.
struct OrvRange {
    double minimum = 0.0;
    double maximum = 0.0;
};

class ORV_API OrvPlotData {
public:
    // As Clear leaves it.
    OrvPlotData();

    // Forgets everything: empty vectors, indices and number of points 0, ranges from 0 to 1, dim 1, coi 0.
    void Clear();
    // True if there are abscissae and series.
    bool IsOk() const { return !x.empty() && !y.empty(); }
    // Abscissae first, first + 1, ... last, and `newDim` series of zeros over them; the X range from first to last, the
    // other two ranges from 0 to 0. The marker lines stay. None at all where last is below first. The flag is not used.
    void InitPlotData(int first, int last, int newDim, int newCoi, bool unused);

    std::vector<float> x;
    std::vector<std::vector<float>> y;                  // one per dimension, each as long as x
    std::vector<std::vector<float>> verticalMarkers;    // groups of X positions
    std::vector<std::vector<float>> horizontalMarkers;  // groups of Y positions
    std::uint64_t firstIndex;                           // first and last index of x to use, both included
    std::uint64_t lastIndex;
    OrvRange xRange;       // the part of the plot to show
    OrvRange secondRange;  // the concrete filter's own
    OrvRange yRange;
    wxImage picture;  // a rendered form
    std::uint64_t pointCount;
    int dim;  // number of series; 1 in an empty object
    int coi;  // the series that a picture shows; selects its colour, too
};
