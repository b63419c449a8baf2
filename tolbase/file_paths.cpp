// SPDX-License-Identifier: Apache-2.0
// Paths: relative and absolute, the user's folders, the browser.
#include <spawn.h>
#include <sys/wait.h>
#include <wx/stdpaths.h>
#include <wx/utils.h>

#include <cstdlib>
#include <mutex>
#include <system_error>
#include <thread>

#include "tolbase/file.h"
#include "tolbase/text.h"

extern char** environ;

namespace {

// The parts between the separators, "." and ".." resolved as names alone: no file is asked for.
VecString Parts(const wxString& path) {
    VecString parts;
    for (const wxString& part : StringToVecString(path, "/", wxTOKEN_STRTOK, true)) {
        if (part == ".") continue;
        if (part == "..") {
            if (!parts.empty()) parts.pop_back();
            continue;
        }
        parts.push_back(part);
    }
    return parts;
}

bool IsAbsolute(const wxString& path) {
    return path.StartsWith("/");
}

std::mutex& DocumentsMutex() {
    static std::mutex mutex;
    return mutex;
}

wxString& DocumentsPath() {
    static wxString path;
    return path;
}

// The desktop as the user's settings name it: XDG_DESKTOP_DIR="$HOME/..." or an absolute path.
wxString DesktopFromSettings(const wxString& home) {
    const char* config = std::getenv("XDG_CONFIG_HOME");
    const wxString folder = config != nullptr && *config == '/' ? PathFromBytes(config) : home + "/.config";
    const wxString text = ReadFile(folder + "/user-dirs.dirs");
    for (const wxString& line : StringToVecString(text, "\n", wxTOKEN_STRTOK, false)) {
        wxString value;
        if (!line.StartsWith("XDG_DESKTOP_DIR=\"", &value) || !value.EndsWith("\"", &value)) continue;
        wxString rest;
        if (value.StartsWith("$HOME", &rest) && (rest.empty() || rest.StartsWith("/"))) value = home + rest;
        if (IsAbsolute(value)) return value;
    }
    return wxString();
}

}  // namespace

wxString GetFilenameNoPath(const wxString& path) {
    return path.AfterLast('/');
}

wxString FilenameAbsoluteToRelative(const wxString& path, const wxString& base) {
    if (!IsAbsolute(path) || !IsAbsolute(base)) return path;
    const VecString to = Parts(path);
    const VecString from = Parts(base);
    std::size_t common = 0;
    while (common < to.size() && common < from.size() && to[common] == from[common]) ++common;
    VecString relative(from.size() - common, "..");
    relative.insert(relative.end(), to.begin() + static_cast<std::ptrdiff_t>(common), to.end());
    return relative.empty() ? wxString(".") : CatVecString(relative, "/");
}

wxString FilenameRelativeToAbsolute(const wxString& path, const wxString& base) {
    if (path.empty() || IsAbsolute(path) || base.empty()) return path;
    const wxString joined = CatVecString(Parts(base + "/" + path), "/");
    return IsAbsolute(base) ? "/" + joined : joined;
}

wxString GetAppDocumentsPath() {
    {
        const std::lock_guard<std::mutex> lock(DocumentsMutex());
        if (!DocumentsPath().empty()) return DocumentsPath();
    }
    return wxStandardPaths::Get().GetDocumentsDir() + "/Orvelle";
}

void SetAppDocumentsPath(const wxString& path) {
    const std::lock_guard<std::mutex> lock(DocumentsMutex());
    DocumentsPath() = path;
    while (DocumentsPath().length() > 1 && DocumentsPath().EndsWith("/")) DocumentsPath().RemoveLast();
}

wxString GetUserDesktopPath() {
    const char* variable = std::getenv("HOME");
    const wxString home = variable != nullptr && *variable != '\0' ? PathFromBytes(variable) : wxGetHomeDir();
    const wxString desktop = DesktopFromSettings(home);
    return desktop.empty() ? home + "/Desktop" : desktop;
}

bool LaunchDefaultBrowserLocalFile(const wxString& path) {
    std::string bytes = PathToBytes(path);
    char* absolute = realpath(bytes.c_str(), nullptr);
    if (absolute == nullptr) return false;
    // An absolute path can't be read as an option.
    bytes = absolute;
    std::free(absolute);
    std::string program = "xdg-open";
    char* arguments[] = {&program[0], &bytes[0], nullptr};
    pid_t process = 0;
    if (posix_spawnp(&process, program.c_str(), nullptr, nullptr, arguments, environ) != 0) return false;
    try {
        // It lives as long as it likes; somebody has to take its result.
        std::thread([process] { waitpid(process, nullptr, 0); }).detach();
    } catch (std::system_error const&) {
        // No thread to be had: the page is shown all the same.
    }
    return true;
}
