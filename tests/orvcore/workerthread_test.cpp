// SPDX-License-Identifier: Apache-2.0
#include "orvcore/workerthread.h"

#include <chrono>
#include <memory>
#include <stdexcept>
#include <thread>

#include "tests/support/engine.h"
#include "tolbase/progress.h"

using support::Eventually;
using support::WorkCommand;

namespace {

// What became of a command; outlives it.
struct Fate {
    std::atomic<bool> started{false};
    std::atomic<bool> release{false};
    std::atomic<bool> finished{false};
    std::atomic<bool> deleted{false};
};
using FatePtr = std::shared_ptr<Fate>;

class FatedCommand : public OrvCommand {
public:
    FatedCommand(FatePtr fate, bool waits)
        : OrvCommand(OrvCommandIdNewProject), m_fate(std::move(fate)), m_waits(waits) {}
    ~FatedCommand() override { m_fate->deleted = true; }
    void Execute() override {
        m_fate->started = true;
        while (m_waits && !m_fate->release && !tcvHasAborted()) std::this_thread::yield();
        m_fate->finished = true;
    }

private:
    FatePtr m_fate;
    bool m_waits;
};

class FatedExit : public OrvCommandExit {
public:
    explicit FatedExit(FatePtr fate) : m_fate(std::move(fate)) {}
    ~FatedExit() override { m_fate->deleted = true; }

private:
    FatePtr m_fate;
};

class LoggedCommand : public OrvCommand {
public:
    explicit LoggedCommand(OrvCommandId id) : OrvCommand(id) {}
    void Execute() override {}
    wxString GetCommandLog() const override { return "first part"; }
    wxString GetResultLog() const override { return "second part"; }
    bool LogEnabled() const override { return true; }
};

class Worker : public support::Engine {
protected:
    FatePtr Post(bool waits = false) {
        auto fate = std::make_shared<Fate>();
        context->PostCommand(new FatedCommand(fate, waits));
        return fate;
    }
    FatePtr PostWaiting() {
        FatePtr fate = Post(true);
        EXPECT_TRUE(Eventually([&] { return fate->started.load(); }));
        return fate;
    }
    bool BecomesTrue(std::atomic<bool>& flag) {
        return Eventually([&] { return flag.load(); });
    }
    // Long enough for a worker that must not move to move.
    void GiveTime() { std::this_thread::sleep_for(std::chrono::milliseconds(60)); }
};

OrvCommandEvent* NewEvent(int id) {
    return new OrvCommandEvent(wxEVT_ORV_COMMAND, id, VecParameter());
}

}  // namespace

TEST_F(Worker, ThreePostsWhileBusy_OnlyFirstAndThirdRun) {
    FatePtr const first = PostWaiting();
    FatePtr const second = Post();
    FatePtr const third = Post();
    EXPECT_TRUE(second->deleted);
    EXPECT_EQ(1, context->GetQueueSize());
    first->release = true;
    EXPECT_TRUE(BecomesTrue(first->finished));
    GiveTime();
    EXPECT_FALSE(third->started) << "the worker has to wait for the response";
    EXPECT_EQ(1, context->GetQueueSize());
    iface->PostResponse();
    EXPECT_EQ(0, context->GetQueueSize());
    EXPECT_TRUE(BecomesTrue(third->finished));
    EXPECT_FALSE(second->started);
}

TEST_F(Worker, EveryPostAndEveryLastResponse_TellTheHandler) {
    FatePtr const first = PostWaiting();
    Post();
    EXPECT_EQ(2, progress.posted);
    EXPECT_EQ(0, progress.finished);
    first->release = true;
    iface->PostResponse();
    EXPECT_EQ(1, progress.finished);
}

TEST_F(Worker, ResponseAtQueueSizeZero_StaysZeroAndTellsAgain) {
    iface->PostResponse();
    iface->PostResponse();
    EXPECT_EQ(0, context->GetQueueSize());
    EXPECT_EQ(2, progress.finished);
}

