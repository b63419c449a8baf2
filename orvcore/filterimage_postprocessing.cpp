// SPDX-License-Identifier: Apache-2.0
// The post-processing steps of image filters. They work on clones: the stored output stays as it is.
#include <opencv2/imgproc/imgproc_c.h>
#include <wx/debug.h>

#include <algorithm>
#include <array>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "orvcore/filterimage.h"
#include "tolbase/exception.h"
#include "tolcore/levels.h"
#include "tolcore/saturation.h"

namespace {

// Where the sliders stood at the end of the last call of any filter. The start values are no order that sliders can
// have, so the first call always counts as a change.
struct LevelsMemory {
    int shadows = 255;
    int midtones = 127;
    int highlights = 0;
};
LevelsMemory levelsMemory;

enum MapType : int { MapGray = 0, MapColor = 1, MapColorOverlay = 2, MapColorOverlayInverted = 3 };

[[noreturn]] void Fail(int line, char const* message) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorMessage, message);
}

Parameter SliderFor(char const* name, int value) {
    return CreateParameterIntMinMax(name, "", value, 0, 255);
}

// Blue becomes 0 and green its complement; red stays.
void TurnIntoColourMap(Image& picture) {
    cv::Mat pixels = picture;
    if (pixels.depth() != CV_8U || pixels.channels() < 2) Fail(__LINE__, "A colour map needs a picture in colour.");
    auto const step = static_cast<size_t>(pixels.channels());
    for (int row = 0; row < pixels.rows; ++row) {
        auto* pixel = pixels.ptr<unsigned char>(row);
        for (int column = 0; column < pixels.cols; ++column, pixel += step) {
            pixel[0] = 0;
            pixel[1] = static_cast<unsigned char>(255 - pixel[1]);
        }
    }
}

// Copies `map` over `picture` where its gray value is at most 100, or above 100 for `inverted`.
void Overlay(Image& picture, Image const& map, bool inverted) {
    Image const gray = map.ToGray();
    cv::Mat const grayPixels = gray;
    cv::Mat mask;
    cv::threshold(grayPixels, mask, 100.0, 255.0, inverted ? cv::THRESH_BINARY : cv::THRESH_BINARY_INV);
    CvMat const maskHeader = cvMat(mask);
    cvCopy(static_cast<_IplImage const*>(map), static_cast<_IplImage*>(picture), &maskHeader);
}

using Histogram = std::array<int, 256>;

// Counts of the greatest channel of each pixel.
Histogram MaximumHistogram(cv::Mat const& pixels) {
    Histogram histogram{};
    int const channels = pixels.channels();
    for (int row = 0; row < pixels.rows; ++row) {
        auto const* pixel = pixels.ptr<unsigned char>(row);
        for (int column = 0; column < pixels.cols; ++column, pixel += channels) {
            ++histogram[*std::max_element(pixel, pixel + channels)];
        }
    }
    return histogram;
}

// 2.5 times the mean brightness of the pixels that are left when the darkest and the brightest fifth are taken away.
float CompressionPoint(Histogram const& histogram, float fifth) {
    float dark = 0.0F;
    int i = 0;
    for (; dark < fifth && i < 256; ++i) dark += static_cast<float>(histogram[static_cast<size_t>(i)]);
    float bright = 0.0F;
    int j = 255;
    for (; bright < fifth && j >= 0; --j) bright += static_cast<float>(histogram[static_cast<size_t>(j)]);
    // What the last bin of each end holds beyond its fifth belongs to the middle.
    float below = 0.0F;
    float above = 0.0F;
    if (i > 0) {
        auto const last = static_cast<float>(histogram[static_cast<size_t>(i - 1)]);
        below = last * ((dark - fifth) / last);
    }
    if (j < 255) {
        int const next = j + 1;
        auto const last = static_cast<float>(histogram[static_cast<size_t>(next)]);
        above = ((bright - fifth) / last) * last;
    }
    float count = below + above;
    float sum = static_cast<float>(j + 1) * above + static_cast<float>(i - 1) * below;
    for (int k = i; k <= j; ++k) {
        auto const pixels = static_cast<float>(histogram[static_cast<size_t>(k)]);
        count += pixels;
        sum += static_cast<float>(k) * pixels;
    }
    return count > 0.0F ? static_cast<float>((sum * 2.5) / count) : 0.0F;
}

void CompressAutomatically(Image& picture) {
    cv::Mat pixels = picture;
    if (pixels.depth() != CV_8U) Fail(__LINE__, "The scale needs a picture of 8 bits a channel.");
    auto const fifth = static_cast<float>(pixels.cols * 0.2 * pixels.rows);
    float const point = CompressionPoint(MaximumHistogram(pixels), fifth);
    std::array<unsigned char, 256> table{};
    for (int v = 1; v < 256; ++v) {
        table[static_cast<size_t>(v)] = static_cast<unsigned char>((v * 255.0) / (static_cast<float>(v) + point));
    }
    cv::LUT(pixels, cv::Mat(1, 256, CV_8U, table.data()), pixels);
}

}  // namespace

void OrvFilterImage::InitPostProcessingLevels() {
    m_parametersPostProcessing.push_back(SliderFor("Highlights", 255));
    m_parametersPostProcessing.push_back(SliderFor("Midtones", 127));
    m_parametersPostProcessing.push_back(SliderFor("Shadows", 0));
}

