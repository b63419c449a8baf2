// SPDX-License-Identifier: Apache-2.0
// Huffman tables and quality estimates of JpegInfo.
#include <gtest/gtest.h>

#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tolimage/jpeg_quality.h"
#include "tolimage/jpeginfo.h"

using support::FlatTable;
using support::JpegBuilder;

namespace {

JpegInfo Read(std::string const& bytes) {
    JpegInfo info;
    tcvJpegReadTablesFromMemory(bytes.data(), bytes.size(), info, 2, true, true);
    return info;
}

JpegInfo WithHuffman(JpegBuilder const& tables) {
    JpegBuilder builder;
    builder.Soi().Dqt(0, FlatTable(1)).GreyFrame(8, 8).Bytes(tables.Build()).Scan().Eoi();
    return Read(builder.Build());
}

bool AllStandard(JpegInfo const& info) {
    return info.HtIsStandard[0] && info.HtIsStandard[1] && info.HtIsStandard[2];
}

}  // namespace

TEST(JpegHuffman, TablesOfTheIjgLibrary_AreStandard) {
    const JpegInfo info = Read(support::EncodeJpeg(32, 32));
    ASSERT_EQ(3U, info.HuffmanTables.size());
    EXPECT_EQ((std::vector<int>{0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0}), info.HuffmanTables[0][0]);
    EXPECT_EQ((std::vector<int>{0, 2, 1, 3, 3, 2, 4, 3, 5, 5, 4, 4, 0, 0, 1, 125}), info.HuffmanTables[0][1]);
    EXPECT_EQ((std::vector<int>{0, 3, 1, 1, 1, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0}), info.HuffmanTables[1][0]);
    EXPECT_EQ((std::vector<int>{0, 2, 1, 2, 4, 4, 3, 4, 7, 5, 4, 4, 0, 1, 2, 119}), info.HuffmanTables[1][1]);
    EXPECT_TRUE(info.HuffmanTables[2].empty());
    EXPECT_TRUE(AllStandard(info));
}

TEST(JpegHuffman, MissingSets_CountAsStandard) {
    EXPECT_TRUE(AllStandard(WithHuffman(JpegBuilder())));
}

TEST(JpegHuffman, OneClassAlone_LeavesTheOtherAtZero) {
    const JpegInfo info = WithHuffman(JpegBuilder().StandardDcTable());
    EXPECT_EQ(std::vector<int>(16, 0), info.HuffmanTables[0][1]);
    EXPECT_TRUE(AllStandard(info));
}

TEST(JpegHuffman, SameCountsWithOtherValues_AreNotStandard) {
    const JpegInfo info = WithHuffman(JpegBuilder().Dht(0, 0, {0, 1, 5, 1, 1, 1, 1, 1, 1, 0, 0, 0, 0, 0, 0, 0},
                                                        std::string("\1\0\2\3\4\5\6\7\10\11\12\13", 12)));
    EXPECT_FALSE(info.HtIsStandard[0]);
    EXPECT_TRUE(info.HtIsStandard[1]);
    EXPECT_TRUE(info.HtIsStandard[2]);
}

TEST(JpegHuffman, ThirdAndFourthSet_AreNeverStandard) {
    EXPECT_FALSE(WithHuffman(JpegBuilder().StandardDcTable(2)).HtIsStandard[2]);
    EXPECT_FALSE(WithHuffman(JpegBuilder().StandardDcTable(3)).HtIsStandard[2]);
    EXPECT_EQ(2U, WithHuffman(JpegBuilder().StandardDcTable(2)).HuffmanTables[2].size());
}

TEST(JpegHuffman, LumaTableUnderTheChromaIndex_IsNotStandard) {
    EXPECT_FALSE(WithHuffman(JpegBuilder().StandardDcTable(1)).HtIsStandard[1]);
}

