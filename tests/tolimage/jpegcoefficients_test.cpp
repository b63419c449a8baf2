// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegcoefficients.h"

#include <gtest/gtest.h>

#include "tests/support/coefficientjpeg.h"
#include "tests/support/jpegbuilder.h"
#include "tests/support/photo.h"
#include "tests/tolimage/pictures.h"
#include "tolbase/exception.h"
#include "tolbase/limits.h"
#include "tolbase/progress.h"

namespace {

using support::JpegBuilder;

class Coefficients : public ::testing::Test {
protected:
    ~Coefficients() override { tcvClearAborted(); }

    JpegCoefficients Read(std::string const& bytes, int component = 0, int index = 0) {
        return ReadJpegCoefficients(support::WriteBytes(dir / "a.jpg", bytes), component, index);
    }
    // The message that reading ends with, or "none".
    wxString Refusal(std::string const& bytes, int component = 0, int index = 0) {
        try {
            Read(bytes, component, index);
        } catch (TolException const& exception) {
            return exception.GetMessage();
        }
        return "none";
    }
    support::TempDir dir;
};

// Block b has b at the mean, -b at the first place of the second row and 100 + b at the last place.
int Known(int block, int place) {
    if (place == 0) return block;
    if (place == 8) return -block;
    return place == 63 ? 100 + block : 0;
}

}  // namespace

TEST_F(Coefficients, KnownOnes_AreRead) {
    std::string const bytes = support::CoefficientJpeg(3, 2, 5, Known);
    JpegCoefficients const mean = Read(bytes);
    EXPECT_EQ((std::vector<int16_t>{0, 1, 2, 3, 4, 5}), mean.values);
    EXPECT_EQ(5, mean.step);
    EXPECT_EQ(3, mean.blocksAcross);
    EXPECT_EQ(2, mean.blocksDown);
    EXPECT_EQ(1, mean.componentCount);
    EXPECT_EQ((std::vector<int16_t>{100, 101, 102, 103, 104, 105}), Read(bytes, 0, 63).values);
}

// The zigzag goes from the mean to the right (1) and then down (2).
TEST_F(Coefficients, Index_CountsInZigzagOrder) {
    std::string const bytes = support::CoefficientJpeg(3, 2, 5, Known);
    EXPECT_EQ((std::vector<int16_t>{0, -1, -2, -3, -4, -5}), Read(bytes, 0, 2).values);
    EXPECT_EQ((std::vector<int16_t>(6, 0)), Read(bytes, 0, 1).values);
}

// 4:2:0: the luma has 5 by 3 blocks of a picture of 40 by 20 pixels, filled up to 6 by 4 for whole units.
TEST_F(Coefficients, BlocksThatFillUpAUnit_AreLeftOut) {
    std::string const bytes = support::EncodeJpeg(40, 20);
    EXPECT_EQ(15U, Read(bytes, 0).values.size());
    EXPECT_EQ(6U, Read(bytes, 1).values.size());
    EXPECT_EQ(3, Read(bytes, 2).componentCount);
}

TEST_F(Coefficients, WhatIsNotThere_IsRefused) {
    std::string const bytes = support::CoefficientJpeg(3, 2, 5, Known);
    EXPECT_EQ("The picture has no such colour component.", Refusal(bytes, 1));
    EXPECT_EQ("The picture has no such colour component.", Refusal(bytes, -1));
    EXPECT_EQ("A DCT coefficient has a number from 0 to 63.", Refusal(bytes, 0, 64));
    EXPECT_EQ("A DCT coefficient has a number from 0 to 63.", Refusal(bytes, 0, -1));
}

TEST_F(Coefficients, OtherFiles_AreRefused) {
    EXPECT_EQ("The file is no JPEG or can't be read.", Refusal("GIF89a"));
    EXPECT_EQ("The file is no JPEG or can't be read.", Refusal(""));
    EXPECT_THROW(ReadJpegCoefficients(dir / "missing.jpg", 0, 0), TolException);
    EXPECT_THROW(ReadJpegCoefficients(dir.Path(), 0, 0), TolException);
}

TEST_F(Coefficients, TruncatedFile_IsRefusedAsSuch) {
    std::string const bytes = support::EncodeJpeg(200, 150);
    for (size_t const left : {bytes.size() / 2, bytes.size() - 20, size_t{300}, size_t{3}}) {
        EXPECT_TRUE(Refusal(bytes.substr(0, left)).StartsWith("Truncated: ")) << left << Refusal(bytes.substr(0, left));
    }
}

// All blocks stand there: nothing is missing but the marker.
TEST_F(Coefficients, EndMarkerMissing_IsNoDamage) {
    std::string const bytes = support::EncodeJpeg(200, 150);
    EXPECT_EQ("none", Refusal(bytes.substr(0, bytes.size() - 2)));
}

TEST_F(Coefficients, BrokenCodes_AreRefusedAsCorrupt) {
    std::string bytes = support::EncodeJpeg(200, 150);
    bytes.replace(bytes.size() / 2, 40, std::string(40, '\xFE'));
    EXPECT_TRUE(Refusal(bytes).StartsWith("Corrupt: ")) << Refusal(bytes);
}

TEST_F(Coefficients, OtherProcesses_AreUnsupported) {
    auto const frame = [](int code, int precision) {
        return JpegBuilder()
            .Soi()
            .Dqt(0, support::FlatTable(1))
            .Frame(code, 8, 8, {{1, 0x11, 0}}, precision)
            .StandardDcTable()
            .Scan()
            .Eoi()
            .Build();
    };
    EXPECT_TRUE(Refusal(frame(0xC1, 12)).StartsWith("Unsupported: ")) << Refusal(frame(0xC1, 12));
    EXPECT_TRUE(Refusal(frame(0xC3, 8)).StartsWith("Unsupported: ")) << Refusal(frame(0xC3, 8));
}

TEST_F(Coefficients, HugeClaims_AreRefusedBeforeMemoryIsTaken) {
    EXPECT_THROW(Read(support::SmallJpeg(1, 60000, 60000)), TolLimitError);
    EXPECT_TRUE(Refusal(support::SmallJpeg(1, 16000, 16000)).StartsWith("Corrupt: 16000x16000 pixels in a file of "));
}

TEST_F(Coefficients, Abort_GivesNothing) {
    std::string const bytes = support::CoefficientJpeg(3, 2, 5, Known);
    tcvAbortProgress();
    EXPECT_TRUE(Read(bytes).values.empty());
}
