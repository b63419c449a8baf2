// SPDX-License-Identifier: Apache-2.0
#include <wx/jsonval.h>

#include <climits>

#include "tests/support/tempdir.h"

TEST(JsonValue, Default_IsNull) {
    const wxJSONValue value;
    EXPECT_EQ(wxJSONTYPE_NULL, value.GetType());
    EXPECT_TRUE(value.IsNull());
    EXPECT_TRUE(value.IsValid());
    EXPECT_EQ(-1, value.Size());
}

TEST(JsonValue, MadeByType_IsAnEmptyOne) {
    EXPECT_EQ(0, wxJSONValue(wxJSONTYPE_ARRAY).Size());
    EXPECT_EQ(0, wxJSONValue(wxJSONTYPE_OBJECT).Size());
    EXPECT_EQ(wxString(), wxJSONValue(wxJSONTYPE_STRING).AsString());
    EXPECT_FALSE(wxJSONValue(wxJSONTYPE_INVALID).IsValid());
    EXPECT_EQ(wxString("0"), wxJSONValue(wxJSONTYPE_INT).AsString());
}

TEST(JsonValue, CString_IsATextAndNoTruthValue) {
    EXPECT_TRUE(wxJSONValue("a").IsString());
    EXPECT_TRUE(wxJSONValue(L"a").IsString());
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC"), wxJSONValue("\xC3\xBC").AsString());
    EXPECT_EQ(wxString(), wxJSONValue(static_cast<const char*>(nullptr)).AsString());
}

TEST(JsonValue, Types_TellWhatTheNumberFits) {
    EXPECT_EQ(wxJSONTYPE_INT, wxJSONValue(7).GetType());
    EXPECT_EQ(wxJSONTYPE_INT64, wxJSONValue(INT64_C(5000000000)).GetType());
    EXPECT_EQ(wxJSONTYPE_UINT64, wxJSONValue(UINT64_MAX).GetType());
    EXPECT_FALSE(wxJSONValue(INT64_C(5000000000)).IsInt());
    EXPECT_TRUE(wxJSONValue(INT64_C(5000000000)).IsInt64());
    EXPECT_FALSE(wxJSONValue(UINT64_MAX).IsInt64());
    EXPECT_FALSE(wxJSONValue(-1).IsUInt());
    EXPECT_TRUE(wxJSONValue(40000).IsUShort());
    EXPECT_FALSE(wxJSONValue(40000).IsShort());
}

TEST(JsonValue, AsString_OfNumbersGivesTheirDigits) {
    EXPECT_EQ(wxString("-12"), wxJSONValue(-12).AsString());
    EXPECT_EQ(wxString("9223372036854775807"), wxJSONValue(INT64_MAX).AsString());
    EXPECT_EQ(wxString("18446744073709551615"), wxJSONValue(UINT64_MAX).AsString());
    EXPECT_EQ(wxString("2.5"), wxJSONValue(2.5).AsString());
    EXPECT_EQ(wxString("45"), wxJSONValue(45.0).AsString());
    EXPECT_EQ(wxString("true"), wxJSONValue(true).AsString());
    EXPECT_EQ(wxString("null"), wxJSONValue().AsString());
    EXPECT_EQ(wxString(), wxJSONValue(wxJSONTYPE_INVALID).AsString());
}

TEST(JsonValue, AsString_OfAListIsItsCompactText) {
    wxJSONValue list(wxJSONTYPE_ARRAY);
    list.Append("a");
    list.Append(1);
    EXPECT_EQ(wxString("[\"a\",1]"), list.AsString());
}

TEST(JsonValue, NumberThatDoesNotFit_ReadsAsZero) {
    EXPECT_EQ(0, wxJSONValue(INT64_C(5000000000)).AsInt());
    EXPECT_EQ(0u, wxJSONValue(-1).AsUInt());
    EXPECT_EQ(0, wxJSONValue(1e300).AsInt64());
    EXPECT_EQ(0, wxJSONValue(9223372036854775808.0).AsInt64());
    EXPECT_EQ(INT64_MIN, wxJSONValue(-9223372036854775808.0).AsInt64());
    EXPECT_EQ(0, wxJSONValue(UINT64_MAX).AsInt64());
}

TEST(JsonValue, Numbers_Convert) {
    EXPECT_EQ(2, wxJSONValue(2.9).AsInt());
    EXPECT_EQ(-2, wxJSONValue(-2.9).AsInt());
    EXPECT_EQ(12, wxJSONValue("12").AsInt());
    EXPECT_EQ(0, wxJSONValue("twelve").AsInt());
    EXPECT_EQ(1, wxJSONValue(true).AsInt());
    EXPECT_DOUBLE_EQ(2.5, wxJSONValue("2.5").AsDouble());
    EXPECT_DOUBLE_EQ(7.0, wxJSONValue(7).AsDouble());
    EXPECT_DOUBLE_EQ(0.0, wxJSONValue("nan").AsDouble());
}

