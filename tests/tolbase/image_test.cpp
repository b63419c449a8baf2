// SPDX-License-Identifier: Apache-2.0
#include "tolbase/image.h"

#include <gtest/gtest.h>

#include <opencv2/core.hpp>

#include "tolbase/limits.h"

namespace {

Image Filled(int width, int height, int depth, int channels, cv::Scalar const& value) {
    Image image = Image::Create(width, height, depth, channels);
    cv::Mat pixels = image;
    pixels.setTo(value);
    return image;
}

}  // namespace

TEST(ImageBase, Default_IsNotOk) {
    Image image;
    EXPECT_FALSE(image.IsOk());
    EXPECT_EQ(0, image.Width());
    EXPECT_EQ(0, image.Channels());
    EXPECT_EQ(nullptr, image.Data());
    EXPECT_EQ(nullptr, static_cast<_IplImage*>(image));
    EXPECT_TRUE(cv::Mat(image).empty());
}

TEST(ImageBase, NullHeader_IsNotOk) {
    EXPECT_FALSE(Image(nullptr).IsOk());
    EXPECT_EQ(nullptr, Image(nullptr).Release());
}

TEST(ImageBase, EmptyImage_GivesEmptyResults) {
    const Image empty;
    EXPECT_FALSE(empty.Clone().IsOk());
    EXPECT_FALSE(empty.ToColor().IsOk());
    EXPECT_FALSE(empty.ToGray().IsOk());
    EXPECT_FALSE(empty.Resize(cvSize(4, 4), 2, true).IsOk());
    EXPECT_FALSE(empty.MakeCroppedThumbnail(cvSize(4, 4)).IsOk());
}

TEST(ImageBase, Header_IsTakenOver) {
    Image image(cvCreateImage(cvSize(7, 5), IPL_DEPTH_8U, 3));
    ASSERT_TRUE(image.IsOk());
    EXPECT_EQ(7, image.Width());
    EXPECT_EQ(5, image.Height());
    EXPECT_EQ(3, image.Channels());
    EXPECT_EQ(24, image.Step());
    EXPECT_EQ(7, image.Size().width);
    EXPECT_EQ(5, image.Size().height);
}

TEST(ImageBase, RegionOfInterest_IsDropped) {
    _IplImage* header = cvCreateImage(cvSize(7, 5), IPL_DEPTH_8U, 3);
    cvSetImageROI(header, cvRect(1, 1, 2, 2));
    EXPECT_EQ(7, cv::Mat(Image(header)).cols);
}

TEST(ImageBase, Copies_ShareTheirPixels) {
    Image image = Filled(3, 2, IPL_DEPTH_8U, 3, cv::Scalar(1, 2, 3));
    Image copy(image);
    Image assigned;
    assigned = image;
    EXPECT_EQ(image.Data(), copy.Data());
    EXPECT_EQ(image.Data(), assigned.Data());
    EXPECT_EQ(image.Data(), image.ToColor().Data());
}

TEST(ImageBase, Clone_HasItsOwnPixels) {
    Image image = Filled(3, 2, IPL_DEPTH_8U, 3, cv::Scalar(1, 2, 3));
    Image clone = image.Clone();
    clone.Data()[0] = 99;
    EXPECT_EQ(1, image.Data()[0]);
    EXPECT_EQ(2, clone.Data()[1]);
}

TEST(ImageBase, Matrix_IsOverTheSamePixels) {
    Image image = Filled(3, 2, IPL_DEPTH_8U, 3, cv::Scalar(1, 2, 3));
    cv::Mat matrix = image;
    matrix.at<cv::Vec3b>(0, 0)[2] = 200;
    EXPECT_EQ(200, image.Data()[2]);
}

TEST(ImageBase, SelfAssignment_KeepsThePicture) {
    Image image = Filled(3, 2, IPL_DEPTH_8U, 1, cv::Scalar(5));
    Image const& same = image;
    image = same;
    ASSERT_TRUE(image.IsOk());
    EXPECT_EQ(5, image.Data()[0]);
}

