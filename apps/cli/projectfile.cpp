// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/projectfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

#include "apps/cli/failure.h"
#include "apps/cli/output.h"
#include "apps/cli/text.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/json.h"

namespace cli {

namespace {

// A parser's message from the place on: "line 1, column 1: ...".
std::string FromLine(wxString const& message) {
    const std::string text = ToUtf8(message);
    const size_t line = text.find("line ");
    return line == std::string::npos ? text : text.substr(line);
}

wxJSONValue ReadProject(std::string const& path) {
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0) {
        throw Failure(ExitInput, path, errno == ENOENT ? "no such file" : std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) throw Failure(ExitInput, path, "not a regular file");
    std::string bytes;
    if (!ReadFileBytes(PathFromBytes(path), bytes)) throw Failure(ExitInput, path, "can't be read");
    if (!IsUtf8(bytes)) throw Failure(ExitInput, path, "not a project file: not UTF-8");
    wxJSONValue content;
    try {
        content = JsonFromText(FromUtf8(bytes));
    } catch (TolException const& error) {
        throw Failure(ExitInput, path, "not a project file: " + FromLine(error.GetMessage()));
    }
    // A file without the list would lose all that it holds at the next change.
    if (!content.IsObject() || !content.ItemAt("Bookmarks").IsArray()) {
        throw Failure(ExitInput, path, "not a project file: no list \"Bookmarks\"");
    }
    return content;
}

}  // namespace

std::string AbsolutePath(std::string const& path) {
    std::error_code failed;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
    return failed ? path : absolute.lexically_normal().string();
}

ProjectFile::ProjectFile(std::string const& path) : m_path(path) {
    const std::string absolute = AbsolutePath(path);
    const std::string folder = std::filesystem::path(absolute).parent_path().string();
    m_lock = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_lock >= 0) flock(m_lock, LOCK_EX);
    try {
        const wxJSONValue content = ReadProject(path);
        m_name = content.ItemAt("Name").AsString();
        m_version = content.ItemAt("Version").AsString();
        m_project.LoadProject(PathFromBytes(absolute));
    } catch (TolException const& error) {
        if (m_lock >= 0) close(m_lock);
        throw Failure(ExitInput, path, "not a project file: " + FromLine(error.GetMessage()));
    } catch (Failure const&) {
        if (m_lock >= 0) close(m_lock);
        throw;
    }
}

ProjectFile::~ProjectFile() {
    if (m_lock >= 0) close(m_lock);
}

void ProjectFile::Save(std::vector<OrvBookmark> const& bookmarks) {
    m_project.SetBookmarks(bookmarks);
    try {
        m_project.SaveProject(m_project.GetFilename());
    } catch (TolException const&) {
        throw Failure(ExitOutput, m_path, "can't be written");
    }
}

size_t ProjectFile::IndexOf(std::string const& number) const {
    const size_t count = m_project.GetBookmarks().size();
    const bool digits = !number.empty() && number.size() < 10 &&
                        std::all_of(number.begin(), number.end(), [](char c) { return c >= '0' && c <= '9'; });
    const size_t value = digits ? std::stoul(number) : 0;
    if (value == 0 || value > count) {
        throw Failure(ExitUsage, m_path, "no bookmark " + number + ": the project has " + std::to_string(count));
    }
    return value - 1;
}

void CreateProjectFile(std::string const& path, bool force) {
    struct stat status = {};
    if (!force && lstat(path.c_str(), &status) == 0) throw Failure(ExitOutput, path, "exists");
    const std::string bytes =
        wxJSONWriter(wxJSONWRITER_STYLED, 0, 3).WriteUtf8(static_cast<JsonObject const&>(OrvProject()).WriteToJson()) +
        "\n";
    Output output(path, force);
    output.Write(bytes);
    output.Commit();
}

}  // namespace cli