TEST(JsonValue, AsBool_OfTextsAndNumbers) {
    EXPECT_TRUE(wxJSONValue("true").AsBool());
    EXPECT_TRUE(wxJSONValue("TRUE").AsBool());
    EXPECT_FALSE(wxJSONValue("yes").AsBool());
    EXPECT_TRUE(wxJSONValue(1).AsBool());
    EXPECT_FALSE(wxJSONValue(0).AsBool());
}

TEST(JsonValue, Members_KeepTheOrderOfInsertion) {
    wxJSONValue object;
    object["zulu"] = 1;
    object["alpha"] = 2;
    object["mike"] = 3;
    object["alpha"] = 4;
    const wxArrayString names = object.GetMemberNames();
    ASSERT_EQ(3u, names.size());
    EXPECT_EQ(wxString("zulu"), names[0]);
    EXPECT_EQ(wxString("alpha"), names[1]);
    EXPECT_EQ(wxString("mike"), names[2]);
    EXPECT_EQ(4, object["alpha"].AsInt());
}

TEST(JsonValue, ManyMembers_AreFoundAfterRemoval) {
    wxJSONValue object;
    for (int i = 0; i < 100; ++i) object[wxString::Format("k%d", i)] = i;
    EXPECT_TRUE(object.Remove("k50"));
    EXPECT_FALSE(object.Remove("k50"));
    EXPECT_EQ(99, object.Size());
    EXPECT_EQ(99, object["k99"].AsInt());
    EXPECT_EQ(51, object["k51"].AsInt());
    EXPECT_FALSE(object.HasMember("k50"));
}

TEST(JsonValue, ConstReading_MakesNothing) {
    wxJSONValue object;
    object["a"] = 1;
    const wxJSONValue& constant = object;
    EXPECT_FALSE(constant["b"].IsValid());
    EXPECT_FALSE(constant.ItemAt("b").IsValid());
    EXPECT_FALSE(constant.ItemAt(3u).IsValid());
    EXPECT_FALSE(constant["b"]["c"].IsValid());
    EXPECT_EQ(1, object.Size());
}

TEST(JsonValue, Index_FillsAnArrayWithNulls) {
    wxJSONValue array;
    array[2u] = "x";
    EXPECT_EQ(3, array.Size());
    EXPECT_TRUE(array[0u].IsNull());
    EXPECT_TRUE(array.HasMember(2u));
    EXPECT_FALSE(array.HasMember(3u));
}

TEST(JsonValue, Copy_IsIndependent) {
    wxJSONValue original;
    original["a"]["b"].Append(1);
    wxJSONValue copy(original);
    copy["a"]["b"].Append(2);
    EXPECT_EQ(1, original["a"]["b"].Size());
    EXPECT_EQ(2, copy["a"]["b"].Size());
}

TEST(JsonValue, PartOfItself_CanBeAssignedAndAppended) {
    wxJSONValue value;
    value["a"]["b"] = 7;
    value = value["a"];
    EXPECT_EQ(7, value["b"].AsInt());
    wxJSONValue list;
    list.Append(1);
    list.Append(list);
    EXPECT_EQ(wxString("[1,[1]]"), list.AsString());
}

TEST(JsonValue, MovedFrom_IsNull) {
    wxJSONValue value("x");
    const wxJSONValue taken(std::move(value));
    EXPECT_TRUE(value.IsNull());  // NOLINT(bugprone-use-after-move): what is tested
    EXPECT_EQ(wxString("x"), taken.AsString());
}

TEST(JsonValue, Get_GivesTheDefaultForAMissingMember) {
    wxJSONValue object;
    object["a"] = 1;
    EXPECT_EQ(1, object.Get("a", 9).AsInt());
    EXPECT_EQ(9, object.Get("b", 9).AsInt());
}

TEST(JsonValue, Remove_OfAnElement) {
    wxJSONValue list;
    for (const int number : {1, 2, 3}) list.Append(number);
    EXPECT_TRUE(list.Remove(1));
    EXPECT_FALSE(list.Remove(2));
    EXPECT_FALSE(list.Remove(-1));
    EXPECT_EQ(wxString("[1,3]"), list.AsString());
}

TEST(JsonValue, CatAndClear) {
    wxJSONValue text("a");
    EXPECT_TRUE(text.Cat("b"));
    EXPECT_EQ(wxString("ab"), text.AsString());
    EXPECT_FALSE(wxJSONValue(1).Cat("b"));
    wxJSONValue list;
    list.Append(1);
    list.Clear();
    EXPECT_TRUE(list.IsArray());
    EXPECT_EQ(0, list.Size());
}

TEST(JsonValue, IsSameAs_PassesOverTheOrderOfMembers) {
    wxJSONValue left;
    left["a"] = 1;
    left["b"].Append("x");
    wxJSONValue right;
    right["b"].Append("x");
    right["a"] = 1u;
    EXPECT_TRUE(left.IsSameAs(right));
    right["a"] = 2;
    EXPECT_FALSE(left.IsSameAs(right));
    EXPECT_FALSE(wxJSONValue("1").IsSameAs(wxJSONValue(1)));
    EXPECT_FALSE(wxJSONValue(1.0).IsSameAs(wxJSONValue(1)));
}
