// SPDX-License-Identifier: Apache-2.0
#include "orvcore/infotable.h"

#include <gtest/gtest.h>

#include <utility>

#include "orvcore/context.h"
#include "tests/support/tempdir.h"

namespace {

class ColourTable : public OrvInfoTable {
public:
    ColourTable() : OrvInfoTable(Reference) {
        m_parameters.push_back(CreateParameterOutputString("Colour", ""));
        m_parameters.push_back(CreateParameterImageResolution("Size", ""));
    }
    VecVecString Evaluate() override {
        m_parameters[0].Set("red");
        m_parameters[1].Set(boost::any(wxSize(30, 20)));
        return GenerateTable();
    }
};

const VecVecString Filled = {{"Colour", "red"}, {"Size", "30x20"}};
const VecVecString Empty = {{"Colour", ""}, {"Size", "0x0"}};

}  // namespace

TEST(InfoTable, BeforeEvaluation_HasNoTable) {
    const ColourTable table;
    EXPECT_TRUE(table.GetTable().empty());
    EXPECT_EQ(table.GetFileSlot(), Reference);
}

TEST(InfoTable, GenerateTable_GivesARowForEachParameter) {
    ColourTable table;
    EXPECT_EQ(table.GenerateTable(), Empty);
}

TEST(InfoTable, Evaluate_KeepsWhatItReturns) {
    ColourTable table;
    EXPECT_EQ(table.Evaluate(), Filled);
    EXPECT_EQ(table.GetTable(), Filled);
}

TEST(InfoTable, Reset_RestoresTheDefaults) {
    ColourTable table;
    table.Evaluate();
    EXPECT_EQ(table.Reset(), Empty);
    EXPECT_EQ(table.GetTable(), Empty);
}

TEST(InfoTable, GenerateTableTwice_DoesNotGrow) {
    ColourTable table;
    table.GenerateTable();
    EXPECT_EQ(table.GenerateTable().size(), 2u);
}

TEST(InfoTable, Copy_IsIndependent) {
    ColourTable table;
    table.Evaluate();
    ColourTable copy(table);
    table.Reset();
    EXPECT_EQ(copy.GetTable(), Filled);
    EXPECT_EQ(copy.GenerateTable(), Filled);
    const ColourTable moved(std::move(copy));
    EXPECT_EQ(moved.GetTable(), Filled);
}

TEST(InfoTable, Markers_AreTheAgreedTexts) {
    EXPECT_EQ(wxString(OrvMarkerHard), "!");
    EXPECT_EQ(wxString(OrvMarkerSoft), "?");
    EXPECT_EQ(wxString(OrvMarkerNumeric), "#");
    EXPECT_EQ(wxString(OrvMarkerImage), "*IMG*");
}
