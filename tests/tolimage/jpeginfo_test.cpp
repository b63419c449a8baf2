// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpeginfo.h"

#include <gtest/gtest.h>

#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tests/support/tempdir.h"
#include "tolbase/limits.h"

using support::CountingTable;
using support::FlatTable;
using support::JpegBuilder;

namespace {

JpegInfo Read(std::string const& bytes, int depth = 2) {
    JpegInfo info;
    tcvJpegReadTablesFromMemory(bytes.data(), bytes.size(), info, depth, depth > 1, depth > 1);
    return info;
}

// Two tables in segments of their own, in front of a 4:2:0 frame and a scan.
JpegBuilder Colour(int factors = 0x22) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, CountingTable(1)).Dqt(1, CountingTable(101)).ColourFrame(0xC0, 640, 480, factors);
    return builder;
}

std::string Whole(JpegBuilder builder) {
    return builder.Scan().Eoi().Build();
}

}  // namespace

TEST(JpegInfo, Default_HoldsNothing) {
    const JpegInfo info;
    EXPECT_FALSE(info.IsValid);
    EXPECT_TRUE(info.QuantizationTables.empty());
    EXPECT_TRUE(info.HuffmanTables.empty());
    EXPECT_TRUE(info.QualityEstimates.empty());
    EXPECT_TRUE(info.QtHash.empty());
}

TEST(JpegInfo, TablesStandInRowsOfThePicture) {
    const JpegInfo info = Read(Whole(Colour()));
    ASSERT_TRUE(info.IsValid);
    ASSERT_EQ(3U, info.QuantizationTables.size());
    EXPECT_EQ((std::vector<int>{1, 2, 6, 7, 15, 16, 28, 29}), info.QuantizationTables[0][0]);
    EXPECT_EQ((std::vector<int>{36, 37, 49, 50, 58, 59, 63, 64}), info.QuantizationTables[0][7]);
    EXPECT_EQ((std::vector<int>{103, 105, 108, 114, 117, 127, 130, 143}), info.QuantizationTables[1][1]);
    EXPECT_TRUE(info.QuantizationTables[2].empty());
}

// The digests were made with Python's hashlib over the same bytes.
TEST(JpegInfo, QtHash_IsTheDigestOfTheSegments) {
    const JpegInfo info = Read(Whole(Colour()));
    EXPECT_EQ(wxString("1DB682E60D88F0A211108A29D93380F7"), info.QtHash);
    EXPECT_EQ(wxString("ED3536992ADB2B4B1C23CB4B85C23998"), info.QtHashRot);
}

TEST(JpegInfo, QtHash_OrderOfSegmentsDoesntCount) {
    JpegBuilder builder;
    builder.Soi().Dqt(1, CountingTable(101)).Dqt(0, CountingTable(1)).ColourFrame(0xC0, 8, 8, 0x22);
    EXPECT_EQ(wxString("1DB682E60D88F0A211108A29D93380F7"), Read(Whole(builder)).QtHash);
}

TEST(JpegInfo, QtHash_CutIntoSegmentsCounts) {
    JpegBuilder builder;
    builder.Soi().Dqt({{0, CountingTable(1)}, {1, CountingTable(101)}}).ColourFrame(0xC0, 8, 8, 0x22);
    const JpegInfo joint = Read(Whole(builder));
    EXPECT_EQ(wxString("2AFF5849769233870CB823674744D942"), joint.QtHash);
    EXPECT_EQ(wxString("E5BA2D8001E908B3EF77B9449550E817"), joint.QtHashRot);
    EXPECT_EQ(Read(Whole(Colour())).QuantizationTables, joint.QuantizationTables);
}

TEST(JpegInfo, QtHash_LaterSegmentOfTheIndexReplaces) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, CountingTable(1)).Dqt(1, CountingTable(101)).Dqt(0, CountingTable(101));
    builder.ColourFrame(0xC0, 8, 8, 0x22);
    const JpegInfo info = Read(Whole(builder));
    EXPECT_EQ(wxString("4DD761F74ACA33B06527312016903D9A"), info.QtHash);
    EXPECT_EQ(101, info.QuantizationTables[0][0][0]);
}

