// SPDX-License-Identifier: Apache-2.0
// A wooden hut on the near shore.
#pragma once

#include <array>

#include "tools/sample/frame.h"
#include "tools/sample/terrain.h"
#include "tools/sample/view.h"

namespace sample {

class Hut {
public:
    explicit Hut(Terrain const& terrain);

    // 1 in the sun, less in the hut's shadow.
    float Sunlight(Point at) const;

    // Draws what lies in rows `begin` to `end`, in front of what is further away.
    void Paint(Frame& frame, View const& view, int begin, int end) const;

    // How much of a pixel the hut fills, 0 to 1, whatever stands in front of it.
    float GetCoverage(View const& view, float column, float row) const;

    // The part of the picture that holds the hut and some ground around it, within the picture.
    Box GetBox(View const& view) const;

private:
    enum class Kind { Gable, Wall, Roof };
    // A rectangle: a corner and two edges at right angles.
    struct Face {
        Kind kind = Kind::Wall;
        Point corner;
        Point along;
        Point up;
        Point normal;
    };
    struct Hit {
        float distance = 0;
        float u = 0;
        float v = 0;
    };

    static Face MakeFace(Kind kind, Point corner, Point along, Point up);
    static bool Meets(Face const& face, Point from, Point direction, Hit& hit);
    Colour Shade(Face const& face, Hit const& hit) const;
    Colour Boards(float along, float up, bool gable) const;
    Colour Shingles(float along, float up) const;

    Terrain const& m_terrain;
    Point m_centre;
    std::array<Face, 6> m_faces;
};

}  // namespace sample