void OrvFilterImage::InitPostProcessingMap() {
    VecString const types = {"Gray", "Color", "Color Overlay", "Color Overlay Inverted"};
    m_parametersPostProcessing.push_back(CreateParameterOption("Map Type", "", types, MapColor));
    m_parametersPostProcessing.push_back(CreateParameterOption("Show Saturation", "", {"Off", "On"}, 0));
}

void OrvFilterImage::InitPostProcessingScale() {
    m_parametersPostProcessing.push_back(CreateParameterIntMinMax("Scale (0 = auto)", "", 0, 0, 200));
}

void OrvFilterImage::ApplyPostProcessing(OrvFileId id) {
    m_outputImagePostProcessing[id] = m_outputImage[id];
}

void OrvFilterImage::ApplyPostProcessingLevels(OrvFileId id) {
    wxASSERT(m_parametersPostProcessing.size() > 2);
    if (m_parametersPostProcessing.size() <= 2) {
        OrvFilterImage::ApplyPostProcessing(id);
        return;
    }
    int highlights = m_parametersPostProcessing[0].GetValue<int>();
    int midtones = m_parametersPostProcessing[1].GetValue<int>();
    int shadows = m_parametersPostProcessing[2].GetValue<int>();
    if (shadows > highlights) {
        if (shadows != levelsMemory.shadows) {
            shadows = highlights - 1;
        } else if (highlights != levelsMemory.highlights) {
            highlights = shadows + 1;
        }
    }
    if (shadows != levelsMemory.shadows || highlights != levelsMemory.highlights) {
        midtones = shadows + (highlights - shadows) / 2;
    }
    levelsMemory.shadows = std::clamp(shadows, 0, 255);
    levelsMemory.midtones = std::clamp(midtones, 0, 255);
    levelsMemory.highlights = std::clamp(highlights, 0, 255);
    int levels[3] = {levelsMemory.highlights, levelsMemory.midtones, levelsMemory.shadows};
    for (size_t i = 0; i < 3; ++i) m_parametersPostProcessing[i].Set(boost::any(levels[i]));

    m_outputImagePostProcessing[id] = m_outputImage[id].Clone();
    if (!m_outputImage[id].IsOk()) return;
    tcvLevels(m_outputImage[id], m_outputImagePostProcessing[id], levels, 16, 0);
}

void OrvFilterImage::ApplyPostProcessingMap(OrvFileId id) {
    Image& processed = m_outputImagePostProcessing[id];
    processed = m_outputImage[id].Clone();
    if (!processed.IsOk()) return;
    int const type = m_parametersPostProcessing.at(0).GetValue<int>();
    if (type == MapColorOverlay || type == MapColorOverlayInverted) {
        Image map = m_outputImage[id].Clone();
        TurnIntoColourMap(map);
        // Throws where the two differ in size or type.
        cvCopy(static_cast<_IplImage const*>(GetInputImage(id)), static_cast<_IplImage*>(processed));
        Overlay(processed, map, type == MapColorOverlayInverted);
    } else if (type > MapGray) {
        TurnIntoColourMap(processed);
    }
    if (m_parametersPostProcessing.at(1).GetValue<int>() == 1) ShowSaturation(id);
}

void OrvFilterImage::ShowSaturation(OrvFileId id) {
    constexpr double saturated = 250.0;
    Image gray = GetInputImage(id).ToGray().Clone();
    if (!gray.IsOk()) Fail(__LINE__, "There is no picture whose saturation could be shown.");
    Image map = Image::Create(gray.Width(), gray.Height(), IPL_DEPTH_8U, 1);
    cv::Mat grayPixels = gray;
    cv::Mat const mapPixels = map;
    cv::Mat processed = m_outputImagePostProcessing[id];
    saturationMap(gray, map, saturated);
    processed.setTo(cv::Scalar(0, 255, 255, 0), mapPixels == 0);
    cv::bitwise_not(grayPixels, grayPixels);
    saturationMap(gray, map, saturated);
    processed.setTo(cv::Scalar(255, 0, 0, 0), mapPixels == 0);
}

void OrvFilterImage::ApplyPostProcessingScale(OrvFileId id) {
    Image& processed = m_outputImagePostProcessing[id];
    processed = m_outputImage[id].Clone();
    if (!processed.IsOk()) return;
    int const scale = m_parametersPostProcessing.at(0).GetValue<int>();
    if (scale >= 1) {
        cv::Mat pixels = processed;
        pixels.convertTo(pixels, -1, scale, 0.0);
    } else {
        CompressAutomatically(processed);
    }
}

bool OrvFilterImage::CalculateWarningFromMap(Image const& first, Image const& second) const {
    Image const firstGray = first.ToGray();
    Image const secondGray = second.ToGray();
    cv::Mat const firstPixels = firstGray;
    cv::Mat const secondPixels = secondGray;
    if (firstPixels.empty() || secondPixels.empty()) Fail(__LINE__, "A warning needs two maps.");
    cv::Mat lower;
    cv::Mat upper;
    cv::threshold(firstPixels, lower, 240.0, 255.0, cv::THRESH_BINARY_INV);
    cv::threshold(secondPixels, upper, 200.0, 255.0, cv::THRESH_BINARY);
    cv::bitwise_and(upper, lower, upper);
    double const pixels = static_cast<double>(upper.cols) * upper.rows;
    return cv::countNonZero(upper) / pixels > 0.02;
}
