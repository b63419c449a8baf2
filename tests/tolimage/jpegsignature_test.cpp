// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegsignature.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>

#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tolimage/jpeginfo.h"

using support::JpegBuilder;

namespace {

// A tablet's tables, as photographs of it have them: row by row.
constexpr JpegBuilder::Table kTabletLuma{1, 1, 1, 2, 3, 4, 5, 6, 1, 1, 1, 2, 3, 4, 5, 6, 1, 1, 2, 3, 4, 5,
                                         6, 7, 2, 2, 3, 4, 5, 6, 7, 8, 3, 3, 4, 5, 6, 7, 8, 9, 4, 4, 5, 6,
                                         7, 8, 9, 9, 5, 5, 6, 7, 8, 9, 9, 9, 6, 6, 7, 8, 9, 9, 9, 9};
constexpr JpegBuilder::Table kTabletChroma{1, 1, 2, 4, 9, 9, 9, 9, 1, 2, 2, 6, 9, 9, 9, 9, 2, 2, 5, 9, 9, 9,
                                           9, 9, 4, 6, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9,
                                           9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9};

JpegBuilder::Table ZigZag(JpegBuilder::Table const& rows, bool isTurned = false) {
    JpegBuilder::Table table{};
    for (int k = 0; k < 64; ++k) {
        const auto place = static_cast<size_t>(tcvZigZagIndex(k));
        table[static_cast<size_t>(k)] = rows[isTurned ? place % 8 * 8 + place / 8 : place];
    }
    return table;
}

JpegInfo Read(std::string const& bytes) {
    JpegInfo info;
    tcvJpegReadTablesFromMemory(bytes.data(), bytes.size(), info, 1, false, false);
    return info;
}

JpegInfo Tablet(bool isJoint, int factors) {
    JpegBuilder builder;
    builder.Soi();
    if (isJoint) {
        builder.Dqt({{0, ZigZag(kTabletLuma)}, {1, ZigZag(kTabletChroma)}});
    } else {
        builder.Dqt(0, ZigZag(kTabletLuma)).Dqt(1, ZigZag(kTabletChroma));
    }
    return Read(builder.ColourFrame(0xC0, 8, 8, factors).Scan().Eoi().Build());
}

// A record as if its file had been read.
JpegInfo WithDigest(char const* digest, char const* sampling) {
    JpegInfo info = Tablet(true, 0x22);
    info.QuantizationTables = {{}, {}, {}};
    info.QtHash = digest;
    info.QtHashRot = "00000000000000000000000000000000";
    info.SignatureSubsampling = sampling;
    return info;
}

struct Search {
    bool softwareFound = true, cameraFound = true, any = false;
    VecString cameras{"left over"}, software{"left over"}, standard{"left over"};
};

Search Internal(JpegInfo info) {
    Search s;
    s.any =
        info.FindSimilarSignaturesInInternalDatabase(s.softwareFound, s.cameraFound, s.cameras, s.software, s.standard);
    return s;
}

Search User(JpegInfo info, std::vector<JpegSignature> const& records) {
    Search s;
    s.any = info.FindSimilarSignaturesInUserDatabase(records, s.softwareFound, s.cameraFound, s.cameras, s.software,
                                                     s.standard);
    return s;
}

bool Has(VecString const& list, wxString const& entry) {
    return std::count(list.begin(), list.end(), entry) == 1;
}

JpegSignature Record(wxString const& editorClass, wxString const& signature, wxString const& rotated = "") {
    JpegSignature record;
    record.editorClass = editorClass;
    record.make = "Acme";
    record.model = "X1";
    record.quality = "FINE";
    record.signature = signature;
    record.signatureRot = rotated;
    record.softwareName = "Painter";
    return record;
}

bool IsDigest(char const* text) {
    if (std::strlen(text) != 32) return false;
    for (char const* c = text; *c != '\0'; ++c) {
        if (std::strchr("0123456789ABCDEF", *c) == nullptr) return false;
    }
    return true;
}

}  // namespace

