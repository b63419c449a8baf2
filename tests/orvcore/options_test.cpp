// SPDX-License-Identifier: Apache-2.0
// The program options, their file, the configurations of filters in them, and the keywords.
#include <filesystem>

#include "tests/orvcore/plainfilter.h"
#include "tests/support/engine.h"
#include "tolbase/json.h"
#include "tolbase/limits.h"
#include "tolbase/text.h"
#include "tolbase/translation.h"
#include "tolimage/subimages.h"

using support::PlainFilter;
using support::WriteBytes;

namespace {

class Options : public support::Engine {
protected:
    PlainFilter* Modes() {
        auto* filter = new PlainFilter("Modes", {support::GrayOrColour()});
        context->AddFilterType(filter, 1);
        return filter;
    }
    PlainFilter* Plain(wxString const& name = "Plain", int type = 2) {
        auto* filter = new PlainFilter(name);
        context->AddFilterType(filter, type);
        return filter;
    }
    Parameter Option(std::size_t index) { return context->GetProgramOptions()[0][index]; }
    VecString Configurations() { return Option(8).GetValue<VecString>(); }
    void Set(std::size_t index, boost::any const& value) {
        VecVecParameter options = context->GetProgramOptions();
        EXPECT_TRUE(options[0][index].Set(value));
        context->SetProgramOptions(options);
    }
    void SetConfigurations(VecString const& list) { Set(8, boost::any(list)); }
    wxString Settings(std::string const& text) { return WriteBytes(context->GetProgramOptionsPath(), text); }
};

}  // namespace

TEST_F(Options, GeneralSettings_StandInTheirOrder) {
    StartOptions();
    VecString names;
    VecVecParameter const options = context->GetProgramOptions();
    for (Parameter const& option : options[0]) names.push_back(option.Name());
    VecString const expected = {"Language",
                                "HiDPI Mode",
                                "Log",
                                "Processing Cache",
                                "Cache Location",
                                "Custom Cache Folder",
                                "Image Cache Format",
                                "JPG Save Quality",
                                "Default Configurations",
                                "Search Subfolders for Batch File Format",
                                "Hide Best Matching Parameters for Negative Compatibility",
                                "Threshold for PRNU Camera Identification",
                                "Report Max Image Width",
                                "Report Min Image Width"};
    EXPECT_EQ(expected, names);
    EXPECT_EQ("General Settings", options.GetGroupName(0));
}

TEST_F(Options, Groups_StandInTheirOrder) {
    StartOptions();
    VecVecParameter const options = context->GetProgramOptions();
    ASSERT_EQ(4u, options.size());
    EXPECT_EQ("File Format", options.GetGroupName(1));
    EXPECT_EQ("Web Services", options.GetGroupName(2));
    EXPECT_EQ("Limits", options.GetGroupName(3));
}

TEST_F(Options, Defaults_AreThoseOfTheTable) {
    StartOptions();
    std::vector<int> indices;
    for (std::size_t const index : {1, 2, 3, 4, 6, 7, 9, 10, 12, 13}) indices.push_back(Option(index).GetValue<int>());
    EXPECT_EQ((std::vector<int>{0, 0, 0, 0, 1, 90, 0, 1, 600, 0}), indices);
    EXPECT_EQ(45.0, Option(11).GetValue<double>());
    EXPECT_EQ(GetUserDesktopPath() + "/cache", Option(5).GetValue<wxString>());
    EXPECT_EQ("Default", Option(0).ToReport());
    EXPECT_EQ("The minimum width in pixels of images in report (0 = original image width)",
              Option(13).GetDescription());
}

TEST_F(Options, WebServices_HaveNoKeysToBeginWith) {
    StartOptions();
    VecParameter const group = context->GetOptionGroup("Web Services");
    ASSERT_EQ(7u, group.size());
    for (char const* key : {"Flickr API Key", "Google API Key", "TinEye API Key"}) {
        ASSERT_NE(nullptr, group.Find(key));
        EXPECT_EQ("", group.Find(key)->GetValue<wxString>());
    }
    EXPECT_EQ("https://api.flickr.com/services/rest/", group.Find("Flickr Endpoint")->GetValue<wxString>());
}

TEST_F(Options, GroupOfAnApplication_KeepsItsPlaceBehindTheEngines) {
    context->AddProgramOptionsGroup("Mine", VecParameter{CreateParameterInt("n", "", 4)});
    StartOptions();
    VecVecParameter const options = context->GetProgramOptions();
    EXPECT_EQ("General Settings", options.GetGroupName(0));
    EXPECT_EQ("Mine", options.GetGroupName(options.size() - 1));
    EXPECT_EQ(4, context->GetOptionGroup("Mine")[0].GetValue<int>());
}

