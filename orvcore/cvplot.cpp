// SPDX-License-Identifier: Apache-2.0
#include "orvcore/cvplot.h"

#include <opencv2/imgproc/imgproc_c.h>
#include <wx/debug.h>
#include <wx/filefn.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include "orvcore/plotnumber.h"
#include "tolbase/exception.h"
#include "tolbase/image.h"
#include "tolimage/imageio.h"

namespace CvPlot {

namespace {

constexpr int EightConnected = 8;
constexpr int Smoothed = 16;
constexpr int LetterWidth = 6;  // pixels of a letter of the axes
constexpr float SmallestPositive = 1.1754944e-38F;
constexpr float Largest = 3.4028235e38F;
constexpr float FlatRange = 1e-9F;

// Blue, green, red.
constexpr int AutoColours[10][3] = {{200, 200, 200}, {255, 60, 60}, {60, 255, 60}, {40, 60, 255}, {210, 210, 0},
                                    {0, 210, 180},   {180, 0, 210}, {185, 0, 0},   {0, 185, 0},   {0, 0, 185}};

[[noreturn]] void Fail(int line, wxString const& message) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorMessage, message);
}

int Round(float value) {
    return static_cast<int>(std::lround(value));
}

void Write(_IplImage* picture, std::string const& text, int x, int y, CvFont const& font, CvScalar colour) {
    cvPutText(picture, text.c_str(), cvPoint(x, y), &font, colour);
}

CvFont Font(double verticalScale) {
    CvFont font;
    cvInitFont(&font, CV_FONT_HERSHEY_PLAIN, 0.55, verticalScale, 0, 1, Smoothed);
    return font;
}

}  // namespace

void Series::SetPoints(float const* xValues, float const* yValues, int count, int step) {
    x.clear();
    y.clear();
    if (count < 1) return;
    if (xValues == nullptr || yValues == nullptr) Fail(__LINE__, "A plot needs values.");
    auto const stride = static_cast<size_t>(std::max(step, 1));
    for (size_t i = 0; i < static_cast<size_t>(count); i += stride) {
        x.push_back(xValues[i]);
        y.push_back(yValues[i]);
    }
}

void Series::SetColour(int red, int green, int blue) {
    if (red <= 0 && green <= 0 && blue <= 0) return;
    colour = cvScalar(std::max(blue, 0), std::max(green, 0), std::max(red, 0), 0);
}

Figure::Figure(wxString const& name, CvSize size, float xLow, float xHigh) : m_name(name), m_size(size) {
    if (size.width <= 0 || size.height <= 0) Fail(__LINE__, "size.width > 0 && size.height > 0");
    constexpr size_t expectedSeries = 10;
    m_series.reserve(expectedSeries);
    if (xLow != xHigh) {
        m_customRange = true;
        m_scale.xMinimum = xLow;
        m_scale.xMaximum = xHigh;
    }
}

void Figure::Initialise() {
    m_colourCounter = 0;
    m_size.width = std::max(m_size.width, 2 * m_border + 100);
    m_size.height = std::max(m_size.height, 2 * m_border + 200);
    m_scale.yMaximum = SmallestPositive;
    m_scale.yMinimum = Largest;
    if (!m_customRange) {
        m_scale.xMaximum = 0.0F;
        m_scale.xMinimum = 0.0F;
    }
    ScanSeries();
    SetScales();
}

void Figure::ScanSeries() {
    for (Series const& series : m_series) {
        for (float const y : series.y) {
            if (!std::isfinite(y)) continue;
            m_scale.yMaximum = std::max(m_scale.yMaximum, y);
            m_scale.yMinimum = std::min(m_scale.yMinimum, y);
        }
        if (m_customRange) continue;
        for (float const x : series.x) {
            if (!std::isfinite(x)) continue;
            m_scale.xMaximum = std::max(m_scale.xMaximum, x);
            m_scale.xMinimum = std::min(m_scale.xMinimum, x);
        }
    }
}

void Figure::SetScales() {
    float yRange = m_scale.yMaximum - m_scale.yMinimum;
    if (yRange <= FlatRange) {
        m_scale.yMinimum = 0.5F * m_scale.yMaximum;
        m_scale.yMaximum = 1.5F * m_scale.yMaximum;
        yRange = m_scale.yMaximum - m_scale.yMinimum;
        if (yRange <= FlatRange) yRange = 1.0F;
    }
    float const xRange = m_scale.xMaximum - m_scale.xMinimum;
    m_scale.xScale = xRange == 0.0F ? 1.0F : static_cast<float>(m_size.width - 2 * m_border) / xRange;
    m_scale.yScale = static_cast<float>(m_size.height - 2 * m_border) / yRange;
}

