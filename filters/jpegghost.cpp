// SPDX-License-Identifier: Apache-2.0
#include "filters/jpegghost.h"

#include <algorithm>
#include <mutex>

#include "filters/panelfactory.h"
#include "filters/progressshare.h"
#include "tolimage/jpegrecompress.h"

namespace {

constexpr double kProminence = 0.10;

double SquaredDistance(cv::Mat const& grey, int quality) {
    JpegEncoding encoding;
    encoding.quality = quality;
    // Whole numbers far below 2^53: the sum does not depend on its order.
    double sum = 0.0;
    std::mutex mutex;
    RecompressJpegTiles(grey, encoding, [&](cv::Rect const& place, cv::Mat const& tile) {
        double const part = cv::norm(grey(place), tile, cv::NORM_L2SQR);
        std::lock_guard<std::mutex> const lock(mutex);
        sum += part;
    });
    return sum;
}

// The greatest value between a minimum and the next lower value, or the curve's end, in one direction.
float Rim(std::vector<float> const& curve, int minimum, int direction) {
    float const lowest = curve[static_cast<size_t>(minimum)];
    float rim = lowest;
    for (int i = minimum + direction; i >= 0 && i < static_cast<int>(curve.size()); i += direction) {
        float const value = curve[static_cast<size_t>(i)];
        if (value < lowest) break;
        rim = std::max(rim, value);
    }
    return rim;
}

wxString Qualities(std::vector<float> const& qualities) {
    wxString text;
    for (float const quality : qualities) {
        text += (text.empty() ? "" : ", ") + ToString<int>(static_cast<int>(quality));
    }
    return text.empty() ? wxString("none") : text;
}

}  // namespace

std::vector<float> CalculateGhostCurve(cv::Mat const& grey, int first, int last) {
    std::vector<float> curve;
    for (int quality = first; quality <= last; ++quality) {
        double const distance = SquaredDistance(grey, quality);
        if (tcvHasAborted()) break;
        curve.push_back(static_cast<float>(distance / static_cast<double>(grey.total())));
        ShowProgressShare(quality - first + 1, last - first + 1);
    }
    return curve;
}

std::vector<int> FindCurveMinima(std::vector<float> const& curve) {
    std::vector<int> minima;
    std::vector<float> depths(curve.size(), 0.0F);
    for (int i = 1; i + 1 < static_cast<int>(curve.size()); ++i) {
        auto const at = static_cast<size_t>(i);
        float const value = curve[at];
        if (value >= curve[at - 1] || value >= curve[at + 1]) continue;
        float const rim = std::min(Rim(curve, i, -1), Rim(curve, i, 1));
        if (static_cast<double>(value) > (1.0 - kProminence) * static_cast<double>(rim)) continue;
        minima.push_back(i);
        depths[at] = rim - value;
    }
    std::stable_sort(minima.begin(), minima.end(),
                     [&](int a, int b) { return depths[static_cast<size_t>(a)] > depths[static_cast<size_t>(b)]; });
    return minima;
}

OrvFilterJpegGhost::OrvFilterJpegGhost() : OrvFilterPlot("JPEG Ghost Plot") {
    m_filterType = FilterTypeGlobalAnalysis;
    m_description =
        "Saves the picture as JPEG at each quality of a range and plots how much it changes. A dip in the curve lies "
        "at a quality that the picture was saved with before; a second dip can tell of an earlier, lower one.";
    m_parametersInput.push_back(
        CreateParameterIntMinMax("Minimum Quality", "Where the plot begins, in percent", 40, 1, 98));
    m_parametersInput.push_back(
        CreateParameterIntMinMax("Maximum Quality", "Where the plot ends, in percent", 100, 3, 100));
    m_parametersOutput.push_back(
        CreateParameterString("Minimum", "The quality at the deepest dip of the curve, in percent", ""));
    m_parametersOutput.push_back(
        CreateParameterString("Further Minima", "The qualities at the other dips, the deepest first", ""));
}

void OrvFilterJpegGhost::Apply(OrvFileId id) {
    if (tcvHasAborted()) return;
    int const first = m_parametersInput[0].GetValue<int>();
    int const last = m_parametersInput[1].GetValue<int>();
    // A dip needs a neighbour on either side.
    if (last < first + 2) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           "The maximum quality has to be at least 2 above the minimum quality.");
    }
    Image const picture = GetInputImage(id).ToGray();
    std::vector<float> curve = CalculateGhostCurve(picture, first, last);
    if (tcvHasAborted()) return;
    auto const data = GetPlotData(id);
    data->InitPlotData(first, last, 1, 0, false);
    auto const [lowest, highest] = std::minmax_element(curve.begin(), curve.end());
    data->yRange = {static_cast<double>(*lowest), static_cast<double>(*highest)};
    data->y[0] = std::move(curve);
}

void OrvFilterJpegGhost::Apply2NoCache(OrvFileId id) {
    auto const data = GetPlotData(id);
    data->verticalMarkers.clear();
    if (!data->IsOk()) return;
    std::vector<float> first;
    std::vector<float> further;
    for (int const index : FindCurveMinima(data->y[0])) {
        (first.empty() ? first : further).push_back(data->x[static_cast<size_t>(index)]);
    }
    if (!first.empty()) data->verticalMarkers.push_back(first);
    if (!further.empty()) data->verticalMarkers.push_back(further);
    if (id != Evidence) return;
    m_parametersOutput[0].Set(Qualities(first));
    m_parametersOutput[1].Set(Qualities(further));
}

OrvFilterGuiBase* OrvFilterJpegGhost::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}

// One configuration with the default range.
void OrvFilterJpegGhost::CalculateConfigurations() {
    AddConfiguration(m_parametersInput, -1);
}