TEST_F(Options, MadeTwice_HaveEachGroupOnce) {
    StartOptions();
    std::size_t const count = context->GetProgramOptions().size();
    StartOptions();
    EXPECT_EQ(count, context->GetProgramOptions().size());
    EXPECT_EQ("File Format", context->GetProgramOptions().GetGroupName(1));
}

TEST_F(Options, Applied_ReachTheEngine) {
    StartOptions();
    Set(3, 1);
    Set(6, 0);
    Set(7, 33);
    Set(10, 0);
    Set(11, 12.5);
    EXPECT_FALSE(context->CacheEnabled());
    EXPECT_EQ("jpg", context->GetCacheFormat());
    EXPECT_EQ(33, context->GetJpgQuality());
    EXPECT_TRUE(context->ShowBestMatchingParameters());
    EXPECT_EQ(12.5, context->GetPrnuThreshold());
    Set(6, 1);
    EXPECT_EQ("png", context->GetCacheFormat());
}

TEST_F(Options, CacheLocation_MovesTheOutputOfLoadedSlots) {
    StartOptions();
    wxString const path = Jpeg("a.jpg");
    Load(path);
    EXPECT_TRUE(context->GetOutputBasePath(Evidence).StartsWith(dir / "documents/cache/a-"));
    Set(4, 1);
    EXPECT_TRUE(context->GetOutputBasePath(Evidence).StartsWith(dir / "in/a-"));
    Set(5, wxString(dir / "mine"));
    Set(4, 2);
    EXPECT_TRUE(context->GetOutputBasePath(Evidence).StartsWith(dir / "mine/a-"));
    EXPECT_EQ(dir / "mine", TolGetDumpFolder());
    EXPECT_EQ("", context->GetOutputBasePath(Reference));
}

TEST_F(Options, FileGoneSinceItWasLoaded_KeepsItsNameInTheCache) {
    StartOptions();
    wxString const path = Jpeg("a.jpg");
    Load(path);
    wxString const folder = context->GetOutputBasePath(Evidence).BeforeLast('/').AfterLast('/');
    wxRemoveFile(path);
    Set(4, 1);
    EXPECT_EQ(dir / ("in/" + folder + "/a"), context->GetOutputBasePath(Evidence));
}

TEST_F(Options, LimitOption_SetsTheLimitAndZeroRestoresIt) {
    StartOptions();
    SetTolLimit(TolLimit::Segments, 77);
    VecVecParameter options = context->GetProgramOptions();
    Parameter* const pixels = options.Group("Limits").Find("pixels-per-image");
    ASSERT_NE(nullptr, pixels);
    pixels->Set(boost::any(std::int64_t{5000}));
    context->SetProgramOptions(options);
    EXPECT_EQ(5000u, GetTolLimit(TolLimit::PixelsPerImage));
    EXPECT_EQ(77u, GetTolLimit(TolLimit::Segments)) << "an option at 0 leaves alone what the program has set";
    pixels->Set(boost::any(std::int64_t{0}));
    context->SetProgramOptions(options);
    EXPECT_EQ(GetTolLimitInfo(TolLimit::PixelsPerImage).defaultValue, GetTolLimit(TolLimit::PixelsPerImage));
    ResetTolLimits();
}

TEST_F(Options, EmptySet_IsTakenWithoutHarm) {
    StartOptions();
    context->SetProgramOptions(VecVecParameter());
    EXPECT_EQ(90, context->GetJpgQuality());
    context->SaveProgramOptions(dir / "o.ovs");
    EXPECT_TRUE(wxFileExists(dir / "o.ovs"));
}

TEST_F(Options, NoSettingsFile_MeansDefaults) {
    StartOptions();
    EXPECT_EQ("Disabled", Option(1).ToReport());
    EXPECT_FALSE(TolIsProcessDpiAware());
    EXPECT_FALSE(wxFileExists(context->GetProgramOptionsPath()));
}

TEST_F(Options, HiDpiInTheFile_IsReadAtTheStart) {
    Settings("{\"General Settings\": {\"HiDPI Mode\": \"Enabled\"}}");
    context->InitProgramOptions(AppVersion());
    EXPECT_EQ(1, Option(1).GetValue<int>());
    EXPECT_TRUE(TolIsProcessDpiAware());
}

