// SPDX-License-Identifier: Apache-2.0
// Pieces of the program that need no process of their own.
#include <gtest/gtest.h>

#include "apps/cli/exitcodes.h"
#include "apps/cli/infokeys.h"
#include "apps/cli/recordlines.h"
#include "apps/cli/recordwriter.h"
#include "apps/cli/separated.h"
#include "apps/cli/text.h"
#include "apps/cli/userqt.h"

using namespace cli;

TEST(ExitCodes, Worse_InterruptionOutweighsInternalOutweighsOutputOutweighsInput) {
    EXPECT_EQ(ExitFinding, Worse(ExitDone, ExitFinding));
    EXPECT_EQ(ExitInput, Worse(ExitInput, ExitFinding));
    EXPECT_EQ(ExitOutput, Worse(ExitInput, ExitOutput));
    EXPECT_EQ(ExitInternal, Worse(ExitInternal, ExitOutput));
    EXPECT_EQ(ExitInterrupted, Worse(ExitInternal, ExitInterrupted));
}

TEST(Printable, Controls_AreEscaped) {
    EXPECT_EQ("a\\nb\\tc\\rd\\x1b[0m\\x7f", Printable("a\nb\tc\rd\x1b[0m\x7f"));
    EXPECT_EQ("\\u{0085}\\u{202e}\\u{2028}", Printable("\xc2\x85\xe2\x80\xae\xe2\x80\xa8"));
    EXPECT_EQ(std::string("\\x00"), Printable(std::string(1, '\0')));
}

TEST(Printable, Text_StaysAsItIs) {
    EXPECT_EQ("\xc3\xbc \xe6\xbc\xa2 \xf0\x9f\x98\x80 \\", Printable("\xc3\xbc \xe6\xbc\xa2 \xf0\x9f\x98\x80 \\"));
}

TEST(Printable, BytesThatAreNoUtf8_AreEscaped) {
    EXPECT_EQ("\\xe9", Printable("\xe9"));
    EXPECT_EQ("\\xc0\\xaf", Printable("\xc0\xaf"));                    // overlong
    EXPECT_EQ("\\xed\\xa0\\x80", Printable("\xed\xa0\x80"));           // surrogate
    EXPECT_EQ("\\xf4\\x90\\x80\\x80", Printable("\xf4\x90\x80\x80"));  // beyond Unicode
    EXPECT_EQ("\\xe6\\xbc", Printable("\xe6\xbc"));                    // cut short
}

TEST(PercentEscaped, EverythingElse_IsEscaped) {
    EXPECT_EQ("/a%20b/caf%E9~%25", PercentEscaped("/a b/caf\xe9~%"));
}

TEST(SeparatedLine, Csv_QuotesOnlyWhatNeedsIt) {
    EXPECT_EQ("a,\"b,c\",\"d\"\"e\",\"f\ng\",=1, h \r\n",
              SeparatedLine("csv", {"a", "b,c", "d\"e", "f\ng", "=1", " h "}));
    EXPECT_EQ("a;b,c;\"d;e\"\r\n", SeparatedLine("ssv", {"a", "b,c", "d;e"}));
    EXPECT_EQ("a\\tb\tc\\nd\\\\\"\n", SeparatedLine("tsv", {"a\tb", "c\nd\\\""}));
}

TEST(FormatOfPath, GoesByTheEnding) {
    EXPECT_EQ("csv", FormatOfPath("a.b/c.CSV"));
    EXPECT_EQ("html", FormatOfPath("a.htm"));
    EXPECT_EQ("text", FormatOfPath("csv"));
    EXPECT_EQ("text", FormatOfPath("a.txt"));
}

TEST(InfoKeys, EndBehindTheLast) {
    EXPECT_STREQ("filename", InfoRowKey(0));
    EXPECT_STREQ("sha512", InfoRowKey(41));
    EXPECT_EQ(nullptr, InfoRowKey(42));
    EXPECT_STREQ("file_size_small", InfoRuleKey(0));
    EXPECT_STREQ("thumbnail_missing", InfoRuleKey(26));
    EXPECT_EQ(nullptr, InfoRuleKey(27));
}

TEST(SignatureLine, HasTheShapeThatIsRead) {
    JpegSignature record;
    record.editorClass = "2";
    record.make = "Paint";
    record.signature = "AA";
    record.softwareName = "Paint 3";
    EXPECT_EQ(wxString("SIG 2 ,\"Paint\",\"\",\"\",\"AA\",\"\",\"\",\"\",\"Paint 3\""), SignatureLine(record));
    EXPECT_EQ("", ReasonAgainst(record));
    record.editorClass = "3";
    EXPECT_EQ("the class is neither camera nor software", ReasonAgainst(record));
}

TEST(RecordLines, EachWarning_HasALineAndAMarkerOfItsOwn) {
    Record record;
    RecordRow row;
    row.key = "size";
    row.title = "Size";
    row.value = "3x3";
    row.warnings = "!Low\nOdd";
    record.rows = {row};
    record.rules = {{"low", "size", "Low", false, RuleStatus::Failed},
                    {"odd", "size", "Odd", true, RuleStatus::Failed}};
    const std::vector<RecordLine> lines = LinesOf(record);
    ASSERT_EQ(2u, lines.size());
    EXPECT_EQ("Size|3x3|?Low", lines[0].title + "|" + lines[0].value + "|" + lines[0].warning);
    EXPECT_EQ("||!Odd", lines[1].title + "|" + lines[1].value + "|" + lines[1].warning);
}
