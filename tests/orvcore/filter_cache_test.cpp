// SPDX-License-Identifier: Apache-2.0
// The cache and the status files, byte for byte.
#include <wx/filename.h>

#include "tests/orvcore/recordingfilter.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"

using support::Number;
using support::ReadBytes;
using support::RecordingFilter;
using support::WriteBytes;

namespace {

class FilterCache : public support::FilterEngine {
protected:
    RecordingFilter* AddNumbered() { return Add(new RecordingFilter("Filter", {Number("n", 1)})); }
    wxString StatusFile(const wxString& name) { return context->GetOutputBasePath(Evidence) + name + ".status"; }
};

// Stands in for a whole result on disk.
class FilterCacheWithResult : public FilterCache {
protected:
    // A filter whose result for n = 1 is on disk, and that ran last with n = 2.
    RecordingFilter* AddCached() {
        RecordingFilter* filter = AddNumbered();
        filter->cached = true;
        Load(Jpeg("a.jpg"));
        Go(filter, {Number("n", 1)});
        Go(filter, {Number("n", 2)});
        filter->Take();
        return filter;
    }
};

}  // namespace

TEST_F(FilterCache, Names_HoldBasePathFilterAndValues) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {Number("n", 1), Number("m", -2)}));
    Load(Jpeg("a.jpg"));
    const wxString base = context->GetOutputBasePath(Evidence);
    EXPECT_EQ(base + "-Filter-1--2", filter->GetCacheFilename(Evidence));
    EXPECT_EQ(base + "-Filter-7", filter->GetCacheFilenameCustom(Evidence, {Number("n", 7)}));
    EXPECT_EQ(base + "-Filter-7.status", filter->GetStatusFilename(Evidence, {Number("n", 7)}));
}

TEST_F(FilterCache, NameWithoutParameters_EndsInTheFiltersName) {
    RecordingFilter* filter = Add(new RecordingFilter("Plain Filter"));
    Load(Jpeg("a.jpg"));
    EXPECT_EQ(context->GetOutputBasePath(Evidence) + "-Plain Filter", filter->GetCacheFilename(Evidence));
}

TEST_F(FilterCache, ValueWithColonAndSlash_IsCleaned) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {CreateParameterString("s", wxString(), "4:2/0")}));
    Load(Jpeg("a.jpg"));
    EXPECT_EQ(context->GetOutputBasePath(Evidence) + "-Filter-4_2_0", filter->GetCacheFilename(Evidence));
}

TEST_F(FilterCache, Calculation_WritesExactlyTheStatusText) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    Go(filter);
    EXPECT_EQ("Ok", ReadBytes(StatusFile("-Filter-1")));
    filter->onApply = [&](OrvFileId id) { filter->SetStatus(id, OrvFilterConfiguration::Warning); };
    Go(filter, {Number("n", 2)});
    EXPECT_EQ("Warning", ReadBytes(StatusFile("-Filter-2")));
    const wxString folder = wxPathOnly(context->GetOutputBasePath(Evidence));
    EXPECT_EQ(2U, GetAllFiles(folder, {"status"}, false).size());
    EXPECT_TRUE(GetAllFiles(folder, {"tmp"}, false).empty());
}

TEST_F(FilterCache, CacheOff_WritesAndReadsNothing) {
    RecordingFilter* filter = AddNumbered();
    filter->cached = true;
    Load(Jpeg("a.jpg"));
    WriteBytes(StatusFile("-Filter-2"), "Warning");
    context->EnableCache(false);
    Go(filter);
    EXPECT_EQ("PreApply Apply:E NoCache:E Post:E Reset:R Update", filter->Take());
    EXPECT_FALSE(wxFileExists(StatusFile("-Filter-1")));
    Go(filter, {Number("n", 2)});
    EXPECT_EQ(0, filter->Count("LoadCache:E"));
    EXPECT_EQ(1, filter->Count("Apply:E"));
}

