// SPDX-License-Identifier: Apache-2.0
#include "tolcore/dimples.h"

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include "bench/blockencoder.h"

namespace {

using bench::EncodeInBlocks;
using bench::Rounding;

// A soft picture with the noise of a sensor.
cv::Mat Photograph(int width, int height) {
    cv::RNG random(7);
    cv::Mat picture(height, width, CV_8UC3);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const int light = 60 + 70 * x / width + 60 * y / height;
            for (int c = 0; c < 3; ++c) {
                picture.at<cv::Vec3b>(y, x)[c] =
                    cv::saturate_cast<unsigned char>(light + 10 * c + random.gaussian(3.0));
            }
        }
    }
    return picture;
}

// Grey 128 with one other pixel in each block.
cv::Mat DottedPicture(int dotX, int dotY, unsigned char level) {
    cv::Mat picture(256, 256, CV_8UC3, cv::Scalar::all(128));
    for (int y = dotY; y < picture.rows; y += 8) {
        for (int x = dotX; x < picture.cols; x += 8) picture.at<cv::Vec3b>(y, x) = {level, level, level};
    }
    return picture;
}

PCEoutput Detect(cv::Mat const& picture) {
    PCEoutput result;
    tcvJpegDimplesDetection(picture, result);
    return result;
}

void ExpectNothing(cv::Mat const& picture) {
    PCEoutput result;
    result.strength = 99;
    result.xOffset = 3;
    result.yOffset = 4;
    tcvJpegDimplesDetection(picture, result);
    EXPECT_EQ(0, result.strength);
    EXPECT_EQ(0, result.xOffset);
    EXPECT_EQ(0, result.yOffset);
}

}  // namespace

TEST(Dimples, DarkPixelInEachBlock_IsFoundAtItsPlace) {
    const PCEoutput result = Detect(DottedPicture(3, 5, 120));
    EXPECT_GE(result.strength, 13.0);
    EXPECT_EQ(3, result.xOffset);
    EXPECT_EQ(5, result.yOffset);
}

TEST(Dimples, BrightPixelInEachBlock_IsFoundAtItsPlace) {
    const PCEoutput result = Detect(DottedPicture(7, 0, 140));
    EXPECT_GE(result.strength, 13.0);
    EXPECT_EQ(7, result.xOffset);
    EXPECT_EQ(0, result.yOffset);
}

TEST(Dimples, EncoderThatRoundsDownOrUp_IsFoundAtEveryQuality) {
    const cv::Mat picture = Photograph(384, 320);
    for (const int quality : {50, 70, 90, 100}) {
        for (const Rounding rounding : {Rounding::Down, Rounding::Up}) {
            const PCEoutput result = Detect(EncodeInBlocks(picture, quality, rounding));
            EXPECT_GE(result.strength, 13.0) << quality;
            EXPECT_EQ(0, result.xOffset) << quality;
            EXPECT_EQ(0, result.yOffset) << quality;
        }
    }
}

TEST(Dimples, EncoderThatRoundsToTheNearest_LeavesNone) {
    const cv::Mat picture = Photograph(384, 320);
    for (const int quality : {50, 70, 90, 100}) {
        EXPECT_LT(Detect(EncodeInBlocks(picture, quality, Rounding::Nearest)).strength, 13.0) << quality;
    }
}

TEST(Dimples, PictureThatWasNeverEncoded_HasNone) {
    EXPECT_LT(Detect(Photograph(384, 320)).strength, 13.0);
}

TEST(Dimples, CroppedPicture_HasThemWhereTheGridIs) {
    const cv::Mat encoded = EncodeInBlocks(Photograph(384, 320), 90, Rounding::Down);
    // A part of a larger matrix, whose rows are not joined.
    const PCEoutput result = Detect(encoded(cv::Rect(3, 2, 360, 300)));
    EXPECT_GE(result.strength, 13.0);
    EXPECT_EQ(5, result.xOffset);
    EXPECT_EQ(6, result.yOffset);
}

TEST(Dimples, PictureOfSeveralStrips_IsReadWithoutASeam) {
    const cv::Mat encoded = EncodeInBlocks(Photograph(64, 1300), 90, Rounding::Down);
    const PCEoutput result = Detect(encoded(cv::Rect(0, 1, 64, 1299)));
    EXPECT_GE(result.strength, 13.0);
    EXPECT_EQ(0, result.xOffset);
    EXPECT_EQ(7, result.yOffset);
}

TEST(Dimples, FourthChannel_ChangesNothing) {
    const cv::Mat encoded = EncodeInBlocks(Photograph(256, 256), 90, Rounding::Down);
    cv::Mat withAlpha;
    cv::cvtColor(encoded, withAlpha, cv::COLOR_BGR2BGRA);
    EXPECT_EQ(Detect(encoded).strength, Detect(withAlpha).strength);
}

TEST(Dimples, FlatPicture_HasAStrengthOfZero) {
    ExpectNothing(cv::Mat(256, 256, CV_8UC3, cv::Scalar(10, 20, 30)));
}

TEST(Dimples, PictureTooSmall_HasAStrengthOfZero) {
    ExpectNothing(cv::Mat());
    ExpectNothing(Photograph(1, 1));
    ExpectNothing(Photograph(7, 20000));
    ExpectNothing(Photograph(20000, 7));
    ExpectNothing(Photograph(64, 56));  // 56 blocks
}

TEST(Dimples, OtherKindsOfPixels_HaveAStrengthOfZero) {
    const cv::Mat encoded = EncodeInBlocks(Photograph(256, 256), 90, Rounding::Down);
    cv::Mat other;
    cv::cvtColor(encoded, other, cv::COLOR_BGR2GRAY);
    ExpectNothing(other);
    encoded.convertTo(other, CV_16U, 257);
    ExpectNothing(other);
    encoded.convertTo(other, CV_32F, 1 / 255.0);
    ExpectNothing(other);
}

TEST(Dimples, MatrixOfThreeDimensions_HasAStrengthOfZero) {
    const int sizes[] = {32, 32, 32};
    ExpectNothing(cv::Mat(3, sizes, CV_8UC3, cv::Scalar::all(7)));
}
