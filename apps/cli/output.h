// SPDX-License-Identifier: Apache-2.0
// Where results go: standard output, or a file that is complete or not there at all.
#pragma once

#include <string>
#include <string_view>

namespace cli {

// Threads: the main thread's alone. A file is written beside its place under a name of its own and takes its place in
// Commit; without Commit nothing of it stays.
class Output {
public:
    // An empty path is standard output. Throws Failure (ExitOutput) for a file that exists unless `force`, and for one
    // that can't be written.
    Output(std::string path, bool force);
    ~Output();
    Output(Output const&) = delete;
    Output& operator=(Output const&) = delete;

    // Gathered, and handed on by Flush or when much has come together. Throws Failure (ExitOutput).
    void Write(std::string_view bytes);
    void Flush();
    // For a writer that wants a path instead of Write: the file beside, whose ending is that of the final name. It may
    // be replaced by another one of that name, which then is what Commit puts into place. Empty for standard output and
    // for a device.
    std::string const& Beside() const { return m_temporary; }
    // Puts a file into its place. Throws Failure (ExitOutput).
    void Commit();

    // Nobody reads on: standard output is a pipe whose other end is closed. What is written is dropped then.
    bool IsClosed() const { return m_closed; }
    bool IsStandardOutput() const { return m_path.empty(); }
    // Whether a path names the file that is to be replaced.
    bool IsFile(std::string const& path) const;

private:
    void OpenFile(bool force);
    [[noreturn]] void Fail(std::string const& reason);

    std::string m_path;
    std::string m_temporary;
    std::string m_buffer;
    int m_descriptor = -1;
    bool m_force;
    bool m_closed = false;
};

}  // namespace cli