TEST(JpegInfo, TablesBehindTheFirstScanAlone_MakeNoRecordOfAnyDepth) {
    JpegBuilder builder;
    builder.Soi().GreyFrame(8, 8).Scan().Dqt(0, FlatTable(9)).Scan().Eoi();
    for (const int depth : {1, 2}) EXPECT_FALSE(Read(builder.Build(), depth).IsValid) << depth;
}

TEST(JpegInfo, QtHash_TablesBehindTheFirstScanDontCount) {
    JpegBuilder builder = Colour();
    builder.Scan().Dqt(0, FlatTable(9)).Dqt(2, FlatTable(7)).Scan().Eoi();
    const JpegInfo info = Read(builder.Build());
    EXPECT_EQ(wxString("1DB682E60D88F0A211108A29D93380F7"), info.QtHash);
    EXPECT_EQ(1, info.QuantizationTables[0][0][0]);
    EXPECT_EQ(7, info.QuantizationTables[2][0][0]);
    EXPECT_EQ(2, info.ScanCount);
    EXPECT_TRUE(Read(builder.Build(), 1).QuantizationTables[2].empty());
}

TEST(JpegInfo, Grey_HasOneTableAndNoSubsampling) {
    const JpegInfo info = Read(support::SmallJpeg());
    EXPECT_EQ(wxString("8BD7053801C768420FAF816FADBA971C"), info.QtHash);
    EXPECT_EQ(wxString("887AB7F78B77079671513948E8B5084C"), info.QtHashRot);
    EXPECT_EQ(wxString("Grayscale"), info.ColorSpace);
    EXPECT_EQ(wxString(), info.ChromaSubsampling);
    EXPECT_EQ(wxString("Gray"), info.SignatureSubsampling);
    EXPECT_TRUE(info.QuantizationTables[1].empty());
}

TEST(JpegInfo, WideTables_AreRead) {
    JpegBuilder builder;
    builder.Soi().Dqt({{0, CountingTable(300)}}, true).Frame(0xC1, 8, 8, {{1, 0x11, 0}}, 12);
    const JpegInfo info = Read(Whole(builder));
    EXPECT_EQ(wxString("AA252B721A5717C4CA9E63E64436328D"), info.QtHash);
    EXPECT_EQ(wxString("6E27839134ADD3F8ABE8F2AD00121AE4"), info.QtHashRot);
    EXPECT_EQ(363, info.QuantizationTables[0][7][7]);
    EXPECT_EQ(12, info.Precision);
    EXPECT_EQ(wxString("Extended sequential DCT, Huffman coding"), info.Process);
}

TEST(JpegInfo, Subsampling_HasItsNotation) {
    const std::pair<int, char const*> cases[] = {{0x11, "4:4:4"}, {0x21, "4:2:2"}, {0x22, "4:2:0"}, {0x41, "4:1:1"},
                                                 {0x42, "4:1:0"}, {0x12, "4:4:0"}, {0x14, "4:4:1"}, {0x24, "4:2:1"}};
    for (auto const& [factors, notation] : cases) {
        EXPECT_EQ(wxString(notation), Read(Whole(Colour(factors))).ChromaSubsampling) << notation;
    }
    EXPECT_EQ(wxString("3x1,1x1,1x1"), Read(Whole(Colour(0x31))).ChromaSubsampling);
    EXPECT_EQ(wxString("2x1"), Read(Whole(Colour(0x21))).SignatureSubsampling);
}

TEST(JpegInfo, Subsampling_CommonFactorsAreDividedOut) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, CountingTable(1)).Frame(0xC0, 8, 8, {{1, 0x22, 0}, {2, 0x12, 0}, {3, 0x12, 0}});
    EXPECT_EQ(wxString("4:2:2"), Read(Whole(builder)).ChromaSubsampling);
}

TEST(JpegInfo, BadSamplingFactors_AreToldAndDontStopTheReading) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, CountingTable(1)).Frame(0xC0, 8, 8, {{1, 0x00, 0}, {2, 0x11, 0}, {3, 0xE5, 0}});
    const JpegInfo info = Read(Whole(builder));
    EXPECT_TRUE(info.IsValid);
    EXPECT_EQ(wxString("0x0,1x1,14x5"), info.ChromaSubsampling);
    EXPECT_EQ(2U, info.Problems.size());
}

