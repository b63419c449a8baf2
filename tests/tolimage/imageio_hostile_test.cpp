// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>

#include <cstdio>
#include <cstdlib>

#include <jpeglib.h>

#include "tests/tolimage/pictures.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"

using namespace pictures;

namespace {

// A progressive JPEG of 32 by 32 grey pixels.
std::string Progressive() {
    jpeg_compress_struct info{};
    jpeg_error_mgr errors{};
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* data = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &data, &size);
    info.image_width = info.image_height = 32;
    info.input_components = 1;
    info.in_color_space = JCS_GRAYSCALE;
    jpeg_set_defaults(&info);
    jpeg_simple_progression(&info);
    jpeg_start_compress(&info, TRUE);
    std::string line = std::string(16, 'a') + std::string(16, 'z');
    auto* row = reinterpret_cast<JSAMPROW>(line.data());
    while (info.next_scanline < 32) jpeg_write_scanlines(&info, &row, 1);
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string result(reinterpret_cast<char*>(data), size);
    std::free(data);
    return result;
}

class HostileFiles : public ::testing::Test {
protected:
    // The reason for which nothing was loaded; "loaded" if something was.
    wxString Reason(std::string const& bytes) { return ReasonOf(support::WriteBytes(dir / "picture.bin", bytes)); }
    static wxString ReasonOf(wxString const& path) {
        return Image(tcvLoadImage(path, true, false)).IsOk() ? wxString("loaded") : tcvLastLoadError();
    }
    support::TempDir dir;
};

}  // namespace

TEST_F(HostileFiles, MissingFolderAndPipe_AreUnreadable) {
    const wxString unreadable = "Unreadable: the file is missing, can't be opened or is no regular file";
    EXPECT_EQ(unreadable, ReasonOf(dir / "missing.jpg"));
    EXPECT_EQ(unreadable, ReasonOf(dir.Path()));
    EXPECT_EQ(unreadable, ReasonOf(""));
    ASSERT_EQ(0, mkfifo((dir / "pipe").utf8_str(), 0600));
    EXPECT_EQ(unreadable, ReasonOf(dir / "pipe"));
}

TEST_F(HostileFiles, EmptyAndTinyFiles_AreNoPictures) {
    EXPECT_EQ("Truncated: the file is empty", Reason(""));
    EXPECT_EQ("Unsupported: the content is no picture of a known format", Reason("x"));
    EXPECT_EQ("Unsupported: the content is no picture of a known format", Reason("no picture at all, but a text"));
}

TEST_F(HostileFiles, MagicNumbersAlone_AreNoPictures) {
    for (std::string const& magic :
         {Bytes({0xFF, 0xD8}), Bytes({0xFF, 0xD8, 0xFF}), Bytes({0x89, 'P', 'N', 'G', 13, 10, 26, 10}),
          std::string("II*\0", 4), std::string("MM\0*", 4), std::string("GIF89a"), std::string("BM"),
          std::string("P6 "), std::string("8BPS"), std::string("RIFF\4\0\0\0WEBP", 12),
          std::string("\0\0\0\20ftypheic\0\0\0\0heic", 20), std::string("\0\0\0\20ftypavif\0\0\0\0avif", 20),
          std::string("FUJIFILMCCD-RAW "), std::string("IIU\0", 4)}) {
        EXPECT_NE("loaded", Reason(magic)) << magic;
        EXPECT_FALSE(tcvLastLoadError().empty()) << magic;
        EXPECT_FALSE(tcvProbeImage(dir / "picture.bin").ok) << magic;
    }
}

TEST_F(HostileFiles, EachTruncation_OfEachFormatIsSurvived) {
    Image picture = Pattern(20, 11);
    for (char const* extension : {"png", "tif", "bmp", "webp"}) {
        const wxString path = dir / (wxString("a.") + extension);
        ASSERT_TRUE(tcvSaveImage(path, picture, 80));
        const std::string whole = support::ReadBytes(path);
        for (size_t size = 0; size < whole.size(); size += 1 + whole.size() / 200) {
            Image image = DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(whole.data()), size);
            EXPECT_EQ(image.IsOk(), tcvLastLoadError().empty()) << extension << " " << size;
        }
    }
}

