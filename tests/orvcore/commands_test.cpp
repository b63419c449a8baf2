// SPDX-License-Identifier: Apache-2.0
#include "orvcore/commands.h"

#include <wx/filename.h>

#include "tests/orvcore/recordingfilter.h"
#include "tolbase/file.h"

using support::Number;
using support::RecordingFilter;

namespace {

using Ids = std::vector<int>;

class Commands : public support::FilterEngine {
protected:
    // The active filter, with one number.
    RecordingFilter* AddActive(int value = 3) {
        RecordingFilter* filter = Add(new RecordingFilter("Alpha", {Number("n", value)}));
        context->SetActiveFilter(filter);
        return filter;
    }
    OrvCommandSetFileConfigure Command(OrvFilter* filter, const VecParameter& parameters = VecParameter(),
                                       int configuration = -1) {
        return OrvCommandSetFileConfigure("/x/e.jpg", true, "/x/r.jpg", true, filter, parameters, VecParameter(),
                                          configuration);
    }
};

class CommandLog : public Commands {};
class CommandProject : public Commands {};

}  // namespace

TEST_F(Commands, SetFile_LoadsTheFileAndRunsTheFilter) {
    RecordingFilter* filter = AddActive();
    const wxString path = Jpeg("a.jpg");
    Run([&] { iface->SetFile(path, Evidence); });
    EXPECT_EQ(path, context->GetFilename(Evidence));
    EXPECT_FALSE(context->HasFile(Reference));
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ(Ids({0, 1}), recorder.Ids());
}

TEST_F(Commands, SetFileWithTheLoadedName_DoesntReloadButRuns) {
    RecordingFilter* filter = AddActive();
    const wxString path = Jpeg("a.jpg", 64, 48);
    Run([&] { iface->SetFile(path, Evidence); });
    Jpeg("a.jpg", 32, 32, 9);
    Run([&] { iface->SetFile(path, Evidence); });
    EXPECT_EQ(64, context->GetImage(Evidence).Width());
    EXPECT_EQ(2, filter->Count("PreApply"));
    EXPECT_EQ(1, filter->Count("Apply:E"));
}

TEST_F(Commands, SetFileOfAnotherSlotNumber_LoadsNothing) {
    RecordingFilter* filter = AddActive();
    Run([&] { iface->SetFile(Jpeg("a.jpg"), static_cast<OrvFileId>(2)); });
    EXPECT_FALSE(context->HasFile(Evidence));
    EXPECT_FALSE(context->HasFile(Reference));
    EXPECT_EQ(1, filter->Count("PreApply"));
}

TEST_F(Commands, FileThatCantBeLoaded_SkipsTheSecondAndStillRuns) {
    RecordingFilter* filter = AddActive();
    const wxString bad = support::WriteBytes(dir / "in/bad.jpg", "no picture");
    Run([&] { iface->SetFileConfigure(bad, Jpeg("b.jpg"), filter, VecParameter(), VecParameter(), false); });
    EXPECT_FALSE(context->HasFile(Evidence));
    EXPECT_FALSE(context->HasFile(Reference));
    EXPECT_EQ(1, filter->Count("PreApply"));
    EXPECT_EQ(Ids({0, 1}), recorder.Ids());
}

TEST_F(Commands, WithoutAnyFilter_TheFileLoadsAndTheRunFails) {
    const wxString path = Jpeg("a.jpg");
    Run([&] { iface->SetFile(path, Evidence); });
    EXPECT_EQ(path, context->GetFilename(Evidence));
    EXPECT_EQ(Ids({2}), recorder.Ids());
    EXPECT_EQ(nullptr, iface->GetActiveFilter());
    Run([&] { iface->SetFile(wxString(), Evidence); });
    EXPECT_FALSE(context->HasFile(Evidence));
}

