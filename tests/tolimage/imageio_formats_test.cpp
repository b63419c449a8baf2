// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/tolimage/pictures.h"

using namespace pictures;

namespace {

class ImageFormats : public PictureFiles {};

int At(Image& image, int x, int y, int channel) {
    return image.Data()[image.Step() * y + x * image.Channels() + channel];
}

}  // namespace

TEST_F(ImageFormats, LosslessFormats_GiveThePixelsBack) {
    Image written = Pattern(13, 7);
    for (char const* extension : {"png", "tif", "tiff", "bmp", "PNG"}) {
        const wxString path = dir / (wxString("a.") + extension);
        ASSERT_TRUE(tcvSaveImage(path, written, 90)) << extension;
        Image read(tcvLoadImage(path, true, false));
        ASSERT_TRUE(read.IsOk()) << extension;
        EXPECT_EQ(0, cv::norm(cv::Mat(read), cv::Mat(written), cv::NORM_INF)) << extension;
    }
}

TEST_F(ImageFormats, Grey_StaysOneChannel) {
    Image written = Pattern(13, 7).ToGray();
    for (char const* extension : {"png", "tif", "jpg"}) {
        const wxString path = dir / (wxString("a.") + extension);
        ASSERT_TRUE(tcvSaveImage(path, written, 100)) << extension;
        EXPECT_EQ(1, Image(tcvLoadImage(path, true, false)).Channels()) << extension;
    }
}

TEST_F(ImageFormats, LossyFormats_ComeClose) {
    Image written = Plain(40, 24, 10, 120, 230);
    for (char const* extension : {"jpg", "jpeg", "webp"}) {
        const wxString path = dir / (wxString("a.") + extension);
        ASSERT_TRUE(tcvSaveImage(path, written, 95)) << extension;
        Image read(tcvLoadImage(path, true, false));
        ASSERT_EQ(3, read.Channels()) << extension;
        EXPECT_NEAR(10, At(read, 5, 5, 0), 4) << extension;
        EXPECT_NEAR(120, At(read, 5, 5, 1), 4) << extension;
        EXPECT_NEAR(230, At(read, 5, 5, 2), 4) << extension;
    }
}

TEST_F(ImageFormats, Save_TakesQualityAndRefusesTheRest) {
    Image picture = Pattern(64, 64);
    ASSERT_TRUE(tcvSaveImage(dir / "low.jpg", picture, 30));
    ASSERT_TRUE(tcvSaveImage(dir / "high.jpg", picture, 95));
    EXPECT_LT(support::ReadBytes(dir / "low.jpg").size(), support::ReadBytes(dir / "high.jpg").size());
    EXPECT_FALSE(tcvSaveImage(dir / "a.gif", picture, 90));
    EXPECT_FALSE(tcvSaveImage(dir / "noextension", picture, 90));
    EXPECT_FALSE(tcvSaveImage(dir / "a.png", nullptr, 90));
    EXPECT_FALSE(tcvSaveImage("", picture, 90));
}

TEST_F(ImageFormats, Save_BelowAFileIsFalse) {
    support::WriteBytes(dir / "occupied", "a file");
    Image picture = Pattern(8, 8);
    EXPECT_NO_THROW(EXPECT_FALSE(tcvSaveImage(dir / "occupied/a.png", picture, 90)));
    EXPECT_EQ("a file", support::ReadBytes(dir / "occupied"));
}

TEST_F(ImageFormats, Save_KeepsSixteenBitsWhereTheFormatCan) {
    Image deep = Image::Create(2, 1, IPL_DEPTH_16U, 3);
    cv::Mat(deep).setTo(cv::Scalar(1000, 2000, 65535));
    for (char const* extension : {"png", "tif"}) {
        const wxString path = dir / (wxString("a.") + extension);
        ASSERT_TRUE(tcvSaveImage(path, deep, 90));
        Image read(tcvLoadImage(path, true, true));
        ASSERT_EQ(CV_16UC3, cv::Mat(read).type()) << extension;
        EXPECT_EQ(cv::Vec3w(1000, 2000, 65535), cv::Mat(read).at<cv::Vec3w>(0, 1)) << extension;
    }
    ASSERT_TRUE(tcvSaveImage(dir / "a.bmp", deep, 90));
    Image shallow(tcvLoadImage(dir / "a.bmp", true, true));
    EXPECT_EQ(4, At(shallow, 0, 0, 0));
    EXPECT_EQ(8, At(shallow, 0, 0, 1));
    EXPECT_EQ(255, At(shallow, 0, 0, 2));
}

