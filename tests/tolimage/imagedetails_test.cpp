// SPDX-License-Identifier: Apache-2.0
#include "tolimage/imagedetails.h"

#include <gtest/gtest.h>

#include "tests/tolimage/pictures.h"
#include "tolbase/file.h"
#include "tolimage/exiftool.h"
#include "tolimage/metadata.h"

using namespace pictures;

namespace {

class ImageDetails : public ::testing::Test {
protected:
    wxString Jpeg(std::vector<std::string> const& tags = {}) {
        const wxString path = SaveJpeg(dir / "a.jpg");
        if (!tags.empty()) Exif(path, tags);
        return path;
    }
    support::TempDir dir;
};

wxString Row(ImageDetailsExifTool const& details, wxString const& name) {
    for (VecString const& row : details.Metadata) {
        if (row[0] == name) return row[1];
    }
    return "(none)";
}

}  // namespace

TEST_F(ImageDetails, Default_IsEmpty) {
    const ImageDetailsExifTool details;
    EXPECT_FALSE(details.IsJpeg);
    EXPECT_EQ(0, details.EncodedWidth);
    EXPECT_EQ("", details.Make);
    EXPECT_TRUE(details.Metadata.empty());
}

TEST_F(ImageDetails, MissingFile_IsARecordOfItsName) {
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(dir / "missing.jpg");
    EXPECT_EQ(dir / "missing.jpg", details.Filename);
    EXPECT_EQ("", details.Format);
    EXPECT_EQ(0, details.FileSize);
    EXPECT_TRUE(details.Metadata.empty());
}

TEST_F(ImageDetails, PlainJpeg_TellsItsFacts) {
    const wxString path = Jpeg();
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(path);
    EXPECT_TRUE(details.IsOk);
    EXPECT_TRUE(details.IsJpeg);
    EXPECT_EQ("JPEG", details.Format);
    EXPECT_EQ("image/jpeg (JPEG)", details.FormatDescription);
    EXPECT_EQ(64, details.EncodedWidth);
    EXPECT_EQ(48, details.EncodedHeight);
    EXPECT_EQ(64, details.NormalizedLongSide);
    EXPECT_EQ(48, details.NormalizedShortSide);
    EXPECT_EQ(3, details.Channels);
    EXPECT_EQ(24, details.BitsPerPixel);
    EXPECT_EQ("4:2:0", details.ChromaSubsampling);
    EXPECT_EQ(static_cast<int64_t>(support::ReadBytes(path).size()), details.FileSize);
}

TEST_F(ImageDetails, WithoutMetadata_TextsAreEmptyAndCountsZero) {
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(Jpeg());
    for (wxString const& text : {details.Make, details.Model, details.Software, details.SerialNumber, details.RotateTag,
                                 details.DateTimeOriginal, details.CreateDate, details.ModifyDate, details.GpsLatitude,
                                 details.GpsLongitude}) {
        EXPECT_EQ("", text);
    }
    EXPECT_EQ(0, details.ExifFieldCount + details.MakerNotesFieldCount + details.IptcFieldCount +
                     details.XmpFieldCount + details.PhotoshopFieldCount + details.IccFieldCount);
}

TEST_F(ImageDetails, ExifTexts_AreThoseOfTheFile) {
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(
        Jpeg({"-Make=Acme Works", "-Model=Model X", "-Software=12.60", "-EXIF:SerialNumber=SN-123",
              "-DateTimeOriginal=2021:02:03 04:05:06", "-EXIF:CreateDate=2021:02:03 04:05:07",
              "-EXIF:ModifyDate=2022:03:04 05:06:07", "-Orientation#=6"}));
    EXPECT_EQ("Acme Works", details.Make);
    EXPECT_EQ("Model X", details.Model);
    EXPECT_EQ("12.60", details.Software);
    EXPECT_EQ("SN-123", details.SerialNumber);
    EXPECT_EQ("2021:02:03 04:05:06", details.DateTimeOriginal);
    EXPECT_EQ("2021:02:03 04:05:07", details.CreateDate);
    EXPECT_EQ("2022:03:04 05:06:07", details.ModifyDate);
    EXPECT_EQ("Rotate 90 CW", details.RotateTag);
    EXPECT_EQ(6, details.Orientation);
    EXPECT_EQ(64, details.EncodedWidth);
}

