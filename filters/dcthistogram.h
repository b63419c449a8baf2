// SPDX-License-Identifier: Apache-2.0
// How often each value of a DCT coefficient stands in a JPEG.
//
// J. Lukas, J. Fridrich, "Estimation of Primary Quantization Matrix in Double Compressed JPEG Images", Digital Forensic
// Research Workshop 2003; A. C. Popescu, H. Farid, "Statistical Tools for Digital Forensics", Information Hiding 2004.
#pragma once
#include <cstdint>
#include <vector>

#include "orvcore/filterplot.h"
#include "tolbase/export.h"

// Counts of the values -`reach` to `reach`; what lies outside is left out.
ORV_API std::vector<float> CountCoefficients(std::vector<int16_t> const& values, int reach);

// A repetition in the counts of coefficient values.
struct CoefficientPeriod {
    double strength = 0.0;  // 0 to 1
    double period = 0.0;    // values from one peak to the next; 0 for none
};

// How strongly the counts of the values beside 0 repeat. Both signs are taken together, the smooth trend is divided
// out, and the strength is the greatest magnitude of the discrete Fourier transform at periods from 2 to 16, as a share
// of what a comb of single peaks would give. Nothing where fewer than 24 magnitudes from 1 on are
// frequent enough to tell (8 or more a value).
// `counts` as CountCoefficients gives them.
ORV_API CoefficientPeriod FindCoefficientPeriod(std::vector<float> const& counts);

// The status is a warning where the counts repeat with a strength of 0.2 or more.
class ORV_API OrvFilterDctHistogram : public OrvFilterPlot {
public:
    OrvFilterDctHistogram();

    void Apply(OrvFileId id) override;
    // Tells the repetition in the Evidence's counts in the output parameters.
    void Apply2NoCache(OrvFileId id) override;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;

private:
    void CalculateConfigurations() override;
};
