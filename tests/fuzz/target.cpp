// SPDX-License-Identifier: Apache-2.0
#include "tests/fuzz/target.h"

#include <fcntl.h>
#include <unistd.h>
#include <wx/app.h>
#include <wx/init.h>
#include <wx/log.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>

#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolbase/text.h"

namespace fuzz {

namespace {

std::string& FolderBytes() {
    static std::string folder;
    return folder;
}

class FuzzApp : public wxAppConsole {
public:
    bool OnInit() override { return true; }
};

void FailAssert(wxString const& file, int line, wxString const&, wxString const& condition, wxString const&) {
    std::fprintf(stderr, "assertion \"%s\" at %s:%d\n", condition.utf8_str().data(), file.utf8_str().data(), line);
    std::abort();
}

void RemoveFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(FolderBytes(), ignored);
}

}  // namespace

void Require(bool holds, char const* what) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

void Start() {
    std::string name = access("/dev/shm", W_OK) == 0 ? "/dev/shm/orvelle-fuzz-XXXXXX" : "/tmp/orvelle-fuzz-XXXXXX";
    Require(mkdtemp(name.data()) != nullptr, "there is a folder for temporary files");
    FolderBytes() = name;
    std::atexit(RemoveFolder);
    setenv("HOME", name.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (name + "/.config").c_str(), 1);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    wxApp::SetInstance(new FuzzApp);
    int count = 0;
    char** none = nullptr;
    Require(wxEntryStart(count, none), "wxWidgets starts");
    wxSetAssertHandler(FailAssert);
    wxLog::EnableLogging(false);
    TolSetMessageHandler([](wxString const&, wxString const&) {});
    SetAppDocumentsPath(Folder() + "/documents");
    // A picture that claims more is refused before memory is taken, as a larger one is by the ordinary limits.
    SetTolLimit(TolLimit::PixelsPerImage, 1U << 20);
}

wxString Folder() {
    return PathFromBytes(FolderBytes());
}

InputFile::InputFile(wxString const& name)
    : m_path(Folder() + "/" + name),
      m_descriptor(open(PathToBytes(m_path).c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)) {
    Require(m_descriptor >= 0, "the input file can be made");
}

wxString const& InputFile::Hold(std::string const& bytes) const {
    Require(ftruncate(m_descriptor, 0) == 0, "the input file can be emptied");
    const auto size = static_cast<ssize_t>(bytes.size());
    Require(pwrite(m_descriptor, bytes.data(), bytes.size(), 0) == size, "the input file can be written");
    return m_path;
}

std::string BytesOf(wxString const& path) {
    std::string bytes;
    ReadFileBytes(path, bytes);
    return bytes;
}

std::vector<std::string> Lines(std::string const& bytes) {
    std::vector<std::string> lines;
    size_t start = 0;
    for (size_t end = bytes.find('\n'); end != std::string::npos; end = bytes.find('\n', start)) {
        lines.push_back(bytes.substr(start, end - start));
        start = end + 1;
    }
    lines.push_back(bytes.substr(start));
    return lines;
}

wxString Text(std::string const& bytes) {
    return TolFromUtf8(bytes);
}

}  // namespace fuzz
