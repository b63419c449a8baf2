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

// Weights of blue, green and red, and what is added. OpenCV's own conversion takes chroma from a luma that is rounded
// already, which is one step off in places.
constexpr double YCbCrWeights[3][4] = {
    {0.114, 0.587, 0.299, 0.0},
    {0.886 / 1.772, -0.587 / 1.772, -0.299 / 1.772, 128.0},
    {-0.114 / 1.402, -0.587 / 1.402, 0.701 / 1.402, 128.0},
};

cv::Mat TakeYCbCr(cv::Mat const& picture, int component) {
    cv::Mat channel;
    cv::transform(picture, channel, cv::Matx14d(YCbCrWeights[component]));
    return channel;
}

cv::Mat TakeConverted(cv::Mat const& picture, int conversion, int component) {
    cv::Mat converted;
    cv::cvtColor(picture, converted, conversion);
    cv::Mat channel;
    cv::extractChannel(converted, channel, component);
    return channel;
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
    component = std::clamp(component, 0, 2);
    if (space == OrvChannelSpaceYCbCr) return TakeYCbCr(picture, component);
    if (space == OrvChannelSpaceHsv) return TakeConverted(picture, cv::COLOR_BGR2HSV_FULL, component);
    if (space >= OrvChannelSpaceLab) return TakeConverted(picture, cv::COLOR_BGR2Lab, component);
    cv::Mat channel;
    cv::extractChannel(picture, channel, 2 - component);
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
