// SPDX-License-Identifier: Apache-2.0
#include "tolbase/htmlwriter.h"

#include "tests/support/tempdir.h"

TEST(HtmlWriter, Page_BeginsAndEnds) {
    const wxString page = HtmlWriter::DoHeader("style.css", "A & B") + HtmlWriter::DoFooter();
    EXPECT_TRUE(page.StartsWith("<!DOCTYPE html>\n<html"));
    EXPECT_TRUE(page.Contains("<meta charset=\"utf-8\">"));
    EXPECT_TRUE(page.Contains("<link rel=\"stylesheet\" href=\"style.css\">"));
    EXPECT_TRUE(page.Contains("<title>A &amp; B</title>"));
    EXPECT_TRUE(page.EndsWith("</body>\n</html>\n"));
    EXPECT_FALSE(HtmlWriter::DoHeader("", "").Contains("<link"));
}

TEST(HtmlWriter, InternalStyle_IsInside) {
    const support::TempDir dir;
    support::WriteBytes(dir / "s.css", ".mark { color: red; } </style><script>");
    const wxString page = HtmlWriter::DoHeaderInternalStyle(dir / "s.css");
    EXPECT_TRUE(page.Contains(".mark { color: red; }"));
    EXPECT_FALSE(page.Contains("</style><script>"));
}

TEST(HtmlWriter, MissingStyle_LeavesItsElementOut) {
    EXPECT_EQ(HtmlWriter::DoHeader("", ""), HtmlWriter::DoHeaderInternalStyle("/none/s.css"));
}

TEST(HtmlWriter, Headings_HaveLevelAndAnchor) {
    EXPECT_EQ(wxString("<h2 id=\"bookmark-3\">a <em>b</em></h2>\n"), HtmlWriter::DoH(2, "a <em>b</em>", "bookmark-3"));
    EXPECT_EQ(wxString("<h1>a</h1>\n"), HtmlWriter::DoH(0, "a", ""));
    EXPECT_EQ(wxString("<h6 id=\"&quot;\">a</h6>\n"), HtmlWriter::DoH(9, "a", "\""));
}

TEST(HtmlWriter, Fragments_TakeTextAsItIs) {
    EXPECT_EQ(wxString("<p>a<br>\n</p>\n"), HtmlWriter::DoP("a" + HtmlWriter::DoBr()));
    EXPECT_EQ(wxString("<span class=\"warning\">a</span>"), HtmlWriter::DoSpan("a"));
    EXPECT_EQ(wxString(), HtmlWriter::DoSpan(""));
    EXPECT_EQ(wxString("<pre>a\nb</pre>\n"), HtmlWriter::DoPre("a\nb"));
    EXPECT_EQ(wxString("<strong>a</strong>"), HtmlWriter::DoStrong("a"));
    EXPECT_EQ(wxString("<em>a</em>"), HtmlWriter::DoEm("a"));
    EXPECT_EQ(wxString("<hr>\n"), HtmlWriter::DoHr());
    EXPECT_EQ(wxString("<table>\n<tr></tr></table>\n"), HtmlWriter::DoTable("<tr></tr>"));
}

TEST(HtmlWriter, Images_HaveAWidthOnlyIfGiven) {
    EXPECT_EQ(wxString("<img src=\"a.png\" width=\"320\" alt=\"\">\n"), HtmlWriter::DoImg("a.png", 320));
    EXPECT_EQ(wxString("<img src=\"a.png\" alt=\"\">\n"), HtmlWriter::DoImg("a.png", 0));
    EXPECT_EQ(wxString("<img src=\"a.png\" alt=\"\">\n"), HtmlWriter::DoImg("a.png", -1));
}

TEST(HtmlWriter, ImageNames_CannotBreakOut) {
    EXPECT_TRUE(HtmlWriter::DoImg("a#b?c%20.png", 0).Contains("src=\"a%23b%3Fc%2520.png\""));
    EXPECT_TRUE(HtmlWriter::DoImg("\"><script>", 0).Contains("src=\"&quot;&gt;&lt;script&gt;\""));
    EXPECT_TRUE(HtmlWriter::DoImg("javascript:x.png", 0).Contains("src=\"./javascript:x.png\""));
    EXPECT_TRUE(HtmlWriter::DoImg("data:image/png;base64,AA==", 0).Contains("src=\"data:image/png;base64,AA==\""));
}

TEST(HtmlWriter, Brackets_AreEmphasised) {
    EXPECT_EQ(wxString("a <em>[b]</em> c <em>[d]</em>"), HtmlWriter::EmFromBrackets("a [b] c [d]"));
    EXPECT_EQ(wxString("a [b"), HtmlWriter::EmFromBrackets("a [b"));
    EXPECT_EQ(wxString("a ] b"), HtmlWriter::EmFromBrackets("a ] b"));
    EXPECT_EQ(wxString(), HtmlWriter::EmFromBrackets(""));
}

TEST(HtmlWriter, List_HasAnItemEach) {
    EXPECT_EQ(wxString("<ul>\n<li>one</li>\n<li>two</li>\n</ul>\n"), HtmlWriter::DoLi({"one", "two"}));
}

TEST(HtmlWriter, Row_SinglesOutFindings) {
    EXPECT_EQ(wxString("<tr><td>name</td><td class=\"hard\">!v</td><td class=\"soft\">?v</td></tr>\n"),
              HtmlWriter::DoTrRedExcl({"name", "!v", "?v"}));
    EXPECT_EQ(wxString("<tr></tr>\n"), HtmlWriter::DoTrRedExcl({}));
}

TEST(HtmlWriter, HeaderRow_IsToldByItsFirstTitle) {
    EXPECT_EQ(wxString("<tr class=\"head\"><td>#Id</td><td>Name</td></tr>\n"),
              HtmlWriter::DoTrRedExcl({"#Id", "Name"}));
    EXPECT_EQ(wxString("<tr><td>#1</td><td>#Id</td></tr>\n"), HtmlWriter::DoTrRedExcl({"#1", "#Id"}));
}

TEST(HtmlWriter, CellOfSeveralLines_KeepsThem) {
    EXPECT_EQ(wxString("<tr><td class=\"hard\"><pre>!a &lt;\n b</pre></td></tr>\n"),
              HtmlWriter::DoTrRedExcl({"!a <\n b"}));
}

TEST(HtmlWriter, Cells_AreEscaped) {
    EXPECT_EQ(wxString("<tr><td>&lt;script&gt;</td></tr>\n"), HtmlWriter::DoTrRedExcl({"<script>"}));
}
