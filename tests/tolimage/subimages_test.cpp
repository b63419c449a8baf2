// SPDX-License-Identifier: Apache-2.0
#include "tolimage/subimages.h"

#include <gtest/gtest.h>
#include <wx/filename.h>

#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tests/support/tempdir.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"

using support::EncodeJpeg;
using support::JpegBuilder;

namespace {

class SubImages : public ::testing::Test {
protected:
    SubImages() { SetAppDocumentsPath(m_dir / "documents"); }

    // The picture with these segments behind its SOI.
    static std::string With(std::string const& segments, std::string const& jpeg = EncodeJpeg(64, 48)) {
        return jpeg.substr(0, 2) + segments + jpeg.substr(2);
    }
    void Save(std::string const& bytes) {
        tcvSaveSubImages(support::WriteBytes(m_dir / "in/a.jpg", bytes), m_images, m_infos);
    }
    std::vector<int> Widths() const {
        std::vector<int> widths;
        for (size_t i = 0; i < m_infos.size(); ++i) {
            EXPECT_EQ(m_images[i].Width(), m_infos[i].Width);
            widths.push_back(m_images[i].Width());
        }
        return widths;
    }

    support::TempDir m_dir;
    std::vector<Image> m_images{Image()};
    std::vector<JpegInfo> m_infos{JpegInfo()};
};

}  // namespace

TEST_F(SubImages, PlainFile_HasNone) {
    Save(EncodeJpeg(64, 48));
    EXPECT_TRUE(m_images.empty());
    EXPECT_TRUE(m_infos.empty());
}

TEST_F(SubImages, MissingFileAndOtherFormats_HaveNone) {
    tcvSaveSubImages(m_dir / "none.jpg", m_images, m_infos);
    EXPECT_TRUE(m_images.empty());
    Save("GIF89a" + EncodeJpeg(16, 16));
    EXPECT_TRUE(m_images.empty());
}

TEST_F(SubImages, ThumbnailPreviewAndTrailer_ComeInTheOrderOfTheFile) {
    JpegBuilder segments;
    segments.App(1, "Exif" + EncodeJpeg(16, 16)).App(13, "Photoshop" + EncodeJpeg(24, 16));
    Save(With(segments.Build()) + "padding" + EncodeJpeg(32, 24) + EncodeJpeg(40, 24));
    EXPECT_EQ((std::vector<int>{16, 24, 32, 40}), Widths());
}

TEST_F(SubImages, ExifThumbnail_ComesFirstEvenBehindAPreview) {
    const std::string exif = support::WithExif(EncodeJpeg(64, 48), "Acme Works", "Model X", EncodeJpeg(16, 16));
    Save(With(JpegBuilder().App(2, EncodeJpeg(32, 24)).Build(), exif));
    EXPECT_EQ((std::vector<int>{16, 32}), Widths());
}

TEST_F(SubImages, PictureWithinAnEmbeddedOne_IsItsOwn) {
    const std::string inner = With(JpegBuilder().App(1, EncodeJpeg(16, 16)).Build(), EncodeJpeg(32, 24));
    Save(EncodeJpeg(64, 48) + inner);
    EXPECT_EQ(std::vector<int>{32}, Widths());
}

TEST_F(SubImages, TwoInOneSegment_AreBothFound) {
    Save(With(JpegBuilder().App(1, EncodeJpeg(16, 16) + "x" + EncodeJpeg(24, 16)).Build()));
    EXPECT_EQ((std::vector<int>{16, 24}), Widths());
}

TEST_F(SubImages, PreviewCutOverSegments_IsJoined) {
    const std::string preview = EncodeJpeg(48, 40);
    JpegBuilder segments;
    segments.App(2, preview.substr(0, 300))
        .App(2, preview.substr(300, 200))
        .App(2, preview.substr(500))
        .App(3, "other");
    Save(With(segments.Build()));
    EXPECT_EQ(std::vector<int>{48}, Widths());
}

TEST_F(SubImages, WholePictureBeforeASegmentOfItsKind_IsTakenOnce) {
    Save(With(JpegBuilder().App(2, EncodeJpeg(24, 16)).App(2, "more").App(3, "other").Build()));
    EXPECT_EQ(std::vector<int>{24}, Widths());
}

