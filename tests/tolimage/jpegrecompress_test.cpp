// SPDX-License-Identifier: Apache-2.0
#include "tolimage/jpegrecompress.h"

#include <gtest/gtest.h>

#include <mutex>

#include "tests/tolimage/pictures.h"
#include "tolbase/exception.h"
#include "tolbase/progress.h"
#include "tolimage/jpeginfo.h"
#include "tolimage/parallel.h"

namespace {

JpegEncoding AtQuality(int quality, JpegSampling sampling = JpegSampling::Full) {
    JpegEncoding encoding;
    encoding.quality = quality;
    encoding.sampling = sampling;
    return encoding;
}

JpegInfo InfoOf(std::string const& bytes) {
    JpegInfo info;
    tcvJpegReadTablesFromMemory(bytes.data(), bytes.size(), info, 2, true, true);
    return info;
}

// What an ordinary decoder makes of the bytes.
cv::Mat Decoded(std::string const& bytes) {
    Image const image = DecodeImageFromMemory(reinterpret_cast<unsigned char const*>(bytes.data()), bytes.size());
    return cv::Mat(image).clone();
}

bool AreEqual(cv::Mat const& a, cv::Mat const& b) {
    return a.size() == b.size() && a.type() == b.type() && cv::norm(a, b, cv::NORM_INF) == 0.0;
}

cv::Mat Pattern(int width, int height) {
    return cv::Mat(pictures::Pattern(width, height)).clone();
}

// What one grey level becomes, in a picture of one or three channels.
int LevelBehind(int level, int quality, int type) {
    cv::Mat const flat(16, 16, type, cv::Scalar::all(level));
    cv::Mat const behind = RecompressJpeg(flat, AtQuality(quality));
    EXPECT_EQ(0.0, cv::norm(behind, cv::Mat(16, 16, type, cv::Scalar::all(*behind.data)), cv::NORM_INF));
    return *behind.data;
}

class Recompressing : public ::testing::Test {
protected:
    ~Recompressing() override {
        SetParallelThreads(0);
        tcvClearAborted();
    }
};

}  // namespace

// The mean of a block is stored as 8 times its distance from 128, in steps of 16 at quality 50 and of 80 at 10.
TEST_F(Recompressing, FlatPicture_GoesToTheNearestStepOfTheMean) {
    for (int const type : {CV_8UC1, CV_8UC3}) {
        EXPECT_EQ(128, LevelBehind(128, 50, type));
        EXPECT_EQ(130, LevelBehind(130, 50, type));
        EXPECT_EQ(132, LevelBehind(131, 50, type));
        EXPECT_EQ(128, LevelBehind(132, 10, type));
        EXPECT_EQ(138, LevelBehind(135, 10, type));
    }
}

TEST_F(Recompressing, Encoding_IsThatWhichWasAskedFor) {
    JpegInfo const info = InfoOf(EncodeJpegToMemory(Pattern(64, 48), AtQuality(75)));
    ASSERT_TRUE(info.IsValid);
    EXPECT_EQ(75, info.QualityEstimates[0]);
    EXPECT_TRUE(info.IsStandardQuality);
    EXPECT_FALSE(info.IsProgressive);
    EXPECT_EQ("4:4:4", info.ChromaSubsampling);
    EXPECT_EQ(64, info.Width);
    EXPECT_EQ(48, info.Height);
}

TEST_F(Recompressing, Sampling_IsThatWhichWasAskedFor) {
    cv::Mat const picture = Pattern(64, 48);
    EXPECT_EQ("4:2:2", InfoOf(EncodeJpegToMemory(picture, AtQuality(75, JpegSampling::Halved))).ChromaSubsampling);
    EXPECT_EQ("4:2:0", InfoOf(EncodeJpegToMemory(picture, AtQuality(75, JpegSampling::Quartered))).ChromaSubsampling);
}

TEST_F(Recompressing, Tables_TakeTheQualitysPlace) {
    JpegEncoding encoding;
    encoding.tables.resize(2);
    encoding.tables[0].fill(3);
    encoding.tables[0][1] = 7;
    encoding.tables[1].fill(300);
    JpegInfo const info = InfoOf(EncodeJpegToMemory(Pattern(16, 16), encoding));
    EXPECT_EQ((std::vector<int>{3, 7, 3, 3, 3, 3, 3, 3}), info.QuantizationTables[0][0]);
    EXPECT_EQ(300, info.QuantizationTables[1][7][7]);
    encoding.tables.resize(1);
    EXPECT_EQ(3, InfoOf(EncodeJpegToMemory(Pattern(16, 16), encoding)).QuantizationTables[1][7][7]);
}

