// SPDX-License-Identifier: Apache-2.0
// What the engine needs of every translation.
#include "orvcore/infotable.h"
#include "orvcore/translate.h"
#include "tests/filters/filterengine.h"
#include "tolbase/translation.h"

namespace {

class German : public support::FilterEngine {
protected:
    German() : helper(ORVELLE_LANG, "de", "orvelle") {}
    TranslationHelper helper;
};

}  // namespace

TEST_F(German, FilterNames_HaveNoDashAndDiffer) {
    std::vector<OrvFilter*> const filters = AddAll();
    for (OrvFilter const* filter : filters) {
        const wxString name = OrvTranslate(filter->GetName());
        EXPECT_EQ(wxNOT_FOUND, name.Find('-')) << name;
        EXPECT_EQ(filter, context->GetFilterFromName(name)) << name;
        EXPECT_EQ(filter, context->GetFilterFromName(filter->GetName())) << name;
    }
}

TEST_F(German, Configurations_AreFoundByTheirGermanNames) {
    OrvFilter* found = nullptr;
    for (OrvFilter* filter : AddAll()) {
        if (filter->GetName() == "Error Level Analysis") found = filter;
    }
    ASSERT_NE(nullptr, found);
    found->SetConfigurationsFromVecString({"Fehlerpegelanalyse-80", "Rauschkarte-1"});
    ASSERT_EQ(1U, found->GetConfigurations().size());
    EXPECT_EQ("80", found->GetConfigurations()[0][0].ToText());
}

TEST_F(German, Marks_StayInFront) {
    EXPECT_EQ(wxString::FromUTF8("!Nur im Beweisbild"), OrvTranslate("!Only in Evidence"));
    EXPECT_EQ(wxString::FromUTF8("?Verschieden"), OrvTranslate("?Different"));
    EXPECT_TRUE(OrvTranslate("#Id").StartsWith(OrvMarkerNumeric));
}