bool Figure::PixelOf(float x, float y, CvPoint& pixel) const {
    // Far enough outside any picture, and near enough for OpenCV's own arithmetic.
    constexpr float farthest = 1e6F;
    float const right = (x - m_scale.xMinimum) * m_scale.xScale;
    float const up = (y - m_scale.yMinimum) * m_scale.yScale;
    if (!std::isfinite(right) || !std::isfinite(up)) return false;
    pixel.x = m_border + Round(std::clamp(right, -farthest, farthest));
    pixel.y = m_size.height - m_border - Round(std::clamp(up, -farthest, farthest));
    return true;
}

void Figure::DrawInto(_IplImage* picture, bool bars) {
    if (picture == nullptr) Fail(__LINE__, "A plot needs a picture to draw into.");
    Initialise();
    Draw(picture, bars);
}

bool Figure::DrawToFile(bool bars) {
    Initialise();
    Image picture = Image::Create(m_size.width, m_size.height, IPL_DEPTH_8U, 3);
    if (!picture.IsOk()) Fail(__LINE__, "There is no memory for a plot's picture.");
    Draw(picture, bars);
    if (wxFileExists(m_name)) wxRemoveFile(m_name);
    constexpr int bestQuality = 100;
    return tcvSaveImage(m_name, picture, bestQuality);
}

void Figure::Draw(_IplImage* picture, bool bars) {
    cvSet(picture, m_background);
    DrawAxes(picture);
    for (Series& series : m_series) {
        if (series.autoColour) series.colour = NextColour();
        DrawSeries(picture, series, bars);
    }
    DrawLegend(picture);
}

void Figure::DrawAxes(_IplImage* picture) const {
    float yReference = m_scale.yMinimum;
    if (m_scale.yMaximum > 0 && yReference <= 0) yReference = 0;
    float xReference = m_scale.xMinimum;
    if (m_scale.xMaximum > 0 && xReference < 0) xReference = 0;
    int const bottom = m_size.height - m_border;
    int const right = m_size.width - m_border;
    CvPoint const crossing = cvPoint(right - Round((m_scale.xMaximum - xReference) * m_scale.xScale),
                                     bottom - Round((yReference - m_scale.yMinimum) * m_scale.yScale));
    cvLine(picture, cvPoint(m_border, crossing.y), cvPoint(right, crossing.y), m_axisColour, 1, EightConnected);
    cvLine(picture, cvPoint(crossing.x, bottom + 10), cvPoint(crossing.x, m_border), m_axisColour, 1, EightConnected);
    DrawAxisTexts(picture, crossing, yReference);
}

void Figure::DrawAxisTexts(_IplImage* picture, CvPoint crossing, float yReference) const {
    CvFont const font = Font(0.7);
    auto const widthOf = [](std::string const& text) { return LetterWidth * static_cast<int>(text.size()); };
    // A long number is moved back into the picture: with its first digits cut off it would tell another value.
    auto const leftOf = [&](std::string const& text) { return std::max(0, crossing.x - widthOf(text)); };
    auto const write = [&](std::string const& text, int x, int y) { Write(picture, text, x, y, font, m_textColour); };
    float const span = m_scale.yMaximum - m_scale.yMinimum;
    if (0.05 * span < m_scale.yMaximum - yReference) {
        std::string const text = plot::Fixed(m_scale.yMaximum, 1);
        write(text, leftOf(text), m_border);
        write("Y", leftOf(text), m_border - 15);
    }
    if (0.05 * span < yReference - m_scale.yMinimum) {
        std::string const text = plot::Fixed(m_scale.yMinimum, 1);
        write(text, leftOf(text), m_size.height - m_border + 10);
    }
    std::string const reference = plot::Fixed(yReference, 1);
    write(reference, leftOf(reference), crossing.y - 10);
    write("0", crossing.x, crossing.y + 10);
    std::string const last = plot::Fixed(m_scale.xMaximum, 0);
    int const right = m_size.width - m_border;
    write(last, right - widthOf(last), crossing.y + 10);
    write("X", right + widthOf(last) / 2, crossing.y + 10);
    write(plot::Fixed(m_scale.xMinimum, 0), m_border, crossing.y + 10);
}

