// SPDX-License-Identifier: Apache-2.0
#include "orvcore/tablewriter.h"

#include <gtest/gtest.h>
#include <wx/filename.h>

#include <cstdint>

#include "tests/orvcore/catalogue.h"
#include "tests/support/tempdir.h"
#include "tolbase/htmlwriter.h"

namespace {

using support::ReadBytes;
using support::TempDir;

VecString FirstColumn(VecVecString const& table) {
    VecString column;
    for (VecString const& row : table) column.push_back(row.at(0));
    return column;
}

VecString Sorted(VecVecString table, bool ascending) {
    SortVecVecString(table, 0, ascending);
    return FirstColumn(table);
}

const VecVecString Small = {{"a", "!b"}, {"c", "d"}};

wxString RowsOf(VecVecString const& table) {
    wxString rows;
    for (VecString const& row : table) rows += HtmlWriter::DoTrRedExcl(row);
    return rows;
}

}  // namespace

TEST(FormatTable, TwoRows_PadsTheFirstColumnAndEndsEachCellWithABlank) {
    EXPECT_EQ(FormatTable({{"ab", "c"}, {"d", "ef"}}), "ab c \nd  ef \n");
}

TEST(FormatTable, NoRows_GivesNoText) {
    EXPECT_EQ(FormatTable({}), "");
}

TEST(FormatTable, RowWithoutCells_IsALineBreak) {
    EXPECT_EQ(FormatTable({{}}), "\n");
}

TEST(FormatTable, EmptyLastCell_HasAWidthOfOne) {
    EXPECT_EQ(FormatTable({{"x", ""}}), "x   \n");
}

TEST(FormatTable, WidestCellWithABlankInFront_AlignsItsColumnRight) {
    EXPECT_EQ(FormatTable({{" 4711", "x"}, {"8", "y"}}), " 4711 x \n    8 y \n");
}

TEST(FormatTable, WiderCellWithoutABlank_TurnsTheColumnBack) {
    EXPECT_EQ(FormatTable({{" 47", "x"}, {"12345", "y"}, {"8", "z"}}), " 47   x \n12345 y \n8     z \n");
}

TEST(FormatTable, EquallyWideCell_LeavesTheAlignment) {
    EXPECT_EQ(FormatTable({{" 47", "x"}, {"123", "y"}, {"8", "z"}}), " 47 x \n123 y \n  8 z \n");
}

TEST(FormatTable, MultiLineCell_BeginsOnAFreshLineAndIsFollowedDirectly) {
    EXPECT_EQ(FormatTable({{"Table", "16 11\n12 12", "x"}}), "Table \n16 11\n12 12x \n");
}

TEST(FormatTable, LeadingMultiLineCell_ShiftsTheWidths) {
    // The list of widths is 3 ("abc"), 1 ("d"), then 1 ("g") at index 2.
    EXPECT_EQ(FormatTable({{"1\n2", "abc", "d"}, {"e", "f", "g"}}), "\n1\n2abc d \ne   f g \n");
}

TEST(FormatTable, CellWithoutAWidth_IsNotPadded) {
    // One row gives the list 1, 4: index 2 has no width.
    EXPECT_EQ(FormatTable({{"1\n2", "3\n4", "x", "last"}}), "\n1\n2\n3\n4x last \n");
}

TEST(FormatTable, RaggedRows_UseTheirOwnLength) {
    EXPECT_EQ(FormatTable({{"only"}, {"a", "b"}}), "only \na    b \n");
}

TEST(FormatTable, Width_CountsCharacters) {
    EXPECT_EQ(FormatTable({{wxString::FromUTF8("\xC3\xBC"), "x"}, {"ab", "y"}}),
              wxString::FromUTF8("\xC3\xBC  x \nab y \n"));
}

TEST(FormatTable, PercentSigns_AreText) {
    EXPECT_EQ(FormatTable({{"%s%n", "%d"}}), "%s%n %d \n");
}

TEST(SortVecVecString, NumericColumnAscending_PutsEmptyCellsFirst) {
    EXPECT_EQ(Sorted({{"#Id"}, {"10"}, {"9"}, {""}}, true), (VecString{"#Id", "", "9", "10"}));
}

TEST(SortVecVecString, TextColumn_ComparesTexts) {
    EXPECT_EQ(Sorted({{"Name"}, {"10"}, {"9"}, {""}}, true), (VecString{"Name", "", "10", "9"}));
}

TEST(SortVecVecString, Descending_TurnsTheOrderRound) {
    EXPECT_EQ(Sorted({{"#Id"}, {"9"}, {""}, {"10"}}, false), (VecString{"#Id", "10", "9", ""}));
    EXPECT_EQ(Sorted({{"Name"}, {"9"}, {""}, {"10"}}, false), (VecString{"Name", "9", "10", ""}));
}

TEST(SortVecVecString, NumberBehindAnExclamationMark_Counts) {
    EXPECT_EQ(Sorted({{"#Id"}, {"100"}, {"!12"}, {"2"}}, true), (VecString{"#Id", "2", "!12", "100"}));
}

