// SPDX-License-Identifier: Apache-2.0
// Commands posted, replaced, aborted and answered at random, while another thread copies what is displayed.
#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>

#include "filters/registry.h"
#include "orvcore/filterimage.h"
#include "orvcore/filterplot.h"
#include "tests/support/engine.h"

namespace {

constexpr int UsualCommands = 500;
constexpr unsigned UsualSeed = 20260101;

int NumberFrom(char const* variable, int usual) {
    char const* const given = std::getenv(variable);
    int const number = given != nullptr ? std::atoi(given) : 0;
    return number > 0 ? number : usual;
}

bool IsWhole(OrvPlotData const& data) {
    return std::all_of(data.y.begin(), data.y.end(),
                       [&](auto const& series) { return series.size() == data.x.size(); });
}

bool IsWhole(Image picture) {
    if (!picture.IsOk()) return true;
    // Reads all of it: memory that is gone, or written meanwhile, would show to the sanitizers.
    unsigned sum = 0;
    for (int y = 0; y < picture.Height(); ++y) {
        unsigned char const* const row = picture.Data() + y * static_cast<ptrdiff_t>(picture.Step());
        for (int x = 0; x < picture.Width() * picture.Channels(); ++x) sum += row[x];
    }
    return picture.Width() > 0 && picture.Height() > 0 && sum < 0xFFFFFFFFU;
}

class Soak : public support::Engine {
protected:
    void Prepare() {
        for (OrvNumberedFilter const& entry : MakeFilters()) {
            context->AddFilterType(entry.filter, entry.number);
            entry.filter->CreateAnalysisPanel(nullptr, entry.filter);
            filters.push_back(entry.filter);
        }
        StartOptions();
        // Silencing the assertions of a handler is no business of another thread's.
        iface->SetProgressHandler(nullptr);
        for (OrvFilter* filter : filters) parameters[filter] = filter->GetConfigurationParams(0);
        for (int i = 0; i < 4; ++i) {
            wxString const name = wxString::FromUTF8("photo" + std::to_string(i) + ".jpg");
            files.push_back(Jpeg(name, 48 + 16 * i, 40, static_cast<unsigned>(i)));
        }
        std::string const whole = support::ReadBytes(files[0]);
        files.push_back(support::WriteBytes(dir / "in/cut.jpg", whole.substr(0, whole.size() / 2)));
        files.push_back(support::WriteBytes(dir / "in/noise.jpg", std::string(5000, '\x5A')));
        files.push_back(dir / "in/missing.jpg");
        files.push_back(wxString());
        OrvProject().SaveProject(dir / "project.json");
    }

    // ---- what the application does ----

