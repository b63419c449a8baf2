// SPDX-License-Identifier: Apache-2.0
// The filter that shows the picture as it is.
#pragma once
#include "orvcore/filter.h"
#include "tolbase/export.h"

// Computes nothing and has no parameters: an application loads a file with it. The picture to show is the slot's own.
class ORV_API OrvFilterOriginal : public OrvFilter {
public:
    OrvFilterOriginal();

    // Forgets the view of an earlier run.
    void PreApply() override;
    void Apply(OrvFileId id) override;
    wxString GetOutputFileSelectorString() const override;
    // The format of image caches, since the result to save is a picture.
    wxString GetCacheExtension() const override;

protected:
    // Writes the view that SetImageToSave handed over, or the Evidence's picture where there is none. Throws
    // TolException without either, and if the file can't be written.
    void SaveOutput(const wxString& path) override;
    OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) override;
};
