// SPDX-License-Identifier: Apache-2.0
#include "orvcore/smscollection.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "tests/orvcore/smssamples.h"
#include "tests/support/tempdir.h"
#include "tolbase/hash.h"
#include "tolbase/json.h"
#include "tolbase/limits.h"

using support::ReadBytes;
using support::TempDir;
using support::WriteBytes;

namespace {

int LongerSide(SocialMediaSignature const& signature) {
    return std::max(signature.GetFeature()[0], signature.GetFeature()[1]);
}

SMSCollection Internal() {
    SMSCollection collection;
    collection.LoadInternalSignatures();
    return collection;
}

std::string const kNumbers48 =
    "[1,2,3,4,5,6,7,8,9,10,11,12,13,14,15,16,17,18,19,20,21,22,23,24,"
    "25,26,27,28,29,30,31,32,33,34,35,36,37,38,39,40,41,42,43,44,45,46,47,48]";

std::string Record(std::string const& name) {
    return R"({"File":"f","SocName":")" + name + R"(","FeatVect":)" + kNumbers48 + R"(,"FeatHash":"h","Date":"d"})";
}

// What a user file of these bytes brings in.
uint64_t LoadBytes(std::string const& bytes) {
    TempDir dir;
    return SMSCollection().LoadUserSignatures(WriteBytes(dir / "usersms.json", bytes));
}

}  // namespace

TEST(InternalSignatures, LoadedTwice_GiveTheirNumberThenNothing) {
    SMSCollection collection;
    EXPECT_EQ(collection.LoadInternalSignatures(), 6072u);
    EXPECT_EQ(collection.LoadInternalSignatures(), 0u);
    EXPECT_EQ(SMSCollection().LoadInternalSignatures(), 0u);
    EXPECT_EQ(collection.GetTotalNumberOfSMSInDatabase(), 6072u);
    EXPECT_EQ(collection.GetAsVecVecString(SMS_Internal).size(), 6072u);
}

TEST(InternalSignatures, StandByPlatform_InTheirNumbers) {
    std::vector<std::pair<wxString, int>> groups;
    for (SocialMediaSignature const& signature : Internal().GetSignatures()) {
        if (groups.empty() || groups.back().first != signature.GetSocialName()) {
            groups.emplace_back(signature.GetSocialName(), 0);
        }
        ++groups.back().second;
    }
    std::vector<std::pair<wxString, int>> const expected = {
        {"Facebook", 1906}, {"Flickr", 1216}, {"Google+", 40}, {"Imgur", 240},    {"Instagram", 303},
        {"Telegram", 274},  {"Tinypic", 119}, {"Tumblr", 157}, {"Twitter", 1129}, {"Whatsapp", 688}};
    EXPECT_EQ(groups, expected);
}

TEST(InternalSignatures, LongerSides_LieWithinThePlatformsBounds) {
    std::map<wxString, std::pair<int, int>> bounds;
    for (SocialMediaSignature const& signature : Internal().GetSignatures()) {
        auto& bound = bounds.insert({signature.GetSocialName(), {65535, 0}}).first->second;
        bound.first = std::min(bound.first, LongerSide(signature));
        bound.second = std::max(bound.second, LongerSide(signature));
    }
    std::map<wxString, std::pair<int, int>> const expected = {
        {"Facebook", {225, 2048}},  {"Flickr", {320, 2048}},   {"Google+", {640, 3264}},  {"Imgur", {640, 5184}},
        {"Instagram", {480, 1350}}, {"Telegram", {640, 2560}}, {"Tinypic", {1599, 1600}}, {"Tumblr", {640, 1707}},
        {"Twitter", {320, 2048}},   {"Whatsapp", {640, 1600}}};
    EXPECT_EQ(bounds, expected);
}

