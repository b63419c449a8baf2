// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/plants.h"

#include <algorithm>
#include <cmath>

#include "tools/sample/noise.h"

namespace sample {
namespace {

constexpr float TreeSpacing = 13;
constexpr float FirstTrees = 640;
constexpr float LastTrees = 2700;
constexpr float TreeLine = 620;
constexpr int GrassBlades = 26000;

void Cover(Frame& frame, size_t pixel, Colour colour, float opacity, float depth) {
    if (depth > frame.depth[pixel]) return;
    frame.colour[pixel] = Blend(frame.colour[pixel], colour, opacity);
    if (opacity > 0.5F) frame.depth[pixel] = depth;
}

}  // namespace

Plants::Plants(View const& view, Terrain const& terrain) : m_view(view), m_terrain(terrain) {
    PlantConifers(2 * view.centre + 1);
    SowGrass();
    const uint32_t seed = terrain.Seed();
    for (int i = 0; i < 7; ++i) {
        const float x = -11.5F - 2.7F * static_cast<float>(i) - 2.2F * Unit(i, 1, seed);
        const float z = 33 - 6.5F * Unit(i, 2, seed) + 1.4F * static_cast<float>(i % 3);
        m_nearTrees.push_back({{x, terrain.Height(x, z) - 0.2F, z}, 9.5F + 6.5F * Unit(i, 3, seed), Hash(i, 4, seed)});
    }
    std::sort(m_nearTrees.begin(), m_nearTrees.end(),
              [](Conifer const& a, Conifer const& b) { return a.foot.z > b.foot.z; });
}

// One tree a cell, where the ground is neither lake nor too high nor a clearing; the furthest first.
void Plants::PlantConifers(float width) {
    const uint32_t seed = m_terrain.Seed() + 500;
    const auto first = static_cast<int32_t>(FirstTrees / TreeSpacing);
    const auto last = static_cast<int32_t>(LastTrees / TreeSpacing);
    for (int32_t row = last; row >= first; --row) {
        const float reach = static_cast<float>(row) * TreeSpacing * (width / 2 / m_view.focal) / TreeSpacing + 2;
        const auto side = static_cast<int32_t>(reach);
        for (int32_t column = -side; column <= side; ++column) {
            const float x = (static_cast<float>(column) + Unit(column, row, seed)) * TreeSpacing;
            const float z = (static_cast<float>(row) + 0.9F * Unit(column, row, seed + 1)) * TreeSpacing;
            const float y = m_terrain.Height(x, z);
            if (y < 0.8F || y > TreeLine) continue;
            if (Fractal(x / 210, z / 210, 4, seed + 2) > 0.10F + 0.3F * Unit(column, row, seed + 3)) continue;
            m_farTrees.push_back(
                {{x, y - 0.5F, z}, 10 + 15 * Unit(column, row, seed + 4), Hash(column, row, seed + 5)});
        }
    }
}

void Plants::SowGrass() {
    const uint32_t seed = m_terrain.Seed() + 600;
    for (int i = 0; i < GrassBlades; ++i) {
        const float z = 2.2F + 17 * Unit(i, 0, seed) * Unit(i, 1, seed);
        const float x = (Unit(i, 2, seed) - 0.5F) * 1.6F * z;
        const float y = m_terrain.Height(x, z);
        if (m_terrain.Growth({x, y, z}) < 0.06F) continue;
        const float length = 0.10F + 0.24F * Unit(i, 3, seed) * Unit(i, 4, seed);
        Blade blade;
        blade.foot = {x, y, z};
        blade.tip = {x + length * 1.2F * (Unit(i, 5, seed) - 0.38F), y + length, z};
        blade.width = 0.0035F + 0.004F * Unit(i, 6, seed);
        const float dry = Unit(i, 7, seed);
        const float light = 0.6F + 0.75F * Unit(i, 8, seed);
        blade.colour = Blend({0.085F, 0.135F, 0.030F}, {0.30F, 0.26F, 0.11F}, dry * dry) * light;
        m_grass.push_back(blade);
    }
    std::sort(m_grass.begin(), m_grass.end(), [](Blade const& a, Blade const& b) { return a.foot.z > b.foot.z; });
}

void Plants::PaintFarTrees(Frame& frame, int begin, int end) const {
    for (Conifer const& tree : m_farTrees) PaintConifer(frame, tree, begin, end);
}

void Plants::PaintNearPlants(Frame& frame, int begin, int end) const {
    for (Conifer const& tree : m_nearTrees) PaintConifer(frame, tree, begin, end);
    for (Blade const& blade : m_grass) PaintBlade(frame, blade, begin, end);
}

// Whorls of hanging branches that get shorter towards the top, lit from the left.
void Plants::PaintConifer(Frame& frame, Conifer const& tree, int begin, int end) const {
    const float scale = m_view.focal / tree.foot.z;
    const float centre = m_view.Column(tree.foot.x, tree.foot.z);
    const float bottom = m_view.Row(tree.foot.y, tree.foot.z);
    const float reach = tree.height * 0.24F;
    const int firstRow = std::max(begin, static_cast<int>(bottom - tree.height * scale));
    const int lastRow = std::min({end, frame.height, static_cast<int>(bottom) + 1});
    const int left = std::max(0, static_cast<int>(centre - reach * scale * 1.35F));
    const int right = std::min(frame.width, static_cast<int>(centre + reach * scale * 1.35F) + 1);
    const float tone = 0.7F + 0.6F * Unit(static_cast<int32_t>(tree.seed & 0xFFFFU), 1, tree.seed);
    const float detail = tree.foot.z < 400 ? 2.3F : 0.35F;
    const int octaves = tree.foot.z < 400 ? 5 : 2;
    for (int row = firstRow; row < lastRow; ++row) {
        const float y = (bottom - static_cast<float>(row)) / scale;
        const float up = y / tree.height;
        for (int column = left; column < right; ++column) {
            const float x = (static_cast<float>(column) - centre) / scale;
            const float hang = y + 0.42F * std::fabs(x);
            const float whorl = hang * (tree.foot.z < 400 ? 1.35F : 0.8F) + 0.6F * Noise(x * 0.8F, y * 0.3F, tree.seed);
            const float layer = whorl - std::floor(whorl);
            const float profile = reach * std::pow(std::max(0.0F, 1.02F - up), 0.85F);
            const float ragged = 0.62F + 0.42F * (1 - layer) + 0.55F * Noise(x * 1.1F, hang * 1.6F, tree.seed + 1);
            const float needles =
                Fractal(x * 6 * detail, (y - 0.3F * std::fabs(x)) * 9 * detail, octaves, tree.seed + 2);
            const float inside = profile * ragged - std::fabs(x) + 0.75F * needles * (0.3F + profile * 0.3F);
            const bool trunk = std::fabs(x) < 0.016F * tree.height * (1 - up) && up < 0.9F;
            const float opacity = Smooth(0, 1.6F / scale + 0.02F, inside - (up < 0.05F ? (0.05F - up) * 40 : 0));
            if (opacity <= 0 && !trunk) continue;
            const float side = x / (profile + 0.05F);
            const float lit = Clamp01(0.40F - 0.42F * side + 0.75F * needles + 0.30F * (0.5F - layer));
            Colour colour = Blend({0.009F, 0.016F, 0.010F}, {0.068F, 0.090F, 0.036F}, lit) * tone;
            if (opacity < 0.35F && trunk) colour = {0.055F, 0.042F, 0.032F};
            const size_t pixel = frame.At(column, row);
            const float nearer = tree.foot.z < 400 ? tree.foot.z : tree.foot.z * 0.985F;
            // The lake is still only marked: half a tree in front of it counts as water.
            if (frame.depth[pixel] < 0) {
                if (nearer > -frame.depth[pixel] || (opacity < 0.5F && !trunk)) continue;
                frame.depth[pixel] = -frame.depth[pixel];
            }
            Cover(frame, pixel, Terrain::ThroughAir(colour, tree.foot.z), trunk ? 1.0F : opacity, nearer);
        }
    }
}

void Plants::PaintBlade(Frame& frame, Blade const& blade, int begin, int end) const {
    const float z = blade.foot.z;
    const float bottom = m_view.Row(blade.foot.y, z);
    const float top = m_view.Row(blade.tip.y, z);
    const float from = m_view.Column(blade.foot.x, z);
    const float to = m_view.Column(blade.tip.x, z);
    const int firstRow = std::max(begin, static_cast<int>(top));
    const int lastRow = std::min({end, frame.height, static_cast<int>(bottom) + 1});
    for (int row = firstRow; row < lastRow; ++row) {
        const float t = Clamp01((bottom - static_cast<float>(row)) / (bottom - top + 0.001F));
        const float middle = Mix(from, to, t * t);
        const float half = 0.5F * blade.width * m_view.focal / z * (1 - t * 0.9F);
        const int left = std::max(0, static_cast<int>(std::floor(middle - half)));
        const int right = std::min(frame.width - 1, static_cast<int>(std::ceil(middle + half)));
        for (int column = left; column <= right; ++column) {
            const float opacity = Clamp01(half + 0.5F - std::fabs(static_cast<float>(column) - middle));
            Cover(frame, frame.At(column, row), blade.colour * (0.45F + 0.75F * t), opacity, z);
        }
    }
}

}  // namespace sample
