// SPDX-License-Identifier: Apache-2.0
// The engine at work for one command of this program: console application, context, interface, worker thread, and the
// hand-shake of one command and one event at a time.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "apps/cli/command.h"

class OrvCommand;
class OrvInterface;

namespace cli {

class CliContext;
class EventSink;

// Threads: made, used and destroyed on the main thread; one at a time.
class Session {
public:
    // Starts the engine and reads the settings; warns of settings that are broken and of a documents folder that can't
    // be written. Throws Failure (ExitInternal) if the application object can't be made.
    explicit Session(Environment& environment);
    // Ends the worker and ExifTool.
    ~Session();
    Session(Session const&) = delete;
    Session& operator=(Session const&) = delete;

    OrvInterface& Interface() { return *m_interface; }
    CliContext& Context() { return *m_context; }

    // For what only looks at files: the engine's cache, which begins with a copy of each loaded file, is switched off,
    // wherever the settings have it. The settings themselves stay as they are.
    void KeepNoCopies();

    // Called on the main thread, some times a second, while a command is waited for.
    void SetWaiting(std::function<void()> waiting) { m_waiting = std::move(waiting); }

    // How long a command may take to end after an interruption before the program leaves without it; 0.5 s at first.
    void SetPatience(std::chrono::milliseconds patience) { m_patience = patience; }

    // Posts the command, waits for its event and, with the worker waiting in turn, calls `read`; then lets the worker
    // go. False if the person has interrupted meanwhile: `read` is not called then.
    template <class Read>
    bool Run(std::unique_ptr<OrvCommand> command, Read read) {
        if (!Await(std::move(command))) return false;
        read();
        Respond();
        return true;
    }

    // False where the settings file is there and can't be understood.
    bool AreSettingsSound() const { return m_settingsSound; }

private:
    bool Await(std::unique_ptr<OrvCommand> command);
    void Respond();
    void CheckSettings();
    void CheckDocuments();

    Environment& m_environment;
    std::unique_ptr<EventSink> m_sink;
    CliContext* m_context = nullptr;  // the interface owns it
    std::unique_ptr<OrvInterface> m_interface;
    std::function<void()> m_waiting;
    std::chrono::milliseconds m_patience{500};
    bool m_settingsSound = true;
    bool m_busy = false;
};

}  // namespace cli