TEST(InternalSignatures, EachIsValid_WithItsOwnHash) {
    std::set<wxString> hashes;
    for (SocialMediaSignature const& signature : Internal().GetSignatures()) {
        ASSERT_TRUE(signature.IsValid());
        EXPECT_EQ(signature.GetType(), SMS_Internal);
        wxString text = signature.GetFile() + signature.GetSocialName();
        for (int const number : signature.GetFeature()) text << number;
        ASSERT_EQ(signature.GetFeatureHash(), TcvCalcHashOfConcatenatedStrings({text}, "\n"));
        EXPECT_TRUE(hashes.insert(signature.GetFeatureHash()).second);
        EXPECT_EQ(signature.GetFile().length(), 32u);
        EXPECT_EQ(signature.GetFile().find_first_not_of("0123456789abcdef"), wxString::npos);
        EXPECT_EQ(signature.GetDate().length(), 10u);
    }
}

TEST(InternalSignatures, EachVector_IsOneThatAJpegCanHave) {
    for (SocialMediaSignature const& signature : Internal().GetSignatures()) {
        std::vector<int> const& feature = signature.GetFeature();
        EXPECT_TRUE(feature[0] >= 1 && feature[1] >= 1 && LongerSide(signature) <= 65535);
        EXPECT_GE(feature[SMS_FeatureMarkerCount], 6) << "SOI, DQT, SOF, DHT, SOS, EOI";
        for (int const place : {SMS_FeatureSubsampling2, SMS_FeatureSubsampling3}) {
            EXPECT_TRUE(feature[static_cast<size_t>(place)] == 0 || feature[static_cast<size_t>(place)] == 2 ||
                        feature[static_cast<size_t>(place)] == 4);
        }
        for (size_t i = SMS_FeatureLuminance; i < feature.size(); ++i) {
            EXPECT_TRUE(feature[i] >= 1 && feature[i] <= 255);
        }
    }
}

TEST(UserSignatures, MissingFile_LeavesTheNextCallFree) {
    TempDir dir;
    SMSCollection collection;
    EXPECT_EQ(collection.LoadUserSignatures(dir / "usersms.json"), 0u);
    WriteBytes(dir / "usersms.json", R"({"SMSCollection":[)" + Record("Own") + "]}");
    EXPECT_EQ(collection.LoadUserSignatures(dir / "usersms.json"), 1u);
    EXPECT_EQ(collection.LoadUserSignatures(dir / "usersms.json"), 0u);
    EXPECT_EQ(collection.GetAsVecVecString(SMS_User), (VecVecString{{"f", "Own", "d", "h"}}));
    EXPECT_EQ(collection.GetSignatures()[0].GetFeature()[47], 48);
}

TEST(UserSignatures, InternalOnesOnly_AreWrittenAsNull) {
    TempDir dir;
    SMSCollection collection = Internal();
    collection.SaveUserSignatures(dir / "usersms.json");
    EXPECT_TRUE(JsonFromFile(dir / "usersms.json").IsNull()) << ReadBytes(dir / "usersms.json");
    EXPECT_EQ(collection.LoadUserSignatures(dir / "usersms.json"), 0u);
    EXPECT_EQ(collection.GetTotalNumberOfSMSInDatabase(), 6072u);
}

TEST(UserSignatures, SavedAndRead_AreTheSame) {
    TempDir dir;
    wxString const odd = wxString::FromUTF8("\"Ö<b>%s\\ 社\t");
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("Internal", Feature(1, 2), "i"));
    collection.AddEntryToDatabase(Signature(odd, Feature(640, 480), "u", SMS_User));
    collection.SaveUserSignatures(dir / "usersms.json");
    collection.RemoveEntryFromDatabase("u");
    EXPECT_EQ(collection.LoadUserSignatures(dir / "usersms.json"), 1u);
    EXPECT_EQ(collection.GetAsVecVecString(SMS_User), (VecVecString{{"file-u", odd, "2020-02-02", "u"}}));
    EXPECT_EQ(collection.GetSignatures().back().GetFeature(), Feature(640, 480));
}

TEST(UserSignatures, SavedFile_IsStyledWithAStepOfThree) {
    TempDir dir;
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("Own", Feature(640, 480), "u", SMS_User));
    collection.SaveUserSignatures(dir / "usersms.json");
    std::string const text = ReadBytes(dir / "usersms.json");
    EXPECT_NE(text.find("\n   \"SMSCollection\""), std::string::npos) << text.substr(0, 80);
}

TEST(UserSignatures, SavedWhereNothingCanBe_ThrowNothing) {
    TempDir dir;
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("Own", Feature(640, 480), "u", SMS_User));
    collection.SaveUserSignatures(dir / "missing/usersms.json");
    EXPECT_EQ(collection.GetTotalNumberOfSMSInDatabase(), 1u);
}

