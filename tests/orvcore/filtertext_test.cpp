// SPDX-License-Identifier: Apache-2.0
#include "orvcore/filtertext.h"

#include <wx/filefn.h>

#include <utility>

#include "tests/orvcore/catalogue.h"
#include "tests/orvcore/resultfilters.h"
#include "tolbase/exception.h"

using support::CustomFilter;
using support::ReadBytes;
using support::TextFilter;

namespace {

VecVecString const FourColumns = {{"Name", "Value", "Warnings", "x"}, {"a", "b", "!c", "d"}};

Parameter Table(VecVecString const& table) {
    Parameter parameter = CreateParameterTable("Table", "");
    parameter.Set(boost::any(table));
    return parameter;
}

// What a filter with these output parameters writes to a file of that name; "none" if it writes none.
std::string Written(VecParameter const& output, wxString const& name) {
    support::TempDir const dir;
    TextFilter filter("Filter");
    filter.Out() = output;
    filter.SaveOutputBase(dir / name);
    return wxFileExists(dir / name) ? ReadBytes(dir / name) : "none";
}

}  // namespace

TEST(FilterText, PlainText_HasThreeColumns) {
    EXPECT_EQ("Name Value Warnings \na    b     !c \n", Written({Table(FourColumns)}, "t.txt"));
}

TEST(FilterText, OtherEndings_ArePlainText) {
    for (char const* name : {"t.HTML", "t.TSV", "t.csv", "t.htm", "t"}) {
        EXPECT_EQ("Name Value Warnings \na    b     !c \n", Written({Table(FourColumns)}, name)) << name;
    }
}

TEST(FilterText, Tsv_IsSeparatedByTabs) {
    EXPECT_EQ("Name\tValue\tWarnings\na\tb\t!c", Written({Table(FourColumns)}, "t.tsv"));
}

TEST(FilterText, Html_IsAWholePageWithThreeColumns) {
    std::string const page = Written({Table(FourColumns)}, "t.html");
    EXPECT_EQ(0U, page.find("<!DOCTYPE html>"));
    EXPECT_NE(std::string::npos, page.find("style.css"));
    EXPECT_NE(std::string::npos, page.find("!c"));
    EXPECT_EQ(std::string::npos, page.find(">d<"));
    EXPECT_NE(std::string::npos, page.find("</html>"));
}

TEST(FilterText, HtmlCells_AreEscapedOnce) {
    std::string const page = Written({Table({{"<b>", "&"}})}, "t.html");
    EXPECT_NE(std::string::npos, page.find("&lt;b&gt;"));
    EXPECT_EQ(std::string::npos, page.find("&amp;lt;"));
}

TEST(FilterText, ColumnLimit_IsHalfTheFirstRowAndOne) {
    // One cell: 1; three cells: 2.
    EXPECT_EQ("a\nb", Written({Table({{"a"}, {"b", "c"}})}, "t.tsv"));
    EXPECT_EQ("a\tb\nd\te", Written({Table({{"a", "b", "c"}, {"d", "e", "f"}})}, "t.tsv"));
}

TEST(FilterText, TableWithoutRows_GivesAnEmptyFile) {
    EXPECT_EQ("", Written({Table({})}, "t.txt"));
}

TEST(FilterText, NoTableParameter_WritesNoFile) {
    EXPECT_EQ("none", Written({}, "t.txt"));
    EXPECT_EQ("none", Written({CreateParameterInt("n", "", 3)}, "t.txt"));
}

TEST(FilterText, SeveralTables_LeaveTheLast) {
    VecParameter const output = {Table({{"first"}}), CreateParameterInt("n", "", 3), Table({{"last"}})};
    EXPECT_EQ("last", Written(output, "t.tsv"));
}

TEST(FilterText, TableAsText_IsConverted) {
    Parameter parameter = CreateParameterTable("Table", "");
    parameter.SetUnchecked(boost::any(wxString("[[\"a\",\"b\"],[\"c\",\"d\"]]")));
    EXPECT_EQ("a\tb\nc\td", Written({parameter}, "t.tsv"));
}

TEST(FilterText, ValueOfAnotherType_Throws) {
    Parameter parameter = CreateParameterTable("Table", "");
    parameter.SetUnchecked(boost::any(5));
    EXPECT_THROW(Written({parameter}, "t.tsv"), TolException);
}

TEST(FilterText, Cells_AreTranslated) {
    support::TempDir const dir;
    ASSERT_TRUE(support::UseTranslations(dir, {{"Name", "Nome"}, {"Value", "Valore"}, {"b", "bi"}, {"a", "no"}}));
    EXPECT_EQ("Nome\tValore\tWarnings\na\tbi\t!c", Written({Table(FourColumns)}, "t.tsv"));
}

TEST(FilterText, SaveOutputBatch_WritesHtmlWhateverTheExtension) {
    support::TempDir const dir;
    TextFilter filter("Filter");
    filter.Out() = {Table(FourColumns)};
    filter.SaveOutputBatch(dir / "t.png");
    EXPECT_FALSE(wxFileExists(dir / "t.png"));
    EXPECT_EQ(ReadFile(dir / "t.html"), filter.GetReportData(dir / "t.jpg", "elsewhere"));
    EXPECT_NE(wxString::npos, filter.GetReportData(dir / "t.jpg", "elsewhere").find("!c"));
}

TEST(FilterText, SelectorString_IsLiteral) {
    EXPECT_EQ(
        "text file (*.txt)|*.txt|HTML file (*.html)|*.html|TAB separated values (*.tsv)|*.tsv|All files (*.*)|*.*",
        TextFilter("Filter").GetOutputFileSelectorString());
    EXPECT_EQ("text file (*.txt)|All files (*.*)|*.*", CustomFilter("Filter").GetOutputFileSelectorString());
}

TEST(FilterText, CopyAndMove_TakeBothTexts) {
    TextFilter filter("Filter");
    filter.GetTextData(Evidence) = {"a"};
    filter.GetTextData(Reference) = {"b", "c"};
    TextFilter copy(filter);
    TextFilter moved(std::move(filter));
    TextFilter assigned("Other");
    assigned = copy;
    for (TextFilter* other : {&copy, &moved, &assigned}) {
        EXPECT_EQ((VecString{"a"}), other->GetTextData(Evidence));
        EXPECT_EQ((VecString{"b", "c"}), other->GetTextData(Reference));
        EXPECT_EQ("Filter", other->GetName());
    }
}

TEST(FilterText, Extension_IsTxt) {
    EXPECT_EQ(".txt", TextFilter("Filter").GetCacheExtension());
    EXPECT_EQ(".txt", CustomFilter("Filter").GetCacheExtension());
}

TEST(FilterTextCustom, SaveOutput_WritesTheText) {
    support::TempDir const dir;
    CustomFilter filter("Filter");
    filter.SetText(wxString::FromUTF8("gr\xC3\xBC\xC3\x9F <b>\n"));
    filter.SaveOutputBase(dir / "t.html");
    EXPECT_EQ("gr\xC3\xBC\xC3\x9F <b>\n", ReadBytes(dir / "t.html"));
}

TEST(FilterTextCustom, Report_IsPreformattedAndEscaped) {
    support::TempDir const dir;
    CustomFilter filter("Filter");
    filter.SetText("a <b> & c");
    filter.SaveOutputBatch(dir / "t.png");
    EXPECT_EQ("a <b> & c", ReadBytes(dir / "t.txt"));
    EXPECT_EQ("<pre>a &lt;b&gt; &amp; c</pre>\n", filter.GetReportData(dir / "t.png", "elsewhere"));
}
