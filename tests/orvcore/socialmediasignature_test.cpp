// SPDX-License-Identifier: Apache-2.0
#include "orvcore/socialmediasignature.h"

#include <gtest/gtest.h>
#include <wx/datetime.h>

#include <numeric>

#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tests/support/tempdir.h"
#include "tolbase/hash.h"
#include "tolimage/imagedetails.h"
#include "tolimage/jpeginfo.h"

using support::CountingTable;
using support::JpegBuilder;
using support::TempDir;
using support::WriteBytes;

namespace {

SocialMediaSignature OfFile(wxString const& path, wxString const& name = "Twitter",
                            wxString const& date = "2020-01-02") {
    return SocialMediaSignature(path, name, SMS_Internal, date);
}

// Two tables that count up in zigzag order, 4:2:0, with that many restart markers.
std::string Jpeg(int restarts = 0) {
    JpegBuilder builder;
    builder.Soi().Jfif().Dqt(0, CountingTable(1)).Dqt(1, CountingTable(101)).ColourFrame(0xC0, 320, 240, 0x22);
    builder.StandardDcTable().Scan();
    for (int i = 0; i < restarts; ++i) builder.Restart(i % 8);
    return builder.Eoi().Build();
}

std::vector<int> Counting(int first, int count) {
    std::vector<int> numbers(static_cast<size_t>(count));
    std::iota(numbers.begin(), numbers.end(), first);
    return numbers;
}

std::vector<int> Part(std::vector<int> const& feature, int from, int count) {
    return {feature.begin() + from, feature.begin() + from + count};
}

// 8 by 8 numbers in the picture's own order.
std::vector<std::vector<int>> Rows(int value, size_t count = 8) {
    return std::vector<std::vector<int>>(count, std::vector<int>(8, value));
}

SocialMediaSignature OfTables(std::vector<std::vector<std::vector<int>>> const& tables, wxString const& sampling = "") {
    JpegInfo info;
    info.IsValid = true;
    info.Width = 640;
    info.Height = 480;
    info.QuantizationTables = tables;
    ImageDetailsExifTool details;
    details.ChromaSubsampling = sampling;
    details.ExifFieldCount = 7;
    return SocialMediaSignature("/nowhere/a.jpg", "Flickr", info, details, SMS_User, "2020-01-02");
}

}  // namespace

TEST(SocialMediaSignature, File_GivesTheFortyEightNumbers) {
    TempDir dir;
    std::vector<int> const feature = OfFile(WriteBytes(dir / "a.jpg", Jpeg())).GetFeature();
    ASSERT_EQ(feature.size(), 48u);
    // SOI, APP0, two DQT, SOF, DHT, SOS, EOI.
    EXPECT_EQ(Part(feature, 0, 8), (std::vector<int>{320, 240, 0, 0, 0, 8, 2, 0}));
    EXPECT_EQ(Part(feature, 8, 32), Counting(1, 32));
    EXPECT_EQ(Part(feature, 40, 8), Counting(101, 8));
}

TEST(SocialMediaSignature, AnalysedImage_GivesTheSameAsItsFile) {
    TempDir dir;
    wxString const path = WriteBytes(dir / "a.jpg", Jpeg());
    JpegInfo info;
    tcvJpegReadQuantizationAndHuffmanTables(path, info, 2, true, true);
    SocialMediaSignature const analysed(path, "Twitter", info, tcvLoadImageDetailsExifTool(path), SMS_User,
                                        "2020-01-02");
    EXPECT_EQ(analysed.GetFeature(), OfFile(path).GetFeature());
    EXPECT_EQ(analysed.GetFeatureHash(), OfFile(path).GetFeatureHash());
    EXPECT_EQ(analysed.GetType(), SMS_User);
}

TEST(SocialMediaSignature, OtherSocialName_SameVectorOtherHash) {
    TempDir dir;
    wxString const path = WriteBytes(dir / "a.jpg", Jpeg());
    EXPECT_EQ(OfFile(path, "Twitter").GetFeature(), OfFile(path, "Flickr").GetFeature());
    EXPECT_NE(OfFile(path, "Twitter").GetFeatureHash(), OfFile(path, "Flickr").GetFeatureHash());
}

TEST(SocialMediaSignature, Hash_IsOverFileNameAndNumbers) {
    // md5sum of "/nowhere/a.jpgFlickr640480007000" and forty times "3".
    EXPECT_EQ(OfTables({Rows(3), {}, {}}).GetFeatureHash(), "e53fcb49ed9c520dc04af3add9dd3446");
}

