// SPDX-License-Identifier: Apache-2.0
#include "tools/sample/camera.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

#include "tools/sample/noise.h"

namespace sample {
namespace {

constexpr float FocusDistance = 32;       // metres
constexpr float ApertureStrength = 5.5F;  // blur radius at one metre for a picture 1000 pixels wide
constexpr float FullWell = 9000;          // electrons at light 1 in the green channel
constexpr float ReadNoise = 5;            // electrons
constexpr float SensorPattern = 0.007F;   // spread of the pixels' sensitivities
constexpr float RawSteps = 4095;          // 12 bits
constexpr float RawWhite = 1.35F;         // the light at which a green pixel is full
constexpr uint32_t SensorSeed = 0x5EED0060;
constexpr std::array<float, 3> Sensitivity = {0.56F, 1.0F, 0.71F};
constexpr size_t DiscSamples = 20;

float Get(Colour const& colour, int channel) {
    return channel == 0 ? colour.r : (channel == 1 ? colour.g : colour.b);
}

// Red, green, green, blue.
int ChannelAt(int x, int y) {
    return (x & 1) == (y & 1) ? ((x & 1) == 0 ? 0 : 2) : 1;
}

// Nearly normal, by the sum of four even values.
float Gauss(int x, int y, uint32_t seed) {
    const float sum = Unit(x, y, seed) + Unit(x, y, seed + 1) + Unit(x, y, seed + 2) + Unit(x, y, seed + 3);
    return (sum - 2) * 1.7320508F;
}

class Sensor {
public:
    Sensor(Frame frame, uint32_t seed)
        : m_frame(std::move(frame)), m_seed(seed * 7919 + 17), m_width(m_frame.width), m_height(m_frame.height) {
        // Even over the disc, by the golden angle.
        for (size_t i = 0; i < DiscSamples; ++i) {
            const float angle = 2.3999632F * static_cast<float>(i);
            const float reach = std::sqrt((static_cast<float>(i) + 0.5F) / DiscSamples);
            m_disc.at(i) = {reach * std::cos(angle), reach * std::sin(angle)};
        }
    }

    void Expose() {
        m_mosaic.resize(m_frame.colour.size());
        InBands(m_height, [this](int begin, int end) {
            for (int y = begin; y < end; ++y) {
                for (int x = 0; x < m_width; ++x) m_mosaic[m_frame.At(x, y)] = Read(x, y);
            }
        });
        m_frame.colour = std::vector<Colour>();
        m_frame.depth = std::vector<float>();
    }

    Colour Demosaic(int x, int y) const;

private:
    float Light(int x, int y, int channel) const {
        x = std::clamp(x, 0, m_width - 1);
        y = std::clamp(y, 0, m_height - 1);
        return Get(m_frame.colour[m_frame.At(x, y)], channel);
    }

    // The optics never resolve single pixels: a small kernel everywhere, a disc where it is out of focus.
    float ThroughLens(int x, int y, int channel) const {
        const float depth = m_frame.depth[m_frame.At(x, y)];
        const float radius =
            ApertureStrength * static_cast<float>(m_width) / 1000 * std::fabs(1 / depth - 1 / FocusDistance);
        if (radius < 0.9F) {
            const float edges = Light(x - 1, y, channel) + Light(x + 1, y, channel) + Light(x, y - 1, channel) +
                                Light(x, y + 1, channel);
            const float corners = Light(x - 1, y - 1, channel) + Light(x + 1, y - 1, channel) +
                                  Light(x - 1, y + 1, channel) + Light(x + 1, y + 1, channel);
            return 0.26F * Light(x, y, channel) + 0.125F * edges + 0.06F * corners;
        }
        float sum = 0;
        for (size_t i = 0; i < DiscSamples; ++i) {
            // Jittered, so that no pattern of samples shows.
            const float jitter = static_cast<float>((Hash(x, y, 99) >> (i % 24)) & 255U) / 256;
            sum += Light(x + static_cast<int>(std::floor(radius * m_disc.at(i).first + jitter)),
                         y + static_cast<int>(std::floor(radius * m_disc.at(i).second + 1 - jitter)), channel);
        }
        return sum / DiscSamples;
    }

    float Vignetting(int x, int y) const {
        const float u = (static_cast<float>(x) + 0.5F) / static_cast<float>(m_width) - 0.5F;
        const float v = (static_cast<float>(y) + 0.5F) / static_cast<float>(m_height) - 0.5F;
        const float r2 = (u * u + v * v) * 2;
        return 1 - 0.36F * r2 + 0.06F * r2 * r2;
    }

    // One pixel read out and white balanced.
    float Read(int x, int y) const {
        const int channel = ChannelAt(x, y);
        const float sensitivity = Sensitivity.at(static_cast<size_t>(channel));
        const float pattern = 1 + SensorPattern * Gauss(x, y, SensorSeed);
        const float electrons =
            std::max(0.0F, ThroughLens(x, y, channel) * Vignetting(x, y) * sensitivity * pattern) * FullWell;
        const float noisy = electrons + Gauss(x, y, m_seed) * std::sqrt(electrons + ReadNoise * ReadNoise);
        const float steps = std::round(std::clamp(noisy / FullWell / RawWhite, -0.01F, 1.0F) * RawSteps);
        return steps / RawSteps * RawWhite / sensitivity;
    }

    // The mosaic is mirrored at its edges, which keeps the colours of its pixels.
    float Raw(int x, int y) const {
        if (x < 0) x = -x;
        if (y < 0) y = -y;
        if (x >= m_width) x = 2 * m_width - 2 - x;
        if (y >= m_height) y = 2 * m_height - 2 - y;
        return m_mosaic[m_frame.At(x, y)];
    }

