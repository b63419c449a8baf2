// SPDX-License-Identifier: Apache-2.0
// What the worker thread executes, and what it sends back: the base of all commands, their numbers and their event.
//
// Threads: a command is made on the thread that posts it; Execute and the log operations run on the worker. An event is
// made on the worker and handled by the application's event loop. Ownership: whoever posts a command gives it away, the
// worker deletes it; an event belongs to the event queue that it was put into.
#pragma once
#include <wx/event.h>
#include <wx/string.h>

#include "tolbase/export.h"
#include "tolbase/parameter.h"

// Numbers of the commands. The event of a command carries the same number as its id; 0 to 3 are events only.
enum OrvCommandId : int {
    OrvCommandIdFilterStarted = 0,  // a filter run begins and has to compute something
    OrvCommandIdFilterDone = 1,
    OrvCommandIdFilterFailed = 2,
    OrvCommandIdActionDone = 3,
    OrvCommandIdSetFileConfigure = 4,
    OrvCommandIdDeleteCache = 5,
    OrvCommandIdReprocessCurrent = 6,
    OrvCommandIdCallAction = 7,
    OrvCommandIdDumpImages = 8,
    OrvCommandIdAddBookmark = 9,
    OrvCommandIdSetBookmarks = 10,
    OrvCommandIdNewProject = 11,
    OrvCommandIdLoadProject = 12,
    OrvCommandIdSaveProject = 13,
    OrvCommandIdGenerateReport = 14,
    OrvCommandIdCallGenericAction = 15,
    OrvCommandIdExit = 17,
};

// The event of a command. The payload string (GetString) is the command's result; an action's event carries the
// action's number as int and its error as extra long, too.
class ORV_API OrvCommandEvent : public wxEvent, public wxEventAnyPayloadMixin {
public:
    // Id -1, type wxEVT_ORV_COMMAND, no parameters.
    OrvCommandEvent();
    OrvCommandEvent(int eventType, int id, VecParameter const& params);
    // Shares no text with the original, since the copy may travel to another thread.
    OrvCommandEvent(OrvCommandEvent const& other);
    OrvCommandEvent& operator=(OrvCommandEvent const&) = delete;
    ~OrvCommandEvent() override;

    wxEvent* Clone() const override;
    wxEventCategory GetEventCategory() const override;

    // 0 is success, -1 a failure.
    int GetError() const { return m_error; }
    void SetError(int error) { m_error = error; }
    // -1 where there is none.
    int GetActionId() const { return m_actionId; }
    void SetActionId(int actionId) { m_actionId = actionId; }
    wxString GetMessage() const { return m_message; }
    void SetMessage(wxString const& message) { m_message = message; }
    VecParameter GetParams() const { return m_params; }
    VecParameter GetParameters() const { return m_params; }
    void SetParams(VecParameter const& params) { m_params = params; }

private:
    VecParameter m_params;
    wxString m_message;
    int m_error = 0;
    int m_actionId = -1;

    wxDECLARE_DYNAMIC_CLASS(OrvCommandEvent);
};

wxDECLARE_EXPORTED_EVENT(ORV_API, wxEVT_ORV_COMMAND, OrvCommandEvent);

// Sets where the engine's events go. Null, the start value, means the application's top window. An application without
// a window sets a handler of its own and takes it back (null) before the handler ends.
ORV_API void OrvSetEventSink(wxEvtHandler* sink);
// Where the engine's events go now; null if there is neither a sink nor a top window.
ORV_API wxEvtHandler* OrvGetEventDestination();
// Puts an event into the destination's queue, and gives it away. Without a destination it is reported by an assertion
// and deleted. An event without an object of its own gets the destination as its object if `setObject` is true.
ORV_API void OrvQueueEvent(wxEvent* event, bool setObject = false);

// One piece of work for the worker thread.
class ORV_API OrvCommand {
public:
    explicit OrvCommand(OrvCommandId commandId) : m_commandId(commandId) {}
    OrvCommand(OrvCommand const&) = default;
    OrvCommand(OrvCommand&&) = default;
    OrvCommand& operator=(OrvCommand const&) = default;
    OrvCommand& operator=(OrvCommand&&) = default;
    virtual ~OrvCommand() = default;

    // Does the work, on the worker thread. What it throws is lost together with its event: a command deals with its own
    // failures.
    virtual void Execute() = 0;
    // The first and the second part of the command's line in the log; empty here.
    virtual wxString GetCommandLog() const;
    virtual wxString GetResultLog() const;
    // Whether the command is logged at all; asked before Execute. False here.
    virtual bool LogEnabled() const;

    OrvCommandId GetCommandId() const { return m_commandId; }

protected:
    // Queues an event with this command's id to the application at once. `text` becomes the payload string.
    void PostEvent(wxString const& text, int error, wxString message, int actionId, VecParameter const& params);

private:
    OrvCommandId m_commandId;
};

// Tells the application, by its event, that it may close. The worker goes on behind it.
class ORV_API OrvCommandExit : public OrvCommand {
public:
    OrvCommandExit() : OrvCommand(OrvCommandIdExit) {}
    void Execute() override;
};
