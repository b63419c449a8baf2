// SPDX-License-Identifier: Apache-2.0
#include <map>

#include "orvcore/filterconfiguration.h"
#include "tests/orvcore/recordingfilter.h"

using support::Number;
using support::RecordingFilter;
using support::WithFirst;

namespace {

using Texts = std::vector<std::string>;

Parameter Range(const wxString& name, int value, int minimum, int maximum) {
    return CreateParameterIntMinMax(name, wxString(), value, minimum, maximum);
}

std::string Values(const VecParameter& parameters) {
    std::string text;
    for (const Parameter& parameter : parameters) {
        text += (text.empty() ? "" : ",") + std::string(parameter.ToReport().utf8_str());
    }
    return text;
}

// The values of each configuration, "!" in front of a disabled one.
Texts List(const OrvFilter& filter) {
    Texts list;
    for (const OrvFilterConfiguration& each : filter.GetConfigurations()) {
        list.push_back((each.IsEnabled() ? "" : "!") + Values(each));
    }
    return list;
}

// Makes its own list.
class ListingFilter : public RecordingFilter {
public:
    using RecordingFilter::RecordingFilter;

private:
    void CalculateConfigurations() override { AddConfiguration(WithFirst(Input(), 30), -1); }
};

}  // namespace

TEST(FilterConfiguration, OfParameters_IsEnabledAndNotCalculated) {
    const OrvFilterConfiguration configuration(VecParameter({Number("n", 4)}));
    EXPECT_TRUE(configuration.IsEnabled());
    EXPECT_EQ(OrvFilterConfiguration::NotCalculated, configuration.GetFilterStatus());
    EXPECT_EQ("4", Values(configuration));
}

TEST(FilterConfiguration, Copy_KeepsFlagAndStatus) {
    OrvFilterConfiguration configuration(VecParameter({Number("n", 4)}));
    configuration.Enable(false);
    configuration.SetFilterStatus(OrvFilterConfiguration::Warning);
    const OrvFilterConfiguration copy(configuration);
    EXPECT_FALSE(copy.IsEnabled());
    EXPECT_EQ(OrvFilterConfiguration::Warning, copy.GetFilterStatus());
}

TEST(FilterConfiguration, SameAs_NeedsEqualValuesAndLength) {
    const OrvFilterConfiguration configuration(VecParameter({Number("n", 4)}));
    EXPECT_TRUE(configuration.IsSameAs(VecParameter({Number("n", 4)})));
    EXPECT_FALSE(configuration.IsSameAs(VecParameter({Number("n", 5)})));
    EXPECT_FALSE(configuration.IsSameAs(VecParameter({Number("n", 4), Number("m", 1)})));
}

TEST(FilterConfiguration, StatusTexts_AreThoseOfTheFiles) {
    EXPECT_EQ("Not Calculated", OrvFilterConfiguration::sm_statusStrings[0]);
    EXPECT_EQ("Ok", OrvFilterConfiguration::GetStatusString(OrvFilterConfiguration::Ok));
    EXPECT_EQ("Warning", OrvFilterConfiguration::GetStatusString(OrvFilterConfiguration::Warning));
    EXPECT_EQ("Unsupported", OrvFilterConfiguration::GetStatusString(OrvFilterConfiguration::Unsupported));
    const auto none = static_cast<OrvFilterConfiguration::FilterStatus>(77);
    EXPECT_EQ("Not Calculated", OrvFilterConfiguration::GetStatusString(none));
}

TEST(FilterConfiguration, StatusFile_IsComparedWholeAndWithCase) {
    const support::TempDir dir;
    const auto read = [&dir](const std::string& bytes) {
        return static_cast<int>(
            OrvFilterConfiguration::GetStatusFromFile(support::WriteBytes(dir / "s.status", bytes)));
    };
    EXPECT_EQ(0, read("Not Calculated"));
    EXPECT_EQ(1, read("Ok"));
    EXPECT_EQ(2, read("Warning"));
    EXPECT_EQ(3, read("Unsupported"));
    EXPECT_EQ(0, read("warning"));
    EXPECT_EQ(0, read("Ok\n"));
    EXPECT_EQ(0, read(""));
    EXPECT_EQ(0, read(std::string("Ok\0Ok", 5)));
    EXPECT_EQ(0, read(std::string(1000000, 'O')));
}

