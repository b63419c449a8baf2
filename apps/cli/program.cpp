// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/program.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdint>
#include <fstream>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "apps/cli/application.h"
#include "apps/cli/arguments.h"
#include "apps/cli/command.h"
#include "apps/cli/failure.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/output.h"
#include "apps/cli/versions.h"
#include "tolbase/exception.h"

namespace cli {

namespace {

// The option group and the commands as the argument library sees them.
class Arguments {
public:
    explicit Arguments(Environment& environment) : m_app("Forensic examination of digital images", "orvelle") {
        m_app.require_subcommand(1);
        m_app.fallthrough();
        m_app.option_defaults()->always_capture_default(false);
        m_app.set_version_flag("--version", VersionText, "Print the versions of program and components");
        AddText(m_app, "--documents", environment.documents,
                "Folder of settings, databases, cache and logs, instead of the user's own")
            ->type_name("DIR");
        m_app.add_flag_callback(
            "-q,--quiet", [&] { environment.terminal.SetQuiet(true); }, "Errors only: no progress, no warnings");
        m_app.add_flag_callback(
            "-v,--verbose", [&] { environment.terminal.SetVerbose(true); }, "Tell more");
        for (CommandEntry const& entry : AllCommands()) {
            CLI::App* const sub = m_app.add_subcommand(entry.name, entry.summary);
            sub->fallthrough();
            m_commands[sub] = entry.make();
            m_commands[sub]->Define(*sub);
            for (CLI::App* const nested : sub->get_subcommands({})) nested->fallthrough();
        }
        m_help = m_app.add_subcommand("help", "Tell of a command");
        AddList(*m_help, "COMMAND", m_topic, 0, "The command, and a command of it");
    }

    CLI::App& App() { return m_app; }
    bool IsHelp() const { return m_help->parsed(); }

    Command& Chosen() { return *m_commands.at(m_app.get_subcommands().front()); }

    // The help of what was named, or of the program.
    std::string HelpText() {
        CLI::App* topic = &m_app;
        for (std::string const& name : m_topic) {
            const auto isMeant = [&name](CLI::App const* app) { return app->get_name() == name; };
            std::vector<CLI::App*> const found = topic->get_subcommands(isMeant);
            if (found.empty()) throw Failure(ExitUsage, name, "no such command; \"orvelle help\" names them all");
            topic = found.front();
        }
        if (topic != &m_app) return topic->help(Path(topic->get_parent()));
        // Cleared, or it would tell of the command that was given, which is "help".
        m_app.clear();
        return m_app.help();
    }

private:
    static std::string Path(CLI::App const* app) {
        std::string const& name = app->get_name();
        return app->get_parent() == nullptr ? name : Path(app->get_parent()) + " " + name;
    }

    CLI::App m_app;
    std::map<CLI::App const*, std::unique_ptr<Command>> m_commands;
    CLI::App* m_help = nullptr;
    std::vector<std::string> m_topic;
};

void Print(std::string const& text) {
    Output output("", false);
    output.Write(text);
    output.Commit();
}

std::string OneLine(std::string text) {
    // What hides an argument from the library is no part of it.
    text.erase(std::remove(text.begin(), text.end(), '\x01'), text.end());
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

// A file that is opened later must not become standard output because that was closed: what is written to a standard
// descriptor that isn't there fails.
void OccupyStandardDescriptors() {
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // The lowest free number is taken.
        if (fcntl(descriptor, F_GETFD) < 0) static_cast<void>(open("/dev/null", O_RDONLY));
    }
}

// wxWidgets ends without a word where not even a small text finds room, so a limit that leaves the work less than this
// beside the program and its libraries is told at the start.
constexpr uint64_t LeastRoom = 128;

void RequireRoom() {
    constexpr uint64_t Mebi = 1 << 20;
    rlimit limit = {};
    if (getrlimit(RLIMIT_AS, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY) return;
    // The whole address space in pages stands first.
    std::ifstream file("/proc/self/statm");
    uint64_t pages = 0;
    if (!(file >> pages)) return;
    const uint64_t used = pages * static_cast<uint64_t>(sysconf(_SC_PAGESIZE));
    if (limit.rlim_cur >= used + LeastRoom * Mebi) return;
    throw Failure(ExitInternal, "not enough memory",
                  "the limit leaves " + std::to_string((std::max<uint64_t>(limit.rlim_cur, used) - used) / Mebi) +
                      " MiB of address space, and " + std::to_string(LeastRoom) + " are needed");
}

ExitCode Parse(Arguments& arguments, Terminal& terminal, int argc, char const* const* argv, bool& goOn) {
    goOn = false;
    try {
        arguments.App().parse(PrepareArguments(argc, argv));
        goOn = true;
    } catch (CLI::CallForHelp const&) {
        Print(arguments.App().help());
    } catch (CLI::CallForVersion const& version) {
        Print(version.what());
    } catch (CLI::ParseError const& error) {
        terminal.Error("", OneLine(error.what()));
        return ExitUsage;
    }
    return ExitDone;
}

ExitCode Work(Environment& environment, int argc, char const* const* argv) {
    Arguments arguments(environment);
    bool goOn = false;
    const ExitCode parsed = Parse(arguments, environment.terminal, argc, argv, goOn);
    if (!goOn) return parsed;
    if (arguments.IsHelp()) {
        Print(arguments.HelpText());
        return ExitDone;
    }
    RequireRoom();
    const Application application(environment.terminal);
    return arguments.Chosen().Run(environment);
}

}  // namespace

int RunProgram(int argc, char const* const* argv) {
    OccupyStandardDescriptors();
    InstallSignalHandlers();
    Environment environment;
    try {
        return Worse(Work(environment, argc, argv), InterruptionCode());
    } catch (Failure const& failure) {
        environment.terminal.Error(failure.Subject(), failure.what());
        return Worse(failure.Code(), InterruptionCode());
    } catch (TolException const& error) {
        environment.terminal.Error("internal error", error.what());
    } catch (std::exception const& error) {
        environment.terminal.Error("internal error", error.what());
    } catch (...) {
        environment.terminal.Error("internal error", "unknown");
    }
    return ExitInternal;
}

}  // namespace cli
