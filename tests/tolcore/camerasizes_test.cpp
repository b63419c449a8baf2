// SPDX-License-Identifier: Apache-2.0
#include "tolcore/camerasizes.h"

#include <gtest/gtest.h>

TEST(CameraSizes, KnownModel_HasItsLargestSizeAndNoWholeList) {
    DpReviewInfo info;
    ASSERT_TRUE(DpReviewCollection().find("NIKON CORPORATION", "NIKON D90", info));
    EXPECT_EQ("NIKON D90", info.getModel());
    EXPECT_EQ(4288, info.getLargest().longSide);
    EXPECT_EQ(2848, info.getLargest().shortSide);
    EXPECT_TRUE(info.getResolutions().empty());
    EXPECT_FALSE(info.hasResolution({4288, 2848}));
}

TEST(CameraSizes, UnknownModel_LeavesTheArgument) {
    DpReviewInfo info("Acme", "X1", {10, 5}, {}, "");
    EXPECT_FALSE(DpReviewCollection().find("Acme", "X2", info));
    EXPECT_EQ("X1", info.getModel());
    EXPECT_FALSE(DpReviewCollection().find("", "", info));
}

TEST(CameraSizes, PaddingAndCase_DontMatter) {
    DpReviewInfo info;
    EXPECT_TRUE(DpReviewCollection().find(" canon ", std::string("CANON EOS 5D MARK III\0\0", 23), info));
    EXPECT_EQ("Canon EOS 5D Mark III", info.getModel());
    EXPECT_FALSE(DpReviewCollection().find("Canon", "CanonEOS 5D Mark III", info));
}

TEST(CameraSizes, ModelWithAComma_IsOneModel) {
    DpReviewInfo info;
    EXPECT_TRUE(DpReviewCollection().find("SAMSUNG", "VLUU WB210, SAMSUNG WB210", info));
    EXPECT_EQ(4320, info.getLargest().longSide);
}

TEST(CameraSizes, Table_HasAllItsRecords) {
    EXPECT_EQ(1007U, DpReviewCollection().size());
}

TEST(CameraSizes, HasResolution_ComparesBothSides) {
    const DpReviewInfo info("Acme", "X1", {40, 30}, {{40, 30}, {20, 15}}, "https://example.org/x1");
    EXPECT_TRUE(info.hasResolution({20, 15}));
    EXPECT_FALSE(info.hasResolution({15, 20}));
    EXPECT_EQ("https://example.org/x1", info.getReferenceUrl());
    EXPECT_FALSE(DpReviewInfo().hasResolution({0, 0}));
}
