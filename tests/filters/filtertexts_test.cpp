// SPDX-License-Identifier: Apache-2.0
#include "filters/filtertexts.h"

#include <cstring>

#include "filters/registry.h"
#include "tests/filters/filterengine.h"

TEST(FilterTexts, EveryFilter_IsExplained) {
    for (OrvNumberedFilter const& entry : MakeFilters()) {
        OrvFilterExplanation const* text = OrvExplainFilter(entry.filter->GetName());
        ASSERT_NE(nullptr, text) << entry.filter->GetName();
        EXPECT_EQ(entry.filter->GetName(), text->name);
        for (char const* part : {text->method, text->source, text->limits}) {
            EXPECT_GT(std::strlen(part), 20U) << text->name;
            EXPECT_NE('\n', part[std::strlen(part) - 1]) << text->name;
        }
        delete entry.filter;
    }
}

// Each parameter that can be set is told of by its name.
TEST(FilterTexts, Parameters_AreExplained) {
    for (OrvNumberedFilter const& entry : MakeFilters()) {
        wxString const method = wxString::FromUTF8(OrvExplainFilter(entry.filter->GetName())->method);
        for (Parameter const& parameter : entry.filter->GetParametersInput()) {
            EXPECT_TRUE(method.Contains("\"" + parameter.Name() + "\"")) << entry.filter->GetName() << parameter.Name();
        }
        delete entry.filter;
    }
}

TEST(FilterTexts, Name_IsFoundInAnyCase) {
    EXPECT_STREQ("Noise Map", OrvExplainFilter("noise map")->name);
    EXPECT_EQ(nullptr, OrvExplainFilter("noise"));
    EXPECT_EQ(nullptr, OrvExplainFilter(""));
}
