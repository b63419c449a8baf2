// SPDX-License-Identifier: Apache-2.0
#include "orvcore/filter.h"

#include <mutex>

#include "orvcore/datalocker.h"
#include "tests/orvcore/recordingfilter.h"
#include "tolbase/exception.h"

using support::Number;
using support::RecordingFilter;

TEST(Filter, New_HasTheStartValues) {
    const RecordingFilter filter("Name");
    EXPECT_EQ("Name", filter.GetName());
    EXPECT_EQ(OrvFilter::FilterTypeExperimental, filter.GetAnalysisType());
    EXPECT_FALSE(filter.IsOnlyForJpeg());
    EXPECT_FALSE(filter.IsSupportedRoi());
    EXPECT_TRUE(filter.IsSupportedOutput());
    EXPECT_FALSE(filter.HasSingleConfiguration());
    EXPECT_EQ(0, filter.GetActiveConfiguration());
    EXPECT_EQ("Not Calculated", filter.GetStatusString(Evidence));
    EXPECT_FALSE(filter.IsStatusAvailable(Reference));
    EXPECT_EQ(".txt", filter.GetCacheExtension());
}

TEST(Filter, Ids_CountFromOne) {
    const RecordingFilter first("A");
    const RecordingFilter second("A");
    EXPECT_EQ(1U, first.GetFilterId());
    EXPECT_EQ(2U, second.GetFilterId());
}

TEST(Filter, Copy_TakesTheIdAndItsOwnList) {
    RecordingFilter first("A", {Number("n", 1)});
    first.InitFilter();
    first.SetErrorMessage("message");
    RecordingFilter copy(first);
    copy.DeleteAllConfigurations();
    EXPECT_EQ(first.GetFilterId(), copy.GetFilterId());
    EXPECT_EQ("message", copy.GetErrorMessage());
    EXPECT_EQ(1U, first.GetConfigurationsSize());
}

TEST(Filter, TypeTexts_FollowTheNumbers) {
    const char* const expected[] = {"Overview",        "Visual Analysis", "File Analysis", "Camera Identification",
                                    "Global Analysis", "Local Analysis",  "Experimental"};
    RecordingFilter filter("A");
    for (int i = 0; i < 7; ++i) {
        filter.SetType(static_cast<OrvFilter::FilterType>(i));
        EXPECT_EQ(expected[i], filter.GetAnalysisTypeString());
        EXPECT_EQ(expected[i], OrvFilter::sm_typeStrings[i]);
    }
    filter.SetType(static_cast<OrvFilter::FilterType>(7));
    EXPECT_EQ("Experimental", filter.GetAnalysisTypeString());
}

TEST(Filter, StatusAvailable_MeansAResult) {
    RecordingFilter filter("A");
    filter.SetStatus(Evidence, OrvFilterConfiguration::Unsupported);
    EXPECT_FALSE(filter.IsStatusAvailable(Evidence));
    filter.SetStatus(Evidence, OrvFilterConfiguration::Warning);
    EXPECT_TRUE(filter.IsStatusAvailable(Evidence));
    filter.SetStatus(Evidence, OrvFilterConfiguration::Ok);
    EXPECT_TRUE(filter.IsStatusAvailable(Evidence));
}

TEST(Filter, Panel_IsInitialisedOnceAndKept) {
    RecordingFilter filter("A");
    EXPECT_EQ(nullptr, filter.GetAnalsyisFilterGui());
    EXPECT_EQ(&filter.panel, filter.CreateAnalysisPanel(nullptr, &filter));
    EXPECT_EQ(&filter.panel, filter.GetAnalsyisFilterGui());
    EXPECT_EQ(1, filter.panel.inits);
}

TEST(Filter, Reset_RestoresDefaultsAndBothSlots) {
    RecordingFilter filter("A", {Number("n", 1)});
    filter.Output().push_back(Number("o", 2));
    filter.Input()[0].Set(boost::any(5));
    filter.Output()[0].Set(boost::any(6));
    filter.Reset();
    EXPECT_EQ(1, filter.Input()[0].GetValue<int>());
    EXPECT_EQ(2, filter.Output()[0].GetValue<int>());
    EXPECT_EQ("Reset Reset:E Reset:R", filter.Take());
}

