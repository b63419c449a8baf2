// SPDX-License-Identifier: Apache-2.0
// The engine's context as this program derives it.
#pragma once

#include <wx/string.h>

#include "orvcore/context.h"

namespace cli {

class CliContext : public OrvContext {
public:
    // Fills the formats and registers all filters. GetContext() has to give this object already, so the options are
    // built by whoever makes it.
    CliContext();

    // Loads into a slot that has been emptied before, so that nothing of another file can be left in it. Worker thread
    // only. Throws TolException with the reason where the picture can't be had.
    void LoadAlone(wxString const& path, OrvFileId id);
};

}  // namespace cli
