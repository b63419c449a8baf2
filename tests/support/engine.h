// SPDX-License-Identifier: Apache-2.0
// A running engine for a test: documents folder of its own, context, interface, recorded events. Include the filters'
// headers where a test makes filters.
#pragma once
#include <gtest/gtest.h>
#include <wx/app.h>
#include <wx/event.h>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "orvcore/command.h"
#include "orvcore/context.h"
#include "orvcore/interface.h"
#include "orvcore/workerthread.h"
#include "tests/support/photo.h"
#include "tests/support/tempdir.h"
#include "tolbase/file.h"

namespace support {

// Fills the formats and opens what an application's own context may call.
class TestContext : public OrvContext {
public:
    TestContext() {
        imageFormatsRead = {"jpg", "jpeg", "png", "bmp"};
        imageFormatsWrite = {"jpg", "png"};
        stringImageFormatsRead = "Pictures|*.jpg;*.jpeg;*.png;*.bmp";
        stringImageFormatsWrite = "Pictures|*.jpg;*.png";
    }
    using OrvContext::AddFilterType;
    using OrvContext::CreateEditorVecString;
    using OrvContext::GetConfigurationsFromFilters;
    using OrvContext::ListFolders;
    using OrvContext::LoadKeywords;
    using OrvContext::ParseQtDatabaseString;
    using OrvContext::UpdateBasePath;
};

// Executes a function on the worker thread.
class WorkCommand : public OrvCommand {
public:
    explicit WorkCommand(std::function<void()> work) : OrvCommand(OrvCommandIdNewProject), m_work(std::move(work)) {}
    void Execute() override { m_work(); }

private:
    std::function<void()> m_work;
};

class ProgressCounter : public OrvProgressHandler {
public:
    void OnCommandPosted() override { ++posted; }
    void OnCommandsFinished() override { ++finished; }
    bool IsTimerEnabled() override { return timerEnabled; }
    int posted = 0;
    int finished = 0;
    std::atomic<bool> timerEnabled{false};
};

// Keeps a copy of every event that the engine sends.
class EventRecorder : public wxEvtHandler {
public:
    EventRecorder() {
        Bind(wxEVT_ORV_COMMAND, [this](OrvCommandEvent& event) { events.push_back(event); });
        OrvSetEventSink(this);
    }
    ~EventRecorder() override { OrvSetEventSink(nullptr); }
    // Lets what is queued arrive; main thread only.
    void Pump() { wxAppConsole::GetInstance()->ProcessPendingEvents(); }
    std::vector<int> Ids() const {
        std::vector<int> ids;
        for (OrvCommandEvent const& event : events) ids.push_back(event.GetId());
        return ids;
    }
    std::vector<OrvCommandEvent> events;
};

// True as soon as the condition is, false if it isn't within ten seconds.
inline bool Eventually(std::function<bool()> const& condition) {
    for (int i = 0; i < 5000; ++i) {
        if (condition()) return true;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return condition();
}

// The engine is up, its options are not yet made (see StartOptions) and no filter is registered. Test mode is on:
// commands may be posted from any thread, and no log file is written. The destructor ends the engine, worker included.
class Engine : public ::testing::Test {
protected:
    Engine() {
        SetAppDocumentsPath(dir / "documents");
        context = new TestContext;
        iface = std::make_unique<OrvInterface>(context);
        iface->SetProgressHandler(&progress);
        iface->SetTest();
    }
    ~Engine() override {
        iface.reset();
        recorder.Pump();
    }

    // Makes the options and reads the settings file; call it once the filters are registered.
    void StartOptions() {
        context->InitProgramOptions(AppVersion());
        context->LoadProgramOptions(context->GetProgramOptionsPath());
    }

    // Posts a command by `post`, answers it and waits until the worker is idle; its events are then in
    // `recorder.events`. Not for a command whose Execute throws: that one takes no answer.
    void Run(std::function<void()> const& post) {
        OrvWorkerThread* worker = context->GetOrvThread();
        std::uint64_t const done = worker->GetCommandsDone();
        post();
        iface->PostResponse();
        ASSERT_TRUE(worker->WaitForCommandsDone(done + 1, 60000)) << "the command did not end";
        recorder.Pump();
    }

    // Runs `work` on the worker thread and throws here what it throws there.
    void OnWorker(std::function<void()> const& work) {
        std::exception_ptr thrown;
        Run([&] {
            context->PostCommand(new WorkCommand([&] {
                try {
                    work();
                } catch (...) {
                    thrown = std::current_exception();
                }
            }));
        });
        if (thrown) std::rethrow_exception(thrown);
    }

    // Loads a file into a slot, without any filter.
    void Load(wxString const& path, OrvFileId id = Evidence, wxString const& originalPath = wxString()) {
        OnWorker([&] { context->LoadFile(path, id, originalPath); });
    }

    // Writes a small JPEG into the folder "in" of the test's folder, and gives its path.
    wxString Jpeg(wxString const& name, int width = 64, int height = 48, unsigned seed = 1) {
        return WriteBytes(dir / ("in/" + name), EncodeJpeg(width, height, 90, seed));
    }

    TempDir dir;
    EventRecorder recorder;
    ProgressCounter progress;
    TestContext* context = nullptr;  // the interface owns it
    std::unique_ptr<OrvInterface> iface;
};

}  // namespace support
