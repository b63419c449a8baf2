// SPDX-License-Identifier: Apache-2.0
// Sets whole commands against programs that everybody knows, on the same generated files and in one run, and prints
// tables of ratios: growing pictures, a growing number of files, and (as programs of their own, called at the end) the
// engine's algorithms against plain forms of them.
//   orvelle-compare [--files N] [--quick]
// --files bounds the largest folder (1000). --quick leaves out the algorithms. A program that isn't installed gets no
// column.
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "bench/process.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRepeats = 5;

struct Size {
    int width;
    int height;
};
constexpr Size kSizes[] = {{1000, 750}, {2000, 1500}, {4000, 3000}, {8000, 6000}};

// A column: what is set against our command. More than one program are run one after the other, their times added.
struct Peer {
    std::string name;
    std::vector<std::vector<std::string>> programs;
};

const std::vector<std::string> kSums = {"md5sum", "sha1sum", "sha256sum", "sha384sum", "sha512sum"};

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

std::vector<Peer> Installed(const std::vector<Peer>& peers) {
    std::vector<Peer> there;
    for (const Peer& peer : peers) {
        const bool all = std::all_of(peer.programs.begin(), peer.programs.end(),
                                     [](const std::vector<std::string>& program) { return IsInstalled(program[0]); });
        if (all) there.push_back(peer);
        if (!all) std::fprintf(stderr, "left out, not installed: %s\n", peer.name.c_str());
    }
    return there;
}

// The median time of the programs over the files; of one run where there are many.
double SecondsOf(const std::vector<std::string>& program, const std::vector<std::string>& files) {
    std::vector<std::string> arguments = program;
    arguments.insert(arguments.end(), files.begin(), files.end());
    const bench::Cost cost = bench::MedianRun(arguments, files.size() > 1 ? 1 : kRepeats);
    if (cost.exitCode != 0) throw std::runtime_error(program[0] + " ended with " + std::to_string(cost.exitCode));
    return cost.wallSeconds;
}

double SecondsOf(const Peer& peer, const std::vector<std::string>& files) {
    double sum = 0;
    for (const std::vector<std::string>& program : peer.programs) sum += SecondsOf(program, files);
    return sum;
}

Peer Sums() {
    Peer peer{"five checksum programs", {}};
    for (const std::string& sum : kSums) peer.programs.push_back({sum});
    return peer;
}

// One of our commands with its peers: a row for each set of files, and the exponent of growth between the rows.
class Table {
public:
    Table(std::string title, std::vector<std::string> ours, std::vector<Peer> peers)
        : m_title(std::move(title)), m_ours(std::move(ours)), m_peers(Installed(peers)) {
        std::printf("\n%s, in milliseconds (and how many times theirs)\n\n| Files |", m_title.c_str());
        std::printf(" ours |");
        for (const Peer& peer : m_peers) std::printf(" %s |", peer.name.c_str());
        std::printf("\n| --- | --- |");
        for (std::size_t i = 0; i < m_peers.size(); ++i) std::printf(" --- |");
        std::printf("\n");
    }
    // `amount` is what grows: pixels or files.
    void Row(const std::string& name, double amount, const std::vector<std::string>& files) {
        std::vector<double> seconds = {SecondsOf(m_ours, files)};
        std::printf("| %s | %.0f |", name.c_str(), 1e3 * seconds[0]);
        for (const Peer& peer : m_peers) {
            seconds.push_back(SecondsOf(peer, files));
            std::printf(" %.0f (%.2f) |", 1e3 * seconds.back(), seconds[0] / seconds.back());
        }
        std::printf("\n");
        std::fflush(stdout);
        m_amounts.push_back(amount);
        m_seconds.push_back(seconds);
    }
    // From the last row but one to the last: 1 is linear.
    void Growth() const {
        if (m_seconds.size() < 2) return;
        const std::vector<double>& last = m_seconds.back();
        const std::vector<double>& before = m_seconds[m_seconds.size() - 2];
        const double factor = std::log(m_amounts.back() / m_amounts[m_amounts.size() - 2]);
        std::printf("| exponent of growth |");
        for (std::size_t i = 0; i < last.size(); ++i) std::printf(" %.2f |", std::log(last[i] / before[i]) / factor);
        std::printf("\n");
    }

private:
    std::string m_title;
    std::vector<std::string> m_ours;
    std::vector<Peer> m_peers;
    std::vector<double> m_amounts;
    std::vector<std::vector<double>> m_seconds;
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
        if (!fs::exists(made)) MakePhotograph(made, {640, 480}, i % 10 + 1);
        files.push_back((folder / ("photo-" + std::to_string(10000 + i) + ".jpg")).string());
        fs::copy_file(made / "sample.jpg", files.back());
    }
    return files;
}

std::vector<std::string> Ours(const fs::path& root, std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), {ORVELLE_PROGRAM, "--documents", (root / "documents").string(), "--quiet"});
    return arguments;
}

void GrowingPictures(const fs::path& root) {
    Table info("`orvelle info FILE`: metadata, five digests, decoded pixels, signatures, rules", Ours(root, {"info"}),
               {{"exiftool", {{"exiftool"}}},
                {"identify -verbose", {{"identify", "-verbose"}}},
                Sums(),
                {"djpeg", {{"djpeg", "-outfile", "/dev/null"}}},
                {"exiftool, djpeg and the checksums",
                 {{"exiftool"},
                  {"djpeg", "-outfile", "/dev/null"},
                  {"md5sum"},
                  {"sha1sum"},
                  {"sha256sum"},
                  {"sha384sum"},
                  {"sha512sum"}}}});
    for (const Size size : kSizes) {
        const double pixels = 1.0 * size.width * size.height;
        const std::string file = MakePhotograph(root / std::to_string(size.width), size, 1);
        char name[32];
        std::snprintf(name, sizeof name, "%.1f megapixels", pixels / 1e6);
        info.Row(name, pixels, {file});
    }
    info.Growth();
}

void GrowingFolders(const fs::path& root, int most) {
    Table info("`orvelle info --format csv FILES`", Ours(root, {"info", "--format", "csv"}),
               {{"exiftool -csv", {{"exiftool", "-csv"}}}, {"identify -verbose", {{"identify", "-verbose"}}}, Sums()});
    for (int count = 10; count <= most; count *= 10) {
        info.Row(std::to_string(count) + " files", count, MakeFolder(root, count));
    }
    info.Growth();
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

int Main(int argc, char** argv) {
    int most = 1000;
    bool quick = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--files" && i + 1 < argc) {
            most = std::atoi(argv[++i]);
        } else if (argument == "--quick") {
            quick = true;
        } else {
            std::fprintf(stderr, "usage: orvelle-compare [--files N] [--quick]\n");
            return 2;
        }
    }
    char name[] = "/tmp/orvelle-compare-XXXXXX";
    if (mkdtemp(name) == nullptr) throw std::runtime_error("no temporary folder can be made");
    GrowingPictures(name);
    GrowingFolders(name, most);
    if (!quick) Algorithms();
    fs::remove_all(name);
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
