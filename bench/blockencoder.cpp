// SPDX-License-Identifier: Apache-2.0
#include "bench/blockencoder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <opencv2/imgproc.hpp>
#include <vector>

namespace bench {
namespace {

constexpr int kSide = 8;
using Block = std::array<float, 64>;
using Table = std::array<int, 64>;

constexpr Table kLuma = {16, 11, 10, 16, 24,  40,  51,  61,  12, 12, 14, 19, 26,  58,  60,  55,
                         14, 13, 16, 24, 40,  57,  69,  56,  14, 17, 22, 29, 51,  87,  80,  62,
                         18, 22, 37, 56, 68,  109, 103, 77,  24, 35, 55, 64, 81,  104, 113, 92,
                         49, 64, 78, 87, 103, 121, 120, 101, 72, 92, 95, 98, 112, 100, 103, 99};
constexpr Table kChroma = {17, 18, 24, 47, 99, 99, 99, 99, 18, 21, 26, 66, 99, 99, 99, 99, 24, 26, 56, 99, 99, 99,
                           99, 99, 47, 66, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99,
                           99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99, 99};

Table Scale(Table const& table, int quality) {
    const int factor = quality < 50 ? 5000 / quality : 200 - 2 * quality;
    Table scaled{};
    for (size_t i = 0; i < scaled.size(); ++i) scaled[i] = std::clamp((table[i] * factor + 50) / 100, 1, 255);
    return scaled;
}

Block MakeBasis() {
    const double pi = std::acos(-1.0);
    Block basis{};
    for (size_t u = 0; u < kSide; ++u) {
        for (size_t x = 0; x < kSide; ++x) {
            const double scale = u == 0 ? std::sqrt(0.125) : 0.5;
            basis[u * kSide + x] =
                static_cast<float>(scale * std::cos(static_cast<double>((2 * x + 1) * u) * pi / 16.0));
        }
    }
    return basis;
}

Block Transpose(Block const& block) {
    Block result{};
    for (size_t y = 0; y < kSide; ++y) {
        for (size_t x = 0; x < kSide; ++x) result[x * kSide + y] = block[y * kSide + x];
    }
    return result;
}

Block Multiply(Block const& a, Block const& b) {
    Block result{};
    for (size_t y = 0; y < kSide; ++y) {
        for (size_t k = 0; k < kSide; ++k) {
            for (size_t x = 0; x < kSide; ++x) result[y * kSide + x] += a[y * kSide + k] * b[k * kSide + x];
        }
    }
    return result;
}

float Round(float value, Rounding rounding) {
    switch (rounding) {
        case Rounding::Down:
            return std::floor(value);
        case Rounding::Up:
            return std::ceil(value);
        case Rounding::Nearest:
            break;
    }
    return std::round(value);
}

void EncodeChannel(cv::Mat& channel, Table const& table, Rounding rounding) {
    static const Block basis = MakeBasis();
    static const Block transposed = Transpose(basis);
    for (int top = 0; top < channel.rows; top += kSide) {
        for (int left = 0; left < channel.cols; left += kSide) {
            Block block{};
            for (int i = 0; i < 64; ++i) {
                block[static_cast<size_t>(i)] = channel.at<float>(top + i / kSide, left + i % kSide) - 128.0F;
            }
            block = Multiply(Multiply(basis, block), transposed);
            for (size_t i = 0; i < block.size(); ++i) {
                const auto step = static_cast<float>(table[i]);
                block[i] = Round(block[i] / step, rounding) * step;
            }
            block = Multiply(Multiply(transposed, block), basis);
            // A decoder gives whole samples.
            for (int i = 0; i < 64; ++i) {
                channel.at<float>(top + i / kSide, left + i % kSide) =
                    std::clamp(std::round(block[static_cast<size_t>(i)] + 128.0F), 0.0F, 255.0F);
            }
        }
    }
}

}  // namespace

cv::Mat EncodeInBlocks(cv::Mat const& picture, int quality, Rounding rounding) {
    const int right = (kSide - picture.cols % kSide) % kSide;
    const int bottom = (kSide - picture.rows % kSide) % kSide;
    cv::Mat whole;
    cv::copyMakeBorder(picture, whole, 0, bottom, 0, right, cv::BORDER_REPLICATE);
    cv::cvtColor(whole, whole, cv::COLOR_BGR2YCrCb);
    std::vector<cv::Mat> channels;
    cv::split(whole, channels);
    for (size_t i = 0; i < channels.size(); ++i) {
        channels[i].convertTo(channels[i], CV_32F);
        EncodeChannel(channels[i], Scale(i == 0 ? kLuma : kChroma, quality), rounding);
        channels[i].convertTo(channels[i], CV_8U);
    }
    cv::merge(channels, whole);
    cv::cvtColor(whole, whole, cv::COLOR_YCrCb2BGR);
    return whole(cv::Rect(0, 0, picture.cols, picture.rows)).clone();
}

}  // namespace bench
