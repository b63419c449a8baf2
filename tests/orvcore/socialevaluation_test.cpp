// SPDX-License-Identifier: Apache-2.0
#include "orvcore/socialevaluation.h"

#include <gtest/gtest.h>

#include "tests/orvcore/smssamples.h"
#include "tests/support/photo.h"
#include "tests/support/tempdir.h"
#include "tolbase/exception.h"

using support::TempDir;
using support::WriteBytes;

namespace {

OrvSocialSample Sample(wxString const& group, wxString const& source, wxString const& fileId,
                       std::vector<int> const& feature) {
    return {group, source, fileId, feature};
}

// A head line and one line of 48 numbers.
std::string Table(std::string const& group, std::string const& numbers = "") {
    std::string head = "group\tsource\tfile_id\twidth", row = group + "\ts1\tf1\t640";
    for (int i = 1; i < 48; ++i) {
        head += "\tc" + std::to_string(i);
        row += "\t" + std::to_string(i);
    }
    return "# remark\n" + head + "\textra\r\n" + row + numbers + "\tx\r\n";
}

wxString ErrorOf(std::string const& bytes) {
    TempDir dir;
    try {
        OrvLoadSocialSamples(WriteBytes(dir / "labels.tsv", bytes));
    } catch (TolException const& error) {
        EXPECT_EQ(error.GetCode(), 82);
        return error.GetMessage().AfterFirst(',');
    }
    return "no error";
}

}  // namespace

TEST(SocialSamples, Table_GivesGroupSourceFileAndNumbers) {
    TempDir dir;
    std::vector<OrvSocialSample> const samples = OrvLoadSocialSamples(WriteBytes(dir / "l.tsv", Table("flickr")));
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0].group, "flickr");
    EXPECT_EQ(samples[0].source, "s1");
    EXPECT_EQ(samples[0].fileId, "f1");
    ASSERT_EQ(samples[0].feature.size(), 48u);
    EXPECT_EQ(samples[0].feature.front(), 640);
    EXPECT_EQ(samples[0].feature.back(), 47);
}

TEST(SocialSamples, BrokenTables_TellTheLine) {
    EXPECT_EQ(ErrorOf(Table("flickr", "\t5")), " line 3: another number of cells than of columns");
    EXPECT_EQ(ErrorOf(Table("")), " line 3: no group");
    EXPECT_EQ(ErrorOf("width\n"), " line 1: no column \"group\"");
    EXPECT_EQ(ErrorOf("group\n"), " line 1: neither a column \"width\" nor a column \"file\"");
    EXPECT_EQ(ErrorOf("group\twidth\n"), " line 1: fewer than 48 columns from \"width\" on");
    EXPECT_EQ(ErrorOf("# nothing\n"), " line 1: no line names the columns");
    EXPECT_EQ(ErrorOf("group\tfile\nflickr\tmissing.jpg\n").Left(24), " line 2: no such file: /");
    EXPECT_THROW(OrvLoadSocialSamples("/nowhere/labels.tsv"), TolException);
}

TEST(SocialSamples, NoNumber_IsToldWithItsText) {
    std::string table = Table("flickr");
    table.replace(table.find("640"), 3, "6e4");
    EXPECT_EQ(ErrorOf(table), " line 3: no number: 6e4");
}

TEST(SocialSamples, Files_AreReadBesideTheTable) {
    TempDir dir;
    WriteBytes(dir / "in/a.jpg", support::EncodeJpeg(64, 48));
    std::vector<OrvSocialSample> const samples =
        OrvLoadSocialSamples(WriteBytes(dir / "labels.tsv", "group\tfile\nnone:x\tin/a.jpg\n"));
    ASSERT_EQ(samples.size(), 1u);
    EXPECT_EQ(samples[0].fileId, dir / "in/a.jpg");
    EXPECT_EQ(samples[0].feature[0], 64);
}