// The checksum of the unpacked pixels, wrong under a chunk's that is right, is the one that our own files need not
// keep.
TEST_F(ImageFormats, OwnPng_IsHeldToTheSumsOfItsChunks) {
    std::string packed = Deflated(Bytes({0, 1, 2, 3}));
    const std::string head = Png(1, 1, 8, 2, "").substr(0, 33);
    packed.back() = static_cast<char>(packed.back() ^ 1);
    std::string bytes = head + Chunk("IDAT", packed) + Chunk("IEND", "");
    const wxString path = support::WriteBytes(dir / "own.png", bytes);
    Image own(tcvLoadOwnImage(path));
    ASSERT_TRUE(own.IsOk());
    EXPECT_EQ("", tcvLastLoadWarning());
    EXPECT_EQ(3, At(own, 0, 0, 0));
    // The chunk's own sum, behind its data.
    char& sum = bytes[bytes.size() - 13];
    sum = static_cast<char>(sum ^ 1);
    support::WriteBytes(dir / "own.png", bytes);
    EXPECT_FALSE(Image(tcvLoadOwnImage(path)).IsOk() && tcvLastLoadWarning().empty());
}

TEST_F(ImageFormats, OwnImage_KeepsDepthAndAlpha) {
    const std::string bytes = Png(1, 1, 16, 6, Bytes({0, 1, 0, 2, 0, 3, 0, 4, 0}));
    Image own(tcvLoadOwnImage(support::WriteBytes(dir / "own.png", bytes)));
    ASSERT_EQ(CV_16UC4, cv::Mat(own).type());
    EXPECT_EQ(cv::Vec4w(768, 512, 256, 1024), cv::Mat(own).at<cv::Vec4w>(0, 0));
}

TEST_F(ImageFormats, PngAlpha_IsKeptOnlyAsStored) {
    const std::string bytes = Png(1, 1, 8, 6, Bytes({0, 30, 20, 10, 128}));
    Image stored = Load(bytes, true);
    ASSERT_EQ(4, stored.Channels());
    EXPECT_EQ(10, At(stored, 0, 0, 0));
    EXPECT_EQ(128, At(stored, 0, 0, 3));
    Image slot = Load(bytes);
    ASSERT_EQ(3, slot.Channels());
    EXPECT_EQ(10, At(slot, 0, 0, 0));
    EXPECT_EQ(20, At(slot, 0, 0, 1));
    EXPECT_EQ(30, At(slot, 0, 0, 2));
}

TEST_F(ImageFormats, Png16Bit_IsScaledForTheSlot) {
    // Red 65535, green 32896, blue 257.
    Image slot = Load(Png(1, 1, 16, 2, Bytes({0, 0xFF, 0xFF, 0x80, 0x80, 1, 1})));
    ASSERT_EQ(3, slot.Channels());
    EXPECT_EQ(1, At(slot, 0, 0, 0));
    EXPECT_EQ(128, At(slot, 0, 0, 1));
    EXPECT_EQ(255, At(slot, 0, 0, 2));
}

TEST_F(ImageFormats, PngPalette_BecomesItsColours) {
    const std::string palette = Chunk("PLTE", Bytes({1, 2, 3, 200, 100, 50}));
    // Two pixels of one bit each: entry 1, entry 0.
    Image picture = Load(Png(2, 1, 1, 3, Bytes({0, 0x80}), palette));
    ASSERT_EQ(3, picture.Channels());
    EXPECT_EQ(50, At(picture, 0, 0, 0));
    EXPECT_EQ(200, At(picture, 0, 0, 2));
    EXPECT_EQ(3, At(picture, 1, 0, 0));
}

TEST_F(ImageFormats, PngGreyOfOneBit_SpreadsToBlackAndWhite) {
    Image picture = Load(Png(2, 1, 1, 0, Bytes({0, 0x40})));
    ASSERT_EQ(1, picture.Channels());
    EXPECT_EQ(0, At(picture, 0, 0, 0));
    EXPECT_EQ(255, At(picture, 1, 0, 0));
}

