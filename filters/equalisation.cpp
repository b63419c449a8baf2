// SPDX-License-Identifier: Apache-2.0
#include "filters/equalisation.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "filters/panelfactory.h"

namespace {

constexpr double ContrastLimit = 2.0;
constexpr int GreatestTileCount = 8;
constexpr int LeastTileSide = 32;

int TilesAlong(int side) {
    return std::clamp(side / LeastTileSide, 1, GreatestTileCount);
}

void Equalise(cv::Mat& plane, bool adaptive) {
    if (adaptive) {
        cv::createCLAHE(ContrastLimit, cv::Size(TilesAlong(plane.cols), TilesAlong(plane.rows)))->apply(plane, plane);
    } else {
        cv::equalizeHist(plane, plane);
    }
}

}  // namespace

cv::Mat OrvCalculateEqualisation(cv::Mat const& picture, OrvEqualisationMethod method) {
    bool const adaptive = method == OrvEqualisationAdaptive;
    if (picture.channels() == 1) {
        cv::Mat result = picture.clone();
        Equalise(result, adaptive);
        return result;
    }
    bool const eachChannel = method == OrvEqualisationEachChannel;
    cv::Mat result;
    if (eachChannel) {
        result = picture.clone();
    } else {
        cv::cvtColor(picture, result, cv::COLOR_BGR2YCrCb);
    }
    std::vector<cv::Mat> planes;
    cv::split(result, planes);
    size_t const count = eachChannel ? planes.size() : 1;
    for (size_t i = 0; i < count; ++i) Equalise(planes[i], adaptive);
    cv::merge(planes, result);
    if (!eachChannel) cv::cvtColor(result, result, cv::COLOR_YCrCb2BGR);
    return result;
}

OrvFilterEqualisation::OrvFilterEqualisation() : OrvFilterImage("Histogram Equalisation") {
    m_filterType = FilterTypeVisualAnalysis;
    m_description =
        "Spreads the tones of the picture over the whole scale, so that what hides in shadows and highlights can be "
        "seen.";
    m_parametersInput.push_back(CreateParameterOption(
        "Method", "Luminance over the whole picture, each colour channel by itself, or luminance tile by tile",
        {"Luminance", "Each Channel", "Adaptive"}, OrvEqualisationLuminance));
}

void OrvFilterEqualisation::Apply(OrvFileId id) {
    Image const& input = GetInputImage(id);
    Image const picture = input.Channels() == 1 ? input.ToGray() : input.ToColor();
    auto const method = static_cast<OrvEqualisationMethod>(m_parametersInput[0].GetValue<int>());
    GetOutputImage(id) = Image::FromMat(OrvCalculateEqualisation(picture, method));
}

void OrvFilterEqualisation::ApplyPostProcessing(OrvFileId id) {
    ApplyPostProcessingLevels(id);
}

OrvFilterGuiBase* OrvFilterEqualisation::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}

void OrvFilterEqualisation::InitPostProcessing() {
    InitPostProcessingLevels();
}
