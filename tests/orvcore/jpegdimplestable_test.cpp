// SPDX-License-Identifier: Apache-2.0
#include "orvcore/jpegdimplestable.h"

#include <gtest/gtest.h>

#include <clocale>
#include <opencv2/imgproc.hpp>

#include "bench/blockencoder.h"
#include "tests/orvcore/catalogue.h"
#include "tests/orvcore/slotfiles.h"
#include "tolimage/imageio.h"

namespace {

char const* const kPresent = "Image shows JPEG Dimples artifacts.";
char const* const kAbsent = "Image does not show relevant JPEG Dimples artifacts.";
char const* const kHide = "Hide Best Matching Parameters for Negative Compatibility";

class DimplesTable : public support::Slots {
protected:
    static VecString Show(double strength, int x, int y) {
        PCEoutput result;
        result.strength = strength;
        result.xOffset = x;
        result.yOffset = y;
        return support::Column(JpegDimplesGlobalTable(Evidence).ShowResult(result), 1);
    }
    void SetHide(int index) {
        VecVecParameter options = context->GetProgramOptions();
        options[0].Find(kHide)->Set(boost::any(index));
        context->SetProgramOptions(options);
    }
    // Loads a picture as an encoder with this rounding leaves it, without a further loss.
    void LoadEncoded(bench::Rounding rounding) {
        cv::Mat picture(256, 256, CV_8UC3, cv::Scalar::all(120));
        cv::RNG random(3);
        cv::Mat noise(picture.size(), CV_8UC3);
        random.fill(noise, cv::RNG::UNIFORM, 0, 12);
        picture += noise;
        const Image image = Image::FromMat(bench::EncodeInBlocks(picture, 90, rounding));
        const wxString path = dir / "in.png";
        ASSERT_TRUE(tcvSaveImage(path, image, 100));
        Load(path);
    }
};

}  // namespace

TEST_F(DimplesTable, NoFile_GivesDefaultRows) {
    const VecVecString rows = JpegDimplesGlobalTable(Evidence).Evaluate();
    EXPECT_EQ((VecVecString{{"JPEG dimples presence:", ""}, {"Dimples strenght:", ""}, {"Offset (x,y):", ""}}), rows);
}

TEST_F(DimplesTable, StrengthAtTheThreshold_CountsAsPresent) {
    EXPECT_EQ((VecString{kPresent, "13.00", "[2, 5]"}), Show(13.0, 2, 5));
}

TEST_F(DimplesTable, StrengthBelowTheThreshold_HidesTheOffset) {
    EXPECT_EQ((VecString{kAbsent, "13.00", "-"}), Show(12.9999, 2, 5));
    EXPECT_EQ((VecString{kAbsent, "0.00", "-"}), Show(0, 0, 0));
}

TEST_F(DimplesTable, OptionAtNo_ShowsTheOffsetOfANegativeResult) {
    SetHide(0);
    EXPECT_EQ((VecString{kAbsent, "4.57", "[7, 0]"}), Show(4.567, 7, 0));
    SetHide(1);
    EXPECT_EQ("-", Show(4.567, 7, 0)[2]);
}

TEST_F(DimplesTable, Verdicts_AreTranslated) {
    ASSERT_TRUE(support::UseTranslations(dir, {{kPresent, "Ci sono."}, {kAbsent, "Non ci sono."}}));
    EXPECT_EQ("Ci sono.", Show(20, 0, 0)[0]);
    EXPECT_EQ("Non ci sono.", Show(2, 0, 0)[0]);
}

TEST_F(DimplesTable, PictureRoundedDown_IsFoundInAnyFormat) {
    ASSERT_NO_FATAL_FAILURE(LoadEncoded(bench::Rounding::Down));
    const VecVecString rows = JpegDimplesGlobalTable(Evidence).Evaluate();
    EXPECT_EQ(kPresent, rows[0][1]);
    EXPECT_EQ("[0, 0]", rows[2][1]);
}

TEST_F(DimplesTable, PictureRoundedToTheNearest_IsNot) {
    ASSERT_NO_FATAL_FAILURE(LoadEncoded(bench::Rounding::Nearest));
    const VecVecString rows = JpegDimplesGlobalTable(Evidence).Evaluate();
    EXPECT_EQ(kAbsent, rows[0][1]);
    EXPECT_EQ("-", rows[2][1]);
}

TEST_F(DimplesTable, PictureOfOneBlock_IsAnalysedWithoutAFinding) {
    LoadBytes(support::EncodeJpeg(8, 8), "small.jpg");
    EXPECT_EQ((VecString{kAbsent, "0.00", "-"}), support::Column(JpegDimplesGlobalTable(Evidence).Evaluate(), 1));
}

TEST_F(DimplesTable, EmptiedSlot_GivesDefaultRowsAgain) {
    LoadBytes(support::EncodeJpeg(64, 48), "a.jpg");
    JpegDimplesGlobalTable table(Evidence);
    EXPECT_EQ(kAbsent, table.Evaluate()[0][1]);
    Load("");
    EXPECT_EQ("", table.Evaluate()[0][1]);
}