TEST(FilterConfiguration, StatusFileThatIsNone_IsNotCalculated) {
    const support::TempDir dir;
    EXPECT_EQ(0, OrvFilterConfiguration::GetStatusFromFile(dir / "missing.status"));
    EXPECT_EQ(0, OrvFilterConfiguration::GetStatusFromFile(dir.Path()));
}

TEST(FilterConfiguration, UpdateFilterStatus_TakesTheFilesStatus) {
    const support::TempDir dir;
    OrvFilterConfiguration configuration;
    configuration.UpdateFilterStatus(support::WriteBytes(dir / "s.status", "Warning"));
    EXPECT_EQ(OrvFilterConfiguration::Warning, configuration.GetFilterStatus());
}

TEST(DefaultConfigurations, WithoutParameters_AreOneEmpty) {
    RecordingFilter filter("Filter");
    filter.InitFilter();
    ASSERT_EQ(1U, filter.GetConfigurationsSize());
    EXPECT_TRUE(filter.GetConfigurationParams(0).empty());
}

TEST(DefaultConfigurations, TwoTruthValues_GiveFourWithTheLastTurningFastest) {
    RecordingFilter filter("Filter",
                           {CreateParameterBool("a", wxString(), true), CreateParameterBool("b", wxString(), true)});
    filter.InitFilter();
    const Texts expected = {"false,false", "false,true", "true,false", "true,true"};
    Texts list;
    for (const OrvFilterConfiguration& each : filter.GetConfigurations()) {
        list.push_back(std::string(each[0].GetValue<bool>() ? "true" : "false") +
                       (each[1].GetValue<bool>() ? ",true" : ",false"));
    }
    EXPECT_EQ(expected, list);
    EXPECT_TRUE(filter.GetParametersInput()[0].GetValue<bool>());
}

TEST(DefaultConfigurations, RangeThatStartsAtFive_GetsPlainIndices) {
    RecordingFilter filter("Filter", {Range("n", 6, 5, 7)});
    filter.InitFilter();
    EXPECT_EQ((Texts{"0", "1", "2"}), List(filter));
    EXPECT_EQ("6", Values(filter.GetParametersInput()));
}

TEST(DefaultConfigurations, DoubleRange_CountsItsSteps) {
    RecordingFilter filter("Filter", {CreateParameterDoubleMinMax("d", wxString(), 0.0, 0.0, 0.3, 0.1)});
    filter.InitFilter();
    ASSERT_EQ(4U, filter.GetConfigurationsSize());
    EXPECT_EQ(3.0, filter.GetConfigurationParams(3)[0].GetValue<double>());
}

TEST(DefaultConfigurations, Options_CountTheirTexts) {
    RecordingFilter filter("Filter",
                           {CreateParameterOption("o", wxString(), {"red", "green"}, 1), Range("n", 0, 0, 1)});
    filter.InitFilter();
    EXPECT_EQ((Texts{"red,0", "red,1", "green,0", "green,1"}), List(filter));
}

TEST(DefaultConfigurations, ParameterThatCantBeCounted_EndsTheNesting) {
    RecordingFilter first("Filter", {Number("a", 9), Range("b", 1, 0, 2)});
    first.InitFilter();
    EXPECT_EQ((Texts{"9,1"}), List(first));
    RecordingFilter second("Filter", {Range("a", 0, 0, 1), Number("b", 9), Range("c", 1, 0, 2)});
    second.InitFilter();
    EXPECT_EQ((Texts{"0,9,1", "1,9,1"}), List(second));
}

