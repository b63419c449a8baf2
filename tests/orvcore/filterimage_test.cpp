// SPDX-License-Identifier: Apache-2.0
#include <wx/filefn.h>

#include "tests/orvcore/resultfilters.h"

using support::FirstRow;
using support::ImageFilter;
using support::PixelAt;
using support::Row;
using support::Solid;

namespace {

class FilterImage : public support::ResultEngine {
protected:
    ImageFilter* Filter(ImageFilter::Kind kind = ImageFilter::Plain) { return Add(new ImageFilter("Filter", kind)); }
    bool LoadSlot(ImageFilter* filter) {
        bool result = false;
        OnWorker([&] { filter->Load(Evidence, result); });
        return result;
    }
};

bool SharesPixels(Image a, Image b) {
    return a.Data() == b.Data();
}

}  // namespace

TEST_F(FilterImage, ApplyPostProcessing_SharesTheOutput) {
    ImageFilter filter("Filter");
    filter.GetOutputImage(Reference) = Solid(3, 2, {7});
    filter.ApplyPostProcessing(Reference);
    EXPECT_TRUE(SharesPixels(filter.GetOutputImage(Reference), filter.GetOutputImagePostProcessing(Reference)));
    EXPECT_FALSE(filter.GetOutputImagePostProcessing(Evidence).IsOk());
}

TEST_F(FilterImage, Reset_EmptiesAllFourPicturesOfTheSlot) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(8, 6, {1, 2, 3})));
    Load(Png("b.png", Solid(8, 6, {1, 2, 3})), Reference);
    filter->onApply = [filter](OrvFileId id) { filter->GetOutputImage(id) = Solid(8, 6, {9}); };
    Go(filter);
    ASSERT_TRUE(filter->GetInputImageDisplayedCopy(Evidence).IsOk());
    ASSERT_TRUE(filter->GetOutputImageDisplayedCopy(Evidence).IsOk());
    filter->ResetSlot(Evidence);
    EXPECT_FALSE(filter->GetInputImageDisplayedCopy(Evidence).IsOk());
    EXPECT_FALSE(filter->GetOutputImageDisplayedCopy(Evidence).IsOk());
    EXPECT_FALSE(filter->GetOutputImage(Evidence).IsOk());
    EXPECT_FALSE(filter->GetOutputImagePostProcessing(Evidence).IsOk());
    EXPECT_TRUE(filter->GetOutputImageDisplayedCopy(Reference).IsOk());
}

TEST_F(FilterImage, ResetInputAndResetOutput_DoTheirHalf) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(8, 6, {1, 2, 3})));
    filter->onApply = [filter](OrvFileId id) { filter->GetOutputImage(id) = Solid(8, 6, {9}); };
    Go(filter);
    filter->ResetInput(Evidence);
    EXPECT_FALSE(filter->GetInputImageDisplayedCopy(Evidence).IsOk());
    EXPECT_TRUE(filter->GetOutputImageDisplayedCopy(Evidence).IsOk());
    filter->ResetOutput(Evidence);
    EXPECT_FALSE(filter->GetOutputImageDisplayedCopy(Evidence).IsOk());
    EXPECT_FALSE(filter->GetOutputImage(Evidence).IsOk());
}

TEST_F(FilterImage, DisplayedPictures_HaveTheSizeOfTheEvidencesOutput) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(40, 30, {1, 2, 3})));
    Load(Png("b.png", Solid(20, 50, {4, 5, 6})), Reference);
    filter->onApply = [filter](OrvFileId id) {
        filter->GetOutputImage(id) = id == Evidence ? Solid(10, 8, {9}) : Solid(33, 44, {8});
    };
    Go(filter);
    for (OrvFileId id : {Evidence, Reference}) {
        EXPECT_EQ(10, filter->GetInputImageDisplayedCopy(id).Width());
        EXPECT_EQ(8, filter->GetInputImageDisplayedCopy(id).Height());
        EXPECT_EQ(10, filter->GetOutputImageDisplayedCopy(id).Width());
        EXPECT_EQ(8, filter->GetOutputImageDisplayedCopy(id).Height());
    }
    EXPECT_EQ((std::vector<int>{4, 5, 6}), PixelAt(filter->GetInputImageDisplayedCopy(Reference), 3, 3));
    EXPECT_EQ((std::vector<int>{8}), PixelAt(filter->GetOutputImageDisplayedCopy(Reference), 3, 3));
    EXPECT_EQ(33, filter->GetOutputImage(Reference).Width());
}

