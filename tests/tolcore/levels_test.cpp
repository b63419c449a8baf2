// SPDX-License-Identifier: Apache-2.0
#include "tolcore/levels.h"

#include <gtest/gtest.h>

#include <vector>

#include "tolbase/exception.h"
#include "tolbase/image.h"

namespace {

// One row of gray values after the levels.
std::vector<int> Mapped(std::vector<int> const& values, int highlight, int midtone, int shadow) {
    int const count = static_cast<int>(values.size());
    Image source = Image::Create(count, 1, IPL_DEPTH_8U, 1);
    Image destination = Image::Create(count, 1, IPL_DEPTH_8U, 1);
    for (size_t i = 0; i < values.size(); ++i) source.Data()[i] = static_cast<unsigned char>(values[i]);
    int levels[3] = {highlight, midtone, shadow};
    tcvLevels(source, destination, levels, 16, 0);
    return std::vector<int>(destination.Data(), destination.Data() + count);
}

using Values = std::vector<int>;

}  // namespace

TEST(Levels, DefaultValues_LeaveEveryToneAsItIs) {
    Values all;
    for (int v = 0; v < 256; ++v) all.push_back(v);
    EXPECT_EQ(all, Mapped(all, 255, 127, 0));
}

TEST(Levels, NeutralMidtone_StretchesInAStraightLine) {
    // 125: a quarter of the way from 100 to 200, 63.75; 150: 127.5.
    EXPECT_EQ((Values{0, 0, 64, 128, 255, 255}), Mapped({90, 100, 125, 150, 200, 220}, 200, 150, 100));
}

TEST(Levels, LowMidtone_Brightens) {
    // gamma = ln(2/4) / ln(1/4) = 0.5: 255 times the root of 1/4, 2/4 and 3/4.
    EXPECT_EQ((Values{0, 128, 180, 221, 255}), Mapped({0, 1, 2, 3, 4}, 4, 1, 0));
}

TEST(Levels, HighMidtone_Darkens) {
    // gamma = ln(2/4) / ln(3/4) = 2.4094: 255 * 0.25^2.4094 = 9.04, 255 * 0.5^2.4094 = 48.00, 255 * 0.5.
    EXPECT_EQ((Values{0, 9, 48, 128, 255}), Mapped({0, 1, 2, 3, 4}, 4, 3, 0));
}

TEST(Levels, MidtoneOutsideTheEnds_CountsAsTheNearestInside) {
    EXPECT_EQ(Mapped({0, 1, 2, 3, 4}, 4, 1, 0), Mapped({0, 1, 2, 3, 4}, 4, 0, 0));
    EXPECT_EQ(Mapped({0, 1, 2, 3, 4}, 4, 3, 0), Mapped({0, 1, 2, 3, 4}, 4, 255, 0));
}

TEST(Levels, EqualEnds_SplitAtTheShadow) {
    EXPECT_EQ((Values{0, 255, 255}), Mapped({99, 100, 101}, 100, 100, 100));
}

TEST(Levels, ReversedEnds_SplitAtTheShadow) {
    EXPECT_EQ((Values{0, 0, 255}), Mapped({100, 199, 200}, 100, 127, 200));
}

TEST(Levels, NeighbouringEnds_LeaveNothingBetween) {
    EXPECT_EQ((Values{0, 0, 255, 255}), Mapped({99, 100, 101, 102}, 101, 100, 100));
}

TEST(Levels, ColourPicture_IsMappedInEveryChannel) {
    Image picture = Image::Create(1, 1, IPL_DEPTH_8U, 3);
    picture.Data()[0] = 100;
    picture.Data()[1] = 150;
    picture.Data()[2] = 200;
    int levels[3] = {200, 150, 100};
    tcvLevels(picture, picture, levels, 16, 0);
    EXPECT_EQ((Values{0, 128, 255}), Values(picture.Data(), picture.Data() + 3));
}

TEST(Levels, PicturesThatDiffer_AreRefused) {
    Image gray = Image::Create(2, 2, IPL_DEPTH_8U, 1), colour = Image::Create(2, 2, IPL_DEPTH_8U, 3);
    Image wide = Image::Create(3, 2, IPL_DEPTH_8U, 1), deep = Image::Create(2, 2, IPL_DEPTH_16U, 1);
    int levels[3] = {255, 127, 0};
    EXPECT_THROW(tcvLevels(gray, colour, levels, 16, 0), TolException);
    EXPECT_THROW(tcvLevels(gray, wide, levels, 16, 0), TolException);
    EXPECT_THROW(tcvLevels(deep, deep, levels, 16, 0), TolException);
    EXPECT_THROW(tcvLevels(nullptr, gray, levels, 16, 0), TolException);
    EXPECT_THROW(tcvLevels(gray, nullptr, levels, 16, 0), TolException);
}
