// SPDX-License-Identifier: Apache-2.0
// Measures runs over many files: whether their time is linear in the number of files, and whether memory stays flat.
//   orvelle-batch-bench [--files N] [--report PATH FILE...]
// With --report the given files go through every filter into that report and nothing is measured.
#include <unistd.h>
#include <wx/app.h>
#include <wx/init.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/process.h"
#include "filters/filters.h"
#include "orvcore/batchprocessing.h"
#include "orvcore/batchtable.h"
#include "orvcore/command.h"
#include "orvcore/filter.h"
#include "orvcore/reportstyle.h"
#include "tolbase/file.h"
#include "tolbase/progress.h"

namespace {

namespace fs = std::filesystem;
constexpr std::size_t kFirst = 100;

class BenchContext : public OrvContext {
public:
    BenchContext() {
        imageFormatsRead = {"jpg", "jpeg", "png"};
        for (const OrvNumberedFilter& each : MakeFilters()) {
            AddFilterType(each.filter, each.number);
            each.filter->CreateAnalysisPanel(nullptr, each.filter);
        }
    }
};

// Nobody listens.
class DroppingSink : public wxEvtHandler {
public:
    void QueueEvent(wxEvent* event) override { delete event; }
};

// A line of /proc/self/status in kB.
long MemoryOf(const char* name) {
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.compare(0, std::strlen(name), name) == 0) return std::atol(line.c_str() + std::strlen(name) + 1);
    }
    return 0;
}

// The processor time of this process for each hundred files (ExifTool's is its own), and the memory at the end of the
// first hundred and of the last.
class Course {
public:
    void Next() {
        if (++m_count % kFirst != 0) return;
        const std::clock_t now = std::clock();
        m_times.push_back(static_cast<double>(now - m_start) / CLOCKS_PER_SEC);
        m_start = now;
        if (m_times.size() == 1) m_firstMemory = MemoryOf("VmHWM:");
    }
    void Print(const char* what) const {
        if (m_times.size() < 2) return;
        std::printf("%-24s %6zu files   per file: first hundred %7.2f ms, last hundred %7.2f ms   ", what, m_count,
                    10 * m_times.front(), 10 * m_times.back());
        std::printf("peak memory: after a hundred %ld kB, at the end %ld kB\n", m_firstMemory, MemoryOf("VmHWM:"));
        std::fflush(stdout);
    }

private:
    std::clock_t m_start = std::clock();
    std::vector<double> m_times;
    std::size_t m_count = 0;
    long m_firstMemory = 0;
};

VecString MakeFiles(const fs::path& folder, std::size_t count) {
    fs::create_directories(folder);
    std::vector<fs::path> originals;
    for (int i = 0; i < 10; ++i) {
        const fs::path made = folder / ("made-" + std::to_string(i));
        bench::Run({ORVELLE_SAMPLE_PROGRAM, "--out", made.string(), "--width", "320", "--height", "320", "--seed",
                    std::to_string(i + 1)});
        originals.push_back(made / "sample.jpg");
    }
    VecString files;
    for (std::size_t i = 0; i < count; ++i) {
        const fs::path path = folder / ("photo-" + std::to_string(i) + ".jpg");
        fs::copy_file(originals[i % originals.size()], path);
        files.push_back(PathFromBytes(path.string()));
    }
    return files;
}

void OnWorker(const std::function<void()>& work) {
    std::thread(work).join();
}

wxString RunBatch(const VecString& files, int outputMode, const wxString& report, OrvBatchMonitor& monitor) {
    const VecParameter parameters = {CreateParameterInt("files", "", 0), CreateParameterInt("filters", "", 0),
                                     CreateParameterInt("output", "", outputMode),
                                     CreateParameterString("report", "", report),
                                     CreateParameterVectorString("list", "", files)};
    TolJsonAlg::GriffeyeOrvBatchReportsMap none;
    wxString result;
    OnWorker([&] { result = OrvBatchProcessing(parameters, false, {}, none, &monitor); });
    return result;
}

void MeasureTable(const VecString& files) {
    Course course;
    OnWorker([&] {
        ImageInfoTableBatch table;
        bool hard = false;
        std::size_t number = 0;
        for (const wxString& file : files) {
            GetContext()->LoadFile(file, Evidence, wxString());
            table.EvaluateEvidence(++number, hard);
            course.Next();
        }
    });
    course.Print("table");
}

void MeasureBatch(const VecString& files, const fs::path& root, const char* what, int mode) {
    Course course;
    OrvBatchMonitor monitor;
    monitor.onFile = [&](const wxString&, const wxString& error) {
        if (!error.empty()) throw std::runtime_error("a file did not load");
        course.Next();
    };
    RunBatch(files, mode, PathFromBytes((root / "out" / "report.html").string()), monitor);
    course.Print(what);
}

int Main(int argc, char** argv) {
    std::size_t count = 1000;
    wxString report;
    VecString given;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--files" && i + 1 < argc)
            count = static_cast<std::size_t>(std::atol(argv[++i]));
        else if (argument == "--report" && i + 1 < argc)
            report = PathFromBytes(argv[++i]);
        else
            given.push_back(PathFromBytes(argument));
    }
    char name[] = "/tmp/orvelle-bench-XXXXXX";
    if (mkdtemp(name) == nullptr) return 1;
    const fs::path root = name;
    SetAppDocumentsPath(PathFromBytes((root / "engine").string()));
    DroppingSink sink;
    OrvSetEventSink(&sink);
    auto* context = new BenchContext;
    AppVersion version;
    version.SetAppName("Orvelle");
    context->InitProgramOptions(version);
    context->SetAppVersion(version);
    if (!report.empty()) {
        OrvInstallReportStyle(GetAppDocumentsPath());
        OrvBatchMonitor monitor;
        std::printf("%s\n", RunBatch(given, 2, report, monitor).utf8_str().data());
    } else {
        const VecString files = MakeFiles(root / "in", count);
        MeasureTable(files);
        MeasureBatch(files, root, "batch, nothing saved", 0);
        MeasureBatch(files, root, "batch, files and report", 2);
    }
    delete context;
    OrvSetEventSink(nullptr);
    fs::remove_all(root);
    return 0;
}

class BenchApp : public wxAppConsole {
public:
    bool OnInit() override { return true; }
};

}  // namespace

int main(int argc, char** argv) {
    wxApp::SetInstance(new BenchApp);
    int none = 0;
    char** nothing = nullptr;
    if (!wxEntryStart(none, nothing)) return 1;
    int code = 1;
    try {
        code = Main(argc, argv);
    } catch (const std::exception& exception) {
        std::fprintf(stderr, "%s\n", exception.what());
    }
    std::fflush(nullptr);
    std::_Exit(code);
}