TEST(DefaultConfigurations, FifthParameter_KeepsItsValueAndIsReported) {
    static wxString reported;
    wxSetAssertHandler([](const wxString&, int, const wxString&, const wxString& condition, const wxString&) {
        reported = condition;
    });
    RecordingFilter four("Four", {Range("a", 0, 0, 1), Range("b", 0, 0, 0), Range("c", 0, 0, 0), Range("d", 0, 0, 1)});
    four.InitFilter();
    EXPECT_EQ(4U, four.GetConfigurationsSize());
    EXPECT_EQ(wxString(), reported);
    RecordingFilter five("Five", {Range("a", 0, 0, 1), Range("b", 0, 0, 0), Range("c", 0, 0, 0), Range("d", 0, 0, 0),
                                  Range("e", 2, 0, 3)});
    five.InitFilter();
    EXPECT_EQ((Texts{"0,0,0,0,2", "1,0,0,0,2"}), List(five));
    EXPECT_EQ("vpsize < 4", reported);
}

TEST(DefaultConfigurations, HandMadeList_IsTheDefault) {
    ListingFilter filter("Filter", {Number("n", 1)});
    filter.InitFilter();
    filter.AddConfiguration(filter.Input(), -1);
    EXPECT_EQ((Texts{"30", "1"}), List(filter));
    filter.ResetDefaultConfigurations();
    EXPECT_EQ((Texts{"30"}), List(filter));
}

TEST(ConfigurationList, Add_InsertsInsideAndAppendsOutside) {
    RecordingFilter filter("Filter", {Number("n", 0)});
    filter.AddConfiguration(WithFirst(filter.Input(), 1), 0);
    filter.AddConfiguration(WithFirst(filter.Input(), 2), -1);
    filter.AddConfiguration(WithFirst(filter.Input(), 3), 2);
    filter.AddConfiguration(WithFirst(filter.Input(), 4), 99);
    filter.AddConfiguration(WithFirst(filter.Input(), 5), 1);
    EXPECT_EQ((Texts{"1", "5", "2", "3", "4"}), List(filter));
}

TEST(ConfigurationList, Delete_ErasesOneAndHeedsTheEnds) {
    RecordingFilter filter("Filter", {Range("n", 0, 0, 2)});
    filter.InitFilter();
    filter.DeleteConfiguration(1);
    filter.DeleteConfiguration(-1);
    filter.DeleteConfiguration(2);
    EXPECT_EQ((Texts{"0", "2"}), List(filter));
    filter.DeleteAllConfigurations();
    EXPECT_EQ(0U, filter.GetConfigurationsSize());
}

TEST(ConfigurationList, ParametersOutsideTheList_AreNone) {
    RecordingFilter filter("Filter", {Range("n", 0, 0, 2)});
    filter.InitFilter();
    EXPECT_TRUE(filter.GetConfigurationParams(-1).empty());
    EXPECT_TRUE(filter.GetConfigurationParams(3).empty());
}

TEST(ConfigurationList, Enable_TellsWhetherItChangedAnything) {
    RecordingFilter filter("Filter", {Range("n", 0, 0, 1)});
    filter.InitFilter();
    EXPECT_FALSE(filter.EnableConfiguration(1, true));
    EXPECT_TRUE(filter.EnableConfiguration(1, false));
    EXPECT_FALSE(filter.EnableConfiguration(2, false));
    EXPECT_FALSE(filter.EnableConfiguration(-1, false));
    EXPECT_EQ((Texts{"0", "!1"}), List(filter));
    ASSERT_EQ(1U, filter.GetEnabledConfigurations().size());
    EXPECT_EQ("0", Values(filter.GetEnabledConfigurations()[0]));
}

TEST(ConfigurationList, IsEnabled_OfAnEmptyListIsTrue) {
    const RecordingFilter filter("Filter");
    EXPECT_TRUE(filter.IsConfigurationEnabled(0));
    EXPECT_TRUE(filter.IsConfigurationEnabled(-1));
}

