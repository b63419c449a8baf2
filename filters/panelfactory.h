// SPDX-License-Identifier: Apache-2.0
// Where concrete filters get their panels from.
#pragma once
#include <functional>

#include "orvcore/filter.h"
#include "tolbase/export.h"

// Makes the panel of a filter beneath a window. Who installs the factory keeps the panels that it makes.
using OrvPanelFactory = std::function<OrvFilterGuiBase*(wxWindow* parent, OrvFilter* filter)>;

// Installs the panels of a program with windows; call it on the main thread before filters are registered. An empty
// factory brings back the start value: panels without a window.
ORV_API void OrvSetPanelFactory(OrvPanelFactory factory);

// The panel of a filter, never null: the installed factory's, or else one that does nothing and whose window is null.
ORV_API OrvFilterGuiBase* OrvMakePanel(wxWindow* parent, OrvFilter* filter);
