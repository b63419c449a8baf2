// SPDX-License-Identifier: Apache-2.0
// The context's slots, paths, settings and filters.
#include <wx/stdpaths.h>

#include "orvcore/project.h"
#include "tests/orvcore/plainfilter.h"
#include "tests/support/engine.h"
#include "tolbase/text.h"

using support::BrokenFilter;
using support::PlainFilter;

namespace {

class Context : public support::Engine {
protected:
    PlainFilter* Add(wxString const& name, int type) {
        auto* filter = new PlainFilter(name);
        context->AddFilterType(filter, type);
        return filter;
    }
};

}  // namespace

TEST_F(Context, NothingLoaded_BothSlotsAreEmpty) {
    for (OrvFileId const id : {Evidence, Reference}) {
        EXPECT_FALSE(context->HasFile(id));
        EXPECT_EQ(-1, context->GetFileId(id));
        EXPECT_TRUE(context->GetFilename(id).empty());
        EXPECT_TRUE(context->GetOutputBasePath(id).empty());
        EXPECT_TRUE(context->GetFileList(id).empty());
        EXPECT_FALSE(context->GetImage(id).IsOk());
        EXPECT_FALSE(context->IsJpeg(id));
        EXPECT_FALSE(context->GetImageJpegInfo(id).IsValid);
    }
    EXPECT_EQ("No image loaded. Please open a file or drag an image here.", context->GetNoDataAvailableMessage());
}

TEST_F(Context, Constructed_IsTheGlobalOneAndHasAProject) {
    EXPECT_EQ(static_cast<OrvContext*>(context), GetContext());
    ASSERT_NE(nullptr, context->GetProject());
    EXPECT_TRUE(context->GetProject()->GetBookmarks().empty());
}

TEST_F(Context, StartValues_AreThoseOfTheOptionsDefaults) {
    EXPECT_EQ("png", context->GetCacheFormat());
    EXPECT_EQ(90, context->GetJpgQuality());
    EXPECT_EQ(45.0, context->GetPrnuThreshold());
    EXPECT_TRUE(context->CacheEnabled());
    EXPECT_FALSE(context->ShowBestMatchingParameters());
    EXPECT_EQ(640, context->GetDefaultImageSize().width);
    EXPECT_EQ(480, context->GetDefaultImageSize().height);
    EXPECT_EQ(0, context->GetOutputImageMaxWidth());
    EXPECT_EQ(0, context->GetOutputImageMinWidth());
}

TEST_F(Context, Paths_LieBeneathTheDocumentsFolder) {
    wxString const documents = dir / "documents";
    EXPECT_EQ(documents + "/settings/default.ovs", context->GetProgramOptionsPath());
    EXPECT_EQ(documents + "/qt", context->GetUserQtDatabasePath());
    EXPECT_EQ(documents + "/qt/userqt.csv", context->GetUserQtDatabaseFilename());
    EXPECT_EQ(documents + "/socialmediasig", context->GetUserSMSDatabasePath());
    EXPECT_EQ(documents + "/socialmediasig/usersms.json", context->GetUserSMSDatabaseFilename());
    EXPECT_EQ(documents + "/prnu/negative-reference", context->GetPrnuFalseFolder());
    EXPECT_EQ(documents + "/prnu/models", context->GetPrnuModelsFolder());
}

TEST_F(Context, ConfigDir_StandsAboveTheProgramsFolder) {
    wxString const program = wxStandardPaths::Get().GetExecutablePath();
    EXPECT_EQ(program.BeforeLast('/').BeforeLast('/') + "/orvelledata/", context->GetConfigDir());
}

TEST_F(Context, HasFile_TakesAFileAndAWebAddress) {
    EXPECT_FALSE(context->HasFile(wxString()));
    EXPECT_FALSE(context->HasFile(dir / "missing"));
    EXPECT_FALSE(context->HasFile(dir.Path())) << "a folder is no file";
    EXPECT_TRUE(context->HasFile(support::WriteBytes(dir / "there", "x")));
    EXPECT_TRUE(context->HasFile(wxString("http://example.org/a.jpg")));
}

