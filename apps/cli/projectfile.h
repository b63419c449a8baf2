// SPDX-License-Identifier: Apache-2.0
// A project's file as the commands work on it: read whole, changed, and written beside and renamed.
#pragma once

#include <string>

#include "orvcore/project.h"

namespace cli {

// The path with nothing relative in it; links stay as they are.
std::string AbsolutePath(std::string const& path);

// Holds a lock against other runs of this program for as long as it lives. The engine's context has to be there, since
// bookmarks name its filters.
class ProjectFile {
public:
    // Reads the file. Throws Failure (ExitInput) for one that is missing or no project.
    explicit ProjectFile(std::string const& path);
    ~ProjectFile();
    ProjectFile(ProjectFile const&) = delete;
    ProjectFile& operator=(ProjectFile const&) = delete;

    OrvProject const& Project() const { return m_project; }
    // Writes the file with these bookmarks. Throws Failure (ExitOutput); the old file is whole then.
    void Save(std::vector<OrvBookmark> const& bookmarks);
    // The bookmark of a number that counts from 1. Throws Failure (ExitUsage).
    size_t IndexOf(std::string const& number) const;

    // What the file calls itself.
    wxString const& Name() const { return m_name; }
    wxString const& Version() const { return m_version; }

private:
    std::string m_path;  // as it was given
    OrvProject m_project;
    wxString m_name;
    wxString m_version;
    int m_lock = -1;
};

// Writes an empty project. Throws Failure (ExitOutput) if the file exists, unless `force`.
void CreateProjectFile(std::string const& path, bool force);

}  // namespace cli