TEST(Filter, CleanFileName_ReplacesNineCharacters) {
    EXPECT_EQ("a_________b", CleanFileName("a\\/*?\"<>|:b"));
    EXPECT_EQ("50%-'x' [1].jpg", CleanFileName("50%-'x' [1].jpg"));
    EXPECT_EQ("", CleanFileName(""));
}

TEST(DataLocker, WhileItLives_TheMutexIsHeld) {
    wxMutex mutex;
    int data = 3;
    {
        const OrvDataLocker<int> locker(&data, mutex);
        *locker = 4;
        wxMutexError other = wxMUTEX_NO_ERROR;
        std::thread([&] { other = mutex.TryLock(); }).join();
        EXPECT_EQ(wxMUTEX_BUSY, other);
        EXPECT_EQ(&data, locker.Get());
    }
    EXPECT_EQ(4, data);
    EXPECT_EQ(wxMUTEX_NO_ERROR, mutex.TryLock());
    mutex.Unlock();
}

namespace {

class FilterAction : public support::FilterEngine {};

}  // namespace

TEST_F(FilterAction, Success_SendsItsResultAndEmptiesTheVectors) {
    RecordingFilter* filter = Add(new RecordingFilter("A"));
    filter->ActionInput().push_back(Number("in", 1));
    filter->onAction = [&](const VecParameter& given) { filter->ActionOutput().push_back(given[0]); };
    VecParameter parameters({Number("x", 77)});
    Run([&] { iface->CallAction(filter, 12, parameters); });
    ASSERT_EQ(std::vector<int>({OrvCommandIdActionDone}), recorder.Ids());
    const OrvCommandEvent& event = recorder.events[0];
    EXPECT_EQ(12, filter->actionId);
    EXPECT_EQ(12, event.GetInt());
    EXPECT_EQ(12, event.GetActionId());
    EXPECT_EQ(0, event.GetExtraLong());
    EXPECT_EQ(0, event.GetError());
    EXPECT_EQ("", event.GetString());
    EXPECT_EQ(77, event.GetParams()[0].GetValue<int>());
    EXPECT_TRUE(filter->ActionInput().empty());
    EXPECT_TRUE(filter->ActionOutput().empty());
}

TEST_F(FilterAction, TolException_BecomesTheEventsText) {
    RecordingFilter* filter = Add(new RecordingFilter("A"));
    filter->onAction = [](const VecParameter&) { throw TolException("x", 1, ExceptionGeneral, 82, "no luck"); };
    Run([&] { iface->CallAction(filter, 3, VecParameter()); });
    ASSERT_EQ(1U, recorder.events.size());
    const OrvCommandEvent& event = recorder.events[0];
    EXPECT_EQ(-1, event.GetExtraLong());
    EXPECT_EQ(-1, event.GetError());
    EXPECT_EQ("no luck", event.GetString());
    EXPECT_EQ("no luck", event.GetMessage());
    EXPECT_EQ(3, event.GetActionId());
}

TEST_F(FilterAction, OtherException_PassesAndLeavesNothingBehind) {
    RecordingFilter* filter = Add(new RecordingFilter("A"));
    filter->onAction = [&](const VecParameter&) {
        filter->ActionOutput().push_back(Number("half", 1));
        throw std::runtime_error("not ours");
    };
    EXPECT_THROW(OnWorker([&] { filter->CallAction(1, VecParameter()); }), std::runtime_error);
    EXPECT_TRUE(filter->ActionOutput().empty());
    EXPECT_TRUE(recorder.events.empty());
}

TEST_F(FilterAction, InputImage_IsThatOfTheSlot) {
    RecordingFilter* filter = Add(new RecordingFilter("A"));
    Load(Jpeg("a.jpg", 40, 30));
    EXPECT_EQ(40, filter->GetInputImage(Evidence).Width());
    EXPECT_EQ(3, filter->GetInputImageChannels(Evidence));
    EXPECT_FALSE(filter->GetInputImage(Reference).IsOk());
    EXPECT_EQ(0, filter->GetInputImageChannels(Reference));
}
