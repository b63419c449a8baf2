// SPDX-License-Identifier: Apache-2.0
// The order of a run, and what decides over it.
#include <exception>

#include "tests/orvcore/recordingfilter.h"
#include "tolbase/exception.h"
#include "tolbase/progress.h"

using support::Number;
using support::RecordingFilter;
using support::WithFirst;

namespace {

using Ids = std::vector<int>;

class FilterRun : public support::FilterEngine {
protected:
    // A filter with one number.
    RecordingFilter* AddNumbered() { return Add(new RecordingFilter("Filter", {Number("n", 1)})); }
    void LoadBoth() {
        Load(Jpeg("a.jpg"), Evidence);
        Load(Jpeg("b.jpg", 32, 32, 2), Reference);
    }
};

struct NamelessFailure : std::exception {
    const char* what() const noexcept override { return nullptr; }
};

TolException Failure(const wxString& message) {
    return TolException(__FILE__, 1, ExceptionGeneral, 82, message);
}

const char* const wholeRun =
    "PreApply Apply:E SaveCache:E NoCache:E Post:E Apply:R SaveCache:R NoCache:R Post:R Update";

}  // namespace

TEST_F(FilterRun, BothSlots_AreCalculatedInOrder) {
    RecordingFilter* filter = AddNumbered();
    LoadBoth();
    Go(filter);
    EXPECT_EQ(wholeRun, filter->Take());
    EXPECT_EQ(Ids({0, 1}), recorder.Ids());
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    EXPECT_EQ("Ok", filter->GetStatusString(Reference));
}

TEST_F(FilterRun, EmptySlots_AreResetInstead) {
    RecordingFilter* filter = AddNumbered();
    Go(filter);
    EXPECT_EQ("PreApply Reset:E Reset:R Update", filter->Take());
    EXPECT_EQ(Ids({0, 1}), recorder.Ids());
    EXPECT_EQ("Not Calculated", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, EqualParameters_CallApplyOnce) {
    RecordingFilter* filter = AddNumbered();
    LoadBoth();
    Go(filter);
    filter->Take();
    Go(filter, {Number("n", 1)});
    EXPECT_EQ("PreApply Post:E Post:R Update", filter->Take());
    EXPECT_EQ(Ids({1}), recorder.Ids());
}

TEST_F(FilterRun, AnotherValue_CalculatesBothSlotsWithoutAStartedEvent) {
    RecordingFilter* filter = AddNumbered();
    LoadBoth();
    Go(filter);
    filter->Take();
    Go(filter, {Number("n", 2)});
    EXPECT_EQ(0, filter->Count("LoadCache:E"));
    EXPECT_EQ(wholeRun, filter->Take());
    EXPECT_EQ(Ids({1}), recorder.Ids());
    EXPECT_EQ(2, filter->GetParametersInput()[0].GetValue<int>());
}

TEST_F(FilterRun, RefusedValue_IsNoChange) {
    const Parameter range = CreateParameterIntMinMax("n", wxString(), 1, 0, 3);
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {range}));
    Load(Jpeg("a.jpg"));
    Go(filter);
    filter->Take();
    Go(filter, {Number("n", 9)});
    EXPECT_EQ(0, filter->Count("Apply:E"));
    EXPECT_EQ(1, filter->GetParametersInput()[0].GetValue<int>());
}

TEST_F(FilterRun, PostProcessingAlone_KeepsTheOutputOfTheLastCalculation) {
    RecordingFilter* filter = AddNumbered();
    filter->PostProcessing().push_back(Number("p", 1));
    filter->Output().push_back(Number("o", 0));
    filter->onApply = [&](OrvFileId) { filter->Output()[0].Set(boost::any(42)); };
    LoadBoth();
    Go(filter);
    filter->Take();
    Go(filter, VecParameter(), {Number("p", 5)});
    EXPECT_EQ("PreApply Post:E Post:R Update", filter->Take());
    ASSERT_EQ(Ids({1}), recorder.Ids());
    EXPECT_EQ(42, recorder.events[0].GetParams()[0].GetValue<int>());
    EXPECT_EQ(5, filter->GetParametersPostProcessing()[0].GetValue<int>());
}

TEST_F(FilterRun, OutputOfTheEvidence_StaysWhileTheReferenceRuns) {
    RecordingFilter* filter = AddNumbered();
    filter->Output().push_back(Number("e", 0));
    filter->Output().push_back(Number("r", 0));
    filter->onApply = [&](OrvFileId id) { filter->Output()[id].Set(boost::any(id + 10)); };
    LoadBoth();
    Go(filter);
    EXPECT_EQ(10, recorder.events.back().GetParams()[0].GetValue<int>());
    EXPECT_EQ(11, recorder.events.back().GetParams()[1].GetValue<int>());
}