TEST_F(HostileFiles, EachChangedByte_OfEachFormatIsSurvived) {
    Image picture = Pattern(20, 11);
    for (char const* extension : {"png", "tif", "bmp", "webp", "jpg"}) {
        const wxString path = dir / (wxString("a.") + extension);
        ASSERT_TRUE(tcvSaveImage(path, picture, 80));
        const std::string whole = support::ReadBytes(path);
        const size_t head = std::min<size_t>(whole.size(), 300);
        for (size_t at = 0; at < head; ++at) {
            for (const int value : {0x00, 0x7F, 0xFF}) {
                std::string changed = whole;
                changed[at] = static_cast<char>(value);
                Image image =
                    DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(changed.data()), changed.size());
                EXPECT_EQ(image.IsOk(), tcvLastLoadError().empty()) << extension << " " << at;
            }
        }
    }
}

// One pixel each, as the tests of the formats have them.
TEST_F(HostileFiles, EachChangedByte_OfTheOldFormatsIsSurvived) {
    const std::string gif = "GIF89a" + Little(1, 2) + Little(1, 2) + Bytes({0x80, 0, 0, 9, 9, 9, 200, 100, 50}) +
                            Bytes({0x21, 0xF9, 4, 1, 0, 0, 1, 0, 0x2C, 0, 0, 0, 0, 1, 0, 1, 0, 0}) +
                            Bytes({2, 2, 0x4C, 1, 0, 0x3B});
    const std::string tga = Bytes({0, 1, 1, 0, 0, 2, 0, 24, 0, 0, 0, 0, 2, 0, 1, 0, 8, 0x20, 1, 2, 3, 4, 5, 6, 0, 1});
    const std::string icon = Bytes({0, 0, 1, 0, 1, 0, 1, 1, 0, 0, 1, 0, 24, 0}) + Little(48, 4) + Little(22, 4) +
                             Little(40, 4) + Little(1, 4) + Little(2, 4) + Little(1, 2) + Little(24, 2) +
                             std::string(24, '\0') + Bytes({50, 100, 200, 0, 0, 0, 0, 0});
    for (std::string const& whole : {gif, tga, icon, std::string("P6 1 1 255\nabc"), std::string("P1 3 1 101")}) {
        EXPECT_EQ("loaded", Reason(whole)) << whole.substr(0, 3);
        for (size_t at = 0; at < whole.size(); ++at) {
            for (int value = 0; value < 256; value += 5) {
                std::string changed = whole;
                changed[at] = static_cast<char>(value);
                Image image =
                    DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(changed.data()), changed.size());
                EXPECT_EQ(image.IsOk(), tcvLastLoadError().empty()) << whole.substr(0, 3) << at;
            }
            DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(whole.data()), at);
        }
    }
}

TEST_F(HostileFiles, PngBomb_IsRefusedBySize) {
    EXPECT_EQ("Refused: 900000000 pixels of one picture, and the limit \"pixels-per-image\" is 268435456",
              Reason(Png(30000, 30000, 1, 0, "x")));
    EXPECT_TRUE(Reason(Png(12000, 12000, 8, 2, "x")).StartsWith("Refused: 12000x12000 pixels in a file of"));
    EXPECT_EQ("Refused: 2000000 pixels along one side of a picture, and the limit \"image-side\" is 1000000",
              Reason(Png(2000000, 1, 8, 2, "x")));
}

TEST_F(HostileFiles, PngThatBreaksOff_GivesItsRows) {
    const std::string rows = Bytes({0, 11, 0, 22, 0});
    Image image(tcvLoadImage(support::WriteBytes(dir / "a.png", Png(1, 4, 8, 0, rows)), true, false));
    ASSERT_TRUE(image.IsOk());
    EXPECT_EQ(11, image.Data()[0]);
    EXPECT_EQ(22, image.Data()[image.Step()]);
    EXPECT_EQ(0, image.Data()[image.Step() * 3]);
    EXPECT_TRUE(tcvLastLoadWarning().StartsWith("PNG: ")) << tcvLastLoadWarning().utf8_str();
}