void Figure::DrawSeries(_IplImage* picture, Series const& series, bool bars) const {
    CvPoint previous = cvPoint(0, 0);
    bool joined = false;
    for (size_t i = 0; i < series.x.size(); ++i) {
        CvPoint pixel = cvPoint(0, 0);
        if (!PixelOf(series.x[i], series.y[i], pixel)) {
            joined = false;
            continue;
        }
        cvCircle(picture, pixel, 1, series.colour, 1, EightConnected);
        if (bars) {
            CvPoint const foot = cvPoint(pixel.x, m_size.height - m_border);
            cvLine(picture, foot, pixel, series.colour, 1, Smoothed);
        } else if (joined) {
            cvLine(picture, previous, pixel, series.colour, 1, Smoothed);
        }
        previous = pixel;
        joined = true;
    }
}

void Figure::DrawLegend(_IplImage* picture) const {
    CvFont const font = Font(1.0);
    int const x = m_size.width - 100;
    int y = 6;
    for (Series const& series : m_series) {
        if (series.label.empty()) continue;
        cvLine(picture, cvPoint(x, y), cvPoint(x + 15, y), series.colour, 2, Smoothed);
        Write(picture, std::string(series.label.utf8_str()), x + 20, y + 4, font, series.colour);
        y += 12;
    }
}

CvScalar Figure::NextColour() {
    if (m_colourCounter >= static_cast<int>(std::size(AutoColours))) m_colourCounter = 0;
    int const* colour = AutoColours[m_colourCounter++];
    return cvScalar(colour[0], colour[1], colour[2], 0);
}

PlotManager& PlotManager::Instance() {
    static PlotManager instance;
    return instance;
}

Figure* PlotManager::Find(wxString const& name) const {
    for (auto const& figure : m_figures) {
        if (figure->GetName() == name) return figure.get();
    }
    return nullptr;
}

bool PlotManager::Plot(wxString const& name, float const* x, float const* y, int count, int step, int red, int green,
                       int blue, float /*xLow*/, float /*xHigh*/, bool bars) {
    if (count < 1) return false;
    Series series;
    series.SetPoints(x, y, count, step);
    series.SetColour(red, green, blue);
    std::lock_guard<std::mutex> const lock(m_mutex);
    if (Find(name) == nullptr) m_figures.push_back(std::make_unique<Figure>(name, cvSize(600, 200)));
    Figure* figure = Find(name);
    if (figure == nullptr) Fail(__LINE__, "The plot has no figure.");
    figure->Add(series);
    return figure->DrawToFile(bars);
}

void PlotManager::Remove(wxString const& name) {
    std::lock_guard<std::mutex> const lock(m_mutex);
    m_figures.erase(std::remove_if(m_figures.begin(), m_figures.end(),
                                   [&name](auto const& figure) { return figure->GetName() == name; }),
                    m_figures.end());
}

size_t PlotManager::CountSeries(wxString const& name) const {
    std::lock_guard<std::mutex> const lock(m_mutex);
    Figure const* figure = Find(name);
    return figure == nullptr ? 0 : figure->GetSeries().size();
}

void plotim(_IplImage* image, std::vector<float> const& x, std::vector<float> const& y, int const indices[2],
            CvScalar colour) {
    _IplImage* figure_image = image;
    int const psize = indices[1] - indices[0] + 1;
    wxASSERT(psize > 0);
    wxASSERT(figure_image);
    if (psize <= 0 || figure_image == nullptr) return;
    auto const last = static_cast<size_t>(indices[1]);
    if (indices[0] < 0 || last >= x.size() || last >= y.size())
        Fail(__LINE__, "A plot's points lie outside its values.");
    Series series;
    series.SetPoints(x.data() + indices[0], y.data() + indices[0], psize, 1);
    series.SetColour(plot::CutToInt(colour.val[0]), plot::CutToInt(colour.val[1]), plot::CutToInt(colour.val[2]));
    Figure figure(wxString(), cvGetSize(figure_image));
    figure.Add(series);
    figure.DrawInto(figure_image, false);
}

}  // namespace CvPlot
