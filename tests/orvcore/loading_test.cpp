// SPDX-License-Identifier: Apache-2.0
// Bringing files into a slot.
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <set>

#include "tests/support/engine.h"
#include "tolbase/exception.h"
#include "tolbase/hash.h"
#include "tolbase/limits.h"
#include "tolbase/progress.h"
#include "tolimage/exiftool.h"
#include "tolimage/imageio.h"

using support::EncodeJpeg;
using support::WithExif;
using support::WriteBytes;

namespace {

class Loading : public support::Engine {
protected:
    wxString Photo(std::string const& make, std::string const& model) {
        return WriteBytes(dir / "in/photo.jpg", WithExif(EncodeJpeg(64, 48), make, model));
    }
    // A JPEG of 160 by 120 whose EXIF thumbnail has the given size.
    wxString WithThumbnail(int width, int height) {
        return WriteBytes(dir / "in/photo.jpg",
                          WithExif(EncodeJpeg(160, 120), "Acme", "Model", EncodeJpeg(width, height)));
    }
    wxString Png(wxString const& name) {
        WriteBytes(dir / ("in/" + name), "");
        EXPECT_TRUE(tcvSaveImage(dir / ("in/" + name), Image::Create(30, 20, IPL_DEPTH_8U, 3), 90));
        return dir / ("in/" + name);
    }
    wxString Md5(wxString const& path) { return TcvCalcHashFromFile(path, MD5); }
    wxString CacheFolder() { return context->GetOutputBasePath(Evidence).BeforeLast('/'); }
    wxString Info() { return context->GetFileInfo(Evidence); }
    wxString FailureOf(wxString const& path) {
        try {
            Load(path);
        } catch (TolException const& failure) {
            return wxString::Format("%d ", failure.GetCode()) + failure.GetMessage();
        }
        return "none";
    }
};

}  // namespace

TEST_F(Loading, Jpeg_FillsTheSlot) {
    wxString const path = Jpeg("a.jpg");
    Load(path);
    EXPECT_EQ(path, context->GetFilename(Evidence));
    EXPECT_EQ(path, context->GetOriginalFilename(Evidence));
    EXPECT_EQ("a", context->GetFilenameNoPath(Evidence));
    EXPECT_TRUE(context->IsJpeg(Evidence));
    EXPECT_EQ(64, context->GetImage(Evidence).Width());
    EXPECT_EQ(3, context->GetImage(Evidence).Channels());
    EXPECT_TRUE(context->GetImageJpegInfo(Evidence).IsValid);
    EXPECT_EQ("Size: 64x48, JPEG, Q: 90%", Info());
    EXPECT_FALSE(context->HasFile(Reference));
}

TEST_F(Loading, Camera_StandsInTheStatusLineAndInTheHeader) {
    Load(Photo("Acme", "Model 7"));
    EXPECT_EQ("Size: 64x48, JPEG, Q: 90%, Camera: Acme Model 7", Info());
    ImageHeader const header = context->GetImageHeader(Evidence);
    EXPECT_EQ(64, header.Width);
    EXPECT_EQ(48, header.Height);
    EXPECT_EQ(3, header.Channels);
    EXPECT_EQ("Acme", header.Make);
    EXPECT_EQ("Model 7", header.Model);
}

TEST_F(Loading, SeventeenCharacters_AreCutToFourteen) {
    Load(Photo("ABCDEFGHIJKLMNOPQ", "12345678901234567"));
    EXPECT_TRUE(Info().EndsWith(", Camera: ABCDEFGHIJKLMN... 12345678901234...")) << Info().utf8_string();
}

TEST_F(Loading, SixteenCharacters_AreKept) {
    Load(Photo("ABCDEFGHIJKLMNOP", "1234567890123456"));
    EXPECT_TRUE(Info().EndsWith(", Camera: ABCDEFGHIJKLMNOP 1234567890123456")) << Info().utf8_string();
}

