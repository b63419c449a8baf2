// SPDX-License-Identifier: Apache-2.0
#include "bench/process.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>

extern char** environ;

namespace bench {

namespace {
double Seconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
}
}  // namespace

Cost Run(const std::vector<std::string>& arguments, Output output) {
    std::vector<char*> argv;
    for (const std::string& argument : arguments) argv.push_back(const_cast<char*>(argument.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (output == Output::Dropped) {
        posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
        posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    }
    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    const int failed = posix_spawnp(&child, argv[0], &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (failed != 0) throw std::runtime_error(arguments[0] + " can't be started");
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    Cost cost;
    cost.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    cost.processorSeconds = Seconds(usage.ru_utime) + Seconds(usage.ru_stime);
    cost.peakKilobytes = usage.ru_maxrss;
    cost.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return cost;
}

Cost MedianRun(const std::vector<std::string>& arguments, int times) {
    std::vector<Cost> costs;
    for (int i = 0; i < times; ++i) costs.push_back(Run(arguments));
    std::sort(costs.begin(), costs.end(), [](const Cost& a, const Cost& b) { return a.wallSeconds < b.wallSeconds; });
    return costs[costs.size() / 2];
}

double Median(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return values.empty() ? 0 : values[values.size() / 2];
}

void NoteRatio(const std::string& what, double ratio) {
    const char* path = std::getenv("ORVELLE_RATIOS");
    if (path == nullptr) return;
    std::FILE* file = std::fopen(path, "a");
    if (file == nullptr) throw std::runtime_error(std::string(path) + " can't be written");
    std::fprintf(file, "%.4f\t%s\n", ratio, what.c_str());
    std::fclose(file);
}

}  // namespace bench
