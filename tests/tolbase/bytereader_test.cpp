// SPDX-License-Identifier: Apache-2.0
#include "tolbase/bytereader.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr unsigned char kBytes[] = {0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08};
constexpr uint64_t kHuge = std::numeric_limits<uint64_t>::max();

ByteView View() {
    return {kBytes, sizeof kBytes, 100};
}

}  // namespace

TEST(ByteView, NumbersInBothOrders) {
    EXPECT_EQ(0x0203, View().U16(1, true));
    EXPECT_EQ(0x0302, View().U16(1, false));
    EXPECT_EQ(0x01020304U, View().U32(0, true));
    EXPECT_EQ(0x08070605U, View().U32(4, false));
    EXPECT_EQ(0x0102030405060708U, View().U64(0, true));
    EXPECT_EQ(0x0807060504030201U, View().U64(0, false));
}

TEST(ByteView, HugeOffsetsAndLengths_DontWrap) {
    EXPECT_FALSE(View().Has(kHuge, 1));
    EXPECT_FALSE(View().Has(1, kHuge));
    EXPECT_FALSE(View().Has(kHuge, kHuge));
    EXPECT_TRUE(View().Has(8, 0));
    EXPECT_FALSE(View().Has(9, 0));
    EXPECT_THROW(View().U32(kHuge - 1, true), ByteError);
    EXPECT_THROW(View().Sub(4, kHuge - 2), ByteError);
    EXPECT_EQ(0U, View().Clamp(kHuge, kHuge).Size());
    EXPECT_EQ(5U, View().Clamp(3, kHuge).Size());
}

TEST(ByteView, Sub_KeepsItsPlaceInTheFile) {
    const ByteView part = View().Sub(2, 3).Sub(1, 2);
    EXPECT_EQ(103U, part.Base());
    EXPECT_EQ(2U, part.Size());
    EXPECT_EQ(0x04, part.At(0));
    EXPECT_EQ(std::string("\x04\x05"), part.ToString());
}

TEST(ByteView, Empty_HasNothing) {
    const ByteView empty;
    EXPECT_TRUE(empty.IsEmpty());
    EXPECT_FALSE(empty.Has(0, 1));
    EXPECT_THROW(empty.At(0), ByteError);
    EXPECT_TRUE(empty.Sub(0, 0).IsEmpty());
    EXPECT_TRUE(empty.From(7).IsEmpty());
    EXPECT_TRUE(empty.Matches(0, "", 0));
    EXPECT_EQ(std::string(), empty.ToString());
}

TEST(ByteView, Matches_ComparesWithinTheView) {
    EXPECT_TRUE(View().Matches(1, "\x02\x03", 2));
    EXPECT_FALSE(View().Matches(1, "\x02\x04", 2));
    EXPECT_FALSE(View().Matches(7, "\x08\x09", 2));
}

TEST(ByteReader, PastTheEnd_TellsOffsetAndExpectation) {
    ByteReader reader(View());
    reader.Skip(6);
    try {
        reader.U32("a chunk length");
        FAIL() << "no error";
    } catch (ByteError const& error) {
        EXPECT_EQ(ByteErrorKind::Truncated, error.GetKind());
        EXPECT_EQ(106U, error.GetOffset());
        EXPECT_STREQ("truncated at offset 106: expected a chunk length", error.what());
    }
    EXPECT_EQ(6U, reader.Position());
}

TEST(ByteReader, Reads_MoveOn) {
    ByteReader reader(View(), false);
    EXPECT_EQ(0x01, reader.U8());
    EXPECT_EQ(0x0302, reader.U16());
    reader.SetBigEndian(true);
    EXPECT_EQ(0x0405, reader.U16());
    EXPECT_EQ(3U, reader.Remaining());
    EXPECT_EQ(105U, reader.FileOffset());
    EXPECT_EQ(105U, reader.Take(2).Base());
    EXPECT_FALSE(reader.AtEnd());
    reader.Seek(8);
    EXPECT_TRUE(reader.AtEnd());
    EXPECT_THROW(reader.Seek(9), ByteError);
}

TEST(ByteReader, Fail_SaysWhichKind) {
    ByteReader reader(View());
    try {
        reader.Fail(ByteErrorKind::Unsupported, "a version below 3");
    } catch (ByteError const& error) {
        EXPECT_STREQ("unsupported at offset 100: expected a version below 3", error.what());
    }
}
