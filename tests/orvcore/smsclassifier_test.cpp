// SPDX-License-Identifier: Apache-2.0
#include <gtest/gtest.h>

#include <random>

#include "orvcore/smscollection.h"
#include "orvcore/smssearch.h"
#include "tests/orvcore/smssamples.h"
#include "tests/support/plainsearch.h"

namespace {

// Only two coefficients; ranges from 0 to 1000 by OpenRanges.
std::vector<int> Two(int first, int second, int width = 0) {
    std::vector<int> feature(SMS_FeatureCount, 0);
    feature[SMS_FeatureWidth] = width;
    feature[SMS_FeatureLuminance] = first;
    feature[SMS_FeatureLuminance + 1] = second;
    return feature;
}

// Compares with the plain form, to the last index and digit.
void ExpectPlain(std::vector<std::vector<int>> const& vectors, std::vector<int> const& questioned, size_t k) {
    std::vector<SocialMediaSignature> list;
    for (std::vector<int> const& vector : vectors) list.push_back(Signature("P", vector, "h"));
    sms::Ranges ranges;
    sms::WidenRanges(list, ranges);
    std::vector<sms::Match> const best = sms::FindBest(questioned, list, ranges, k);
    auto const plain = support::PlainSearch(questioned, vectors, support::PlainRanges(vectors), k);
    ASSERT_EQ(best.size(), plain.size());
    for (size_t i = 0; i < best.size(); ++i) {
        ASSERT_EQ(best[i].index, plain[i].second) << i;
        ASSERT_EQ(best[i].similarity, plain[i].first) << i;
    }
}

}  // namespace

TEST(Search, RandomVectorsWithManyTies_GiveTheSameAsThePlainForm) {
    std::mt19937 random(4711);
    for (int run = 0; run < 30; ++run) {
        size_t const length = 1 + random() % 6;
        int const values = 2 + static_cast<int>(random() % 3);
        std::vector<std::vector<int>> vectors(1 + random() % 400, std::vector<int>(length));
        for (auto& vector : vectors) {
            for (int& x : vector) x = static_cast<int>(random() % static_cast<unsigned>(values));
        }
        std::vector<int> questioned(length);
        for (int& x : questioned) x = static_cast<int>(random() % 5) - 1;
        for (size_t const k : {1u, 2u, 7u, 50u, 500u}) ExpectPlain(vectors, questioned, k);
    }
}

TEST(Search, CompiledTable_GivesTheSameAsThePlainForm) {
    SMSCollection collection;
    collection.LoadInternalSignatures();
    std::vector<std::vector<int>> vectors;
    for (SocialMediaSignature const& signature : collection.GetSignatures()) vectors.push_back(signature.GetFeature());
    for (size_t const n : {0u, 3000u, 5500u}) ExpectPlain(vectors, vectors[n], sms::kSearched);
}

TEST(Knn, EqualSimilarities_TheLaterSignatureComesFirst) {
    SMSCollection collection;
    OpenRanges(collection, 1000);
    for (char const* hash : {"a", "b", "c"}) collection.AddEntryToDatabase(Signature("P", Two(600, 800), hash));
    SMS_KnnResult const result = collection.FindKnns(Two(600, 800), 3);
    ASSERT_EQ(result.neighbours.size(), 3u);
    EXPECT_EQ(result.neighbours[0].signature.GetFeatureHash(), "c");
    EXPECT_EQ(result.neighbours[2].signature.GetFeatureHash(), "a");
    EXPECT_EQ(result.neighbours[0].similarity, 1.0);
    EXPECT_EQ(result.similaritySum, 3.0F);
}

TEST(Knn, FullOfEquals_KeepsTheEarliest) {
    SMSCollection collection;
    OpenRanges(collection, 1000);
    for (char const* hash : {"a", "b", "c"}) collection.AddEntryToDatabase(Signature("P", Two(600, 800), hash));
    SMS_KnnResult const result = collection.FindKnns(Two(600, 800), 2);
    EXPECT_EQ(result.neighbours[0].signature.GetFeatureHash(), "b");
    EXPECT_EQ(result.neighbours[1].signature.GetFeatureHash(), "a");
}

TEST(Knn, Similarities_AreRoundedToSinglePrecision) {
    SMSCollection collection;
    OpenRanges(collection, 1000);
    collection.AddEntryToDatabase(Signature("P", Two(0, 7), "h"));
    double const similarity = collection.FindKnns(Two(600, 800), 1).neighbours[0].similarity;
    EXPECT_EQ(similarity, static_cast<double>(0.8F));
    EXPECT_NE(similarity, 0.8);
}