TEST_F(Loading, SmallerEmbeddedPicture_IsTheThumbnailAndThereIsNoPreview) {
    Load(WithThumbnail(80, 60));
    EXPECT_EQ(80, context->GetImageThumbnail(Evidence).Width());
    EXPECT_EQ(80, context->GetThumbnailJpegInfo(Evidence).Width);
    EXPECT_FALSE(context->GetImagePreview(Evidence).IsOk());
    EXPECT_FALSE(context->GetPreviewJpegInfo(Evidence).IsValid);
}

TEST_F(Loading, EmbeddedPictureOfTheMainSize_IsSkipped) {
    for (auto const& [width, height] : {std::pair{160, 120}, std::pair{120, 160}}) {
        Load(wxString());
        Load(WithThumbnail(width, height));
        EXPECT_FALSE(context->GetImageThumbnail(Evidence).IsOk()) << width;
        EXPECT_FALSE(context->GetThumbnailJpegInfo(Evidence).IsValid) << width;
    }
}

TEST_F(Loading, OnePictureOfTheMainSizeAndTwoSmallerOnes_GiveThumbnailAndPreview) {
    // Behind the main picture stand its copy and two smaller ones.
    std::string const main = EncodeJpeg(160, 120);
    WriteBytes(dir / "in/many.jpg", main + main + EncodeJpeg(40, 30) + EncodeJpeg(80, 60) + EncodeJpeg(20, 10));
    Load(dir / "in/many.jpg");
    EXPECT_EQ(40, context->GetImageThumbnail(Evidence).Width());
    EXPECT_EQ(40, context->GetThumbnailJpegInfo(Evidence).Width);
    EXPECT_EQ(80, context->GetImagePreview(Evidence).Width());
    EXPECT_EQ(80, context->GetPreviewJpegInfo(Evidence).Width);
}

TEST_F(Loading, Png_HasNeitherQualityNorRecords) {
    Load(Png("a.png"));
    EXPECT_FALSE(context->IsJpeg(Evidence));
    EXPECT_EQ("Size: 30x20, PNG", Info());
    EXPECT_FALSE(context->GetImageJpegInfo(Evidence).IsValid);
    EXPECT_FALSE(context->GetThumbnailJpegInfo(Evidence).IsValid);
}

TEST_F(Loading, PngWithAThumbnail_ShowsItAndHasNoRecordOfIt) {
    wxString const path = Png("a.png");
    std::string const plain = support::ReadBytes(path);
    WriteBytes(path, support::WithPngExif(plain, support::ExifBlock("Acme", "Model", EncodeJpeg(16, 12))));
    Load(path);
    EXPECT_EQ(16, context->GetImageThumbnail(Evidence).Width());
    EXPECT_EQ(12, context->GetImageThumbnail(Evidence).Height());
    EXPECT_FALSE(context->GetThumbnailJpegInfo(Evidence).IsValid);
    EXPECT_FALSE(context->GetImagePreview(Evidence).IsOk());
    EXPECT_TRUE(Info().EndsWith(", Camera: Acme Model")) << Info().utf8_string();
}

TEST_F(Loading, ExifToolThatIsMissing_LeavesTheSlotEmpty) {
    Load(Jpeg("a.jpg"));
    ExifToolSetProgram(dir / "no-such-program");
    wxString const failure = FailureOf(Jpeg("b.jpg", 32, 32));
    ExifToolSetProgram(wxString());
    EXPECT_EQ("82 ExifTool is not installed.", failure);
    EXPECT_FALSE(context->GetImage(Evidence).IsOk());
    EXPECT_EQ("", context->GetFilename(Evidence) + context->GetOutputBasePath(Evidence));
}

TEST_F(Loading, JpegUnderAnotherName_IsTakenByItsContent) {
    Load(WriteBytes(dir / "in/photo.png", EncodeJpeg(64, 48)));
    EXPECT_TRUE(context->IsJpeg(Evidence));
    EXPECT_TRUE(Info().StartsWith("Size: 64x48, JPEG"));
}

