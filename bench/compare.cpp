// SPDX-License-Identifier: Apache-2.0
// Sets whole commands against programs that everybody knows, on the same generated files and in one run, and prints
// tables of ratios: growing pictures, a growing number of files, and (by programs of their own, called at the end) the
// engine's algorithms against plain forms of them. A list of all ratios, the worst first, ends it.
//   orvelle-compare [--files N] [--quick]
// --files bounds the largest folder (1000). --quick leaves out the largest picture and the algorithms. A program that
// isn't installed gets no column, and the table says so. Ours and theirs take turns, some rounds; what is told are the
// medians of the processor time, with all threads and children, and of the time by the clock, which other work on the
// machine changes more.
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "bench/process.h"

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

// Rounds end with whichever comes first; there is always one.
constexpr int kMostRounds = 7;
constexpr std::chrono::seconds kRoundsTime{15};

struct Size {
    int width;
    int height;
};
constexpr Size kSizes[] = {{1000, 750}, {2000, 1500}, {4000, 3000}, {8000, 6000}};

struct Program {
    std::vector<std::string> arguments;
    bool oneFileEach = false;  // takes no more than one file
};

struct Times {
    double processor = 0;
    double wall = 0;
};

// What a round has measured, by the program's arguments: a program that several columns name runs once.
using Round = std::map<std::vector<std::string>, Times>;

// A column: programs whose times are added.
struct Column {
    std::string name;
    std::vector<Program> programs;
    // They do much of what ours does, so the ratio belongs into the list at the end.
    bool isWhole = false;
};

bool IsInstalled(const std::string& program) {
    const char* path = std::getenv("PATH");
    const std::string folders = path != nullptr ? path : "/usr/bin";
    for (std::size_t at = 0; at <= folders.size();) {
        const std::size_t end = std::min(folders.find(':', at), folders.size());
        if (access((folders.substr(at, end - at) + "/" + program).c_str(), X_OK) == 0) return true;
        at = end + 1;
    }
    return false;
}

void Add(Times& times, std::vector<std::string> arguments) {
    const bench::Cost cost = bench::Run(arguments);
    if (cost.exitCode != 0) throw std::runtime_error(arguments[0] + " ended with " + std::to_string(cost.exitCode));
    times.processor += cost.processorSeconds;
    times.wall += cost.wallSeconds;
}

Times TimesOf(const Program& program, const std::vector<std::string>& files) {
    Times times;
    std::vector<std::string> arguments = program.arguments;
    if (!program.oneFileEach) {
        arguments.insert(arguments.end(), files.begin(), files.end());
        Add(times, arguments);
        return times;
    }
    arguments.emplace_back();
    for (const std::string& file : files) {
        arguments.back() = file;
        Add(times, arguments);
    }
    return times;
}

Times TimesOf(const Column& column, const std::vector<std::string>& files, Round& round) {
    Times sum;
    for (const Program& program : column.programs) {
        auto measured = round.find(program.arguments);
        if (measured == round.end()) {
            measured = round.emplace(program.arguments, TimesOf(program, files)).first;
        }
        sum.processor += measured->second.processor;
        sum.wall += measured->second.wall;
    }
    return sum;
}

Times MedianOf(const std::vector<Times>& rounds) {
    std::vector<double> processor;
    std::vector<double> wall;
    for (const Times& times : rounds) {
        processor.push_back(times.processor);
        wall.push_back(times.wall);
    }
    return {bench::Median(processor), bench::Median(wall)};
}

// One of our commands, the first column, and its peers: a row for each set of files, and the growth from row to row.
class Table {
public:
    Table(std::string title, Column ours, const std::vector<Column>& peers) : m_title(std::move(title)) {
        m_columns.push_back(std::move(ours));
        std::string missing;
        for (const Column& peer : peers) {
            const bool all = std::all_of(peer.programs.begin(), peer.programs.end(),
                                         [](const Program& program) { return IsInstalled(program.arguments[0]); });
            if (all) m_columns.push_back(peer);
            if (!all) missing += (missing.empty() ? "" : "; ") + peer.name;
        }
        std::printf("\n%s\n\nMilliseconds of processor time / by the clock (and how many times theirs).\n",
                    m_title.c_str());
        if (!missing.empty()) std::printf("Left out, not installed: %s.\n", missing.c_str());
        std::printf("\n| Files |");
        for (const Column& column : m_columns) std::printf(" %s |", column.name.c_str());
        std::printf("\n| --- |");
        for (std::size_t i = 0; i < m_columns.size(); ++i) std::printf(" --- |");
        std::printf("\n");
    }