TEST(JpegSignatures, Table_EndsInItsTerminatingRecord) {
    JpegsnoopSignature const* record = GetInternalJpegSignatures();
    size_t count = 0;
    for (; record->editorClass != 0; ++record) ++count;
    EXPECT_EQ(GetInternalJpegSignatureCount(), count);
    EXPECT_STREQ("*", record->make);
    EXPECT_STREQ("", record->signature);
    EXPECT_STREQ("", record->table0);
}

// Counted in the source form: 598 records of cameras, 2,794 of software.
TEST(JpegSignatures, Table_HasAllItsRecords) {
    size_t cameras = 0;
    size_t software = 0;
    for (JpegsnoopSignature const* r = GetInternalJpegSignatures(); r->editorClass != 0; ++r) {
        ASSERT_TRUE(r->editorClass == 1 || r->editorClass == 2);
        ++(r->editorClass == 1 ? cameras : software);
    }
    EXPECT_EQ(598U, cameras);
    EXPECT_EQ(2794U, software);
}

TEST(JpegSignatures, Records_AreComplete) {
    for (JpegsnoopSignature const* r = GetInternalJpegSignatures(); r->editorClass != 0; ++r) {
        EXPECT_TRUE(IsDigest(r->signature)) << r->make << r->model << r->softwareName;
        EXPECT_TRUE(*r->signatureRot == '\0' || IsDigest(r->signatureRot)) << r->signature;
        const bool isCamera = r->editorClass == 1;
        EXPECT_EQ(isCamera, *r->make != '\0' && *r->model != '\0') << r->signature;
        EXPECT_NE(isCamera, *r->softwareName != '\0') << r->signature;
        const bool hasTable = *r->table0 != '\0';
        EXPECT_TRUE(hasTable || (*r->table1 == '\0' && *r->signatureRot == '\0')) << r->signature;
        EXPECT_STREQ("", r->table3);
    }
}

TEST(JpegSignatures, Tables_StandForBothLayouts) {
    EXPECT_EQ(wxString("58D4D9DCBBFD83DD638613E8B242E0ED"), Tablet(true, 0x22).QtHash);
    EXPECT_NE(Tablet(true, 0x22).QtHash, Tablet(false, 0x22).QtHash);
    for (const bool isJoint : {true, false}) {
        const Search s = Internal(Tablet(isJoint, 0x22));
        EXPECT_TRUE(s.any);
        EXPECT_TRUE(s.cameraFound);
        EXPECT_TRUE(Has(s.cameras, "Apple,iPad mini 2,"));
        EXPECT_TRUE(std::is_sorted(s.cameras.begin(), s.cameras.end()));
        EXPECT_TRUE(s.standard.empty());
    }
}

TEST(JpegSignatures, OtherSampling_IsNoMatch) {
    EXPECT_FALSE(Has(Internal(Tablet(true, 0x21)).cameras, "Apple,iPad mini 2,"));
}

TEST(JpegSignatures, FourComponents_AreNoMatchForThree) {
    JpegBuilder builder;
    builder.Soi().Adobe(2).Dqt(0, ZigZag(kTabletLuma)).Dqt(1, ZigZag(kTabletChroma));
    builder.Frame(0xC0, 8, 8, {{1, 0x22, 0}, {2, 0x11, 1}, {3, 0x11, 1}, {4, 0x22, 0}}).Scan().Eoi();
    EXPECT_EQ(wxString("2x2/1x1/1x1/2x2"), Read(builder.Build()).SignatureSubsampling);
    EXPECT_FALSE(Internal(Read(builder.Build())).cameraFound);
}

TEST(JpegSignatures, FileWithoutAFrame_ExcludesNoSampling) {
    JpegInfo info = Tablet(true, 0x22);
    info.SignatureSubsampling.clear();
    EXPECT_TRUE(Has(Internal(info).cameras, "Apple,iPad mini 2,"));
}

