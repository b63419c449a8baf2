// SPDX-License-Identifier: Apache-2.0
// Programs that work on one cache and are killed at any moment, or delete it from each other.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <map>
#include <opencv2/core/utility.hpp>
#include <random>

#include "filters/registry.h"
#include "tests/orvcore/cachefilters.h"

using support::CachedImageFilter;
using support::CachedPlotFilter;
using support::ResultOf;

namespace {

using Clock = std::chrono::steady_clock;

constexpr int Kills = 100;
constexpr auto TimeForAll = std::chrono::seconds(60);

// One result that the programs store, reload and compare.
struct Job {
    OrvFilter* filter = nullptr;
    VecParameter input;
    std::string expected;  // of a run without cache
};

class CacheFaults : public support::CacheEngine {
protected:
    CacheFaults() {
        // A forked process has one thread alone.
        cv::setNumThreads(0);
    }

    void Prepare() {
        std::vector<OrvFilter*> filters = {Add(new CachedImageFilter), Add(new CachedPlotFilter)};
        int number = 1000;
        for (OrvNumberedFilter const& entry : MakeFilters()) {
            context->AddFilterType(entry.filter, number++);
            entry.filter->CreateAnalysisPanel(nullptr, entry.filter);
            bool const cached = dynamic_cast<OrvFilterImage*>(entry.filter) != nullptr ||
                                dynamic_cast<OrvFilterPlot*>(entry.filter) != nullptr;
            if (cached) filters.push_back(entry.filter);
        }
        Load(Jpeg("a.jpg", 128, 96));
        context->EnableCache(false);
        for (OrvFilter* filter : filters) AddJobs(filter);
        context->EnableCache(true);
    }
    void AddJobs(OrvFilter* filter) {
        std::vector<VecParameter> inputs = {filter->GetParametersInput()};
        if (filter->GetName() == "Picture" || filter->GetName() == "Curve") {
            inputs.push_back(support::OneNumber(2));
            inputs.push_back(support::OneNumber(3));
        }
        for (VecParameter const& input : inputs) {
            OnWorker([&] { Show(filter, input); });
            jobs.push_back({filter, input, ResultOf(filter)});
        }
    }
    // On the worker thread, or in a process forked from it.
    void Show(OrvFilter* filter, VecParameter const& input) {
        support::ForceNextRun(filter);
        filter->Configure(VecParameter(input), filter->GetParametersPostProcessing());
        delete context->PopEvent();
    }
    bool IsRight(Job const& job) {
        Show(job.filter, job.input);
        if (ResultOf(job.filter) == job.expected) return true;
        fprintf(stderr, "%s gives another result%s\n", job.filter->GetName().utf8_str().data(),
                job.filter->ConfiguredFromCache(Evidence) ? " from the cache" : "");
        return false;
    }
    // What a program does all day; false once a result isn't the right one.
    bool DoSomething(std::mt19937& random) {
        Job const& job = jobs[random() % jobs.size()];
        unsigned const what = random() % 20;
        if (what == 0) context->UpdateBasePath(Evidence);
        if (what == 1) filtercache::DeleteFolder(Folder());
        if (what < 12) {
            // Calculates and stores anew.
            filtercache::RemoveFile(job.filter->GetStatusFilename(Evidence, job.input));
        }
        return IsRight(job);
    }
    // Forks a process that works until it is killed, or until `end`; it exits with 0 if all was right.
    pid_t StartWorking(unsigned seed, Clock::time_point end) {
        pid_t child = -1;
        OnWorker([&] {
            child = fork();
            if (child != 0) return;
            std::mt19937 random(seed);
            bool right = true;
            while (right && Clock::now() < end) right = DoSomething(random);
            _exit(right ? 0 : 1);
        });
        return child;
    }
    // A status that stands there has its result: no file's name tells otherwise.
    void ExpectAllRight(std::string const& when) {
        for (Job const& job : jobs) {
            bool right = false;
            OnWorker([&] { right = IsRight(job); });
            EXPECT_TRUE(right) << job.filter->GetName().utf8_str().data() << " " << when;
        }
    }
    void ExpectNoPromiseWithoutResult(std::string const& when) {
        for (wxString const& status : GetAllFiles(Folder(), {"status"}, false)) {
            wxString const stem = status.BeforeLast('.');
            EXPECT_TRUE(wxFileExists(stem + ".png") || wxFileExists(stem + ".binary"))
                << status.utf8_str().data() << " " << when;
        }
    }

    std::vector<Job> jobs;
};

unsigned NewSeed() {
    char const* given = std::getenv("ORV_FAULT_SEED");
    unsigned const seed =
        given != nullptr ? static_cast<unsigned>(std::strtoul(given, nullptr, 10)) : std::random_device()();
    std::printf("seed %u (set ORV_FAULT_SEED to repeat it)\n", seed);
    return seed;
}

}  // namespace

TEST_F(CacheFaults, ProgramKilledAtAnyMoment_LeavesACacheThatIsRight) {
    Prepare();
    std::mt19937 random(NewSeed());
    Clock::time_point const end = Clock::now() + TimeForAll;
    int kills = 0;
    for (; kills < Kills && Clock::now() < end; ++kills) {
        pid_t const child = StartWorking(random(), Clock::now() + std::chrono::seconds(20));
        ASSERT_GT(child, 0);
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 60000));
        ASSERT_EQ(0, ::kill(child, SIGKILL));
        int status = 0;
        ASSERT_EQ(child, ::waitpid(child, &status, 0));
        ASSERT_TRUE(WIFSIGNALED(status)) << "a wrong result before kill " << kills;
        std::string const when = "after kill " + std::to_string(kills);
        ExpectNoPromiseWithoutResult(when);
        ExpectAllRight(when);
        if (HasFailure()) break;
    }
    EXPECT_EQ(Kills, kills) << "the machine was too slow";
    OnWorker([&] { context->UpdateBasePath(Evidence); });
    EXPECT_TRUE(support::Leftovers(Folder()).empty());
}

TEST_F(CacheFaults, TwoProgramsAndOneThatDeletes_DoEachOtherNoHarm) {
    Prepare();
    unsigned const seed = NewSeed();
    Clock::time_point const end = Clock::now() + std::chrono::seconds(4);
    pid_t const programs[] = {StartWorking(seed, end), StartWorking(seed + 1, end)};
    std::mt19937 random(seed + 2);
    while (Clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(random() % 40));
        filtercache::DeleteFolder(Folder());
    }
    for (pid_t const program : programs) {
        int status = 1;
        ASSERT_EQ(program, ::waitpid(program, &status, 0));
        EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << "status " << status;
    }
    ExpectNoPromiseWithoutResult("at the end");
    ExpectAllRight("at the end");
    EXPECT_TRUE(support::Leftovers(Folder()).empty());
}