TEST_F(Options, BrokenSettingsFile_MeansDefaults) {
    for (std::string const& text : {std::string("{ no \x01 JSON [["), std::string(), std::string("[1, 2]"),
                                    std::string("{\"General Settings\": 7}"), std::string(5000, '[')}) {
        Settings(text);
        StartOptions();
        EXPECT_EQ(90, context->GetJpgQuality());
        EXPECT_EQ("png", context->GetCacheFormat());
        EXPECT_EQ(0, Option(1).GetValue<int>());
    }
}

TEST_F(Options, Saved_StandUnderGroupAndNameAndAreReadAgain) {
    StartOptions();
    Set(3, 1);
    Set(7, 33);
    context->SaveProgramOptions(dir / "new/deep/o.ovs");
    wxJSONValue root = JsonFromFile(dir / "new/deep/o.ovs");
    EXPECT_EQ("Disabled", root["General Settings"]["Processing Cache"].AsString());
    Set(3, 0);
    Set(7, 90);
    context->LoadProgramOptions(dir / "new/deep/o.ovs");
    EXPECT_FALSE(context->CacheEnabled());
    EXPECT_EQ(33, context->GetJpgQuality());
}

TEST_F(Options, OptionsThatAFileLacks_KeepTheirValue) {
    StartOptions();
    Set(3, 1);
    context->LoadProgramOptions(WriteBytes(dir / "o.ovs", "{\"General Settings\": {\"JPG Save Quality\": 33}}"));
    EXPECT_EQ(33, context->GetJpgQuality());
    EXPECT_FALSE(context->CacheEnabled());
}

TEST_F(Options, FolderThatCannotBeMade_SavingIsSilent) {
    StartOptions();
    WriteBytes(dir / "occupied", "a file");
    context->SaveProgramOptions(dir / "occupied/o.ovs");
    EXPECT_EQ("a file", support::ReadBytes(dir / "occupied"));
}

TEST_F(Options, Version_IsKept) {
    AppVersion version;
    version.SetAppName("A program");
    context->InitProgramOptions(version);
    EXPECT_EQ("A program", context->GetAppVersion().GetAppName());
}

TEST_F(Options, LogSwitch_ReachesTheWorkersLog) {
    StartOptions();
    Set(2, 1);
    std::filesystem::remove_all(std::string((dir / "documents/logs").utf8_str()));
    Set(2, 0);
    EXPECT_TRUE(wxFileExists(dir / "documents/logs/current.txt"));
}

TEST_F(Options, FilterWithoutParameters_IsItsNameAlone) {
    PlainFilter* const plain = Plain();
    Modes();
    EXPECT_EQ((VecString{"Plain", "Modes-Gray", "Modes-Colour"}), context->GetConfigurationsFromFilters(true));
    plain->EnableConfiguration(0, false);
    EXPECT_EQ("!Plain", context->GetConfigurationsFromFilters(false)[0]);
}

TEST_F(Options, ConfigurationList_IsGivenToTheFilters) {
    PlainFilter* const modes = Modes();
    StartOptions();
    SetConfigurations({"!Modes-Colour", "Modes-Gray", "Nobody-1"});
    ASSERT_EQ(2u, modes->GetConfigurations().size());
    EXPECT_FALSE(modes->IsConfigurationEnabled(0));
    EXPECT_EQ((VecString{"!Modes-Colour", "Modes-Gray"}), Configurations());
}

TEST_F(Options, EmptyConfigurationList_RestoresTheDefaults) {
    PlainFilter* const modes = Modes();
    StartOptions();
    modes->DeleteAllConfigurations();
    SetConfigurations({});
    EXPECT_EQ(2u, modes->GetConfigurations().size());
    EXPECT_EQ((VecString{"Modes-Gray", "Modes-Colour"}), Configurations());
}

TEST_F(Options, SavedEmptyConfigurationList_RestoresTheDefaultsOnLoad) {
    PlainFilter* const modes = Modes();
    StartOptions();
    VecVecParameter options = context->GetProgramOptions();
    options[0][8].Set(boost::any(VecString()));
    options.Write(dir / "o.ovs");
    modes->DeleteAllConfigurations();
    context->LoadProgramOptions(dir / "o.ovs");
    EXPECT_EQ(2u, modes->GetConfigurations().size());
}

TEST_F(Options, EqualConfigurationList_LeavesTheFiltersAndAppliesTheRest) {
    PlainFilter* const modes = Modes();
    StartOptions();
    modes->EnableConfiguration(1, false);
    Set(7, 21);
    EXPECT_FALSE(modes->IsConfigurationEnabled(1)) << "an applied list would have enabled it";
    EXPECT_EQ(21, context->GetJpgQuality());
}

