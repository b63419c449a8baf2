// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/scene.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "tools/sample/hut.h"
#include "tools/sample/noise.h"
#include "tools/sample/plants.h"
#include "tools/sample/terrain.h"
#include "tools/sample/view.h"

namespace sample {
namespace {

constexpr float NearestGround = 1.5F;
constexpr float FurthestGround = 16000;
constexpr float StepOfDistance = 0.0042F;  // steps grow with the distance, as pixels do
constexpr float ReflectedDistance = 950;   // where most of what the lake mirrors stands

// Draws ground and sky column by column, front to back. The lake is only marked, by a negative depth.
class ColumnPainter {
public:
    ColumnPainter(Frame& frame, View const& view, Terrain const& terrain, Hut const& hut)
        : m_frame(frame), m_view(view), m_terrain(terrain), m_hut(hut) {}

    void Paint(int column) {
        const float slopeX = m_view.SlopeX(static_cast<float>(column));
        m_row = m_frame.height - 1;
        float z0 = NearestGround;
        float h0 = m_terrain.Height(slopeX * z0, z0);
        while (z0 < FurthestGround && m_row >= 0) {
            const float z1 = z0 * (1 + StepOfDistance);
            const float h1 = m_terrain.Height(slopeX * z1, z1);
            PaintSpan(column, slopeX, z0, std::max(h0, 0.0F), z1, std::max(h1, 0.0F), h1 < 0);
            z0 = z1;
            h0 = h1;
        }
        for (; m_row >= 0; --m_row) {
            m_frame.colour[m_frame.At(column, m_row)] = m_terrain.Sky(slopeX, m_view.SlopeY(static_cast<float>(m_row)));
        }
    }

private:
    // The rows that the ground between two distances fills above what is drawn already.
    void PaintSpan(int column, float slopeX, float z0, float h0, float z1, float h1, bool lake) {
        const int top = std::max(0, static_cast<int>(std::ceil(m_view.Row(h1, z1))));
        if (top > m_row) return;
        const float rise = (h1 - h0) / (z1 - z0);
        Point normal{0, 1, 0};
        if (!lake) {
            const float reach = std::max(0.02F, 0.004F * z1);
            const float across = (m_terrain.Height(slopeX * z1 + reach, z1) - h1) / reach;
            normal = Normalised({-across, 1, -rise});
        }
        for (; m_row >= top; --m_row) {
            const float slopeY = m_view.SlopeY(static_cast<float>(m_row));
            const float gap = slopeY - rise;
            const float exact = std::fabs(gap) < 1e-7F ? z1 : (h0 - rise * z0 - m_view.eye) / gap;
            const float z = std::clamp(exact, z0, z1);
            const size_t pixel = m_frame.At(column, m_row);
            m_frame.depth[pixel] = lake ? -z : z;
            if (lake) continue;
            const Point at{slopeX * z, m_view.eye + slopeY * z, z};
            m_frame.colour[pixel] = m_terrain.Shade(at, normal, m_hut.Sunlight(at));
        }
    }

    Frame& m_frame;
    View const& m_view;
    Terrain const& m_terrain;
    Hut const& m_hut;
    int m_row = 0;
};

// Fills the marked pixels: what the water mirrors, what shines through it, the more of the first the flatter the view.
// Several painters work on one frame at the same time, so each goes by the depths as they were marked.
class LakePainter {
public:
    LakePainter(Frame& frame, std::vector<float> const& marked, View const& view, Terrain const& terrain)
        : m_frame(frame), m_marked(marked), m_view(view), m_terrain(terrain) {}

