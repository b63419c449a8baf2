// SPDX-License-Identifier: Apache-2.0
#include "filters/hexviewer.h"

#include <sys/resource.h>
#include <unistd.h>

#include "tests/filters/filterengine.h"
#include "tolbase/exception.h"

namespace {

using support::ReadBytes;

class HexViewer : public support::FilterEngine {
protected:
    HexViewer() : filter(Add<OrvFilterHexViewer>()) {}
    std::string Text() {
        filter->SaveOutputBase(dir / "t.txt");
        return ReadBytes(dir / "t.txt");
    }
    OrvFilterHexViewer* filter;
};

std::string Dump(std::string const& bytes, uint64_t offset = 0) {
    return std::string(OrvFormatHexDump(bytes, offset).utf8_str());
}

std::string Window(wxString const& path, int64_t offset, int64_t length) {
    int64_t size = 0;
    return OrvReadFileWindow(path, offset, length, size);
}

}  // namespace

// The expected lines are those of "hexdump -C".
TEST(HexDump, FullLine_IsThatOfHexdump) {
    EXPECT_EQ("00000000  ff d8 ff e0 00 10 4a 46  49 46 00 01 01 00 00 01  |......JFIF......|\n",
              Dump(std::string("\xff\xd8\xff\xe0\0\x10JFIF\0\1\1\0\0\1", 16)));
}

TEST(HexDump, PartOfALine_IsFilledUp) {
    EXPECT_EQ("00000000  61                                                |a|\n", Dump("a"));
    EXPECT_EQ("00000000  61 62 63 64 65 66 67 68  69                       |abcdefghi|\n", Dump("abcdefghi"));
}

TEST(HexDump, Characters_ArePrintableAsciiAlone) {
    EXPECT_EQ("00000000  1f 20 7e 7f 80 ff 0a 0d                           |. ~.....|\n",
              Dump("\x1f \x7e\x7f\x80\xff\n\r"));
}

TEST(HexDump, Offsets_CountOnBeyondEightDigits) {
    EXPECT_EQ(
        "fffffff8  30 31 32 33 34 35 36 37  38 39 61 62 63 64 65 66  |0123456789abcdef|\n"
        "100000008  78                                                |x|\n",
        Dump("0123456789abcdefx", 0xfffffff8));
}

TEST(HexDump, NoBytes_GiveNoLine) {
    EXPECT_EQ("", Dump(""));
}

TEST(FileWindow, Window_EndsWithTheFile) {
    support::TempDir const dir;
    wxString const path = support::WriteBytes(dir / "f", "0123456789");
    EXPECT_EQ("345", Window(path, 3, 3));
    EXPECT_EQ("89", Window(path, 8, 5));
    EXPECT_EQ("", Window(path, 10, 5));
    EXPECT_EQ("", Window(path, 3, 0));
}

TEST(FileWindow, WhatCantBeRead_Throws) {
    support::TempDir const dir;
    wxString const path = support::WriteBytes(dir / "f", "0123456789");
    EXPECT_THROW(Window(path, -1, 5), TolException);
    EXPECT_THROW(Window(path, 0, -5), TolException);
    EXPECT_THROW(Window(dir / "missing", 0, 5), TolException);
    EXPECT_THROW(Window(dir.Path(), 0, 5), TolException);
}

TEST(FileWindow, HugeFile_IsReadInItsPartAlone) {
    support::TempDir const dir;
    wxString const path = support::WriteBytes(dir / "f", "begin");
    std::string const name(path.utf8_str());
    int64_t const size = int64_t{1} << 31;
    ASSERT_EQ(0, truncate(name.c_str(), size));
    rusage before{}, after{};
    getrusage(RUSAGE_SELF, &before);
    int64_t found = 0;
    std::string const bytes = OrvReadFileWindow(path, size - 3, OrvHexMaximumLength, found);
    EXPECT_EQ(std::string(3, '\0'), bytes);
    EXPECT_EQ(size, found);
    EXPECT_EQ("begin", OrvReadFileWindow(path, 0, 5, found));
    getrusage(RUSAGE_SELF, &after);
    // In units of 1,024 bytes.
    EXPECT_LT(after.ru_maxrss - before.ru_maxrss, 16 * 1024);
}