TEST(SortVecVecString, ExclamationMarkAlone_CountsAsEmpty) {
    EXPECT_EQ(Sorted({{"#Id"}, {"-999999999"}, {"!"}}, true), (VecString{"#Id", "!", "-999999999"}));
}

TEST(SortVecVecString, QuestionMark_IsNotSkipped) {
    EXPECT_EQ(Sorted({{"#Id"}, {"1"}, {"?50"}, {"-1"}}, true), (VecString{"#Id", "-1", "?50", "1"}));
}

TEST(SortVecVecString, TextColumn_MindsCaseAndMarks) {
    EXPECT_EQ(Sorted({{"Name"}, {"b"}, {"B"}, {"!c"}, {"a"}}, true), (VecString{"Name", "!c", "B", "a", "b"}));
}

TEST(SortVecVecString, WholeRows_Move) {
    VecVecString table = {{"#Id", "Name"}, {"1", "c"}, {"2", "a"}, {"3", "b"}};
    SortVecVecString(table, 1, true);
    EXPECT_EQ(table, (VecVecString{{"#Id", "Name"}, {"2", "a"}, {"3", "b"}, {"1", "c"}}));
}

TEST(SortVecVecString, CellsThatAreNoNumbers_KeepAnOrder) {
    VecVecString table = {{"#Id"}};
    for (int i = 0; i < 300; ++i) {
        table.push_back({"nan"});
        table.push_back({wxString() << (299 - i)});
        table.push_back({"-inf"});
        table.push_back({"-1"});
    }
    SortVecVecString(table, 0, true);
    ASSERT_EQ(table.size(), 1201u);
    EXPECT_EQ(table[1][0], "-inf");
    EXPECT_EQ(table[301][0], "-1");
    EXPECT_EQ(table[902][0], "1");
    EXPECT_EQ(table[1200][0], "299");
}

TEST(SortVecVecString, ColumnThatIsMissing_CountsAsEmptyOrLeavesTheTable) {
    VecVecString ragged = {{"#Id", "Name"}, {"1", "a"}, {"2"}};
    SortVecVecString(ragged, 1, true);
    EXPECT_EQ(ragged[1], (VecString{"2"}));
    VecVecString empty;
    SortVecVecString(empty, 0, true);
    EXPECT_TRUE(empty.empty());
    VecVecString small = Small;
    SortVecVecString(small, 7, true);
    SortVecVecString(small, -1, true);
    EXPECT_EQ(small, Small);
}

TEST(TranslateTable, MaxColumnsOfZeroOrBelow_KeepsAllColumns) {
    const VecVecString table = {{"a", "b", "c"}, {"d", "e", "f", "g"}};
    EXPECT_EQ(TranslateTable(table, 0), table);
    EXPECT_EQ(TranslateTable(table, -1), table);
}

TEST(TranslateTable, MaxColumnsOfTwo_CutsEveryRow) {
    EXPECT_EQ(TranslateTable({{"a", "b", "c"}, {"d", "e", "f", "g"}, {"h"}}, 2),
              (VecVecString{{"a", "b"}, {"d", "e"}, {"h"}}));
}

TEST(TranslateTable, Catalogue_IsUsedForTheFirstRowAndTheSecondCells) {
    const TempDir dir;
    ASSERT_TRUE(support::UseTranslations(dir, {{"Name", "Nome"}, {"Size", "Misura"}}));
    EXPECT_EQ(TranslateTable({{"Name", "Size", ""}, {"Name", "Size", "Name"}, {"Name"}}, 0),
              (VecVecString{{"Nome", "Misura", ""}, {"Name", "Misura", "Name"}, {"Name"}}));
}

TEST(TranslateTable, NoTranslations_GivesTheTexts) {
    wxTranslations::Set(nullptr);
    EXPECT_EQ(TranslateTable(Small, 0), Small);
}

TEST(SaveImageInfoTable, SeparatedTexts_HaveNeitherQuotesNorAFinalLineBreak) {
    const TempDir dir;
    const VecVecString table = {{"#Id", "Na,me"}, {"1", "say \"x\""}, {"2"}};
    SaveImageInfoTableAsCsv(dir / "a", table);
    EXPECT_EQ(ReadBytes(dir / "a"), "#Id,Na,me\n1,say \"x\"\n2");
    SaveImageInfoTableAsTsv(dir / "a", table);
    EXPECT_EQ(ReadBytes(dir / "a"), "#Id\tNa,me\n1\tsay \"x\"\n2");
    SaveImageInfoTableAsSsv(dir / "a", table);
    EXPECT_EQ(ReadBytes(dir / "a"), "#Id;Na,me\n1;say \"x\"\n2");
    SaveImageInfoTableAsTxt(dir / "a", {{"ab", "c"}});
    EXPECT_EQ(ReadBytes(dir / "a"), "ab c \n");
}