TEST_F(Loading, OriginalName_GivesTheListAndLeavesTheOriginalFilenameEmpty) {
    wxString const user = Jpeg("user.jpg");
    Jpeg("other.jpg");
    wxString const temporary = WriteBytes(dir / "tmp/t.jpg", EncodeJpeg(32, 32));
    Load(temporary, Evidence, user);
    EXPECT_EQ(temporary, context->GetFilename(Evidence));
    EXPECT_EQ("", context->GetOriginalFilename(Evidence));
    EXPECT_EQ((VecString{dir / "in/other.jpg", user}), context->GetFileList(Evidence));
    EXPECT_EQ(1, context->GetFileId(Evidence));
}

TEST_F(Loading, FolderList_HoldsReadableFilesOfTheFolderAlone) {
    wxString const first = Jpeg("a.jpg");
    wxString const second = Jpeg("b.JPG");
    Jpeg("sub/c.jpg");
    WriteBytes(dir / "in/d.txt", "text");
    Load(second);
    EXPECT_EQ((VecString{first, second}), context->GetFileList(Evidence));
    EXPECT_EQ(1, context->GetFileId(Evidence));
}

TEST_F(Loading, FoldersThatAreNotListed_LeaveTheSlotAlone) {
    wxString const first = Jpeg("a.jpg");
    Jpeg("b.jpg");
    context->ListFolders(false);
    Load(first);
    EXPECT_EQ(first, context->GetFilename(Evidence));
    EXPECT_TRUE(context->GetFileList(Evidence).empty());
    EXPECT_EQ(-1, context->GetFileId(Evidence));
}

TEST_F(Loading, NameThatTheFolderLacks_HasNoPlaceInTheList) {
    wxString const path = Jpeg("a.jpg");
    Load(path, Evidence, dir / "in/A.jpg");
    EXPECT_EQ(-1, context->GetFileId(Evidence));
    EXPECT_EQ(VecString{path}, context->GetFileList(Evidence));
}

TEST_F(Loading, EmptyPath_EmptiesTheSlot) {
    Load(Jpeg("a.jpg"));
    Load(wxString());
    EXPECT_FALSE(context->HasFile(Evidence));
    EXPECT_EQ("", context->GetFilename(Evidence) + context->GetOriginalFilename(Evidence) + Info() +
                      context->GetOutputBasePath(Evidence) + context->GetImageDetails(Evidence).Filename);
    EXPECT_FALSE(context->GetImage(Evidence).IsOk());
    EXPECT_FALSE(context->GetImageJpegInfo(Evidence).IsValid);
    EXPECT_EQ(-1, context->GetFileId(Evidence));
    EXPECT_TRUE(context->GetFileList(Evidence).empty());
}

TEST_F(Loading, MissingFile_EmptiesTheSlotWithoutAWord) {
    wxString const path = Jpeg("a.jpg");
    Load(path);
    EXPECT_EQ("none", FailureOf(dir / "in/missing.jpg"));
    EXPECT_EQ("", context->GetFilename(Evidence) + context->GetOriginalFilename(Evidence) + Info() +
                      context->GetOutputBasePath(Evidence));
    EXPECT_FALSE(context->GetImage(Evidence).IsOk());
    EXPECT_EQ(-1, context->GetFileId(Evidence));
    EXPECT_EQ(VecString{path}, context->GetFileList(Evidence));
}

TEST_F(Loading, FolderAndPipe_CountAsMissing) {
    ASSERT_EQ(0, mkfifo((dir / "pipe.jpg").utf8_str(), 0600));
    for (wxString const& path : {dir / "pipe.jpg", dir.Path()}) {
        EXPECT_EQ("none", FailureOf(path));
        EXPECT_FALSE(context->GetImage(Evidence).IsOk());
        EXPECT_EQ("", context->GetFilename(Evidence));
    }
}

