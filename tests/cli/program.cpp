// SPDX-License-Identifier: Apache-2.0
#include "tests/cli/program.h"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/support/gate.h"

extern char** environ;

namespace clitest {

namespace {

constexpr char const* Binary = ORVELLE_PROGRAM;

std::string TemporaryFile() {
    char name[] = "/tmp/orvelle-cli-XXXXXX";
    const int descriptor = mkstemp(name);
    if (descriptor >= 0) close(descriptor);
    return name;
}

std::vector<char*> Pointers(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

std::vector<std::string> Environment(std::map<std::string, std::string> const& changes) {
    std::vector<std::string> variables;
    for (char** variable = environ; *variable != nullptr; ++variable) {
        const std::string text = *variable;
        if (changes.count(text.substr(0, text.find('='))) == 0) variables.push_back(text);
    }
    for (auto const& [name, value] : changes) variables.push_back(name + "=" + value);
    return variables;
}

int StatusOf(pid_t process) {
    int status = 0;
    waitpid(process, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status);
}

std::string Take(std::string const& path) {
    std::string bytes = ReadFile(path);
    unlink(path.c_str());
    return bytes;
}

}  // namespace

Ended RunProgram(std::string const& program, std::vector<std::string> const& arguments,
                 Surroundings const& surroundings) {
    const std::string in = TemporaryFile();
    const std::string out = TemporaryFile();
    const std::string err = TemporaryFile();
    WriteFile(in, surroundings.input);
    std::vector<std::string> texts = {program};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = Environment(surroundings.environment);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (!surroundings.folder.empty()) posix_spawn_file_actions_addchdir_np(&actions, surroundings.folder.c_str());
    std::string const& target = surroundings.outputTo.empty() ? out : surroundings.outputTo;
    posix_spawn_file_actions_addopen(&actions, 0, in.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, target.c_str(), O_WRONLY, 0);
    if (surroundings.closeOutput) posix_spawn_file_actions_addclose(&actions, 1);
    posix_spawn_file_actions_addopen(&actions, 2, err.c_str(), O_WRONLY, 0);
    pid_t process = -1;
    support::PassGate();
    const int failed =
        posix_spawnp(&process, program.c_str(), &actions, nullptr, Pointers(texts).data(), Pointers(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    Ended ended;
    if (failed == 0) ended.status = StatusOf(process);
    support::PassGate();
    ended.out = Take(out);
    ended.err = Take(err);
    unlink(in.c_str());
    return ended;
}

Running::Running(std::vector<std::string> const& arguments) : m_errorFile(TemporaryFile()) {
    int ends[2] = {-1, -1};
    if (pipe2(ends, O_CLOEXEC) != 0) return;
    std::vector<std::string> texts = {Binary};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, ends[1], 1);
    posix_spawn_file_actions_addopen(&actions, 2, m_errorFile.c_str(), O_WRONLY, 0);
    posix_spawnp(&m_process, Binary, &actions, nullptr, Pointers(texts).data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    close(ends[1]);
    m_output = ends[0];
}

Running::~Running() {
    CloseOutput();
    if (m_process > 0) {
        kill(m_process, SIGKILL);
        StatusOf(m_process);
    }
    unlink(m_errorFile.c_str());
}

std::string Running::ReadLine() {
    std::string line;
    char c = 0;
    while (read(m_output, &c, 1) == 1 && c != '\n') line.push_back(c);
    return line;
}

void Running::CloseOutput() {
    if (m_output >= 0) close(m_output);
    m_output = -1;
}

void Running::Signal(int number) const {
    kill(m_process, number);
}

Ended Running::Wait() {
    Ended ended;
    char buffer[4096];
    ssize_t count = 0;
    while (m_output >= 0 && (count = read(m_output, buffer, sizeof buffer)) > 0) {
        ended.out.append(buffer, static_cast<size_t>(count));
    }
    ended.status = StatusOf(m_process);
    m_process = -1;
    ended.err = ReadFile(m_errorFile);
    return ended;
}

Ended CliTest::Orvelle(std::vector<std::string> arguments, Surroundings const& surroundings) const {
    arguments.insert(arguments.begin(), {"--documents", Documents()});
    return RunProgram(Binary, arguments, surroundings);
}

std::string CliTest::Write(std::string const& name, std::string const& bytes) const {
    const std::string path = Path(name);
    std::filesystem::create_directories(std::filesystem::path(path).parent_path());
    WriteFile(path, bytes);
    return path;
}

std::string CliTest::Photo(std::string const& name, int width, int height, unsigned seed) const {
    const std::string thumbnail = support::EncodeJpeg(160, 120, 75, seed);
    return Write(
        name, support::WithExif(support::EncodeJpeg(width, height, 90, seed), "Acme Optics", "Shooter 5", thumbnail));
}

std::string ReadFile(std::string const& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

void WriteFile(std::string const& path, std::string const& bytes) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

bool Exists(std::string const& path) {
    return access(path.c_str(), F_OK) == 0;
}

std::vector<std::string> List(std::string const& folder) {
    std::vector<std::string> names;
    std::error_code none;
    for (auto const& entry : std::filesystem::directory_iterator(folder, none)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::vector<std::string> Lines(std::string const& text) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n', start)) {
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    if (start < text.size()) lines.push_back(text.substr(start));
    return lines;
}

bool Contains(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

size_t CountOf(std::string const& text, std::string const& part) {
    size_t count = 0;
    for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
    return count;
}

}  // namespace clitest
