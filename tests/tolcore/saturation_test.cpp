// SPDX-License-Identifier: Apache-2.0
#include "tolcore/saturation.h"

#include <gtest/gtest.h>

#include <vector>

#include "tolbase/exception.h"
#include "tolbase/image.h"

namespace {

// The map of one row of pixels.
std::vector<int> MapOf(std::vector<int> const& values, int channels, double level) {
    int const count = static_cast<int>(values.size()) / channels;
    Image source = Image::Create(count, 1, IPL_DEPTH_8U, channels), map = Image::Create(count, 1, IPL_DEPTH_8U, 1);
    for (size_t i = 0; i < values.size(); ++i) source.Data()[i] = static_cast<unsigned char>(values[i]);
    saturationMap(source, map, level);
    return std::vector<int>(map.Data(), map.Data() + count);
}

using Values = std::vector<int>;

}  // namespace

TEST(SaturationMap, GrayPixels_AreZeroFromTheLevelOn) {
    EXPECT_EQ((Values{255, 255, 0, 0}), MapOf({0, 249, 250, 255}, 1, 250.0));
}

TEST(SaturationMap, LevelBetweenTwoValues_TakesTheUpper) {
    EXPECT_EQ((Values{255, 0}), MapOf({249, 250}, 1, 249.5));
}

TEST(SaturationMap, ColourPixel_IsSaturatedInAllChannelsOnly) {
    EXPECT_EQ((Values{0, 255}), MapOf({250, 251, 255, 255, 255, 249}, 3, 250.0));
}

TEST(SaturationMap, UnfitPictures_AreRefused) {
    Image gray = Image::Create(2, 2, IPL_DEPTH_8U, 1), colour = Image::Create(2, 2, IPL_DEPTH_8U, 3);
    Image wide = Image::Create(3, 2, IPL_DEPTH_8U, 1), deep = Image::Create(2, 2, IPL_DEPTH_16U, 1);
    EXPECT_THROW(saturationMap(gray, colour, 250.0), TolException);
    EXPECT_THROW(saturationMap(gray, wide, 250.0), TolException);
    EXPECT_THROW(saturationMap(deep, gray, 250.0), TolException);
    EXPECT_THROW(saturationMap(nullptr, gray, 250.0), TolException);
    EXPECT_THROW(saturationMap(gray, nullptr, 250.0), TolException);
}
