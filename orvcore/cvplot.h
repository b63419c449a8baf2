// SPDX-License-Identifier: Apache-2.0
// Simple plots drawn into pictures: named figures with series, axes and a legend.
//
// Threading: the plot manager has a lock of its own, so that calls from several threads follow one another; figures and
// series have none. Ownership: the manager owns its figures, a figure its series, a series its values; a picture handed
// to plotim stays the caller's.
// Failures: a picture that can't be made throws TolException; a file that can't be written is told by the result.
#pragma once
#include <opencv2/core/core_c.h>
#include <wx/string.h>

#include <memory>
#include <mutex>
#include <vector>

#include "tolbase/export.h"

namespace CvPlot {

// A row of points and how it is drawn.
class ORV_API Series {
public:
    // Takes every step-th of `count` values; a step below 1 counts as 1.
    void SetPoints(float const* xValues, float const* yValues, int count, int step);
    // Where any of the three is above 0, negative ones are raised to 0 and the colour is taken; otherwise it stays.
    void SetColour(int red, int green, int blue);

    std::vector<float> x;
    std::vector<float> y;  // as long as x
    wxString label;
    bool autoColour = false;
    CvScalar colour = {{0.0, 0.0, 0.0, 0.0}};  // blue, green, red
};

// What a figure's coordinates mean in pixels; worked out anew at each redraw.
struct FigureScale {
    float yMaximum = 0.0F;
    float yMinimum = 0.0F;
    float yScale = 0.0F;
    float xMaximum = 0.0F;
    float xMinimum = 0.0F;
    float xScale = 0.0F;
};

// A drawing of series over common axes. The X axis spans the data and 0 unless it has a range of its own.
class ORV_API Figure {
public:
    // Throws TolException ("size.width > 0 && size.height > 0") for a size that isn't positive both ways. X limits that
    // differ are the range of the X axis.
    Figure(wxString const& name, CvSize size, float xLow = 0.0F, float xHigh = 0.0F);

    wxString const& GetName() const { return m_name; }
    // Width and height in pixels; a redraw raises them to at least 160 by 260.
    CvSize GetSize() const { return m_size; }
    std::vector<Series> const& GetSeries() const { return m_series; }
    // The scale of the last redraw.
    FigureScale const& GetScale() const { return m_scale; }

    void Add(Series const& series) { m_series.push_back(series); }
    // Draws into `picture` (8 bits a channel), whose content is lost. With `bars` each point stands on a line from the
    // lower border, otherwise points are joined. Values that are no finite numbers are left out.
    void DrawInto(_IplImage* picture, bool bars);
    // Draws into a new picture and saves it under the figure's name; a file of that name is replaced. False if the
    // picture could not be written.
    bool DrawToFile(bool bars);

private:
    void Initialise();
    void ScanSeries();
    void SetScales();
    // The pixel of a point; false for a point that has none.
    bool PixelOf(float x, float y, CvPoint& pixel) const;
    void Draw(_IplImage* picture, bool bars);
    void DrawAxes(_IplImage* picture) const;
    void DrawAxisTexts(_IplImage* picture, CvPoint crossing, float yReference) const;
    void DrawSeries(_IplImage* picture, Series const& series, bool bars) const;
    void DrawLegend(_IplImage* picture) const;
    CvScalar NextColour();

    wxString m_name;
    CvSize m_size;
    int m_border = 30;
    CvScalar m_background = {{255.0, 255.0, 255.0, 0.0}};
    CvScalar m_axisColour = {{0.0, 0.0, 0.0, 0.0}};
    CvScalar m_textColour = {{0.0, 0.0, 0.0, 0.0}};
    FigureScale m_scale;
    bool m_customRange = false;
    int m_colourCounter = 0;
    std::vector<Series> m_series;
};

// The figures of the process by name.
class ORV_API PlotManager {
public:
    static PlotManager& Instance();

    // Adds a series to the figure `name`, which is made (600 by 200) if there is none, and saves the figure under its
    // name. Colours are 0 to 255; all at 0 or below is black. The two X limits have no effect. With `count` below 1
    // nothing happens. False if the file could not be written.
    bool Plot(wxString const& name, float const* x, float const* y, int count, int step, int red, int green, int blue,
              float xLow, float xHigh, bool bars);
    // Forgets a figure and its series; a name without a figure does nothing.
    void Remove(wxString const& name);
    // How many series the figure has; 0 if there is none of that name.
    size_t CountSeries(wxString const& name) const;

private:
    PlotManager() = default;
    Figure* Find(wxString const& name) const;

    mutable std::mutex m_mutex;
    std::vector<std::unique_ptr<Figure>> m_figures;
};

// Draws the points from indices[0] to indices[1], both included, into `image`, whose content is lost. Of the colour the
// first value is red, the third blue. Throws TolException for an index outside the values.
ORV_API void plotim(_IplImage* image, std::vector<float> const& x, std::vector<float> const& y, int const indices[2],
                    CvScalar colour);

}  // namespace CvPlot