TEST_F(FilterRun, SurplusValues_AreLeftOut) {
    RecordingFilter* filter = AddNumbered();
    Go(filter, {Number("n", 4), Number("m", 5)}, {Number("p", 6)});
    ASSERT_EQ(1U, filter->GetParametersInput().size());
    EXPECT_EQ(4, filter->GetParametersInput()[0].GetValue<int>());
}

TEST_F(FilterRun, DuringTheRun_ChangedParametersAreMarked) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {Number("a", 1), Number("b", 1)}));
    bool first = false;
    bool second = true;
    filter->onApply = [&](OrvFileId) {
        first = filter->Input()[0].IsChanged();
        second = filter->Input()[1].IsChanged();
    };
    Load(Jpeg("a.jpg"));
    Go(filter, {Number("a", 2), Number("b", 1)});
    EXPECT_TRUE(first);
    EXPECT_FALSE(second);
    EXPECT_FALSE(filter->Input()[0].IsChanged());
}

TEST_F(FilterRun, OneFileChanged_CalculatesThatSlotAlone) {
    RecordingFilter* filter = AddNumbered();
    LoadBoth();
    Go(filter);
    filter->Take();
    Load(Jpeg("c.jpg", 16, 16, 3), Reference);
    Go(filter);
    EXPECT_EQ("PreApply Post:E Apply:R SaveCache:R NoCache:R Post:R Update", filter->Take());
    EXPECT_EQ(Ids({0, 1}), recorder.Ids());
    EXPECT_FALSE(filter->IsFileChanged(Evidence));
    EXPECT_TRUE(filter->IsFileChanged(Reference));
}

TEST_F(FilterRun, OtherContentUnderTheSamePath_IsCalculated) {
    RecordingFilter* filter = AddNumbered();
    const wxString path = Jpeg("a.jpg", 64, 48, 1);
    Load(path);
    Go(filter);
    filter->Take();
    Load(Jpeg("a.jpg", 64, 48, 5));
    Go(filter);
    EXPECT_EQ(1, filter->Count("Apply:E"));
}

TEST_F(FilterRun, OtherFilterBetween_SendsStartedButCalculatesNothing) {
    RecordingFilter* filter = AddNumbered();
    RecordingFilter* other = Add(new RecordingFilter("Other"));
    LoadBoth();
    Go(filter);
    Go(other);
    filter->Take();
    Go(filter);
    EXPECT_EQ(Ids({0, 1}), recorder.Ids());
    EXPECT_EQ("PreApply Post:E Post:R Update", filter->Take());
}

TEST_F(FilterRun, ActiveConfiguration_IsFoundByItsValues) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {CreateParameterIntMinMax("n", wxString(), 0, 0, 2)}));
    Go(filter, filter->GetConfigurationParams(2));
    EXPECT_EQ(2, filter->GetActiveConfiguration());
    filter->DeleteConfiguration(2);
    Go(filter, WithFirst(filter->Input(), 2));
    EXPECT_EQ(-1, filter->GetActiveConfiguration());
}

TEST_F(FilterRun, ProgressText_NamesFilterAndParameters) {
    RecordingFilter* filter = AddNumbered();
    RecordingFilter* plain = Add(new RecordingFilter("Plain"));
    wxString text;
    const auto note = [&] { text = tcvGetProgress().text; };
    filter->onPreApply = note;
    plain->onPreApply = note;
    Go(filter, {Number("n", 3)});
    EXPECT_EQ("Processing Filter\nwith configuration 3", text);
    Go(plain);
    EXPECT_EQ("Processing Plain", text);
}

