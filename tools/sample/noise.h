// SPDX-License-Identifier: Apache-2.0
// Reproducible noise: every value follows from its coordinates and the seed alone, on any thread.
#pragma once

#include <cmath>
#include <cstdint>

namespace sample {

inline uint32_t Hash(int32_t x, int32_t y, uint32_t seed) {
    uint32_t h = static_cast<uint32_t>(x) * 0x8DA6B343U ^ static_cast<uint32_t>(y) * 0xD8163841U ^ seed * 0xCB1AB31FU;
    h = (h ^ (h >> 15U)) * 0x2C1B3C6DU;
    h = (h ^ (h >> 12U)) * 0x297A2D39U;
    return h ^ (h >> 15U);
}

// 0 to 1.
inline float Unit(int32_t x, int32_t y, uint32_t seed) {
    return static_cast<float>(Hash(x, y, seed) >> 8U) * (1.0F / 16777216.0F);
}

inline float Mix(float a, float b, float t) {
    return a + (b - a) * t;
}

inline float Clamp01(float value) {
    return value < 0 ? 0.0F : (value > 1 ? 1.0F : value);
}

// 0 below `low`, 1 above `high`, smooth between; `low` may be the greater one.
inline float Smooth(float low, float high, float value) {
    const float t = Clamp01((value - low) / (high - low));
    return t * t * (3 - 2 * t);
}

inline float Slope(uint32_t hash, float x, float y) {
    const float u = (hash & 1U) != 0 ? x : -x;
    const float v = (hash & 2U) != 0 ? y : -y;
    return (hash & 4U) != 0 ? u + 0.5F * v : v + 0.5F * u;
}

// Gradient noise, about -1 to 1, one feature a unit.
inline float Noise(float x, float y, uint32_t seed) {
    const float fx = std::floor(x);
    const float fy = std::floor(y);
    const auto ix = static_cast<int32_t>(fx);
    const auto iy = static_cast<int32_t>(fy);
    x -= fx;
    y -= fy;
    const float u = x * x * x * (x * (x * 6 - 15) + 10);
    const float v = y * y * y * (y * (y * 6 - 15) + 10);
    const float top = Mix(Slope(Hash(ix, iy, seed), x, y), Slope(Hash(ix + 1, iy, seed), x - 1, y), u);
    const float bottom =
        Mix(Slope(Hash(ix, iy + 1, seed), x, y - 1), Slope(Hash(ix + 1, iy + 1, seed), x - 1, y - 1), u);
    return 1.1F * Mix(top, bottom, v);
}

// Octaves of noise, each of half the size and half the strength, turned so that no lattice shows; about -1 to 1.
inline float Fractal(float x, float y, int octaves, uint32_t seed) {
    float sum = 0;
    float strength = 0.5F;
    for (int i = 0; i < octaves; ++i) {
        sum += strength * Noise(x, y, seed + static_cast<uint32_t>(i));
        const float turned = 1.6F * x - 1.2F * y;
        y = 1.2F * x + 1.6F * y;
        x = turned;
        strength *= 0.5F;
    }
    return sum;
}

// Sharp crests, 0 to about 1.
inline float Ridges(float x, float y, int octaves, uint32_t seed) {
    float sum = 0;
    float strength = 0.5F;
    float weight = 1;
    for (int i = 0; i < octaves; ++i) {
        float crest = 1 - std::fabs(Noise(x, y, seed + static_cast<uint32_t>(i)));
        crest *= crest * weight;
        weight = Clamp01(crest * 1.7F);
        sum += strength * crest;
        const float turned = 1.6F * x - 1.2F * y;
        y = 1.2F * x + 1.6F * y;
        x = turned;
        strength *= 0.5F;
    }
    return sum;
}

}  // namespace sample
