// SPDX-License-Identifier: Apache-2.0
#include "tolbase/translation.h"

#include <wx/intl.h>
#include <wx/log.h>
#include <wx/translation.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <tuple>

#include "tolbase/file.h"

namespace {

constexpr uint64_t NoLanguage = static_cast<uint64_t>(-1);
std::atomic<bool> dpiAware{false};

// Gives the one catalogue that the helper has found.
class OneFileLoader : public wxTranslationsLoader {
public:
    OneFileLoader(const wxString& file, const wxString& code) : m_file(file), m_code(code) {}
    wxMsgCatalog* LoadCatalog(const wxString& domain, const wxString& language) override {
        return language == m_code ? wxMsgCatalog::CreateFromFile(m_file, domain) : nullptr;
    }
    wxArrayString GetAvailableTranslations(const wxString&) const override {
        wxArrayString codes;
        codes.Add(m_code);
        return codes;
    }

private:
    wxString m_file;
    wxString m_code;
};

wxString CatalogueOf(const wxString& folder, const wxString& domain) {
    for (const wxString& file : {folder + "/LC_MESSAGES/" + domain + ".mo", folder + "/" + domain + ".mo"}) {
        std::error_code unreadable;
        if (std::filesystem::is_regular_file(PathToBytes(file), unreadable)) return file;
    }
    return wxString();
}

wxString NameOf(const wxString& code) {
    const wxLanguageInfo* info = wxLocale::FindLanguageInfo(code);
    return info == nullptr ? code : info->Description;
}

}  // namespace

std::vector<TranslationHelper::Language> TranslationHelper::FindLanguages(const wxString& langDir,
                                                                          const wxString& domain) {
    std::vector<Language> languages;
    if (langDir.empty() || domain.empty()) return languages;
    std::error_code error;
    std::filesystem::directory_iterator entry(PathToBytes(langDir), error);
    while (!error && entry != std::filesystem::directory_iterator()) {
        const wxString folder = PathFromBytes(entry->path().native());
        const wxString code = GetFilenameNoPath(folder);
        const wxString file = CatalogueOf(folder, domain);
        if (!file.empty()) languages.push_back({NameOf(code), code, file});
        entry.increment(error);
    }
    std::sort(languages.begin(), languages.end(), [](const Language& left, const Language& right) {
        return std::tie(left.name, left.code) < std::tie(right.name, right.code);
    });
    return languages;
}

TranslationHelper::TranslationHelper(const wxString& langDir, const wxString& language, const wxString& domain)
    : m_languages(FindLanguages(langDir, domain)), m_current(NoLanguage) {
    for (std::size_t i = 0; i < m_languages.size() && !language.empty(); ++i) {
        const bool wanted = m_languages[i].name == language || m_languages[i].code.IsSameAs(language, false);
        if (!wanted) continue;
        if (Install(m_languages[i], domain)) m_current = i;
        break;
    }
}

TranslationHelper::~TranslationHelper() {
    if (m_translations != nullptr && wxTranslations::Get() == m_translations) wxTranslations::Set(nullptr);
}

bool TranslationHelper::Install(const Language& language, const wxString& domain) {
    // A damaged catalogue is told by the result, not by wxWidgets' own message.
    const wxLogNull silence;
    auto translations = std::make_unique<wxTranslations>();
    translations->SetLoader(new OneFileLoader(language.file, language.code));
    translations->SetLanguage(language.code);
    if (!translations->AddCatalog(domain) || !translations->IsLoaded(domain)) return false;
    m_translations = translations.release();
    wxTranslations::Set(m_translations);
    return true;
}

VecString TranslationHelper::GetAvailableLanguages() const {
    VecString names = {"Default"};
    for (const Language& language : m_languages) names.push_back(language.name);
    return names;
}

uint64_t TranslationHelper::GetCurrentLanguageId() const {
    return m_current;
}

void TolSetProcessDpiAware() {
    dpiAware = true;
}
bool TolIsProcessDpiAware() {
    return dpiAware;
}
