// SPDX-License-Identifier: Apache-2.0
#include <wx/jsonreader.h>
#include <wx/mstream.h>

#include <clocale>

#include "tests/support/tempdir.h"

namespace {

struct Result {
    int errors;
    wxJSONValue value;
};

Result Read(const std::string& text, int flags = 29) {
    wxJSONReader reader(flags, 30);
    Result result{};
    result.errors = reader.ParseUtf8(text, &result.value);
    return result;
}

std::string Nested(std::size_t depth) {
    return std::string(depth, '[') + std::string(depth, ']');
}

}  // namespace

TEST(JsonReader, StrictText_GivesItsValue) {
    const Result read = Read("{\"a\": [1, -2, 2.5, true, false, null, \"x\"]}", wxJSONREADER_STRICT);
    EXPECT_EQ(0, read.errors);
    const wxJSONValue& list = read.value["a"];
    ASSERT_EQ(7, list.Size());
    EXPECT_EQ(1, list[0u].AsInt());
    EXPECT_EQ(-2, list[1u].AsInt());
    EXPECT_TRUE(list[2u].IsDouble());
    EXPECT_TRUE(list[3u].AsBool());
    EXPECT_TRUE(list[4u].IsBool());
    EXPECT_TRUE(list[5u].IsNull());
    EXPECT_EQ(wxString("x"), list[6u].AsString());
}

TEST(JsonReader, SixtyFourBits_AreKept) {
    const Result read = Read("[9223372036854775807, -9223372036854775808, 18446744073709551615]");
    EXPECT_EQ(INT64_MAX, read.value[0u].AsInt64());
    EXPECT_EQ(INT64_MIN, read.value[1u].AsInt64());
    EXPECT_EQ(UINT64_MAX, read.value[2u].AsUInt64());
}

TEST(JsonReader, NumberTooLarge_IsAnError) {
    EXPECT_LT(0, Read("[1e999]").errors);
}

TEST(JsonReader, IntegerBeyond64Bits_BecomesADouble) {
    const Result read = Read("[18446744073709551616]");
    EXPECT_EQ(0, read.errors);
    EXPECT_TRUE(read.value[0u].IsDouble());
    EXPECT_DOUBLE_EQ(18446744073709551616.0, read.value[0u].AsDouble());
}

TEST(JsonReader, Escapes_AreResolved) {
    const Result read = Read("[\"\\u00fc \\ud83d\\ude00 \\n\\t\\\\\\\"\\/\"]");
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC \xF0\x9F\x98\x80 \n\t\\\"/"), read.value[0u].AsString());
}

TEST(JsonReader, ZeroCharacter_StaysInTheText) {
    EXPECT_EQ(3u, Read("[\"a\\u0000b\"]").value[0u].AsString().length());
}

TEST(JsonReader, DuplicateKey_TheLastOneCounts) {
    const Result read = Read("{\"a\": 1, \"b\": 2, \"a\": 3}");
    EXPECT_EQ(2, read.value.Size());
    EXPECT_EQ(3, read.value["a"].AsInt());
}

TEST(JsonReader, Comments_AreTolerated) {
    const Result read = Read("{ /* one */ \"a\": 1, // two\n \"b\": 2 }");
    EXPECT_EQ(0, read.errors);
    EXPECT_EQ(2, read.value["b"].AsInt());
    EXPECT_LT(0, Read("[1 /* one */]", wxJSONREADER_STRICT).errors);
}

TEST(JsonReader, CaseOfLiterals_IsTolerated) {
    const Result read = Read("[True, FALSE, Null, \"True\"]");
    EXPECT_EQ(0, read.errors);
    EXPECT_EQ(wxString("[true,false,null,\"True\"]"), read.value.AsString());
    EXPECT_LT(0, Read("[True]", wxJSONREADER_STRICT).errors);
}