TEST(UserSignatures, InvalidElements_AreDropped) {
    EXPECT_EQ(
        LoadBytes(R"({"SMSCollection":[5,"x",null,{},[],{"File":"f"},)" + Record("") + "," + Record("Own") + "]}"), 1u);
}

TEST(UserSignatures, Duplicates_ComeInAgain) {
    EXPECT_EQ(LoadBytes(R"({"SMSCollection":[)" + Record("Own") + "," + Record("Own") + "]}"), 2u);
}

TEST(UserSignatures, LinesAreJoined_WithMarkAndForeignLineEnds) {
    EXPECT_EQ(LoadBytes("\xEF\xBB\xBF{\r\n\"SMSColl\nection\":\r[" + Record("Own") + "]}\n"), 1u);
}

TEST(UserSignatures, OtherShapes_BringNothing) {
    EXPECT_EQ(LoadBytes(""), 0u);
}

TEST(UserSignatures, TextThatIsNoJson_BringsNothing) {
    EXPECT_EQ(LoadBytes("\x89PNG\r\n\x1a\n\xff\xfe not JSON"), 0u);
}

TEST(UserSignatures, KeyOfAnotherType_BringsNothing) {
    EXPECT_EQ(LoadBytes(R"({"SMSCollection":{"0":)" + Record("Own") + "}}"), 0u);
}

TEST(UserSignatures, ListAtTheTop_BringsNothing) {
    EXPECT_EQ(LoadBytes("[" + Record("Own") + "]"), 0u);
}

TEST(UserSignatures, DeepNesting_BringsNothing) {
    EXPECT_EQ(LoadBytes(R"({"SMSCollection":)" + std::string(1000000, '[')), 0u);
}

TEST(UserSignatures, FilePastTheLimit_BringsNothing) {
    SetTolLimit(TolLimit::UserDatabaseBytes, 300);
    EXPECT_EQ(LoadBytes(R"({"SMSCollection":[)" + Record("Own") + "]}" + std::string(300, ' ')), 0u);
}

TEST(UserSignatures, FileBrokenOff_GivesWhatStandsBefore) {
    std::string const whole = R"({"SMSCollection":[)" + Record("One") + "," + Record("Two") + "]}";
    EXPECT_EQ(LoadBytes(whole.substr(0, whole.size() - 20)), 1u);
}

TEST(UserSignatures, Folder_IsNoFile) {
    TempDir dir;
    EXPECT_EQ(SMSCollection().LoadUserSignatures(dir.Path()), 0u);
}

TEST(UserSignatures, NumbersPastAllBounds_AreTakenWithoutHarm) {
    std::string record = Record("Own");
    record.replace(record.find("[1,2,"), 5, "[-2147483648,1e300,");
    EXPECT_EQ(LoadBytes(R"({"SMSCollection":[)" + record + "]}"), 1u);
    SMSCollection const collection;
    EXPECT_EQ(collection.ClassifyFeature(Feature(640, 480), 3, 0.99).status, 1);
    std::vector<int> extreme(48, 2147483647);
    EXPECT_EQ(collection.FindKnns(extreme, 2).neighbours.size(), 2u);
}

TEST(UserSignatures, NotTakenWhole_AreKeptAsideBeforeSaving) {
    TempDir dir;
    std::string const broken = R"({"SMSCollection":[)" + Record("One") + R"(,{"File":"half)";
    wxString const path = WriteBytes(dir / "usersms.json", broken);
    SMSCollection collection;
    collection.LoadUserSignatures(path);
    collection.SaveUserSignatures(path);
    EXPECT_EQ(ReadBytes(path + ".bak"), broken);
    collection.SaveUserSignatures(path);
    EXPECT_FALSE(wxFileExists(path + ".bak2")) << "it is kept once";
}

TEST(UserSignatures, TakenWhole_LeaveNoCopy) {
    TempDir dir;
    wxString const path = WriteBytes(dir / "usersms.json", R"({"SMSCollection":[)" + Record("One") + "]}");
    SMSCollection collection;
    collection.LoadUserSignatures(path);
    collection.SaveUserSignatures(path);
    EXPECT_FALSE(wxFileExists(path + ".bak"));
}