TEST_F(ImageDetails, Exif_GoesBeforeXmp) {
    const ImageDetailsExifTool both = tcvLoadImageDetailsExifTool(Jpeg({"-EXIF:Make=Exif", "-XMP-tiff:Make=Xmp"}));
    EXPECT_EQ("Exif", both.Make);
    const ImageDetailsExifTool one = tcvLoadImageDetailsExifTool(Jpeg({"-XMP-tiff:Make=Xmp"}));
    EXPECT_EQ("Xmp", one.Make);
}

TEST_F(ImageDetails, Counts_FollowExifToolsGroups) {
    const ImageDetailsExifTool few = tcvLoadImageDetailsExifTool(Jpeg({"-Make=Acme"}));
    const ImageDetailsExifTool many = tcvLoadImageDetailsExifTool(Jpeg({"-Make=Acme", "-Model=X", "-Software=S"}));
    EXPECT_EQ(few.ExifFieldCount + 2, many.ExifFieldCount);
    const ImageDetailsExifTool other = tcvLoadImageDetailsExifTool(
        Jpeg({"-IPTC:Keywords=one", "-IPTC:City=Here", "-XMP-dc:Title=t", "-XMP-dc:Source=s"}));
    EXPECT_EQ(0, other.ExifFieldCount);
    // ExifTool writes IPTC's record version and XMP's toolkit of its own accord.
    EXPECT_EQ(3, other.IptcFieldCount);
    EXPECT_EQ(3, other.XmpFieldCount);
    EXPECT_EQ(0, other.IccFieldCount);
}

TEST_F(ImageDetails, Gps_IsSignedDecimal) {
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(
        Jpeg({"-GPSLatitude=45.5", "-GPSLatitudeRef=S", "-GPSLongitude=9.25", "-GPSLongitudeRef=E"}));
    EXPECT_EQ("-45.5", details.GpsLatitude);
    EXPECT_EQ("9.25", details.GpsLongitude);
    EXPECT_EQ("45 deg 30' 0.00\"", Row(details, "GPS:GPSLatitude"));
}

TEST_F(ImageDetails, GpsWithoutHemisphere_IsNoNumber) {
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(Jpeg({"-GPSLatitude=45.5", "-GPSLongitude=9.25"}));
    EXPECT_EQ("45 deg 30' 0.00\"", details.GpsLatitude);
}

TEST_F(ImageDetails, Content_TellsAJpegNotTheName) {
    const wxString jpeg = support::WriteBytes(dir / "b.png", support::ReadBytes(Jpeg()));
    EXPECT_TRUE(tcvLoadImageDetailsExifTool(jpeg).IsJpeg);
    Image picture = Pattern(12, 10);
    ASSERT_TRUE(tcvSaveImage(dir / "c.png", picture, 90));
    const wxString png = support::WriteBytes(dir / "d.jpg", support::ReadBytes(dir / "c.png"));
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(png);
    EXPECT_FALSE(details.IsJpeg);
    EXPECT_EQ("PNG", details.Format);
    EXPECT_EQ(12, details.EncodedWidth);
    EXPECT_EQ(24, details.BitsPerPixel);
}

TEST_F(ImageDetails, Formats_HaveShortNames) {
    Image picture = Pattern(12, 10);
    const std::pair<char const*, char const*> cases[] = {
        {"tif", "TIFF"}, {"webp", "WEBP"}, {"bmp", "BMP"}, {"png", "PNG"}, {"jpg", "JPEG"}};
    for (auto const& each : cases) {
        const wxString path = dir / (wxString("f.") + each.first);
        ASSERT_TRUE(tcvSaveImage(path, picture, 90));
        EXPECT_EQ(each.second, tcvLoadImageDetailsExifTool(path).Format);
    }
}

