// SPDX-License-Identifier: Apache-2.0
#include <wx/jsonreader.h>
#include <wx/jsonwriter.h>
#include <wx/mstream.h>

#include <clocale>
#include <cmath>
#include <limits>

#include "tests/support/tempdir.h"

namespace {

wxString Write(const wxJSONValue& value, int style = wxJSONWRITER_NONE, int indent = 0, int step = 3) {
    wxString text;
    wxJSONWriter(style, indent, step).Write(value, text);
    return text;
}

wxJSONValue Sample() {
    wxJSONValue value;
    value["b"] = "x";
    value["a"].Append(1);
    value["a"].Append(2.5);
    value["e"] = wxJSONValue(wxJSONTYPE_OBJECT);
    return value;
}

}  // namespace

TEST(JsonWriter, Compact_IsOneLine) {
    EXPECT_EQ(wxString("{\"b\":\"x\",\"a\":[1,2.5],\"e\":{}}"), Write(Sample()));
}

TEST(JsonWriter, Styled_HasOneItemALine) {
    EXPECT_EQ(wxString("{\n   \"b\" : \"x\",\n   \"a\" : [\n      1,\n      2.5\n   ],\n   \"e\" : {}\n}"),
              Write(Sample(), wxJSONWRITER_STYLED));
}

TEST(JsonWriter, IndentAndStep_AreBlanks) {
    wxJSONValue value;
    value.Append(1);
    EXPECT_EQ(wxString("  [\n    1\n  ]"), Write(value, wxJSONWRITER_STYLED, 2, 2));
    EXPECT_EQ(wxString("[\n\t1\n]"), Write(value, wxJSONWRITER_STYLED | wxJSONWRITER_TAB_INDENT));
    EXPECT_EQ(wxString("[\n1\n]"), Write(value, wxJSONWRITER_STYLED | wxJSONWRITER_NO_INDENTATION));
    EXPECT_EQ(wxString("[ 1 ]"), Write(value, wxJSONWRITER_STYLED | wxJSONWRITER_NO_LINEFEEDS));
}

TEST(JsonWriter, Texts_AreEscaped) {
    EXPECT_EQ(wxString("\"\\\"\\\\\\b\\f\\n\\r\\t\\u0001\\u007f/\""), Write(wxJSONValue("\"\\\b\f\n\r\t\x01\x7F/")));
    EXPECT_EQ(wxString("\"a\\/b\""), Write(wxJSONValue("a/b"), wxJSONWRITER_ESCAPE_SOLIDUS));
}

TEST(JsonWriter, WholeDouble_StaysADouble) {
    EXPECT_EQ(wxString("45.0"), Write(wxJSONValue(45.0)));
    EXPECT_EQ(wxString("1e+300"), Write(wxJSONValue(1e300)));
    EXPECT_EQ(wxString("-0.0"), Write(wxJSONValue(-0.0)));
}

TEST(JsonWriter, WhatJsonCannotHold_IsNull) {
    EXPECT_EQ(wxString("null"), Write(wxJSONValue(std::numeric_limits<double>::quiet_NaN())));
    EXPECT_EQ(wxString("null"), Write(wxJSONValue(std::numeric_limits<double>::infinity())));
    EXPECT_EQ(wxString("null"), Write(wxJSONValue(wxJSONTYPE_INVALID)));
}

TEST(JsonWriter, Stream_GetsUtf8) {
    wxMemoryOutputStream stream;
    wxJSONWriter(wxJSONWRITER_NONE).Write(wxJSONValue("\xC3\xBC"), stream);
    char bytes[8] = {};
    ASSERT_EQ(4u, stream.CopyTo(bytes, sizeof bytes));
    EXPECT_EQ(std::string("\"\xC3\xBC\""), bytes);
}

TEST(JsonWriter, RoundTrip_KeepsEveryDouble) {
    for (const double number : {0.1, 1.0 / 3.0, 5e-324, 1.7976931348623157e308, -2.2250738585072014e-308}) {
        wxJSONReader reader;
        wxJSONValue value;
        ASSERT_EQ(0, reader.Parse(Write(wxJSONValue(number)), &value));
        EXPECT_EQ(number, value.AsDouble());
        EXPECT_TRUE(value.IsDouble());
    }
}

TEST(JsonWriter, CommaLocale_WritesPoints) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    const wxString text = Write(wxJSONValue(2.5));
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(wxString("2.5"), text);
}