// Not what the memory held before.
TEST_F(HostileFiles, PngThatBreaksOff_IsBlackBelow) {
    const std::string row = '\0' + std::string(300, '\xFF');
    std::string rows;
    for (int y = 0; y < 200; ++y) rows += row;
    const wxString whole = support::WriteBytes(dir / "whole.png", Png(300, 200, 8, 0, rows));
    ASSERT_TRUE(Image(tcvLoadImage(whole, true, false)).IsOk());
    const wxString part = support::WriteBytes(dir / "part.png", Png(300, 200, 8, 0, rows.substr(0, row.size() * 150)));
    Image image(tcvLoadImage(part, true, false));
    ASSERT_TRUE(image.IsOk());
    const cv::Mat pixels = image;
    EXPECT_EQ(300 * 150, cv::countNonZero(pixels.rowRange(0, 150)));
    EXPECT_EQ(0, cv::countNonZero(pixels.rowRange(150, 200)));
}

TEST_F(HostileFiles, HugeClaims_InEachFormatAreRefused) {
    const std::string bmp = "BM" + Little(100, 4) + Little(0, 4) + Little(54, 4) + Little(40, 4) + Little(60000, 4) +
                            Little(60000, 4) + Little(1, 2) + Little(8, 2) + Little(1, 4) + std::string(60, '\0');
    const std::string gif = "GIF89a" + Little(65535, 2) + Little(65535, 2) + Bytes({0, 0, 0}) +
                            Bytes({0x2C, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 0, 2, 1, 0, 0, 0x3B});
    const std::string tga = Bytes({0, 0, 10, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 24, 0, 1, 2, 3, 4});
    for (std::string const& bytes :
         {bmp, gif, tga, std::string("P6 60000 60000 255\n"), Tiff(60000, 60000, 8, 3, 2, "x")}) {
        EXPECT_TRUE(Reason(bytes).StartsWith("Refused: ")) << bytes.substr(0, 6) << tcvLastLoadError().utf8_str();
    }
}

TEST_F(HostileFiles, ScansWithoutEnd_AreRefused) {
    const std::string whole = Progressive();
    const size_t scan = whole.find("\xFF\xDA");
    size_t next = scan + 2;
    while (whole[next] != '\xFF' || whole[next + 1] == '\0') ++next;
    EXPECT_EQ("loaded", Reason(whole));
    std::string many;
    for (int i = 0; i < 300; ++i) many += whole.substr(scan, next - scan);
    EXPECT_EQ("Corrupt: more than 256 scans", Reason(whole.substr(0, next) + many + whole.substr(next)));
}

TEST_F(HostileFiles, FileBeyondTheLimit_IsRefused) {
    SaveJpeg(dir / "a.jpg");
    SetTolLimit(TolLimit::FileBytes, 100);
    const wxString reason = ReasonOf(dir / "a.jpg");
    SetTolLimit(TolLimit::FileBytes, 0);
    EXPECT_TRUE(reason.StartsWith("Refused: ")) << reason.utf8_str();
    EXPECT_TRUE(reason.Contains("\"file-bytes\" is 100")) << reason.utf8_str();
}

TEST_F(HostileFiles, OddNames_AreLoadedAndSaved) {
    SaveJpeg(dir / "a.jpg");
    const std::string bytes = support::ReadBytes(dir / "a.jpg");
    const std::string folder = dir.Path().utf8_str().data();
    for (std::string const& name :
         {std::string("-dash.jpg"), std::string("=equals"), std::string("line\nbreak.jpg"),
          std::string("quote'\"$(x)`.jpg"), std::string("\xFF\xFE\x80.jpg"), std::string(255, 'n')}) {
        const wxString path = PathFromBytes(folder + "/" + name);
        std::filesystem::copy_file(folder + "/a.jpg", folder + "/" + name);
        EXPECT_TRUE(Image(tcvLoadImage(path, true, false)).IsOk()) << name;
    }
}
