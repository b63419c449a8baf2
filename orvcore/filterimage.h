// SPDX-License-Identifier: Apache-2.0
// Base of the filters whose result is a picture per file slot.
//
// Threading: the calculated and the post-processed pictures are touched on the worker thread only. The displayed ones
// are written there and read by the user interface thread, each under the mutex of its picture and slot.
// Ownership: the filter owns all its pictures; the copies that it hands out share no pixels with them.
#pragma once
#include <wx/thread.h>

#include "orvcore/datalocker.h"
#include "orvcore/filter.h"

// A concrete filter stores the result of Apply in GetOutputImage. If it offers post-processing, it calls one of the
// three InitPostProcessing... operations from its InitPostProcessing, and the step of that kind from its
// ApplyPostProcessing: each reads its parameters from index 0. A step leaves the stored output as it is, so that it can
// be repeated with other values without a new calculation. Where the slot has no output, a step gives none.
class ORV_API OrvFilterImage : public OrvFilter {
public:
    using OrvFilter::Reset;

    explicit OrvFilterImage(wxString const& name);
    // Takes over every member and shares the pictures; the locks are the copy's own.
    OrvFilterImage(OrvFilterImage const& other);
    OrvFilterImage& operator=(OrvFilterImage const& other);
    ~OrvFilterImage() override;

    // Shares the calculated picture as the post-processed one.
    void ApplyPostProcessing(OrvFileId id) override;
    // Makes the four displayed pictures, all of one size, so that they can be laid over each other. On the worker
    // thread only.
    void UpdateOutputData() override;
    // Saves the Evidence's post-processed picture, scaled to the width limits of the program options.
    void SaveOutputBatch(wxString const& path) override;
    // An image element for the picture of the last SaveOutputBatch; empty if that saved none.
    wxString GetReportData(wxString const& outputPath, wxString const& outputFolder) const override;
    wxString GetOutputFileSelectorString() const override;
    // "." and the image format of the cache.
    wxString GetCacheExtension() const override;

    // Width in pixels of the picture of the last SaveOutputBatch, 0 for none.
    int GetOutputBatchSize() const { return m_outputBatchSize; }
    // Deep copies, made under the lock.
    Image GetInputImageDisplayedCopy(OrvFileId id);
    Image GetOutputImageDisplayedCopy(OrvFileId id);
    // True if more than 2 % of the pixels are above 200 in the gray form of `second` and at 240 or below in that of
    // `first`. Both pictures have one size.
    bool CalculateWarningFromMap(Image const& first, Image const& second) const;

protected:
    void Reset(OrvFileId id) override;
    void SaveOutput(wxString const& path) override;
    bool LoadCache(OrvFileId id) override;
    void SaveCache(OrvFileId id) const override;

    // Parameters "Highlights", "Midtones", "Shadows".
    void InitPostProcessingLevels();
    // Parameters "Map Type", "Show Saturation".
    void InitPostProcessingMap();
    // Parameter "Scale (0 = auto)".
    void InitPostProcessingScale();
    // Keeps the three sliders in order, whichever the user has moved since the last call for any filter, writes them
    // back, and applies tcvLevels.
    void ApplyPostProcessingLevels(OrvFileId id);
    // Shows the output as a colour map, alone or over the input picture of the slot. The output needs at least two
    // channels for any type but "Gray", and the input's size and type for the overlays.
    void ApplyPostProcessingMap(OrvFileId id);
    // Amplifies by the parameter's value; for 0 compresses so that 2.5 times the mean of the middle 60 % of the pixels
    // by brightness lands at half scale.
    void ApplyPostProcessingScale(OrvFileId id);

    // The calculated and the post-processed picture, for the worker thread.
    Image& GetOutputImage(OrvFileId id) { return m_outputImage[id]; }
    Image& GetOutputImagePostProcessing(OrvFileId id) { return m_outputImagePostProcessing[id]; }
    // The displayed pictures, locked as long as the locker lives. At most one locker of a kind and slot in a thread.
    OrvDataLocker<Image> GetInputImageDisplayed(OrvFileId id);
    OrvDataLocker<Image> GetOutputImageDisplayed(OrvFileId id);
    // Empties the displayed input picture.
    void ResetInput(OrvFileId id);
    // Empties the calculated, the post-processed and the displayed output picture.
    void ResetOutput(OrvFileId id);

    int m_outputBatchSize = 0;
    // To be set by a filter whose output always has the size of its input: a cached picture of another size is then
    // none of its results.
    bool m_outputHasInputSize = false;
    Image m_outputImage[2];
    Image m_outputImagePostProcessing[2];
    Image m_inputImageDisplayed[2];
    Image m_outputImageDisplayed[2];
    mutable wxMutex m_inputMutex[2];
    mutable wxMutex m_outputMutex[2];

private:
    void CopyFrom(OrvFilterImage const& other);
    void DisplayInput(OrvFileId id, CvSize size, bool wanted);
    void DisplayOutput(OrvFileId id, CvSize size);
    void ShowSaturation(OrvFileId id);
};
