// SPDX-License-Identifier: Apache-2.0
#include "tolbase/parser.h"

#include <clocale>
#include <cmath>
#include <limits>

#include "tests/support/tempdir.h"
#include "tolbase/exception.h"

TEST(Parser, Integers_GoThereAndBack) {
    EXPECT_EQ(wxString("-42"), ToString<int>(-42));
    EXPECT_EQ(-42, FromString<int>("-42"));
    EXPECT_EQ(wxString("9223372036854775807"), ToString<int64_t>(INT64_MAX));
    EXPECT_EQ(INT64_MIN, FromString<int64_t>("-9223372036854775808"));
    EXPECT_EQ(wxString("18446744073709551615"), ToString<uint64_t>(UINT64_MAX));
    EXPECT_EQ(UINT64_MAX, FromString<uint64_t>("18446744073709551615"));
    EXPECT_EQ(4294967295u, FromString<unsigned int>("4294967295"));
}

TEST(Parser, BlanksAndPlus_ArePassedOver) {
    EXPECT_EQ(5, FromString<int>(" 5\t"));
    EXPECT_EQ(5, FromString<int>("+5"));
    EXPECT_EQ(0, FromString<int>("+-5"));
    EXPECT_EQ(0, FromString<int>("+"));
}

TEST(Parser, TextThatIsNoNumber_GivesZero) {
    for (const char* text : {"", " ", "abc", "5x", "x5", "0x10", "5 6", "5.0", "--5", "2147483648", "-2147483649"})
        EXPECT_EQ(0, FromString<int>(text)) << text;
    EXPECT_EQ(0u, FromString<uint64_t>("-1"));
    EXPECT_EQ(0u, FromString<uint64_t>("18446744073709551616"));
    EXPECT_EQ(0.0, FromString<double>("1e999"));
    EXPECT_EQ(0.0, FromString<double>("2,5"));
}

TEST(Parser, Double_IsTheShortestText) {
    EXPECT_EQ(wxString("2"), ToString<double>(2.0));
    EXPECT_EQ(wxString("2.5"), ToString<double>(2.5));
    EXPECT_EQ(wxString("0.30000000000000004"), ToString<double>(0.1 + 0.2));
    EXPECT_EQ(wxString("-0.25"), ToString<double>(-0.25));
    EXPECT_EQ(0.1 + 0.2, FromString<double>("0.30000000000000004"));
}

TEST(Parser, DoubleThatIsNoFiniteNumber_GoesThereAndBack) {
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(wxString("inf"), ToString<double>(infinity));
    EXPECT_EQ(-infinity, FromString<double>("-inf"));
    EXPECT_EQ(wxString("nan"), ToString<double>(std::nan("")));
    EXPECT_TRUE(std::isnan(FromString<double>("nan")));
}

TEST(Parser, CommaLocale_ChangesNothing) {
    if (std::setlocale(LC_ALL, "de_DE.UTF-8") == nullptr) GTEST_SKIP() << "de_DE.UTF-8 is not installed";
    const wxString text = ToString<double>(2.5);
    const double number = FromString<double>("2.5");
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(wxString("2.5"), text);
    EXPECT_EQ(2.5, number);
}

TEST(Parser, Bool_HasItsWords) {
    EXPECT_EQ(wxString("true"), ToString<bool>(true));
    EXPECT_EQ(wxString("false"), ToString<bool>(false));
    for (const char* text : {"true", "TRUE", " True ", "1"}) EXPECT_TRUE(FromString<bool>(text)) << text;
    for (const char* text : {"false", "0", "", "yes", "2"}) EXPECT_FALSE(FromString<bool>(text)) << text;
    bool value = true;
    EXPECT_FALSE(TryFromString<bool>("yes", value));
    EXPECT_TRUE(value);
}

TEST(Parser, ParseNumber_ThrowsWithTheText) {
    EXPECT_EQ(12, ParseNumber<int>(" 12 "));
    EXPECT_DOUBLE_EQ(2.5, ParseNumber<double>("2.5"));
    for (const char* text : {"abc", "", "2.5", "99999999999"})
        EXPECT_THROW(ParseNumber<int>(text), TolException) << text;
    EXPECT_THROW(ParseNumber<double>("nan"), TolException);
    EXPECT_THROW(ParseNumber<double>("inf"), TolException);
    try {
        ParseNumber<int64_t>("abc");
        FAIL() << "nothing was thrown";
    } catch (const TolException& error) {
        EXPECT_EQ(82, error.GetCode());
        EXPECT_EQ(wxString("\"abc\" is not a number."), error.GetMessage());
    }
}

TEST(Parser, ParseNumberOfALongText_ShowsItsBeginning) {
    try {
        ParseNumber<int>(wxString('x', 100000));
        FAIL() << "nothing was thrown";
    } catch (const TolException& error) {
        EXPECT_GT(100u, error.GetMessage().length());
    }
}

