// SPDX-License-Identifier: Apache-2.0
#include "orvcore/jpegdimplestable.h"

#include <opencv2/core.hpp>

#include "orvcore/context.h"
#include "orvcore/imageinfotable_private.h"
#include "orvcore/tablewriter.h"

namespace {

// Without options the option's default holds, which is to hide.
bool IsNegativeOffsetHidden() {
    const VecVecParameter options = GetContext()->GetProgramOptions();
    if (options.empty()) return true;
    Parameter const* const hide = options[0].Find("Hide Best Matching Parameters for Negative Compatibility");
    return hide == nullptr || hide->GetValue<int>() == 1;
}

}  // namespace

JpegDimplesGlobalTable::JpegDimplesGlobalTable(OrvFileId fileId) : OrvInfoTable(fileId) {
    for (char const* title : {"JPEG dimples presence:", "Dimples strenght:", "Offset (x,y):"}) {
        m_parameters.push_back(CreateParameterOutputString(title, ""));
    }
}

VecVecString JpegDimplesGlobalTable::Evaluate() {
    m_parameters.Reset();
    if (GetContext()->GetFilename(m_fileId).empty()) return GenerateTable();
    PCEoutput result;
    const Image image = GetContext()->GetImage(m_fileId);
    tcvJpegDimplesDetection(static_cast<cv::Mat>(image), result);
    return ShowResult(result);
}

VecVecString JpegDimplesGlobalTable::ShowResult(PCEoutput const& result) {
    const bool present = result.strength >= Threshold;
    const wxString verdict = OrvTranslate(present ? "Image shows JPEG Dimples artifacts."
                                                  : "Image does not show relevant JPEG Dimples artifacts.");
    const bool hidden = !present && IsNegativeOffsetHidden();
    const wxString offset = hidden ? wxString("-") : wxString::Format("[%d, %d]", result.xOffset, result.yOffset);
    m_parameters.Reset();
    m_parameters[0].Set(boost::any(verdict));
    m_parameters[1].Set(boost::any(FormatTwoDecimals(result.strength)));
    m_parameters[2].Set(boost::any(offset));
    return GenerateTable();
}