TEST(JsonReader, MissingCommas_AreTolerated) {
    EXPECT_EQ(wxString("[1,2,[3],{\"a\":4,\"b\":5}]"), Read("[1 2 [3] {\"a\": 4 \"b\": 5}]").value.AsString());
    EXPECT_EQ(wxString("{\"a\":\"x\",\"b\":\"y\"}"), Read("{\"a\": \"x\"\n \"b\": \"y\"}").value.AsString());
    EXPECT_LT(0, Read("[1 2]", wxJSONREADER_ALLOW_COMMENTS).errors);
}

TEST(JsonReader, CommaTooMany_IsTolerated) {
    EXPECT_EQ(wxString("[1,2]"), Read("[1, 2, ]").value.AsString());
    EXPECT_EQ(wxString("{\"a\":1}"), Read("{\"a\": 1,}").value.AsString());
    EXPECT_LT(0, Read("[1,, 2]").errors);
    EXPECT_LT(0, Read("[,1]").errors);
}

TEST(JsonReader, MissingClosingBrackets_AreTolerated) {
    const Result read = Read("{\"a\": [1, {\"b\": 2");
    EXPECT_EQ(0, read.errors);
    EXPECT_EQ(wxString("{\"a\":[1,{\"b\":2}]}"), read.value.AsString());
}

TEST(JsonReader, MissingValue_IsAnError) {
    EXPECT_LT(0, Read("{\"a\":").errors);
    EXPECT_LT(0, Read("{\"a\"").errors);
    EXPECT_LT(0, Read("{\"a\": 1]").errors);
}

TEST(JsonReader, TextInSeveralPieces_IsJoined) {
    const Result read = Read("{\"a\": \"one \"\n  \"two\", \"b\": [\"x\" /* and */ \"y\"]}");
    EXPECT_EQ(0, read.errors);
    EXPECT_EQ(wxString("one two"), read.value["a"].AsString());
    EXPECT_EQ(wxString("[\"xy\"]"), read.value["b"].AsString());
}

TEST(JsonReader, LineEndInsideAText_IsTolerated) {
    EXPECT_EQ(wxString("a\nb\tc"), Read("[\"a\nb\tc\"]").value[0u].AsString());
    EXPECT_LT(0, Read("[\"a\nb\"]", wxJSONREADER_STRICT).errors);
}

TEST(JsonReader, WhatIsTolerated_IsAWarning) {
    wxJSONReader reader;
    wxJSONValue value;
    EXPECT_EQ(0, reader.Parse("[1,\n2,\n]", &value));
    ASSERT_EQ(1, reader.GetWarningCount());
    EXPECT_EQ(wxString("line 3: a comma too many"), reader.GetWarnings()[0]);
}

TEST(JsonReader, BrokenText_KeepsWhatStandsBefore) {
    const Result read = Read("{\"a\": 1, \"b\": [2, ?]}");
    EXPECT_LT(0, read.errors);
    EXPECT_EQ(1, read.value["a"].AsInt());
    EXPECT_EQ(2, read.value["b"][0u].AsInt());
}

TEST(JsonReader, Error_TellsLineAndColumn) {
    wxJSONReader reader;
    wxJSONValue value;
    EXPECT_EQ(1, reader.Parse("{\n \"a\": ?}", &value));
    EXPECT_TRUE(reader.GetErrors()[0].Contains("line 2")) << reader.GetErrors()[0];
}

TEST(JsonReader, NoJsonAtAll_IsAnError) {
    for (const char* text : {"", "   ", "]]]", "]]] no JSON at all", "hello", "\"open", "[1] 2", "{1: 2}", "/* open"})
        EXPECT_LT(0, Read(text).errors) << text;
}

TEST(JsonReader, ErrorsAgain_AreForgottenByTheNextParse) {
    wxJSONReader reader;
    wxJSONValue value;
    EXPECT_EQ(1, reader.Parse("?", &value));
    EXPECT_EQ(0, reader.Parse("[]", &value));
    EXPECT_EQ(0, reader.GetErrorCount());
}

