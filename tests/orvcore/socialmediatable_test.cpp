// SPDX-License-Identifier: Apache-2.0
#include "orvcore/socialmediatable.h"

#include <gtest/gtest.h>

#include "orvcore/smscollection.h"
#include "tests/orvcore/smssamples.h"
#include "tests/support/engine.h"

namespace {

VecString const kNames = {
    "Classification:",  "Closest Social Platform:",        "Similarity Score:", "Classification Source:",
    "Closest File Id:", "Date of Reference File (Y/M/D):", "Optional message:"};
wxString const kYes = "Image likely comes from a Social Media Platform";
wxString const kNo = "Image was likely not processed by a Social Media Platform";

VecString Values(VecVecString const& table) {
    VecString values;
    for (VecString const& row : table) values.push_back(row.at(1));
    return values;
}

class SocialTable : public support::Engine {
protected:
    VecString Evaluate(OrvFileId id = Evidence) { return Values(SocialMediaTable(id).Evaluate()); }

    static std::vector<int> FeatureOf(wxString const& path) {
        return SocialMediaSignature(path, "?", SMS_Internal, "d").GetFeature();
    }

    // Adds three samples of "Twitter" (which has no naming scheme) whose similarity to the file lies in that range.
    void AddTwitterAt(wxString const& path, double lowest, double highest) {
        SMSCollection collection;
        OpenRanges(collection, 10000);
        std::vector<int> feature = FeatureOf(path);
        for (int step = 0; step < 20000; ++step, feature[SMS_FeatureChrominance] += 1) {
            SocialMediaSignature const sample = Signature("Twitter", feature, "near");
            collection.AddEntryToDatabase(sample);
            double const similarity = collection.FindKnns(FeatureOf(path), 1).neighbours[0].similarity;
            if (similarity >= lowest && similarity <= highest) {
                for (int i = 0; i < 2; ++i) collection.AddEntryToDatabase(sample);
                return;
            }
            collection.RemoveEntryFromDatabase("near");
        }
        FAIL() << "no such similarity";
    }
};

}  // namespace

TEST_F(SocialTable, NewTable_HasItsSevenRows) {
    SocialMediaTable table(Evidence);
    VecVecString const rows = table.Reset();
    ASSERT_EQ(rows.size(), 7u);
    for (size_t i = 0; i < 7; ++i) EXPECT_EQ(rows[i], (VecString{kNames[i], ""}));
}

TEST_F(SocialTable, EmptySlot_HasEmptyValues) {
    EXPECT_EQ(Evaluate(), VecString(7));
}

TEST_F(SocialTable, NoJpeg_HasEmptyValues) {
    std::string const bmp = std::string("BM\x3a\0\0\0\0\0\0\0\x36\0\0\0\x28\0\0\0\1\0\0\0\1\0\0\0\1\0\x18\0", 30) +
                            std::string(24, '\0') + std::string("\1\2\3\0", 4);
    Load(support::WriteBytes(dir / "photo1234567.bmp", bmp));
    ASSERT_TRUE(context->HasFile(Evidence));
    EXPECT_EQ(Evaluate(), VecString(7));
}

TEST_F(SocialTable, UnloadedCollection_IsNegative) {
    Load(Jpeg("plain name.jpg"));
    EXPECT_EQ(Evaluate(), (VecString{kNo, "-", "-", "-", "-", "-", ""}));
}

TEST_F(SocialTable, NegativeVerdict_StillTellsOfTheName) {
    Load(Jpeg("1_2_3_n.jpg"));
    EXPECT_EQ(Evaluate(), (VecString{kNo, "-", "-", "-", "-", "-", "Filename is compatible with Facebook, Instagram"}));
}

TEST_F(SocialTable, TiedPlatforms_AreJoined) {
    wxString const path = Jpeg("plain name.jpg");
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("Twitter", FeatureOf(path), "a"));
    collection.AddEntryToDatabase(Signature("Google+", FeatureOf(path), "b", SMS_User));
    collection.AddEntryToDatabase(Signature("Twitter", FeatureOf(path), "c"));
    Load(path);
    EXPECT_EQ(Evaluate(), (VecString{kYes, "Twitter, Google+", "1.0000, 1.0000", "Internal database, User database",
                                     "file-c, file-b", "2020-02-02, 2020-02-02", ""}));
}

TEST_F(SocialTable, UnfittingName_IsToldForEachPlatform) {
    wxString const path = Jpeg("plain name.jpg");
    SMSCollection collection;
    for (char const* name : {"Twitter", "Telegram", "Flickr"}) {
        collection.AddEntryToDatabase(Signature(name, FeatureOf(path), name));
    }
    Load(path);
    EXPECT_EQ(Evaluate()[6],
              "Filename does not match any known Flickr naming scheme\n, "
              "Filename does not match any known Telegram naming scheme\n");
}

