// SPDX-License-Identifier: Apache-2.0
// The child process behind exiftool.h and its pipes. Private to this library.
//
// Threads: belongs to one thread, which has to live as long as the child: the kernel kills the child when that thread
// ends, and so with the program, however it ends.
#pragma once
#include <sys/types.h>

#include <string>

class ExifToolProcess {
public:
    ExifToolProcess() = default;
    ~ExifToolProcess() { Kill(); }
    ExifToolProcess(ExifToolProcess const&) = delete;
    ExifToolProcess& operator=(ExifToolProcess const&) = delete;

    // Starts `program` (a path) waiting for questions on its input. False if the system has no process or pipe for it.
    bool Start(std::string const& program);
    bool IsRunning() const { return m_pid > 0; }
    // Where answers arrive; -1 if nothing runs.
    int Output() const { return m_output; }
    // Sends all of it without waiting for long; false if the child doesn't take it.
    bool Send(std::string const& text);
    // Asks it to end, waits for a short time, then kills it.
    void End();
    void Kill();

private:
    void Close();

    pid_t m_pid = -1;
    int m_input = -1;  // our end of a socket
    int m_output = -1;
};

// The path of a program that may be run: `name` itself if it holds a slash, else from the PATH; empty if there is none.
std::string FindExecutable(std::string const& name);