TEST(JpegHuffman, TooManyCodesOrTooFewValues_AreTold) {
    std::array<int, 16> many{};
    many.fill(255);
    EXPECT_EQ(1U, WithHuffman(JpegBuilder().Dht(0, 0, many, std::string(300, '\1'))).Problems.size());
    const JpegInfo info = WithHuffman(JpegBuilder().Dht(0, 0, {3}, "\1\2"));
    EXPECT_EQ(1U, info.Problems.size());
    EXPECT_TRUE(info.HuffmanTables[0].empty());
}

// The first row of ITU-T T.81 table K.1 is 16 11 10 16 24 40 51 61.
TEST(JpegQuality, IjgTables_FollowTheFormula) {
    const JpegQuantTable half = IjgJpegTable(false, 50, false);
    EXPECT_EQ(16, half.values[0]);
    EXPECT_EQ(61, half.values[7]);
    const JpegQuantTable ninety = IjgJpegTable(false, 90, false);
    EXPECT_EQ(3, ninety.values[0]);
    EXPECT_EQ(12, ninety.values[7]);
    const JpegQuantTable low = IjgJpegTable(true, 10, false);
    EXPECT_EQ(85, low.values[0]);
    EXPECT_EQ(255, low.values[63]);
    EXPECT_EQ(495, IjgJpegTable(true, 10, true).values[63]);
    EXPECT_EQ(1, IjgJpegTable(true, 100, false).values[63]);
}

TEST(JpegQuality, TablesOfTheIjgLibrary_AreNamedExactly) {
    for (const int quality : {10, 49, 50, 51, 75, 90, 99, 100}) {
        const JpegInfo info = Read(support::EncodeJpeg(16, 16, quality));
        EXPECT_EQ((std::vector<int>{quality, quality, quality}), info.QualityEstimates);
        EXPECT_TRUE(info.IsStandardQuality);
    }
}

// All chrominance values are 255 up to quality 3 (18 * 1666 / 100 is 300): the higher of equally near ones is named.
TEST(JpegQuality, TablesThatSeveralQualitiesShare_GetTheHighest) {
    EXPECT_EQ((std::vector<int>{1, 1, 3}), Read(support::EncodeJpeg(16, 16, 1)).QualityEstimates);
}

TEST(JpegQuality, OtherTables_GetTheNearest) {
    JpegBuilder builder;
    // All ones but for the first: nearest to quality 100, which is all ones.
    auto table = FlatTable(1);
    table[0] = 2;
    const JpegInfo info = Read(builder.Soi().Dqt(0, table).GreyFrame(8, 8).Scan().Eoi().Build());
    EXPECT_EQ(100, info.QualityEstimates.at(0));
    EXPECT_FALSE(info.IsStandardQuality);
}

TEST(JpegQuality, LumaAndChroma_HaveEstimatesOfTheirOwn) {
    const JpegInfo low = Read(support::EncodeJpeg(16, 16, 60));
    const JpegInfo high = Read(support::EncodeJpeg(16, 16, 95));
    const auto zigzag = [](std::vector<std::vector<int>> const& rows) {
        JpegBuilder::Table table{};
        for (int k = 0; k < 64; ++k) {
            const auto place = static_cast<size_t>(tcvZigZagIndex(k));
            table[static_cast<size_t>(k)] = rows[place / 8][place % 8];
        }
        return table;
    };
    JpegBuilder builder;
    builder.Soi().Dqt(0, zigzag(high.QuantizationTables[0])).Dqt(1, zigzag(low.QuantizationTables[1]));
    const JpegInfo mixed = Read(builder.ColourFrame(0xC0, 8, 8, 0x22).Scan().Eoi().Build());
    ASSERT_EQ(3U, mixed.QualityEstimates.size());
    EXPECT_EQ(95, mixed.QualityEstimates[1]);
    EXPECT_EQ(60, mixed.QualityEstimates[2]);
    EXPECT_FALSE(mixed.IsStandardQuality);
}
