// SPDX-License-Identifier: Apache-2.0
#include "tolbase/jsonalg.h"

#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "tests/support/tempdir.h"
#include "tolbase/text.h"

namespace {

using Json = nlohmann::json;
using Report = TolJsonAlg::GriffeyeOrvBatchReport;
using AnalysisRows = std::map<wxString, std::tuple<bool, wxString, wxString>>;

Json Parse(const wxString& text) {
    return Json::parse(TolToUtf8(text));
}

// A row as the engine has it: a class on top of the tuple.
struct DerivedRow : std::tuple<bool, wxString, wxString> {
    using std::tuple<bool, wxString, wxString>::tuple;
};

}  // namespace

TEST(PluginJson, EmptyMaps_GiveAnEmptyArray) {
    EXPECT_EQ("[]\n", TolJsonAlg::GetGriffeyeOrvBatchAsJSONString({}));
    EXPECT_EQ("[]\n", TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(AnalysisRows()));
}

TEST(PluginJson, Batch_HasTheDocumentedLayout) {
    EXPECT_EQ(
        "[\n"
        "{\"path\": \"/x/a.jpg\", \"identifier\": \"7\", \"severity\": 0, \"text\": \"\"},\n"
        "{\"path\": \"/x/b.jpg\", \"identifier\": \"8\", \"severity\": 2, \"text\": \"Noise flagged a warning\\n\"}\n"
        "]\n",
        TolJsonAlg::GetGriffeyeOrvBatchAsJSONString(
            {{"/x/b.jpg", Report{"Noise flagged a warning\n", 2, "8"}}, {"/x/a.jpg", Report{"", 0, "7"}}}));
}

TEST(PluginJson, Analysis_HasTheDocumentedLayout) {
    EXPECT_EQ(
        "[\n"
        "{\"path\": \"/x/a.jpg\", \"identifier\": \"7\", \"no_warnings\": true, \"text\": \"Warnings: 0\\r\\n\"},\n"
        "{\"path\": \"/x/b.jpg\", \"identifier\": \"8\", \"no_warnings\": false, \"text\": \"t\"}\n"
        "]\n",
        TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(
            AnalysisRows{{"/x/a.jpg", {true, "7", "Warnings: 0\r\n"}}, {"/x/b.jpg", {false, "8", "t"}}}));
}

TEST(PluginJson, RowsThatDeriveFromTheTuple_GiveTheSame) {
    const std::map<wxString, DerivedRow> derived = {{"/x/a.jpg", DerivedRow(true, "7", "t")}};
    EXPECT_EQ(TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(AnalysisRows{{"/x/a.jpg", {true, "7", "t"}}}),
              TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(derived));
}

TEST(PluginJson, QuotesBackslashesAndEveryControlCharacter_ComeBack) {
    wxString text = "\"\\/";
    for (int code = 1; code < 0x20; ++code) text += wxUniChar(code);
    text += wxUniChar(0x7F);
    text += wxUniChar(0x2028);
    const Json json = Parse(TolJsonAlg::GetGriffeyeOrvBatchAsJSONString({{text, Report{text, 1, text}}}));
    ASSERT_EQ(1U, json.size());
    for (const char* key : {"path", "identifier", "text"}) EXPECT_EQ(TolToUtf8(text), json[0][key]) << key;
}

TEST(PluginJson, NullCharacter_IsNoEnd) {
    const wxString text = wxString("a") + wxUniChar(0) + "b";
    const Json json = Parse(TolJsonAlg::GetGriffeyeOrvBatchAsJSONString({{"p", Report{text, 0, ""}}}));
    EXPECT_EQ(std::string("a\0b", 3), json[0]["text"]);
}

TEST(PluginJson, AnyScript_StaysAsItIs) {
    const wxString text = wxString::FromUTF8("Straße מסמך 写真 😀");
    const wxString json = TolJsonAlg::GetGriffeyeOrvBatchAsJSONString({{"p", Report{text, 0, ""}}});
    EXPECT_TRUE(json.Contains(text));
    EXPECT_EQ(TolToUtf8(text), Parse(json)[0]["text"]);
}

TEST(PluginJson, HalfOfASurrogatePair_BecomesAReplacement) {
    for (const unsigned code : {0xD800U, 0xDBFFU, 0xDC00U, 0xDFFFU}) {
        const wxString text = wxString("a") + wxString(static_cast<wchar_t>(code)) + "b";
        const AnalysisRows rows = {{"p", {true, "i", text}}};
        EXPECT_EQ(
            "a\xEF\xBF\xBD"
            "b",
            Parse(TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(rows))[0]["text"]);
    }
}

TEST(PluginJson, Marker_IsNotEmpty) {
    EXPECT_EQ("Orvelle report: ", TolJsonAlg::GriffeyeOrvReportMarker);
}