TEST_F(ImageFormats, Tiff8Bit_IsReadWithItsExtraSamples) {
    Image picture = Load(Tiff(2, 1, 8, 4, 2, Bytes({30, 20, 10, 128, 3, 2, 1, 0})), true);
    ASSERT_EQ(4, picture.Channels());
    EXPECT_EQ(10, At(picture, 0, 0, 0));
    EXPECT_EQ(30, At(picture, 0, 0, 2));
    EXPECT_EQ(128, At(picture, 0, 0, 3));
    EXPECT_EQ(1, At(picture, 1, 0, 0));
}

TEST_F(ImageFormats, Tiff16BitGrey_IsScaledForTheSlot) {
    const std::string bytes = Tiff(2, 1, 16, 1, 1, Bytes({0xFF, 0xFF, 0x80, 0x80}));
    Image stored = Load(bytes, true);
    ASSERT_EQ(CV_16UC1, cv::Mat(stored).type());
    Image slot = Load(bytes);
    EXPECT_EQ(255, At(slot, 0, 0, 0));
    EXPECT_EQ(128, At(slot, 1, 0, 0));
}

TEST_F(ImageFormats, TiffWhiteIsZero_IsInverted) {
    Image picture = Load(Tiff(2, 1, 8, 1, 0, Bytes({0, 255})));
    EXPECT_EQ(255, At(picture, 0, 0, 0));
    EXPECT_EQ(0, At(picture, 1, 0, 0));
}

