// SPDX-License-Identifier: Apache-2.0
// The user's language. Any thread, while no language is being loaded.
#pragma once
#include <wx/string.h>

#include "tolbase/export.h"

// The translation of an English text, or the text itself where there is none.
ORV_API wxString OrvTranslate(wxString const& text);
