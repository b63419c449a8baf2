// SPDX-License-Identifier: Apache-2.0
#include "filters/channels.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>

#include "filters/panelfactory.h"

namespace {

constexpr char const* ComponentNames[4][3] = {
    {"Red", "Green", "Blue"},
    {"Y (luma)", "Cb (blue difference, 128 is neutral)", "Cr (red difference, 128 is neutral)"},
    {"Hue (0 to 255 for 0 to 360 degrees)", "Saturation", "Value"},
    {"L* (lightness)", "a* (green to red, 128 is neutral)", "b* (blue to yellow, 128 is neutral)"},
};

// Where a component stands in OpenCV's order.
int PlaceOf(OrvChannelSpace space, int component) {
    if (space == OrvChannelSpaceRgb) return 2 - component;
    if (space == OrvChannelSpaceYCbCr && component > 0) return 3 - component;
    return component;
}

cv::Mat ConvertTo(cv::Mat const& picture, OrvChannelSpace space) {
    if (space == OrvChannelSpaceRgb) return picture;
    int const conversion = space == OrvChannelSpaceYCbCr ? cv::COLOR_BGR2YCrCb
                           : space == OrvChannelSpaceHsv ? cv::COLOR_BGR2HSV_FULL
                                                         : cv::COLOR_BGR2Lab;
    cv::Mat converted;
    cv::cvtColor(picture, converted, conversion);
    return converted;
}

// A configuration may hold any number.
OrvChannelSpace SpaceOf(Parameter const& parameter) {
    return static_cast<OrvChannelSpace>(
        std::clamp<int>(parameter.GetValue<int>(), OrvChannelSpaceRgb, OrvChannelSpaceLab));
}

int ComponentOf(Parameter const& parameter) {
    return std::clamp(parameter.GetValue<int>(), 0, 2);
}

}  // namespace

cv::Mat OrvCalculateChannel(cv::Mat const& picture, OrvChannelSpace space, int component) {
    space = static_cast<OrvChannelSpace>(std::clamp<int>(space, OrvChannelSpaceRgb, OrvChannelSpaceLab));
    cv::Mat channel;
    cv::extractChannel(ConvertTo(picture, space), channel, PlaceOf(space, std::clamp(component, 0, 2)));
    return channel;
}

OrvFilterChannels::OrvFilterChannels() : OrvFilterImage("Channels") {
    m_filterType = FilterTypeVisualAnalysis;
    m_description = "Shows one component of the picture alone, in the colour space of choice.";
    m_parametersInput.push_back(CreateParameterOption("Color Space",
                                                      "The colour space that the picture is taken apart in",
                                                      {"RGB", "YCbCr", "HSV", "Lab"}, OrvChannelSpaceYCbCr));
    m_parametersInput.push_back(CreateParameterOption(
        "Component", "The first (red, Y, hue, L*), second (green, Cb, saturation, a*) or third (blue, Cr, value, b*)",
        {"First", "Second", "Third"}, 0));
    m_parametersOutput.push_back(CreateParameterString("Component Shown", "The name of the component", ""));
}

void OrvFilterChannels::Apply(OrvFileId id) {
    Image const picture = GetInputImage(id).ToColor();
    GetOutputImage(id) =
        Image::FromMat(OrvCalculateChannel(picture, SpaceOf(m_parametersInput[0]), ComponentOf(m_parametersInput[1])));
}

void OrvFilterChannels::Apply2NoCache(OrvFileId /*id*/) {
    m_parametersOutput[0].Set(ComponentNames[SpaceOf(m_parametersInput[0])][ComponentOf(m_parametersInput[1])]);
}

void OrvFilterChannels::ApplyPostProcessing(OrvFileId id) {
    ApplyPostProcessingLevels(id);
}

OrvFilterGuiBase* OrvFilterChannels::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}

void OrvFilterChannels::InitPostProcessing() {
    InitPostProcessingLevels();
}

void OrvFilterChannels::CalculateConfigurations() {
    CalculateConfigurationsDefault();
    for (OrvFilterConfiguration& configuration : GetConfigurationsNoConst()) {
        configuration.Enable(configuration[0].GetValue<int>() == OrvChannelSpaceYCbCr);
    }
}
