// SPDX-License-Identifier: Apache-2.0
#include "orvcore/imagewarningrule.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <vector>

#include "tests/orvcore/catalogue.h"
#include "tests/support/tempdir.h"

namespace {

template <typename T>
bool Passes(ImageWarningRuleKind kind, T const& value, T const& reference) {
    ImageWarningRule rule(kind, 1, "Finding");
    rule.Test(value, reference);
    EXPECT_TRUE(rule.Evaluated);
    return rule.Passed;
}

bool AspectPasses(double ratio) {
    ImageWarningRule rule(RuleAspectRatio, 1, "Odd aspect ratio");
    rule.TestAspectRatio(ratio, {1.33, 1.78, 1.50, 1.00});
    EXPECT_TRUE(rule.Evaluated);
    return rule.Passed;
}

bool WordsPass(ImageWarningRuleKind kind, wxString const& text, VecString const& words) {
    ImageWarningRule rule(kind, 1, "Finding");
    rule.TestWords(text, words);
    EXPECT_TRUE(rule.Evaluated);
    return rule.Passed;
}

Image SmallImage() {
    return Image::FromMat(cv::Mat(4, 4, CV_8UC3, cv::Scalar(1, 2, 3)));
}

}  // namespace

TEST(ImageWarningRule, New_IsNeitherEvaluatedNorPassed) {
    const ImageWarningRule rule(RuleEqual, 1, "BPP", "Bits per pixel are not");
    EXPECT_EQ(rule.Name, "BPP");
    EXPECT_EQ(rule.Description, "Bits per pixel are not");
    EXPECT_EQ(rule.Severity, 1);
    EXPECT_FALSE(rule.Evaluated);
    EXPECT_FALSE(rule.Passed);
}

TEST(ImageWarningRule, OperatorText_NamesTheFailure) {
    const std::vector<wxString> texts = {"<=", ">=", "<", ">", "", "different", "is not multiple of"};
    for (int kind = RuleGreater; kind <= RuleKnownResolution; ++kind) {
        const ImageWarningRule rule(static_cast<ImageWarningRuleKind>(kind), 0, "x");
        EXPECT_EQ(rule.OperatorText, kind < 7 ? texts[static_cast<size_t>(kind)] : wxString()) << kind;
    }
}

TEST(ImageWarningRule, SmallFile_TellsBothSizes) {
    ImageWarningRule rule(RuleGreaterEqual, 0, "File Size is small");
    rule.Test<int64_t>(51200, 100000);
    EXPECT_FALSE(rule.Passed);
    EXPECT_EQ(rule.Message(), "File Size is small (51200 < 100000)");
}

TEST(ImageWarningRule, FileSizesAtTheLimits_Pass) {
    EXPECT_TRUE(Passes<int64_t>(RuleGreaterEqual, 100000, 100000));
    EXPECT_TRUE(Passes<int64_t>(RuleLessEqual, 10000000, 10000000));
    EXPECT_FALSE(Passes<int64_t>(RuleGreaterEqual, 99999, 100000));
    EXPECT_FALSE(Passes<int64_t>(RuleLessEqual, 10000001, 10000000));
    EXPECT_FALSE(Passes<int64_t>(RuleLessEqual, INT64_C(5000000000), 10000000));
}

TEST(ImageWarningRule, NumberKinds_CompareTheValues) {
    EXPECT_TRUE(Passes(RuleGreater, 10, 9));
    EXPECT_FALSE(Passes(RuleGreater, 9, 9));
    EXPECT_TRUE(Passes(RuleLess, 9, 10));
    EXPECT_FALSE(Passes(RuleLess, 9, 9));
    EXPECT_TRUE(Passes(RuleLessAlso, -1, 0));
    EXPECT_FALSE(Passes(RuleLessAlso, 0, 0));
    EXPECT_TRUE(Passes(RuleEqual, 24, 24));
    EXPECT_FALSE(Passes(RuleEqual, 32, 24));
    EXPECT_TRUE(Passes(RuleEqualSilent, 3, 3));
}