TEST_F(Recompressing, QualityOutOfRange_IsTakenAsTheNearest) {
    EXPECT_EQ(1, InfoOf(EncodeJpegToMemory(Pattern(16, 16), AtQuality(-5))).QualityEstimates[0]);
    EXPECT_EQ(100, InfoOf(EncodeJpegToMemory(Pattern(16, 16), AtQuality(101))).QualityEstimates[0]);
}

TEST_F(Recompressing, Result_IsWhatADecoderGives) {
    cv::Mat const picture = Pattern(203, 301);
    for (JpegSampling const sampling : {JpegSampling::Full, JpegSampling::Halved, JpegSampling::Quartered}) {
        JpegEncoding const encoding = AtQuality(60, sampling);
        EXPECT_TRUE(AreEqual(Decoded(EncodeJpegToMemory(picture, encoding)), RecompressJpeg(picture, encoding)));
    }
    cv::Mat grey;
    cv::extractChannel(picture, grey, 1);
    EXPECT_TRUE(AreEqual(Decoded(EncodeJpegToMemory(grey, AtQuality(60))), RecompressJpeg(grey, AtQuality(60))));
}

TEST_F(Recompressing, ThreadCount_ChangesNothing) {
    cv::Mat const picture = Pattern(100, 700);
    SetParallelThreads(1);
    cv::Mat const alone = RecompressJpeg(picture, AtQuality(40));
    SetParallelThreads(7);
    EXPECT_TRUE(AreEqual(alone, RecompressJpeg(picture, AtQuality(40))));
}

TEST_F(Recompressing, PicturesBeyondTheSizeOfAJpeg_GoTileByTile) {
    cv::Mat const wide(1, 70000, CV_8UC1, cv::Scalar(130));
    EXPECT_TRUE(AreEqual(wide, RecompressJpeg(wide, AtQuality(50))));
    cv::Mat const high(70000, 1, CV_8UC3, cv::Scalar::all(130));
    EXPECT_TRUE(AreEqual(high, RecompressJpeg(high, AtQuality(50))));
    EXPECT_THROW(RecompressJpeg(high, AtQuality(50, JpegSampling::Quartered)), TolException);
    EXPECT_THROW(EncodeJpegToMemory(wide, AtQuality(50)), TolException);
}

TEST_F(Recompressing, Tiles_CoverThePictureOnce) {
    cv::Mat covered = cv::Mat::zeros(300, 20000, CV_8UC1);
    std::mutex mutex;
    int const tiles = RecompressJpegTiles(cv::Mat(300, 20000, CV_8UC1, cv::Scalar(9)), AtQuality(90),
                                          [&](cv::Rect const& place, cv::Mat const& tile) {
                                              std::lock_guard<std::mutex> const lock(mutex);
                                              EXPECT_EQ(place.size(), tile.size());
                                              EXPECT_EQ(0, place.x % 8 + place.y % 8);
                                              covered(place) += 1;
                                          });
    EXPECT_EQ(6, tiles);
    EXPECT_EQ(0, cv::countNonZero(covered != 1));
}

TEST_F(Recompressing, OtherKindsOfPicture_AreRefused) {
    for (int const type : {CV_16UC1, CV_8UC2, CV_8UC4, CV_32FC3}) {
        cv::Mat const picture = cv::Mat::zeros(8, 8, type);
        EXPECT_THROW(RecompressJpeg(picture, AtQuality(90)), TolException) << type;
        EXPECT_THROW(EncodeJpegToMemory(picture, AtQuality(90)), TolException) << type;
    }
    EXPECT_THROW(RecompressJpeg(cv::Mat(), AtQuality(90)), TolException);
    EXPECT_THROW(EncodeJpegToMemory(cv::Mat(), AtQuality(90)), TolException);
}

TEST_F(Recompressing, TablesThatCannotBeWritten_AreRefused) {
    JpegEncoding encoding;
    encoding.tables.resize(3);
    for (auto& table : encoding.tables) table.fill(1);
    EXPECT_THROW(EncodeJpegToMemory(Pattern(8, 8), encoding), TolException);
    encoding.tables.resize(1);
    for (int const step : {0, -1, 32768}) {
        encoding.tables[0][63] = step;
        EXPECT_THROW(EncodeJpegToMemory(Pattern(8, 8), encoding), TolException) << step;
    }
}

TEST_F(Recompressing, Abort_GivesNothing) {
    tcvAbortProgress();
    EXPECT_TRUE(RecompressJpeg(Pattern(64, 48), AtQuality(90)).empty());
    EXPECT_TRUE(RecompressJpeg(Pattern(64, 48), AtQuality(90, JpegSampling::Quartered)).empty());
}
