// SPDX-License-Identifier: Apache-2.0
#include "tolbase/translation.h"

#include <wx/translation.h>

#include "tests/support/tempdir.h"
#include "tolbase/appversion.h"

namespace {

void Put32(std::string& bytes, std::size_t number) {
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>((number >> shift) & 255);
}

// A compiled catalogue with a header and one text.
std::string Catalogue(const std::string& text, const std::string& translation) {
    const std::string header = "Content-Type: text/plain; charset=UTF-8\n";
    const std::vector<std::string> strings = {"", text, header, translation};
    std::string bytes;
    for (const std::size_t number : {0x950412DEul, 0ul, 2ul, 28ul, 44ul, 0ul, 60ul}) Put32(bytes, number);
    std::size_t offset = 60;
    for (const std::string& string : strings) {
        Put32(bytes, string.size());
        Put32(bytes, offset);
        offset += string.size() + 1;
    }
    for (const std::string& string : strings) bytes += string + '\0';
    return bytes;
}

class Translation : public ::testing::Test {
protected:
    Translation() {
        support::WriteBytes(dir / "it/LC_MESSAGES/orvelle.mo", Catalogue("Hello", "Ciao"));
        support::WriteBytes(dir / "de/orvelle.mo", Catalogue("Hello", "Hallo \xC3\xBC"));
        support::WriteBytes(dir / "fr/other.mo", Catalogue("Hello", "Salut"));
        support::WriteBytes(dir / "readme.txt", "x");
    }
    support::TempDir dir;
};

}  // namespace

TEST_F(Translation, Languages_AreThoseWithACatalogue) {
    const TranslationHelper helper(dir.Path(), "", "orvelle");
    EXPECT_EQ((VecString{"Default", "German", "Italian"}), helper.GetAvailableLanguages());
    EXPECT_EQ(0u, helper.GetCurrentLanguageId() + 1);
    EXPECT_EQ(nullptr, wxTranslations::Get());
}

TEST_F(Translation, Language_IsInstalledByNameAndByCode) {
    for (const char* language : {"German", "de", "DE"}) {
        const TranslationHelper helper(dir.Path(), language, "orvelle");
        EXPECT_EQ(0u, helper.GetCurrentLanguageId());
        EXPECT_EQ(wxString::FromUTF8("Hallo \xC3\xBC"), wxGetTranslation("Hello")) << language;
    }
    const TranslationHelper helper(dir.Path(), "Italian", "orvelle");
    EXPECT_EQ(1u, helper.GetCurrentLanguageId());
    EXPECT_EQ(wxString("Ciao"), wxGetTranslation("Hello"));
    EXPECT_EQ(wxString("Other"), wxGetTranslation("Other"));
}

TEST_F(Translation, UnknownLanguage_LoadsNothing) {
    for (const char* language : {"", "Default", "Klingon", "French"}) {
        const TranslationHelper helper(dir.Path(), language, "orvelle");
        EXPECT_EQ(static_cast<uint64_t>(-1), helper.GetCurrentLanguageId()) << language;
        EXPECT_EQ(wxString("Hello"), wxGetTranslation("Hello"));
    }
}

TEST_F(Translation, BrokenCatalogue_LoadsNothing) {
    for (const std::string& bytes :
         {std::string(), std::string("no catalogue"), Catalogue("Hello", "Ciao").substr(0, 50)}) {
        support::WriteBytes(dir / "it/LC_MESSAGES/orvelle.mo", bytes);
        const TranslationHelper helper(dir.Path(), "Italian", "orvelle");
        EXPECT_EQ(static_cast<uint64_t>(-1), helper.GetCurrentLanguageId());
        EXPECT_EQ(wxString("Hello"), wxGetTranslation("Hello"));
    }
}

TEST_F(Translation, End_TakesOnlyItsOwnOut) {
    { const TranslationHelper helper(dir.Path(), "Italian", "orvelle"); }
    EXPECT_EQ(nullptr, wxTranslations::Get());
    auto* mine = new wxTranslations;
    {
        const TranslationHelper helper(dir.Path(), "Italian", "orvelle");
        wxTranslations::Set(mine);
    }
    EXPECT_EQ(mine, wxTranslations::Get());
}

TEST_F(Translation, NoFolder_HasTheDefaultAlone) {
    EXPECT_EQ((VecString{"Default"}), TranslationHelper(dir / "none", "it", "orvelle").GetAvailableLanguages());
    EXPECT_EQ((VecString{"Default"}), TranslationHelper("", "it", "orvelle").GetAvailableLanguages());
}

TEST(DpiAware, IsKept) {
    EXPECT_FALSE(TolIsProcessDpiAware());
    TolSetProcessDpiAware();
    EXPECT_TRUE(TolIsProcessDpiAware());
}

TEST(AppVersion, Fields_AreSetAndAssigned) {
    AppVersion version;
    EXPECT_EQ(wxString(), version.GetAppName());
    version.SetAppName("a");
    version.SetBuildDate("b");
    version.SetPlatform("c");
    version.SetEngineRevision("d");
    version.SetLangDir("e");
    const AppVersion copy = version;
    EXPECT_EQ(wxString("abcde"), copy.GetAppName() + copy.GetBuildDate() + copy.GetPlatform() +
                                     copy.GetEngineRevision() + copy.GetLangDir());
}
