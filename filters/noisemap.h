// SPDX-License-Identifier: Apache-2.0
// The noise level of a picture, block by block.
//
// B. Mahdian, S. Saic, "Using noise inconsistencies for blind image forensics", Image and Vision Computing 27 (2009);
// the estimate by the median: D. L. Donoho, I. M. Johnstone, "Ideal spatial adaptation by wavelet shrinkage",
// Biometrika 81 (1994).
#pragma once
#include <opencv2/core.hpp>

#include "orvcore/filterimage.h"
#include "tolbase/export.h"

// How the noise is told from the picture.
enum NoiseMethod : int {
    NoiseMethodWavelet = 0,  // the diagonal details of the first level of a Haar wavelet transform
    NoiseMethodMedian = 1,   // what a median filter of 3 by 3 takes away
};

// The standard deviation of the noise, in grey levels of 0 to 255, of each block of `blockSize` by `blockSize` pixels
// (at least 2; an odd one counts as the next smaller even one for the wavelet): the median of the residual's
// magnitudes, which edges hardly move, scaled so that white Gaussian noise of that deviation gives it. The median is
// that of grouped data, so levels between two steps of the whole-numbered residual are told apart. One CV_32F value a
// block; the blocks at the right and the lower border may be smaller. A block whose residual is zero throughout, or
// that has none, gives 0. `grey` is an 8-bit picture of one channel. Empty once the user has aborted.
ORV_API cv::Mat CalculateNoiseLevels(cv::Mat const& grey, NoiseMethod method, int blockSize);

class ORV_API OrvFilterNoiseMap : public OrvFilterImage {
public:
    OrvFilterNoiseMap();

    void Apply(OrvFileId id) override;
    void ApplyPostProcessing(OrvFileId id) override;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    void InitPostProcessing() override;
    void CalculateConfigurations() override;
};
