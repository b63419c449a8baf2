// SPDX-License-Identifier: Apache-2.0
// A folder of a test's own.
#pragma once
#include <stdlib.h>
#include <wx/string.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>

namespace support {

// Made at construction beneath the system's temporary folder, removed with all it holds at destruction.
class TempDir {
public:
    TempDir() {
        char name[] = "/tmp/orvelle-test-XXXXXX";
        if (mkdtemp(name) == nullptr) throw std::runtime_error("no temporary folder");
        path_ = std::filesystem::canonical(name);
    }
    ~TempDir() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;

    // Absolute, symbolic links resolved, no separator at its end.
    wxString Path() const { return wxString::FromUTF8(path_.string()); }
    wxString operator/(const wxString& name) const { return Path() + "/" + name; }

private:
    std::filesystem::path path_;
};

// Writes `bytes` to `path`, making the folders above it, and returns `path`.
inline wxString WriteBytes(const wxString& path, const std::string& bytes) {
    const std::filesystem::path target(std::string(path.utf8_str()));
    std::filesystem::create_directories(target.parent_path());
    std::ofstream(target, std::ios::binary | std::ios::trunc).write(bytes.data(), static_cast<long>(bytes.size()));
    return path;
}

// The bytes of a file; empty where it can't be read.
inline std::string ReadBytes(const wxString& path) {
    std::ifstream in(std::string(path.utf8_str()), std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

}  // namespace support

// How GoogleTest shows a text.
inline void PrintTo(const wxString& text, std::ostream* out) {
    *out << '"' << text.utf8_str().data() << '"';
}