TEST_F(SocialTable, FittingName_FollowsTheOtherNotes) {
    wxString const path = Jpeg("photo1234567.jpg");
    SMSCollection collection;
    for (char const* hash : {"1", "2", "3"}) collection.AddEntryToDatabase(Signature("Flickr", FeatureOf(path), hash));
    Load(path);
    EXPECT_EQ(Evaluate()[6],
              "Filename does not match any known Flickr naming scheme\nFilename is compatible with Telegram");
}

TEST_F(SocialTable, OddPlatformName_IsShownAsItIs) {
    wxString const path = Jpeg("plain name.jpg");
    wxString const odd = wxString::FromUTF8("%s%n <b>Ö</b>\"");
    SMSCollection collection;
    for (char const* hash : {"1", "2", "3"}) {
        collection.AddEntryToDatabase(Signature(odd, FeatureOf(path), hash, SMS_User));
    }
    Load(path);
    EXPECT_EQ(Evaluate()[1], odd);
    EXPECT_EQ(Evaluate()[6], "") << "a platform without a scheme fits any name";
}

TEST_F(SocialTable, LowResolutionBelowSureSimilarity_CarriesTheShortenedNote) {
    wxString const path = Jpeg("plain name.jpg", 1600, 1200);
    AddTwitterAt(path, 0.9980, 0.9989);
    Load(path);
    VecString const values = Evaluate();
    EXPECT_EQ(values[0], kYes);
    EXPECT_TRUE(values[2].StartsWith("0.998")) << values[2].utf8_str();
    EXPECT_EQ(values[6], "False positives are more probable on low resolution image");
}

TEST_F(SocialTable, ShortenedNote_RunsIntoTheNoteOnTheName) {
    wxString const path = Jpeg("photo1234567.jpg", 1600, 1200);
    AddTwitterAt(path, 0.9980, 0.9989);
    Load(path);
    EXPECT_EQ(Evaluate()[6],
              "False positives are more probable on low resolution imageFilename is compatible with Telegram");
}

TEST_F(SocialTable, LowResolutionAtSureSimilarity_HasNoNote) {
    wxString const path = Jpeg("plain name.jpg", 1600, 1200);
    AddTwitterAt(path, 0.9992, 0.9998);
    Load(path);
    EXPECT_EQ(Evaluate()[0], kYes);
    EXPECT_EQ(Evaluate()[6], "");
}

TEST_F(SocialTable, OnePixelMore_HasNoNote) {
    wxString const path = Jpeg("plain name.jpg", 1601, 1200);
    AddTwitterAt(path, 0.9980, 0.9989);
    Load(path);
    EXPECT_EQ(Evaluate()[0], kYes);
    EXPECT_EQ(Evaluate()[6], "");
}

TEST_F(SocialTable, OnePixelMoreInHeight_HasNoNote) {
    wxString const path = Jpeg("plain name.jpg", 1200, 1601);
    AddTwitterAt(path, 0.9980, 0.9989);
    Load(path);
    EXPECT_EQ(Evaluate()[0], kYes);
    EXPECT_EQ(Evaluate()[6], "");
}

TEST_F(SocialTable, EmptyReference_HasEmptyValuesBesideAVerdict) {
    wxString const path = Jpeg("plain name.jpg");
    SMSCollection collection;
    for (char const* hash : {"1", "2", "3"}) collection.AddEntryToDatabase(Signature("Twitter", FeatureOf(path), hash));
    Load(path);
    EXPECT_EQ(Evaluate(Reference), VecString(7));
    EXPECT_EQ(Evaluate(Evidence),
              (VecString{kYes, "Twitter", "1.0000", "Internal database", "file-3", "2020-02-02", ""}));
}

TEST_F(SocialTable, Comparison_ShowsTheEvidenceBesideAnEmptyReference) {
    SocialMediaTableComparison comparison;
    Load(Jpeg("plain name.jpg"));
    VecVecString const rows = comparison.Evaluate(Evidence);
    ASSERT_EQ(rows.size(), 8u);
    EXPECT_EQ(rows[1], (VecString{"1", "Classification:", kNo, "", ""}));
    EXPECT_EQ(rows[2], (VecString{"2", "Closest Social Platform:", "-", "", ""}));
    EXPECT_EQ(rows[7], (VecString{"7", "Optional message:", "", "", ""}));
}

TEST_F(SocialTable, Comparison_MarksWhatDiffers) {
    SocialMediaTableComparison comparison;
    wxString const path = Jpeg("plain name.jpg");
    SMSCollection collection;
    for (char const* hash : {"1", "2", "3"}) collection.AddEntryToDatabase(Signature("Twitter", FeatureOf(path), hash));
    Load(path);
    Load(Jpeg("larger.jpg", 640, 480), Reference);
    comparison.Evaluate(Evidence);
    VecVecString const rows = comparison.Evaluate(Reference);
    EXPECT_EQ(rows[1], (VecString{"1", "Classification:", kYes, kNo, "!Different"}));
    EXPECT_EQ(rows[7], (VecString{"7", "Optional message:", "", "", ""}));
}