TEST_F(FilterImage, ReferencesOutputAlone_GivesTheSize) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(40, 30, {1, 2, 3})));
    Load(Png("b.png", Solid(20, 50, {4, 5, 6})), Reference);
    filter->onApply = [filter](OrvFileId id) {
        if (id == Reference) filter->GetOutputImage(id) = Solid(33, 44, {8});
    };
    Go(filter);
    EXPECT_EQ(33, filter->GetInputImageDisplayedCopy(Evidence).Width());
    EXPECT_EQ(44, filter->GetInputImageDisplayedCopy(Reference).Height());
    EXPECT_FALSE(filter->GetOutputImageDisplayedCopy(Evidence).IsOk());
}

TEST_F(FilterImage, NoOutput_ShowsTheEvidenceInItsOwnSizeAndNoReference) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(40, 30, {1, 2, 3})));
    Load(Png("b.png", Solid(20, 50, {4, 5, 6})), Reference);
    Go(filter);
    EXPECT_EQ(40, filter->GetInputImageDisplayedCopy(Evidence).Width());
    EXPECT_EQ(30, filter->GetInputImageDisplayedCopy(Evidence).Height());
    EXPECT_FALSE(filter->GetInputImageDisplayedCopy(Reference).IsOk());
    EXPECT_FALSE(filter->GetOutputImageDisplayedCopy(Evidence).IsOk());
}

TEST_F(FilterImage, DisplayedCopy_IsDeep) {
    ImageFilter filter("Filter");
    *filter.GetOutputImageDisplayed(Evidence) = Solid(2, 2, {5});
    Image copy = filter.GetOutputImageDisplayedCopy(Evidence);
    EXPECT_FALSE(SharesPixels(copy, *filter.GetOutputImageDisplayed(Evidence)));
    EXPECT_EQ((std::vector<int>{5}), PixelAt(copy, 1, 1));
}

TEST_F(FilterImage, CopiedFilter_HasThePicturesAndItsOwnLocks) {
    ImageFilter filter("Filter");
    filter.GetOutputImage(Evidence) = Solid(2, 2, {5});
    *filter.GetInputImageDisplayed(Reference) = Solid(3, 3, {6});
    ImageFilter copy(filter);
    ImageFilter assigned("Other");
    assigned = filter;
    auto const locked = filter.GetInputImageDisplayed(Reference);
    for (ImageFilter* other : {&copy, &assigned}) {
        EXPECT_EQ(2, other->GetOutputImage(Evidence).Width());
        EXPECT_EQ(3, other->GetInputImageDisplayedCopy(Reference).Width());
        EXPECT_EQ(filter.GetFilterId(), other->GetFilterId());
    }
}

TEST_F(FilterImage, UpdateOutputData_ReportsTheMainThread) {
    static std::string condition;
    ImageFilter filter("Filter");
    auto const old = wxSetAssertHandler([](wxString const&, int, wxString const&, wxString const& text,
                                           wxString const&) { condition = text.utf8_str(); });
    filter.UpdateOutputData();
    wxSetAssertHandler(old);
    EXPECT_EQ("!wxThread::IsMain()", condition);
}

// ---- cache ----

TEST_F(FilterImage, Cache_IsWrittenInTheSetFormatAndReloaded) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(16, 8, {1, 2, 3})));
    filter->onApply = [filter](OrvFileId id) { filter->GetOutputImage(id) = Solid(16, 8, {9, 8, 7}); };
    Go(filter);
    EXPECT_EQ(".png", filter->GetCacheExtension());
    EXPECT_TRUE(wxFileExists(CacheStem(Evidence, "Filter.png")));
    EXPECT_EQ("Ok", ReadFile(CacheStem(Evidence, "Filter.status")));
    filter->GetOutputImage(Evidence) = Image();
    EXPECT_TRUE(LoadSlot(filter));
    EXPECT_EQ((std::vector<int>{9, 8, 7}), PixelAt(filter->GetOutputImage(Evidence), 15, 7));
}

TEST_F(FilterImage, Cache_OfAnotherFormatStaysValid) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(16, 8, {1, 2, 3})));
    filter->onApply = [filter](OrvFileId id) { filter->GetOutputImage(id) = Solid(16, 8, {9}); };
    CreateDirIfNotExists(wxPathOnly(CacheStem(Evidence, "")));
    ASSERT_TRUE(tcvSaveImage(CacheStem(Evidence, "Filter.jpg"), Solid(16, 8, {128}), 90));
    ASSERT_TRUE(WriteFile(CacheStem(Evidence, "Filter.status"), "Warning"));
    Go(filter);
    EXPECT_EQ(0, filter->applied);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    EXPECT_EQ(OrvFilterConfiguration::Warning, filter->GetStatus(Evidence));
    EXPECT_EQ(16, filter->GetOutputImage(Evidence).Width());
}