TEST_F(Loading, FileThatMayNotBeRead_LeavesTheSlotEmpty) {
    if (geteuid() == 0) GTEST_SKIP() << "nothing is unreadable for the superuser";
    wxString const path = Jpeg("a.jpg");
    chmod(path.utf8_str(), 0);
    EXPECT_EQ("none", FailureOf(path));
    EXPECT_EQ("", context->GetFilename(Evidence));
}

TEST_F(Loading, FileThatNoDecoderReads_ThrowsAndKeepsTheSlot) {
    wxString const good = Jpeg("a.jpg");
    Load(good);
    wxString const base = context->GetOutputBasePath(Evidence);
    for (std::string const& bytes : {std::string(), std::string("no picture"), std::string("\xFF\xD8\xFF", 3)}) {
        EXPECT_EQ("82 File format not supported.", FailureOf(WriteBytes(dir / "in/bad.jpg", bytes)));
    }
    EXPECT_EQ(good, context->GetFilename(Evidence));
    EXPECT_EQ(base, context->GetOutputBasePath(Evidence));
    EXPECT_EQ(64, context->GetImage(Evidence).Width());
}

TEST_F(Loading, PictureBeyondALimit_IsRefusedByItsName) {
    wxString const path = Jpeg("a.jpg");
    SetTolLimit(TolLimit::PixelsPerImage, 1000);
    wxString const failure = FailureOf(path);
    ResetTolLimits();
    EXPECT_TRUE(failure.StartsWith("82 Refused:")) << failure.utf8_string();
    EXPECT_TRUE(failure.Contains("pixels-per-image")) << failure.utf8_string();
}

TEST_F(Loading, NextFile_LeavesNothingOfTheOneBefore) {
    Load(WithThumbnail(80, 60));
    Load(Png("b.png"));
    EXPECT_EQ(30, context->GetImage(Evidence).Width());
    EXPECT_FALSE(context->GetImageThumbnail(Evidence).IsOk());
    EXPECT_FALSE(context->GetImageJpegInfo(Evidence).IsValid);
    EXPECT_EQ("", context->GetImageQtHash(Evidence));
}

TEST_F(Loading, CacheFolder_HoldsACopyOfTheFile) {
    wxString const path = Jpeg("a.jpg");
    Load(path);
    EXPECT_EQ(dir / ("documents/cache/a-" + Md5(path) + "/a"), context->GetOutputBasePath(Evidence));
    EXPECT_EQ(support::ReadBytes(path), support::ReadBytes(CacheFolder() + "/a.jpg"));
}

TEST_F(Loading, CacheCopyThatIsThere_IsLeftAlone) {
    wxString const path = Jpeg("a.jpg");
    Load(path);
    WriteBytes(CacheFolder() + "/a.jpg", "marked");
    Load(path);
    EXPECT_EQ("marked", support::ReadBytes(CacheFolder() + "/a.jpg"));
}

TEST_F(Loading, NameOfFortyCharacters_IsCutInTheCachePathOnly) {
    wxString const name = "0123456789012345678901234567890123456789";
    wxString const path = Jpeg(name + ".jpg");
    Load(path);
    EXPECT_EQ(dir / ("documents/cache/" + name.Left(32) + "-" + Md5(path) + "/" + name.Left(32)),
              context->GetOutputBasePath(Evidence));
    EXPECT_TRUE(wxFileExists(CacheFolder() + "/" + name + ".jpg"));
}

TEST_F(Loading, SameNameWithOtherContent_GetsAnotherCacheFolder) {
    Load(WriteBytes(dir / "one/a.jpg", EncodeJpeg(64, 48)), Evidence);
    Load(WriteBytes(dir / "two/a.jpg", EncodeJpeg(32, 32)), Reference);
    EXPECT_NE(context->GetOutputBasePath(Evidence), context->GetOutputBasePath(Reference));
}

TEST_F(Loading, CacheThatCannotBeMade_IsNoFailure) {
    WriteBytes(dir / "documents/cache", "a file in its place");
    wxString const path = Jpeg("a.jpg");
    EXPECT_EQ("none", FailureOf(path));
    EXPECT_EQ(path, context->GetFilename(Evidence));
    EXPECT_FALSE(context->GetOutputBasePath(Evidence).empty());
}

