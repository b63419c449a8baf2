// SPDX-License-Identifier: Apache-2.0
#include "filters/noisemap.h"

#include <algorithm>
#include <cmath>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "filters/panelfactory.h"
#include "tolbase/progress.h"
#include "tolimage/parallel.h"

namespace {

// What the median of the residual's magnitudes is for normally distributed noise of deviation 1. The diagonal detail
// is a sum and difference of four pixels, taken here without the transform's factor of 1/2: twice 0.6745. What a
// median filter takes away is smaller than the noise.
constexpr double kWaveletMedian = 2 * 0.6745;
constexpr double kMedianMedian = 0.5819;

// Counts of magnitudes, which are whole numbers.
class MagnitudeCounts {
public:
    explicit MagnitudeCounts(size_t largest) : m_counts(largest + 1) {}

    void Clear() {
        std::fill(m_counts.begin(), m_counts.end(), 0);
        m_total = 0;
    }
    void Add(int value) {
        ++m_counts[static_cast<size_t>(std::abs(value))];
        ++m_total;
    }
    // The median of grouped data: the values counted at n are taken as spread evenly from n - 1/2 to n + 1/2, those at
    // 0 as spread from 0 to 1/2.
    double Median() const {
        if (m_total == 0 || m_counts[0] == m_total) return 0.0;
        double const half = m_total / 2.0;
        double below = 0.0;
        size_t n = 0;
        while (below + m_counts[n] < half) below += m_counts[n++];
        double const inside = (half - below) / m_counts[n];
        return n == 0 ? inside / 2.0 : static_cast<double>(n) - 0.5 + inside;
    }

private:
    std::vector<int> m_counts;
    int m_total = 0;
};

// The diagonal details of the Haar transform in the rows and columns of one block, which begins at an even place.
void CountWavelet(cv::Mat const& grey, cv::Rect const& block, MagnitudeCounts& counts) {
    for (int y = block.y; y + 1 < block.y + block.height; y += 2) {
        unsigned char const* upper = grey.ptr(y);
        unsigned char const* lower = grey.ptr(y + 1);
        for (int x = block.x; x + 1 < block.x + block.width; x += 2) {
            counts.Add(upper[x] - upper[x + 1] - lower[x] + lower[x + 1]);
        }
    }
}

// `smooth` begins at the row `top` of the picture.
void CountMedian(cv::Mat const& grey, cv::Mat const& smooth, int top, cv::Rect const& block, MagnitudeCounts& counts) {
    for (int y = block.y; y < block.y + block.height; ++y) {
        unsigned char const* row = grey.ptr(y);
        unsigned char const* smoothRow = smooth.ptr(y - top);
        for (int x = block.x; x < block.x + block.width; ++x) counts.Add(row[x] - smoothRow[x]);
    }
}

// The rows from `first` on, filtered as if the whole picture were: with their neighbours on both sides.
cv::Mat SmoothRows(cv::Mat const& grey, int first, int count) {
    int const top = std::max(0, first - 1);
    int const bottom = std::min(grey.rows, first + count + 1);
    cv::Mat const rows = grey.rowRange(top, bottom).clone();
    cv::Mat smooth;
    cv::medianBlur(rows, smooth, 3);
    return smooth.rowRange(first - top, first - top + count);
}

// The wavelet takes pixels by twos.
int UsedBlockSize(NoiseMethod method, int blockSize) {
    int const size = std::max(2, blockSize);
    return method == NoiseMethodWavelet ? size - size % 2 : size;
}

// Each block as wide and as high as its pixels.
void DrawBlocks(cv::Mat const& shown, int size, cv::Mat& pixels) {
    cv::Rect const all(0, 0, pixels.cols, pixels.rows);
    for (int row = 0; row < shown.rows; ++row) {
        for (int column = 0; column < shown.cols; ++column) {
            cv::Rect const block = cv::Rect(column * size, row * size, size, size) & all;
            pixels(block).setTo(cv::Scalar::all(shown.at<unsigned char>(row, column)));
        }
    }
}

void FillBlockRow(cv::Mat const& grey, NoiseMethod method, int size, int row, cv::Mat& levels) {
    bool const wavelet = method == NoiseMethodWavelet;
    cv::Rect const all(0, 0, grey.cols, grey.rows);
    cv::Rect block = cv::Rect(0, row * size, size, size) & all;
    cv::Mat const smooth = wavelet ? cv::Mat() : SmoothRows(grey, block.y, block.height);
    MagnitudeCounts counts(wavelet ? 510 : 255);
    for (int column = 0; column < levels.cols; ++column) {
        block = cv::Rect(column * size, row * size, size, size) & all;
        counts.Clear();
        if (wavelet) {
            CountWavelet(grey, block, counts);
        } else {
            CountMedian(grey, smooth, block.y, block, counts);
        }
        double const scale = wavelet ? kWaveletMedian : kMedianMedian;
        levels.at<float>(row, column) = static_cast<float>(counts.Median() / scale);
    }
}

}  // namespace

