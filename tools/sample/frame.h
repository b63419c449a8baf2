// SPDX-License-Identifier: Apache-2.0
// Pictures in memory and the work on them by bands of rows.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <thread>
#include <vector>

namespace sample {

struct Colour {
    float r = 0;
    float g = 0;
    float b = 0;
};
inline Colour operator+(Colour a, Colour b) {
    return {a.r + b.r, a.g + b.g, a.b + b.b};
}
inline Colour operator*(Colour a, float s) {
    return {a.r * s, a.g * s, a.b * s};
}
inline Colour operator*(Colour a, Colour b) {
    return {a.r * b.r, a.g * b.g, a.b * b.b};
}
inline Colour Blend(Colour a, Colour b, float t) {
    return a * (1 - t) + b * t;
}

// What the lens sees: linear light, 1 is white paper in the sun, and how far away each point is in metres.
struct Frame {
    Frame(int frameWidth, int frameHeight)
        : width(frameWidth),
          height(frameHeight),
          colour(static_cast<size_t>(width) * static_cast<size_t>(height)),
          depth(colour.size(), 1e9F) {}
    size_t At(int x, int y) const {
        return static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x);
    }
    int width;
    int height;
    std::vector<Colour> colour;
    std::vector<float> depth;
};

// 8 bits, red, green, blue.
struct Picture {
    Picture() = default;
    Picture(int pictureWidth, int pictureHeight)
        : width(pictureWidth),
          height(pictureHeight),
          pixels(static_cast<size_t>(width) * static_cast<size_t>(height) * 3) {}
    unsigned char* At(int x, int y) { return pixels.data() + Offset(x, y); }
    unsigned char const* At(int x, int y) const { return pixels.data() + Offset(x, y); }
    int width = 0;
    int height = 0;
    std::vector<unsigned char> pixels;

private:
    size_t Offset(int x, int y) const {
        return (static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)) * 3;
    }
};

// A place in the picture, in pixels.
struct Box {
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
};

// Calls `work(begin, end)` for bands of 0 to `count` on all processors. The result must not depend on the bands.
inline void InBands(int count, std::function<void(int, int)> const& work) {
    const int bands = std::max(1, std::min(16, static_cast<int>(std::thread::hardware_concurrency())));
    std::vector<std::thread> threads;
    for (int i = 0; i < bands; ++i) {
        threads.emplace_back(work, static_cast<int>(static_cast<int64_t>(count) * i / bands),
                             static_cast<int>(static_cast<int64_t>(count) * (i + 1) / bands));
    }
    for (std::thread& thread : threads) thread.join();
}

}  // namespace sample
