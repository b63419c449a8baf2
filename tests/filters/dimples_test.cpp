// SPDX-License-Identifier: Apache-2.0
#include "filters/dimples.h"

#include "bench/blockencoder.h"
#include "tests/filters/filterengine.h"

namespace {

using support::TableOf;

class Dimples : public support::FilterEngine {
protected:
    // A picture as an encoder with this rounding leaves it.
    wxString Encoded(wxString const& name, bench::Rounding rounding) {
        cv::Mat picture(256, 256, CV_8UC3, cv::Scalar::all(120));
        cv::RNG random(3);
        cv::Mat noise(picture.size(), CV_8UC3);
        random.fill(noise, cv::RNG::UNIFORM, 0, 12);
        picture += noise;
        return Save(name, Image::FromMat(bench::EncodeInBlocks(picture, 90, rounding)));
    }
};

}  // namespace

TEST_F(Dimples, EncoderThatRoundsDown_IsFoundInAnyFormat) {
    auto* filter = Add<OrvFilterDimples>();
    EXPECT_FALSE(filter->IsOnlyForJpeg());
    Load(Encoded("a.png", bench::Rounding::Down));
    Go(filter);
    VecVecString const table = TableOf(filter);
    ASSERT_EQ(3U, table.size());
    EXPECT_EQ((VecString{"JPEG dimples presence:", "Image shows JPEG Dimples artifacts."}), table[0]);
    EXPECT_EQ("Dimples strenght:", table[1][0]);
    EXPECT_EQ("[0, 0]", table[2][1]);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(Dimples, TwoFiles_AreCompared) {
    auto* filter = Add<OrvFilterDimples>();
    Load(Encoded("a.png", bench::Rounding::Down));
    Load(Encoded("b.png", bench::Rounding::Nearest), Reference);
    Go(filter);
    EXPECT_EQ((VecString{"1", "JPEG dimples presence:", "Image shows JPEG Dimples artifacts.",
                         "Image does not show relevant JPEG Dimples artifacts.", "!Different"}),
              TableOf(filter).at(1));
}
