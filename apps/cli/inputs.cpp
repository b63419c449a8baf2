// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/inputs.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <unordered_set>

#include "apps/cli/failure.h"
#include "apps/cli/interrupt.h"
#include "tolbase/limits.h"

namespace cli {

namespace {

using Extensions = std::unordered_set<std::string>;

std::string LowerExtension(std::string const& name) {
    const size_t point = name.rfind('.');
    if (point == std::string::npos) return "";
    std::string extension = name.substr(point + 1);
    for (char& c : extension) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    }
    return extension;
}

class Finder {
public:
    Finder(Extensions const& extensions, bool recursive, bool mayBeEmpty, Terminal& terminal, Inputs& inputs)
        : m_extensions(extensions),
          m_recursive(recursive),
          m_mayBeEmpty(mayBeEmpty),
          m_terminal(terminal),
          m_inputs(inputs) {}

    void AddFolder(std::string const& folder) {
        std::vector<std::string> found;
        const bool wholly = Walk(folder, found);
        if (found.empty() && wholly && m_mayBeEmpty) {
            m_terminal.Error("", "no images in " + folder);
        } else if (found.empty() && wholly) {
            Tell(folder, "no images");
        }
        std::sort(found.begin(), found.end());
        m_inputs.files.insert(m_inputs.files.end(), found.begin(), found.end());
    }

private:
    void Tell(std::string const& path, std::string const& reason) {
        m_terminal.Error(path, reason);
        m_inputs.hasFailures = true;
    }

    // A stack of its own: a deep tree of folders must not exhaust the program's.
    // False if a folder could not be read, which is told.
    bool Walk(std::string const& top, std::vector<std::string>& found) {
        bool wholly = true;
        std::vector<std::string> pending = {top};
        while (!pending.empty()) {
            const std::string folder = pending.back();
            pending.pop_back();
            const std::unique_ptr<DIR, int (*)(DIR*)> handle(opendir(folder.c_str()), closedir);
            if (!handle) {
                Tell(folder, "can't be read: " + std::string(std::strerror(errno)));
                wholly = false;
                continue;
            }
            const std::string prefix = folder.back() == '/' ? folder : folder + "/";
            while (dirent const* const entry = readdir(handle.get())) {
                const std::string name = entry->d_name;
                if (name != "." && name != "..") Look(prefix + name, name, found, pending);
            }
        }
        return wholly;
    }

    void Look(std::string const& path, std::string const& name, std::vector<std::string>& found,
              std::vector<std::string>& pending) const {
        struct stat status = {};
        if (lstat(path.c_str(), &status) != 0) return;
        if (S_ISDIR(status.st_mode)) {
            if (m_recursive) pending.push_back(path);
            return;
        }
        if (m_extensions.count(LowerExtension(name)) == 0) return;
        if (S_ISLNK(status.st_mode) && (stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))) return;
        if (S_ISREG(status.st_mode)) found.push_back(path);
    }

    Extensions const& m_extensions;
    bool m_recursive;
    bool m_mayBeEmpty;
    Terminal& m_terminal;
    Inputs& m_inputs;
};

class Descriptor {
public:
    explicit Descriptor(std::string const& list)
        : m_number(list == "-" ? STDIN_FILENO : open(list.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY)) {}
    ~Descriptor() {
        if (m_number > STDERR_FILENO) close(m_number);
    }
    Descriptor(Descriptor const&) = delete;
    Descriptor& operator=(Descriptor const&) = delete;
    int Get() const { return m_number; }

private:
    int m_number;
};

std::string ReadWhole(std::string const& list) {
    const auto fail = [&list](std::string const& reason) {
        throw Failure(ExitInput, list == "-" ? "standard input" : list, reason);
    };
    const Descriptor in(list);
    if (in.Get() < 0) fail(errno == ENOENT ? "no such file" : "can't be read: " + std::string(std::strerror(errno)));
    std::string bytes;
    std::vector<char> block(64 * 1024);
    for (;;) {
        const ssize_t count = read(in.Get(), block.data(), block.size());
        if (count < 0 && errno == EINTR && !IsInterrupted()) continue;
        if (IsInterrupted()) return "";
        if (count < 0) fail("can't be read: " + std::string(std::strerror(errno)));
        if (count == 0) return bytes;
        bytes.append(block.data(), static_cast<size_t>(count));
        if (!IsWithinTolLimit(TolLimit::FileBytes, bytes.size())) fail("larger than the limit \"file-bytes\"");
    }
}

Inputs Find(std::vector<std::string> const& names, std::vector<std::string> const& extensions, bool recursive,
            bool mayBeEmpty, Terminal& terminal) {
    const Extensions known(extensions.begin(), extensions.end());
    Inputs inputs;
    Finder finder(known, recursive, mayBeEmpty, terminal, inputs);
    for (std::string const& name : names) {
        struct stat status = {};
        if (!name.empty() && stat(name.c_str(), &status) == 0 && S_ISDIR(status.st_mode)) {
            finder.AddFolder(name);
        } else {
            inputs.files.push_back(name);
        }
    }
    return inputs;
}

}  // namespace

std::string ReadText(std::string const& path) {
    return ReadWhole(path);
}

std::vector<std::string> ReadNameList(std::string const& list) {
    const std::string bytes = ReadWhole(list);
    const char end = bytes.find('\0') == std::string::npos ? '\n' : '\0';
    std::vector<std::string> names;
    for (size_t from = 0; from < bytes.size();) {
        const size_t to = std::min(bytes.find(end, from), bytes.size());
        if (to > from) names.push_back(bytes.substr(from, to - from));
        from = to + 1;
    }
    return names;
}

Inputs FindInputs(std::vector<std::string> const& names, std::vector<std::string> const& extensions, bool recursive,
                  Terminal& terminal) {
    return Find(names, extensions, recursive, false, terminal);
}

Inputs FindInputsIfAny(std::vector<std::string> const& names, std::vector<std::string> const& extensions,
                       bool recursive, Terminal& terminal) {
    return Find(names, extensions, recursive, true, terminal);
}

}  // namespace cli
