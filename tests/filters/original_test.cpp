// SPDX-License-Identifier: Apache-2.0
#include "filters/original.h"

#include "filters/panelfactory.h"
#include "filters/registry.h"
#include "tests/support/engine.h"
#include "tolbase/exception.h"
#include "tolimage/imageio.h"

namespace {

class Original : public support::Engine {
protected:
    Original() {
        filter = new OrvFilterOriginal;
        context->AddFilterType(filter, OrvFilterNumberOriginal);
        filter->CreateAnalysisPanel(nullptr, filter);
    }
    OrvFilterOriginal* filter = nullptr;
};

class CountingPanel : public OrvFilterGuiBase {
public:
    void Init() override { ++inits; }
    wxWindow* GetWindow() override { return nullptr; }
    int inits = 0;
};

}  // namespace

TEST_F(Original, New_IsAnOverviewWithOneConfiguration) {
    EXPECT_EQ("Original", filter->GetName());
    EXPECT_EQ(OrvFilter::FilterTypeOverview, filter->GetAnalysisType());
    EXPECT_TRUE(filter->GetParametersInput().empty());
    EXPECT_TRUE(filter->HasSingleConfiguration());
    EXPECT_FALSE(filter->IsOnlyForJpeg());
    EXPECT_EQ(1U, filter->GetConfigurationsSize());
}

TEST_F(Original, LoadedFile_IsShownAsItIs) {
    context->SetActiveFilter(filter);
    Run([&] { iface->SetFile(Jpeg("a.jpg", 64, 48), Evidence); });
    EXPECT_EQ(std::vector<int>({0, 1}), recorder.Ids());
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    EXPECT_EQ(64, filter->GetInputImage(Evidence).Width());
    EXPECT_TRUE(filter->GetParametersOutput().empty());
}

TEST_F(Original, Saving_WritesTheEvidenceOrTheViewHandedOver) {
    Load(Jpeg("a.jpg", 64, 48));
    context->SetActiveFilter(filter);
    EXPECT_EQ("Pictures|*.jpg;*.png", iface->GetFilterFileSelectorString());
    iface->SaveFilterResult(dir / "out.png");
    EXPECT_EQ(64, Image(tcvLoadImage(dir / "out.png", true, false)).Width());
    iface->SetImageToSave(context->GetImage(Evidence).Resize(cvSize(10, 8), 1, false));
    iface->SaveFilterResult(dir / "view.png");
    EXPECT_EQ(10, Image(tcvLoadImage(dir / "view.png", true, false)).Width());
}

TEST_F(Original, ViewOfAnEarlierRun_IsNotSaved) {
    context->SetActiveFilter(filter);
    Run([&] { iface->SetFile(Jpeg("a.jpg", 64, 48), Evidence); });
    iface->SetImageToSave(context->GetImage(Evidence).Resize(cvSize(10, 8), 1, false));
    Run([&] { iface->SetFile(Jpeg("b.jpg", 32, 24), Evidence); });
    iface->SaveFilterResult(dir / "out.png");
    EXPECT_EQ(32, Image(tcvLoadImage(dir / "out.png", true, false)).Width());
}

TEST_F(Original, NothingToSaveOrNowhereToGo_Throws) {
    context->SetActiveFilter(filter);
    EXPECT_THROW(iface->SaveFilterResult(dir / "out.png"), TolException);
    Load(Jpeg("a.jpg"));
    EXPECT_THROW(iface->SaveFilterResult(dir / "missing/out.png"), TolException);
}

TEST_F(Original, ExportName_IsThatOfAPicture) {
    Load(Jpeg("a.jpg"));
    EXPECT_EQ("a.jpg-Original." + context->GetCacheFormat(), filter->GetExportFilename(true));
}

TEST(PanelFactory, WithoutAFactory_GivesAPanelWithoutAWindow) {
    OrvFilterGuiBase* panel = OrvMakePanel(nullptr, nullptr);
    ASSERT_NE(nullptr, panel);
    EXPECT_EQ(nullptr, panel->GetWindow());
}

TEST(PanelFactory, InstalledFactory_MakesThePanel) {
    CountingPanel panel;
    OrvSetPanelFactory([&panel](wxWindow*, OrvFilter*) { return &panel; });
    OrvFilterOriginal filter;
    EXPECT_EQ(&panel, filter.CreateAnalysisPanel(nullptr, &filter));
    EXPECT_EQ(1, panel.inits);
    OrvSetPanelFactory(nullptr);
    EXPECT_NE(&panel, OrvMakePanel(nullptr, nullptr));
}

TEST(Registry, First_IsOriginal) {
    const std::vector<OrvNumberedFilter> filters = MakeFilters();
    ASSERT_FALSE(filters.empty());
    EXPECT_EQ(0, filters[0].number);
    EXPECT_EQ("Original", filters[0].filter->GetName());
    for (const OrvNumberedFilter& entry : filters) delete entry.filter;
}