TEST_F(Worker, ClearQueueWhileBusy_LaterResponseStillEndsTheWait) {
    FatePtr const first = PostWaiting();
    FatePtr const second = Post();
    context->ClearQueue();
    EXPECT_EQ(0, context->GetQueueSize());
    EXPECT_TRUE(second->deleted);
    first->release = true;
    EXPECT_TRUE(BecomesTrue(first->finished));
    EXPECT_FALSE(first->deleted);
    iface->PostResponse();
    EXPECT_TRUE(BecomesTrue(first->deleted));
}

TEST_F(Worker, TokenAheadOfTime_ServesExactlyOneWait) {
    iface->PostResponse();
    FatePtr const first = Post();
    EXPECT_TRUE(BecomesTrue(first->deleted));
    FatePtr const second = Post();
    EXPECT_TRUE(BecomesTrue(second->finished));
    GiveTime();
    EXPECT_FALSE(second->deleted);
}

TEST_F(Worker, AbortProcessing_RaisesBothLevelsAndDropsWhatWaits) {
    FatePtr const first = PostWaiting();
    FatePtr const second = Post();
    context->AbortProcessing();
    EXPECT_TRUE(tcvHasAborted());
    EXPECT_TRUE(tcvHasAborted2());
    EXPECT_TRUE(second->deleted);
    EXPECT_EQ(0, context->GetQueueSize());
    EXPECT_TRUE(BecomesTrue(first->finished)) << "the command polls the state itself";
}

TEST_F(Worker, AbortBeforeACommand_DoesNotReachIt) {
    context->AbortProcessing();
    bool aborted = true;
    OnWorker([&] { aborted = tcvHasAborted(); });
    EXPECT_FALSE(aborted);
}

TEST_F(Worker, ThrowingCommand_LeavesQueuesUsableAndMailboxEmpty) {
    context->PostCommand(new WorkCommand([] {
        GetContext()->PushEvent(NewEvent(3));
        throw std::runtime_error("escapes");
    }));
    ASSERT_TRUE(context->GetOrvThread()->WaitForCommandsDone(1, 10000));
    EXPECT_EQ(1, context->GetQueueSize()) << "only the next post resets it";
    EXPECT_EQ(nullptr, context->PopEvent());
    bool ran = false;
    OnWorker([&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_TRUE(recorder.events.empty());
}

TEST_F(Worker, CommandThrowingANumber_IsSwallowed) {
    context->PostCommand(new WorkCommand([] { throw 42; }));
    EXPECT_TRUE(context->GetOrvThread()->WaitForCommandsDone(1, 10000));
}

TEST_F(Worker, PushedEvent_ArrivesBehindThePostedOnes) {
    class Posting : public OrvCommand {
    public:
        Posting() : OrvCommand(OrvCommandIdGenerateReport) {}
        void Execute() override {
            GetContext()->PushEvent(NewEvent(1));
            PostEvent("report", 0, wxString(), -1, VecParameter());
        }
    };
    Run([&] { context->PostCommand(new Posting); });
    EXPECT_EQ((std::vector<int>{14, 1}), recorder.Ids());
    EXPECT_EQ("report", recorder.events[0].GetString());
}

TEST_F(Worker, PushedEvent_IsThereBeforeTheResponse) {
    context->PostCommand(new WorkCommand([] { GetContext()->PushEvent(NewEvent(2)); }));
    EXPECT_TRUE(Eventually([&] {
        recorder.Pump();
        return recorder.events.size() == 1;
    }));
}

TEST_F(Worker, ExitCommand_IsDeletedBeforeItsResponseAndTheThreadGoesOn) {
    auto const fate = std::make_shared<Fate>();
    context->PostCommand(new FatedExit(fate));
    EXPECT_TRUE(BecomesTrue(fate->deleted));
    FatePtr const next = Post();
    GiveTime();
    EXPECT_FALSE(next->started);
    iface->PostResponse();
    EXPECT_TRUE(BecomesTrue(next->finished));
    recorder.Pump();
    EXPECT_EQ(std::vector<int>{17}, recorder.Ids());
}

TEST_F(Worker, TimerFlag_FollowsTheHandler) {
    bool active = false;
    progress.timerEnabled = true;
    OnWorker([&] { active = context->IsTimerActive(); });
    EXPECT_TRUE(active);
    progress.timerEnabled = false;
    OnWorker([&] { active = context->IsTimerActive(); });
    EXPECT_FALSE(active);
}

TEST_F(Worker, TestMode_ResponseIsACopyOfThePushedEvent) {
    std::unique_ptr<OrvCommandEvent> event;
    std::atomic<bool> waiting{false};
    std::thread client([&] {
        waiting = true;
        event.reset(iface->PostTestResponse());
    });
    EXPECT_TRUE(BecomesTrue(waiting));
    GiveTime();
    Run([&] {
        context->PostCommand(new WorkCommand([] {
            OrvCommandEvent* pushed = NewEvent(3);
            pushed->SetMessage("m");
            GetContext()->PushEvent(pushed);
        }));
    });
    client.join();
    ASSERT_NE(nullptr, event);
    EXPECT_EQ(3, event->GetId());
    EXPECT_EQ("m", event->GetMessage());
    EXPECT_EQ(std::vector<int>{3}, recorder.Ids());
}

TEST_F(Worker, TestMode_LogGoesToStandardErrorAndToNoFile) {
    testing::internal::CaptureStderr();
    Run([&] { context->PostCommand(new LoggedCommand(OrvCommandIdNewProject)); });
    std::string const log = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, log.find(" first partsecond part  ")) << log;
    EXPECT_FALSE(wxDirExists(dir / "documents/logs"));
}

TEST_F(Worker, LoggedExit_HasNoResultLine) {
    testing::internal::CaptureStderr();
    Run([&] { context->PostCommand(new LoggedCommand(OrvCommandIdExit)); });
    std::string const log = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, log.find("first part")) << log;
    EXPECT_EQ(std::string::npos, log.find("second part")) << log;
}

