// SPDX-License-Identifier: Apache-2.0
#include "tolimage/pdfimages.h"

#include <gtest/gtest.h>

#include "tests/support/pdfbuilder.h"
#include "tests/tolimage/pictures.h"
#include "tolbase/limits.h"
#include "tolimage/subimages.h"

using namespace pictures;
using support::Pdf;

namespace {

class PdfImages : public ::testing::Test {
protected:
    PdfImages() { TolSetDumpFolder(dir / "dump"); }
    ~PdfImages() override { TolSetDumpFolder(wxString()); }
    VecString Dump(std::string const& pdf) {
        return tcvDumpImagesFromPdf(support::WriteBytes(dir / "case/file.pdf", pdf), VecParameter());
    }
    support::TempDir dir;
};

}  // namespace

TEST_F(PdfImages, JpegStream_IsWrittenByteForByte) {
    const std::string jpeg = support::ReadBytes(SaveJpeg(dir / "a.jpg"));
    const VecString files = Dump(Pdf({{support::PdfImageHead(64, 48, "/Filter /DCTDecode"), jpeg}}));
    ASSERT_EQ(1U, files.size());
    EXPECT_TRUE(files[0].StartsWith(dir / "dump/file-")) << files[0].utf8_str();
    EXPECT_TRUE(files[0].EndsWith("/file-3.jpg")) << files[0].utf8_str();
    EXPECT_EQ(jpeg, support::ReadBytes(files[0]));
}

TEST_F(PdfImages, WrappedJpeg_IsUnwrapped) {
    const std::string jpeg = support::ReadBytes(SaveJpeg(dir / "a.jpg"));
    const VecString files =
        Dump(Pdf({{support::PdfImageHead(64, 48, "/Filter [/FlateDecode /DCTDecode]"), Deflated(jpeg)}}));
    ASSERT_EQ(1U, files.size());
    EXPECT_TRUE(jpeg == support::ReadBytes(files[0]));
}

TEST_F(PdfImages, FlatePictures_BecomePng) {
    const std::string common = "/BitsPerComponent 8 /Filter /FlateDecode /ColorSpace ";
    const VecString files = Dump(Pdf(
        {{support::PdfImageHead(2, 1, common + "/DeviceRGB"), Deflated(Bytes({200, 100, 50, 3, 2, 1}))},
         {support::PdfImageHead(2, 1, common + "/DeviceGray"), Deflated(Bytes({7, 9}))},
         {support::PdfImageHead(2, 1, common + "[/Indexed /DeviceRGB 1 <0102030A141E>]"), Deflated(Bytes({1, 0}))}}));
    ASSERT_EQ(3U, files.size());
    Image colour(tcvLoadImage(files[0], true, false));
    EXPECT_EQ(50, colour.Data()[0]);
    EXPECT_EQ(200, colour.Data()[2]);
    Image grey(tcvLoadImage(files[1], true, false));
    EXPECT_EQ(9, grey.Data()[1]);
    Image indexed(tcvLoadImage(files[2], true, false));
    EXPECT_EQ(30, indexed.Data()[0]);
    EXPECT_EQ(1, indexed.Data()[5]);
}

TEST_F(PdfImages, OthersAndShortOnes_ArePassedOver) {
    const std::string common = "/BitsPerComponent 8 /Filter /FlateDecode /ColorSpace ";
    EXPECT_TRUE(Dump(Pdf({{support::PdfImageHead(2, 2, common + "/DeviceRGB"), Deflated("abc")},
                          {support::PdfImageHead(2, 1, common + "/DeviceCMYK"), Deflated("abcdefgh")},
                          {support::PdfImageHead(0, 1, common + "/DeviceGray"), Deflated("a")},
                          {support::PdfImageHead(100000, 100000, common + "/DeviceGray"), Deflated("a")},
                          {support::PdfImageHead(2, 1, common + "/DeviceGray"), "no deflate"},
                          {"/Type /Other", "text"}}))
                    .empty());
    EXPECT_FALSE(wxDirExists(dir / "dump"));
}

TEST_F(PdfImages, MinimumSide_LeavesOutTheSmall) {
    const std::string common = "/BitsPerComponent 8 /ColorSpace /DeviceGray";
    const wxString path = support::WriteBytes(dir / "file.pdf", Pdf({{support::PdfImageHead(2, 1, common), "ab"},
                                                                     {support::PdfImageHead(2, 2, common), "abcd"}}));
    VecParameter parameters;
    parameters.push_back(CreateParameterInt("Minimum Side", "", 2));
    EXPECT_EQ(1U, tcvDumpImagesFromPdf(path, parameters).size());
    EXPECT_EQ(2U, tcvDumpImagesFromPdf(path, VecParameter()).size());
}

TEST_F(PdfImages, NoPdf_HasNone) {
    EXPECT_TRUE(Dump("no document").empty());
    EXPECT_TRUE(Dump("").empty());
    EXPECT_TRUE(Dump("%PDF-1.4\n").empty());
    EXPECT_TRUE(tcvDumpImagesFromPdf(dir / "missing.pdf", VecParameter()).empty());
    EXPECT_TRUE(tcvDumpImagesFromPdf(dir.Path(), VecParameter()).empty());
}

TEST_F(PdfImages, EachTruncation_IsSurvived) {
    const std::string jpeg = support::ReadBytes(SaveJpeg(dir / "a.jpg", 16, 16));
    const std::string whole = Pdf({{support::PdfImageHead(16, 16, "/Filter /DCTDecode"), jpeg}});
    for (size_t size = 0; size < whole.size(); size += 23) EXPECT_NO_THROW(Dump(whole.substr(0, size))) << size;
}

TEST_F(PdfImages, Bomb_IsPassedOver) {
    const std::string bomb = Deflated(std::string(4U << 20, 'x'));
    SetTolLimit(TolLimit::EmbeddedImageBytes, 1U << 20);
    const VecString files = Dump(Pdf({{support::PdfImageHead(64, 48, "/Filter [/FlateDecode /DCTDecode]"), bomb}}));
    SetTolLimit(TolLimit::EmbeddedImageBytes, 0);
    EXPECT_TRUE(files.empty());
}

TEST_F(PdfImages, Number_IsBounded) {
    SetTolLimit(TolLimit::EmbeddedImages, 2);
    const std::pair<std::string, std::string> picture(
        support::PdfImageHead(2, 1, "/BitsPerComponent 8 /ColorSpace /DeviceGray"), "ab");
    const VecString files = Dump(Pdf({picture, picture, picture}));
    SetTolLimit(TolLimit::EmbeddedImages, 0);
    EXPECT_EQ(2U, files.size());
}
