// SPDX-License-Identifier: Apache-2.0
// Spreads the tones of a picture over the whole scale, so that what hides in shadows and highlights can be seen.
//
// R. C. Gonzalez and R. E. Woods, "Digital Image Processing" (2008), section 3.3; the adaptive method: K. Zuiderveld,
// "Contrast limited adaptive histogram equalization", Graphics Gems IV (1994).
#pragma once
#include <opencv2/core.hpp>

#include "orvcore/filterimage.h"
#include "tolbase/export.h"

enum OrvEqualisationMethod : int {
    OrvEqualisationLuminance = 0,
    OrvEqualisationEachChannel = 1,
    OrvEqualisationAdaptive = 2
};

// An 8-bit picture of one channel or of three (blue, green, red), equalised: its luma (ITU-R BT.601) over the whole
// picture; each channel by itself; or its luma tile by tile with a limited slope (contrast limit 2, 8 by 8 tiles, fewer
// where a tile would be narrower than 32 pixels). Where luma alone is equalised, chroma stays as it is. Empty once the
// user has aborted.
ORV_API cv::Mat OrvCalculateEqualisation(cv::Mat const& picture, OrvEqualisationMethod method);

// Shows the equalised picture, with Levels behind it. Parameter: "Method".
class ORV_API OrvFilterEqualisation : public OrvFilterImage {
public:
    OrvFilterEqualisation();

    void Apply(OrvFileId id) override;
    void ApplyPostProcessing(OrvFileId id) override;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    void InitPostProcessing() override;
};
