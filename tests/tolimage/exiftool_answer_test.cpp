// SPDX-License-Identifier: Apache-2.0
#include "tolimage/exiftool_answer.h"

#include <gtest/gtest.h>

#include "tolbase/exception.h"
#include "tolbase/limits.h"

namespace {

ExifToolValue Only(std::string const& pair) {
    const ExifToolValues values =
        ParseExifToolAnswer("Array(Array(\n  \"SourceFile\" => \"/a.jpg\",\n  " + pair + "\n));\n");
    return values.size() == 1 ? values[0] : ExifToolValue();
}

}  // namespace

TEST(ExifToolAnswer, Names_AreSplitIntoGroups) {
    const ExifToolValue value = Only("\"EXIF:IFD0:Make\" => \"Acme\"");
    EXPECT_EQ("EXIF", value.group0);
    EXPECT_EQ("IFD0", value.group1);
    EXPECT_EQ("Make", value.tag);
    EXPECT_EQ("Acme", value.value);
}

TEST(ExifToolAnswer, OneGroup_StandsForBoth) {
    const ExifToolValue value = Only("\"JFIF:JFIFVersion\" => 1.01");
    EXPECT_EQ("JFIF", value.group0);
    EXPECT_EQ("JFIF", value.group1);
    EXPECT_EQ("1.01", value.value);
}

TEST(ExifToolAnswer, CopyNumber_IsNoGroup) {
    const ExifToolValue value = Only("\"MakerNotes:Canon:Copy12:LensType\" => \"n/a\"");
    EXPECT_EQ("Canon", value.group1);
    EXPECT_EQ("LensType", value.tag);
    EXPECT_EQ("ExifTool", Only("\"ExifTool:Copy1:Warning\" => \"w\"").group1);
}

TEST(ExifToolAnswer, Numbers_StayAsTheyArePrinted) {
    EXPECT_EQ("1.10", Only("\"A:T\" => 1.10").value);
    EXPECT_EQ("-0", Only("\"A:T\" => -0").value);
    EXPECT_EQ("1e-05", Only("\"A:T\" => 1e-05").value);
    EXPECT_EQ("123456789012345", Only("\"A:T\" => 123456789012345").value);
    EXPECT_EQ("0232", Only("\"A:T\" => \"0232\"").value);
}

TEST(ExifToolAnswer, Escapes_AreUndone) {
    EXPECT_EQ("a\"b\\c\nd\re\tf$g\x01h", Only("\"A:T\" => \"a\\\"b\\\\c\\nd\\re\\tf\\$g\\x01h\"").value);
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC)"), Only("\"A:T\" => \"\xC3\xBC)\"").value);
}

TEST(ExifToolAnswer, BytesThatAreNoUtf8_AreTakenAsLatin1) {
    EXPECT_EQ(wxString::FromUTF8("M\xC3\xBCller"), Only("\"A:T\" => \"M\xFCller\"").value);
}

TEST(ExifToolAnswer, Lists_AreJoined) {
    EXPECT_EQ("one, t,wo, 3", Only("\"A:T\" => Array(\"one\",\"t,wo\",3)").value);
    EXPECT_EQ("x=1, y=a, b", Only("\"A:T\" => Array(\"x\" => 1,\"y\" => Array(\"a\",\"b\"))").value);
    EXPECT_EQ("", Only("\"A:T\" => Array()").value);
}

TEST(ExifToolAnswer, EmptyAnswer_HasNoValues) {
    EXPECT_TRUE(ParseExifToolAnswer("").empty());
    EXPECT_TRUE(ParseExifToolAnswer("\n").empty());
}

TEST(ExifToolAnswer, BrokenAnswers_Throw) {
    const std::string whole = "Array(Array(\n  \"A:T\" => \"x\\x01\",\n  \"B:T\" => Array(1,2)\n));\n";
    for (size_t size = 1; size + 4 < whole.size(); ++size) {
        EXPECT_THROW(ParseExifToolAnswer(whole.substr(0, size)), TolException) << size;
    }
    EXPECT_THROW(ParseExifToolAnswer("Error: no"), TolException);
}

TEST(ExifToolAnswer, DeepNesting_IsRefused) {
    std::string value;
    for (int i = 0; i < 100000; ++i) value += "Array(";
    EXPECT_THROW(ParseExifToolAnswer("Array(Array(\n \"A:T\" => " + value), TolLimitError);
}

TEST(ExifToolAnswer, LongValues_AreCutAtACharacter) {
    SetTolLimit(TolLimit::MetadataValueBytes, 5);
    const wxString cut = Only(
                             "\"A:T\" => \"abcd\xC3\xBC"
                             "fg\"")
                             .value;
    SetTolLimit(TolLimit::MetadataValueBytes, 0);
    EXPECT_EQ("abcd [truncated]", cut);
}

TEST(ExifToolAnswer, TooManyValues_AreCountedInARow) {
    SetTolLimit(TolLimit::MetadataValues, 2);
    const ExifToolValues values =
        ParseExifToolAnswer("Array(Array(\"A:P\" => 1,\"A:Q\" => 2,\"A:R\" => 3,\"A:S\" => 4));");
    SetTolLimit(TolLimit::MetadataValues, 0);
    ASSERT_EQ(3U, values.size());
    EXPECT_EQ("Q", values[1].tag);
    EXPECT_EQ("Truncated", values[2].tag);
    EXPECT_EQ("2 further values left out: the limit \"metadata-values\" is 2", values[2].value);
}

TEST(ExifToolAnswer, Values_StandByTheirGroupsInTheOrderOfTheFile) {
    const ExifToolValues values = ParseExifToolAnswer(
        "Array(Array(\"SourceFile\" => \"/a\",\"B:P\" => 1,\"A:X:Q\" => 2,\"B:Copy1:R\" => 3,\"B:S\" => 4,"
        "\"A:Y:T\" => 5,\"A:X:U\" => 6));");
    wxString order;
    for (ExifToolValue const& value : values) order += value.tag + value.value;
    EXPECT_EQ("P1S4Q2U6R3T5", order);
}

TEST(ExifToolAnswer, TooManyValues_AreThoseOfTheLastGroups) {
    SetTolLimit(TolLimit::MetadataValues, 3);
    std::string text = "Array(Array(\"A:P\" => 1,\"B:Q\" => 2,\"C:R\" => 3,\"D:S\" => 4";
    for (int i = 0; i < 20; ++i) text += ",\"C:R" + std::to_string(i) + "\" => 0";
    const ExifToolValues values = ParseExifToolAnswer(text + ",\"A:T\" => 5));");
    SetTolLimit(TolLimit::MetadataValues, 0);
    ASSERT_EQ(4U, values.size());
    EXPECT_EQ("P", values[0].tag);
    EXPECT_EQ("T", values[1].tag);
    EXPECT_EQ("Q", values[2].tag);
    EXPECT_TRUE(values[3].value.StartsWith("22 further values"));
}

TEST(ExifToolAnswer, Binary_IsDecoded) {
    EXPECT_EQ(std::string("\xFF\xD8\0", 3), ParseExifToolBinary("[{\n  \"ThumbnailImage\": \"base64:/9gA\"\n}]\n"));
    EXPECT_EQ("", ParseExifToolBinary("[{\n  \"SourceFile\": \"a.jpg\"\n}]\n"));
    EXPECT_EQ("", ParseExifToolBinary(""));
}