TEST_F(SubImages, BrokenOnes_AreSkipped) {
    const std::string whole = EncodeJpeg(16, 16);
    JpegBuilder segments;
    segments.App(1, whole.substr(0, whole.size() - 40))
        .App(4, "\xFF\xD8\xFF")
        .App(5, support::SmallJpeg())
        .App(1, whole);
    Save(With(segments.Build()) + whole.substr(0, 200));
    EXPECT_EQ(m_images.size(), m_infos.size());
    ASSERT_FALSE(m_images.empty());
    EXPECT_EQ(16, Widths().back());
}

TEST_F(SubImages, TruncatedMainPicture_KeepsWhatIsInItsSegments) {
    const std::string bytes = With(JpegBuilder().App(1, EncodeJpeg(16, 16)).Build());
    Save(bytes.substr(0, bytes.size() - 30));
    EXPECT_EQ(std::vector<int>{16}, Widths());
}

TEST_F(SubImages, NumberIsLimited) {
    std::string bytes = EncodeJpeg(64, 48);
    for (int i = 0; i < 6; ++i) bytes += EncodeJpeg(16, 16);
    SetTolLimit(TolLimit::EmbeddedImages, 4);
    Save(bytes);
    EXPECT_EQ(4U, m_images.size());
}

// A start in every third byte, none of them a picture: the search must not walk the rest for each.
TEST_F(SubImages, ManyFalseStarts_TakeBoundedTime) {
    std::string trailer;
    for (int i = 0; i < 300000; ++i) trailer += "\xFF\xD8\xFF\xDA";
    Save(EncodeJpeg(64, 48) + trailer);
    EXPECT_TRUE(m_images.empty());
}

TEST_F(SubImages, Dump_WritesTheBytesAsTheyAre) {
    const std::string first = EncodeJpeg(16, 16);
    const std::string second = EncodeJpeg(32, 24);
    const wxString path =
        support::WriteBytes(m_dir / "in/photo.jpg", With(JpegBuilder().App(1, "Exif" + first).Build()) + second);
    const VecString files = tcvDumpSubImages(path);
    ASSERT_EQ(2U, files.size());
    EXPECT_EQ(first, support::ReadBytes(files[0]));
    EXPECT_EQ(second, support::ReadBytes(files[1]));
}

TEST_F(SubImages, Dump_GoesToTheCacheNeverBesideTheFile) {
    const std::string bytes = EncodeJpeg(64, 48) + EncodeJpeg(16, 16);
    const wxString path = support::WriteBytes(m_dir / "in/a very long name of a photograph, cut.jpg", bytes);
    const VecString files = tcvDumpSubImages(path);
    ASSERT_EQ(1U, files.size());
    const wxString folder = m_dir / "documents/cache/a very long name of a photograph";
    EXPECT_TRUE(files[0].StartsWith(folder + "-")) << files[0];
    EXPECT_TRUE(files[0].EndsWith("/a very long name of a photograph-embedded-01.jpg")) << files[0];
    EXPECT_EQ(1U, GetAllFiles(m_dir / "in", {"jpg"}, true).size());
}

TEST_F(SubImages, Dump_UsesTheFolderThatIsSet) {
    const wxString path = support::WriteBytes(m_dir / "in/a.jpg", EncodeJpeg(64, 48) + EncodeJpeg(16, 16));
    TolSetDumpFolder(m_dir / "elsewhere");
    EXPECT_TRUE(tcvDumpSubImages(path).at(0).StartsWith(m_dir / "elsewhere/a-"));
    EXPECT_EQ(m_dir / "here/a-embedded-01.jpg", tcvDumpSubImages(path, m_dir / "here").at(0));
    TolSetDumpFolder("");
    EXPECT_EQ(m_dir / "documents/cache", TolGetDumpFolder());
}

TEST_F(SubImages, Dump_LooksIntoOtherFormatsToo) {
    const wxString path = support::WriteBytes(m_dir / "in/a.raw", "RAW data" + EncodeJpeg(16, 16) + "more");
    ASSERT_EQ(1U, tcvDumpSubImages(path).size());
    EXPECT_TRUE(tcvDumpSubImages(support::WriteBytes(m_dir / "in/b.raw", "RAW data")).empty());
    EXPECT_TRUE(tcvDumpSubImages(m_dir / "in/none.jpg").empty());
}

TEST_F(SubImages, Dump_ThatCantBeWrittenIsAnError) {
    const wxString path = support::WriteBytes(m_dir / "in/a.jpg", EncodeJpeg(64, 48) + EncodeJpeg(16, 16));
    support::WriteBytes(m_dir / "occupied", "a file");
    EXPECT_THROW(tcvDumpSubImages(path, m_dir / "occupied/folder"), TolException);
}