TEST(Collection, FindEntry_LooksAtTypeAndHash) {
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("A", Feature(1, 2), "same"));
    size_t index = 99;
    EXPECT_FALSE(collection.FindEntryInDatabase(Signature("B", {}, "same"), SMS_User, &index));
    EXPECT_EQ(index, 99u);
    collection.AddEntryToDatabase(Signature("B", Feature(1, 2), "same", SMS_User));
    EXPECT_TRUE(collection.FindEntryInDatabase(Signature("B", {}, "same"), SMS_User, &index));
    EXPECT_EQ(index, 1u);
    EXPECT_TRUE(collection.FindEntryInDatabase(Signature("B", {}, "same"), SMS_Internal, nullptr));
    EXPECT_FALSE(collection.FindEntryInDatabase(Signature("B", {}, "SAME"), SMS_User, nullptr));
}

TEST(Collection, EmptyList_HasNothing) {
    SMSCollection collection;
    EXPECT_FALSE(collection.FindEntryInDatabase(Signature("A", {}, "h"), SMS_User, nullptr));
    EXPECT_TRUE(collection.GetAsVecVecString(SMS_User).empty());
    EXPECT_FALSE(collection.RemoveEntryFromDatabase("h"));
    EXPECT_EQ(collection.GetTotalNumberOfSMSInDatabase(), 0u);
    collection.ComputeNormalizationParams();
    collection.ComputeMinMaxSmpResolution();
}

TEST(Collection, Remove_TakesTheFirstOfAnyTypeAndKeepsTheOrder) {
    SMSCollection collection;
    for (char const* name : {"A", "B", "C", "D"}) {
        collection.AddEntryToDatabase(Signature(name, Feature(1, 2), *name == 'B' || *name == 'D' ? "h" : name,
                                                *name == 'D' ? SMS_User : SMS_Internal));
    }
    EXPECT_FALSE(collection.RemoveEntryFromDatabase("H"));
    EXPECT_TRUE(collection.RemoveEntryFromDatabase("h"));
    VecString names;
    for (SocialMediaSignature const& signature : collection.GetSignatures()) names.push_back(signature.GetSocialName());
    EXPECT_EQ(names, (VecString{"A", "C", "D"}));
}

TEST(Collection, RemovedInternalSignature_DoesNotComeBack) {
    SMSCollection collection = Internal();
    EXPECT_TRUE(collection.RemoveEntryFromDatabase(collection.GetSignatures()[17].GetFeatureHash()));
    EXPECT_EQ(collection.LoadInternalSignatures(), 0u);
    EXPECT_EQ(collection.GetTotalNumberOfSMSInDatabase(), 6071u);
}

TEST(Collection, RemovedPlatform_KeepsItsLargestSide) {
    SMSCollection collection;
    collection.AddEntryToDatabase(Signature("Gone", Feature(4000, 10), "g"));
    collection.RemoveEntryFromDatabase("g");
    EXPECT_EQ(collection.ClassifyFeature(Feature(3000, 10), 1, 0.9).status, 1) << "the list is empty";
    collection.AddEntryToDatabase(Signature("Gone", Feature(100, 10), "small"));
    EXPECT_EQ(collection.ClassifyFeature(Feature(3000, 10), 1, 0.0).status, 0);
    EXPECT_EQ(collection.ClassifyFeature(Feature(4001, 10), 1, 0.0).status, 1);
}

TEST(Collection, SignaturesOfAnyLength_AreHarmless) {
    SMSCollection collection;
    collection.AddEntryToDatabase(SocialMediaSignature());
    collection.AddEntryToDatabase(Signature("Short", {5}, "s"));
    collection.AddEntryToDatabase(Signature("Long", std::vector<int>(100, 3), "l"));
    collection.AddEntryToDatabase(Signature("Whole", Feature(640, 480), "w"));
    EXPECT_EQ(collection.FindKnns(Feature(640, 480), 4).neighbours.size(), 4u);
    EXPECT_EQ(collection.FindKnns(std::vector<int>(200, 1), 4).neighbours.size(), 4u);
}
