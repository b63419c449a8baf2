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

inline constexpr float GradientX[8] = {1, -1, 0.5F, 0.5F, 1, -1, -0.5F, -0.5F};
inline constexpr float GradientY[8] = {0.5F, 0.5F, 1, -1, -0.5F, -0.5F, 1, -1};

// The height of a plane through a lattice point, its slope drawn by the point's two products.
inline float Plane(uint32_t px, uint32_t py, float x, float y) {
    uint32_t h = px ^ py;
    h = (h ^ (h >> 15U)) * 0x2C1B3C6DU;
    const uint32_t i = h >> 29U;
    return GradientX[i] * x + GradientY[i] * y;
}

inline int32_t Floor(float value) {
    const auto whole = static_cast<int32_t>(value);
    return static_cast<float>(whole) > value ? whole - 1 : whole;
}

// Gradient noise, about -1 to 1, one feature a unit.
inline float Noise(float x, float y, uint32_t seed) {
    const int32_t ix = Floor(x);
    const int32_t iy = Floor(y);
    x -= static_cast<float>(ix);
    y -= static_cast<float>(iy);
    const uint32_t left = static_cast<uint32_t>(ix) * 0x8DA6B343U;
    const uint32_t right = left + 0x8DA6B343U;
    const uint32_t salt = seed * 0xCB1AB31FU;
    const uint32_t top = (static_cast<uint32_t>(iy) * 0xD8163841U) ^ salt;
    const uint32_t bottom = ((static_cast<uint32_t>(iy) + 1) * 0xD8163841U) ^ salt;
    const float u = x * x * x * (x * (x * 6 - 15) + 10);
    const float v = y * y * y * (y * (y * 6 - 15) + 10);
    const float upper = Mix(Plane(left, top, x, y), Plane(right, top, x - 1, y), u);
    const float lower = Mix(Plane(left, bottom, x, y - 1), Plane(right, bottom, x - 1, y - 1), u);
    return 1.1F * Mix(upper, lower, v);
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