TEST(Parser, Lists_AreCompactJson) {
    const VecString list = {"a", "b, c", wxString::FromUTF8("\xC3\xBC\"")};
    EXPECT_EQ(wxString::FromUTF8("[\"a\",\"b, c\",\"\xC3\xBC\\\"\"]"), ToString<VecString>(list));
    EXPECT_EQ(list, FromString<VecString>(ToString<VecString>(list)));
    EXPECT_EQ(VecString(), FromString<VecString>(ToString<VecString>(VecString())));
}

TEST(Parser, ListFromItsReport_IsCutAtCommaAndBlank) {
    EXPECT_EQ(wxString("a, b"), ToStringReport<VecString>({"a", "b"}));
    EXPECT_EQ((VecString{"a", "b"}), FromString<VecString>("a, b"));
    EXPECT_EQ((VecString{"a,b"}), FromString<VecString>("a,b"));
    EXPECT_EQ((VecString{"[x"}), FromString<VecString>("[x"));
    EXPECT_TRUE(FromString<VecString>("").empty());
}

TEST(Parser, Tables_GoThereAndBack) {
    const VecVecString table = {{"a", "b"}, {}, {"", "c"}};
    EXPECT_EQ(wxString("[[\"a\",\"b\"],[],[\"\",\"c\"]]"), ToString<VecVecString>(table));
    EXPECT_EQ(table, FromString<VecVecString>("[[\"a\",\"b\"],[],[\"\",\"c\"]]"));
    EXPECT_EQ(table, FromJson<VecVecString>(ToJson<VecVecString>(table)));
    EXPECT_EQ(wxString("a, b\n\n, c"), ToStringReport<VecVecString>(table));
    EXPECT_TRUE(FromString<VecVecString>("no table").empty());
}

TEST(Parser, Sizes_HaveAnX) {
    EXPECT_EQ(wxString("4000x3000"), ToString<wxSize>(wxSize(4000, 3000)));
    EXPECT_EQ(wxSize(4000, 3000), FromString<wxSize>("4000x3000"));
    EXPECT_EQ(wxSize(4000, 3000), FromString<wxSize>("4000 x 3000"));
    for (const char* text : {"", "4000", "x", "4000x", "-1x5", "4x5x6"})
        EXPECT_EQ(wxSize(0, 0), FromString<wxSize>(text)) << text;
}

TEST(Parser, Maps_GoThereAndBack) {
    const TolStringMap map = {{"b", "2"}, {"a", "1"}};
    EXPECT_EQ(wxString("{\"a\":\"1\",\"b\":\"2\"}"), ToString<TolStringMap>(map));
    EXPECT_EQ(map, FromString<TolStringMap>("{\"b\":\"2\",\"a\":\"1\"}"));
    EXPECT_EQ(wxString("a: 1, b: 2"), ToStringReport<TolStringMap>(map));
}

TEST(Parser, JsonOfAnotherKind_IsRefused) {
    int number = 7;
    EXPECT_FALSE(TryFromJson<int>(wxJSONValue(true), number));
    EXPECT_FALSE(TryFromJson<int>(wxJSONValue(), number));
    EXPECT_FALSE(TryFromJson<int>(wxJSONValue(2.5), number));
    EXPECT_FALSE(TryFromJson<int>(wxJSONValue(INT64_C(5000000000)), number));
    EXPECT_FALSE(TryFromJson<int>(wxJSONValue("seven"), number));
    EXPECT_EQ(7, number);
    wxString text = "kept";
    EXPECT_FALSE(TryFromJson<wxString>(wxJSONValue(1), text));
    EXPECT_EQ(wxString("kept"), text);
    VecString list;
    EXPECT_FALSE(TryFromJson<VecString>(wxJSONValue("x"), list));
}

TEST(Parser, JsonNumbers_MayStandAsText) {
    EXPECT_EQ(12, FromJson<int>(wxJSONValue("12")));
    EXPECT_EQ(12, FromJson<int>(wxJSONValue(12.0)));
    EXPECT_DOUBLE_EQ(2.5, FromJson<double>(wxJSONValue("2.5")));
    EXPECT_DOUBLE_EQ(2.0, FromJson<double>(wxJSONValue(2)));
    EXPECT_TRUE(FromJson<bool>(wxJSONValue("true")));
    EXPECT_EQ(INT64_C(10000000000), FromJson<int64_t>(wxJSONValue("10000000000")));
}

TEST(Parser, TextFromJson_TakesWhatIsThere) {
    EXPECT_EQ(wxString("5"), FromJson<wxString>(wxJSONValue(5)));
    EXPECT_EQ(wxString(), FromJson<wxString>(wxJSONValue(wxJSONTYPE_INVALID)));
    EXPECT_EQ((VecString{"x"}), FromJson<VecString>(wxJSONValue("x")));
    EXPECT_TRUE(FromJson<VecString>(wxJSONValue()).empty());
}
