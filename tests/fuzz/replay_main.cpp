// SPDX-License-Identifier: Apache-2.0
// Runs a fuzz target without a fuzzer.
//   fuzz_replay                       lists the targets
//   fuzz_replay TARGET                runs it on its seeds and on damaged copies of them
//   fuzz_replay TARGET FILE...        runs it on files
//   fuzz_replay --write DIR TARGET    writes its seeds into a folder
#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

#include "tests/fuzz/target.h"

namespace {

constexpr size_t CopiesOfEachSeed = 60;

std::vector<fuzz::Target> Targets() {
    using namespace fuzz;
    return {ConfigurationsTarget(), EmbeddedTarget(), ExifToolTarget(), HtmlTarget(),     JpegTarget(),
            PlotTarget(),           PluginTarget(),   ProjectTarget(),  SettingsTarget(), StatusTarget(),
            UserQtTarget(),         UserSmsTarget(),  WebTarget(),      WxJsonTarget()};
}

std::string ReadWhole(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

// Cut short, a byte changed, a part doubled or taken out.
std::string Damaged(std::string bytes, std::mt19937& random) {
    if (bytes.empty()) return std::string(1 + random() % 16, static_cast<char>(random()));
    const size_t at = random() % bytes.size();
    const size_t length = 1 + random() % std::min<size_t>(64, bytes.size());
    switch (random() % 4) {
        case 0:
            bytes.resize(at);
            break;
        case 1:
            bytes[at] = static_cast<char>(random());
            break;
        case 2:
            bytes.insert(at, bytes.substr(random() % bytes.size(), length));
            break;
        default:
            bytes.erase(at, length);
            break;
    }
    return bytes;
}

// What the target is about to be run on, for the report of a crash.
std::string& Current() {
    static std::string bytes;
    return bytes;
}

void KeepForCrash(std::string const& bytes) {
    Current() = bytes;
}

// Writes the input that ends the process into the working folder, as a fuzzer does.
void OnAbort(int number) {
    const int file = open("crash-replay", O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    if (file >= 0 && write(file, Current().data(), Current().size()) >= 0) close(file);
    std::signal(number, SIG_DFL);
    std::raise(number);
}

size_t RunOnSeeds(fuzz::Target const& target) {
    // The same copies in each run.
    std::mt19937 random(1);
    size_t count = 0;
    for (std::string const& seed : target.seeds()) {
        KeepForCrash(seed);
        target.run(seed);
        ++count;
        for (size_t i = 0; i < CopiesOfEachSeed; ++i, ++count) {
            std::string const copy = Damaged(seed, random);
            KeepForCrash(copy);
            target.run(copy);
        }
    }
    target.run(std::string());
    return count + 1;
}

int WriteSeeds(fuzz::Target const& target, std::string const& folder) {
    std::filesystem::create_directories(folder);
    int number = 0;
    for (std::string const& seed : target.seeds()) {
        std::ofstream file(folder + "/seed-" + std::to_string(++number), std::ios::binary);
        if (!file.write(seed.data(), static_cast<std::streamsize>(seed.size()))) return 1;
    }
    return number > 0 ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<std::string> arguments(argv + 1, argv + argc);
    std::string folder;
    if (arguments.size() == 3 && arguments[0] == "--write") {
        folder = arguments[1];
        arguments.erase(arguments.begin(), arguments.begin() + 2);
    }
    fuzz::Start();
    for (const int number : {SIGABRT, SIGSEGV, SIGFPE, SIGBUS}) std::signal(number, OnAbort);
    for (fuzz::Target const& target : Targets()) {
        if (arguments.empty()) std::printf("%s\n", target.name);
        if (arguments.empty() || arguments[0] != target.name) continue;
        if (!folder.empty()) return WriteSeeds(target, folder);
        size_t count = arguments.size() - 1;
        for (size_t i = 1; i < arguments.size(); ++i) target.run(ReadWhole(arguments[i]));
        if (count == 0) count = RunOnSeeds(target);
        std::printf("%s: %zu inputs\n", target.name, count);
#ifdef __SANITIZE_THREAD__
        // wxWidgets' static destructors would take away locks that the engine's thread is blocked on.
        std::fflush(stdout);
        std::_Exit(0);
#endif
        return 0;
    }
    if (arguments.empty()) return 0;
    std::fprintf(stderr, "usage: fuzz_replay [[--write DIR] TARGET | TARGET FILE...]\n");
    return 2;
}