TEST(JpegSignatures, FurtherTable_IsAnotherSet) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, ZigZag(kTabletLuma)).Dqt(1, ZigZag(kTabletChroma)).Dqt(3, support::FlatTable(1));
    const Search s = Internal(Read(builder.ColourFrame(0xC0, 8, 8, 0x22).Scan().Eoi().Build()));
    EXPECT_FALSE(s.cameraFound);
    EXPECT_TRUE(s.cameras.empty());
}

TEST(JpegSignatures, DigestAlone_IsFoundWithItsSampling) {
    const Search found = Internal(WithDigest("DB8D4DF12405D0D69EB25F06A963AC5B", "2x1"));
    EXPECT_EQ(VecString{"Canon,DV,"}, found.cameras);
    EXPECT_FALSE(Internal(WithDigest("DB8D4DF12405D0D69EB25F06A963AC5B", "2x2")).cameraFound);
}

TEST(JpegSignatures, TurnedPicture_IsListedAsRotated) {
    const JpegInfo straight = Read(support::EncodeJpeg(16, 16, 75));
    JpegBuilder builder;
    builder.Soi();
    for (int i = 0; i < 2; ++i) {
        JpegBuilder::Table rows{};
        for (size_t k = 0; k < 64; ++k) rows[k] = straight.QuantizationTables[static_cast<size_t>(i)][k / 8][k % 8];
        builder.Dqt(i, ZigZag(rows, true));
    }
    const JpegInfo turned = Read(builder.ColourFrame(0xC0, 16, 16, 0x22).Scan().Eoi().Build());
    EXPECT_EQ(straight.QtHashRot, turned.QtHash);
    const Search s = Internal(turned);
    EXPECT_TRUE(Has(s.software, "IJG library, Quality 75 (rotated)"));
    EXPECT_FALSE(Has(s.software, "IJG library, Quality 75"));
    EXPECT_TRUE(s.standard.empty());
}

TEST(JpegSignatures, IjgTables_AreStandardAndSoftware) {
    const Search s = Internal(Read(support::EncodeJpeg(16, 16, 75)));
    EXPECT_EQ(VecString{"IJG library, quality 75"}, s.standard);
    EXPECT_TRUE(Has(s.software, "IJG library, Quality 75"));
    EXPECT_TRUE(s.softwareFound);
}

TEST(JpegSignatures, IjgTablesOfSixteenBits_AreStandard) {
    // Quality 10 takes the luma table of ISO/IEC 10918-1, annex K.1, five times; of bytes no step exceeds 255.
    std::vector<std::vector<int>> rows = {{16, 11, 10, 16, 24, 40, 51, 61},     {12, 12, 14, 19, 26, 58, 60, 55},
                                          {14, 13, 16, 24, 40, 57, 69, 56},     {14, 17, 22, 29, 51, 87, 80, 62},
                                          {18, 22, 37, 56, 68, 109, 103, 77},   {24, 35, 55, 64, 81, 104, 113, 92},
                                          {49, 64, 78, 87, 103, 121, 120, 101}, {72, 92, 95, 98, 112, 100, 103, 99}};
    for (std::vector<int>& row : rows) {
        for (int& value : row) value *= 5;
    }
    JpegInfo grey;
    grey.ColorSpace = "Grayscale";
    grey.QuantizationTables = {rows, {}, {}};
    EXPECT_EQ(VecString{"IJG library, quality 10"}, Internal(grey).standard);
    // The last step alone is within a byte: the others still need sixteen bits.
    grey.QuantizationTables[0][7][7] = 255;
    EXPECT_TRUE(Internal(grey).standard.empty());
    for (std::vector<int>& row : grey.QuantizationTables[0]) {
        for (int& value : row) value = std::min(value, 255);
    }
    EXPECT_EQ(VecString{"IJG library, quality 10"}, Internal(grey).standard);
}