TEST(ImageBase, Release_OfASharedPictureCopies) {
    Image image = Filled(3, 2, IPL_DEPTH_8U, 1, cv::Scalar(5));
    Image copy(image);
    Image released(copy.Release());
    EXPECT_FALSE(copy.IsOk());
    ASSERT_TRUE(image.IsOk());
    EXPECT_NE(image.Data(), released.Data());
    EXPECT_EQ(5, released.Data()[0]);
}

TEST(ImageBase, ToColor_OfGreyRepeatsIt) {
    Image colour = Filled(3, 2, IPL_DEPTH_8U, 1, cv::Scalar(80)).ToColor();
    ASSERT_EQ(3, colour.Channels());
    EXPECT_EQ(80, colour.Data()[0]);
    EXPECT_EQ(80, colour.Data()[1]);
    EXPECT_EQ(80, colour.Data()[2]);
}

TEST(ImageBase, ToColor_OfGreyWithAlphaTakesTheGrey) {
    Image colour = Filled(3, 2, IPL_DEPTH_8U, 2, cv::Scalar(80, 10)).ToColor();
    ASSERT_EQ(3, colour.Channels());
    EXPECT_EQ(80, colour.Data()[0]);
    EXPECT_EQ(80, colour.Data()[2]);
}

TEST(ImageBase, ToColor_DropsAlphaWithoutBlending) {
    Image colour = Filled(3, 2, IPL_DEPTH_8U, 4, cv::Scalar(10, 20, 30, 0)).ToColor();
    ASSERT_EQ(3, colour.Channels());
    EXPECT_EQ(10, colour.Data()[0]);
    EXPECT_EQ(20, colour.Data()[1]);
    EXPECT_EQ(30, colour.Data()[2]);
}

// 65535 is 255; 32896 is 128 (257 times 128); 128 is 0.498 and so 0; 129 is 0.502 and so 1.
TEST(ImageBase, ToColor_Of16BitsScalesByTheWholeRange) {
    Image deep = Image::Create(4, 1, IPL_DEPTH_16U, 1);
    cv::Mat pixels = deep;
    pixels.at<ushort>(0, 0) = 65535;
    pixels.at<ushort>(0, 1) = 32896;
    pixels.at<ushort>(0, 2) = 128;
    pixels.at<ushort>(0, 3) = 129;
    Image colour = deep.ToColor();
    ASSERT_EQ(3, colour.Channels());
    EXPECT_EQ(255, colour.Data()[0]);
    EXPECT_EQ(128, colour.Data()[3]);
    EXPECT_EQ(0, colour.Data()[6]);
    EXPECT_EQ(1, colour.Data()[9]);
}

TEST(ImageBase, ToColor_OfFloatClipsOutsideZeroToOne) {
    Image real = Image::Create(3, 1, IPL_DEPTH_32F, 3);
    cv::Mat pixels = real;
    pixels.at<cv::Vec3f>(0, 0) = {0.0F, 0.2F, 1.0F};
    pixels.at<cv::Vec3f>(0, 1) = {-1.0F, 2.0F, 0.6F};
    Image colour = real.ToColor();
    EXPECT_EQ(0, colour.Data()[0]);
    EXPECT_EQ(51, colour.Data()[1]);
    EXPECT_EQ(255, colour.Data()[2]);
    EXPECT_EQ(0, colour.Data()[3]);
    EXPECT_EQ(255, colour.Data()[4]);
    EXPECT_EQ(153, colour.Data()[5]);
}

