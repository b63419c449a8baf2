// SPDX-License-Identifier: Apache-2.0
// The user's language, for the sources of this library. Any thread, while no language is being loaded.
#pragma once
#include <wx/string.h>
#include <wx/translation.h>

// The translation of an English text, or the text itself.
inline wxString OrvTranslate(wxString const& text) {
    wxTranslations const* const translations = wxTranslations::Get();
    wxString const* const found = translations != nullptr ? translations->GetTranslatedString(text) : nullptr;
    return found != nullptr ? *found : text;
}