TEST(JpegSignatures, LumaTableAlone_IsStandardForGreyOnly) {
    const JpegInfo colour = Read(support::EncodeJpeg(16, 16, 75));
    JpegInfo grey = colour;
    grey.QuantizationTables[1].clear();
    EXPECT_TRUE(Internal(grey).standard.empty());
    grey.ColorSpace = "Grayscale";
    EXPECT_EQ(VecString{"IJG library, quality 75"}, Internal(grey).standard);
    JpegInfo mixed = colour;
    mixed.QuantizationTables[1] = Read(support::EncodeJpeg(16, 16, 76)).QuantizationTables[1];
    EXPECT_TRUE(Internal(mixed).standard.empty());
    JpegInfo repeated = colour;
    repeated.QuantizationTables[2] = repeated.QuantizationTables[1];
    EXPECT_EQ(VecString{"IJG library, quality 75"}, Internal(repeated).standard);
}

TEST(JpegSignatures, OddTablesAndInvalidRecord_MatchNothing) {
    for (JpegInfo const& info : {Read(support::SmallJpeg()), JpegInfo()}) {
        const Search s = Internal(info);
        EXPECT_FALSE(s.any);
        EXPECT_FALSE(s.softwareFound);
        EXPECT_FALSE(s.cameraFound);
        EXPECT_TRUE(s.cameras.empty());
        EXPECT_TRUE(s.software.empty());
        EXPECT_TRUE(s.standard.empty());
    }
}

TEST(JpegUserSignatures, CameraAndSoftware_GoToTheirLists) {
    const JpegInfo info = Read(support::SmallJpeg());
    const Search s = User(info, {Record("1", info.QtHash), Record(" 2 ", info.QtHash), Record("1", info.QtHash)});
    EXPECT_EQ(VecString{"Acme,X1,FINE"}, s.cameras);
    EXPECT_EQ(VecString{"Painter, FINE"}, s.software);
    EXPECT_TRUE(s.cameraFound && s.softwareFound);
    EXPECT_TRUE(s.standard.empty());
}

TEST(JpegUserSignatures, OtherClassesAndDigests_MatchNothing) {
    const JpegInfo info = Read(support::SmallJpeg());
    const Search s = User(info, {Record("3", info.QtHash), Record("", info.QtHash), Record("1", ""), Record("1", "0")});
    EXPECT_FALSE(s.any);
    EXPECT_FALSE(User(JpegInfo(), {Record("1", "")}).any);
}

TEST(JpegUserSignatures, TypedDigest_IsFoundInAnyCase) {
    const JpegInfo info = Read(support::SmallJpeg());
    EXPECT_EQ(1U, User(info, {Record("1", " " + info.QtHash.Lower())}).cameras.size());
}

TEST(JpegUserSignatures, TurnedDigest_IsListedAsRotated) {
    const JpegInfo info = Read(support::SmallJpeg());
    EXPECT_EQ(VecString{"Acme,X1,FINE (rotated)"}, User(info, {Record("1", "0", info.QtHash)}).cameras);
    EXPECT_EQ(VecString{"Acme,X1,FINE (rotated)"}, User(info, {Record("1", info.QtHashRot)}).cameras);
}

TEST(JpegUserSignatures, Sampling_IsComparedWhereTheRecordTellsIt) {
    const JpegInfo info = Read(support::SmallJpeg());
    JpegSignature record = Record("1", info.QtHash);
    record.subsampling = "2x1";
    EXPECT_TRUE(User(info, {record}).cameras.empty());
    record.subsampling = "Gray";
    EXPECT_EQ(1U, User(info, {record}).cameras.size());
}

TEST(JpegUserSignatures, StandardList_IsFilledHereToo) {
    EXPECT_EQ(VecString{"IJG library, quality 75"}, User(Read(support::EncodeJpeg(16, 16, 75)), {}).standard);
}
