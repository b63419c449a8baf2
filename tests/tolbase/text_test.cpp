// SPDX-License-Identifier: Apache-2.0
#include "tolbase/text.h"

#include <stdexcept>
#include <thread>

#include "tests/support/tempdir.h"
#include "tolbase/exception.h"
#include "tolbase/namevaluedesc.h"
#include "tolbase/serializer.h"

TEST(Text, Trim_TakesBothEnds) {
    EXPECT_EQ(wxString("a b"), Trim("  \ta b\r\n "));
    EXPECT_EQ(wxString(), Trim(" \t\n"));
}

TEST(Text, Joined_WithoutSeparatorAtTheEnd) {
    EXPECT_EQ(wxString("a, , c"), CatVecString({"a", "", "c"}, ", "));
    EXPECT_EQ(wxString(), CatVecString({}, ","));
    EXPECT_EQ(wxString(",,"), CatVecString({"", "", ""}, ","));
    EXPECT_EQ(wxString("a;b\nc\n\nd"), CatVecVecString({{"a", "b"}, {"c"}, {}, {"d"}}, ";", "\n"));
}

TEST(Text, Tokens_AreThoseOfTheTokenizer) {
    EXPECT_EQ((VecString{"a", "b", "", "c"}), StringToVecString("a,b,,c", ",", wxTOKEN_DEFAULT, true));
    EXPECT_EQ((VecString{"a", "b"}), StringToVecString("  a   b ", " ", wxTOKEN_DEFAULT, true));
    EXPECT_EQ((VecString{" a", "b "}), StringToVecString(" a|b ", "|", wxTOKEN_DEFAULT, true));
    EXPECT_EQ((VecString{"a", "b"}), StringToVecString(" a|b ", "|", wxTOKEN_DEFAULT, false));
    EXPECT_TRUE(StringToVecString("", "|", wxTOKEN_DEFAULT, true).empty());
}

TEST(Text, Strings_StopAtTheFirstEmptyOne) {
    EXPECT_EQ((VecString{"Off", "On"}), Strings("Off", "On", "", "", "", "", "", "", "", ""));
    EXPECT_EQ((VecString{"Off"}), Strings("Off", "", "On", "", "", "", "", "", "", ""));
    EXPECT_EQ(10u, Strings("0", "1", "2", "3", "4", "5", "6", "7", "8", "9").size());
    EXPECT_TRUE(Strings("", "", "", "", "", "", "", "", "", "").empty());
}

TEST(Text, Html_IsEscaped) {
    EXPECT_EQ(wxString("&lt;a b=&quot;c&quot;&gt; &amp;lt; &#39;"), EscapeHtmlString("<a b=\"c\"> &lt; '"));
    EXPECT_EQ(wxString::FromUTF8("\xEF\xBF\xBD\xEF\xBF\xBD\n\t\xC3\xBC"),
              EscapeHtmlString(wxString::FromUTF8("\x01\x7F\n\t\xC3\xBC")));
}

TEST(Text, Url_IsPercentEncodedUtf8) {
    EXPECT_EQ(wxString("a%20b%26c%3Dd%3F%23%25%2F"), TolEscapeUrlString("a b&c=d?#%/"));
    EXPECT_EQ(wxString("AZaz09-_.~"), TolEscapeUrlString("AZaz09-_.~"));
    EXPECT_EQ(wxString("%C3%BC"), TolEscapeUrlString(wxString::FromUTF8("\xC3\xBC")));
    EXPECT_EQ(wxString("a%0D%0Ab"), TolEscapeUrlString("a\r\nb"));
}

TEST(Text, Utf8_NeverFails) {
    EXPECT_EQ(std::string("a\xC3\xBC\xE2\x82\xAC\xF0\x9F\x98\x80"), TolToUtf8(wxString(L"a\x00FC\x20AC\U0001F600")));
    EXPECT_EQ(std::string("a\xEF\xBF\xBD") + "b", TolToUtf8(wxString("a") + wxUniChar(0xD800) + "b"));
    EXPECT_EQ(wxString(L"a\x00FC"), TolFromUtf8("a\xC3\xBC"));
    EXPECT_EQ(wxString(L"a\x00FC"), TolFromUtf8("a\xFC"));
    EXPECT_EQ(wxString(), TolFromUtf8(""));
}

TEST(Message, Handler_GetsMessageAndTitle) {
    wxString got;
    TolSetMessageHandler([&](const wxString& message, const wxString& title) { got = title + "|" + message; });
    std::thread([] { TolMessageBox("Text", "Title"); }).join();
    TolSetMessageHandler(nullptr);
    EXPECT_EQ(wxString("Title|Text"), got);
}

TEST(Message, Default_WritesToTheErrorOutput) {
    TolSetMessageHandler(nullptr);
    testing::internal::CaptureStderr();
    TolMessageBox(wxString::FromUTF8("Text \xC3\xBC"), "Title");
    TolMessageBox("Text", "");
    EXPECT_EQ(std::string("Title: Text \xC3\xBC\nText\n"), testing::internal::GetCapturedStderr());
}

TEST(Message, HandlerThatThrows_FallsBackToTheErrorOutput) {
    TolSetMessageHandler([](const wxString&, const wxString&) { throw std::runtime_error("x"); });
    testing::internal::CaptureStderr();
    EXPECT_NO_THROW(TolMessageBox("Text", "Title"));
    EXPECT_EQ(std::string("Title: Text\n"), testing::internal::GetCapturedStderr());
    TolSetMessageHandler(nullptr);
}

TEST(Serializer, CaseBlanksUnderscoreAndDash_DoNotCount) {
    for (const char* name : {"Map Type", "map type", "MapType", "map_type", "MAP-TYPE", " Map  Type "})
        EXPECT_TRUE(Serializer::AreNamesEquivalent("Map Type", name)) << name;
    for (const char* name : {"Map Types", "", "Map", "Map.Type"})
        EXPECT_FALSE(Serializer::AreNamesEquivalent("Map Type", name)) << name;
    EXPECT_TRUE(Serializer::AreNamesEquivalent("", ""));
}

TEST(Exception, Copy_CarriesEverything) {
    const TolException first(L"file.cpp", 12, ExceptionGeneral, 82, wxString::FromUTF8("wrong \xC3\xBC"));
    const TolException copy(first);
    EXPECT_EQ(wxString("file.cpp"), copy.GetFile());
    EXPECT_EQ(12, copy.GetLine());
    EXPECT_EQ(82, copy.GetCode());
    EXPECT_EQ(ExceptionGeneral, copy.GetType());
    EXPECT_EQ(wxString::FromUTF8("wrong \xC3\xBC"), copy.GetMessage());
    EXPECT_STREQ("wrong \xC3\xBC", copy.what());
    EXPECT_STREQ("error 61", TolException("f", 1, ExceptionGeneral, 61, "").what());
}

TEST(NameValueDesc, Constructor_TakesNameValueDescription) {
    const NameValueDesc entry("n", "v", "d");
    EXPECT_EQ(wxString("n"), entry.Name);
    EXPECT_EQ(wxString("v"), entry.Value);
    EXPECT_EQ(wxString("d"), entry.Desc);
    EXPECT_EQ(wxString(), NameValueDesc().Name);
}