TEST(Knn, FewerSignaturesThanAsked_FillsUpWithTheFirst) {
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("First", Feature(640, 480), "1"));
    collection.AddEntryToDatabase(Signature("Second", Feature(320, 240), "2"));
    SMS_KnnResult const result = collection.FindKnns(Signature("", Feature(640, 480), ""), 5);
    ASSERT_EQ(result.neighbours.size(), 5u);
    for (size_t i = 2; i < 5; ++i) {
        EXPECT_EQ(result.neighbours[i].signature.GetSocialName(), "First");
        EXPECT_EQ(result.neighbours[i].similarity, 0.0);
    }
}

TEST(Knn, NoneAskedOrNoneThere_GivesNone) {
    SMSCollection collection;
    EXPECT_TRUE(collection.FindKnns(Feature(640, 480), 10).neighbours.empty());
    collection.AddEntryToDatabase(Signature("P", Feature(640, 480), "1"));
    EXPECT_TRUE(collection.FindKnns(Feature(640, 480), 0).neighbours.empty());
}

TEST(Knn, ZeroVector_IsPassedOver) {
    SMSCollection collection;
    OpenRanges(collection, 1000);
    SMS_KnnResult const result = collection.FindKnns(std::vector<int>(SMS_FeatureCount, 0), 3);
    for (SMS_KnnEntry const& entry : result.neighbours) EXPECT_EQ(entry.similarity, 0.0);
}

TEST(Knn, ShortVector_IsComparedOverItsOwnLength) {
    SMSCollection collection;
    OpenRanges(collection, 1000);
    collection.AddEntryToDatabase(Signature("P", Two(600, 800, 500), "h"));
    EXPECT_EQ(collection.FindKnns(std::vector<int>{500, 0}, 1).neighbours[0].similarity, 1.0);
}

TEST(Classifier, VectorOfASample_IsClassified) {
    SMSCollection collection;
    collection.LoadInternalSignatures();
    for (size_t const n : {0u, 2000u, 3120u, 3500u, 4000u, 4500u, 6071u}) {
        std::vector<int> const feature = collection.GetSignatures()[n].GetFeature();
        EXPECT_EQ(collection.FindKnns(feature, 1).neighbours[0].similarity, 1.0);
        SMS_ClassifResult const result = collection.ClassifyFeature(feature, 1, 0.99);
        EXPECT_EQ(result.status, 0) << n;
        EXPECT_EQ(result.similarities[0], 1.0);
    }
}

TEST(Classifier, LargerThanAllSamples_IsNotClassified) {
    SMSCollection collection;
    collection.LoadInternalSignatures();
    std::vector<int> feature = collection.GetSignatures()[0].GetFeature();
    feature[SMS_FeatureWidth] = 6000;
    SMS_ClassifResult const result = collection.ClassifyFeature(feature, 3, 0.0);
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.socialNames, VecString{""});
    EXPECT_EQ(result.similarities, std::vector<double>{0.0});
    EXPECT_TRUE(result.signatures.empty());
    EXPECT_TRUE(result.sources.empty());
}

TEST(Classifier, TwoThousandPixels_WhatsappIsNoCandidate) {
    SMSCollection collection;
    collection.LoadInternalSignatures();
    std::vector<int> feature;
    std::vector<SMS_KnnEntry> neighbours;
    // One whose best neighbour at that size is still a Whatsapp sample.
    for (size_t n = 6071; neighbours.empty() || neighbours[0].signature.GetSocialName() != "Whatsapp"; --n) {
        ASSERT_EQ(collection.GetSignatures()[n].GetSocialName(), "Whatsapp");
        feature = collection.GetSignatures()[n].GetFeature();
        feature[SMS_FeatureWidth] = 2000;
        neighbours = collection.FindKnns(feature, 1000).neighbours;
    }
    double highest = 0;
    for (SMS_KnnEntry const& entry : neighbours) {
        wxString const& name = entry.signature.GetSocialName();
        bool const isSmall = name == "Whatsapp" || name == "Instagram" || name == "Tinypic" || name == "Tumblr";
        if (!isSmall && highest == 0) highest = entry.similarity;
    }
    ASSERT_GT(highest, 0);
    ASSERT_LT(highest, neighbours[0].similarity);
    EXPECT_EQ(collection.ClassifyFeature(feature, 1, 0.1).similarities[0], highest);
}

