// SPDX-License-Identifier: Apache-2.0
#include "orvcore/filterplot.h"

#include <wx/filefn.h>
#include <wx/filename.h>

#include <cmath>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "orvcore/context.h"
#include "orvcore/cvplot.h"
#include "tolbase/exception.h"
#include "tolbase/htmlwriter.h"
#include "tolimage/imageio.h"

namespace {

struct Colour {
    int red;
    int green;
    int blue;
};

Colour ChannelColour(int coi) {
    return {coi == 3 ? 255 : 0, coi == 2 ? 255 : 0, coi == 1 ? 255 : 0};
}

Colour MarkerColour(size_t group) {
    if (group == 0) return {0, 128, 255};
    if (group == 1) return {0, 255, 0};
    return {255, 0, 255};
}

// The series of the channel of interest, the first one where that has none.
std::vector<float> const& ShownSeries(OrvPlotData const& data) {
    auto const coi = static_cast<size_t>(data.coi < 0 ? 0 : data.coi);
    return data.y[coi < data.y.size() ? coi : 0];
}

// Least and greatest value, each moved outwards (for positive values) by a twentieth.
bool MarkerEnds(std::vector<float> const& values, float ends[2]) {
    bool found = false;
    double low = 0.0;
    double high = 0.0;
    for (float const value : values) {
        if (!std::isfinite(value)) continue;
        low = found ? std::min<double>(low, value) : value;
        high = found ? std::max<double>(high, value) : value;
        found = true;
    }
    ends[0] = static_cast<float>(low - low * 0.05);
    ends[1] = static_cast<float>(high + high * 0.05);
    return found;
}

// Forgets a figure whatever happens while it is drawn, so that a second save begins anew.
struct FigureRemover {
    explicit FigureRemover(wxString const& figureName) : name(figureName) {
        CvPlot::PlotManager::Instance().Remove(name);
    }
    FigureRemover(FigureRemover const&) = delete;
    FigureRemover& operator=(FigureRemover const&) = delete;
    ~FigureRemover() { CvPlot::PlotManager::Instance().Remove(name); }
    wxString name;
};

}  // namespace

OrvFilterPlot::OrvFilterPlot(wxString const& name) : OrvFilter(name) {}

OrvFilterPlot::OrvFilterPlot(OrvFilterPlot const& other) : OrvFilter(other) {
    CopyFrom(other);
}

OrvFilterPlot& OrvFilterPlot::operator=(OrvFilterPlot const& other) {
    if (this != &other) {
        OrvFilter::operator=(other);
        CopyFrom(other);
    }
    return *this;
}

OrvFilterPlot::~OrvFilterPlot() = default;

void OrvFilterPlot::CopyFrom(OrvFilterPlot const& other) {
    m_xLow = other.m_xLow;
    m_xHigh = other.m_xHigh;
    m_mode = other.m_mode;
    m_bars = other.m_bars;
    m_outputBatchSize = other.m_outputBatchSize;
    for (OrvFileId id : {Evidence, Reference}) {
        OrvPlotData const copy = other.GetPlotDataCopy(id);
        *GetPlotData(id) = copy;
    }
}

OrvDataLocker<OrvPlotData> OrvFilterPlot::GetPlotData(OrvFileId id) {
    return OrvDataLocker<OrvPlotData>(&m_plotData[id], m_plotMutex[id]);
}

OrvPlotData OrvFilterPlot::GetPlotDataCopy(OrvFileId id) const {
    wxMutexLocker const lock(m_plotMutex[id]);
    OrvPlotData copy = m_plotData[id];
    // Copies of a wxImage share their pixels behind a count that isn't safe across threads.
    if (copy.picture.IsOk()) copy.picture = copy.picture.Copy();
    return copy;
}

void OrvFilterPlot::Reset(OrvFileId id) {
    GetPlotData(id)->Clear();
}

