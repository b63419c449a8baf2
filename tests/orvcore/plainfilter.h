// SPDX-License-Identifier: Apache-2.0
// A filter that does nothing, for tests of what the context does with filters.
#pragma once
#include <stdexcept>
#include <vector>

#include "orvcore/filter.h"

namespace support {

class PlainFilter : public OrvFilter {
public:
    explicit PlainFilter(wxString const& name, std::vector<Parameter> const& input = {}) : OrvFilter(name) {
        for (Parameter const& parameter : input) m_parametersInput.push_back(parameter);
    }
    void Apply(OrvFileId /*id*/) override {}
    void SetImageToSave(Image const& image) override {
        ++imagesToSave;
        OrvFilter::SetImageToSave(image);
    }
    wxString GetOutputFileSelectorString() const override { return "text|*.txt"; }
    void MakeOnlyForJpeg() { m_onlyForJpeg = true; }

    std::vector<wxString> saved;
    int imagesToSave = 0;

protected:
    void SaveOutput(wxString const& path) override { saved.push_back(path); }
    OrvFilterGuiBase* CreateFilterGui(wxWindow* /*parent*/, OrvFilter* /*filter*/) override { return nullptr; }
};

// Fails while it is being started.
class BrokenFilter : public PlainFilter {
public:
    BrokenFilter() : PlainFilter("Broken") {}

private:
    void InitPostProcessing() override { throw std::runtime_error("no start"); }
};

inline Parameter GrayOrColour() {
    return CreateParameterOption("Mode", "", {"Gray", "Colour"}, 0);
}

}  // namespace support
