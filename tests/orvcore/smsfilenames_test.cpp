// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include "orvcore/smscollection.h"

namespace {

VecString List(wxString const& name) {
    return SMSCollection::GetFilenameCompatibilityList("/some.where/" + name);
}

VecString const kNone;

}  // namespace

TEST(Filenames, PlatformWithoutScheme_FitsAnyName) {
    EXPECT_TRUE(SMSCollection::CheckFilenameCompatibility("whatever.jpg", "Twitter"));
    EXPECT_TRUE(SMSCollection::CheckFilenameCompatibility("", "Google+"));
    EXPECT_TRUE(SMSCollection::CheckFilenameCompatibility("x", "facebook")) << "names are told apart by case";
}

TEST(Filenames, WhatsappName_FitsWhatsappAlone) {
    EXPECT_TRUE(SMSCollection::CheckFilenameCompatibility("/a/IMG-20180102-WA0007.jpg", "Whatsapp"));
    EXPECT_FALSE(SMSCollection::CheckFilenameCompatibility("/a/IMG-20180102-WA0007.jpg", "Telegram"));
    EXPECT_EQ(List("IMG-20180102-WA0007.jpeg"), VecString{"Whatsapp"});
    EXPECT_EQ(List("IMG-20180102-WA007.jpeg"), kNone);
}

TEST(Filenames, ThreeGroupsAndN_AreFacebookAndInstagram) {
    EXPECT_EQ(List("1_22_333_n.jpg"), (VecString{"Facebook", "Instagram"}));
    EXPECT_EQ(List("1_22_333_|.jpg"), (VecString{"Facebook", "Instagram"})) << "the bar is a member";
    EXPECT_EQ(List("1_22_333_x.jpg"), kNone);
    EXPECT_EQ(List("1_22_n.jpg"), kNone);
}

TEST(Filenames, EachOtherScheme_FindsItsPlatform) {
    EXPECT_EQ(List("123_abc0_b.jpg"), VecString{"Flickr"});
    EXPECT_EQ(List("tumblr_Abc9_1280.jpg"), VecString{"Tumblr"});
    EXPECT_EQ(List("tumblr_Abc9_12.jpg"), kNone);
    EXPECT_EQ(List("7 - aBcDeF1.jpg"), VecString{"Imgur"});
    EXPECT_EQ(List(" - aBcDeF12.jpg"), VecString{"Imgur"});
    EXPECT_EQ(List("WhatsApp Image 2018-01-02 at 11.22.33.jpg"), VecString{"Whatsapp"});
    EXPECT_EQ(List("abc1234.jpg"), VecString{"Tinypic"});
    EXPECT_EQ(List("12_1234567890123456.jpg"), VecString{"Telegram"});
    EXPECT_EQ(List("photo12.jpg"), (VecString{"Tinypic", "Telegram"}));
    EXPECT_EQ(List("photo123456.jpg"), VecString{"Telegram"});
}

TEST(Filenames, OddBracket_HoldsBackslashParenthesisBracketAndDigits) {
    for (char const* tail : {"", " (1)", "(1)", "\\", "[5", " (12))", ")))"}) {
        EXPECT_EQ(List(wxString("WhatsApp-Image-20180102") + tail), VecString{"Whatsapp"}) << tail;
    }
    EXPECT_EQ(List("WhatsApp-Image-20180102-1"), kNone);
    EXPECT_EQ(List("WhatsApp-Image-20180102(1) 2"), kNone);
}

TEST(Filenames, OnlyTheNameWithoutExtension_IsLookedAt) {
    EXPECT_EQ(SMSCollection::GetFilenameCompatibilityList("/photo1234567/x.jpg"), kNone);
    EXPECT_EQ(List("photo1234567.tar.jpg"), kNone);
    EXPECT_EQ(List("photo1234567"), VecString{"Telegram"});
}

TEST(Filenames, LineEndBehindTheName_DoesNotFit) {
    EXPECT_EQ(List("photo1234567\n.jpg"), kNone);
    EXPECT_EQ(List("IMG-20180102-WA0007\n"), kNone);
}

TEST(Filenames, ForeignDigitsAndLongNames_AreHarmless) {
    EXPECT_EQ(List(wxString::FromUTF8("photo١٢٣٤٥٦٧.jpg")), kNone);
    EXPECT_EQ(List("photo" + wxString('1', 1000000) + ".jpg"), VecString{"Telegram"});
    EXPECT_EQ(List("WhatsApp-Image-20180102" + wxString(')', 100000) + "x"), kNone);
}
