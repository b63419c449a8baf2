// SPDX-License-Identifier: Apache-2.0
#include "filters/panelfactory.h"

#include <utility>

namespace {

// One for all filters: it holds nothing.
class WindowlessPanel : public OrvFilterGuiBase {
public:
    void Init() override {}
    wxWindow* GetWindow() override { return nullptr; }
};

OrvPanelFactory& InstalledFactory() {
    static OrvPanelFactory factory;
    return factory;
}

}  // namespace

void OrvSetPanelFactory(OrvPanelFactory factory) {
    InstalledFactory() = std::move(factory);
}

OrvFilterGuiBase* OrvMakePanel(wxWindow* parent, OrvFilter* filter) {
    static WindowlessPanel windowless;
    OrvFilterGuiBase* panel = InstalledFactory() ? InstalledFactory()(parent, filter) : nullptr;
    return panel != nullptr ? panel : &windowless;
}