    void Paint(int column) {
        const float slopeX = m_view.SlopeX(static_cast<float>(column));
        for (int row = 0; row < m_frame.height; ++row) {
            const size_t pixel = m_frame.At(column, row);
            if (m_frame.depth[pixel] < 0) m_frame.colour[pixel] = Water(slopeX, column, row, -m_frame.depth[pixel]);
        }
        for (int row = 0; row < m_frame.height; ++row) {
            float& depth = m_frame.depth[m_frame.At(column, row)];
            depth = std::fabs(depth);
        }
    }

private:
    Colour Water(float slopeX, int column, int row, float z) const {
        const uint32_t seed = m_terrain.Seed() + 300;
        const float distance = std::log(z);
        const float x = slopeX * z;
        const float wind = 0.35F + 0.9F * Smooth(-0.2F, 0.25F, Fractal(x / 60, distance * 3, 4, seed));
        const float slope = 0.011F * wind *
                            (Fractal(slopeX * 60, distance * 46, 3, seed + 10) +
                             0.8F * Fractal(slopeX * 210, distance * 120, 2, seed + 20));
        const Colour mirrored = Mirrored(column, row, slope);
        const float cosine = std::clamp(m_view.eye / z + 1.5F * slope, 0.0F, 1.0F);
        const float fresnel = 0.02F + 0.98F * std::pow(1 - std::min(cosine, 0.95F), 5.0F);
        return Blend(Below(x, z, slope), mirrored, fresnel);
    }

    Colour Mirrored(int column, int row, float slope) const {
        const float shift = 2 * m_view.focal * m_view.eye / ReflectedDistance;
        const float mirror = 2 * m_view.horizon - static_cast<float>(row) + shift - 2 * m_view.focal * slope;
        // What stands higher than the picture reaches is sky like that at its edge.
        int target = std::clamp(static_cast<int>(std::lround(mirror)), 0, m_frame.height - 1);
        const int side = std::clamp(column + static_cast<int>(m_view.focal * slope * 0.25F), 0, m_frame.width - 1);
        while (target > 0 && (m_marked[m_frame.At(side, target)] < 400)) --target;
        return m_frame.colour[m_frame.At(side, target)] * 0.93F;
    }

    Colour Below(float x, float z, float slope) const {
        const float depth = std::max(0.0F, -m_terrain.Height(x, z));
        const Colour deep = {0.012F, 0.052F, 0.060F};
        const Point bed{x + 6 * slope, 0.02F, z};
        const Colour stones = m_terrain.Shade(bed, {0, 1, 0}, 0.8F) * Colour{0.62F, 0.86F, 0.80F};
        return Blend(deep, stones, std::exp(-depth * 1.1F));
    }

    Frame& m_frame;
    std::vector<float> const& m_marked;
    View const& m_view;
    Terrain const& m_terrain;
};

}  // namespace

Frame RenderScene(int width, int height, uint32_t seed) {
    Frame frame(width, height);
    const Terrain terrain(seed);
    const View view = MakeView(width, height, terrain);
    const Hut hut(terrain);
    InBands(width, [&](int begin, int end) {
        ColumnPainter painter(frame, view, terrain, hut);
        for (int column = begin; column < end; ++column) painter.Paint(column);
    });
    const Plants plants(view, terrain);
    InBands(height, [&](int begin, int end) { plants.PaintFarTrees(frame, begin, end); });
    // The lake mirrors what is far; what stands on the near shore is drawn over it.
    const std::vector<float> marked = frame.depth;
    InBands(width, [&](int begin, int end) {
        LakePainter painter(frame, marked, view, terrain);
        for (int column = begin; column < end; ++column) painter.Paint(column);
    });
    InBands(height, [&](int begin, int end) {
        hut.Paint(frame, view, begin, end);
        plants.PaintNearPlants(frame, begin, end);
    });
    return frame;
}

Cutout GetHut(int width, int height, uint32_t seed) {
    const Terrain terrain(seed);
    const View view = MakeView(width, height, terrain);
    const Hut hut(terrain);
    Cutout cutout;
    cutout.box = hut.GetBox(view);
    cutout.box.x = std::clamp(cutout.box.x, 0, width - 1);
    cutout.box.y = std::clamp(cutout.box.y, 0, height - 1);
    cutout.box.width = std::clamp(cutout.box.width, 1, width - cutout.box.x);
    cutout.box.height = std::clamp(cutout.box.height, 1, height - cutout.box.y);
    for (int y = 0; y < cutout.box.height; ++y) {
        for (int x = 0; x < cutout.box.width; ++x) {
            cutout.coverage.push_back(
                hut.GetCoverage(view, static_cast<float>(cutout.box.x + x), static_cast<float>(cutout.box.y + y)));
        }
    }
    return cutout;
}

}  // namespace sample