TEST_F(HexViewer, New_HasOneConfiguration) {
    EXPECT_EQ("Hex Viewer", filter->GetName());
    EXPECT_EQ(1U, filter->GetConfigurationsSize());
    EXPECT_EQ("Offset", filter->GetParametersInput()[0].Name());
    EXPECT_EQ("Length", filter->GetParametersInput()[1].Name());
    EXPECT_EQ(4096, filter->GetParametersInput()[1].GetValue<int>());
}

TEST_F(HexViewer, Evidence_ShowsItsFirstBytes) {
    wxString const path = Jpeg("a.jpg");
    Load(path);
    GoWith(filter, {int64_t{0}, 16});
    std::string const size = std::to_string(ReadBytes(path).size());
    EXPECT_EQ("Evidence: a.jpg, " + size +
                  " bytes, shown from offset 0 (0x0) to 15 (0xf)\n\n"
                  "00000000  ff d8 ff e0 00 10 4a 46  49 46 00 01 01 00 00 01  |......JFIF......|\n",
              Text());
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(HexViewer, Reference_FollowsTheEvidence) {
    Load(Jpeg("a.jpg"));
    Load(Save("b.png", support::Ramp(4, 4, IPL_DEPTH_8U, 3)), Reference);
    GoWith(filter, {int64_t{1}, 3});
    std::string const text = Text();
    EXPECT_NE(std::string::npos, text.find("00000001  d8 ff e0"));
    EXPECT_NE(std::string::npos, text.find("\n\nReference: b.png, "));
    EXPECT_NE(std::string::npos, text.find("00000001  50 4e 47"));
    Load("", Reference);
    Go(filter);
    EXPECT_EQ(std::string::npos, Text().find("Reference"));
}

TEST_F(HexViewer, OffsetBehindTheEnd_IsSaid) {
    Load(Bytes("a.jpg", support::EncodeJpeg(8, 8)));
    GoWith(filter, {int64_t{1} << 40, 16});
    EXPECT_TRUE(IsDone());
    EXPECT_NE(std::string::npos, Text().find(" bytes, none at offset 1099511627776 (0x10000000000)\n"));
}

TEST_F(HexViewer, NegativeOffset_IsRefused) {
    Load(Jpeg("a.jpg"));
    GoWith(filter, {int64_t{-1}, 16});
    EXPECT_FALSE(IsDone());
    EXPECT_EQ("The offset and the length must not be negative.", filter->GetErrorMessage());
    EXPECT_EQ("", Text());
}

TEST_F(HexViewer, ValuesOutOfRangeOrOfAnotherType_AreNotTaken) {
    Load(Jpeg("a.jpg"));
    GoWith(filter, {wxString("x"), 0});
    EXPECT_EQ(0, filter->GetParametersInput()[0].GetValue<int64_t>());
    EXPECT_EQ(4096, filter->GetParametersInput()[1].GetValue<int>());
    GoWith(filter, {2.5, OrvHexMaximumLength + 1});
    EXPECT_EQ(4096, filter->GetParametersInput()[1].GetValue<int>());
    EXPECT_TRUE(IsDone());
}

TEST_F(HexViewer, FileThatIsGone_FailsTheRun) {
    wxString const path = Jpeg("a.jpg");
    Load(path);
    wxRemoveFile(path);
    Go(filter);
    EXPECT_FALSE(IsDone());
    EXPECT_EQ("The file can't be read: " + path, filter->GetErrorMessage());
}

TEST_F(HexViewer, Report_IsPreformatted) {
    Load(Jpeg("a.jpg"));
    GoWith(filter, {int64_t{6}, 4});
    filter->SaveOutputBatch(dir / "r.html");
    EXPECT_NE(wxString::npos, filter->GetReportData(dir / "r.html", "").find("|JFIF|\n</pre>"));
}