TEST_F(Loading, CacheThatMayNotBeWritten_LeavesNoPieces) {
    wxString const path = Jpeg("a.jpg");
    // A folder stands where the copy would go, so that the last step of copying fails.
    std::filesystem::path const folder((dir / ("documents/cache/a-" + Md5(path))).utf8_string());
    std::filesystem::create_directories(folder / "a.jpg" / "x");
    EXPECT_EQ("none", FailureOf(path));
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    EXPECT_EQ((std::set<std::string>{"a.jpg", ".versions"}), names);
}

TEST_F(Loading, Evidence_IsNotTouched) {
    wxString const path = Jpeg("a.jpg");
    std::string const before = support::ReadBytes(path);
    chmod(path.utf8_str(), 0444);
    struct stat first {};
    struct stat second {};
    ASSERT_EQ(0, stat(path.utf8_str(), &first));
    Load(path);
    ASSERT_EQ(0, stat(path.utf8_str(), &second));
    EXPECT_EQ(before, support::ReadBytes(path));
    EXPECT_EQ(first.st_mtim.tv_nsec, second.st_mtim.tv_nsec);
    EXPECT_EQ(first.st_mode, second.st_mode);
    EXPECT_EQ(first.st_ino, second.st_ino);
}

TEST_F(Loading, HostileNames_LoadLikeAnyOther) {
    std::string const longName = std::string(251, 'n') + ".jpg";
    for (std::string const& name : {std::string("-rf.jpg"), std::string("a\nb\t.jpg"), std::string("\xFF\xFE.jpg"),
                                    std::string("$(x);'\".jpg"), std::string("%s%n.jpg"), longName}) {
        std::filesystem::create_directories(std::string((dir / "in").utf8_str()));
        std::ofstream(std::string((dir / "in/").utf8_str()) + name, std::ios::binary) << EncodeJpeg(64, 48);
        wxString const path = PathFromBytes(std::string((dir / "in/").utf8_str()) + name);
        Load(path);
        EXPECT_EQ(path, context->GetFilename(Evidence)) << name;
        EXPECT_EQ(64, context->GetImageDetails(Evidence).EncodedWidth) << name;
        EXPECT_LE(0, context->GetFileId(Evidence)) << name;
        EXPECT_TRUE(wxFileExists(CacheFolder() + "/" + PathFromBytes(name))) << name;
    }
}

TEST_F(Loading, TruncatedFile_DoesNotStopTheEngine) {
    std::string const whole = EncodeJpeg(320, 240);
    for (std::size_t const size : {whole.size() / 2, std::size_t{700}, std::size_t{20}, std::size_t{2}}) {
        wxString const failure = FailureOf(WriteBytes(dir / "in/cut.jpg", whole.substr(0, size)));
        EXPECT_TRUE(failure == "none" || failure == "82 File format not supported.") << failure.utf8_string();
    }
    Load(Jpeg("a.jpg"));
    EXPECT_TRUE(context->HasFile(Evidence));
}

TEST_F(Loading, ProgressText_NamesTheFile) {
    wxString text;
    OnWorker([&] {
        context->LoadFile(Jpeg("a.jpg"), Evidence, wxString());
        text = tcvGetProgress().text;
    });
    EXPECT_EQ("Loading file: a.jpg", text);
}

namespace {

wxString failedCondition;

void KeepCondition(wxString const&, int, wxString const&, wxString const& condition, wxString const&) {
    failedCondition = condition;
}

}  // namespace

TEST_F(Loading, OnTheMainThread_IsReported) {
    wxAssertHandler_t const before = wxSetAssertHandler(KeepCondition);
    context->LoadFile(wxString(), Evidence, wxString());
    wxSetAssertHandler(before);
    EXPECT_EQ("!wxThread::IsMain()", failedCondition);
}
