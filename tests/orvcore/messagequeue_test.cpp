// SPDX-License-Identifier: Apache-2.0
#include "orvcore/messagequeue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

struct Counted {
    explicit Counted(int& deletions) : m_deletions(deletions) {}
    ~Counted() { ++m_deletions; }
    int& m_deletions;
};

}  // namespace

TEST(MessageQueue, SeveralPosts_ComeOutInTheirOrder) {
    OrvMessageQueue<int> queue;
    ASSERT_TRUE(queue.IsOk());
    for (int value : {7, 8, 9}) EXPECT_EQ(OrvMsgQueueNoError, queue.Post(value));
    for (int expected : {7, 8, 9}) {
        int value = 0;
        EXPECT_EQ(OrvMsgQueueNoError, queue.Receive(value));
        EXPECT_EQ(expected, value);
    }
}

TEST(MessageQueue, ReceiveOnAnEmptyQueue_WaitsForAPost) {
    OrvMessageQueue<int> queue;
    std::atomic<int> received{0};
    std::thread receiver([&] {
        int value = 0;
        queue.Receive(value);
        received = value;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(0, received);
    queue.Post(5);
    receiver.join();
    EXPECT_EQ(5, received);
}

TEST(MessageQueue, FourReceivers_GetOneValueEach) {
    OrvMessageQueue<int> queue;
    std::atomic<int> sum{0};
    std::vector<std::thread> receivers;
    for (int i = 0; i < 4; ++i) {
        receivers.emplace_back([&] {
            int value = 0;
            queue.Receive(value);
            sum += value;
        });
    }
    for (int value : {1, 20, 300, 4000}) queue.Post(value);
    for (std::thread& receiver : receivers) receiver.join();
    EXPECT_EQ(4321, sum);
}

TEST(MessageQueue, ClearP_DeletesWhatIsWaitingAndToleratesNull) {
    OrvMessageQueue<Counted*> queue;
    int deletions = 0;
    queue.Post(new Counted(deletions));
    queue.Post(nullptr);
    queue.Post(new Counted(deletions));
    EXPECT_EQ(OrvMsgQueueNoError, queue.ClearP());
    EXPECT_EQ(2, deletions);
}

TEST(MessageQueue, Clear_DropsPointersWithoutFreeingThem) {
    int deletions = 0;
    {
        Counted value(deletions);
        OrvMessageQueue<Counted*> queue;
        queue.Post(&value);
        EXPECT_EQ(OrvMsgQueueNoError, queue.Clear());
        EXPECT_EQ(0, deletions);
    }
    EXPECT_EQ(1, deletions);
}

TEST(MessageQueue, Cleared_StaysUsable) {
    OrvMessageQueue<int> queue;
    queue.Post(1);
    queue.Clear();
    queue.Post(2);
    int value = 0;
    EXPECT_EQ(OrvMsgQueueNoError, queue.Receive(value));
    EXPECT_EQ(2, value);
}

TEST(MessageQueue, Close_EndsAWaitingReceive) {
    OrvMessageQueue<int> queue;
    std::atomic<int> answer{-1};
    std::thread receiver([&] {
        int value = 0;
        answer = queue.Receive(value);
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    queue.Close();
    receiver.join();
    EXPECT_EQ(2, answer);
}

TEST(MessageQueue, Closed_RefusesEvenWhatIsWaiting) {
    OrvMessageQueue<int> queue;
    queue.Post(3);
    queue.Close();
    int value = 0;
    EXPECT_EQ(OrvMsgQueueMiscError, queue.Receive(value));
    EXPECT_EQ(0, value);
}