TEST_F(Context, Mailbox_HoldsTheEventPushedLast) {
    OrvCommandEvent first;
    OrvCommandEvent second;
    context->PushEvent(&first);
    context->PushEvent(&second);
    EXPECT_EQ(&second, context->PopEvent());
    EXPECT_EQ(nullptr, context->PopEvent());
}

TEST_F(Context, Thumbnails_AreCroppedAndKeepTheirPlaces) {
    context->AddThumbnail(Image::Create(100, 40, IPL_DEPTH_8U, 3));
    context->AddThumbnail(Image());
    std::vector<Image> const thumbnails = context->GetThumbnails();
    ASSERT_EQ(2u, thumbnails.size());
    EXPECT_EQ(20, thumbnails[0].Width());
    EXPECT_EQ(20, thumbnails[0].Height());
    EXPECT_FALSE(thumbnails[1].IsOk());
    context->ClearThumbnails();
    EXPECT_TRUE(context->GetThumbnails().empty());
}

TEST_F(Context, Filters_AreKeptInTheOrderOfTheirRegistration) {
    PlainFilter* const second = Add("Beta", 20);
    PlainFilter* const first = Add("Alpha", 10);
    EXPECT_EQ((std::vector<OrvFilter*>{second, first}), context->GetFilters());
    EXPECT_EQ(first, GetFilter(10));
    EXPECT_EQ(1u, first->GetConfigurations().size()) << "a registered filter has been started";
}

TEST_F(Context, UnknownFilterNumber_IsNull) {
    EXPECT_EQ(nullptr, context->GetFilter(77));
    EXPECT_EQ(nullptr, context->GetFilter(77));
    EXPECT_TRUE(context->GetFilters().empty());
}

TEST_F(Context, TwoFiltersOfOneNumber_BothInTheListTheSecondInTheMap) {
    PlainFilter* const first = Add("Alpha", 1);
    PlainFilter* const second = Add("Beta", 1);
    EXPECT_EQ((std::vector<OrvFilter*>{first, second}), context->GetFilters());
    EXPECT_EQ(second, context->GetFilter(1));
}

TEST_F(Context, FilterThatFailsToStart_IsToldAndLeftOut) {
    wxString told;
    TolSetMessageHandler([&](wxString const& message, wxString const& title) { told = title + "|" + message; });
    BrokenFilter filter;
    context->AddFilterType(&filter, 3);
    TolSetMessageHandler(nullptr);
    EXPECT_EQ("Configuration Error|Error intializing filter Broken", told);
    EXPECT_TRUE(context->GetFilters().empty());
    EXPECT_EQ(nullptr, context->GetFilter(3));
}

TEST_F(Context, FilterFromName_IsTheFirstEquivalentOne) {
    PlainFilter* const filter = Add("Map Type", 1);
    Add("map_type", 2);
    EXPECT_EQ(filter, context->GetFilterFromName("MAP-TYPE"));
    EXPECT_EQ(nullptr, context->GetFilterFromName("Map"));
}

TEST_F(Context, ActiveFilter_GetsWhatIsSaved) {
    EXPECT_EQ(nullptr, context->GetActiveFilter());
    EXPECT_EQ("", context->GetActiveFilterSelectorString());
    PlainFilter* const filter = Add("Alpha", 1);
    context->SetActiveFilter(filter);
    context->SetImageToSave(Image());
    context->SaveFilterResult("/tmp/result.txt");
    EXPECT_EQ("text|*.txt", context->GetActiveFilterSelectorString());
    EXPECT_EQ(1, filter->imagesToSave);
    EXPECT_EQ(std::vector<wxString>{"/tmp/result.txt"}, filter->saved);
}

TEST_F(Context, NoActiveFilter_SavingDoesNothing) {
    context->SaveFilterResult("/tmp/result.txt");
    context->SetImageToSave(Image());
    EXPECT_EQ("", context->GetExportFilename());
}