TEST_F(FilterCacheWithResult, ResultOnDisk_IsReloaded) {
    RecordingFilter* filter = AddCached();
    Go(filter, {Number("n", 1)});
    EXPECT_EQ("PreApply LoadCache:E NoCache:E Post:E Reset:R Update", filter->Take());
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    Go(filter, {Number("n", 1)});
    EXPECT_FALSE(filter->ConfiguredFromCache(Evidence));
}

TEST_F(FilterCacheWithResult, StatusOfAReload_IsThatOfTheFile) {
    RecordingFilter* filter = AddCached();
    WriteBytes(StatusFile("-Filter-1"), "Warning");
    Go(filter, {Number("n", 1)});
    EXPECT_EQ("Warning", filter->GetStatusString(Evidence));
    EXPECT_EQ(0, filter->Count("Apply:E"));
}

TEST_F(FilterCacheWithResult, WithoutItsStatusFile_IsCalculated) {
    RecordingFilter* filter = AddCached();
    ASSERT_TRUE(wxRemoveFile(StatusFile("-Filter-1")));
    Go(filter, {Number("n", 1)});
    EXPECT_EQ("PreApply Apply:E SaveCache:E NoCache:E Post:E Reset:R Update", filter->Take());
    EXPECT_FALSE(filter->ConfiguredFromCache(Evidence));
}

TEST_F(FilterCacheWithResult, WithoutItsResult_IsCalculated) {
    RecordingFilter* filter = AddCached();
    filter->cached = false;
    Go(filter, {Number("n", 1)});
    EXPECT_EQ("PreApply LoadCache:E Apply:E SaveCache:E NoCache:E Post:E Reset:R Update", filter->Take());
}

TEST_F(FilterCacheWithResult, BrokenResult_IsCalculatedAndNoFailure) {
    RecordingFilter* filter = AddCached();
    filter->onLoadCache = [] { throw TolException("x", 1, ExceptionGeneral, 82, "truncated"); };
    Go(filter, {Number("n", 1)});
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ(std::vector<int>({1}), recorder.Ids());
    EXPECT_EQ("", filter->GetErrorMessage());
}

TEST_F(FilterCacheWithResult, UnknownStatusText_IsNoResult) {
    RecordingFilter* filter = AddCached();
    WriteBytes(StatusFile("-Filter-1"), "warning");
    Go(filter, {Number("n", 1)});
    EXPECT_EQ(1, filter->Count("Apply:E"));
    EXPECT_EQ("Ok", ReadBytes(StatusFile("-Filter-1")));
}

TEST_F(FilterCacheWithResult, ResetStatus_IgnoresTheResult) {
    RecordingFilter* filter = AddCached();
    OnWorker([&] { filter->ResetStatus(Evidence); });
    EXPECT_EQ("PreApply Apply:E SaveCache:E NoCache:E Post:E Reset:R Update", filter->Take());
    EXPECT_EQ("Ok", ReadBytes(StatusFile("-Filter-2")));
}

TEST_F(FilterCacheWithResult, ResetStatusOfOneSlot_ReloadsTheOther) {
    RecordingFilter* filter = AddCached();
    Load(Jpeg("b.jpg", 32, 32, 2), Reference);
    Go(filter);
    filter->Take();
    OnWorker([&] { filter->ResetStatus(Reference); });
    EXPECT_EQ("PreApply LoadCache:E NoCache:E Post:E Apply:R SaveCache:R NoCache:R Post:R Update", filter->Take());
}

TEST_F(FilterCache, WhileAResultIsStored_NoStatusPromisesIt) {
    class Watching : public RecordingFilter {
    public:
        using RecordingFilter::RecordingFilter;
        mutable bool seen = false;

    protected:
        void SaveCache(OrvFileId id) const override {
            seen = seen || wxFileExists(GetStatusFilename(id, m_parametersInput));
        }
    };
    Watching* filter = Add(new Watching("Filter"));
    Load(Jpeg("a.jpg"));
    WriteBytes(StatusFile("-Filter"), "Ok");
    Go(filter);
    EXPECT_FALSE(filter->seen);
    EXPECT_EQ("Ok", ReadBytes(StatusFile("-Filter")));
}

