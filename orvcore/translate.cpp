// SPDX-License-Identifier: Apache-2.0
#include "orvcore/translate.h"

#include <wx/translation.h>

wxString OrvTranslate(wxString const& text) {
    wxTranslations const* const translations = wxTranslations::Get();
    // The empty key is the catalogue's own head.
    if (translations == nullptr || text.empty()) return text;
    wxString const* const found = translations->GetTranslatedString(text);
    return found != nullptr ? *found : text;
}