// 0.299 R + 0.587 G + 0.114 B of pure colours: 76.2, 149.7, 29.1.
TEST(ImageBase, ToGray_WeighsTheColours) {
    EXPECT_EQ(76, Filled(1, 1, IPL_DEPTH_8U, 3, cv::Scalar(0, 0, 255)).ToGray().Data()[0]);
    EXPECT_EQ(150, Filled(1, 1, IPL_DEPTH_8U, 3, cv::Scalar(0, 255, 0)).ToGray().Data()[0]);
    EXPECT_EQ(29, Filled(1, 1, IPL_DEPTH_8U, 4, cv::Scalar(255, 0, 0, 7)).ToGray().Data()[0]);
    EXPECT_EQ(9, Filled(1, 1, IPL_DEPTH_8U, 2, cv::Scalar(9, 200)).ToGray().Data()[0]);
}

TEST(ImageBase, Resize_GivesExactlyTheSize) {
    const Image image = Filled(40, 20, IPL_DEPTH_8U, 3, cv::Scalar(10, 20, 30));
    for (const CvSize size : {cvSize(20, 10), cvSize(15, 31), cvSize(80, 40), cvSize(1, 1)}) {
        for (const bool smooth : {true, false}) {
            Image resized = image.Resize(size, 2, smooth);
            EXPECT_EQ(size.width, resized.Width());
            EXPECT_EQ(size.height, resized.Height());
            EXPECT_EQ(20, resized.Data()[1]);
        }
    }
}

// Two columns of 0 and 200: their mean by area; the nearest one without.
TEST(ImageBase, Resize_SmoothAveragesByArea) {
    Image image = Image::Create(2, 2, IPL_DEPTH_8U, 1);
    cv::Mat(image).col(1).setTo(200);
    EXPECT_EQ(100, image.Resize(cvSize(1, 1), 0, true).Data()[0]);
    EXPECT_EQ(0, image.Resize(cvSize(1, 1), 0, false).Data()[0]);
}

TEST(ImageBase, Resize_ToNothingIsNotOk) {
    const Image image = Filled(4, 4, IPL_DEPTH_8U, 1, cv::Scalar(1));
    EXPECT_FALSE(image.Resize(cvSize(0, 4), 2, true).IsOk());
    EXPECT_FALSE(image.Resize(cvSize(4, -1), 2, false).IsOk());
}

TEST(ImageBase, Resize_PastTheLimitThrows) {
    const Image image = Filled(4, 4, IPL_DEPTH_8U, 1, cv::Scalar(1));
    EXPECT_THROW(image.Resize(cvSize(20000, 20000), 2, true), TolLimitError);
}

TEST(ImageBase, CroppedThumbnail_TakesTheMiddle) {
    Image image = Image::Create(6, 2, IPL_DEPTH_8U, 1);
    cv::Mat(image).colRange(2, 4).setTo(90);
    Image thumbnail = image.MakeCroppedThumbnail(cvSize(2, 2));
    EXPECT_EQ(2, thumbnail.Width());
    EXPECT_EQ(2, thumbnail.Height());
    EXPECT_EQ(90, thumbnail.Data()[0]);
    EXPECT_EQ(90, thumbnail.Data()[thumbnail.Step() + 1]);
}

TEST(ImageBase, CroppedThumbnail_OfAnyShapeHasTheSize) {
    for (const CvSize size : {cvSize(1, 1000), cvSize(1000, 1), cvSize(3, 3)}) {
        Image thumbnail =
            Filled(size.width, size.height, IPL_DEPTH_8U, 3, cv::Scalar(7, 8, 9)).MakeCroppedThumbnail(cvSize(20, 10));
        EXPECT_EQ(20, thumbnail.Width());
        EXPECT_EQ(10, thumbnail.Height());
        EXPECT_EQ(8, thumbnail.Data()[1]);
    }
}

TEST(ImageBase, Create_RefusesWhatIsTooLarge) {
    EXPECT_THROW(Image::Create(2000000, 1, IPL_DEPTH_8U, 1), TolLimitError);
    EXPECT_FALSE(Image::Create(0, 5, IPL_DEPTH_8U, 1).IsOk());
    EXPECT_FALSE(Image::Create(5, 5, IPL_DEPTH_8U, 5).IsOk());
}