TEST_F(FilterImage, LoadCache_PrefersPng) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(16, 8, {1, 2, 3})));
    EXPECT_FALSE(LoadSlot(filter));
    CreateDirIfNotExists(wxPathOnly(CacheStem(Evidence, "")));
    tcvSaveImage(CacheStem(Evidence, "Filter.jpg"), Solid(5, 5, {128}), 90);
    EXPECT_TRUE(LoadSlot(filter));
    EXPECT_EQ(5, filter->GetOutputImage(Evidence).Width());
    tcvSaveImage(CacheStem(Evidence, "Filter.png"), Solid(6, 6, {128}), 90);
    EXPECT_TRUE(LoadSlot(filter));
    EXPECT_EQ(6, filter->GetOutputImage(Evidence).Width());
}

TEST_F(FilterImage, DamagedCache_IsCalculatedAnew) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(16, 8, {1, 2, 3})));
    filter->onApply = [filter](OrvFileId id) { filter->GetOutputImage(id) = Solid(16, 8, {9}); };
    support::WriteBytes(CacheStem(Evidence, "Filter.png"), "no picture at all");
    ASSERT_TRUE(WriteFile(CacheStem(Evidence, "Filter.status"), "Ok"));
    Go(filter);
    EXPECT_EQ(1, filter->applied);
    EXPECT_TRUE(LoadSlot(filter));
}

TEST_F(FilterImage, SaveCache_LeavesNoOlderResultOfTheOtherFormat) {
    ImageFilter* filter = Filter();
    Load(Png("a.png", Solid(16, 8, {1, 2, 3})));
    CreateDirIfNotExists(wxPathOnly(CacheStem(Evidence, "")));
    tcvSaveImage(CacheStem(Evidence, "Filter.jpg"), Solid(5, 5, {128}), 90);
    filter->GetOutputImage(Evidence) = Solid(16, 8, {9});
    OnWorker([&] { filter->Save(Evidence); });
    EXPECT_TRUE(wxFileExists(CacheStem(Evidence, "Filter.png")));
    EXPECT_FALSE(wxFileExists(CacheStem(Evidence, "Filter.jpg")));
    filter->GetOutputImage(Evidence) = Image();
    OnWorker([&] { filter->Save(Evidence); });
    EXPECT_FALSE(wxFileExists(CacheStem(Evidence, "Filter.png")));
}

// ---- parameters of post-processing ----

TEST_F(FilterImage, InitPostProcessingLevels_GivesThreeSliders) {
    VecParameter const list = Filter(ImageFilter::Levels)->GetParametersPostProcessing();
    ASSERT_EQ(3U, list.size());
    char const* const names[] = {"Highlights", "Midtones", "Shadows"};
    int const values[] = {255, 127, 0};
    for (size_t i = 0; i < 3; ++i) {
        EXPECT_EQ(names[i], list[i].Name());
        EXPECT_EQ(values[i], list[i].GetValue<int>());
        EXPECT_EQ(0.0, list[i].GetMinimum());
        EXPECT_EQ(255.0, list[i].GetMaximum());
        EXPECT_TRUE(list[i].GetDescription().empty());
    }
}

TEST_F(FilterImage, InitPostProcessingMap_GivesTwoOptions) {
    VecParameter const list = Filter(ImageFilter::Map)->GetParametersPostProcessing();
    ASSERT_EQ(2U, list.size());
    EXPECT_EQ("Map Type", list[0].Name());
    EXPECT_EQ((VecString{"Gray", "Color", "Color Overlay", "Color Overlay Inverted"}), list[0].Strings());
    EXPECT_EQ(1, list[0].GetValue<int>());
    EXPECT_EQ("Show Saturation", list[1].Name());
    EXPECT_EQ((VecString{"Off", "On"}), list[1].Strings());
    EXPECT_EQ(0, list[1].GetValue<int>());
}

TEST_F(FilterImage, InitPostProcessingScale_GivesOneNumber) {
    VecParameter const list = Filter(ImageFilter::Scale)->GetParametersPostProcessing();
    ASSERT_EQ(1U, list.size());
    EXPECT_EQ("Scale (0 = auto)", list[0].Name());
    EXPECT_EQ(0, list[0].GetValue<int>());
    EXPECT_EQ(0.0, list[0].GetMinimum());
    EXPECT_EQ(200.0, list[0].GetMaximum());
}