TEST_F(FilterCache, CacheFolderThatIsGone_IsMadeAgain) {
    RecordingFilter* filter = AddNumbered();
    Load(Jpeg("a.jpg"));
    wxFileName::Rmdir(wxPathOnly(context->GetOutputBasePath(Evidence)), wxPATH_RMDIR_RECURSIVE);
    Go(filter);
    EXPECT_EQ("Ok", ReadBytes(StatusFile("-Filter-1")));
}

TEST_F(FilterCache, NameTooLongForTheDisk_IsCalculatedEachTime) {
    const wxString text(300, 'x');
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {CreateParameterString("s", wxString(), text)}));
    Load(Jpeg("a.jpg"));
    Go(filter);
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    EXPECT_EQ(std::vector<int>({0, 1}), recorder.Ids());
}

TEST_F(FilterCache, JpegOnlyFilterOnAnotherFormat_IsUnsupported) {
    RecordingFilter* filter = AddNumbered();
    filter->SetOnlyForJpeg();
    Load(Bmp("a.bmp"));
    Go(filter);
    EXPECT_EQ("PreApply Reset:E NoCache:E Post:E Reset:R Update", filter->Take());
    EXPECT_EQ("Unsupported", filter->GetStatusString(Evidence));
    EXPECT_FALSE(filter->IsStatusAvailable(Evidence));
    EXPECT_EQ("Unsupported", ReadBytes(StatusFile("-Filter-1")));
    EXPECT_EQ(std::vector<int>({0, 1}), recorder.Ids());
}

TEST_F(FilterCache, UnsupportedWithTheCacheOff_IsWrittenButNotReread) {
    RecordingFilter* filter = AddNumbered();
    filter->SetOnlyForJpeg();
    context->EnableCache(false);
    Load(Bmp("a.bmp"));
    Go(filter);
    EXPECT_EQ("Unsupported", ReadBytes(StatusFile("-Filter-1")));
    filter->Take();
    Go(filter, {Number("n", 2)});
    EXPECT_EQ("PreApply Reset:E NoCache:E Post:E Reset:R Update", filter->Take());
    EXPECT_EQ("Unsupported", ReadBytes(StatusFile("-Filter-2")));
}

TEST_F(FilterCache, UnsupportedOnDisk_IsTestedAgain) {
    RecordingFilter* filter = AddNumbered();
    filter->SetOnlyForJpeg();
    Load(Jpeg("a.jpg"));
    WriteBytes(StatusFile("-Filter-1"), "Unsupported");
    Go(filter);
    EXPECT_EQ("PreApply Apply:E SaveCache:E NoCache:E Post:E Reset:R Update", filter->Take());
    EXPECT_EQ("Ok", filter->GetStatusString(Evidence));
    EXPECT_EQ("Ok", ReadBytes(StatusFile("-Filter-1")));
}

TEST_F(FilterCache, StatusOfConfigurations_ComesFromTheFilesOfTheEvidence) {
    RecordingFilter* filter = Add(new RecordingFilter("Filter", {CreateParameterIntMinMax("n", wxString(), 0, 0, 1)}));
    Load(Jpeg("a.jpg"));
    WriteBytes(StatusFile("-Filter-1"), "Warning");
    context->UpdateFiltersStatus();
    EXPECT_EQ(OrvFilterConfiguration::NotCalculated, filter->GetConfigurations()[0].GetFilterStatus());
    EXPECT_EQ(OrvFilterConfiguration::Warning, filter->GetConfigurations()[1].GetFilterStatus());
}