    // `amount` is what grows: pixels or files.
    void Row(const std::string& name, double amount, const std::vector<std::string>& files) {
        std::vector<std::vector<Times>> rounds(m_columns.size());
        const Clock::time_point start = Clock::now();
        for (int number = 0; number < kMostRounds && (number == 0 || Clock::now() - start < kRoundsTime); ++number) {
            Round round;
            for (std::size_t i = 0; i < m_columns.size(); ++i) rounds[i].push_back(TimesOf(m_columns[i], files, round));
        }
        std::vector<Times> medians;
        for (const std::vector<Times>& each : rounds) medians.push_back(MedianOf(each));
        Print(name, medians, rounds[0].size());
        m_amounts.push_back(amount);
        m_medians.push_back(medians);
    }

    // Of the processor time, from the first row to the last and from the last but one: 1 is linear.
    void Growth() const {
        if (m_medians.size() < 2) return;
        PrintGrowth("exponent of growth, first to last", 0);
        if (m_medians.size() > 2) PrintGrowth("exponent of growth, last step", m_medians.size() - 2);
    }

private:
    void Print(const std::string& name, const std::vector<Times>& medians, std::size_t rounds) const {
        const Times& ours = medians[0];
        std::printf("| %s, %zu rounds | %.0f / %.0f |", name.c_str(), rounds, 1e3 * ours.processor, 1e3 * ours.wall);
        for (std::size_t i = 1; i < medians.size(); ++i) {
            const Times& theirs = medians[i];
            const double ratio = ours.processor / theirs.processor;
            std::printf(" %.0f / %.0f (%.2f / %.2f) |", 1e3 * theirs.processor, 1e3 * theirs.wall, ratio,
                        ours.wall / theirs.wall);
            if (m_columns[i].isWhole) bench::NoteRatio(m_title + ", " + name + ", to " + m_columns[i].name, ratio);
        }
        std::printf("\n");
        std::fflush(stdout);
    }
    void PrintGrowth(const char* name, std::size_t from) const {
        const double factor = std::log(m_amounts.back() / m_amounts[from]);
        std::printf("| %s |", name);
        for (std::size_t i = 0; i < m_columns.size(); ++i) {
            const double grown = m_medians.back()[i].processor / m_medians[from][i].processor;
            std::printf(" %.2f |", std::log(grown) / factor);
        }
        std::printf("\n");
    }

    std::string m_title;
    std::vector<Column> m_columns;
    std::vector<double> m_amounts;
    std::vector<std::vector<Times>> m_medians;
};

std::string MakePhotograph(const fs::path& folder, Size size, int seed) {
    const bench::Cost cost =
        bench::Run({ORVELLE_SAMPLE_PROGRAM, "--out", folder.string(), "--width", std::to_string(size.width), "--height",
                    std::to_string(size.height), "--seed", std::to_string(seed)});
    if (cost.exitCode != 0) throw std::runtime_error("orvelle-sample failed");
    return (folder / "sample.jpg").string();
}

std::vector<std::string> MakeFolder(const fs::path& root, int count) {
    const fs::path folder = root / ("files-" + std::to_string(count));
    fs::create_directories(folder);
    std::vector<std::string> files;
    for (int i = 0; i < count; ++i) {
        const fs::path made = root / ("made-" + std::to_string(i % 10));
        if (!fs::exists(made)) MakePhotograph(made, {1024, 768}, i % 10 + 1);
        files.push_back((folder / ("photo-" + std::to_string(10000 + i) + ".jpg")).string());
        fs::copy_file(made / "sample.jpg", files.back());
    }
    return files;
}

Column Ours(const fs::path& root, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {ORVELLE_PROGRAM, "--documents", (root / "documents").string(), "--quiet"});
    return {"ours", {{std::move(arguments)}}};
}