TEST(JpegInfo, ColourSpace_FollowsTheSegments) {
    const auto space = [](JpegBuilder head) {
        head.Dqt(0, FlatTable(1)).ColourFrame(0xC0, 8, 8, 0x11);
        return Read(Whole(head)).ColorSpace;
    };
    EXPECT_EQ(wxString("YCbCr"), space(JpegBuilder().Soi()));
    EXPECT_EQ(wxString("YCbCr"), space(JpegBuilder().Soi().Jfif()));
    EXPECT_EQ(wxString("RGB"), space(JpegBuilder().Soi().Adobe(0)));
    EXPECT_EQ(wxString("YCbCr"), space(JpegBuilder().Soi().Adobe(1)));
    EXPECT_EQ(wxString("YCbCr"), space(JpegBuilder().Soi().Jfif().Adobe(0)));
}

TEST(JpegInfo, ColourSpace_FollowsComponents) {
    const auto space = [](std::vector<JpegBuilder::Component> const& components, int transform) {
        JpegBuilder builder;
        builder.Soi();
        if (transform >= 0) builder.Adobe(transform);
        return Read(Whole(builder.Dqt(0, FlatTable(1)).Frame(0xC0, 8, 8, components))).ColorSpace;
    };
    EXPECT_EQ(wxString("RGB"), space({{'R', 0x11, 0}, {'G', 0x11, 0}, {'B', 0x11, 0}}, -1));
    const std::vector<JpegBuilder::Component> four{{1, 0x11, 0}, {2, 0x11, 0}, {3, 0x11, 0}, {4, 0x11, 0}};
    EXPECT_EQ(wxString("CMYK"), space(four, -1));
    EXPECT_EQ(wxString("CMYK"), space(four, 0));
    EXPECT_EQ(wxString("YCCK"), space(four, 2));
    EXPECT_EQ(wxString("Unknown (2 components)"), space({{1, 0x11, 0}, {2, 0x11, 0}}, -1));
}

TEST(JpegInfo, Processes_AreNamed) {
    const std::pair<int, char const*> cases[] = {{0xC0, "Baseline DCT, Huffman coding"},
                                                 {0xC1, "Extended sequential DCT, Huffman coding"},
                                                 {0xC2, "Progressive DCT, Huffman coding"},
                                                 {0xC3, "Lossless, Huffman coding"},
                                                 {0xC5, "Sequential DCT, differential Huffman coding"},
                                                 {0xC6, "Progressive DCT, differential Huffman coding"},
                                                 {0xC7, "Lossless, differential Huffman coding"},
                                                 {0xC9, "Extended sequential DCT, arithmetic coding"},
                                                 {0xCA, "Progressive DCT, arithmetic coding"},
                                                 {0xCB, "Lossless, arithmetic coding"},
                                                 {0xCD, "Sequential DCT, differential arithmetic coding"},
                                                 {0xCE, "Progressive DCT, differential arithmetic coding"},
                                                 {0xCF, "Lossless, differential arithmetic coding"}};
    for (auto const& [code, name] : cases) {
        JpegBuilder builder;
        builder.Soi().Dqt(0, FlatTable(1)).ColourFrame(code, 8, 8, 0x11);
        const JpegInfo info = Read(Whole(builder));
        EXPECT_EQ(wxString(name), info.Process);
        EXPECT_EQ(info.Process.StartsWith("Progressive"), info.IsProgressive) << name;
    }
}

TEST(JpegInfo, Lossless_IsValidWithoutATable) {
    JpegBuilder builder;
    builder.Soi().Frame(0xC3, 20, 10, {{1, 0x11, 0}});
    const JpegInfo info = Read(Whole(builder));
    ASSERT_TRUE(info.IsValid);
    EXPECT_EQ(20, info.Width);
    EXPECT_EQ(100, info.QualityEstimates.at(0));
    EXPECT_EQ(wxString(), info.QtHash);
    EXPECT_EQ(3U, info.QuantizationTables.size());
}

TEST(JpegInfo, FrameWithoutATable_IsNotValid) {
    JpegBuilder builder;
    builder.Soi().GreyFrame(20, 10);
    const JpegInfo info = Read(Whole(builder));
    EXPECT_FALSE(info.IsValid);
    EXPECT_TRUE(info.QualityEstimates.empty());
    EXPECT_EQ(20, info.Width);
}

