// SPDX-License-Identifier: Apache-2.0
// Measures the engine against programs that everybody knows, on the same files and in one run, and prints ratios.
//   orvelle-bench [--files N] [--folder FOLDER]
// FOLDER (a temporary one by default) holds the generated photographs and is removed when it was made here.
#include <unistd.h>
#include <wx/app.h>
#include <wx/init.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

#include "bench/process.h"
#include "orvcore/orvcore.h"
#include "tolbase/tolbase.h"

namespace {

namespace fs = std::filesystem;
constexpr int kRepeats = 7;

double Time(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double MedianTime(const std::function<void()>& work) {
    std::vector<double> times;
    for (int i = 0; i < kRepeats; ++i) times.push_back(Time(work));
    return bench::Median(times);
}

void PrintRatio(const char* what, double ours, double theirs, const char* against, double bound) {
    std::printf("%-58s %8.1f ms  %8.1f ms  %5.2f  (wanted: at most %.2f) %s\n", what, 1e3 * ours, 1e3 * theirs,
                ours / theirs, bound, against);
}

void Require(const bench::Cost& cost, const std::string& what) {
    if (cost.exitCode != 0) throw std::runtime_error(what + " ended with code " + std::to_string(cost.exitCode));
}

// One 12-megapixel photograph into a slot, against djpeg and md5sum on the same file.
void BenchLoad(const std::string& photograph) {
    OrvContext* context = GetContext();
    const wxString path = wxString::FromUTF8(photograph);
    const auto load = [&] {
        std::thread([&] { context->LoadFile(path, Evidence, wxString()); }).join();
        if (!context->GetImage(Evidence).IsOk()) throw std::runtime_error("the photograph did not load");
    };
    load();  // ExifTool is running and the copy in the cache folder is made from here on
    const double ours = MedianTime(load);
    const bench::Cost decode = bench::MedianRun({"djpeg", "-outfile", "/dev/null", photograph}, kRepeats);
    const bench::Cost hash = bench::MedianRun({"md5sum", photograph}, kRepeats);
    Require(decode, "djpeg");
    Require(hash, "md5sum");
    PrintRatio("load a 12-megapixel JPEG into a slot", ours, decode.wallSeconds + hash.wallSeconds, "djpeg + md5sum",
               1.3);
    std::thread([&] { context->LoadFile(wxString(), Evidence, wxString()); }).join();
}

// Five digests in one reading, against the slowest read from the file and the others computed in memory.
void BenchHashes(const std::string& photograph) {
    const wxString path = wxString::FromUTF8(photograph);
    const std::vector<HashAlgorithm> all = {MD5, SHA1, SHA256, SHA384, SHA512};
    const double together = MedianTime([&] { TcvCalcHashesFromFile(path, all); });
    std::ifstream in(photograph, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    double slowest = 0, computeOfSlowest = 0, compute = 0;
    for (const HashAlgorithm algorithm : all) {
        const double inMemory = MedianTime([&] { TcvCalcHashFromMemory(bytes.data(), bytes.size(), algorithm); });
        const double fromFile = MedianTime([&] { TcvCalcHashFromFile(path, algorithm, true); });
        compute += inMemory;
        if (fromFile > slowest) {
            slowest = fromFile;
            computeOfSlowest = inMemory;
        }
    }
    PrintRatio("five hashes of it in one reading", together, slowest + compute - computeOfSlowest,
               "slowest single hash + compute of the others", 1.1);
}

// A folder of `count` photographs: twenty different ones, each file under a name of its own.
void MakeFolder(const fs::path& folder, int count) {
    fs::create_directories(folder);
    constexpr int kDifferent = 20;
    std::vector<fs::path> originals;
    for (int i = 0; i < kDifferent; ++i) {
        const fs::path made = folder.parent_path() / ("made-" + std::to_string(i));
        Require(bench::Run({ORVELLE_SAMPLE_PROGRAM, "--out", made.string(), "--width", "1024", "--height", "768",
                            "--seed", std::to_string(i + 1)}),
                "orvelle-sample");
        originals.push_back(made / "sample.jpg");
    }
    for (int i = 0; i < count; ++i) {
        char name[32];
        std::snprintf(name, sizeof name, "photo-%05d.jpg", i);
        fs::copy_file(originals[static_cast<std::size_t>(i) % kDifferent], folder / name,
                      fs::copy_options::skip_existing);
    }
}

// Many files through the command, against ExifTool's CSV and the five checksum programs over the same folder.
void BenchFolder(const fs::path& root, int count) {
    const fs::path folder = root / "many";
    MakeFolder(folder, count);
    const std::string documents = (root / "documents").string();
    const auto info = [&](const std::string& of) {
        const bench::Cost cost =
            bench::Run({ORVELLE_PROGRAM, "--documents", documents, "--quiet", "info", "-r", "--format", "csv", of});
        Require(cost, "orvelle info");
        return cost;
    };
    const bench::Cost ours = info(folder.string());
    double theirs = 0;
    const bench::Cost exiftool = bench::Run({"exiftool", "-csv", "-r", folder.string()});
    Require(exiftool, "exiftool");
    theirs += exiftool.wallSeconds;
    for (const char* program : {"md5sum", "sha1sum", "sha256sum", "sha384sum", "sha512sum"}) {
        std::vector<std::string> arguments = {program};
        for (const fs::directory_entry& entry : fs::directory_iterator(folder))
            arguments.push_back(entry.path().string());
        const bench::Cost cost = bench::Run(arguments);
        Require(cost, program);
        theirs += cost.wallSeconds;
    }
    PrintRatio(("info -r --format csv over " + std::to_string(count) + " files").c_str(), ours.wallSeconds, theirs,
               "exiftool -csv + five *sum", 1.0);

    const fs::path tenth = root / "tenth";
    MakeFolder(tenth, count / 10);
    const bench::Cost few = info(tenth.string());
    std::printf("%-58s %8ld kB  %8ld kB  %5.2f\n",
                ("peak memory, " + std::to_string(count) + " files against " + std::to_string(count / 10)).c_str(),
                ours.peakKilobytes, few.peakKilobytes,
                static_cast<double>(ours.peakKilobytes) / static_cast<double>(few.peakKilobytes));
}

void BenchStart() {
    std::vector<double> times;
    for (int i = 0; i < 21; ++i) {
        const bench::Cost cost = bench::Run({ORVELLE_PROGRAM, "--version"});
        Require(cost, "orvelle --version");
        times.push_back(cost.processorSeconds);
    }
    PrintRatio("processor time of orvelle --version", bench::Median(times), 0.060, "60 ms", 1.0);
}

class BenchApp : public wxAppConsole {
public:
    bool OnInit() override { return true; }
};

int Main(int argc, char** argv) {
    int count = 1000;
    fs::path root;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--files" && i + 1 < argc) {
            count = std::atoi(argv[++i]);
        } else if (argument == "--folder" && i + 1 < argc) {
            root = argv[++i];
        } else {
            std::fprintf(stderr, "usage: orvelle-bench [--files N] [--folder FOLDER]\n");
            return 2;
        }
    }
    if (count < 10) count = 10;
    const bool own = root.empty();
    if (own) {
        char name[] = "/tmp/orvelle-bench-XXXXXX";
        if (mkdtemp(name) == nullptr) return 1;
        root = name;
    }
    fs::create_directories(root);
    SetAppDocumentsPath(wxString::FromUTF8((root / "engine").string()));
    OrvContext* context = new OrvContext;
    Require(bench::Run({ORVELLE_SAMPLE_PROGRAM, "--out", (root / "large").string()}), "orvelle-sample");
    const std::string photograph = (root / "large" / "sample.jpg").string();
    std::printf("%-58s %11s  %11s  %5s\n", "", "ours", "theirs", "ratio");
    BenchStart();
    BenchLoad(photograph);
    BenchHashes(photograph);
    BenchFolder(root, count);
    delete context;
    if (own) fs::remove_all(root);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    wxApp::SetInstance(new BenchApp);
    wxInitializer initializer;
    try {
        return Main(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvelle-bench: %s\n", error.what());
        return 1;
    }
}
