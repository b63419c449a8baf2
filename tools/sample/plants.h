// SPDX-License-Identifier: Apache-2.0
// Conifers on the far shore, two trees and grass on the near one.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/sample/frame.h"
#include "tools/sample/terrain.h"
#include "tools/sample/view.h"

namespace sample {

class Plants {
public:
    Plants(View const& view, Terrain const& terrain);

    // Both draw what lies in rows `begin` to `end`.
    void PaintFarTrees(Frame& frame, int begin, int end) const;
    void PaintNearPlants(Frame& frame, int begin, int end) const;

private:
    struct Conifer {
        Point foot;
        float height = 0;
        uint32_t seed = 0;
    };
    struct Blade {
        Point foot;
        Point tip;
        float width = 0;
        Colour colour;
    };

    void PlantConifers(float width);
    void SowGrass();
    void PaintConifer(Frame& frame, Conifer const& tree, int begin, int end) const;
    void PaintBlade(Frame& frame, Blade const& blade, int begin, int end) const;

    View const& m_view;
    Terrain const& m_terrain;
    std::vector<Conifer> m_farTrees;
    std::vector<Conifer> m_nearTrees;
    std::vector<Blade> m_grass;
};

}  // namespace sample
