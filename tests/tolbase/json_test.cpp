// SPDX-License-Identifier: Apache-2.0
#include "tolbase/json.h"

#include <sys/stat.h>

#include "tests/support/tempdir.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/jsonobject.h"
#include "tolbase/limits.h"

namespace {

class Sample : public JsonObject {
public:
    Sample() : JsonObject("Sample") {}
    wxJSONValue WriteToJson() const override {
        wxJSONValue value;
        value["Zulu"] = text;
        value["Alpha"] = 12;
        return value;
    }
    void ReadFromJson(const wxJSONValue& value) override { text = value["Zulu"].AsString(); }

    wxString text;
};

wxString MessageOf(const std::function<void()>& work) {
    try {
        work();
    } catch (const TolException& error) {
        EXPECT_EQ(82, error.GetCode());
        return error.GetMessage();
    }
    return wxString();
}

}  // namespace

TEST(Json, WhatCannotBeParsed_Throws) {
    for (const char* text : {"", "]]] no JSON at all", "{\"a\": ?}", "[1] x"})
        EXPECT_THROW(JsonFromText(text), TolException) << text;
    EXPECT_TRUE(MessageOf([] { JsonFromText("[\n?]"); }).Contains("line 2"));
}

TEST(Json, File_IsReadAsUtf8) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.json", "\xEF\xBB\xBF{\"a\": \"\xC3\xBC\"}");
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC"), JsonFromFile(dir / "a.json")["a"].AsString());
}

TEST(Json, FileThatCannotBeRead_IsNamed) {
    const support::TempDir dir;
    EXPECT_EQ((dir / "none.json") + ": can't be read", MessageOf([&] { JsonFromFile(dir / "none.json"); }));
    EXPECT_THROW(JsonFromFile(dir.Path()), TolException);
    support::WriteBytes(dir / "bad.json", "[\"\xFF\"]");
    EXPECT_TRUE(MessageOf([&] { JsonFromFile(dir / "bad.json"); }).StartsWith(dir / "bad.json"));
}

TEST(Json, Limits_AreHeld) {
    SetTolLimit(TolLimit::JsonDepth, 2);
    SetTolLimit(TolLimit::JsonBytes, 20);
    EXPECT_THROW(JsonFromText("[[[]]]"), TolException);
    EXPECT_THROW(JsonFromText("[1,2,3,4,5,6,7,8,9,10]"), TolException);
    EXPECT_EQ(1, JsonFromText("[[]]").Size());
    ResetTolLimits();
    EXPECT_EQ(1, JsonFromText("[[[]]]").Size());
}

TEST(Json, HugeDepthLimit_DoesNotOverflowTheStack) {
    SetTolLimit(TolLimit::JsonDepth, 100000000);
    EXPECT_THROW(JsonFromText(wxString('[', 1000000)), TolException);
    ResetTolLimits();
}

TEST(Json, Text_IsCompactOrStyled) {
    const wxJSONValue value = JsonFromText("{\"a\": [1, 2]}");
    EXPECT_EQ(wxString("{\"a\":[1,2]}"), JsonToText(value, 0));
    EXPECT_EQ(wxString("{\n  \"a\" : [\n    1,\n    2\n  ]\n}"), JsonToText(value, 2));
}

TEST(JsonObject, File_IsStyledInTheOrderOfInsertion) {
    const support::TempDir dir;
    Sample sample;
    sample.text = wxString::FromUTF8("\xC3\xBC");
    sample.Write(dir / "s.json");
    EXPECT_EQ(std::string("{\n   \"Zulu\" : \"\xC3\xBC\",\n   \"Alpha\" : 12\n}\n"),
              support::ReadBytes(dir / "s.json"));
    Sample read;
    read.Read(dir / "s.json");
    EXPECT_EQ(sample.text, read.text);
}

TEST(JsonObject, FailedWrite_Throws) {
    const support::TempDir dir;
    EXPECT_EQ((dir / "none/s.json") + ": can't be written", MessageOf([&] { Sample().Write(dir / "none/s.json"); }));
    support::WriteBytes(dir / "occupied", "x");
    EXPECT_THROW(Sample().Write(dir / "occupied/s.json"), TolException);
}

TEST(JsonObject, Base_HoldsNothingButItsName) {
    JsonObject object("Name");
    EXPECT_EQ(wxString("Name"), object.GetJsonName());
    EXPECT_TRUE(object.WriteToJson().IsNull());
    EXPECT_NO_THROW(object.ReadFromJson(wxJSONValue(1)));
    const JsonObject copy(object);
    EXPECT_EQ(wxString("Name"), copy.GetJsonName());
}
