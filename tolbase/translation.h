// SPDX-License-Identifier: Apache-2.0
// Installs the catalogue of a language as wxWidgets' translation. Made and destroyed on the main thread.
#pragma once
#include <wx/string.h>

#include <cstdint>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/types.h"

class wxTranslations;

class ORV_API TranslationHelper {
public:
    // Looks for catalogues as <langDir>/<language>/LC_MESSAGES/<domain>.mo and <langDir>/<language>/<domain>.mo.
    // `language` is a text of GetAvailableLanguages or a code such as "it"; an empty or unknown one, and "Default",
    // load nothing and leave wxWidgets' translation as it is.
    TranslationHelper(const wxString& langDir, const wxString& language, const wxString& domain);
    // Takes the translation out again if it is still the one that this object installed.
    ~TranslationHelper();
    TranslationHelper(const TranslationHelper&) = delete;
    TranslationHelper& operator=(const TranslationHelper&) = delete;

    // "Default", then the languages that have a catalogue, sorted.
    VecString GetAvailableLanguages() const;
    // The place of the current language among the real ones, from 0; -1 (the largest number) for none. So one more than
    // it is its place in GetAvailableLanguages.
    uint64_t GetCurrentLanguageId() const;

private:
    struct Language {
        wxString name;
        wxString code;
        wxString file;
    };
    static std::vector<Language> FindLanguages(const wxString& langDir, const wxString& domain);
    bool Install(const Language& language, const wxString& domain);

    std::vector<Language> m_languages;
    uint64_t m_current;
    wxTranslations* m_translations = nullptr;
};

// Tells the platform that the application scales itself. Here that is only kept: the window system does no scaling of
// its own that would have to be switched off.
ORV_API void TolSetProcessDpiAware();
ORV_API bool TolIsProcessDpiAware();