TEST(JsonReader, NullValue_OnlyChecks) {
    wxJSONReader reader;
    EXPECT_EQ(0, reader.Parse("[[1]]", nullptr));
    EXPECT_EQ(2, reader.GetDepth());
    EXPECT_LT(0, reader.Parse("[[1", nullptr) + reader.GetWarningCount());
}

TEST(JsonReader, Nesting_IsBounded) {
    EXPECT_EQ(0, Read(Nested(wxJSON_MAX_DEPTH)).errors);
    EXPECT_EQ(1, Read(Nested(wxJSON_MAX_DEPTH + 1)).errors);
    EXPECT_EQ(1, Read(std::string(5000000, '[')).errors);
    wxJSONReader reader;
    reader.SetLimits(3, 100);
    EXPECT_EQ(1, reader.ParseUtf8("[[[[1]]]]", nullptr));
}

TEST(JsonReader, HardDepth_CanBeCopiedAndWritten) {
    wxJSONReader reader;
    reader.SetLimits(1000000, 1000000);
    wxJSONValue value;
    ASSERT_EQ(0, reader.ParseUtf8(Nested(wxJSON_HARD_DEPTH), &value));
    const wxJSONValue copy(value);
    EXPECT_EQ(2u * wxJSON_HARD_DEPTH, copy.AsString().length());
    EXPECT_EQ(1, reader.ParseUtf8(Nested(wxJSON_HARD_DEPTH + 1), &value));
}

TEST(JsonReader, LongText_IsRefused) {
    wxJSONReader reader;
    reader.SetLimits(10, 5);
    wxJSONValue value;
    EXPECT_EQ(1, reader.ParseUtf8("[1, 2, 3]", &value));
    EXPECT_EQ(0, reader.ParseUtf8("[1]", &value));
}

TEST(JsonReader, InvalidUtf8_IsAnError) {
    for (const char* bytes :
         {"[\"\xFF\"]", "[\"\xC3\"]", "[\"\xED\xA0\x80\"]", "[\"\xC0\xAF\"]", "[\"\xF5\x80\x80\x80\"]"})
        EXPECT_LT(0, Read(bytes).errors) << bytes;
}

TEST(JsonReader, ByteOrderMark_IsPassedOver) {
    EXPECT_EQ(wxString("[1]"), Read("\xEF\xBB\xBF[1]").value.AsString());
    EXPECT_EQ(wxString("[1,2]"), Read("\xEF\xBB\xBF[1 2]").value.AsString());
}

TEST(JsonReader, Stream_IsReadToItsEnd) {
    const std::string text = "[\"" + std::string(200000, 'x') + "\", \"\xC3\xBC\"]";
    wxMemoryInputStream stream(text.data(), text.size());
    wxJSONReader reader(29, 30);
    wxJSONValue value;
    EXPECT_EQ(0, reader.Parse(stream, &value));
    EXPECT_EQ(200000u, value[0u].AsString().length());
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC"), value[1u].AsString());
}

TEST(JsonReader, Latin1Stream_IsReadWhenTold) {
    const std::string text = "[\"\xFC\"]";
    wxMemoryInputStream stream(text.data(), text.size());
    wxJSONReader reader(29 | wxJSONREADER_NOUTF8_STREAM, 30);
    wxJSONValue value;
    EXPECT_EQ(0, reader.Parse(stream, &value));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC"), value[0u].AsString());
}

TEST(JsonReader, ManyMembers_TakeNoQuadraticTime) {
    std::string text = "{";
    for (int i = 0; i < 200000; ++i) text += (i == 0 ? "\"k" : ",\"k") + std::to_string(i) + "\":1";
    const Result read = Read(text + "}");
    EXPECT_EQ(200000, read.value.Size());
    EXPECT_EQ(1, read.value["k199999"].AsInt());
}

// Numbers once were cut at the point where the locale's decimal mark is a comma.
TEST(JsonReader, CommaLocale_ReadsPoints) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    const Result read = Read("[2.5]");
    std::setlocale(LC_ALL, "C");
    EXPECT_DOUBLE_EQ(2.5, read.value[0u].AsDouble());
}
