// SPDX-License-Identifier: Apache-2.0
// The built program as a person runs it: its own process, no shell.
#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <map>
#include <string>
#include <vector>

#include "tests/support/photo.h"
#include "tests/support/tempdir.h"

namespace clitest {

struct Ended {
    int status = -1;  // the exit code; 1000 and the signal's number if a signal ended it
    std::string out;
    std::string err;
};

struct Surroundings {
    std::map<std::string, std::string> environment;  // replaces variables of the test's own
    std::string input;                               // standard input
    std::string folder;                              // working folder; the test's own if empty
    std::string outputTo;                            // a file for standard output, such as /dev/full
    bool closeOutput = false;                        // standard output is not there at all
};

// Runs a program with its arguments to its end.
Ended RunProgram(std::string const& program, std::vector<std::string> const& arguments,
                 Surroundings const& surroundings = {});

// The program under test in the background; its standard output can be read line by line.
class Running {
public:
    explicit Running(std::vector<std::string> const& arguments);
    ~Running();
    // Without the line end; empty at the end of the output.
    std::string ReadLine();
    void CloseOutput();
    void Signal(int number) const;
    Ended Wait();

private:
    pid_t m_process = -1;
    int m_output = -1;
    std::string m_errorFile;
};

// A documents folder and a folder for evidence, both thrown away.
class CliTest : public ::testing::Test {
protected:
    // Runs orvelle with --documents.
    Ended Orvelle(std::vector<std::string> arguments, Surroundings const& surroundings = {}) const;
    std::string Documents() const { return Folder() + "/documents"; }
    std::string Folder() const { return std::string(m_folder.Path().utf8_str()); }
    // Path of a file beneath the evidence folder.
    std::string Path(std::string const& name) const { return Folder() + "/evidence/" + name; }
    // Writes there, making folders, and gives the path.
    std::string Write(std::string const& name, std::string const& bytes) const;
    // A small photograph with camera and thumbnail.
    std::string Photo(std::string const& name, int width = 640, int height = 480, unsigned seed = 1) const;

private:
    support::TempDir m_folder;
};

std::string ReadFile(std::string const& path);
void WriteFile(std::string const& path, std::string const& bytes);
bool Exists(std::string const& path);
// Names in a folder, sorted, but for "." and "..".
std::vector<std::string> List(std::string const& folder);
std::vector<std::string> Lines(std::string const& text);
bool Contains(std::string const& text, std::string const& part);
size_t CountOf(std::string const& text, std::string const& part);

}  // namespace clitest
