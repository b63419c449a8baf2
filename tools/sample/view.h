// SPDX-License-Identifier: Apache-2.0
// Where the lens stands and how it projects: at x = 0, z = 0, looking level along z.
#pragma once

#include "tools/sample/terrain.h"

namespace sample {

struct View {
    float focal = 0;    // pixels
    float centre = 0;   // column of the axis
    float horizon = 0;  // row of the horizon
    float eye = 0;      // height of the lens in metres

    float SlopeX(float column) const { return (column - centre) / focal; }
    float SlopeY(float row) const { return (horizon - row) / focal; }
    float Column(float x, float z) const { return centre + focal * x / z; }
    float Row(float y, float z) const { return horizon - focal * (y - eye) / z; }
};

// A wide lens at a man's height above the shore.
inline View MakeView(int width, int height, Terrain const& terrain) {
    View view;
    const auto w = static_cast<float>(width);
    const auto h = static_cast<float>(height);
    view.focal = 0.72F * (w > h ? w : h);
    view.centre = (w - 1) / 2;
    view.horizon = 0.43F * h;
    view.eye = terrain.Height(0, 0) + 1.7F;
    return view;
}

}  // namespace sample
