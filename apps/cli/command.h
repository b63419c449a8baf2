// SPDX-License-Identifier: Apache-2.0
// One sub-command: what it takes, and what it does. A new one is a file of its own and a line in commands.cpp.
#pragma once

#include <CLI/App.hpp>
#include <memory>
#include <string>
#include <vector>

#include "apps/cli/exitcodes.h"
#include "apps/cli/terminal.h"

namespace cli {

// What all commands share: the global options, and the way to the person.
struct Environment {
    Terminal terminal;
    std::string documents;  // --documents; empty for the default
    // What is told is for people: in the language of the settings. Everything else is English, whatever they say.
    bool isForPeople = false;
};

class Command {
public:
    virtual ~Command() = default;

    // Adds the command's options and arguments. They are kept in the command itself.
    virtual void Define(CLI::App& app) = 0;
    // Does the work. Throws Failure where it can't go on.
    virtual ExitCode Run(Environment& environment) = 0;
};

// How a command is known; it is made only if it is asked for or to tell its help.
struct CommandEntry {
    char const* name;
    char const* summary;
    std::unique_ptr<Command> (*make)();
};

// In the order of the help.
std::vector<CommandEntry> const& AllCommands();

std::unique_ptr<Command> MakeBatchCommand();
std::unique_ptr<Command> MakeBookmarkCommand();
std::unique_ptr<Command> MakeCacheCommand();
std::unique_ptr<Command> MakeCarveCommand();
std::unique_ptr<Command> MakeCompareCommand();
std::unique_ptr<Command> MakeCoordinatesCommand();
std::unique_ptr<Command> MakeDimplesCommand();
std::unique_ptr<Command> MakeDownloadCommand();
std::unique_ptr<Command> MakeExifCommand();
std::unique_ptr<Command> MakeFilterCommand();
std::unique_ptr<Command> MakeFiltersCommand();
std::unique_ptr<Command> MakeInfoCommand();
std::unique_ptr<Command> MakeJpegCommand();
std::unique_ptr<Command> MakeMatchCommand();
std::unique_ptr<Command> MakeOptionsCommand();
std::unique_ptr<Command> MakeMultiCommand();
std::unique_ptr<Command> MakePluginCommand();
std::unique_ptr<Command> MakeProjectCommand();
std::unique_ptr<Command> MakeQtCommand();
std::unique_ptr<Command> MakeTableCommand();
std::unique_ptr<Command> MakeVerifyCommand();
std::unique_ptr<Command> MakeSearchCommand();
std::unique_ptr<Command> MakeSmsCommand();
std::unique_ptr<Command> MakeSocialCommand();

}  // namespace cli