TEST_F(FilterRun, StatusSetByApply_Stands) {
    RecordingFilter* filter = AddNumbered();
    filter->onApply = [&](OrvFileId id) { filter->SetStatus(id, OrvFilterConfiguration::Warning); };
    Load(Jpeg("a.jpg"));
    Go(filter);
    EXPECT_EQ("Warning", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, WarningOfTheSameFile_StaysUntilApplyTakesItBack) {
    RecordingFilter* filter = AddNumbered();
    filter->onApply = [&](OrvFileId id) { filter->SetStatus(id, OrvFilterConfiguration::Warning); };
    Load(Jpeg("a.jpg"));
    Go(filter);
    filter->onApply = nullptr;
    Go(filter, {Number("n", 2)});
    EXPECT_EQ("Warning", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, AnotherFile_BeginsWithoutAStatus) {
    RecordingFilter* filter = AddNumbered();
    filter->onApply = [&](OrvFileId id) { filter->SetStatus(id, OrvFilterConfiguration::Warning); };
    Load(Jpeg("a.jpg"));
    Go(filter);
    filter->onApply = nullptr;
    Load(Jpeg("b.jpg", 32, 32, 2));
    Go(filter);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, EmptiedSlot_KeepsItsStatus) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    Go(filter);
    filter->Take();
    Load(wxString());
    Go(filter);
    EXPECT_EQ("PreApply Reset:E Reset:R Update", filter->Take());
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, TolException_EndsTheRunWithItsMessage) {
    RecordingFilter* filter = AddNumbered();
    filter->onApply = [](OrvFileId) { throw Failure("broken"); };
    LoadBoth();
    Go(filter);
    EXPECT_EQ("PreApply Apply:E Reset Reset:E Reset:R", filter->Take());
    ASSERT_EQ(Ids({0, 2}), recorder.Ids());
    EXPECT_TRUE(recorder.events[1].GetParams().empty());
    EXPECT_EQ("broken", filter->GetErrorMessage());
    EXPECT_EQ("Not Calculated", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, FailureInTheReference_LeavesNoStatusAtAll) {
    RecordingFilter* filter = AddNumbered();
    filter->onApply = [](OrvFileId id) {
        if (id == Reference) throw Failure("broken");
    };
    LoadBoth();
    Go(filter);
    EXPECT_EQ(Ids({0, 2}), recorder.Ids());
    EXPECT_EQ("Not Calculated", filter->GetStatusString(Evidence));
    EXPECT_EQ("Not Calculated", filter->GetStatusString(Reference));
}

TEST_F(FilterRun, OtherExceptions_GiveTheirTextOrAPlaceholder) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    filter->onApply = [](OrvFileId) { throw std::runtime_error("out of luck"); };
    Go(filter);
    EXPECT_EQ("out of luck", filter->GetErrorMessage());
    filter->onApply = [](OrvFileId) { throw NamelessFailure(); };
    Go(filter);
    EXPECT_EQ("Unknown exception", filter->GetErrorMessage());
    EXPECT_EQ(Ids({2}), recorder.Ids());
}

TEST_F(FilterRun, AfterAFailure_TheNextRunCalculatesAndForgetsTheMessage) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    filter->onApply = [](OrvFileId) { throw Failure("broken"); };
    Go(filter);
    filter->onApply = nullptr;
    filter->Take();
    Go(filter);
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ("", filter->GetErrorMessage());
    EXPECT_EQ(Ids({1}), recorder.Ids());
}

TEST_F(FilterRun, ExceptionOfPreApply_LeavesTheRunAndIsNotForgotten) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    filter->onPreApply = [] { throw Failure("too early"); };
    EXPECT_THROW(OnWorker([&] { filter->Configure(VecParameter(), VecParameter()); }), TolException);
    filter->onPreApply = nullptr;
    filter->Take();
    Go(filter);
    EXPECT_EQ(1, filter->Count("Apply:E"));
}

TEST_F(FilterRun, Abort_EndsTheRunAndIsLowered) {
    RecordingFilter* filter = AddNumbered();
    filter->onApply = [](OrvFileId) { tcvAbortProgress(); };
    LoadBoth();
    Go(filter);
    EXPECT_EQ("PreApply Apply:E Apply:R Reset Reset:E Reset:R", filter->Take());
    EXPECT_EQ(Ids({0, 2}), recorder.Ids());
    EXPECT_EQ("Processing interrupted by user.", filter->GetErrorMessage());
    EXPECT_FALSE(tcvHasAborted());
    EXPECT_EQ("Not Calculated", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, AfterAnAbort_EqualParametersCalculateAnew) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    filter->onApply = [](OrvFileId) { tcvAbortProgress(); };
    Go(filter);
    filter->onApply = nullptr;
    filter->Take();
    Go(filter);
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
}

TEST_F(FilterRun, ResetStatus_CalculatesAgain) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    Go(filter, {Number("n", 4)});
    filter->Take();
    OnWorker([&] { filter->ResetStatus(Evidence); });
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ(4, filter->GetParametersInput()[0].GetValue<int>());
}

TEST_F(FilterRun, ChangedReferencePattern_CalculatesBothSlots) {
    RecordingFilter* filter = AddNumbered();
    LoadBoth();
    Go(filter);
    filter->Take();
    context->SetPrnuReferencePatternPathChanged(true);
    Go(filter);
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ(1, filter->Count("Apply:R"));
}