TEST(SaveImageInfoTable, Html_WrapsTheRows) {
    const TempDir dir;
    SaveImageInfoTableAsHtml(dir / "a.html", Small, false);
    EXPECT_EQ(ReadBytes(dir / "a.html"), std::string(HtmlWriter::DoTable(RowsOf(Small)).utf8_str()));
    SaveImageInfoTableAsHtml(dir / "a.html", Small, true);
    const wxString page =
        HtmlWriter::DoHeader("style.css", "") + HtmlWriter::DoTable(RowsOf(Small)) + HtmlWriter::DoFooter();
    EXPECT_EQ(ReadBytes(dir / "a.html"), std::string(page.utf8_str()));
}

TEST(SaveImageInfoTable, HtmlOfNoRows_IsATableOfNothing) {
    const TempDir dir;
    SaveImageInfoTableAsHtml(dir / "a.html", {}, false);
    EXPECT_EQ(ReadBytes(dir / "a.html"), std::string(HtmlWriter::DoTable("").utf8_str()));
}

TEST(SaveImageInfoTable, Html_EscapesCells) {
    const TempDir dir;
    SaveImageInfoTableAsHtml(dir / "a.html", {{"!<script>alert(1)</script>", "a & b"}}, true);
    const std::string page = ReadBytes(dir / "a.html");
    EXPECT_EQ(page.find("<script>"), std::string::npos);
    EXPECT_NE(page.find("!&lt;script&gt;"), std::string::npos);
    EXPECT_NE(page.find("a &amp; b"), std::string::npos);
}

TEST(SaveImageInfoTableByExtension, Ending_DecidesTheFormat) {
    const TempDir dir;
    const VecVecString table = {{"a", "b"}, {"c", "d"}};
    for (char const* name : {"t.txt", "t.csv", "t.tsv", "t.ssv", "T.CSV"}) {
        SaveImageInfoTableByExtension(dir / name, table, false);
    }
    EXPECT_EQ(ReadBytes(dir / "t.txt"), "a b \nc d \n");
    EXPECT_EQ(ReadBytes(dir / "t.csv"), "a,b\nc,d");
    EXPECT_EQ(ReadBytes(dir / "t.tsv"), "a\tb\nc\td");
    EXPECT_EQ(ReadBytes(dir / "t.ssv"), "a;b\nc;d");
    EXPECT_EQ(ReadBytes(dir / "T.CSV"), "a,b\nc,d");
}

TEST(SaveImageInfoTableByExtension, BothHtmlEndings_GiveTheWholePage) {
    const TempDir dir;
    SaveImageInfoTableAsHtml(dir / "whole", Small, true);
    SaveImageInfoTableByExtension(dir / "t.html", Small, false);
    SaveImageInfoTableByExtension(dir / "t.htm", Small, false);
    EXPECT_EQ(ReadBytes(dir / "t.html"), ReadBytes(dir / "whole"));
    EXPECT_EQ(ReadBytes(dir / "t.htm"), ReadBytes(dir / "whole"));
    EXPECT_FALSE(ReadBytes(dir / "whole").empty());
}

TEST(SaveImageInfoTableByExtension, UnknownEnding_WritesNothing) {
    const TempDir dir;
    for (char const* name : {"t.xml", "plain", "t.csvx"}) {
        SaveImageInfoTableByExtension(dir / name, Small, false);
        EXPECT_FALSE(wxFileExists(dir / name)) << name;
    }
}

TEST(SaveImageInfoTableByExtension, StatusOnly_ReducesToTwoCells) {
    const TempDir dir;
    const VecVecString table = {{"#Id", "Image", "Format"}, {"!1", "a", "x"}, {"2", "b"}, {"?3", "c"}, {"lone"}};
    SaveImageInfoTableByExtension(dir / "t.csv", table, true);
    EXPECT_EQ(ReadBytes(dir / "t.csv"), "Warning,a\nOk,b\nOk,c");
}

TEST(SaveImageInfoTableByExtension, StatusOfAHeaderAlone_IsAnEmptyText) {
    const TempDir dir;
    SaveImageInfoTableByExtension(dir / "t.txt", {{"#Id", "Image"}}, true);
    ASSERT_TRUE(wxFileExists(dir / "t.txt"));
    EXPECT_EQ(ReadBytes(dir / "t.txt"), "");
    SaveImageInfoTableByExtension(dir / "u.csv", {}, true);
    EXPECT_TRUE(wxFileExists(dir / "u.csv"));
}

TEST(OrvStringToEnum, EquivalentName_GivesItsFirstIndex) {
    const wxString names[] = {"Error Level", "Noise_Map", "X-Ray", "noise map"};
    EXPECT_EQ(OrvStringToEnum(names, 4, "NOISE MAP"), 1u);
    EXPECT_EQ(OrvStringToEnum(names, 4, "xray"), 2u);
}

TEST(OrvStringToEnum, NoSuchName_GivesAllOnes) {
    const wxString names[] = {"Alpha", "Beta"};
    EXPECT_EQ(OrvStringToEnum(names, 2, "Gamma"), UINT64_MAX);
    EXPECT_EQ(OrvStringToEnum(names, 1, "Beta"), UINT64_MAX);
    EXPECT_EQ(OrvStringToEnum(nullptr, 0, "Alpha"), UINT64_MAX);
}
