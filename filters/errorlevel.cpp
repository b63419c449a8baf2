// SPDX-License-Identifier: Apache-2.0
#include "filters/errorlevel.h"

#include "filters/panelfactory.h"
#include "tolbase/progress.h"
#include "tolimage/jpegrecompress.h"

namespace {

cv::Mat WithMemory(cv::Mat const& picture) {
    return cv::Mat(picture.size(), picture.type());
}

// Writes the level of a picture into one of its size. False once the user has aborted.
bool WriteErrorLevel(cv::Mat const& picture, int quality, cv::Mat const& level) {
    JpegEncoding encoding;
    encoding.quality = quality;
    RecompressJpegTiles(picture, encoding, [&](cv::Rect const& place, cv::Mat const& tile) {
        cv::Mat part = level(place);
        cv::absdiff(picture(place), tile, part);
    });
    return !tcvHasAborted();
}

}  // namespace

cv::Mat CalculateErrorLevel(cv::Mat const& picture, int quality) {
    cv::Mat const level = WithMemory(picture);
    return WriteErrorLevel(picture, quality, level) ? level : cv::Mat();
}

OrvFilterErrorLevel::OrvFilterErrorLevel() : OrvFilterImage("Error Level Analysis") {
    m_filterType = FilterTypeLocalAnalysis;
    m_description =
        "Saves the picture as JPEG once more and shows how much each pixel changes by it. A part that was compressed "
        "otherwise than its surroundings can stand out darker or brighter.";
    m_parametersInput.push_back(CreateParameterIntMinMax(
        "Quality", "Quality, in percent, at which the picture is saved for the comparison", 95, 1, 100));
}

void OrvFilterErrorLevel::Apply(OrvFileId id) {
    if (tcvHasAborted()) return;
    Image const picture = GetInputImage(id).ToColor();
    Image level = Image::CreateUnset(picture.Width(), picture.Height(), IPL_DEPTH_8U, 3);
    if (!level.IsOk()) throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "Out of memory.");
    if (WriteErrorLevel(picture, m_parametersInput[0].GetValue<int>(), level)) GetOutputImage(id) = level;
}

void OrvFilterErrorLevel::ApplyPostProcessing(OrvFileId id) {
    ApplyPostProcessingScale(id);
}

OrvFilterGuiBase* OrvFilterErrorLevel::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}

void OrvFilterErrorLevel::InitPostProcessing() {
    InitPostProcessingScale();
}

// The qualities that are worth a comparison, not all hundred of them.
void OrvFilterErrorLevel::CalculateConfigurations() {
    for (int const quality : {95, 90, 75}) {
        VecParameter values = m_parametersInput;
        values[0].Set(boost::any(quality));
        AddConfiguration(values, -1);
    }
}