TEST(SocialMediaSignature, GreyImage_UsesItsOneTableTwice) {
    TempDir dir;
    std::string const grey =
        JpegBuilder().Soi().Dqt(0, CountingTable(1)).GreyFrame(64, 32).StandardDcTable().Scan().Eoi().Build();
    std::vector<int> const feature = OfFile(WriteBytes(dir / "grey.jpg", grey)).GetFeature();
    ASSERT_EQ(feature.size(), 48u);
    EXPECT_EQ(Part(feature, 6, 2), (std::vector<int>{0, 0}));
    EXPECT_EQ(Part(feature, 8, 32), Counting(1, 32));
    EXPECT_EQ(Part(feature, 40, 8), Counting(1, 8));
}

TEST(SocialMediaSignature, SecondTableOfOneRow_CountsAsAbsent) {
    EXPECT_EQ(Part(OfTables({Rows(3), Rows(5, 1), {}}).GetFeature(), 40, 8), std::vector<int>(8, 3));
    EXPECT_EQ(Part(OfTables({Rows(3), Rows(5), {}}).GetFeature(), 40, 8), std::vector<int>(8, 5));
}

TEST(SocialMediaSignature, SecondTableThatEndsEarly_GivesWhatItHas) {
    // The first eight places of the zigzag are 0, 1, 8, 16, 9, 2, 3 and 10; two rows hold the places up to 15.
    std::vector<int> const feature = OfTables({Rows(3), Rows(5, 2), {}}).GetFeature();
    ASSERT_EQ(feature.size(), 47u);
    EXPECT_EQ(Part(feature, 40, 7), std::vector<int>(7, 5));
    // A row that ends early ends the table.
    std::vector<std::vector<int>> ragged = Rows(5);
    ragged[0].resize(1);
    EXPECT_EQ(OfTables({Rows(3), ragged, {}}).GetFeature().size(), 41u);
}

TEST(SocialMediaSignature, RestartMarkers_DoNotCount) {
    TempDir dir;
    EXPECT_EQ(OfFile(WriteBytes(dir / "a.jpg", Jpeg(0))).GetFeature(),
              OfFile(WriteBytes(dir / "b.jpg", Jpeg(1000))).GetFeature());
}

TEST(SocialMediaSignature, EveryOtherMarkerCounts) {
    TempDir dir;
    std::string jpeg = Jpeg();
    jpeg.insert(2, std::string("\xFF\xEB\0\2\xFF\xEB\0\2\xFF\xFE\0\2", 12));
    EXPECT_EQ(OfFile(WriteBytes(dir / "a.jpg", jpeg)).GetFeature()[SMS_FeatureMarkerCount], 11);
}

TEST(SocialMediaSignature, Subsampling_IsReadFromTheNotation) {
    std::vector<int> const four = OfTables({Rows(1), Rows(1), {}}, "YCbCr4:4:4 (1 1)").GetFeature();
    EXPECT_EQ(Part(four, 6, 2), (std::vector<int>{4, 4}));
    EXPECT_EQ(Part(OfTables({Rows(1), {}, {}}, "4:2:2").GetFeature(), 6, 2), (std::vector<int>{2, 2}));
    EXPECT_EQ(Part(OfTables({Rows(1), {}, {}}, "1x1,1x1,14x5").GetFeature(), 6, 2), (std::vector<int>{0, 0}));
    EXPECT_EQ(Part(OfTables({Rows(1), {}, {}}, "4:8:8").GetFeature(), 6, 2), (std::vector<int>{0, 0}));
}

TEST(SocialMediaSignature, Thumbnail_GivesItsSize) {
    TempDir dir;
    std::string const photo =
        support::WithExif(support::EncodeJpeg(64, 48), "Maker", "Model One", support::EncodeJpeg(16, 12));
    std::vector<int> const feature = OfFile(WriteBytes(dir / "a.jpg", photo)).GetFeature();
    ASSERT_EQ(feature.size(), 48u);
    EXPECT_EQ(Part(feature, 0, 4), (std::vector<int>{64, 48, 16, 12}));
    EXPECT_GT(feature[SMS_FeatureExifCount], 0);
}

