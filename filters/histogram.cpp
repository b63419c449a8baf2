// SPDX-License-Identifier: Apache-2.0
#include "filters/histogram.h"

#include <algorithm>
#include <array>
#include <mutex>
#include <numeric>
#include <opencv2/imgproc.hpp>

#include "filters/panelfactory.h"
#include "tolbase/progress.h"
#include "tolimage/parallel.h"

namespace {

constexpr int kLevels = 256;
constexpr double kClippedShare = 0.01;
constexpr int kRowsAtOnce = 128;

using Counts = std::array<std::array<uint64_t, kLevels>, 4>;

void CountRows(cv::Mat const& rows, Counts& counts) {
    cv::Mat luma;
    cv::cvtColor(rows, luma, cv::COLOR_BGR2GRAY);
    for (int y = 0; y < rows.rows; ++y) {
        unsigned char const* pixel = rows.ptr(y);
        unsigned char const* lumaRow = luma.ptr(y);
        for (int x = 0; x < rows.cols; ++x, pixel += 3) {
            ++counts[0][lumaRow[x]];
            for (size_t channel = 0; channel < 3; ++channel) ++counts[channel + 1][pixel[channel]];
        }
    }
}

wxString Percent(double share) {
    return wxString::FromCDouble(100.0 * share, 2) + " %";
}

}  // namespace

std::vector<std::vector<float>> CalculateHistogram(cv::Mat const& picture) {
    Counts counts{};
    std::mutex mutex;
    RunInParallel((picture.rows + kRowsAtOnce - 1) / kRowsAtOnce, [&](int index) {
        int const first = index * kRowsAtOnce;
        Counts part{};
        CountRows(picture.rowRange(first, std::min(picture.rows, first + kRowsAtOnce)), part);
        std::lock_guard<std::mutex> const lock(mutex);
        for (size_t series = 0; series < counts.size(); ++series) {
            for (size_t level = 0; level < kLevels; ++level) counts[series][level] += part[series][level];
        }
    });
    if (tcvHasAborted()) return {};
    std::vector<std::vector<float>> result;
    for (auto const& series : counts) {
        std::vector<float> values;
        for (uint64_t const count : series) values.push_back(static_cast<float>(count));
        result.push_back(std::move(values));
    }
    return result;
}

HistogramFacts ReadHistogram(std::vector<float> const& counts) {
    HistogramFacts facts;
    double const total = std::accumulate(counts.begin(), counts.end(), 0.0);
    if (total <= 0.0) return facts;
    facts.darkShare = static_cast<double>(counts.front()) / total;
    facts.brightShare = static_cast<double>(counts.back()) / total;
    auto const used = [](float count) { return count > 0.0F; };
    auto const first = std::find_if(counts.begin(), counts.end(), used);
    auto const last = std::find_if(counts.rbegin(), counts.rend(), used).base();
    facts.emptyLevels = static_cast<int>(std::count(first, last, 0.0F));
    return facts;
}

OrvFilterHistogram::OrvFilterHistogram() : OrvFilterPlot("Histogram") {
    m_filterType = FilterTypeGlobalAnalysis;
    m_bars = true;
    m_description =
        "Counts how often each brightness occurs. Regular gaps and peaks tell that the tones were stretched or "
        "compressed after the picture was taken; an end of the scale that holds more than 1 % of the pixels is marked "
        "as clipped.";
    m_parametersInput.push_back(
        CreateParameterOption("Channel", "What is counted", {"Luminance", "Blue", "Green", "Red"}, 0));
    m_parametersOutput.push_back(CreateParameterString("Clipped Shadows", "Share of the pixels at level 0", ""));
    m_parametersOutput.push_back(CreateParameterString("Clipped Highlights", "Share of the pixels at level 255", ""));
    m_parametersOutput.push_back(CreateParameterString(
        "Empty Levels", "Levels without a pixel between the first and the last that has one", ""));
}

void OrvFilterHistogram::Apply(OrvFileId id) {
    if (tcvHasAborted()) return;
    Image const picture = GetInputImage(id).ToColor();
    std::vector<std::vector<float>> series = CalculateHistogram(picture);
    if (series.empty()) return;
    int const channel = m_parametersInput[0].GetValue<int>();
    auto const data = GetPlotData(id);
    data->InitPlotData(0, kLevels - 1, 4, channel, false);
    data->y = std::move(series);
    std::vector<float> const& shown = data->y[static_cast<size_t>(channel)];
    data->yRange = {0.0, static_cast<double>(*std::max_element(shown.begin(), shown.end()))};
}

void OrvFilterHistogram::Apply2NoCache(OrvFileId id) {
    auto const data = GetPlotData(id);
    data->verticalMarkers.clear();
    auto const channel = static_cast<size_t>(data->coi);
    if (!data->IsOk() || channel >= data->y.size() || data->y[channel].size() != kLevels) return;
    HistogramFacts const facts = ReadHistogram(data->y[channel]);
    std::vector<float> clipped;
    if (facts.darkShare > kClippedShare) clipped.push_back(0.0F);
    if (facts.brightShare > kClippedShare) clipped.push_back(static_cast<float>(kLevels - 1));
    if (!clipped.empty()) data->verticalMarkers.push_back(clipped);
    if (id != Evidence) return;
    m_parametersOutput[0].Set(Percent(facts.darkShare));
    m_parametersOutput[1].Set(Percent(facts.brightShare));
    m_parametersOutput[2].Set(ToString<int>(facts.emptyLevels));
}

OrvFilterGuiBase* OrvFilterHistogram::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}
