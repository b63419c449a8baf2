// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "tests/support/jpegencoding.h"
#include "tests/tolimage/pictures.h"
#include "tolbase/limits.h"

using namespace pictures;

namespace {

// A CMYK JPEG of one colour; with Adobe's marker the file holds the complements.
std::string CmykJpeg(bool adobe, JSAMPLE cyan, JSAMPLE magenta, JSAMPLE yellow, JSAMPLE black) {
    support::JpegScanlines picture;
    picture.width = picture.height = 16;
    picture.components = 4;
    picture.space = JCS_CMYK;
    picture.settings = [adobe](jpeg_compress_struct& info) {
        jpeg_set_quality(&info, 100, TRUE);
        info.write_Adobe_marker = adobe ? TRUE : FALSE;
    };
    picture.fill = [&](std::vector<unsigned char>& row, unsigned) {
        JSAMPLE const colour[] = {cyan, magenta, yellow, black};
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = colour[i % 4];
    };
    return support::EncodeScanlines(picture);
}

class JpegLoading : public ::testing::Test {
protected:
    Image Load(std::string const& bytes) {
        return Image(tcvLoadImage(support::WriteBytes(dir / "picture.bin", bytes), true, false));
    }
    support::TempDir dir;
};

}  // namespace

// Inks 255, 0, 0, 0 take all red away; as complements the same bytes are light: 255 red, none green, and no light at
// all.
TEST_F(JpegLoading, Cmyk_BecomesBgrByMultiplication) {
    Image inks = Load(CmykJpeg(false, 255, 0, 0, 0));
    ASSERT_EQ(3, inks.Channels());
    EXPECT_NEAR(255, inks.Data()[0], 2);
    EXPECT_NEAR(255, inks.Data()[1], 2);
    EXPECT_NEAR(0, inks.Data()[2], 2);
    Image complements = Load(CmykJpeg(true, 255, 0, 128, 255));
    EXPECT_NEAR(128, complements.Data()[0], 2);
    EXPECT_NEAR(0, complements.Data()[1], 2);
    EXPECT_NEAR(255, complements.Data()[2], 2);
}

TEST_F(JpegLoading, Grey_StaysGreyUntilToColor) {
    Image picture = Pattern(24, 16).ToGray();
    ASSERT_TRUE(tcvSaveImage(dir / "a.jpg", picture, 90));
    Image read(tcvLoadImage(dir / "a.jpg", true, false));
    EXPECT_EQ(1, read.Channels());
    EXPECT_EQ(3, read.ToColor().Channels());
    const ImageProbe probe = tcvProbeImage(dir / "a.jpg");
    EXPECT_EQ(1, probe.channels);
    EXPECT_EQ(8, probe.bitsPerPixel);
}

TEST_F(JpegLoading, Color_FalseGivesGrey) {
    EXPECT_EQ(1, Image(tcvLoadImage(SaveJpeg(dir / "a.jpg"), false, false)).Channels());
}

TEST_F(JpegLoading, Orientation_IsNeverFollowed) {
    const wxString path = SaveJpeg(dir / "a.jpg", 64, 32);
    Exif(path, {"-n", "-Orientation=6"});
    Image read(tcvLoadImage(path, true, false));
    EXPECT_EQ(64, read.Width());
    EXPECT_EQ(32, read.Height());
}

TEST_F(JpegLoading, Extension_DoesNotCount) {
    SaveJpeg(dir / "a.jpg");
    const wxString path = support::WriteBytes(dir / "a.png", support::ReadBytes(dir / "a.jpg"));
    EXPECT_EQ(64, Image(tcvLoadImage(path, true, false)).Width());
    EXPECT_EQ("JPEG", tcvProbeImage(path).format);
}

TEST_F(JpegLoading, Truncation_AtAnyOffsetNeitherThrowsNorCrashes) {
    SaveJpeg(dir / "a.jpg", 96, 80);
    const std::string whole = support::ReadBytes(dir / "a.jpg");
    int decoded = 0;
    for (size_t size = 0; size < whole.size(); size += size < 700 ? 1 : 37) {
        Image image = DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(whole.data()), size);
        EXPECT_EQ(image.IsOk(), tcvLastLoadError().empty()) << size;
        if (!image.IsOk()) continue;
        ++decoded;
        EXPECT_EQ(96, image.Width());
    }
    EXPECT_GT(decoded, 10);
}

TEST_F(JpegLoading, Truncation_KeepsTheRowsThatAreThere) {
    SaveJpeg(dir / "a.jpg", 96, 80);
    const std::string whole = support::ReadBytes(dir / "a.jpg");
    Image complete = Load(whole);
    EXPECT_EQ("", tcvLastLoadWarning());
    Image half = Load(whole.substr(0, whole.size() - 1000));
    ASSERT_TRUE(half.IsOk());
    EXPECT_EQ("Premature end of JPEG file", tcvLastLoadWarning());
    EXPECT_EQ(0, cv::norm(cv::Mat(half).row(0), cv::Mat(complete).row(0), cv::NORM_INF));
    EXPECT_NE(0, cv::norm(cv::Mat(half).row(79), cv::Mat(complete).row(79), cv::NORM_INF));
}

TEST_F(JpegLoading, LyingDimensions_AreRefusedBeforeMemoryIsTaken) {
    SaveJpeg(dir / "a.jpg", 96, 80);
    std::string bytes = support::ReadBytes(dir / "a.jpg");
    const size_t frame = bytes.find("\xFF\xC0");
    bytes.replace(frame + 5, 4, Big(65500, 2) + Big(65500, 2));
    EXPECT_FALSE(Load(bytes).IsOk());
    EXPECT_EQ("Refused: 4290250000 pixels of one picture, and the limit \"pixels-per-image\" is 268435456",
              tcvLastLoadError());
    // Within the limit, but more than so few bytes can hold.
    bytes.replace(frame + 5, 4, Big(10000, 2) + Big(10000, 2));
    EXPECT_FALSE(Load(bytes).IsOk());
    EXPECT_TRUE(tcvLastLoadError().StartsWith("Refused: 10000x10000 pixels in a file of"))
        << tcvLastLoadError().utf8_str();
}

TEST_F(JpegLoading, TwelveBits_AreUnsupported) {
    SaveJpeg(dir / "a.jpg");
    std::string bytes = support::ReadBytes(dir / "a.jpg");
    bytes[bytes.find("\xFF\xC0") + 4] = 12;
    EXPECT_FALSE(Load(bytes).IsOk());
    EXPECT_EQ("Unsupported: Unsupported JPEG data precision 12", tcvLastLoadError());
}

TEST_F(JpegLoading, Limit_IsReadAtEachLoad) {
    SaveJpeg(dir / "a.jpg", 64, 48);
    SetTolLimit(TolLimit::PixelsPerImage, 64 * 48 - 1);
    EXPECT_FALSE(Image(tcvLoadImage(dir / "a.jpg", true, false)).IsOk());
    SetTolLimit(TolLimit::PixelsPerImage, 0);
    EXPECT_TRUE(Image(tcvLoadImage(dir / "a.jpg", true, false)).IsOk());
}