TEST_F(Worker, DestroyedWhileIdle_Ends) {
    iface.reset();
    SUCCEED();
}

TEST_F(Worker, DestroyedWhileBusy_AbortsTheCommandAndDeletesIt) {
    FatePtr const busy = PostWaiting();
    FatePtr const waiting = Post();
    iface.reset();
    EXPECT_TRUE(busy->finished);
    EXPECT_TRUE(busy->deleted);
    EXPECT_TRUE(waiting->deleted);
    EXPECT_FALSE(waiting->started);
    EXPECT_FALSE(tcvHasAborted()) << "the abort was meant for that worker alone";
}

TEST_F(Worker, DestroyedWhileACommandLowersTheAbort_StillEnds) {
    std::atomic<bool> started{false};
    context->PostCommand(new WorkCommand([&] {
        started = true;
        for (int raised = 0; raised < 2;) {
            if (!tcvHasAborted()) continue;
            tcvClearAborted();
            ++raised;
        }
    }));
    EXPECT_TRUE(BecomesTrue(started));
    iface.reset();
    SUCCEED();
}

TEST_F(Worker, DestroyedWhileWaitingForAResponse_DeletesTheCommand) {
    FatePtr const fate = Post();
    EXPECT_TRUE(BecomesTrue(fate->finished));
    iface.reset();
    EXPECT_TRUE(fate->deleted);
}

TEST_F(Worker, DestroyedRightBehindAPost_Ends) {
    for (int i = 0; i < 20; ++i) {
        FatePtr const fate = Post(true);
        iface.reset();
        EXPECT_TRUE(fate->deleted);
        context = new support::TestContext;
        iface = std::make_unique<OrvInterface>(context);
        iface->SetTest();
    }
}

namespace {

std::vector<std::string> failedConditions;

void KeepConditions(wxString const&, int, wxString const&, wxString const& condition, wxString const&) {
    failedConditions.emplace_back(condition.utf8_string());
}

}  // namespace

TEST(WorkerWithoutTestMode, PostsFromAnotherThread_AreReported) {
    support::TempDir const dir;
    SetAppDocumentsPath(dir.Path());
    support::ProgressCounter progress;
    support::TestContext context;
    context.SetProgressHandler(&progress);
    wxAssertHandler_t const before = wxSetAssertHandler(KeepConditions);
    std::thread([&] {
        context.PostCommand(new WorkCommand([] {}));
        context.GetOrvThread()->PostResponse(0);
    }).join();
    wxSetAssertHandler(before);
    EXPECT_EQ((std::vector<std::string>{"wxThread::IsMain()", "wxThread::IsMain()"}), failedConditions);
}