TEST(SocialEvaluation, CountsWhatBecameOfEachGroup) {
    SMSCollection collection;
    for (char const* hash : {"1", "2", "3"}) {
        collection.AddEntryToDatabase(Signature("Flickr", Feature(500, 400), hash));
        collection.AddEntryToDatabase(Signature("Google+", Feature(500, 400, 90), hash));
    }
    OrvSocialEvaluation const evaluation = OrvEvaluateSocialClassifier(
        {Sample("flickr", "", "", Feature(500, 400)), Sample("google", "", "", Feature(500, 400)),
         Sample("none:camera", "", "", Feature(500, 400, 90)), Sample("none:camera", "", "", Feature(9000, 400, 90))},
        collection);
    EXPECT_EQ(evaluation.GetSummary(), (VecVecString{{"Group", "Samples", "Named rightly", "Share",
                                                      "Right among several", "Share", "Not classified", "Share"},
                                                     {"Flickr", "1", "1", "100.0 %", "1", "100.0 %", "0", "0.0 %"},
                                                     {"Google+", "1", "0", "0.0 %", "0", "0.0 %", "0", "0.0 %"},
                                                     {"none:camera", "2", "", "", "", "", "1", "50.0 %"}}));
    EXPECT_EQ(evaluation.GetConfusion(), (VecVecString{{"Group", "Flickr", "Google+", "Not classified"},
                                                       {"Flickr", "1", "0", "0"},
                                                       {"Google+", "1", "0", "0"},
                                                       {"none:camera", "0", "1", "1"}}));
    EXPECT_EQ(evaluation.GetNegatives(), 2u);
    EXPECT_EQ(evaluation.GetFalsePositives(), 1u);
}

TEST(SocialEvaluation, TiedPlatforms_CountAsRightAmongSeveral) {
    SMSCollection collection;
    for (char const* name : {"Flickr", "Flickr", "Twitter", "Twitter"}) {
        collection.AddEntryToDatabase(Signature(name, Feature(500, 400), name));
    }
    OrvSocialEvaluation const evaluation =
        OrvEvaluateSocialClassifier({Sample("Flickr", "", "", Feature(500, 400))}, collection);
    EXPECT_EQ(evaluation.rows[0].right, 0u);
    EXPECT_EQ(evaluation.rows[0].rightAmong, 1u);
}

// Three samples of one source; the fourth signature is modelled on the first.
TEST(SocialEvaluation, OwnSource_IsLeftOutWithWhatIsModelledOnIt) {
    wxString const first = "0123456789abcdef0000000000000001";
    wxString const modelled =
        "000000000000"
        "0001"
        "0123456789abcdef";
    SMSCollection collection;
    for (wxString const& file : {first, wxString("b"), wxString("c"), modelled}) {
        collection.AddEntryToDatabase(
            SocialMediaSignature(file, "Flickr", "2020-02-02", file, Feature(500, 400), SMS_Internal));
    }
    std::vector<OrvSocialSample> const samples = {Sample("Flickr", "s1", first, Feature(500, 400)),
                                                  Sample("Flickr", "s1", "b", Feature(500, 400)),
                                                  Sample("Flickr", "s1", "c", Feature(500, 400))};
    OrvSocialEvaluation const strict = OrvEvaluateSocialClassifier(samples, collection);
    EXPECT_EQ(strict.leftOut, 4u);
    EXPECT_EQ(strict.rows[0].notClassified, 3u);
    OrvSocialEvaluation const shared = OrvEvaluateSocialClassifier(samples, collection, false);
    EXPECT_EQ(shared.rows[0].right, 2u) << "the first has two neighbours left, the others three";
    EXPECT_EQ(shared.rows[0].notClassified, 1u);
}

TEST(SocialEvaluation, UnknownPlatform_IsNoNegative) {
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("Flickr", Feature(500, 400), "1"));
    OrvSocialEvaluation const evaluation =
        OrvEvaluateSocialClassifier({Sample("vk", "", "", Feature(500, 400))}, collection, true, 1);
    EXPECT_TRUE(evaluation.rows[0].isPlatform);
    EXPECT_EQ(evaluation.rows[0].right, 0u);
    EXPECT_EQ(evaluation.GetNegatives(), 0u);
}

TEST(SocialEvaluation, TwoRuns_AddUp) {
    std::vector<SocialMediaSignature> list;
    for (char const* hash : {"1", "2", "3"}) list.push_back(Signature("Flickr", Feature(500, 400), hash));
    OrvSocialEvaluation sum = OrvEvaluateSocialClassifier({Sample("flickr", "s1", "", Feature(500, 400))}, list);
    sum.Add(OrvEvaluateSocialClassifier(
        {Sample("flickr", "s2", "", Feature(9000, 400)), Sample("none:camera", "s2", "", Feature(500, 400))}, list));
    ASSERT_EQ(sum.rows.size(), 2u);
    EXPECT_EQ(sum.rows[0].group, "Flickr");
    EXPECT_EQ(sum.rows[0].samples, 2u);
    EXPECT_EQ(sum.rows[0].right, 1u);
    EXPECT_EQ(sum.rows[0].notClassified, 1u);
    EXPECT_EQ(sum.rows[1].named.at("Flickr"), 1u);
    EXPECT_EQ(sum.signatures, 3u);
    EXPECT_EQ(sum.GetFalsePositives(), 1u);
}
