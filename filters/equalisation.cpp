// SPDX-License-Identifier: Apache-2.0
#include "filters/equalisation.h"

#include <algorithm>
#include <opencv2/imgproc.hpp>
#include <vector>

#include "filters/panelfactory.h"
#include "tolbase/exception.h"
#include "tolbase/largepages.h"
#include "tolbase/progress.h"
#include "tolimage/parallel.h"

namespace {

constexpr double ContrastLimit = 2.0;
constexpr int GreatestTileCount = 8;
constexpr int LeastTileSide = 32;

int TilesAlong(int side) {
    return std::clamp(side / LeastTileSide, 1, GreatestTileCount);
}

void Equalise(cv::Mat& plane, bool adaptive) {
    if (adaptive) {
        cv::createCLAHE(ContrastLimit, cv::Size(TilesAlong(plane.cols), TilesAlong(plane.rows)))->apply(plane, plane);
    } else {
        cv::equalizeHist(plane, plane);
    }
}

// Few enough that a strip stays in the processor's cache from one step to the next.
constexpr int StripRows = 16;

// Calls `work` with each strip's rows.
template <class Work>
void ForStrips(int rows, Work const& work) {
    RunInParallel((rows + StripRows - 1) / StripRows,
                  [&](int strip) { work(cv::Range(strip * StripRows, std::min((strip + 1) * StripRows, rows))); });
}

cv::Mat LargeMat(cv::Size size, int type) {
    cv::Mat result(size, type);
    tolbase::UseLargePages(result.data, result.total() * result.elemSize());
    return result;
}

// Luma and chroma are calculated for each strip twice, which takes less time than to keep them for the whole picture.
void EqualiseLuma(cv::Mat const& picture, bool adaptive, cv::Mat& result) {
    cv::Mat luma = LargeMat(picture.size(), CV_8U);
    ForStrips(picture.rows, [&](cv::Range const& rows) {
        cv::Mat converted;
        cv::cvtColor(picture.rowRange(rows), converted, cv::COLOR_BGR2YCrCb);
        cv::Mat target = luma.rowRange(rows);
        cv::extractChannel(converted, target, 0);
    });
    if (tcvHasAborted()) return;
    Equalise(luma, adaptive);
    ForStrips(picture.rows, [&](cv::Range const& rows) {
        cv::Mat converted;
        cv::cvtColor(picture.rowRange(rows), converted, cv::COLOR_BGR2YCrCb);
        cv::insertChannel(luma.rowRange(rows), converted, 0);
        cv::Mat target = result.rowRange(rows);
        cv::cvtColor(converted, target, cv::COLOR_YCrCb2BGR);
    });
}

// `result` has the picture's size and type. What it holds after an abort means nothing.
void EqualiseInto(cv::Mat const& picture, OrvEqualisationMethod method, cv::Mat& result) {
    bool const adaptive = method == OrvEqualisationAdaptive;
    if (picture.channels() == 1) {
        picture.copyTo(result);
        Equalise(result, adaptive);
    } else if (method == OrvEqualisationEachChannel) {
        std::vector<cv::Mat> planes;
        cv::split(picture, planes);
        for (cv::Mat& plane : planes) Equalise(plane, false);
        cv::merge(planes, result);
    } else {
        EqualiseLuma(picture, adaptive, result);
    }
}

}  // namespace

cv::Mat OrvCalculateEqualisation(cv::Mat const& picture, OrvEqualisationMethod method) {
    cv::Mat result = LargeMat(picture.size(), picture.type());
    EqualiseInto(picture, method, result);
    return tcvHasAborted() ? cv::Mat() : result;
}

OrvFilterEqualisation::OrvFilterEqualisation() : OrvFilterImage("Histogram Equalisation") {
    m_filterType = FilterTypeVisualAnalysis;
    m_description =
        "Spreads the tones of the picture over the whole scale, so that what hides in shadows and highlights can be "
        "seen.";
    m_parametersInput.push_back(CreateParameterOption(
        "Method", "Luminance over the whole picture, each colour channel by itself, or luminance tile by tile",
        {"Luminance", "Each Channel", "Adaptive"}, OrvEqualisationLuminance));
}

void OrvFilterEqualisation::Apply(OrvFileId id) {
    Image const& input = GetInputImage(id);
    Image const picture = input.Channels() == 1 ? input.ToGray() : input.ToColor();
    auto const method = static_cast<OrvEqualisationMethod>(m_parametersInput[0].GetValue<int>());
    Image result = Image::CreateUnset(picture.Width(), picture.Height(), IPL_DEPTH_8U, picture.Channels());
    if (!result.IsOk()) throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "Out of memory.");
    cv::Mat pixels = result;
    EqualiseInto(picture, method, pixels);
    if (!tcvHasAborted()) GetOutputImage(id) = result;
}

void OrvFilterEqualisation::ApplyPostProcessing(OrvFileId id) {
    ApplyPostProcessingLevels(id);
}

OrvFilterGuiBase* OrvFilterEqualisation::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}

void OrvFilterEqualisation::InitPostProcessing() {
    InitPostProcessingLevels();
}