TEST_F(ImageFormats, TiffOrientation_DoesNotTurn) {
    // Orientation 3 (half a turn), once for samples read as they are and once for libtiff's conversion (CMYK, no ink).
    const std::vector<std::string> turned = {Entry(274, 3, 1, 3)};
    std::string plain = Tiff(2, 1, 8, 1, 1, Bytes({9, 200}));
    Image picture = Load(plain);
    ASSERT_EQ(9, At(picture, 0, 0, 0));
    std::string converted = Tiff(2, 1, 8, 4, 5, Bytes({0, 0, 0, 0, 255, 255, 255, 255}), {}, {});
    converted.replace(converted.find(Entry(277, 3, 1, 4)), 12, turned[0]);
    converted.replace(converted.find(Entry(278, 3, 1, 1)), 12, Entry(277, 3, 1, 4));
    Image read = Load(converted);
    ASSERT_TRUE(read.IsOk()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ(255, At(read, 0, 0, 0));
    EXPECT_EQ(0, At(read, 1, 0, 0));
}

TEST_F(ImageFormats, Gif_ShowsTheTransparentColourAsItsPaletteHasIt) {
    // One pixel of entry 1, which is transparent; LZW codes clear, 1, end in three bits each.
    const std::string gif = "GIF89a" + Little(1, 2) + Little(1, 2) + Bytes({0x80, 0, 0}) +
                            Bytes({9, 9, 9, 200, 100, 50}) + Bytes({0x21, 0xF9, 4, 1, 0, 0, 1, 0}) +
                            Bytes({0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0}) + Bytes({2, 2, 0x4C, 1, 0, 0x3B});
    Image picture = Load(gif);
    ASSERT_TRUE(picture.IsOk()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ(50, At(picture, 0, 0, 0));
    EXPECT_EQ(100, At(picture, 0, 0, 1));
    EXPECT_EQ(200, At(picture, 0, 0, 2));
}

TEST_F(ImageFormats, Pnm_IsReadInItsBinaryKinds) {
    Image colour = Load("P6\n# a remark\n1 2\n255\n" + Bytes({200, 100, 50, 1, 2, 3}));
    ASSERT_EQ(2, colour.Height()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ(50, At(colour, 0, 0, 0));
    EXPECT_EQ(1, At(colour, 0, 1, 2));
    Image grey = Load("P5 2 1 255\n" + Bytes({7, 8}));
    ASSERT_TRUE(grey.IsOk());
    EXPECT_EQ(8, At(grey, 1, 0, 0));
    Image bits = Load("P4 9 2\n" + Bytes({0x40, 0x80, 0, 0}));
    ASSERT_TRUE(bits.IsOk());
    EXPECT_EQ(255, At(bits, 0, 0, 0));
    EXPECT_EQ(0, At(bits, 1, 0, 0));
    EXPECT_EQ(0, At(bits, 8, 0, 0));
    EXPECT_EQ(255, At(bits, 8, 1, 0));
}

TEST_F(ImageFormats, Pnm_IsReadInItsTextKindsAndDepths) {
    Image colour = Load("P3 1 1 15 # remark\n15 0 # more\n 5");
    ASSERT_TRUE(colour.IsOk());
    EXPECT_EQ(85, At(colour, 0, 0, 0));
    EXPECT_EQ(255, At(colour, 0, 0, 2));
    Image bits = Load("P1 2 1 10");
    ASSERT_TRUE(bits.IsOk());
    EXPECT_EQ(0, At(bits, 0, 0, 0));
    EXPECT_EQ(255, At(bits, 1, 0, 0));
    Image deep = Load("P5 1 1 65535\n" + Bytes({0x12, 0x34}), true);
    ASSERT_EQ(CV_16UC1, cv::Mat(deep).type());
    EXPECT_EQ(0x1234, cv::Mat(deep).at<ushort>(0, 0));
}

TEST_F(ImageFormats, Tga_IsReadWithoutAMagicNumber) {
    const std::string tga = Bytes({0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 0, 1, 0, 24, 0x20, 50, 100, 200, 1, 2, 3});
    Image picture = Load(tga);
    ASSERT_EQ(2, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ(50, At(picture, 0, 0, 0));
    EXPECT_EQ(200, At(picture, 0, 0, 2));
}

TEST_F(ImageFormats, Ico_GivesItsLargestPicture) {
    const std::string png = Png(3, 2, 8, 2, std::string(20, '\0'));
    const auto size = static_cast<uint32_t>(png.size());
    const std::string ico =
        Bytes({0, 0, 1, 0, 1, 0}) + Bytes({3, 2, 0, 0, 1, 0, 32, 0}) + Little(size, 4) + Little(22, 4) + png;
    Image picture = Load(ico);
    EXPECT_EQ(3, picture.Width()) << tcvLastLoadError().utf8_str();
    EXPECT_EQ(2, picture.Height());
}

TEST_F(ImageFormats, Probe_TellsTheEncodedPicture) {
    struct Case {
        std::string bytes;
        char const* format;
        int channels;
        int bits;
    };
    const Case cases[] = {{Png(5, 4, 8, 2, std::string(64, '\0')), "PNG", 3, 24},
                          {Png(5, 4, 16, 6, std::string(200, '\0')), "PNG", 4, 64},
                          {Png(5, 4, 8, 0, std::string(24, '\0')), "PNG", 1, 8},
                          {Png(5, 4, 8, 3, std::string(24, '\0')), "PNG", 3, 8},
                          {Tiff(5, 4, 8, 3, 2, std::string(60, '\0')), "TIFF", 3, 24},
                          {Tiff(5, 4, 16, 1, 1, std::string(40, '\0')), "TIFF", 1, 16},
                          {"P6 5 4 255\n" + std::string(60, '\0'), "PNM", 3, 24}};
    for (Case const& each : cases) {
        const ImageProbe probe = Probe(each.bytes);
        EXPECT_TRUE(probe.ok);
        EXPECT_EQ(each.format, probe.format);
        EXPECT_EQ(5, probe.width) << each.format;
        EXPECT_EQ(4, probe.height) << each.format;
        EXPECT_EQ(each.channels, probe.channels) << each.format;
        EXPECT_EQ(each.bits, probe.bitsPerPixel) << each.format;
    }
}

TEST_F(ImageFormats, Lists_HoldBareExtensions) {
    for (VecString const& list : {GetReadableImageFormats(), GetWritableImageFormats()}) {
        ASSERT_FALSE(list.empty());
        for (wxString const& extension : list) {
            EXPECT_FALSE(extension.empty());
            EXPECT_FALSE(extension.Contains("."));
            EXPECT_EQ(extension.Lower(), extension);
        }
    }
    for (wxString const& extension : GetWritableImageFormats()) {
        Image picture = Pattern(8, 8);
        EXPECT_TRUE(tcvSaveImage(dir / ("w." + extension), picture, 90)) << extension.utf8_str();
    }
}
