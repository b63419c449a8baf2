// SPDX-License-Identifier: Apache-2.0
#include "filters/socialmedia.h"

#include "orvcore/smscollection.h"
#include "tests/filters/filterengine.h"
#include "tests/orvcore/smssamples.h"

namespace {

using support::TableOf;

class SocialMedia : public support::FilterEngine {
protected:
    SocialMedia() : filter(Add<OrvFilterSocialMedia>()) {}
    OrvFilterSocialMedia* filter;
};

class Verdicts : public OrvFilterSocialMedia {
public:
    using OrvFilterSocialMedia::GetVerdict;
};

}  // namespace

TEST_F(SocialMedia, Run_LoadsTheCompiledSignatures) {
    EXPECT_TRUE(filter->IsOnlyForJpeg());
    Load(Jpeg("a.jpg"));
    Go(filter);
    EXPECT_EQ(6072U, SMSCollection().GetTotalNumberOfSMSInDatabase());
    EXPECT_EQ(7U, TableOf(filter).size());
}

TEST_F(SocialMedia, FileOfAPlatform_IsAWarning) {
    wxString const path = Jpeg("a.jpg", 640, 480);
    std::vector<int> const feature = SocialMediaSignature(path, "?", SMS_User, "d").GetFeature();
    for (int i = 0; i < 3; ++i) SMSCollection().AddEntryToDatabase(Signature("Twitter", feature, "same"));
    Load(path);
    Go(filter);
    VecVecString const table = TableOf(filter);
    EXPECT_EQ((VecString{"Classification:", "Image likely comes from a Social Media Platform"}), table[0]);
    EXPECT_EQ((VecString{"Closest Social Platform:", "Twitter"}), table[1]);
    EXPECT_EQ((VecString{"Similarity Score:", "1.0000"}), table[2]);
    EXPECT_EQ("Warning", filter->GetStatusString(Evidence));
}

TEST_F(SocialMedia, WarningOfAnEarlierFile_IsTakenBack) {
    wxString const path = Jpeg("a.jpg", 640, 480);
    std::vector<int> const feature = SocialMediaSignature(path, "?", SMS_User, "d").GetFeature();
    for (int i = 0; i < 3; ++i) SMSCollection().AddEntryToDatabase(Signature("Twitter", feature, "same"));
    Load(path);
    Go(filter);
    ASSERT_EQ("Warning", filter->GetStatusString(Evidence));
    Load(Save("b.png", support::Ramp(20, 20, IPL_DEPTH_8U, 3)));
    Go(filter);
    EXPECT_EQ("Unsupported", filter->GetStatusString(Evidence));
    EXPECT_TRUE(TableOf(filter).empty());
}

TEST(SocialMediaVerdict, PlatformInTheSecondRow_Warns) {
    Verdicts const filter;
    EXPECT_EQ(OrvFilterConfiguration::Warning, filter.GetVerdict({{"Classification:", "x"}, {"Closest:", "Twitter"}}));
    EXPECT_EQ(OrvFilterConfiguration::Ok, filter.GetVerdict({{"Classification:", "x"}, {"Closest:", "-"}}));
    EXPECT_EQ(OrvFilterConfiguration::Ok, filter.GetVerdict({{"Classification:", ""}, {"Closest:", ""}}));
    EXPECT_EQ(OrvFilterConfiguration::Ok, filter.GetVerdict({}));
}
