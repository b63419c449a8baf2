// SPDX-License-Identifier: Apache-2.0
// Every file is written with every one of its operations failing in turn.
#include "filters/registry.h"
#include "orvcore/batchprocessing.h"
#include "tests/faults/documents.h"
#include "tests/faults/failingwrites.h"
#include "tests/orvcore/cachefilters.h"

using faults::Failing;
using faults::FailWrites;
using faults::StopFailing;

namespace {

constexpr Failing Kinds[] = {Failing::Once, Failing::FromThenOn};
// Far more than any of these writers needs.
constexpr int MostOperations = 400;

std::string Place(std::string const& name, Failing kind, int at) {
    return name + ", operation " + std::to_string(at) + (kind == Failing::Once ? " alone" : " and all behind it");
}

class WriteFaults : public faults::Documents {
protected:
    // True while there was an operation to fail.
    bool FailAt(faults::Document const& document, Failing kind, int at) {
        support::WriteBytes(document.path, document.states[0]);
        std::string const folder = PathToBytes(wxPathOnly(document.path));
        FailWrites(folder, at, kind);
        std::optional<bool> const told = document.save(true);
        bool const failed = StopFailing() >= at;
        std::string const now = support::ReadBytes(document.path);
        std::string const where = Place(document.name, kind, at);
        EXPECT_TRUE(now == document.states[0] || now == document.states[1]) << where << ": " << now.size() << " bytes";
        if (!failed || told == std::optional<bool>(true)) {
            EXPECT_TRUE(now == document.states[1]) << where << ": told as written";
        }
        EXPECT_TRUE(support::Leftovers(wxPathOnly(document.path)).empty()) << where;
        return failed;
    }
    int FailAll(faults::Document const& document) {
        int tried = 0;
        for (Failing const kind : Kinds) {
            int at = 1;
            while (at < MostOperations && FailAt(document, kind, at)) ++at;
            EXPECT_GT(at, 3) << document.name << " is written in fewer steps than it can be";
            EXPECT_LT(at, MostOperations);
            tried += at - 1;
        }
        return tried;
    }
};

TEST_F(WriteFaults, EachOperationOfEachFile_LeavesTheOldOrTheNewOne) {
    for (faults::Document const& document : Make()) {
        int const tried = FailAll(document);
        std::printf("faults: %s: %d failed operations\n", document.name.c_str(), tried);
        if (HasFailure()) return;
    }
}

class CacheWriteFaults : public support::CacheEngine {
protected:
    template <class Filter>
    void FailAll(Filter* filter, std::string const& name) {
        std::string const expected = Computed(filter, 2);
        int tried = 0;
        for (Failing const kind : Kinds) {
            for (int at = 1; at < MostOperations; ++at, ++tried) {
                filtercache::DeleteFolder(Folder());
                context->EnableCache(true);
                FailWrites(PathToBytes(dir.Path()), at, kind);
                RunWith(filter, 2);
                bool const failed = StopFailing() >= at;
                EXPECT_EQ(expected, support::ResultOf(filter)) << Place(name, kind, at) << ", the run itself";
                RunWith(filter, 3);
                RunWith(filter, 2);
                EXPECT_EQ(expected, support::ResultOf(filter)) << Place(name, kind, at) << ", the next run";
                if (!failed || HasFailure()) break;
            }
        }
        EXPECT_GT(tried, 8);
        std::printf("faults: cache of %s: %d failed operations\n", name.c_str(), tried);
    }
};

TEST_F(CacheWriteFaults, EachOperationOfAPicture_ChangesNoResult) {
    auto* filter = Add(new support::CachedImageFilter);
    LoadPicture();
    FailAll(filter, "pictures");
}

TEST_F(CacheWriteFaults, EachOperationOfAPlot_ChangesNoResult) {
    auto* filter = Add(new support::CachedPlotFilter);
    LoadPicture();
    FailAll(filter, "plots");
}

class ReportWriteFaults : public support::CacheEngine {
protected:
    ReportWriteFaults() {
        // No window, no words.
        TolSetMessageHandler([](wxString const&, wxString const&) {});
        Add(new support::CachedPlotFilter);
        file = Jpeg("a.jpg");
        StartOptions();
        context->EnableCache(false);
    }
    ~ReportWriteFaults() override { TolSetMessageHandler(nullptr); }
    // The report's path as the run tells it.
    wxString Batch(wxString const& report) {
        wxString told;
        OnWorker([&] {
            VecParameter parameters;
            for (int const number : {0, 0, 2}) parameters.push_back(CreateParameterInt("", "", number));
            for (wxString const& text : {report, file}) parameters.push_back(CreateParameterString("", "", text));
            GriffeyeOrvBatchReportsMap none;
            told = OrvBatchProcessing(parameters, false, {}, none);
        });
        return told;
    }
    void FailAll(wxString const& name) {
        wxString const report = dir / ("out/" + name);
        CreateDirIfNotExists(dir / "out");
        ASSERT_EQ(report, Batch(report));
        std::string const whole = support::ReadBytes(report);
        ASSERT_FALSE(whole.empty());
        int tried = 0;
        for (Failing const kind : Kinds) {
            for (int at = 1; at < MostOperations; ++at, ++tried) {
                support::WriteBytes(report, "old");
                FailWrites(PathToBytes(dir / "out"), at, kind);
                wxString const told = Batch(report);
                bool const failed = StopFailing() >= at;
                std::string const now = support::ReadBytes(report);
                std::string const where = Place(std::string(name.utf8_str()), kind, at);
                // A row or section whose result could not be saved tells so: such a report is another, yet whole.
                EXPECT_TRUE(now == "old" || IsWhole(now, whole)) << where << "\n" << now;
                if (!told.empty()) {
                    EXPECT_NE("old", now) << where << ": told as written";
                }
                EXPECT_TRUE(support::Leftovers(dir / "out").empty()) << where;
                if (!failed || HasFailure()) break;
            }
        }
        EXPECT_GT(tried, 8);
        std::printf("faults: %s: %d failed operations\n", std::string(name.utf8_str()).c_str(), tried);
    }
    // It ends as the undisturbed one does, and has as many lines.
    static bool IsWhole(std::string const& now, std::string const& whole) {
        std::string const end = whole.substr(whole.size() - std::min<size_t>(8, whole.size()));
        bool const ends =
            end.find("</html>") == std::string::npos ? now.back() == '\n' : now.find(end) != std::string::npos;
        return ends && std::count(now.begin(), now.end(), '\n') >= std::count(whole.begin(), whole.end(), '\n') - 1;
    }

    wxString file;
};

TEST_F(ReportWriteFaults, EachOperationOfATable_LeavesTheOldOrAWholeOne) {
    FailAll("report.tsv");
}

TEST_F(ReportWriteFaults, EachOperationOfAPage_LeavesTheOldOrAWholeOne) {
    FailAll("report.html");
}

}  // namespace
