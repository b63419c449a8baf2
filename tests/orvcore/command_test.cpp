// SPDX-License-Identifier: Apache-2.0
#include "orvcore/command.h"

#include <gtest/gtest.h>
#include <wx/app.h>

#include <memory>

#include "tests/support/tempdir.h"

namespace {

class SilentCommand : public OrvCommand {
public:
    SilentCommand() : OrvCommand(OrvCommandIdSaveProject) {}
    void Execute() override {}
    using OrvCommand::PostEvent;
};

OrvCommandEvent MakeFullEvent() {
    VecParameter parameters;
    parameters.push_back(CreateParameterInt("n", "", 5));
    OrvCommandEvent event(wxEVT_ORV_COMMAND, 3, parameters);
    event.SetString("payload");
    event.SetInt(12);
    event.SetExtraLong(-1);
    event.SetError(-1);
    event.SetActionId(4);
    event.SetMessage("message");
    return event;
}

wxString failedCondition;

void KeepCondition(wxString const&, int, wxString const&, wxString const& condition, wxString const&) {
    failedCondition = condition;
}

}  // namespace

TEST(CommandEvent, DefaultConstructed_HasNoIdNoErrorNoAction) {
    OrvCommandEvent const event;
    EXPECT_EQ(-1, event.GetId());
    EXPECT_EQ(0, event.GetError());
    EXPECT_EQ(-1, event.GetActionId());
    EXPECT_TRUE(event.GetMessage().empty());
    EXPECT_TRUE(event.GetParams().empty());
    EXPECT_EQ(static_cast<int>(wxEVT_ORV_COMMAND), event.GetEventType());
    EXPECT_EQ("OrvCommandEvent", wxString(event.GetClassInfo()->GetClassName()));
    EXPECT_EQ(wxEVT_CATEGORY_THREAD, event.GetEventCategory());
}

TEST(CommandEvent, Cloned_CarriesEverything) {
    OrvCommandEvent const event = MakeFullEvent();
    std::unique_ptr<wxEvent> const clone(event.Clone());
    auto const* copy = dynamic_cast<OrvCommandEvent const*>(clone.get());
    ASSERT_NE(nullptr, copy);
    EXPECT_EQ(3, copy->GetId());
    EXPECT_EQ("payload", copy->GetString());
    EXPECT_EQ(12, copy->GetInt());
    EXPECT_EQ(-1, copy->GetExtraLong());
    EXPECT_EQ(-1, copy->GetError());
    EXPECT_EQ(4, copy->GetActionId());
    EXPECT_EQ("message", copy->GetMessage());
    ASSERT_EQ(1u, copy->GetParameters().size());
    EXPECT_EQ(5, copy->GetParameters()[0].GetValue<int>());
}

TEST(Command, Base_LogsNothing) {
    SilentCommand const command;
    EXPECT_EQ(13, command.GetCommandId());
    EXPECT_TRUE(command.GetCommandLog().empty());
    EXPECT_TRUE(command.GetResultLog().empty());
    EXPECT_FALSE(command.LogEnabled());
}

TEST(EventSink, PostEvent_FillsTheEventAndNamesTheSinkAsItsObject) {
    wxEvtHandler sink;
    std::unique_ptr<OrvCommandEvent> got;
    wxObject* object = nullptr;
    sink.Bind(wxEVT_ORV_COMMAND, [&](OrvCommandEvent& event) {
        object = event.GetEventObject();
        got = std::make_unique<OrvCommandEvent>(event);
    });
    OrvSetEventSink(&sink);
    SilentCommand command;
    command.PostEvent("text", -1, "message", 8, VecParameter{CreateParameterInt("n", "", 6)});
    sink.ProcessPendingEvents();
    OrvSetEventSink(nullptr);
    ASSERT_NE(nullptr, got);
    EXPECT_EQ(13, got->GetId());
    EXPECT_EQ("text", got->GetString());
    EXPECT_EQ(-1, got->GetError());
    EXPECT_EQ("message", got->GetMessage());
    EXPECT_EQ(8, got->GetActionId());
    EXPECT_EQ(6, got->GetParams()[0].GetValue<int>());
    EXPECT_EQ(&sink, object);
}

TEST(EventSink, NoSinkAndNoWindow_AssertsAndLosesTheEvent) {
    OrvSetEventSink(nullptr);
    EXPECT_EQ(nullptr, OrvGetEventDestination());
    wxAssertHandler_t const before = wxSetAssertHandler(KeepCondition);
    OrvCommandExit().Execute();
    wxSetAssertHandler(before);
    EXPECT_EQ("dest", failedCondition);
}

TEST(CommandExit, Execute_QueuesAPlainEventOfId17) {
    wxEvtHandler sink;
    int id = 0;
    wxString text = "unset";
    sink.Bind(wxEVT_ORV_COMMAND, [&](OrvCommandEvent& event) {
        id = event.GetId();
        text = event.GetString();
    });
    OrvSetEventSink(&sink);
    OrvCommandExit().Execute();
    sink.ProcessPendingEvents();
    OrvSetEventSink(nullptr);
    EXPECT_EQ(17, id);
    EXPECT_EQ("", text);
}
