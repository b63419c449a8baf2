// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/session.h"

#include <unistd.h>
#include <wx/app.h>
#include <wx/log.h>
#include <wx/translation.h>

#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <mutex>

#include "apps/cli/clicontext.h"
#include "apps/cli/failure.h"
#include "apps/cli/interrupt.h"
#include "apps/cli/text.h"
#include "apps/cli/versions.h"
#include "orvcore/interface.h"
#include "orvcore/reportstyle.h"
#include "tolbase/file.h"
#include "tolbase/json.h"
#include "tolimage/exiftool.h"

namespace cli {

// Takes the engine's events as they are queued, on whatever thread; the main thread waits for them.
class EventSink : public wxEvtHandler {
public:
    void QueueEvent(wxEvent* event) override {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_events.emplace_back(event);
        m_arrived.notify_one();
    }

    void AddPendingEvent(wxEvent const& event) override { QueueEvent(event.Clone()); }

    // Null if none came in time.
    std::unique_ptr<wxEvent> Wait(std::chrono::milliseconds time) {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_arrived.wait_for(lock, time, [this] { return !m_events.empty(); })) return nullptr;
        std::unique_ptr<wxEvent> event = std::move(m_events.front());
        m_events.pop_front();
        return event;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_arrived;
    std::deque<std::unique_ptr<wxEvent>> m_events;
};

namespace {

using std::chrono::milliseconds;

// How often a waiting main thread looks for a signal.
constexpr milliseconds SignalPoll{50};

// Places in the group "General Settings".
constexpr size_t OptionCacheLocation = 4;
constexpr size_t OptionCustomCacheFolder = 5;
constexpr int CacheLocationCustom = 2;
// No folder can be made beneath a file, and nobody, not even root, can take this one away; the engine bears a cache
// that can't be written.
constexpr char const* NowhereFolder = "/proc/self/exe/cache";

class QuietProgress : public OrvProgressHandler {
public:
    void OnCommandPosted() override {}
    void OnCommandsFinished() override {}
    bool IsTimerEnabled() override { return false; }
};

QuietProgress& Progress() {
    static QuietProgress progress;
    return progress;
}

std::string AbsolutePath(std::string const& path) {
    std::error_code failed;
    const std::filesystem::path absolute = std::filesystem::absolute(path, failed);
    return failed ? path : absolute.lexically_normal().string();
}

}  // namespace

Session::Session(Environment& environment) : m_environment(environment), m_sink(std::make_unique<EventSink>()) {
    if (!environment.documents.empty()) SetAppDocumentsPath(PathFromBytes(AbsolutePath(environment.documents)));
    CheckDocuments();
    OrvSetEventSink(m_sink.get());
    m_context = new CliContext;
    m_interface = std::make_unique<OrvInterface>(m_context);
    m_interface->SetProgressHandler(&Progress());
    AppVersion version;
    version.SetAppName("orvelle");
    version.SetEngineRevision(FromUtf8(ProgramVersion()));
    version.SetBuildDate(FromUtf8(BuildDate()));
    version.SetPlatform(FromUtf8(PlatformName()));
    version.SetLangDir(OrvFindShared("lang"));
    m_context->InitProgramOptions(version);
    m_context->SetAppVersion(version);
    if (!environment.isForPeople) wxTranslations::Set(nullptr);
    CheckSettings();
    m_interface->LoadProgramOptions(m_context->GetProgramOptionsPath());
}

Session::~Session() {
    // A command that does not heed the abort state can't be waited for once the person wants to leave.
    if (m_busy) {
        ExifToolShutdown();
        m_environment.terminal.ClearProgress();
        RemoveFileToRemove();
        _exit(InterruptionCode());
    }
    m_interface.reset();
    OrvSetEventSink(nullptr);
    ExifToolShutdown();
    wxLog::FlushActive();
}

void Session::CheckDocuments() {
    const wxString folder = GetAppDocumentsPath();
    const std::string bytes = PathToBytes(folder);
    if (CreateDirIfNotExists(folder) && access(bytes.c_str(), W_OK | X_OK) == 0) return;
    m_environment.terminal.Warning(bytes, "the documents folder can't be written: no log, no cache");
}

void Session::CheckSettings() {
    const wxString path = m_context->GetProgramOptionsPath();
    std::error_code failed;
    if (!std::filesystem::exists(PathToBytes(path), failed)) return;
    wxString reason;
    try {
        if (!JsonFromFile(path).IsObject()) reason = "not an object of option groups";
    } catch (TolException const& error) {
        reason = error.GetMessage();
    }
    m_settingsSound = reason.empty();
    if (m_settingsSound) return;
    m_environment.terminal.Warning(PathToBytes(path), "broken settings, defaults are used: " + ToUtf8(reason));
}

void Session::KeepNoCopies() {
    VecVecParameter options = m_interface->GetProgramOptions();
    VecParameter& general = options.Group("General Settings");
    general.at(OptionCacheLocation).Set(boost::any(CacheLocationCustom));
    general.at(OptionCustomCacheFolder).Set(wxString(NowhereFolder));
    m_interface->SetProgramOptions(options);
}

bool Session::Await(std::unique_ptr<OrvCommand> command) {
    if (m_busy || IsInterrupted()) return false;
    const int id = command->GetCommandId();
    m_context->PostCommand(command.release());
    bool aborted = false;
    milliseconds waited{0};
    while (!aborted || waited < m_patience) {
        const std::unique_ptr<wxEvent> event = m_sink->Wait(SignalPoll);
        wxLog::FlushActive();
        if (m_waiting) m_waiting();
        if (event && event->GetId() == id) {
            if (!IsInterrupted()) return true;
            Respond();
            return false;
        }
        if (aborted) waited += SignalPoll;
        if (IsInterrupted() && !aborted) {
            m_interface->AbortProcessing();
            aborted = true;
        }
    }
    m_busy = true;
    return false;
}

void Session::Respond() {
    m_interface->PostResponse();
}

}  // namespace cli