    Frame m_frame;
    uint32_t m_seed;
    int m_width;
    int m_height;
    std::vector<float> m_mosaic;
    std::array<std::pair<float, float>, DiscSamples> m_disc{};
};

// Gradient-corrected bilinear interpolation: H. Malvar, L. He, R. Cutler, "High-quality linear interpolation for
// demosaicing of Bayer-patterned color images", ICASSP 2004.
Colour Sensor::Demosaic(int x, int y) const {
    const float centre = Raw(x, y);
    const float sides = Raw(x - 1, y) + Raw(x + 1, y);
    const float ends = Raw(x, y - 1) + Raw(x, y + 1);
    const float farSides = Raw(x - 2, y) + Raw(x + 2, y);
    const float farEnds = Raw(x, y - 2) + Raw(x, y + 2);
    const float diagonals = Raw(x - 1, y - 1) + Raw(x + 1, y - 1) + Raw(x - 1, y + 1) + Raw(x + 1, y + 1);
    if (ChannelAt(x, y) == 1) {
        const float inRow = (5 * centre + 4 * sides - diagonals - farSides + 0.5F * farEnds) / 8;
        const float inColumn = (5 * centre + 4 * ends - diagonals - farEnds + 0.5F * farSides) / 8;
        return (y & 1) == 0 ? Colour{inRow, centre, inColumn} : Colour{inColumn, centre, inRow};
    }
    const float green = (4 * centre + 2 * (sides + ends) - farSides - farEnds) / 8;
    const float opposite = (6 * centre + 2 * diagonals - 1.5F * (farSides + farEnds)) / 8;
    return ChannelAt(x, y) == 0 ? Colour{centre, green, opposite} : Colour{opposite, green, centre};
}

// Linear light to 0 to 255: the gamma of sRGB with a soft shoulder and a little contrast.
class ToneCurve {
public:
    ToneCurve() {
        for (size_t i = 0; i < m_values.size(); ++i) {
            const double light = static_cast<double>(i) / Steps;
            const double rolled = light < 0.7 ? light : 0.7 + 0.3 * (1 - std::exp(-(light - 0.7) / 0.3));
            const double encoded = rolled <= 0.0031308 ? 12.92 * rolled : 1.055 * std::pow(rolled, 1 / 2.4) - 0.055;
            const double contrast = encoded + 0.10 * (encoded - 0.5) * 4 * encoded * (1 - encoded);
            m_values.at(i) = static_cast<float>(255 * std::clamp(contrast, 0.0, 1.0));
        }
    }
    float At(float light) const {
        const float place = std::clamp(light, 0.0F, Limit) * Steps;
        const auto low = static_cast<size_t>(place);
        const size_t high = std::min(low + 1, m_values.size() - 1);
        return Mix(m_values[low], m_values[high], place - static_cast<float>(low));
    }

private:
    static constexpr int Steps = 4096;
    static constexpr float Limit = 2;
    std::array<float, static_cast<size_t>(Steps) * 2 + 1> m_values{};
};

// From the sensor's colours to the picture's.
Colour Saturate(Colour in) {
    return {1.34F * in.r - 0.26F * in.g - 0.08F * in.b, -0.13F * in.r + 1.26F * in.g - 0.13F * in.b,
            -0.04F * in.r - 0.24F * in.g + 1.28F * in.b};
}

float Luma(unsigned char const* pixel) {
    return 0.299F * static_cast<float>(pixel[0]) + 0.587F * static_cast<float>(pixel[1]) +
           0.114F * static_cast<float>(pixel[2]);
}

// What lies below the threshold is taken for noise.
float Core(float difference) {
    constexpr float Threshold = 2.5F;
    if (difference > Threshold) return difference - Threshold;
    return difference < -Threshold ? difference + Threshold : 0;
}

void SharpenRow(Picture const& in, Picture& out, int y) {
    for (int x = 0; x < in.width; ++x) {
        const int left = std::max(x - 1, 0);
        const int right = std::min(x + 1, in.width - 1);
        const int up = std::max(y - 1, 0);
        const int down = std::min(y + 1, in.height - 1);
        const float around =
            (Luma(in.At(left, y)) + Luma(in.At(right, y)) + Luma(in.At(x, up)) + Luma(in.At(x, down))) / 4;
        const float gain = std::clamp(0.75F * Core(Luma(in.At(x, y)) - around), -24.0F, 24.0F);
        for (int channel = 0; channel < 3; ++channel) {
            const float value = static_cast<float>(in.At(x, y)[channel]) + gain;
            out.At(x, y)[channel] = static_cast<unsigned char>(std::lround(std::clamp(value, 0.0F, 255.0F)));
        }
    }
}

}  // namespace

Picture Photograph(Frame frame, uint32_t seed) {
    const int width = frame.width;
    const int height = frame.height;
    Sensor sensor(std::move(frame), seed);
    sensor.Expose();
    const ToneCurve curve;
    Picture developed(width, height);
    InBands(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) {
            for (int x = 0; x < width; ++x) {
                const Colour colour = Saturate(sensor.Demosaic(x, y));
                unsigned char* pixel = developed.At(x, y);
                pixel[0] = static_cast<unsigned char>(std::lround(curve.At(colour.r)));
                pixel[1] = static_cast<unsigned char>(std::lround(curve.At(colour.g)));
                pixel[2] = static_cast<unsigned char>(std::lround(curve.At(colour.b)));
            }
        }
    });
    Picture sharp(width, height);
    InBands(height, [&](int begin, int end) {
        for (int y = begin; y < end; ++y) SharpenRow(developed, sharp, y);
    });
    return sharp;
}

}  // namespace sample