cv::Mat CalculateNoiseLevels(cv::Mat const& grey, NoiseMethod method, int blockSize) {
    int const size = UsedBlockSize(method, blockSize);
    cv::Mat levels((grey.rows + size - 1) / size, (grey.cols + size - 1) / size, CV_32F);
    RunInParallel(levels.rows, [&](int row) { FillBlockRow(grey, method, size, row, levels); });
    return tcvHasAborted() ? cv::Mat() : levels;
}

OrvFilterNoiseMap::OrvFilterNoiseMap() : OrvFilterImage("Noise Map") {
    m_filterType = FilterTypeLocalAnalysis;
    m_description =
        "Shows how much noise each block of the picture has. A part that comes from another picture, or was smoothed "
        "or scaled, can have more or less noise than the rest.";
    m_parametersInput.push_back(CreateParameterOption("Method", "How the noise is told from the picture",
                                                      {"Wavelet", "Median"}, NoiseMethodWavelet));
    m_parametersInput.push_back(CreateParameterIntMinMax("Block Size", "Side of a block in pixels", 16, 4, 128));
    m_parametersInput.push_back(CreateParameterIntMinMax(
        "Strength", "Brightness of the map: its grey levels for one grey level of noise", 50, 1, 200));
}

void OrvFilterNoiseMap::Apply(OrvFileId id) {
    if (tcvHasAborted()) return;
    Image const picture = GetInputImage(id).ToGray();
    cv::Mat const grey = picture;
    auto const method = static_cast<NoiseMethod>(m_parametersInput[0].GetValue<int>());
    int const blockSize = m_parametersInput[1].GetValue<int>();
    cv::Mat const levels = CalculateNoiseLevels(grey, method, blockSize);
    if (levels.empty()) return;
    cv::Mat shown;
    levels.convertTo(shown, CV_8U, m_parametersInput[2].GetValue<int>());
    Image map = Image::CreateUnset(grey.cols, grey.rows, IPL_DEPTH_8U, 3);
    if (!map.IsOk()) throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "Out of memory.");
    cv::Mat pixels = map;
    DrawBlocks(shown, UsedBlockSize(method, blockSize), pixels);
    GetOutputImage(id) = map;
}

void OrvFilterNoiseMap::ApplyPostProcessing(OrvFileId id) {
    ApplyPostProcessingMap(id);
}

OrvFilterGuiBase* OrvFilterNoiseMap::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}

void OrvFilterNoiseMap::InitPostProcessing() {
    InitPostProcessingMap();
}

// Both methods, at the default block size and strength.
void OrvFilterNoiseMap::CalculateConfigurations() {
    for (int const method : {NoiseMethodWavelet, NoiseMethodMedian}) {
        VecParameter values = m_parametersInput;
        values[0].Set(boost::any(method));
        AddConfiguration(values, -1);
    }
}