TEST(ImageWarningRule, TextKinds_MindCaseAndOrder) {
    EXPECT_TRUE(Passes<wxString>(RuleEqual, "Abc", "Abc"));
    EXPECT_FALSE(Passes<wxString>(RuleEqual, "Abc", "abc"));
    EXPECT_TRUE(Passes<wxString>(RuleLess, "10", "9"));
    EXPECT_TRUE(Passes<wxString>(RuleContains, "4:4:4 (1 1)", "4:4:4"));
    EXPECT_FALSE(Passes<wxString>(RuleContains, "4:2:0", "4:4:4"));
    EXPECT_TRUE(Passes<wxString>(RuleNotContains, "4:2:0", "4:4:4"));
    EXPECT_FALSE(Passes<wxString>(RuleNotContains, "YCbCr4:4:4 (1 1)", "4:4:4"));
}

TEST(ImageWarningRule, GenericTestOfAnotherKind_DoesNotPass) {
    EXPECT_FALSE(Passes(RuleMultipleOf, 8, 4));
    EXPECT_FALSE(Passes<wxString>(RulePresent, "x", "x"));
    EXPECT_FALSE(Passes<wxString>(RuleExcludedWords, "", ""));
}

TEST(ImageWarningRule, ThirtyTwoBits_ShowTheSuffix) {
    ImageWarningRule rule(RuleEqual, 1, "BPP");
    rule.Test(32, 24);
    EXPECT_EQ(rule.Message(), "BPP (32 different 24)");
}

TEST(ImageWarningRule, Bools_ShowTheirTexts) {
    ImageWarningRule rule(RuleEqual, 1, "Huffman tables are not IJG standard");
    rule.Test(true, false);
    EXPECT_FALSE(rule.Passed);
    EXPECT_EQ(rule.Message(), "Huffman tables are not IJG standard (true different false)");
}

TEST(ImageWarningRule, SilentKind_TellsTheNameAlone) {
    ImageWarningRule rule(RuleEqualSilent, 1, "Compression signature is compatible only with software");
    rule.Test(true, false);
    rule.OperatorText = "is";
    EXPECT_EQ(rule.Message(), "Compression signature is compatible only with software");
}

TEST(ImageWarningRule, WidthOf4001_IsNoMultipleOfFour) {
    ImageWarningRule rule(RuleMultipleOf, 1, "Odd width");
    rule.TestMultiple(4001, 4);
    EXPECT_TRUE(rule.Evaluated);
    EXPECT_FALSE(rule.Passed);
    EXPECT_EQ(rule.Message(), "Odd width (4001 is not multiple of 4)");
    rule.TestMultiple(4000, 4);
    EXPECT_TRUE(rule.Passed);
}

TEST(ImageWarningRule, MultipleOfZero_IsNotEvaluated) {
    ImageWarningRule rule(RuleMultipleOf, 1, "Odd width");
    rule.TestMultiple(4001, 0);
    EXPECT_FALSE(rule.Evaluated);
    EXPECT_EQ(rule.Value, "");
}

TEST(ImageWarningRule, SmallestIntByMinusOne_DoesNotTrap) {
    ImageWarningRule rule(RuleMultipleOf, 1, "Odd width");
    rule.TestMultiple(std::numeric_limits<int>::min(), -1);
    EXPECT_TRUE(rule.Passed);
}

