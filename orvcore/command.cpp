// SPDX-License-Identifier: Apache-2.0
#include "orvcore/command.h"

#include <wx/app.h>
#include <wx/window.h>

#include <mutex>
#include <utility>

wxDEFINE_EVENT(wxEVT_ORV_COMMAND, OrvCommandEvent);
wxIMPLEMENT_DYNAMIC_CLASS(OrvCommandEvent, wxEvent);

namespace {

// Held while an event is queued, so that a sink that is taken back may be deleted at once.
std::mutex sinkMutex;
wxEvtHandler* eventSink = nullptr;

wxEvtHandler* FindDestination() {
    if (eventSink != nullptr) return eventSink;
    // A program without a window has an application object that is no wxApp.
    auto* application = dynamic_cast<wxApp*>(wxAppConsole::GetInstance());
    return application != nullptr ? application->GetTopWindow() : nullptr;
}

}  // namespace

OrvCommandEvent::OrvCommandEvent() : wxEvent(-1, wxEVT_ORV_COMMAND) {}

OrvCommandEvent::OrvCommandEvent(int eventType, int id, VecParameter const& params)
    : wxEvent(id, eventType), m_params(params) {}

OrvCommandEvent::OrvCommandEvent(OrvCommandEvent const& other)
    : wxEvent(other),
      wxEventAnyPayloadMixin(other),
      m_params(other.m_params),
      m_message(other.m_message.Clone()),
      m_error(other.m_error),
      m_actionId(other.m_actionId) {
    SetString(other.GetString().Clone());
}

OrvCommandEvent::~OrvCommandEvent() = default;

wxEvent* OrvCommandEvent::Clone() const {
    return new OrvCommandEvent(*this);
}

wxEventCategory OrvCommandEvent::GetEventCategory() const {
    return wxEVT_CATEGORY_THREAD;
}

void OrvSetEventSink(wxEvtHandler* sink) {
    std::lock_guard<std::mutex> const lock(sinkMutex);
    eventSink = sink;
}

wxEvtHandler* OrvGetEventDestination() {
    std::lock_guard<std::mutex> const lock(sinkMutex);
    return FindDestination();
}

void OrvQueueEvent(wxEvent* event, bool setObject) {
    bool queued = false;
    {
        std::lock_guard<std::mutex> const lock(sinkMutex);
        if (wxEvtHandler* dest = FindDestination()) {
            if (setObject && event->GetEventObject() == nullptr) event->SetEventObject(dest);
            wxQueueEvent(dest, event);
            queued = true;
        }
    }
    if (queued) return;
    delete event;
    wxEvtHandler const* const dest = nullptr;
    wxASSERT(dest);
}

wxString OrvCommand::GetCommandLog() const {
    return wxString();
}

wxString OrvCommand::GetResultLog() const {
    return wxString();
}

bool OrvCommand::LogEnabled() const {
    return false;
}

void OrvCommand::PostEvent(wxString const& text, int error, wxString message, int actionId,
                           VecParameter const& params) {
    auto* event = new OrvCommandEvent(wxEVT_ORV_COMMAND, m_commandId, VecParameter());
    event->SetString(text.Clone());
    event->SetError(error);
    event->SetActionId(actionId);
    event->SetMessage(message);
    event->SetParams(params);
    OrvQueueEvent(event, true);
}

void OrvCommandExit::Execute() {
    OrvQueueEvent(new OrvCommandEvent(wxEVT_ORV_COMMAND, GetCommandId(), VecParameter()));
}
