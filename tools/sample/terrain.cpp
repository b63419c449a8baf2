// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/terrain.h"

#include <cmath>

#include "tools/sample/noise.h"

namespace sample {
namespace {

constexpr float NearShore = 44;  // where the beach meets the lake
constexpr float FarShore = 760;  // and where the land begins again
constexpr float HazeDistance = 15000;
constexpr Colour Haze = {0.50F, 0.62F, 0.78F};
constexpr Colour SunLight = {1.62F, 1.48F, 1.25F};
constexpr Colour SkyLight = {0.22F, 0.28F, 0.38F};

// Stones of a size, one in each cell of a jittered lattice. `bump` becomes the slope of the stone towards the sun.
Colour Stones(float x, float z, float size, uint32_t seed, float& bump) {
    const float u = x / size;
    const float v = z / size;
    const auto cellX = static_cast<int32_t>(std::floor(u));
    const auto cellZ = static_cast<int32_t>(std::floor(v));
    float nearest = 9;
    float second = 9;
    uint32_t stone = 0;
    float dx = 0;
    float dz = 0;
    for (int32_t j = -1; j <= 1; ++j) {
        for (int32_t i = -1; i <= 1; ++i) {
            const int32_t cx = cellX + i;
            const int32_t cz = cellZ + j;
            const float px = u - (static_cast<float>(cx) + 0.15F + 0.7F * Unit(cx, cz, seed));
            const float pz = v - (static_cast<float>(cz) + 0.15F + 0.7F * Unit(cx, cz, seed + 1));
            const float stretch = 0.8F + 0.5F * Unit(cx, cz, seed + 2);
            const float distance = std::sqrt(px * px * stretch + pz * pz / stretch);
            if (distance < nearest) {
                second = nearest;
                nearest = distance;
                stone = Hash(cx, cz, seed + 3);
                dx = px;
                dz = pz;
            } else if (distance < second) {
                second = distance;
            }
        }
    }
    const float edge = Smooth(0.02F, 0.28F, second - nearest);
    bump = edge < 0.05F ? 0 : 1.25F * (dx * -0.8F + dz * -0.6F);
    const float grey = 0.10F + 0.24F * static_cast<float>(stone & 255U) / 255;
    const float warm = static_cast<float>((stone >> 8U) & 255U) / 255;
    const float grain = 1 + 0.22F * Fractal(u * 5, v * 5, 3, seed + 9);
    const Colour colour = {grey * (0.97F + 0.22F * warm), grey, grey * (1.02F - 0.26F * warm)};
    return colour * (grain * Mix(0.22F, 1.0F, edge));
}

}  // namespace

Point Normalised(Point a) {
    return a * (1 / std::sqrt(Dot(a, a)));
}

Point SunDirection() {
    return Normalised({-0.62F, 0.56F, -0.42F});
}

float Terrain::Height(float x, float z) const {
    if (z < 400) {
        const float shore = NearShore + 7 * Noise(x / 31, 0.3F, m_seed + 1) + 2.5F * Noise(x / 9, 0.7F, m_seed + 2) -
                            9 * Smooth(-6, -34, x);
        const float slope = (shore - z) * 0.235F;
        const float rolling = 0.45F * Noise(x / 7, z / 7, m_seed + 3) + 0.12F * Noise(x / 1.7F, z / 1.7F, m_seed + 4);
        const float bank = 3.2F * Smooth(-12, -40, x) * Smooth(48, 20, z);
        return slope > -6 ? slope + rolling * Smooth(-1, 2, slope) + bank : -6;
    }
    const float coast = FarShore + 110 * Noise(x / 420, 2.7F, m_seed + 5) + 30 * Noise(x / 90, 8.1F, m_seed + 6);
    const float inland = z - coast;
    if (inland < -40) return -6;
    const float hills = (0.5F + 0.9F * Fractal(x / 1300, z / 1300, 5, m_seed + 10)) * 330 * Smooth(0, 1700, inland);
    // The valley opens a little to the right of the middle.
    const float side = std::fabs(x - 0.08F * z) / (0.30F * z + 200);
    const float massif = Smooth(900, 5600, inland) * (0.42F + 0.58F * Smooth(0.05F, 1.0F, side));
    const float crests = massif < 0.001F ? 0 : Ridges(x / 3900, z / 3900, 7, m_seed + 30);
    return inland * 0.02F + hills + massif * (1050 * crests * crests + 1000 * crests) - 0.5F;
}

Colour Terrain::ThroughAir(Colour colour, float distance) {
    return Blend(colour, Haze, 1 - std::exp(-distance / HazeDistance));
}

float Terrain::Growth(Point at) const {
    return at.y * 0.16F - 0.62F + 1.25F * Fractal(at.x / 5.5F, at.z / 5.5F, 5, m_seed + 80);
}

Colour Terrain::ShoreAlbedo(Point at, float& bump) const {
    // Grass grows away from the water.
    const float grass = Smooth(-0.02F, 0.16F, Growth(at) + 0.22F * Noise(at.x * 6, at.z * 6, m_seed + 90));
    const Colour stones = grass < 1 ? BeachAlbedo(at, bump) : Colour();
    const Colour green = grass > 0 ? GrassAlbedo(at) : Colour();
    bump *= 1 - grass;
    // Wet stones are dark.
    return Blend(stones, green, grass) * Mix(0.42F, 1.0F, Smooth(0.05F, 0.55F, at.y));
}

Colour Terrain::BeachAlbedo(Point at, float& bump) const {
    const float mix = Smooth(-0.10F, 0.12F, Fractal(at.x / 3.1F, at.z / 3.1F, 4, m_seed + 70));
    float coarseBump = 0;
    float fineBump = 0;
    const Colour coarse = mix > 0 ? Stones(at.x, at.z, 0.34F, m_seed + 50, coarseBump) : Colour();
    // Small stones far away are smaller than a pixel and only their mean is seen.
    const float detail = Mix(0.25F, 1.0F, Smooth(42, 14, at.z));
    const Colour single = mix < 1 ? Stones(at.x, at.z, 0.09F, m_seed + 60, fineBump) : Colour();
    const Colour fine = Blend({0.19F, 0.185F, 0.17F}, single, detail);
    fineBump *= detail;
    bump = Mix(fineBump, coarseBump, mix);
    return Blend(fine, coarse, mix);
}

Colour Terrain::GrassAlbedo(Point at) const {
    const float blades = 0.55F + 0.9F * std::fabs(Noise(at.x * 34, at.z * 9, m_seed + 95)) +
                         0.4F * Fractal(at.x * 3, at.z * 3, 3, m_seed + 96);
    const float dry = Clamp01(0.45F + 0.9F * Fractal(at.x / 2.3F, at.z / 2.3F, 3, m_seed + 97));
    return Blend({0.075F, 0.105F, 0.032F}, {0.21F, 0.18F, 0.085F}, dry) * blades;
}

Colour Terrain::MountainAlbedo(Point at, Point normal) const {
    const float grain = Fractal(at.x / 60, at.z / 60, 3, m_seed + 100);
    const Colour rock = Blend({0.19F, 0.175F, 0.16F}, {0.29F, 0.27F, 0.245F}, Clamp01(0.5F + grain)) *
                        (1 + 0.26F * Noise(at.x / 110 + at.y / 160, at.y / 75 + at.z / 300, m_seed + 110) +
                         0.50F * Fractal(at.x / 190, at.y / 120, 5, m_seed + 112));
    const float leafy = Clamp01(0.5F + 1.2F * Fractal(at.x / 14, at.z / 14, 2, m_seed + 120));
    const Colour forest = Blend({0.016F, 0.034F, 0.014F}, {0.060F, 0.085F, 0.030F}, leafy);
    const Colour meadow = Blend({0.085F, 0.125F, 0.035F}, {0.14F, 0.15F, 0.055F}, Clamp01(0.5F + grain));
    const float level = at.y + 170 * Fractal(at.x / 420, at.z / 420, 4, m_seed + 130);
    const float clearing =
        Smooth(0.16F, 0.26F, Fractal(at.x / 330, at.z / 330, 3, m_seed + 140)) * Smooth(0.78F, 0.9F, normal.y);
    Colour colour = Blend(forest, meadow, clearing);
    colour = Blend(colour, Blend(meadow, rock, 0.55F), Smooth(560, 820, level));
    colour = Blend(colour, rock, Smooth(0.86F, 0.66F, normal.y) * Smooth(420, 700, level));
    colour = Blend(colour, rock, Smooth(900, 1250, level));
    const float snow =
        Smooth(1060, 1360, level + 260 * (normal.y - 0.75F)) * Smooth(0.40F, 0.60F, normal.y + 0.1F * grain);
    return Blend(colour, {0.82F, 0.84F, 0.88F}, snow);
}

Colour Terrain::Shade(Point at, Point normal, float shade) const {
    const bool nearby = at.z < 400;
    float bump = 0;
    const Colour albedo = nearby ? ShoreAlbedo(at, bump) : MountainAlbedo(at, normal);
    const float cloud =
        nearby ? 1 : Mix(0.45F, 1.0F, Smooth(-0.16F, 0.10F, Fractal(at.x / 2600, at.z / 2600, 3, m_seed + 150)));
    const float facing = Dot(normal, SunDirection()) + 0.55F * bump;
    const float sun = (facing > 0 ? facing : 0) * shade * cloud;
    const Colour light = SunLight * sun + SkyLight * (0.55F + 0.45F * normal.y);
    return ThroughAir(albedo * light, at.z);
}

Colour Terrain::Sky(float x, float y) const {
    const float up = y > 0 ? y : 0;
    const Colour blue = Blend({0.56F, 0.69F, 0.86F}, {0.115F, 0.255F, 0.60F}, 1 - std::exp(-up * 3.3F));
    if (up < 0.004F) return blue;
    // Clouds lie in a plane, so they shrink towards the horizon.
    const float far = 1 / (up + 0.09F);
    const float u = x * far * 0.75F + 0.02F * static_cast<float>(m_seed % 97);
    const float v = far * 1.15F;
    const float cover = Fractal(u, v, 7, m_seed + 160) + 0.10F * Fractal(u * 0.4F, v * 0.4F, 2, m_seed + 170);
    const float thick = Smooth(0.03F, 0.36F, cover) * Smooth(0.0F, 0.05F, up);
    const float towardsSun = Fractal(u - 0.06F, v + 0.07F, 5, m_seed + 160);
    const float lit = Clamp01(0.62F + 1.5F * (cover - towardsSun) - 0.30F * Smooth(0.2F, 0.5F, cover));
    const Colour white = Blend({0.46F, 0.50F, 0.58F}, {1.05F, 1.04F, 1.02F}, lit);
    return Blend(blue, Blend(white, blue, 0.25F * Smooth(0.18F, 0.0F, up)), thick * 0.92F);
}

}  // namespace sample