TEST_F(Options, RefreshConfigurations_WritesTheOption) {
    PlainFilter* const modes = Modes();
    context->RefreshConfigurations();
    EXPECT_TRUE(context->GetProgramOptions().empty()) << "there is no option yet";
    StartOptions();
    modes->EnableConfiguration(1, false);
    context->RefreshConfigurations();
    EXPECT_EQ((VecString{"Modes-Gray", "!Modes-Colour"}), Configurations());
}

TEST_F(Options, UntranslatedList_DropsWhatFitsNoConfiguration) {
    Modes();
    VecString const saved = context->GetConfigurationsFromFilters(false);
    EXPECT_EQ((VecString{saved[1]}),
              context->ConvertToUntranslatedConfigurations({"Modes-Colour", "Modes-Sepia", "Nobody-Gray", "Modes"}));
}

TEST_F(Options, UntranslatedList_TakesTheMarkFromTheEntry) {
    Plain();
    EXPECT_EQ((VecString{"!Plain", "Plain"}), context->ConvertToUntranslatedConfigurations({"!Plain", "Plain"}));
}

TEST_F(Options, UntranslatedList_GivesAnEntryForEachConfigurationThatFits) {
    PlainFilter* const plain = Plain();
    plain->AddConfiguration(VecParameter(), -1);
    EXPECT_EQ((VecString{"Plain", "Plain"}), context->ConvertToUntranslatedConfigurations({"Plain"}));
}

TEST_F(Options, FilterNameWithADash_IsDroppedOnSaving) {
    Plain("Two-Part", 5);
    EXPECT_EQ("Two-Part", context->GetConfigurationsFromFilters(true)[0]);
    EXPECT_TRUE(context->ConvertToUntranslatedConfigurations({"Two-Part"}).empty());
}

TEST_F(Options, SavedList_MarksADisabledConfiguration) {
    PlainFilter* const modes = Modes();
    modes->EnableConfiguration(1, false);
    StartOptions();
    VecString const saved = context->GetConfigurationsFromFilters(false);
    ASSERT_TRUE(saved[1].StartsWith("!Modes-"));
    context->SaveProgramOptions(dir / "o.ovs");
    wxJSONValue root = JsonFromFile(dir / "o.ovs");
    wxJSONValue list = root["General Settings"]["Default Configurations"];
    EXPECT_EQ((VecString{"Modes-Gray", "!Modes-Colour"}), Configurations());
    EXPECT_EQ(saved, FromJson<VecString>(list));
}

TEST_F(Options, SavedList_OfEqualConfigurations_DoesNotGrow) {
    PlainFilter* const plain = Plain();
    plain->AddConfiguration(VecParameter(), -1);
    plain->AddConfiguration(VecParameter(), -1);
    plain->EnableConfiguration(1, false);
    StartOptions();
    for (int i = 0; i < 4; ++i) {
        context->SaveProgramOptions(dir / "o.ovs");
        context->LoadProgramOptions(dir / "o.ovs");
    }
    EXPECT_EQ((VecString{"Plain", "!Plain", "Plain"}), Configurations());
}

TEST_F(Options, SavedList_LosesAnEntryWhoseFilterIsNotFound) {
    Modes();
    Plain("Two-Part", 5);
    StartOptions();
    context->SaveProgramOptions(dir / "o.ovs");
    EXPECT_EQ(std::string::npos, support::ReadBytes(dir / "o.ovs").find("Two-Part"));
    EXPECT_NE(std::string::npos, support::ReadBytes(dir / "o.ovs").find("Modes-"));
    EXPECT_EQ((VecString{"Modes-Gray", "Modes-Colour", "Two-Part"}), Configurations())
        << "saving leaves the options themselves";
}

TEST_F(Options, Keywords_AreTrimmedLinesWithoutEmptyOnes) {
    context->LoadKeywords(WriteBytes(dir / "k.txt", "  Photoshop \r\n\n\t\nGimp\n   \nlast"));
    EXPECT_EQ((VecString{"Photoshop", "Gimp", "last"}), context->GetSoftwareKeywords());
}

TEST_F(Options, MissingKeywordsFile_IsToldAndEmptiesTheList) {
    context->LoadKeywords(WriteBytes(dir / "k.txt", "a"));
    wxString told;
    TolSetMessageHandler([&](wxString const& message, wxString const& title) { told = title + "|" + message; });
    context->LoadKeywords(dir / "missing.txt");
    TolSetMessageHandler(nullptr);
    EXPECT_EQ("Warning|Keywords file not found.", told);
    EXPECT_TRUE(context->GetSoftwareKeywords().empty());
}
