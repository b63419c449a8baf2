// SPDX-License-Identifier: Apache-2.0
#include "tolcore/levels.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <opencv2/core.hpp>

#include "tolbase/exception.h"

namespace {

using Table = std::array<unsigned char, 256>;

Table StepTable(int shadow) {
    Table table{};
    for (int v = 0; v < 256; ++v) table[static_cast<size_t>(v)] = v < shadow ? 0 : 255;
    return table;
}

// The exponent that moves the midtone to the neutral one's place. A range of one step has no tones between its ends.
double Gamma(int highlight, int midtone, int shadow) {
    int const range = highlight - shadow;
    if (range < 2) return 1.0;
    int const moved = std::clamp(midtone - shadow, 1, range - 1);
    int const neutral = range / 2;
    if (moved == neutral) return 1.0;
    return std::log(static_cast<double>(neutral) / range) / std::log(static_cast<double>(moved) / range);
}

Table LevelsTable(int highlight, int midtone, int shadow) {
    if (highlight <= shadow) return StepTable(shadow);
    double const gamma = Gamma(highlight, midtone, shadow);
    Table table{};
    for (int v = 0; v < 256; ++v) {
        double const place = std::clamp(static_cast<double>(v - shadow) / (highlight - shadow), 0.0, 1.0);
        table[static_cast<size_t>(v)] = static_cast<unsigned char>(std::lround(255.0 * std::pow(place, gamma)));
    }
    return table;
}

}  // namespace

void tcvLevels(_IplImage* source, _IplImage* destination, int* levels, int /*unused1*/, int /*unused2*/) {
    if (source == nullptr || destination == nullptr || levels == nullptr) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "Levels need two pictures.");
    }
    cv::Mat const from = cv::cvarrToMat(source);
    cv::Mat to = cv::cvarrToMat(destination);
    if (from.depth() != CV_8U || from.type() != to.type() || from.size() != to.size()) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           "Levels need two pictures of 8 bits a channel that are alike in size and channels.");
    }
    Table table = LevelsTable(levels[0], levels[1], levels[2]);
    cv::LUT(from, cv::Mat(1, 256, CV_8U, table.data()), to);
}