TEST_F(Context, FiltersStatus_ComesFromTheStatusFilesOfTheEvidence) {
    auto* const filter = new PlainFilter("Alpha", {support::GrayOrColour()});
    context->AddFilterType(filter, 1);
    Load(Jpeg("a.jpg"));
    support::WriteBytes(filter->GetStatusFilename(Evidence, filter->GetConfigurationParams(1)), "Warning");
    context->UpdateFiltersStatus();
    EXPECT_EQ(OrvFilterConfiguration::NotCalculated, filter->GetConfigurations()[0].GetFilterStatus());
    EXPECT_EQ(OrvFilterConfiguration::Warning, filter->GetConfigurations()[1].GetFilterStatus());
}

TEST_F(Context, NoDataMessage_NamesTheReason) {
    PlainFilter* const filter = Add("Alpha", 1);
    filter->MakeOnlyForJpeg();
    context->SetActiveFilter(filter);
    EXPECT_EQ("No image loaded. Please open a file or drag an image here.", context->GetNoDataAvailableMessage());
    Load(Jpeg("a.jpg"));
    EXPECT_EQ("No data available. This filter supports only JPEG files.", context->GetNoDataAvailableMessage());
    context->SetActiveFilter(nullptr);
    EXPECT_EQ("No data available.", context->GetNoDataAvailableMessage());
}

TEST_F(Context, PrnuPath_ChangeIsRemembered) {
    context->SetPrnuReferencePatternPath("/p/one");
    EXPECT_FALSE(context->IsPrnuReferencePatterPathChanged(Evidence, "/p/one"));
    EXPECT_TRUE(context->IsPrnuReferencePatterPathChanged(Evidence, "/p/One"));
    EXPECT_TRUE(context->IsPrnuReferencePatterPathChanged());
    EXPECT_FALSE(context->IsPrnuReferencePatterPathChanged(Reference, "/p/one"));
    EXPECT_FALSE(context->IsPrnuReferencePatterPathChanged());
}

TEST_F(Context, PrnuPathOfAReferenceBesideAnEvidence_NeverClearsAndNeverSets) {
    Load(Jpeg("a.jpg"));
    context->SetPrnuReferencePatternPath("/p/one");
    EXPECT_FALSE(context->IsPrnuReferencePatterPathChanged(Reference, "/p/two"));
    context->SetPrnuReferencePatternPathChanged(true);
    EXPECT_TRUE(context->IsPrnuReferencePatterPathChanged(Reference, "/p/one"));
    EXPECT_TRUE(context->IsPrnuReferencePatterPathChanged());
}

TEST_F(Context, LeftOverEvent_IsFreedWithTheContext) {
    context->PushEvent(new OrvCommandEvent);
    iface.reset();
    SUCCEED();
}

TEST(ParametersString, NoParameter_IsEmpty) {
    EXPECT_EQ("", GetParametersString(VecParameter(), true));
}

TEST(ParametersString, OneParameter_HasNoDash) {
    EXPECT_EQ("3", GetParametersString(VecParameter{CreateParameterInt("n", "", 3)}, false));
}

TEST(ParametersString, SeveralParameters_AreJoinedByDashes) {
    VecParameter const parameters = {CreateParameterInt("n", "", -3), support::GrayOrColour(),
                                     CreateParameterString("t", "", "a b-c")};
    EXPECT_EQ("-3-Gray-a b-c", GetParametersString(parameters, true));
}

TEST(ParametersString, Paths_AreCleaned) {
    VecParameter const parameters = {CreateParameterFolder("d", "", "/x/my-dir name", VecString(), ""),
                                     CreateParameterFile("f", "", "/y/a b.dat", VecString{"dat"})};
    EXPECT_EQ("my_dir_name-a_b", GetParametersString(parameters, true));
    EXPECT_EQ("my_dir_name-a_b", GetParametersString(parameters, false));
}

TEST(ParametersString, Map_IsAlwaysAReportText) {
    VecParameter const parameters = {CreateParameterStringMap("m", "", {{"a", "1"}})};
    EXPECT_EQ(parameters[0].ToReport(), GetParametersString(parameters, false));
    EXPECT_NE("", GetParametersString(parameters, false));
}

TEST(CleanDirName, Path_LosesFoldersAndTheLastExtension) {
    EXPECT_EQ("a.b", CleanDirName("/x-y/a.b.c"));
    EXPECT_EQ("my_dir__name", CleanDirName("my-dir- name"));
    EXPECT_EQ("", CleanDirName(""));
}
