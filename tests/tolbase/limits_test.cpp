// SPDX-License-Identifier: Apache-2.0
#include "tolbase/limits.h"

#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>

TEST(Limits, Defaults_AreTheDocumentedOnes) {
    EXPECT_EQ(1073741824U, GetTolLimit(TolLimit::FileBytes));
    EXPECT_EQ(268435456U, GetTolLimit(TolLimit::PixelsPerImage));
    EXPECT_EQ(64U, GetTolLimit(TolLimit::EmbeddedImages));
    EXPECT_EQ(60U, GetTolLimit(TolLimit::SecondsPerFile));
}

TEST(Limits, Names_AreThereOnce) {
    std::set<std::string> names;
    for (int i = 0; i < static_cast<int>(TolLimit::Count); ++i) {
        TolLimitInfo const& info = GetTolLimitInfo(static_cast<TolLimit>(i));
        EXPECT_TRUE(names.insert(info.name).second) << info.name;
        EXPECT_GT(info.defaultValue, 0U) << info.name;
        TolLimit found = TolLimit::Count;
        EXPECT_TRUE(FindTolLimit(info.name, found));
        EXPECT_EQ(i, static_cast<int>(found));
    }
    EXPECT_THROW(GetTolLimit(TolLimit::Count), std::out_of_range);
}

TEST(Limits, FindUnknown_LeavesTheArgument) {
    TolLimit limit = TolLimit::Segments;
    EXPECT_FALSE(FindTolLimit("pixels per image", limit));
    EXPECT_EQ(TolLimit::Segments, limit);
}

TEST(Limits, PastALimit_IsRefusedByName) {
    SetTolLimit(TolLimit::Segments, 10);
    EXPECT_NO_THROW(CheckTolLimit(TolLimit::Segments, 10));
    try {
        CheckTolLimit(TolLimit::Segments, 11);
        FAIL() << "not refused";
    } catch (TolException const& error) {
        EXPECT_EQ(82, error.GetCode());
        EXPECT_EQ(wxString("Refused: 11 segments of one file, and the limit \"segments\" is 10"), error.GetMessage());
    }
    SetTolLimit(TolLimit::Segments, 0);
    EXPECT_EQ(1000000U, GetTolLimit(TolLimit::Segments));
}

TEST(Limits, Reset_RestoresAll) {
    SetTolLimit(TolLimit::ImageSide, 5);
    SetTolLimit(TolLimit::JsonDepth, 5);
    ResetTolLimits();
    EXPECT_EQ(1000000U, GetTolLimit(TolLimit::ImageSide));
    EXPECT_EQ(512U, GetTolLimit(TolLimit::JsonDepth));
}

TEST(Limits, PictureSize_ChecksSidesAndProduct) {
    EXPECT_NO_THROW(CheckPictureSize(16384, 16384));
    EXPECT_THROW(CheckPictureSize(16385, 16384), TolLimitError);
    EXPECT_THROW(CheckPictureSize(1000001, 1), TolLimitError);
    EXPECT_THROW(CheckPictureSize(-1, 1), TolLimitError);
    SetTolLimit(TolLimit::ImageSide, UINT64_MAX);
    EXPECT_THROW(CheckPictureSize(INT64_MAX, INT64_MAX), TolLimitError);
    EXPECT_NO_THROW(CheckPictureSize(0, 0));
}