TEST(Classifier, SideAboveThePlatformsLargest_IsNoCandidate) {
    SMSCollection collection;
    auto const status = [&collection](int side) {
        return collection.ClassifyFeature(Feature(side, 900), 1, 0.0).status;
    };
    collection.AddEntryToDatabase(Signature("Instagram", Feature(1350, 900), "1"));
    EXPECT_EQ(status(1350), 0);
    EXPECT_EQ(status(1351), 1);
    collection.AddEntryToDatabase(Signature("Whatsapp", Feature(900, 1600), "2"));
    EXPECT_EQ(status(1600), 0);
    EXPECT_EQ(status(2000), 1);
    collection.AddEntryToDatabase(Signature("Facebook", Feature(2048, 900), "3"));
    EXPECT_EQ(status(2000), 0);
    EXPECT_EQ(status(6000), 1);
}

TEST(Classifier, TiedPlatforms_AreBothReportedOnce) {
    SMSCollection collection;
    OpenRanges(collection, 1000);
    collection.AddEntryToDatabase(Signature("One", Two(600, 800), "1"));
    collection.AddEntryToDatabase(Signature("Two", Two(600, 800), "2", SMS_User));
    collection.AddEntryToDatabase(Signature("One", Two(600, 800), "3"));
    SMS_ClassifResult const result = collection.ClassifyFeature(Two(600, 800), 3, 0.99);
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.socialNames, (VecString{"One", "Two"}));
    EXPECT_EQ(result.similarities, (std::vector<double>{1.0, 1.0}));
    EXPECT_EQ(result.sources, (std::vector<SMS_Type>{SMS_Internal, SMS_User}));
    ASSERT_EQ(result.signatures.size(), 2u);
    EXPECT_EQ(result.signatures[0].GetFeatureHash(), "3");
}

// The similarity is the candidate's, the platform that of the neighbour at its place, though it was passed over.
TEST(Classifier, PassedOverNeighbour_LendsItsName) {
    SMSCollection collection;
    OpenRanges(collection, 1000);
    collection.AddEntryToDatabase(Signature("Small", Two(1000, 0, 100), "s"));
    collection.AddEntryToDatabase(Signature("Big", Two(1000, 200, 200), "b"));
    std::vector<SMS_KnnEntry> const neighbours = collection.FindKnns(Two(1000, 0, 200), 2).neighbours;
    ASSERT_EQ(neighbours[0].signature.GetSocialName(), "Small");
    ASSERT_EQ(neighbours[1].signature.GetSocialName(), "Big");
    SMS_ClassifResult const result = collection.ClassifyFeature(Two(1000, 0, 200), 1, 0.5);
    EXPECT_EQ(result.socialNames, VecString{"Small"});
    EXPECT_EQ(result.signatures[0].GetFeatureHash(), "s");
    EXPECT_EQ(result.similarities[0], neighbours[1].similarity);
}

TEST(Classifier, MeanOfTheThreeBest_DecidesAtTheThreshold) {
    SMSCollection collection;
    OpenRanges(collection, 1000);  // the axis of the first coefficient has the similarity 1
    collection.AddEntryToDatabase(Signature("P", Two(1000, 0), "as alike"));
    collection.AddEntryToDatabase(Signature("P", Two(960, 280), "0.96"));
    EXPECT_EQ(collection.ClassifyFeature(Two(1000, 0), 3, 0.99).status, 1) << "2.96";
    collection.AddEntryToDatabase(Signature("P", Two(980, 199), "0.98"));
    EXPECT_EQ(collection.ClassifyFeature(Two(1000, 0), 3, 0.99).status, 0) << "2.98";
}

TEST(Classifier, FewerCandidatesThanK_MustStillReachTheSum) {
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("P", Feature(640, 480), "1"));
    collection.AddEntryToDatabase(Signature("P", Feature(640, 480), "2"));
    EXPECT_EQ(collection.ClassifyFeature(Feature(640, 480), 2, 0.99).status, 0);
    EXPECT_EQ(collection.ClassifyFeature(Feature(640, 480), 3, 0.66).status, 0);
    EXPECT_EQ(collection.ClassifyFeature(Feature(640, 480), 3, 0.67).status, 1);
}

TEST(Classifier, EmptyListOrVector_IsNotClassified) {
    SMSCollection collection;
    EXPECT_EQ(collection.ClassifyFeature(Feature(640, 480), 3, 0.99).status, 1);
    collection.LoadInternalSignatures();
    EXPECT_EQ(collection.ClassifyFeature({}, 3, 0.99).status, 1);
}
