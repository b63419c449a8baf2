// SPDX-License-Identifier: Apache-2.0
#include "tests/fuzz/engine.h"

#include "filters/registry.h"
#include "orvcore/interface.h"

namespace fuzz {

FuzzContext::FuzzContext() {
    imageFormatsRead = {"jpg", "png"};
    imageFormatsWrite = {"jpg", "png"};
}

FuzzContext& Engine() {
    static FuzzContext* const context = [] {
        auto* made = new FuzzContext;
        // The interface ends with the process.
        static auto* const interface = new OrvInterface(made);
        interface->SetTest();
        for (OrvNumberedFilter const& entry : MakeFilters()) {
            made->AddFilterType(entry.filter, entry.number);
            entry.filter->CreateAnalysisPanel(nullptr, entry.filter);
        }
        made->InitProgramOptions(AppVersion());
        made->LoadProgramOptions(made->GetProgramOptionsPath());
        return made;
    }();
    return *context;
}

}  // namespace fuzz