std::vector<Column> Peers(const Program& exiftool) {
    const Program djpeg{{"djpeg", "-outfile", "/dev/null"}, true};
    std::vector<Program> sums;
    for (const char* sum : {"md5sum", "sha1sum", "sha256sum", "sha384sum", "sha512sum"}) sums.push_back({{sum}});
    std::vector<Program> metadata = sums;
    metadata.push_back(exiftool);
    std::vector<Program> all = metadata;
    all.push_back(djpeg);
    return {{"exiftool", {exiftool}},
            {"identify -verbose", {{{"identify", "-verbose"}}}, true},
            {"five checksum programs", sums},
            {"djpeg on each", {djpeg}},
            {"exiftool and the checksums", metadata, true},
            {"exiftool, the checksums and djpeg", all, true}};
}

void GrowingPictures(const fs::path& root, bool quick) {
    Table info("`orvelle info --extended FILE`", Ours(root, {"info", "--extended"}), Peers({{"exiftool"}}));
    for (const Size size : kSizes) {
        if (quick && size.width > 4000) break;
        const double pixels = 1.0 * size.width * size.height;
        const std::string file = MakePhotograph(root / std::to_string(size.width), size, 1);
        char name[32];
        std::snprintf(name, sizeof name, "%.1f megapixels", pixels / 1e6);
        info.Row(name, pixels, {file});
    }
    info.Growth();
}

void GrowingFolders(const fs::path& root, int most) {
    std::vector<Column> peers = Peers({{"exiftool", "-csv"}});
    // Half a second for each picture.
    peers.erase(peers.begin() + 1);
    Table brief("`orvelle info --format csv FILES`", Ours(root, {"info", "--format", "csv"}), peers);
    std::vector<std::vector<std::string>> folders;
    for (int count = std::max(most / 30, 1); count <= most;
         count = count < most ? std::min(count * 6, most) : most + 1) {
        folders.push_back(MakeFolder(root, count));
    }
    for (const auto& files : folders) {
        brief.Row(std::to_string(files.size()) + " files", static_cast<double>(files.size()), files);
    }
    brief.Growth();
    Table extended("`orvelle info --extended --format csv FILES`",
                   Ours(root, {"info", "--extended", "--format", "csv"}), peers);
    extended.Row(std::to_string(most) + " files", most, folders.back());
}

// The benches of the algorithms stand beside this program and print tables of their own.
void Algorithms() {
    const fs::path folder = fs::read_symlink("/proc/self/exe").parent_path();
    for (const char* name : {"orvelle-filters-bench", "orvelle-social-bench"}) {
        std::printf("\n%s\n\n", name);
        std::fflush(stdout);
        const bench::Cost cost = bench::Run({(folder / name).string()}, bench::Output::Shown);
        if (cost.exitCode != 0) throw std::runtime_error(std::string(name) + " failed");
    }
}

void PrintWorstFirst(const fs::path& ratios) {
    std::vector<std::pair<double, std::string>> all;
    std::ifstream in(ratios);
    double ratio = 0;
    for (std::string what; in >> ratio && std::getline(in >> std::ws, what);) all.emplace_back(ratio, what);
    std::sort(all.rbegin(), all.rend());
    std::printf("\nAll ratios of processor time, the worst first\n\n| Ratio | Of |\n| --- | --- |\n");
    for (const auto& [value, name] : all) std::printf("| %.2f | %s |\n", value, name.c_str());
}

int Main(int argc, char** argv) {
    int most = 1000;
    bool quick = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--files" && i + 1 < argc) {
            most = std::max(std::atoi(argv[++i]), 10);
        } else if (argument == "--quick") {
            quick = true;
        } else {
            std::fprintf(stderr, "usage: orvelle-compare [--files N] [--quick]\n");
            return 2;
        }
    }
    char name[] = "/tmp/orvelle-compare-XXXXXX";
    if (mkdtemp(name) == nullptr) throw std::runtime_error("no temporary folder can be made");
    const fs::path root = name;
    setenv("ORVELLE_RATIOS", (root / "ratios").c_str(), 1);
    GrowingPictures(root, quick);
    GrowingFolders(root, most);
    if (!quick) Algorithms();
    PrintWorstFirst(root / "ratios");
    fs::remove_all(root);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return Main(argc, argv);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "orvelle-compare: %s\n", error.what());
        return 1;
    }
}
