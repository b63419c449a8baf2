// SPDX-License-Identifier: Apache-2.0
// A filter in 30 lines: how much each pixel differs from the one so many places to its left.
#pragma once
#include "orvcore/orvcore.h"
#include "tolbase/progress.h"

class GridFilter : public OrvFilterImage {
public:
    GridFilter() : OrvFilterImage("Grid Difference") {
        m_filterType = FilterTypeLocalAnalysis;
        m_description = "Shows how much each pixel differs from another one in its row.";
        m_parametersInput.push_back(CreateParameterIntMinMax("Distance", "Pixels between the two", 8, 1, 64));
    }

    void Apply(OrvFileId id) override {
        const Image picture = GetInputImage(id).ToColor();
        const int distance = m_parametersInput[0].GetValue<int>();
        const Image result = Image::Create(picture.Width(), picture.Height(), IPL_DEPTH_8U, 3);
        if (distance < picture.Width() && !tcvHasAborted()) {
            const cv::Mat from = picture, to = result;
            const cv::Range right(distance, from.cols), left(0, from.cols - distance);
            cv::Mat difference = to.colRange(right);
            cv::absdiff(from.colRange(right), from.colRange(left), difference);
        }
        GetOutputImage(id) = result;
    }

    void ApplyPostProcessing(OrvFileId id) override { ApplyPostProcessingScale(id); }

protected:
    void InitPostProcessing() override { InitPostProcessingScale(); }
    OrvFilterGuiBase* CreateFilterGui(wxWindow* /*parent*/, OrvFilter* /*filter*/) override { return nullptr; }
};
