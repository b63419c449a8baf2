// SPDX-License-Identifier: Apache-2.0
#include "filters/jpegstructure.h"

#include "tests/filters/filterengine.h"
#include "tests/support/jpegbuilder.h"

namespace {

using support::EncodeJpeg;
using support::RowOf;
using support::TableOf;

class JpegStructure : public support::FilterEngine {
protected:
    JpegStructure() : filter(Add<OrvFilterJpegStructure>()) {}
    VecVecString Show(wxString const& name, std::string const& bytes) {
        Load(Bytes(name, bytes));
        Go(filter);
        return TableOf(filter);
    }
    OrvFilterJpegStructure* filter;
};

// The stream with a segment behind its SOI marker.
std::string WithSegment(std::string const& jpeg, int code, std::string const& payload) {
    return jpeg.substr(0, 2) + support::JpegBuilder().Segment(code, payload).Build() + jpeg.substr(2);
}

}  // namespace

TEST_F(JpegStructure, SoundFile_ShowsCodingAndTables) {
    VecVecString const table = Show("a.jpg", EncodeJpeg(64, 48));
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    EXPECT_EQ((VecString{"Coding Process", "Baseline DCT, Huffman coding"}), table.at(0));
    EXPECT_EQ((VecString{"Size", "64x48"}), table.at(1));
    EXPECT_EQ((VecString{"Restart Interval", "none"}), RowOf(table, "Restart Interval"));
    EXPECT_EQ((VecString{"End of Image", "present"}), RowOf(table, "End of Image"));
    EXPECT_EQ((VecString{"Image Quality", "90"}), RowOf(table, "Image Quality"));
    EXPECT_EQ("   3    2    2    3    5    8   10   12\n", RowOf(table, "QT 1 (Luma)").at(1).BeforeFirst('\n') + "\n");
    EXPECT_EQ((VecString{"HTs Are Standard", "true"}), RowOf(table, "HTs Are Standard"));
    // A table that the file does not have is left out.
    EXPECT_EQ("", RowOf(table, "QT 3 (Chroma)").at(1));
}

TEST_F(JpegStructure, Markers_StandWithTheirOffsets) {
    // libjpeg writes JFIF, two tables of 67 bytes, the frame, four Huffman tables and one scan.
    VecVecString const table = Show("a.jpg", EncodeJpeg(64, 48));
    EXPECT_EQ("SOI, APP0 JFIF, DQT x2, SOF0, DHT x4, SOS, EOI", RowOf(table, "Order of Segments").at(1));
    EXPECT_EQ("SOI, offset 0 (0x0)", RowOf(table, "Marker 1").at(1));
    EXPECT_EQ("APP0 JFIF, offset 2 (0x2), 18 bytes", RowOf(table, "Marker 2").at(1));
    EXPECT_EQ("DQT, offset 20 (0x14), 69 bytes", RowOf(table, "Marker 3").at(1));
    EXPECT_EQ("DQT, offset 89 (0x59), 69 bytes", RowOf(table, "Marker 4").at(1));
    EXPECT_EQ("SOF0, offset 158 (0x9E), 19 bytes", RowOf(table, "Marker 5").at(1));
    EXPECT_EQ("DHT, offset 177 (0xB1), 33 bytes", RowOf(table, "Marker 6").at(1));
}

TEST_F(JpegStructure, Segments_AreNamedByWhatTheyBeginWith) {
    std::string bytes = WithSegment(EncodeJpeg(64, 48), 0xFE, "made by hand\x01zzz");
    bytes = WithSegment(bytes, 0xE2, std::string("ICC_PROFILE\0\1\1", 14));
    bytes = WithSegment(bytes, 0xE5, "\xFF\xFF\xFF");
    wxString const order = RowOf(Show("a.jpg", bytes), "Order of Segments").at(1);
    EXPECT_EQ("SOI, APP5, APP2 ICC_PROFILE, COM made by hand, APP0 JFIF, DQT x2, SOF0, DHT x4, SOS, EOI", order);
}

TEST_F(JpegStructure, TruncatedFile_Warns) {
    std::string const bytes = EncodeJpeg(64, 48);
    VecVecString const table = Show("a.jpg", bytes.substr(0, bytes.size() - 40));
    EXPECT_EQ("Warning", filter->GetStatusString(Evidence));
    EXPECT_EQ((VecString{"End of Image", "missing"}), RowOf(table, "End of Image"));
    EXPECT_TRUE(RowOf(table, "Problem").at(1).StartsWith("!"));
}

TEST_F(JpegStructure, WarningOfAnEarlierFile_IsTakenBack) {
    std::string const bytes = EncodeJpeg(64, 48);
    Show("a.jpg", bytes.substr(0, bytes.size() - 40));
    Show("b.jpg", bytes);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(JpegStructure, BytesBehindTheEnd_AreCounted) {
    EXPECT_EQ("7", RowOf(Show("a.jpg", EncodeJpeg(64, 48) + "trailer"), "Bytes Behind the End").at(1));
}

TEST_F(JpegStructure, Comparison_MarksWhatDiffersButNoPlaces) {
    Load(Bytes("a.jpg", WithSegment(EncodeJpeg(64, 48), 0xFE, "note")));
    Load(Bytes("b.jpg", EncodeJpeg(64, 48, 75)), Reference);
    Go(filter);
    VecVecString const table = TableOf(filter);
    EXPECT_EQ("!Different", RowOf(table, "Order of Segments").at(4));
    EXPECT_EQ("!Different", RowOf(table, "Image Quality").at(4));
    EXPECT_EQ("", RowOf(table, "Size").at(4));
    EXPECT_EQ("COM note, offset 2 (0x2), 8 bytes", RowOf(table, "Marker 2").at(2));
    EXPECT_EQ("APP0 JFIF, offset 2 (0x2), 18 bytes", RowOf(table, "Marker 2").at(3));
    EXPECT_EQ("", RowOf(table, "Marker 2").at(4));
}

TEST_F(JpegStructure, ProblemOfOneSide_IsOnlyThere) {
    std::string const bytes = EncodeJpeg(64, 48);
    Load(Bytes("a.jpg", bytes));
    Load(Bytes("b.jpg", bytes.substr(0, bytes.size() - 40)), Reference);
    Go(filter);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    EXPECT_EQ("Warning", filter->GetStatusString(Reference));
    EXPECT_EQ("!Only in Reference", RowOf(TableOf(filter), "Problem").at(4));
    EXPECT_EQ(wxString::Format("%d", static_cast<int>(TableOf(filter).size() - 1)), TableOf(filter).back().at(0));
}

TEST_F(JpegStructure, ThousandsOfSegments_AreCutShort) {
    std::string bytes = EncodeJpeg(64, 48);
    std::string comments;
    for (int i = 0; i < 3000; ++i) comments += support::JpegBuilder().Segment(0xFE, "x").Build();
    VecVecString const table = Show("a.jpg", bytes.substr(0, 2) + comments + bytes.substr(2));
    EXPECT_TRUE(IsDone());
    // Eleven markers beside the comments.
    EXPECT_EQ("1011 (not listed)", RowOf(table, "Further Markers").at(1));
    EXPECT_EQ("SOI, COM x3000, APP0 JFIF, DQT x2, SOF0, DHT x4, SOS, EOI", RowOf(table, "Order of Segments").at(1));
}