    void PostOne() {
        OrvFilter* const filter = Any(filters);
        VecParameter const& chosen = parameters.at(filter);
        switch (random() % 16) {
            case 0:
                PostFile();
                break;
            case 1:
            case 2:
                iface->SetFileConfigure(Any(files), Any(files), filter, chosen, VecParameter(), Coin());
                break;
            case 3:
                iface->DeleteCache(Slot());
                break;
            case 4:
                PostReprocess();
                break;
            case 5:
                iface->AddBookmark();
                break;
            case 6:
                iface->SetBookmarks(std::vector<OrvBookmark>(random() % 3));
                break;
            case 7:
                iface->SaveProject(dir / "project.json");
                break;
            case 8:
                iface->LoadProject(dir / "project.json");
                break;
            case 9:
                iface->GenerateReport();
                break;
            case 10:
                iface->NewProject();
                break;
            case 11:
                iface->DumpEmbeddedJpgs(files[random() % 4]);
                break;
            default:
                iface->Configure(filter, -1, chosen, VecParameter(), Coin());
                break;
        }
        ++posted;
    }
    // Takes the filter and the parameters that are in use, which only an idle worker lets be read.
    void PostFile() {
        if (isIdle) {
            iface->SetFile(Any(files), Slot());
        } else {
            iface->NewProject();
        }
    }
    void PostReprocess() {
        if (hasActiveFilter) {
            iface->ReprocessCurrent(Slot());
        } else {
            iface->NewProject();
        }
    }
    // The worker is idle or waits for the response: the time in which an application may look at all.
    void LookAround() {
        for (OrvFileId const id : {Evidence, Reference}) {
            iface->GetFileInfo(id);
            iface->GetImageDetails(id);
            iface->GetJpegInfo(id);
            IsWhole(iface->GetImageDisplayed(id));
        }
        iface->GetProject();
        for (OrvFilter* filter : filters) filter->GetStatusString(Evidence);
    }
    // Posts, replaces, aborts, and answers what is executed, until all is done.
    void TakeTurn() {
        OrvWorkerThread* const worker = context->GetOrvThread();
        hasActiveFilter = context->GetActiveFilter() != nullptr;
        std::uint64_t const start = worker->GetCommandsDone();
        std::uint64_t answers = 0;
        isIdle = true;
        PostOne();
        isIdle = false;
        for (unsigned more = random() % 4; more > 0; --more) {
            if (random() % 3 == 0) std::this_thread::sleep_for(std::chrono::microseconds(random() % 10000));
            DoOne();
            if (answers == 0 && HasEvent()) {
                LookAround();
                iface->PostResponse();
                ++answers;
            }
        }
        Finish(start, answers);
    }
    // True if a command has told its result, and so waits for the answer.
    bool HasEvent() {
        recorder.Pump();
        auto const& events = recorder.events;
        return std::any_of(events.begin(), events.end(), [](OrvCommandEvent const& event) {
            return event.GetId() == OrvCommandIdFilterDone || event.GetId() == OrvCommandIdFilterFailed;
        });
    }
    void DoOne() {
        switch (random() % 4) {
            case 0:
                iface->AbortProcessing();
                ++aborted;
                break;
            case 1:
                context->ClearQueue();
                break;
            default:
                PostOne();
                break;
        }
    }
    // Nobody knows how many commands were dropped before they ran. The last one isn't, and tells how many ran in front
    // of it.
    void Finish(std::uint64_t start, std::uint64_t answers) {
        OrvWorkerThread* const worker = context->GetOrvThread();
        auto const inFront = std::make_shared<std::atomic<std::int64_t>>(-1);
        context->PostCommand(new support::WorkCommand(
            [inFront, worker, start] { *inFront = static_cast<std::int64_t>(worker->GetCommandsDone() - start); }));
        ++posted;
        auto const end = std::chrono::steady_clock::now() + std::chrono::minutes(2);
        for (;;) {
            std::uint64_t const done = worker->GetCommandsDone() - start;
            if (*inFront >= 0 && done > static_cast<std::uint64_t>(*inFront)) break;
            ASSERT_LT(std::chrono::steady_clock::now(), end) << "the worker is stuck behind " << done << " commands";
            if (done == answers) {
                iface->PostResponse();
                ++answers;
            } else {
                worker->WaitForCommandsDone(start + answers, 100);
            }
        }
        ASSERT_EQ(answers, worker->GetCommandsDone() - start) << "an answer for each command";
        executed += answers;
        recorder.Pump();
        recorder.events.clear();
        LookAround();
    }

    // ---- what the reader does ----

    bool Look(OrvFilter* filter) const {
        bool whole = true;
        for (OrvFileId const id : {Evidence, Reference}) {
            if (auto* pictures = dynamic_cast<OrvFilterImage*>(filter)) {
                whole = IsWhole(pictures->GetOutputImageDisplayedCopy(id)) && whole;
                whole = IsWhole(pictures->GetInputImageDisplayedCopy(id)) && whole;
            }
            if (auto* plots = dynamic_cast<OrvFilterPlot*>(filter))
                whole = IsWhole(plots->GetPlotDataCopy(id)) && whole;
        }
        return whole;
    }

    template <class T>
    T& Any(std::vector<T>& list) {
        return list[random() % list.size()];
    }
    OrvFileId Slot() { return random() % 2 == 0 ? Evidence : Reference; }
    bool Coin() { return random() % 2 == 0; }

    std::vector<OrvFilter*> filters;
    std::vector<wxString> files;
    std::mt19937 random{static_cast<unsigned>(NumberFrom("ORV_SOAK_SEED", UsualSeed))};
    std::map<OrvFilter*, VecParameter> parameters;
    bool hasActiveFilter = false;
    bool isIdle = false;
    int posted = 0;
    int aborted = 0;
    std::uint64_t executed = 0;
};

TEST_F(Soak, RandomCommandsAndAReader_EndInOrder) {
    Prepare();
    int const wanted = NumberFrom("ORV_SOAK_COMMANDS", UsualCommands);
    std::printf("seed %d (ORV_SOAK_SEED)\n", NumberFrom("ORV_SOAK_SEED", UsualSeed));
    std::atomic<bool> done{false};
    std::atomic<bool> whole{true};
    std::atomic<int> looks{0};
    std::thread reader([&] {
        while (!done) {
            for (OrvFilter* filter : filters) {
                if (!Look(filter)) whole = false;
            }
            ++looks;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    while (posted < wanted && !HasFailure()) TakeTurn();
    done = true;
    reader.join();
    EXPECT_TRUE(whole) << "a torn copy";
    EXPECT_GT(looks, 0);
    EXPECT_EQ(0, context->GetQueueSize());
    std::printf("soak: %d commands posted, %llu executed, %d aborts, %d rounds of copies\n", posted,
                static_cast<unsigned long long>(executed), aborted, looks.load());
}

}  // namespace
