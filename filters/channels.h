// SPDX-License-Identifier: Apache-2.0
// One component of a picture in one of several colour spaces.
//
// YCbCr: ITU-T T.871 (JFIF), after ITU-R BT.601. Hue, saturation, value: A. R. Smith, "Color gamut transform pairs",
// SIGGRAPH (1978). L*a*b*: ISO/CIE 11664-4, for the white D65.
#pragma once
#include <opencv2/core.hpp>

#include "orvcore/filterimage.h"
#include "tolbase/export.h"

enum OrvChannelSpace : int {
    OrvChannelSpaceRgb = 0,
    OrvChannelSpaceYCbCr = 1,
    OrvChannelSpaceHsv = 2,
    OrvChannelSpaceLab = 3
};

// Component 0 to 2 of an 8-bit blue-green-red picture as an 8-bit picture of one channel: red, green, blue; Y, Cb, Cr;
// hue (0 to 255 for 0 to 360 degrees), saturation, value; L* (0 to 255 for 0 to 100), a*, b*. Cb, Cr, a* and b* have
// 128 added. A number that is none is taken as the nearest.
ORV_API cv::Mat OrvCalculateChannel(cv::Mat const& picture, OrvChannelSpace space, int component);

// Shows one component as a grey picture; Levels brings out what lies close together. Parameters: "Color Space" and
// "Component". The list holds all twelve, of which the three of YCbCr are enabled: they are what a JPEG stores. The
// output parameter "Component Shown" names the component.
class ORV_API OrvFilterChannels : public OrvFilterImage {
public:
    OrvFilterChannels();

    void Apply(OrvFileId id) override;
    void Apply2NoCache(OrvFileId id) override;
    void ApplyPostProcessing(OrvFileId id) override;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    void InitPostProcessing() override;
    void CalculateConfigurations() override;
};
