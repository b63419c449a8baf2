// SPDX-License-Identifier: Apache-2.0
#include "orvcore/interface.h"

#include <wx/filename.h>

#include "tests/orvcore/recordingfilter.h"
#include "tolbase/progress.h"

using support::Number;
using support::RecordingFilter;

namespace {

class Interface : public support::FilterEngine {
protected:
    RecordingFilter* AddModes() {
        return Add(new RecordingFilter("Modes", {CreateParameterOption("Mode", wxString(), {"A", "B"}, 0)}));
    }
};

}  // namespace

TEST(InterfacePointer, OutsideItsLife_IsNull) {
    const support::TempDir dir;
    SetAppDocumentsPath(dir.Path());
    EXPECT_EQ(nullptr, GetInterface());
    {
        const OrvInterface object(new support::TestContext);
        EXPECT_EQ(&object, GetInterface());
    }
    EXPECT_EQ(nullptr, GetInterface());
}

TEST(InterfacePointer, Destruction_DeletesTheDerivedContext) {
    class Derived : public support::TestContext {
    public:
        explicit Derived(bool& gone) : m_gone(gone) {}
        ~Derived() override { m_gone = true; }

    private:
        bool& m_gone;
    };
    const support::TempDir dir;
    SetAppDocumentsPath(dir.Path());
    bool gone = false;
    delete new OrvInterface(new Derived(gone));
    EXPECT_TRUE(gone);
}

TEST_F(Interface, OriginalName_HidesTheActualPath) {
    const wxString path = Jpeg("temporary.jpg");
    Load(path, Evidence, Jpeg("users.jpg"));
    EXPECT_EQ(context->GetOriginalFilename(Evidence), iface->GetFilename(Evidence));
    EXPECT_NE(path, iface->GetFilename(Evidence));
    EXPECT_EQ(path, context->GetFilename(Evidence));
}

TEST_F(Interface, LoadedFile_IsReadFromTheContext) {
    const wxString path = Jpeg("a.jpg", 64, 48);
    Load(path);
    EXPECT_TRUE(iface->HasFile(Evidence));
    EXPECT_FALSE(iface->HasFile(Reference));
    EXPECT_TRUE(iface->IsJpeg(Evidence));
    EXPECT_EQ(path, iface->GetFilename(Evidence));
    EXPECT_EQ(VecString({path}), iface->GetFileList(Evidence));
    EXPECT_EQ(0, iface->GetFileId(Evidence));
    EXPECT_EQ(64, iface->GetImageDisplayed(Evidence).Width());
    EXPECT_EQ(48, iface->GetImageDetails(Evidence).EncodedHeight);
    EXPECT_TRUE(iface->GetJpegInfo(Evidence).IsValid);
    EXPECT_EQ(wxPathOnly(context->GetOutputBasePath(Evidence)), iface->GetOutputDir(Evidence));
    EXPECT_EQ(context->GetFileInfo(Evidence), iface->GetFileInfo(Evidence));
}

TEST_F(Interface, EmptyEngine_ReadsAsEmpty) {
    EXPECT_EQ("", iface->GetFilename(Evidence));
    EXPECT_EQ("", iface->GetOutputDir(Evidence));
    EXPECT_EQ("", iface->GetFilterFileSelectorString());
    EXPECT_EQ(-1, iface->GetFileId(Reference));
    EXPECT_EQ(nullptr, iface->GetActiveFilter());
    EXPECT_TRUE(iface->GetFilters().empty());
    EXPECT_FALSE(iface->GetImageDisplayed(Evidence).IsOk());
    EXPECT_EQ("Pictures|*.jpg;*.jpeg;*.png;*.bmp", iface->GetStringImageFormatsRead());
    EXPECT_EQ("Pictures|*.jpg;*.png", iface->GetStringImageFormatsWrite());
}

TEST_F(Interface, Project_IsACopy) {
    OrvProject copy = iface->GetProject();
    copy.AddBookmark(OrvBookmark());
    EXPECT_TRUE(iface->GetProject().GetBookmarks().empty());
}