TEST(ConfigurationList, IsEnabled_OutsideTheListIsThatOfTheFirst) {
    RecordingFilter filter("Filter", {Range("n", 0, 0, 1)});
    filter.InitFilter();
    filter.EnableConfiguration(0, false);
    EXPECT_FALSE(filter.IsConfigurationEnabled(-1));
    EXPECT_FALSE(filter.IsConfigurationEnabled(2));
    EXPECT_TRUE(filter.IsConfigurationEnabled(1));
    filter.EnableConfiguration(0, true);
    EXPECT_TRUE(filter.IsConfigurationEnabled(-1));
    EXPECT_TRUE(filter.IsConfigurationEnabled(2));
}

namespace {

Texts Read(const VecParameter& input, const VecString& entries) {
    RecordingFilter filter("Filter", input);
    filter.InitFilter();
    filter.SetConfigurationsFromVecString(entries);
    return List(filter);
}

VecParameter TwoNumbers() {
    return {Number("a", 7), Number("b", 8)};
}

}  // namespace

TEST(ConfigurationTexts, ExclamationMark_Disables) {
    EXPECT_EQ((Texts{"!1,2"}), Read(TwoNumbers(), {"!Filter-1-2"}));
}

TEST(ConfigurationTexts, DoubledDash_IsAMinusSign) {
    EXPECT_EQ((Texts{"1,-5"}), Read(TwoNumbers(), {"Filter-1--5"}));
}

TEST(ConfigurationTexts, NegativeFirstValue_SplitsAtItsDash) {
    EXPECT_EQ((Texts{"7,5"}), Read(TwoNumbers(), {"Filter--5"}));
}

TEST(ConfigurationTexts, TooFewOrTooManyValues_KeepDefaultsOrAreDropped) {
    EXPECT_EQ((Texts{"1,8", "7,8", "1,2"}), Read(TwoNumbers(), {"Filter-1", "Filter", "Filter-1-2-3"}));
}

TEST(ConfigurationTexts, ValueThatDoesntParse_KeepsTheDefault) {
    EXPECT_EQ((Texts{"7,2"}), Read(TwoNumbers(), {"Filter-many-2"}));
}

TEST(ConfigurationTexts, EntriesOfOtherFilters_AddNothing) {
    EXPECT_EQ((Texts{"1,2"}), Read(TwoNumbers(), {"Other-3-4", "Filter-1-2", "", "-", "!"}));
}

TEST(ConfigurationTexts, NoneOfItsOwn_BringsTheDefaultsBack) {
    EXPECT_EQ((Texts{"0", "1"}), Read({Range("n", 0, 0, 1)}, {"Other-3"}));
    EXPECT_EQ((Texts{"0", "1"}), Read({Range("n", 0, 0, 1)}, {}));
}

TEST(ConfigurationTexts, StringMap_IsNotReadBack) {
    const Parameter map = CreateParameterStringMap("m", wxString(), std::map<wxString, wxString>{{"k", "v"}});
    RecordingFilter filter("Filter", {map, Number("n", 1)});
    filter.InitFilter();
    filter.SetConfigurationsFromVecString({"Filter-x-5"});
    ASSERT_EQ(1U, filter.GetConfigurationsSize());
    EXPECT_TRUE(filter.GetConfigurationParams(0)[0] == map);
    EXPECT_EQ(5, filter.GetConfigurationParams(0)[1].GetValue<int>());
}

TEST(ConfigurationTexts, InputParameters_AreReset) {
    RecordingFilter filter("Filter", TwoNumbers());
    filter.InitFilter();
    filter.Input()[1].Set(boost::any(99));
    filter.SetConfigurationsFromVecString({"Filter-1"});
    EXPECT_EQ((Texts{"1,8"}), List(filter));
    EXPECT_EQ("7,8", Values(filter.GetParametersInput()));
}
