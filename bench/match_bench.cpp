// SPDX-License-Identifier: Apache-2.0
// Measures the signature match over many files: against loading the same files and nothing else, and against itself
// over a tenth of them.
//   orvelle-match-bench [--files N]
#include <unistd.h>
#include <wx/app.h>
#include <wx/init.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/process.h"
#include "orvcore/orvcore.h"
#include "tolbase/tolbase.h"
#include "tolimage/tolimage.h"

namespace {

namespace fs = std::filesystem;
constexpr int kDifferent = 20;

void Require(bench::Cost const& cost, std::string const& what) {
    if (cost.exitCode != 0) throw std::runtime_error(what + " ended with code " + std::to_string(cost.exitCode));
}

// A folder of `count` photographs of 1024 by 768: twenty different ones, each file under a name of its own.
std::vector<std::string> MakeFolder(fs::path const& root, fs::path const& folder, int count) {
    fs::create_directories(folder);
    std::vector<std::string> files;
    for (int i = 0; i < count; ++i) {
        fs::path const made = root / ("made-" + std::to_string(i % kDifferent));
        if (!fs::exists(made)) {
            Require(bench::Run({ORVELLE_SAMPLE_PROGRAM, "--out", made.string(), "--width", "1024", "--height", "768",
                                "--seed", std::to_string(i % kDifferent + 1)}),
                    "orvelle-sample");
        }
        files.push_back((folder / ("photo-" + std::to_string(10000 + i) + ".jpg")).string());
        fs::copy_file(made / "sample.jpg", files.back(), fs::copy_options::skip_existing);
    }
    return files;
}

// What the match can't do without: each file loaded into the Reference slot, ExifTool asked ahead as the command does.
double LoadAll(OrvContext& context, std::vector<std::string> const& files) {
    auto const start = std::chrono::steady_clock::now();
    std::thread([&] {
        for (std::size_t i = 0; i < files.size(); ++i) {
            for (std::size_t ahead = i; ahead < std::min(files.size(), i + 5); ++ahead) {
                if (i == 0 || ahead == i + 4) ExifToolPrefetch(wxString::FromUTF8(files[ahead]));
            }
            context.LoadFile(wxString::FromUTF8(files[i]), Reference, wxString());
        }
        context.LoadFile(wxString(), Reference, wxString());
    }).join();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

class BenchApp : public wxAppConsole {
public:
    bool OnInit() override { return true; }
};

void Main(fs::path const& root, int count) {
    fs::path const many = root / "many";
    fs::path const tenth = root / "tenth";
    std::vector<std::string> const files = MakeFolder(root, many, count);
    MakeFolder(root, tenth, count / 10);
    std::string const documents = (root / "documents").string();
    auto const match = [&](fs::path const& folder) {
        bench::Cost const cost = bench::Run({ORVELLE_PROGRAM, "--documents", documents, "--quiet", "match", files[0],
                                             folder.string(), "--format", "csv"});
        Require(cost, "orvelle match");
        return cost;
    };
    SetAppDocumentsPath(wxString::FromUTF8((root / "engine").string()));
    OrvContext* const context = new OrvContext;
    std::vector<double> load;
    std::vector<double> ours;
    long peak = 0;
    LoadAll(*context, files);  // the copies in the cache folder are made from here on
    for (int i = 0; i < 3; ++i) {
        bench::Cost const cost = match(many);
        ours.push_back(cost.wallSeconds);
        peak = std::max(peak, cost.peakKilobytes);
        load.push_back(LoadAll(*context, files));
    }
    long const few = match(tenth).peakKilobytes;
    std::printf("match over %d files, start included     %8.2f s\n", count, bench::Median(ours));
    std::printf("loading these files, and nothing else     %8.2f s\n", bench::Median(load));
    std::printf("match to loading                          %8.2f\n", bench::Median(ours) / bench::Median(load));
    std::printf("peak memory over %d files %ld kB, over %d files %ld kB, ratio %.3f\n", count, peak, count / 10, few,
                static_cast<double>(peak) / static_cast<double>(few));
    delete context;
}

}  // namespace

int main(int argc, char** argv) {
    int const count = argc == 3 && std::strcmp(argv[1], "--files") == 0 ? std::max(10, std::atoi(argv[2])) : 1000;
    wxApp::SetInstance(new BenchApp);
    wxInitializer const initializer;
    char name[] = "/tmp/orvelle-bench-XXXXXX";
    if (mkdtemp(name) == nullptr) return 1;
    int result = 0;
    try {
        Main(name, count);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "orvelle-match-bench: %s\n", error.what());
        result = 1;
    }
    fs::remove_all(name);
    return result;
}
