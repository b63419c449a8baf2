// SPDX-License-Identifier: Apache-2.0
// Error level analysis: how much each part of a picture changes when it is saved as JPEG once more.
//
// N. Krawetz, "A Picture's Worth... Digital Image Analysis and Forensics", Black Hat USA 2007.
#pragma once
#include <opencv2/core.hpp>

#include "orvcore/filterimage.h"
#include "tolbase/export.h"

// The absolute difference, channel by channel, between an 8-bit picture of 1 or 3 channels and what saving it as JPEG
// of `quality` (1 to 100, without chroma subsampling) makes of it. Same size and channels; empty once the user has
// aborted. Throws TolException for another kind of picture.
ORV_API cv::Mat CalculateErrorLevel(cv::Mat const& picture, int quality);

class ORV_API OrvFilterErrorLevel : public OrvFilterImage {
public:
    OrvFilterErrorLevel();

    void Apply(OrvFileId id) override;
    void ApplyPostProcessing(OrvFileId id) override;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    void InitPostProcessing() override;
    void CalculateConfigurations() override;
};
