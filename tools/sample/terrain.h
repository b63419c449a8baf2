// SPDX-License-Identifier: Apache-2.0
// The ground of the invented landscape, in metres: x to the right, z away from the lens, the lake at height 0.
#pragma once

#include <cstdint>

#include "tools/sample/frame.h"

namespace sample {

struct Point {
    float x = 0;
    float y = 0;
    float z = 0;
};
inline Point operator+(Point a, Point b) {
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}
inline Point operator-(Point a, Point b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
inline Point operator*(Point a, float s) {
    return {a.x * s, a.y * s, a.z * s};
}
inline float Dot(Point a, Point b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Point Cross(Point a, Point b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
Point Normalised(Point a);

// Towards the sun: behind the lens to the left.
Point SunDirection();

class Terrain {
public:
    explicit Terrain(uint32_t seed) : m_seed(seed * 131 + 7) {}

    // Below 0 is the lake's bed.
    float Height(float x, float z) const;

    // Linear light that comes from the ground at a point with that normal, `shade` 0 in full shadow and 1 in the sun.
    Colour Shade(Point at, Point normal, float shade) const;

    // Light of the sky in a direction with z = 1.
    Colour Sky(float x, float y) const;

    // Above 0 where grass grows on the near shore.
    float Growth(Point at) const;

    // With the air between: further points fade into the haze.
    static Colour ThroughAir(Colour colour, float distance);

    uint32_t Seed() const { return m_seed; }

private:
    Colour ShoreAlbedo(Point at, float& bump) const;
    Colour BeachAlbedo(Point at, float& bump) const;
    Colour GrassAlbedo(Point at) const;
    Colour MountainAlbedo(Point at, Point normal) const;

    uint32_t m_seed;
};

}  // namespace sample
