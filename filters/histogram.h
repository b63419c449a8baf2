// SPDX-License-Identifier: Apache-2.0
// How often each brightness occurs in a picture.
//
// M. C. Stamm, K. J. R. Liu, "Forensic detection of image manipulation using statistical intrinsic fingerprints", IEEE
// Transactions on Information Forensics and Security 5 (2010).
#pragma once
#include <opencv2/core.hpp>
#include <vector>

#include "orvcore/filterplot.h"
#include "tolbase/export.h"

// Four series of 256 counts for an 8-bit blue-green-red picture: luma (ITU-R BT.601), blue, green, red. Counts beyond
// 16,777,216 are rounded to what a float holds. Empty once the user has aborted.
ORV_API std::vector<std::vector<float>> CalculateHistogram(cv::Mat const& picture);

// What a histogram of 256 counts tells.
struct HistogramFacts {
    double darkShare = 0.0;    // of all pixels, at level 0
    double brightShare = 0.0;  // of all pixels, at level 255
    int emptyLevels = 0;       // levels without a pixel between the first and the last that has one
};
ORV_API HistogramFacts ReadHistogram(std::vector<float> const& counts);

class ORV_API OrvFilterHistogram : public OrvFilterPlot {
public:
    OrvFilterHistogram();

    void Apply(OrvFileId id) override;
    // Marks an end of the scale where more than 1 % of the pixels lie at it, and tells the facts of the Evidence in the
    // output parameters.
    void Apply2NoCache(OrvFileId id) override;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;
};