TEST(ImageWarningRule, AspectRatio_IsNearAnEntryOrNot) {
    EXPECT_TRUE(AspectPasses(1.335));
    EXPECT_FALSE(AspectPasses(1.341));
    EXPECT_TRUE(AspectPasses(1.0));
    EXPECT_FALSE(AspectPasses(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(AspectPasses(std::nan("")));
}

TEST(ImageWarningRule, AspectTestOfAnotherKind_IsOnlyMarkedAsEvaluated) {
    ImageWarningRule rule(RuleEqual, 1, "x");
    rule.TestAspectRatio(1.0, {1.0});
    EXPECT_TRUE(rule.Evaluated);
    EXPECT_FALSE(rule.Passed);
}

TEST(ImageWarningRule, ExcludedWord_IsFoundInAnyCase) {
    EXPECT_FALSE(WordsPass(RuleExcludedWords, "Adobe PHOTOSHOP CC", {"gimp", "photoshop"}));
    EXPECT_FALSE(WordsPass(RuleExcludedWords, "adobe photoshop", {"Photoshop"}));
    EXPECT_TRUE(WordsPass(RuleExcludedWords, "Firmware 1.0", {"gimp", "photoshop"}));
    EXPECT_TRUE(WordsPass(RuleExcludedWords, "", {"gimp"}));
}

TEST(ImageWarningRule, RequiredWord_MayStandAmongOthers) {
    EXPECT_TRUE(WordsPass(RuleRequiredWords, "a jpeg file", {"TIFF", "JPEG"}));
    EXPECT_FALSE(WordsPass(RuleRequiredWords, "PNG", {"TIFF", "JPEG"}));
    EXPECT_FALSE(WordsPass(RuleRequiredWords, "", {"JPEG"}));
    EXPECT_TRUE(WordsPass(RuleRequiredWords, "", {}));
}

TEST(ImageWarningRule, Words_AreToldAsAList) {
    ImageWarningRule rule(RuleRequiredWords, 1, "Format is not a standard one");
    rule.TestWords("PNG", {"JPEG", "TIFF"});
    EXPECT_EQ(rule.Value, "PNG");
    EXPECT_EQ(rule.Reference, "JPEG, TIFF");
    EXPECT_EQ(rule.Message(), "Format is not a standard one");
}

TEST(ImageWarningRule, Presence_LooksAtTheList) {
    ImageWarningRule present(RulePresent, 1, "Thumbnail is missing");
    present.TestPresence({});
    EXPECT_FALSE(present.Passed);
    EXPECT_EQ(present.Value, "Not present");
    EXPECT_EQ(present.Message(), "Thumbnail is missing");
    present.TestPresence({SmallImage()});
    EXPECT_TRUE(present.Passed);
    EXPECT_EQ(present.Value, "Present");
    ImageWarningRule absent(RuleAbsent, 1, "x");
    absent.TestPresence({});
    EXPECT_TRUE(absent.Passed);
    absent.TestPresence({SmallImage()});
    EXPECT_FALSE(absent.Passed);
}

TEST(ImageWarningRule, UnknownCamera_PassesTheResolution) {
    ImageWarningRule rule(RuleKnownResolution, 1, "Unkown resolution for this device");
    rule.TestResolution("No Such Maker", "No Such Model", {4321, 1234});
    EXPECT_TRUE(rule.Evaluated);
    EXPECT_TRUE(rule.Passed);
    EXPECT_EQ(rule.OperatorText, "");
}

TEST(ImageWarningRule, SizeThatACameraDoesNotWrite_NamesTheList) {
    const DpReviewInfo camera("Maker", "Model", {4000, 3000}, {{4000, 3000}, {2000, 1500}},
                              "https://example.org/model");
    ImageWarningRule rule(RuleKnownResolution, 1, "Unkown resolution for this device");
    rule.TestResolution(camera, {2000, 1500});
    EXPECT_TRUE(rule.Passed);
    rule.TestResolution(camera, {3999, 3000});
    EXPECT_FALSE(rule.Passed);
    EXPECT_EQ(rule.Message(),
              "Unkown resolution for this device (3999 x 3000 is not listed at https://example.org/model)");
}

TEST(ImageWarningRule, CameraWithoutAListOfSizes_Passes) {
    const DpReviewInfo camera("Maker", "Model", {4000, 3000}, {}, "");
    ImageWarningRule rule(RuleKnownResolution, 1, "Unkown resolution for this device");
    rule.TestResolution(camera, {3999, 3000});
    EXPECT_TRUE(rule.Passed);
    EXPECT_TRUE(rule.Evaluated);
}

TEST(ImageWarningRule, Clear_KeepsTheOperatorText) {
    ImageWarningRule rule(RuleEqual, 1, "BPP");
    rule.Test(32, 24);
    rule.Clear();
    EXPECT_EQ(rule.Value, "");
    EXPECT_EQ(rule.Reference, "");
    EXPECT_FALSE(rule.Evaluated);
    EXPECT_FALSE(rule.Passed);
    EXPECT_EQ(rule.OperatorText, "different");
}

TEST(ImageWarningRule, Catalogue_TranslatesWhatTheUserReads) {
    const support::TempDir dir;
    ASSERT_TRUE(support::UseTranslations(
        dir, {{"Odd width", "Larghezza"}, {"different", "diverso"}, {"true", "vero"}, {"false", "falso"}}));
    ImageWarningRule rule(RuleEqual, 1, "Odd width");
    rule.Test(true, false);
    EXPECT_EQ(rule.Message(), "Larghezza (vero diverso falso)");
}

TEST(OrvDatesAgree, CreateDateThreeSecondsLater_Agrees) {
    EXPECT_TRUE(OrvDatesAgree("2021:05:06 10:20:33", "2021:05:06 10:20:30"));
    EXPECT_TRUE(OrvDatesAgree("2021:05:06 10:20:30", "2021:05:06 10:20:35"));
    EXPECT_FALSE(OrvDatesAgree("2021:05:06 10:20:30", "2021:05:06 10:20:36"));
}

TEST(OrvDatesAgree, WholeHours_AreATimeZone) {
    EXPECT_TRUE(OrvDatesAgree("2021:05:06 12:20:33", "2021:05:06 10:20:30"));
    EXPECT_FALSE(OrvDatesAgree("2021:05:06 12:20:36", "2021:05:06 10:20:30"));
    EXPECT_TRUE(OrvDatesAgree("2021:05:06 23:20:30", "2021:05:06 00:20:30"));
}

TEST(OrvDatesAgree, WholeDay_IsADifference) {
    EXPECT_FALSE(OrvDatesAgree("2021:05:07 10:20:30", "2021:05:06 10:20:30"));
    EXPECT_FALSE(OrvDatesAgree("2021:05:05 10:20:30", "2021:05:06 10:20:30"));
}

TEST(OrvDatesAgree, DayOfAClockChange_CountsAsTheCameraCounts) {
    ASSERT_EQ(setenv("TZ", "Europe/Rome", 1), 0);
    tzset();
    // Local clocks went forward on 2021-03-28: 23 hours passed between these two.
    EXPECT_FALSE(OrvDatesAgree("2021:03:28 12:00:00", "2021:03:27 12:00:00"));
    EXPECT_TRUE(OrvDatesAgree("2021:10:31 11:00:00", "2021:10:30 12:00:00"));
}

TEST(OrvDatesAgree, WrongForm_Differs) {
    EXPECT_FALSE(OrvDatesAgree("yesterday", "2021:05:06 10:20:30"));
    EXPECT_FALSE(OrvDatesAgree("2021:05:06 10:20:30", "0000:00:00 00:00:00"));
    EXPECT_FALSE(OrvDatesAgree("2021-05-06T10:20:30", "2021:05:06 10:20:30"));
}

TEST(OrvDatesAgree, EmptyOrEqualTexts_Agree) {
    EXPECT_TRUE(OrvDatesAgree("", "2021:05:06 10:20:30"));
    EXPECT_TRUE(OrvDatesAgree("2021:05:06 10:20:30", ""));
    EXPECT_TRUE(OrvDatesAgree("yesterday", "yesterday"));
}