TEST_F(ImageDetails, Metadata_LeavesOutWhatIsNone) {
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(Jpeg({"-Make=Acme"}));
    EXPECT_EQ("Acme", Row(details, "IFD0:Make"));
    EXPECT_EQ(static_cast<int64_t>(details.Metadata.size()), details.MetadataCount);
    for (VecString const& row : details.Metadata) {
        ASSERT_EQ(2U, row.size());
        for (char const* group : {"ExifTool:", "File:", "System:", "Composite:"}) {
            EXPECT_FALSE(row[0].StartsWith(group)) << row[0].utf8_str();
        }
    }
}

TEST_F(ImageDetails, LoadImageMetadata_AppendsTheSameRows) {
    const wxString path = Jpeg({"-Make=Acme", "-XMP-dc:Title=t"});
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(path);
    std::vector<NameValueDesc> list(1, NameValueDesc("first", "value", "description"));
    tcvLoadImageMetadata(path, list);
    ASSERT_EQ(details.Metadata.size() + 1, list.size());
    EXPECT_EQ("first", list[0].Name);
    for (size_t i = 0; i < details.Metadata.size(); ++i) {
        EXPECT_EQ(details.Metadata[i][0], list[i + 1].Name);
        EXPECT_EQ(details.Metadata[i][1], list[i + 1].Value);
    }
    std::vector<NameValueDesc> none;
    tcvLoadImageMetadata(dir / "missing", none);
    EXPECT_TRUE(none.empty());
}

TEST_F(ImageDetails, Prefetch_GivesTheSameRecord) {
    const wxString path = Jpeg({"-Make=Acme"});
    ExifToolPrefetch(path);
    EXPECT_EQ("Acme", tcvLoadImageDetailsExifTool(path).Make);
}

TEST_F(ImageDetails, TextFile_HasNoFormatOfAPicture) {
    const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(support::WriteBytes(dir / "a.jpg", "only text\n"));
    EXPECT_FALSE(details.IsJpeg);
    EXPECT_FALSE(details.IsOk);
    EXPECT_EQ(0, details.EncodedWidth);
}

TEST_F(ImageDetails, Thumbnail_IsFoundInJpegAndPng) {
    SaveJpeg(dir / "t.jpg", 32, 24);
    const wxString jpeg = Jpeg({std::string("-ThumbnailImage<=") + (dir / "t.jpg").utf8_str().data()});
    Image thumbnail(tcvLoadThumbnail(jpeg));
    EXPECT_EQ(32, thumbnail.Width());
    EXPECT_EQ(24, thumbnail.Height());
    EXPECT_FALSE(Image(tcvLoadThumbnail(dir / "t.jpg")).IsOk());
    EXPECT_EQ("", tcvLastLoadError());
    EXPECT_FALSE(Image(tcvLoadThumbnail(dir / "missing.jpg")).IsOk());
}

TEST(KnownSoftware, Names_AreLowerCaseWithoutRepetition) {
    const VecString names = GetKnownsSoftwareStrings();
    ASSERT_FALSE(names.empty());
    std::map<wxString, int> counts;
    for (wxString const& name : names) {
        EXPECT_FALSE(name.empty());
        EXPECT_EQ(name.Lower(), name);
        EXPECT_EQ(name.Clone().Trim().Trim(false), name);
        EXPECT_EQ(1, ++counts[name]) << name.utf8_str();
    }
}

TEST(KnownSoftware, Firmware_HoldsNone) {
    for (char const* firmware :
         {"Ver.1.00", "01.19.00.42", "14.4.2", "SLT-A57 v1.01", "Version 1.0", "G973FXXU3BSKO",
          "Digital Camera FinePix4900ZOOM Ver1.00", "R1BA042     prg1205-9079_GENERIC_SI 00.00",
          "KODAK EASYSHARE Camera", "HDR+ 1.0.220943774z", "E995v1.6", "Firmware Version 1.1.1"}) {
        const wxString text = wxString(firmware).Lower();
        for (wxString const& name : GetKnownsSoftwareStrings()) EXPECT_FALSE(text.Contains(name)) << firmware;
    }
}
