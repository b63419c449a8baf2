// SPDX-License-Identifier: Apache-2.0
// The difference between a picture and itself saved again, over the quality of the saving.
//
// H. Farid, "Exposing Digital Forgeries from JPEG Ghosts", IEEE Transactions on Information Forensics and Security 4
// (2009).
#pragma once
#include <opencv2/core.hpp>
#include <vector>

#include "orvcore/filterplot.h"
#include "tolbase/export.h"

// The mean squared difference of an 8-bit grey picture to what saving it as JPEG makes of it, for each quality from
// `first` to `last`. Fewer values once the user has aborted.
ORV_API std::vector<float> CalculateGhostCurve(cv::Mat const& grey, int first, int last);

// Indices of the minima of a curve of values that are not negative: where a value is below both neighbours, and at
// least 10 % below the lower of the two rims around it. A rim is the greatest value between the minimum and the next
// lower value, or the curve's end, on one side. The one that lies deepest below its lower rim comes first; the ends of
// the curve are no minima.
ORV_API std::vector<int> FindCurveMinima(std::vector<float> const& curve);

class ORV_API OrvFilterJpegGhost : public OrvFilterPlot {
public:
    OrvFilterJpegGhost();

    void Apply(OrvFileId id) override;
    // Marks the minima and tells those of the Evidence in the output parameters.
    void Apply2NoCache(OrvFileId id) override;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    void CalculateConfigurations() override;
};
