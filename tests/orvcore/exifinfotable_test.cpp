// SPDX-License-Identifier: Apache-2.0
#include "orvcore/exifinfotable.h"

#include <gtest/gtest.h>

#include "tests/orvcore/slotfiles.h"

namespace {

using support::ValueOf;

class ExifTable : public support::Slots {
protected:
    void LoadTagged() { LoadBytes(support::WithTags(support::EncodeJpeg(64, 48), {{0x010F, "Abc"}}), "a.jpg"); }
};

}  // namespace

TEST_F(ExifTable, New_IsEmpty) {
    EXPECT_TRUE(ExifInfoTable(Evidence, true).GenerateTable().empty());
    EXPECT_TRUE(ExifInfoTable(Evidence, true).GetTable().empty());
}

TEST_F(ExifTable, File_GivesRowsOfNameAndValue) {
    LoadTagged();
    for (const bool useDetails : {true, false}) {
        const VecVecString rows = ExifInfoTable(Evidence, useDetails).Evaluate();
        EXPECT_EQ("Abc", ValueOf(rows, "IFD0:Make"));
        for (VecString const& row : rows) EXPECT_EQ(2u, row.size());
    }
}

TEST_F(ExifTable, BothWays_GiveTheSameRows) {
    LoadTagged();
    EXPECT_EQ(ExifInfoTable(Evidence, true).Evaluate(), ExifInfoTable(Evidence, false).Evaluate());
}

TEST_F(ExifTable, SecondEvaluateOfDetails_GivesTheSameRows) {
    LoadTagged();
    ExifInfoTable table(Evidence, true);
    const VecVecString first = table.Evaluate();
    ASSERT_FALSE(first.empty());
    EXPECT_EQ(first, table.Evaluate());
}

TEST_F(ExifTable, SecondEvaluateOfTheFile_GivesEveryRowTwice) {
    LoadTagged();
    ExifInfoTable table(Evidence, false);
    const VecVecString first = table.Evaluate();
    ASSERT_FALSE(first.empty());
    VecVecString twice = first;
    twice.insert(twice.end(), first.begin(), first.end());
    EXPECT_EQ(twice, table.Evaluate());
    EXPECT_EQ(twice, table.GenerateTable());
}

TEST_F(ExifTable, ResetBetween_GivesAFreshTable) {
    LoadTagged();
    ExifInfoTable table(Evidence, false);
    const VecVecString first = table.Evaluate();
    EXPECT_TRUE(table.Reset().empty());
    EXPECT_EQ(first, table.Evaluate());
}

TEST_F(ExifTable, FileWithoutMetadata_GivesAnEmptyTable) {
    LoadBytes(support::PlainBmp(), "a.bmp");
    ASSERT_TRUE(context->HasFile(Evidence));
    EXPECT_TRUE(ExifInfoTable(Evidence, true).Evaluate().empty());
    EXPECT_TRUE(ExifInfoTable(Evidence, false).Evaluate().empty());
}

TEST_F(ExifTable, EmptiedSlot_EmptiesTheTable) {
    LoadTagged();
    ExifInfoTable table(Evidence, false);
    ASSERT_FALSE(table.Evaluate().empty());
    Load("");
    EXPECT_TRUE(table.Evaluate().empty());
    EXPECT_TRUE(table.GetTable().empty());
}

TEST_F(ExifTable, BaseOperations_AreTheTablesOwn) {
    LoadTagged();
    ExifInfoTable table(Evidence, true);
    OrvInfoTable& base = table;
    const VecVecString rows = base.Evaluate();
    EXPECT_EQ(rows, base.GenerateTable());
    EXPECT_TRUE(base.Reset().empty());
}
