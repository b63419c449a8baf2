// SPDX-License-Identifier: Apache-2.0
// Measures each picture and plot filter on a 12-megapixel photograph: its calculation against a plain single-threaded
// OpenCV form of the same, its result from the cache and a change of post-processing against the calculation, and the
// memory that a run takes.
//   orvelle-filters-bench
#include <sys/resource.h>
#include <unistd.h>
#include <wx/app.h>
#include <wx/init.h>

#include <chrono>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <functional>
#include <opencv2/core.hpp>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/filterpeers.h"
#include "bench/process.h"
#include "filters/registry.h"
#include "orvcore/orvcore.h"
#include "tolbase/tolbase.h"
#include "tolcore/dimples.h"

namespace {

namespace fs = std::filesystem;
constexpr int kRepeats = 5;

// The time on the clock, and the processor time of all threads, which other programs of the machine change little.
struct Duration {
    double wall = 0;
    double processor = 0;
};

double ProcessorSeconds() {
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           1e-6 * static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

// Medians of several runs.
Duration Measure(const std::function<void()>& work) {
    std::vector<double> wall;
    std::vector<double> processor;
    for (int i = 0; i < kRepeats; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const double before = ProcessorSeconds();
        work();
        processor.push_back(ProcessorSeconds() - before);
        wall.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    return {bench::Median(wall), bench::Median(processor)};
}

// A filter, two sets of its input values and the plain form of the first.
struct Case {
    const char* filter;
    std::vector<int> values;
    std::vector<int> others;
    std::function<void(const cv::Mat&)> peer;
};

std::vector<Case> AllCases() {
    return {
        {"Error Level Analysis", {95}, {90}, [](const cv::Mat& picture) { bench::PlainErrorLevel(picture, 95); }},
        {"Noise Map", {0, 16}, {0, 32}, [](const cv::Mat& picture) { bench::PlainNoise(picture, false, 16); }},
        {"Noise Map", {1, 16}, {1, 32}, [](const cv::Mat& picture) { bench::PlainNoise(picture, true, 16); }},
        {"Channels", {1, 0}, {1, 1}, bench::PlainChannel},
        {"Histogram Equalisation", {0}, {1}, bench::PlainEqualisation},
        {"Histogram", {0}, {1}, bench::PlainHistogram},
        {"JPEG Ghost Plot", {40, 100}, {41, 100}, [](const cv::Mat& picture) { bench::PlainGhost(picture, 40, 100); }},
        {"DCT Histogram", {0, 1}, {0, 2}, bench::PlainDctHistogram},
    };
}

std::string NameOf(const Case& each) {
    std::string name = each.filter;
    for (const int value : each.values) name += " " + std::to_string(value);
    return name;
}

class Engine {
public:
    explicit Engine(const fs::path& root) {
        SetAppDocumentsPath(wxString::FromUTF8((root / "engine").string()));
        m_context = new Context;
        OrvSetEventSink(&m_sink);
        for (const OrvNumberedFilter& entry : MakeFilters()) {
            m_context->AddFilterType(entry.filter, entry.number);
            entry.filter->CreateAnalysisPanel(nullptr, entry.filter);
        }
    }
    ~Engine() {
        Work([this] { m_context->LoadFile(wxString(), Evidence, wxString()); });
        delete m_context;
        OrvSetEventSink(nullptr);
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    void Load(const std::string& path) {
        Work([&] { m_context->LoadFile(wxString::FromUTF8(path), Evidence, wxString()); });
        if (!m_context->GetImage(Evidence).IsOk()) throw std::runtime_error("the photograph did not load");
    }
    cv::Mat Picture() const { return m_context->GetImage(Evidence); }
    OrvFilter* Find(const char* name) const { return m_context->GetFilterFromName(name); }
    void EnableCache(bool enable) { m_context->EnableCache(enable); }

    // One run of a filter, on a thread as the engine has it.
    void Configure(OrvFilter* filter, const std::vector<int>& values, int postProcessing) {
        VecParameter input = filter->GetParametersInput();
        for (std::size_t i = 0; i < values.size(); ++i) input[i].Set(boost::any(values[i]));
        VecParameter post = filter->GetParametersPostProcessing();
        if (!post.empty()) post[0].Set(boost::any(postProcessing));
        Work([&] { filter->Configure(input, post); });
        RequireResult(filter);
    }
    void Recalculate(OrvFilter* filter) {
        Work([&] { filter->ResetStatus(Evidence); });
        RequireResult(filter);
    }

private:
    class Context : public OrvContext {
    public:
        using OrvContext::AddFilterType;
    };
    void Work(const std::function<void()>& work) {
        std::thread(work).join();
        delete m_context->PopEvent();
        m_sink.DeletePendingEvents();
    }
    static void RequireResult(const OrvFilter* filter) {
        if (filter->IsStatusAvailable(Evidence)) return;
        throw std::runtime_error(std::string((filter->GetName() + ": " + filter->GetErrorMessage()).utf8_str()));
    }

    wxEvtHandler m_sink;
    Context* m_context;
};

void MeasureTimes(Engine& engine, const Case& each) {
    OrvFilter* filter = engine.Find(each.filter);
    engine.EnableCache(false);
    engine.Configure(filter, each.values, 0);
    const Duration run = Measure([&] { engine.Recalculate(filter); });
    const cv::Mat picture = engine.Picture();
    const Duration plain = Measure([&] { each.peer(picture); });
    engine.EnableCache(true);
    engine.Configure(filter, each.others, 0);
    engine.Recalculate(filter);
    engine.Configure(filter, each.values, 0);
    engine.Recalculate(filter);
    bool other = false;
    const Duration shown = Measure([&] {
        other = !other;
        engine.Configure(filter, other ? each.others : each.values, 0);
        if (!filter->ConfiguredFromCache(Evidence)) throw std::runtime_error("nothing came from the cache");
    });
    engine.Configure(filter, each.values, 0);
    Duration post;
    int value = 0;
    if (!filter->GetParametersPostProcessing().empty()) {
        post = Measure([&] { engine.Configure(filter, each.values, value = 1 - value); });
    }
    std::printf("%-26s %8.1f %8.1f %8.1f %6.2f %8.1f %6.1f %8.1f\n", NameOf(each).c_str(), 1e3 * run.wall,
                1e3 * run.processor, 1e3 * plain.processor, run.processor / plain.processor, 1e3 * shown.processor,
                run.processor / shown.processor, 1e3 * post.processor);
    bench::NoteRatio("filter " + NameOf(each) + " to its plain form", run.processor / plain.processor);
    bench::NoteRatio("filter " + NameOf(each) + " shown again to its run", shown.processor / run.processor);
}

// The search for dimples is a function of its own; the filter of that name only makes a table of it.
void MeasureDimples(const cv::Mat& picture) {
    PCEoutput found;
    const Duration run = Measure([&] { tcvJpegDimplesDetection(picture, found); });
    const Duration plain = Measure([&] { bench::PlainDimples(picture); });
    std::printf("%-26s %8.1f %8.1f %8.1f %6.2f\n", "JPEG Dimples, the search", 1e3 * run.wall, 1e3 * run.processor,
                1e3 * plain.processor, run.processor / plain.processor);
    bench::NoteRatio("search for dimples to its plain form", run.processor / plain.processor);
}

// The peak of a process that loads the photograph and runs the case once, or no filter at all for -1.
long PeakOf(const std::string& program, const std::string& photograph, const std::string& folder, int index) {
    const bench::Cost cost = bench::Run({program, "--one", photograph, folder, std::to_string(index)});
    if (cost.exitCode != 0) throw std::runtime_error("a run on its own failed");
    return cost.peakKilobytes;
}

int RunOne(char** argv) {
    Engine engine(argv[3]);
    engine.Load(argv[2]);
    engine.EnableCache(false);
    const int index = std::stoi(argv[4]);
    if (index < 0) return 0;
    const Case each = AllCases().at(static_cast<std::size_t>(index));
    engine.Configure(engine.Find(each.filter), each.values, 0);
    return 0;
}

// Before anything else: the system counts the memory of the program that starts another one as that one's, too.
void MeasureMemory(const fs::path& root, const std::string& photograph) {
    const std::string program = fs::read_symlink("/proc/self/exe").string();
    const long base = PeakOf(program, photograph, root.string(), -1);
    std::printf("peak memory above that of loading alone (%ld kB), in pictures of 36 MB\n", base);
    const std::vector<Case> cases = AllCases();
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const long peak = PeakOf(program, photograph, root.string(), static_cast<int>(i));
        std::printf("%-26s %6.2f\n", NameOf(cases[i]).c_str(), static_cast<double>(peak - base) * 1024.0 / 36e6);
    }
}

int RunAll(const fs::path& root) {
    std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
    const bench::Cost made =
        bench::Run({ORVELLE_SAMPLE_PROGRAM, "--out", root.string(), "--width", "4000", "--height", "3000"});
    if (made.exitCode != 0) throw std::runtime_error("orvelle-sample failed");
    const std::string photograph = (root / "sample.jpg").string();
    MeasureMemory(root, photograph);
    cv::setNumThreads(1);
    std::printf("milliseconds, of processor time where nothing else is said\n");
    std::printf("%-26s %8s %8s %8s %6s %8s %6s %8s\n", "filter and input values", "run wall", "run", "plain", "ratio",
                "re-shown", "faster", "post");
    Engine engine(root);
    engine.Load(photograph);
    for (const Case& each : AllCases()) MeasureTimes(engine, each);
    MeasureDimples(engine.Picture());
    return 0;
}

class BenchApp : public wxAppConsole {
public:
    bool OnInit() override { return true; }
};

int Main(int argc, char** argv) {
    if (argc == 5 && std::strcmp(argv[1], "--one") == 0) return RunOne(argv);
    if (argc != 1) {
        std::fprintf(stderr, "usage: orvelle-filters-bench\n");
        return 2;
    }
    char name[] = "/tmp/orvelle-bench-XXXXXX";
    if (mkdtemp(name) == nullptr) return 1;
    const int result = RunAll(name);
    fs::remove_all(name);
    return result;
}

}  // namespace

int main(int argc, char** argv) {
    wxApp::SetInstance(new BenchApp);
    wxInitializer initializer;
    try {
        return Main(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvelle-filters-bench: %s\n", error.what());
        return 1;
    }
}