TEST(SocialMediaSignature, EmptyDate_IsToday) {
    TempDir dir;
    wxString const path = WriteBytes(dir / "a.jpg", Jpeg());
    wxString const before = wxDateTime::Now().FormatISODate();
    wxString const date = OfFile(path, "Twitter", "").GetDate();
    wxString const after = wxDateTime::Now().FormatISODate();
    EXPECT_TRUE(date == before || date == after) << date.utf8_str();
    EXPECT_EQ(OfFile(path, "Twitter", "some day").GetDate(), "some day");
}

TEST(SocialMediaSignature, PoorFile_GivesAShortVectorThatIsNotValid) {
    TempDir dir;
    for (std::string const& bytes : {std::string("not a JPEG"), std::string(), std::string("\xFF\xD8\xFF", 3)}) {
        SocialMediaSignature const signature = OfFile(WriteBytes(dir / "poor.jpg", bytes));
        EXPECT_LT(signature.GetFeature().size(), 48u);
        EXPECT_FALSE(signature.IsValid());
    }
    EXPECT_FALSE(OfFile(dir / "missing.jpg").IsValid());
}

TEST(SocialMediaSignature, IsValid_NeedsNameHashFileAndFortyEightNumbers) {
    std::vector<int> const numbers(48, 1);
    EXPECT_TRUE(SocialMediaSignature("f", "s", "", "h", numbers, SMS_User).IsValid());
    EXPECT_FALSE(SocialMediaSignature("", "s", "d", "h", numbers, SMS_User).IsValid());
    EXPECT_FALSE(SocialMediaSignature("f", "", "d", "h", numbers, SMS_User).IsValid());
    EXPECT_FALSE(SocialMediaSignature("f", "s", "d", "", numbers, SMS_User).IsValid());
    EXPECT_FALSE(SocialMediaSignature("f", "s", "d", "h", std::vector<int>(49, 1), SMS_User).IsValid());
    EXPECT_FALSE(SocialMediaSignature().IsValid());
}

TEST(SocialMediaSignature, GetAsVecString_HasFilePlatformDateHash) {
    EXPECT_EQ(SocialMediaSignature("f", "s", "d", "h", {1}, SMS_User).GetAsVecString(),
              (VecString{"f", "s", "d", "h"}));
}

TEST(SocialMediaSignatureJson, WrittenAndRead_IsTheSame) {
    SocialMediaSignature const written("f", wxString::FromUTF8("Name \"é\" %s\n"), "d", "h", Counting(-3, 48),
                                       SMS_User);
    wxJSONValue const value = written.WriteToJson();
    wxArrayString const keys = value.GetMemberNames();
    EXPECT_EQ(wxJoin(keys, ','), "File,SocName,FeatVect,FeatHash,Date");
    SocialMediaSignature read;
    read.ReadFromJson(value);
    EXPECT_EQ(read.GetAsVecString(), written.GetAsVecString());
    EXPECT_EQ(read.GetFeature(), written.GetFeature());
}

TEST(SocialMediaSignatureJson, EmptyVector_LeavesItsKeyOut) {
    EXPECT_FALSE(SocialMediaSignature("f", "s", "d", "h", {}, SMS_User).WriteToJson().HasMember("FeatVect"));
}

TEST(SocialMediaSignatureJson, FortySevenElements_LeaveTheVectorEmpty) {
    wxJSONValue value = SocialMediaSignature("f", "s", "d", "h", Counting(1, 47), SMS_User).WriteToJson();
    SocialMediaSignature read;
    read.ReadFromJson(value);
    EXPECT_TRUE(read.GetFeature().empty());
    EXPECT_FALSE(read.IsValid());
    EXPECT_EQ(read.GetFile(), "f");
}

TEST(SocialMediaSignatureJson, OtherShapes_GiveEmptyMembers) {
    for (wxJSONValue const& value : {wxJSONValue(), wxJSONValue(5), wxJSONValue("text"), wxJSONValue(wxJSONTYPE_ARRAY),
                                     wxJSONValue(wxJSONTYPE_OBJECT)}) {
        SocialMediaSignature read;
        read.ReadFromJson(value);
        EXPECT_EQ(read.GetAsVecString(), (VecString{"", "", "", ""}));
        EXPECT_FALSE(read.IsValid());
    }
    wxJSONValue nulls(wxJSONTYPE_OBJECT);
    nulls["File"] = wxJSONValue(wxJSONTYPE_NULL);
    nulls["SocName"].Append(1);
    SocialMediaSignature read;
    read.ReadFromJson(nulls);
    EXPECT_EQ(read.GetAsVecString(), (VecString{"", "", "", ""}));
}