TEST(JpegInfo, TableUnderAHigherIndexAlone_HasAnEstimate) {
    JpegBuilder builder;
    builder.Soi().Dqt(3, FlatTable(1)).Frame(0xC0, 8, 8, {{1, 0x11, 3}});
    const JpegInfo info = Read(Whole(builder));
    ASSERT_TRUE(info.IsValid);
    EXPECT_EQ(100, info.QualityEstimates.at(0));
    EXPECT_EQ(8U, info.QuantizationTable3.size());
}

TEST(JpegInfo, HeightInADnlSegment_IsTaken) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, FlatTable(1)).GreyFrame(16, 0).Scan().Segment(0xDC, std::string("\1\4", 2)).Eoi();
    EXPECT_EQ(260, Read(builder.Build()).Height);
}

TEST(JpegInfo, SecondFrame_DoesntReplaceTheFirst) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, FlatTable(1)).GreyFrame(16, 8).GreyFrame(99, 99);
    EXPECT_EQ(16, Read(Whole(builder)).Width);
}

TEST(JpegInfo, FillBytes_ArePassedOver) {
    JpegBuilder builder;
    builder.Soi().Bytes("\xFF\xFF\xFF").Dqt(0, CountingTable(1)).Bytes("\xFF").GreyFrame(16, 8);
    const JpegInfo info = Read(Whole(builder));
    EXPECT_EQ(16, info.Width);
    EXPECT_EQ(wxString("8BD7053801C768420FAF816FADBA971C"), info.QtHash);
    EXPECT_TRUE(info.Problems.empty());
}

TEST(JpegInfo, GarbageBetweenSegments_IsPassedOverAndTold) {
    JpegBuilder builder;
    builder.Soi().Bytes(std::string("xy\xFF\0\xFF\x02z", 7)).Dqt(0, CountingTable(1)).GreyFrame(16, 8);
    const JpegInfo info = Read(Whole(builder));
    EXPECT_EQ(16, info.Width);
    ASSERT_EQ(1U, info.Problems.size());
    EXPECT_EQ(wxString("7 foreign bytes before offset 9"), info.Problems[0]);
}

TEST(JpegInfo, MarkersThatCantStandInAScan_AreData) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, CountingTable(1)).GreyFrame(16, 8);
    builder.Scan(std::string("\1\xFF\x03\2\xFF\xC8\3\xFF\xE1\xFF\xFF", 11)).Restart(0).Eoi();
    const JpegInfo info = Read(builder.Build());
    EXPECT_TRUE(info.HasEndOfImage);
    EXPECT_EQ(1, info.ScanCount);
    EXPECT_EQ(0, info.TrailerBytes);
}

TEST(JpegInfo, WrongIndexAndCutTable_KeepWhatWasWhole) {
    JpegBuilder builder;
    builder.Soi().Segment(0xDB, std::string("\0", 1) + std::string(64, '\5') + "\1\2\3");
    builder.Segment(0xDB, std::string("\x07", 1) + std::string(64, '\5')).GreyFrame(16, 8);
    const JpegInfo info = Read(Whole(builder));
    ASSERT_TRUE(info.IsValid);
    EXPECT_EQ(5, info.QuantizationTables[0][0][0]);
    EXPECT_TRUE(info.QuantizationTables[1].empty());
    EXPECT_EQ(2U, info.Problems.size());
}

TEST(JpegInfo, SegmentOfAnImpossibleLength_EndsTheReading) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, CountingTable(1)).LyingSegment(0xE1, 1, "").GreyFrame(16, 8);
    const JpegInfo info = Read(Whole(builder));
    EXPECT_TRUE(info.IsValid);
    EXPECT_EQ(0, info.Width);
    ASSERT_EQ(1U, info.Problems.size());
    EXPECT_TRUE(info.Problems[0].StartsWith("a segment of an impossible length"));
}

TEST(JpegInfo, TruncationAtEveryByte_GivesAnHonestRecord) {
    const std::string bytes = Whole(Colour().Jfif().StandardDcTable().RestartInterval(3));
    for (size_t length = 0; length < bytes.size(); ++length) {
        const std::string cut = bytes.substr(0, length);
        const JpegInfo info = Read(cut);
        // SOI and the first DQT segment make 71 bytes, the second 140, the frame 159.
        EXPECT_EQ(length >= 71, info.IsValid) << length;
        EXPECT_EQ(length >= 71, !info.QualityEstimates.empty()) << length;
        EXPECT_EQ(length >= 140 ? 8U : 0U, length < 71 ? 0U : info.QuantizationTables.at(1).size()) << length;
        EXPECT_EQ(length >= 159 ? 640 : 0, info.Width) << length;
        EXPECT_FALSE(info.HasEndOfImage) << length;
        EXPECT_EQ(length >= 2, !info.Problems.empty()) << length;
    }
    EXPECT_TRUE(Read(bytes).Problems.empty());
}