TEST_F(Interface, ListOperations_AreDoneAtOnce) {
    RecordingFilter* filter = AddModes();
    iface->AddFilterConfiguration(filter, filter->GetConfigurationParams(1), 0);
    ASSERT_EQ(3U, filter->GetConfigurationsSize());
    EXPECT_EQ(1, filter->GetConfigurationParams(0)[0].GetValue<int>());
    iface->EnableConfiguration(filter, 1, false);
    EXPECT_FALSE(filter->IsConfigurationEnabled(1));
    iface->DeleteFilterConfiguration(filter, 0);
    EXPECT_EQ(2U, filter->GetConfigurationsSize());
    iface->DeleteAllFilterConfigurations(filter);
    EXPECT_EQ(0U, filter->GetConfigurationsSize());
    iface->ResetDefaultFilterConfigurations(filter);
    EXPECT_EQ(2U, filter->GetConfigurationsSize());
    EXPECT_TRUE(filter->IsConfigurationEnabled(1));
    EXPECT_EQ(0, progress.posted);
}

TEST_F(Interface, Saving_GoesToTheActiveFilter) {
    RecordingFilter* filter = AddModes();
    context->SetActiveFilter(filter);
    iface->SetImageToSave(Image());
    iface->SaveFilterResult("/x/result.txt");
    EXPECT_EQ("/x/result.txt", filter->saved);
    EXPECT_EQ(0, progress.posted);
}

TEST_F(Interface, ConfigureWithoutClearing_StillDiscardsAWaitingCommand) {
    RecordingFilter* filter = AddModes();
    std::atomic<bool> started{false};
    std::atomic<bool> go{false};
    std::atomic<bool> second{false};
    OrvWorkerThread* worker = context->GetOrvThread();
    const std::uint64_t done = worker->GetCommandsDone();
    context->PostCommand(new support::WorkCommand([&] {
        started = true;
        support::Eventually([&] { return go.load(); });
    }));
    ASSERT_TRUE(support::Eventually([&] { return started.load(); }));
    context->PostCommand(new support::WorkCommand([&] { second = true; }));
    iface->Configure(filter, -1, VecParameter(), VecParameter(), false);
    go = true;
    for (int i = 0; i < 2; ++i) iface->PostResponse();
    ASSERT_TRUE(worker->WaitForCommandsDone(done + 2, 60000));
    EXPECT_FALSE(second);
    EXPECT_EQ(1, filter->Count("PreApply"));
}

TEST_F(Interface, SetFileConfigureWithAnEmptyPath_EmptiesTheSlot) {
    RecordingFilter* filter = AddModes();
    Load(Jpeg("a.jpg"));
    Load(Jpeg("b.jpg"), Reference);
    const wxString path = Jpeg("c.jpg");
    Run([&] { iface->SetFileConfigure(path, "", filter, VecParameter(), VecParameter(), true); });
    EXPECT_EQ(path, context->GetFilename(Evidence));
    EXPECT_FALSE(context->HasFile(Reference));
}

TEST_F(Interface, Abort_RaisesBothLevels) {
    iface->AbortProcessing();
    EXPECT_TRUE(tcvHasAborted());
    EXPECT_TRUE(tcvHasAborted2());
}

TEST_F(Interface, Exit_SendsItsEvent) {
    Run([&] { iface->Exit(); });
    EXPECT_EQ(std::vector<int>({17}), recorder.Ids());
}

TEST_F(Interface, Options_AreForwarded) {
    AddModes();
    StartOptions();
    EXPECT_EQ(context->GetProgramOptions().size(), iface->GetProgramOptions().size());
    const wxString path = dir / "other/settings.ovs";
    iface->SaveProgramOptions(path);
    EXPECT_TRUE(wxFileExists(path));
    iface->SetProgramOptions(iface->GetProgramOptions());
    iface->LoadProgramOptions(path);
    EXPECT_EQ(context->GetProgramOptionsPath(), iface->GetProgramOptionsPath());
    EXPECT_EQ(context->GetConfigDir(), iface->GetConfigDir());
}