double OrvFilterPlot::ComputePlotSimilarity() const {
    OrvPlotData evidence = GetPlotDataCopy(Evidence);
    OrvPlotData reference = GetPlotDataCopy(Reference);
    if (!evidence.IsOk() || !reference.IsOk()) return 0.0;
    if (evidence.y[0].empty() || reference.y[0].empty()) return 0.0;
    if (reference.y[0].size() > evidence.y[0].size()) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           "Plots can't be compared: the reference has more points than the evidence.");
    }
    cv::Mat const whole(static_cast<int>(evidence.y[0].size()), 1, CV_32FC1, evidence.y[0].data());
    cv::Mat const part(static_cast<int>(reference.y[0].size()), 1, CV_32FC1, reference.y[0].data());
    cv::Mat correlation;
    cv::matchTemplate(whole, part, correlation, cv::TM_CCOEFF_NORMED);
    double highest = 0.0;
    cv::minMaxLoc(correlation, nullptr, &highest);
    return static_cast<float>(highest);
}

void OrvFilterPlot::DrawCurve(wxString const& path, OrvPlotData const& data) const {
    if (!data.IsOk()) return;
    std::vector<float> const& series = ShownSeries(data);
    std::vector<float> x;
    std::vector<float> y;
    for (size_t i = 0; i < data.x.size() && i < series.size(); ++i) {
        if (data.x[i] < data.xRange.minimum || data.x[i] > data.xRange.maximum) continue;
        x.push_back(data.x[i]);
        y.push_back(series[i]);
    }
    Colour const colour = ChannelColour(data.coi);
    CvPlot::PlotManager::Instance().Plot(path, x.data(), y.data(), static_cast<int>(x.size()), 1, colour.red,
                                         colour.green, colour.blue, static_cast<float>(m_xLow),
                                         static_cast<float>(m_xHigh), m_bars);
}

void OrvFilterPlot::DrawMarkers(wxString const& path, OrvPlotData const& data, bool vertical) const {
    auto const& groups = vertical ? data.verticalMarkers : data.horizontalMarkers;
    float ends[2];
    if (groups.empty() || !data.IsOk() || !MarkerEnds(vertical ? ShownSeries(data) : data.x, ends)) return;
    for (size_t group = 0; group < groups.size(); ++group) {
        Colour const colour = MarkerColour(group);
        for (float const position : groups[group]) {
            float const positions[2] = {position, position};
            CvPlot::PlotManager::Instance().Plot(path, vertical ? positions : ends, vertical ? ends : positions, 2, 1,
                                                 colour.red, colour.green, colour.blue, static_cast<float>(m_xLow),
                                                 static_cast<float>(m_xHigh), m_bars);
        }
    }
}

void OrvFilterPlot::SavePlotImage(wxString const& path, OrvPlotData const& data) const {
    FigureRemover const remover(path);
    DrawCurve(path, data);
    DrawMarkers(path, data, true);
    DrawMarkers(path, data, false);
}

void OrvFilterPlot::SaveOutput(wxString const& path) {
    Image const& picture = m_imageToSave;
    if (picture.IsOk()) tcvSaveImage(path, picture, GetContext()->GetJpgQuality());
}

void OrvFilterPlot::SaveOutputBatch(wxString const& path) {
    m_outputBatchSize = 0;
    OrvPlotData const data = GetPlotDataCopy(Evidence);
    if (!data.IsOk()) return;
    // A report never shows the picture of an earlier run, nor one that could not be saved.
    if (wxFileExists(path)) wxRemoveFile(path);
    SavePlotImage(path, data);
    if (wxFileExists(path)) m_outputBatchSize = GetContext()->GetDefaultImageSize().width;
}

wxString OrvFilterPlot::GetReportData(wxString const& outputPath, wxString const& /*outputFolder*/) const {
    if (m_outputBatchSize == 0) return {};
    return HtmlWriter::DoImg(wxFileName(outputPath).GetFullName(), 0);
}

wxString OrvFilterPlot::GetOutputFileSelectorString() const {
    return GetContext()->GetStringImageFormatsWrite();
}

wxString OrvFilterPlot::GetCacheExtension() const {
    return "." + GetContext()->GetCacheFormat();
}