TEST(JpegInfo, NoBytesAndForeignBytes_AreNotValid) {
    EXPECT_FALSE(Read("").IsValid);
    EXPECT_FALSE(Read("\xFF").IsValid);
    EXPECT_FALSE(Read("\x89PNG").IsValid);
    EXPECT_FALSE(Read(" " + support::SmallJpeg()).IsValid);
}

TEST(JpegInfo, MissingFileFolderAndEmptyName_AreNotValid) {
    const support::TempDir dir;
    for (wxString const& path : {dir / "none.jpg", dir.Path(), wxString()}) {
        JpegInfo info;
        info.IsValid = true;
        EXPECT_NO_THROW(tcvJpegReadQuantizationAndHuffmanTables(path, info, 2, true, true));
        EXPECT_FALSE(info.IsValid);
    }
}

TEST(JpegInfo, BothDepths_GiveTheSameTables) {
    const support::TempDir dir;
    const wxString path = support::WriteBytes(dir / "a.jpg", support::EncodeJpeg(64, 48));
    JpegInfo brief;
    JpegInfo full;
    tcvJpegReadQuantizationAndHuffmanTables(path, brief, 1, false, false);
    tcvJpegReadQuantizationAndHuffmanTables(path, full, 2, true, true);
    EXPECT_EQ(brief.QuantizationTables, full.QuantizationTables);
    EXPECT_EQ(brief.QtHash, full.QtHash);
    EXPECT_EQ(1U, brief.QualityEstimates.size());
    EXPECT_EQ(3U, full.QualityEstimates.size());
    EXPECT_EQ(64, brief.Width);
    EXPECT_TRUE(full.HasEndOfImage);
}

TEST(JpegInfo, FileLargerThanTheLimit_IsRefused) {
    const support::TempDir dir;
    const wxString path = support::WriteBytes(dir / "a.jpg", support::SmallJpeg());
    SetTolLimit(TolLimit::FileBytes, 100);
    JpegInfo info;
    EXPECT_THROW(tcvJpegReadQuantizationAndHuffmanTables(path, info, 1, false, false), TolLimitError);
    EXPECT_FALSE(info.IsValid);
}

TEST(JpegInfo, MoreSegmentsThanTheLimit_AreRefused) {
    JpegBuilder builder;
    builder.Soi();
    for (int i = 0; i < 5; ++i) builder.Comment("x");
    SetTolLimit(TolLimit::Segments, 4);
    EXPECT_THROW(Read(builder.Build()), TolLimitError);
}

TEST(JpegInfo, TrailerAndEmbedded_AreCounted) {
    JpegBuilder builder;
    builder.Soi().App(1, "Exif" + support::SmallJpeg(2)).Dqt(0, CountingTable(1)).GreyFrame(16, 8).Scan().Eoi();
    const JpegInfo info = Read(builder.Build() + "trailer" + support::SmallJpeg(3));
    EXPECT_EQ(2, info.EmbeddedImageCount);
    EXPECT_EQ(static_cast<int64_t>(7 + support::SmallJpeg(3).size()), info.TrailerBytes);
    EXPECT_EQ(wxString("8BD7053801C768420FAF816FADBA971C"), info.QtHash);
}

TEST(JpegInfo, ZigZagIndex_FollowsTheDiagonals) {
    EXPECT_EQ(0, tcvZigZagIndex(0));
    EXPECT_EQ(1, tcvZigZagIndex(1));
    EXPECT_EQ(8, tcvZigZagIndex(2));
    EXPECT_EQ(16, tcvZigZagIndex(3));
    EXPECT_EQ(56, tcvZigZagIndex(35));
    EXPECT_EQ(62, tcvZigZagIndex(62));
    EXPECT_EQ(63, tcvZigZagIndex(63));
    EXPECT_EQ(0, tcvZigZagIndex(-1));
    EXPECT_EQ(0, tcvZigZagIndex(64));
}