TEST_F(Commands, NullFilter_MeansTheActiveOneAtConstruction) {
    RecordingFilter* alpha = AddActive();
    RecordingFilter* beta = Add(new RecordingFilter("Beta"));
    OrvCommandSetFileConfigure command("", false, "", false, nullptr, VecParameter(), VecParameter(), -1);
    context->SetActiveFilter(beta);
    OnWorker([&] { command.Execute(); });
    EXPECT_EQ(1, alpha->Count("PreApply"));
    EXPECT_EQ(0, beta->Count("PreApply"));
    EXPECT_EQ(alpha, iface->GetActiveFilter());
}

TEST_F(Commands, WithoutParameters_ThoseOfTheConfigurationOrTheFilterAreTaken) {
    const Parameter mode = CreateParameterOption("Mode", wxString(), {"A", "B", "C"}, 0);
    RecordingFilter* filter = Add(new RecordingFilter("Modes", {mode}));
    Run([&] { iface->Configure(filter, 2, VecParameter(), VecParameter(), true); });
    EXPECT_EQ(2, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(2, filter->GetActiveConfiguration());
    Run([&] { iface->Configure(filter, -1, VecParameter(), VecParameter(), false); });
    EXPECT_EQ(2, filter->GetParametersInput()[0].GetValue<int>());
    const VecParameter second = filter->GetConfigurationParams(1);
    Run([&] { iface->Configure(filter, 2, second, VecParameter(), false); });
    EXPECT_EQ(1, filter->GetParametersInput()[0].GetValue<int>());
}

TEST_F(Commands, ConfigurationOutsideTheList_RunsWithThePresentValues) {
    RecordingFilter* filter = AddActive(7);
    Run([&] { iface->Configure(filter, 99, VecParameter(), VecParameter(), false); });
    EXPECT_EQ(7, filter->GetParametersInput()[0].GetValue<int>());
    EXPECT_EQ(Ids({0, 1}), recorder.Ids());
}

TEST_F(Commands, AfterARun_TheStatusOfTheConfigurationsIsRefreshed) {
    const Parameter mode = CreateParameterOption("Mode", wxString(), {"A", "B"}, 0);
    RecordingFilter* filter = Add(new RecordingFilter("Modes", {mode}));
    Load(Jpeg("a.jpg"));
    Run([&] { iface->Configure(filter, 1, VecParameter(), VecParameter(), false); });
    EXPECT_EQ(OrvFilterConfiguration::NotCalculated, filter->GetConfigurations()[0].GetFilterStatus());
    EXPECT_EQ(OrvFilterConfiguration::Ok, filter->GetConfigurations()[1].GetFilterStatus());
}

TEST_F(CommandLog, CommandText_NamesEverything) {
    RecordingFilter* filter = AddActive();
    EXPECT_EQ("Evidence: /x/e.jpg - Reference: /x/r.jpg - ConfigureFilter: Alpha - ConfigurationId: 4 - Parameters: 7",
              Command(filter, {Number("n", 7)}, 4).GetCommandLog());
}

TEST_F(CommandLog, FirstLoadIntoAnEmptyEngine_IsNotLogged) {
    EXPECT_FALSE(Command(AddActive()).LogEnabled());
}

TEST_F(CommandLog, OneFile_LogsATextBothAnEmptyOne) {
    const OrvCommandSetFileConfigure command = Command(AddActive());
    Load(Jpeg("a.jpg"), Reference);
    EXPECT_TRUE(command.LogEnabled());
    EXPECT_FALSE(command.GetCommandLog().empty());
    Load(Jpeg("b.jpg"), Evidence);
    EXPECT_TRUE(command.LogEnabled());
    EXPECT_EQ("", command.GetCommandLog());
}

TEST_F(CommandLog, ResultText_TellsAReloadOfTheEvidence) {
    RecordingFilter* filter = AddActive();
    filter->cached = true;
    Load(Jpeg("a.jpg"));
    for (const int value : {1, 2}) Go(filter, {Number("n", value)});
    EXPECT_EQ("", Command(filter).GetResultLog());
    Go(filter, {Number("n", 1)});
    EXPECT_EQ("C1C2", Command(filter).GetResultLog());
}

TEST_F(CommandLog, WithoutAFilter_TheTextsAreStillThere) {
    const OrvCommandSetFileConfigure command = Command(nullptr);
    EXPECT_EQ("Evidence: /x/e.jpg - Reference: /x/r.jpg - ConfigureFilter:  - ConfigurationId: -1 - Parameters: ",
              command.GetCommandLog());
    EXPECT_EQ("", command.GetResultLog());
}

TEST_F(CommandLog, OtherCommands_LogNothing) {
    EXPECT_FALSE(OrvCommandDeleteCache(Evidence).LogEnabled());
    EXPECT_FALSE(OrvCommandGenerateReport().LogEnabled());
    EXPECT_EQ("", OrvCommandNewProject().GetCommandLog());
}

TEST_F(Commands, DeleteCache_RemovesTheSlotsFolderAndEveryStatus) {
    RecordingFilter* filter = AddActive();
    Load(Jpeg("a.jpg"));
    Load(Jpeg("b.jpg", 32, 32, 2), Reference);
    Go(filter);
    const wxString evidence = iface->GetOutputDir(Evidence);
    ASSERT_TRUE(wxDirExists(evidence));
    ASSERT_EQ(OrvFilterConfiguration::Ok, filter->GetConfigurations()[0].GetFilterStatus());
    recorder.events.clear();
    Run([&] { iface->DeleteCache(Evidence); });
    EXPECT_FALSE(wxDirExists(evidence));
    EXPECT_TRUE(wxDirExists(iface->GetOutputDir(Reference)));
    EXPECT_TRUE(wxFileExists(context->GetFilename(Evidence)));
    EXPECT_EQ(OrvFilterConfiguration::NotCalculated, filter->GetConfigurations()[0].GetFilterStatus());
    ASSERT_EQ(Ids({5}), recorder.Ids());
    EXPECT_EQ("", recorder.events[0].GetString());
    EXPECT_EQ(-1, recorder.events[0].GetActionId());
}

TEST_F(Commands, DeleteCacheOfAnEmptyOrUnknownSlot_OnlyPosts) {
    const wxString kept = support::WriteBytes(dir / "kept.txt", "k");
    Run([&] { iface->DeleteCache(Evidence); });
    Run([&] { iface->DeleteCache(static_cast<OrvFileId>(5)); });
    EXPECT_EQ(Ids({5, 5}), recorder.Ids());
    EXPECT_TRUE(wxFileExists(kept));
}

TEST_F(Commands, ReprocessCurrent_PostsItsEventAndThatOfTheRun) {
    RecordingFilter* filter = AddActive();
    filter->cached = true;
    Load(Jpeg("a.jpg"));
    Go(filter);
    recorder.events.clear();
    filter->Take();
    Run([&] { iface->ReprocessCurrent(Evidence); });
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ(Ids({6, 1}), recorder.Ids());
}

TEST_F(Commands, ReprocessCurrentWithoutAFilter_OnlyPosts) {
    Run([&] { iface->ReprocessCurrent(Evidence); });
    EXPECT_EQ(Ids({6}), recorder.Ids());
}

TEST_F(Commands, DumpOfAFileWithoutEmbeddedImages_PostsAnEmptyText) {
    Run([&] { iface->DumpEmbeddedJpgs(Jpeg("a.jpg")); });
    ASSERT_EQ(Ids({8}), recorder.Ids());
    EXPECT_EQ("", recorder.events[0].GetString());
}

TEST_F(Commands, Dump_PostsAFolderAwayFromTheFile) {
    const std::string thumbnail = support::EncodeJpeg(16, 16);
    const std::string photo = support::WithExif(support::EncodeJpeg(64, 48), "Maker", "Model", thumbnail);
    const wxString path = support::WriteBytes(dir / "in/a.jpg", photo);
    Run([&] { iface->DumpEmbeddedJpgs(path); });
    ASSERT_EQ(Ids({8}), recorder.Ids());
    const wxString folder = recorder.events[0].GetString();
    EXPECT_NE(dir / "in", folder);
    const VecString files = GetAllFiles(folder, {"jpg"}, false);
    ASSERT_EQ(1U, files.size());
    EXPECT_EQ(thumbnail, support::ReadBytes(files[0]));
    EXPECT_EQ(photo, support::ReadBytes(path));
}

TEST_F(Commands, DumpFromWhatIsNoPdf_PostsAnEmptyText) {
    VecParameter parameters;
    Run([&] { iface->DumpImagesFromPdf(Jpeg("a.jpg"), parameters); });
    ASSERT_EQ(Ids({8}), recorder.Ids());
    EXPECT_EQ("", recorder.events[0].GetString());
}

TEST_F(CommandProject, Bookmark_TakesFilterFilesAndParameters) {
    RecordingFilter* filter = AddActive(3);
    const wxString first = Jpeg("a.jpg");
    const wxString second = Jpeg("b.jpg");
    Load(first);
    Load(second, Reference);
    Run([&] { iface->AddBookmark(); });
    const std::vector<OrvBookmark> bookmarks = iface->GetProject().GetBookmarks();
    ASSERT_EQ(1U, bookmarks.size());
    EXPECT_EQ("Alpha - 3 - a - b", bookmarks[0].name);
    EXPECT_EQ(first, bookmarks[0].evidence);
    EXPECT_EQ(second, bookmarks[0].reference);
    EXPECT_EQ(filter, bookmarks[0].filter);
    EXPECT_EQ(3, bookmarks[0].parameters[0].GetValue<int>());
    EXPECT_EQ(OrvBookmarkUndefined, bookmarks[0].status);
    EXPECT_EQ(9, recorder.Ids().back());
}

TEST_F(CommandProject, BookmarkTitle_HasNoEmptyParts) {
    context->SetActiveFilter(Add(new RecordingFilter("Plain")));
    Load(Jpeg("a.jpg"));
    Run([&] { iface->AddBookmark(); });
    ASSERT_EQ(1U, iface->GetProject().GetBookmarks().size());
    EXPECT_EQ("Plain - a", iface->GetProject().GetBookmarks()[0].name);
}

TEST_F(CommandProject, BookmarkWithoutFilterOrEvidence_OnlyPosts) {
    Run([&] { iface->AddBookmark(); });
    AddActive();
    Load(Jpeg("b.jpg"), Reference);
    Run([&] { iface->AddBookmark(); });
    EXPECT_TRUE(iface->GetProject().GetBookmarks().empty());
    EXPECT_EQ(Ids({9, 9}), recorder.Ids());
}

TEST_F(CommandProject, SaveNewAndLoad_BringTheListBack) {
    RecordingFilter* filter = AddActive();
    const wxString path = dir / "case.json";
    Run([&] {
        iface->SetBookmarks({OrvBookmark("one", dir / "a.jpg", "", filter, filter->Input(), "", OrvBookmarkOk)});
    });
    Run([&] { iface->SaveProject(path); });
    Run([&] { iface->NewProject(); });
    EXPECT_TRUE(iface->GetProject().GetBookmarks().empty());
    Run([&] { iface->LoadProject(path); });
    ASSERT_EQ(1U, iface->GetProject().GetBookmarks().size());
    EXPECT_EQ("one", iface->GetProject().GetBookmarks()[0].name);
    EXPECT_EQ(Ids({10, 13, 11, 12}), recorder.Ids());
}

TEST_F(CommandProject, ReportsPath_IsTheEventsText) {
    Run([&] { iface->GenerateReport(); });
    Run([&] { iface->SetBookmarks({OrvBookmark("one", dir / "a.jpg", "", AddActive(), {}, "", OrvBookmarkOk)}); });
    Run([&] { iface->GenerateReport(); });
    ASSERT_EQ(Ids({14, 10, 14}), recorder.Ids());
    EXPECT_EQ("", recorder.events[0].GetString());
    EXPECT_EQ(dir / "a.html", recorder.events[2].GetString());
}
