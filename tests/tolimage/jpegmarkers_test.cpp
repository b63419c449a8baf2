// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegmarkers.h"

#include <gtest/gtest.h>

#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tests/support/tempdir.h"
#include "tolbase/limits.h"

using support::FlatTable;
using support::JpegBuilder;

namespace {

class JpegMarkers : public ::testing::Test {
protected:
    std::vector<JpegMarkerPos> Find(std::string const& bytes) {
        return FindJpegMarkers(support::WriteBytes(m_dir / "a.jpg", bytes), InitJpegMarkers());
    }
    std::string Names(std::string const& bytes) {
        std::string names;
        for (JpegMarkerPos const& marker : Find(bytes)) names += (names.empty() ? "" : " ") + marker.name.utf8_string();
        return names;
    }
    support::TempDir m_dir;
};

}  // namespace

TEST_F(JpegMarkers, BaselineFile_HasThemInOrder) {
    EXPECT_EQ("SOI APP0 DQT DQT SOF0 DHT DHT DHT DHT SOS EOI", Names(support::EncodeJpeg(32, 32)));
}

TEST_F(JpegMarkers, OffsetsAndLengths_CountTheMarkerBytes) {
    const std::vector<JpegMarkerPos> found = Find(support::SmallJpeg());
    ASSERT_EQ(6U, found.size());
    const std::pair<int, int> places[] = {{0, 0}, {2, 69}, {71, 13}, {84, 33}, {117, 10}, {132, 0}};
    for (size_t i = 0; i < found.size(); ++i) {
        EXPECT_EQ(places[i].first, found[i].offset) << found[i].name;
        EXPECT_EQ(places[i].second, found[i].length) << found[i].name;
    }
    EXPECT_EQ(0xDB, found[1].code);
}

TEST_F(JpegMarkers, FillBytesBelongToNoMarker) {
    const std::vector<JpegMarkerPos> found = Find(JpegBuilder().Soi().Bytes("\xFF\xFF").Comment("x").Eoi().Build());
    ASSERT_EQ(3U, found.size());
    EXPECT_EQ(4, found[1].offset);
    EXPECT_EQ(5, found[1].length);
}

TEST_F(JpegMarkers, AllScansAndRestarts_AreListed) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, FlatTable(1)).GreyFrame(8, 8).Scan().Restart(0).Restart(1).StandardDcTable().Scan().Eoi();
    EXPECT_EQ("SOI DQT SOF0 SOS RST0 RST1 DHT SOS EOI", Names(builder.Build()));
}

TEST_F(JpegMarkers, PicturesInSegmentsAndBehindTheEnd_AreNotEntered) {
    JpegBuilder builder;
    builder.Soi().App(1, support::SmallJpeg()).Dqt(0, FlatTable(1)).GreyFrame(8, 8).Scan().Eoi();
    EXPECT_EQ("SOI APP1 DQT SOF0 SOS EOI", Names(builder.Build() + support::SmallJpeg()));
}

TEST_F(JpegMarkers, PictureThatBeginsWithinAScan_EndsTheWalk) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, FlatTable(1)).GreyFrame(8, 8).Scan();
    EXPECT_EQ("SOI DQT SOF0 SOS", Names(builder.Build() + support::SmallJpeg()));
}

TEST_F(JpegMarkers, CutSegment_IsListedAsFarAsItGoes) {
    const std::vector<JpegMarkerPos> found = Find(support::SmallJpeg().substr(0, 50));
    ASSERT_EQ(2U, found.size());
    EXPECT_EQ(2, found[1].offset);
    EXPECT_EQ(48, found[1].length);
}

TEST_F(JpegMarkers, UnlistedCodes_AreLeftOut) {
    const wxString path = support::WriteBytes(m_dir / "a.jpg", support::SmallJpeg());
    const std::vector<JpegMarkerPos> found = FindJpegMarkers(path, {{0xDB, "tables"}, {700, "none"}, {-1, "none"}});
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(wxString("tables"), found[0].name);
}

TEST_F(JpegMarkers, MissingAndForeignFiles_HaveNone) {
    EXPECT_TRUE(FindJpegMarkers(m_dir / "none.jpg", InitJpegMarkers()).empty());
    EXPECT_TRUE(Find("GIF89a").empty());
    EXPECT_TRUE(Find("").empty());
}

TEST_F(JpegMarkers, MoreThanTheLimit_AreRefused) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, FlatTable(1)).GreyFrame(8, 8).Scan();
    for (int i = 0; i < 20; ++i) builder.Restart(i % 8);
    SetTolLimit(TolLimit::Segments, 10);
    EXPECT_THROW(Find(builder.Eoi().Build()), TolLimitError);
}

TEST_F(JpegMarkers, Names_HaveNoBlanksAndOneCodeEach) {
    const std::vector<JpegMarker> markers = InitJpegMarkers();
    EXPECT_EQ(254U, markers.size());
    for (JpegMarker const& marker : markers) {
        EXPECT_FALSE(marker.name.empty()) << marker.code;
        EXPECT_EQ(wxString::npos, marker.name.find(' ')) << marker.name;
    }
    EXPECT_EQ(wxString("SOF2"), markers[0xC2 - 1].name);
    EXPECT_EQ(wxString("RST7"), markers[0xD7 - 1].name);
    EXPECT_EQ(wxString("COM"), markers[0xFE - 1].name);
}
