// SPDX-License-Identifier: Apache-2.0
// Base of the filters whose result is a curve per file slot, such as a histogram.
//
// Threading: the plot data are touched by the worker thread and the user interface thread, always under the slot's
// mutex; loading and saving hold it during their file work.
// Ownership: the filter owns the data of both slots; GetPlotDataCopy shares nothing with them.
#pragma once
#include <wx/thread.h>

#include <cstdint>

#include "orvcore/datalocker.h"
#include "orvcore/filter.h"
#include "orvcore/plotdata.h"

class wxFFile;

// A concrete filter fills the data of a slot through GetPlotData in Apply.
//
// The cache has two files. The one that ends in ".binary" is reloaded; it is an array of little-endian IEEE 754 double
// values: dim, coi, the X range, the Y range, all X values, then the values of all series point by point. The one that
// ends in ".txt" has the same content for a reader and is never read back.
class ORV_API OrvFilterPlot : public OrvFilter {
public:
    using OrvFilter::Reset;

    explicit OrvFilterPlot(wxString const& name);
    // Takes over every member; the locks are the copy's own.
    OrvFilterPlot(OrvFilterPlot const& other);
    OrvFilterPlot& operator=(OrvFilterPlot const& other);
    ~OrvFilterPlot() override;

    // Draws the Evidence's plot to `path`.
    void SaveOutputBatch(wxString const& path) override;
    // An image element for the picture of the last SaveOutputBatch; empty if that saved none.
    wxString GetReportData(wxString const& outputPath, wxString const& outputFolder) const override;
    wxString GetOutputFileSelectorString() const override;
    // "." and the image format of the cache. The cached data themselves have fixed extensions.
    wxString GetCacheExtension() const override;

    // The default image width after a SaveOutputBatch that saved a picture, 0 for none.
    int GetOutputBatchSize() const { return m_outputBatchSize; }
    // A copy made under the lock.
    OrvPlotData GetPlotDataCopy(OrvFileId id) const;

    // How alike the first series of both slots are, from -1 to 1: the greatest normalised correlation coefficient of
    // the Reference's along the Evidence's. 0 if a slot has no data. Throws TolException if the Reference's series is
    // the longer one.
    double ComputePlotSimilarity() const;
    // Makes both forms of the cache at once. `buffer` receives an array to be freed with delete[], `bytes` its size in
    // bytes. Points that lie before the X range are dropped. False, with a null buffer, if the series aren't as many as
    // dim and as long as the indices ask.
    bool SavePlotData(OrvPlotData const& data, wxString& text, double** buffer, std::uint64_t* bytes) const;
    // Reads a ".binary" file that is open for reading. True, without points, for an empty file; false, without points,
    // for a file whose words contradict its length or aren't numbers that could have been saved. The second range and
    // the marker lines keep what they held.
    bool LoadPlotData(wxFFile& file, OrvPlotData& data) const;
    // Draws the points within the X range and the marker lines into a picture file; a file of that name is replaced.
    void SavePlotImage(wxString const& path, OrvPlotData const& data) const;

protected:
    void Reset(OrvFileId id) override;
    void SaveOutput(wxString const& path) override;
    bool LoadCache(OrvFileId id) override;
    void SaveCache(OrvFileId id) const override;

    // The data of a slot, locked as long as the locker lives. At most one locker of a slot in a thread.
    OrvDataLocker<OrvPlotData> GetPlotData(OrvFileId id);

    int m_xLow = 0;   // handed to every plot call, where they have no effect
    int m_xHigh = 0;  //
    int m_mode = 0;   // the concrete filter's own
    bool m_bars = false;
    int m_outputBatchSize = 0;
    OrvPlotData m_plotData[2];
    mutable wxMutex m_plotMutex[2];

private:
    void CopyFrom(OrvFilterPlot const& other);
    void DrawCurve(wxString const& path, OrvPlotData const& data) const;
    void DrawMarkers(wxString const& path, OrvPlotData const& data, bool vertical) const;
};
