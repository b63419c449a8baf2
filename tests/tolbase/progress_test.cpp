// SPDX-License-Identifier: Apache-2.0
#include "tolbase/progress.h"

#include <thread>

#include "tests/support/tempdir.h"

TEST(Progress, FirstLevel_ShowsTotalValueAndText) {
    tcvInitProgress(10);
    tcvSetProgress(3);
    tcvSetProgress(-1);
    tcvSetProgressString("Working");
    const TcvProgress shown = tcvGetProgress();
    EXPECT_EQ(10, shown.total);
    EXPECT_EQ(4, shown.value);
    EXPECT_EQ(wxString("Working"), shown.text);
    tcvInitProgress(5);
    EXPECT_EQ(0, tcvGetProgress().value);
    EXPECT_EQ(wxString(), tcvGetProgress().text);
}

TEST(Progress, SecondLevel_Counts) {
    tcvInitProgress2(3);
    EXPECT_EQ(1, tcvSetProgress2(-1));
    EXPECT_EQ(1, tcvSetProgress2(-1));
    EXPECT_EQ(2, tcvGetProgress2().value);
    tcvSetProgressString2("unit");
    EXPECT_EQ(wxString("unit"), tcvGetProgress2().text);
    EXPECT_EQ(1, tcvSetProgress2(7));
    EXPECT_EQ(7, tcvGetProgress2().value);
    tcvDeinitProgress2();
    EXPECT_EQ(0, tcvGetProgress2().total);
}

TEST(Progress, Abort_LastsUntilItIsCleared) {
    tcvInitProgress(1);
    tcvInitProgress2(1);
    tcvAbortProgress();
    EXPECT_TRUE(tcvHasAborted());
    EXPECT_TRUE(tcvHasAborted());
    EXPECT_FALSE(tcvHasAborted2());
    tcvClearAborted();
    EXPECT_FALSE(tcvHasAborted());
}

TEST(Progress, AbortAll_StopsTheSecondLevelToo) {
    tcvInitProgress2(3);
    tcvAbortAllProgress();
    EXPECT_TRUE(tcvHasAborted());
    EXPECT_TRUE(tcvHasAborted2());
    EXPECT_EQ(0, tcvSetProgress2(-1));
    tcvClearAborted();
    EXPECT_TRUE(tcvHasAborted2()) << "clearing is for the first level";
}

TEST(Progress, Start_LowersItsOwnLevel) {
    tcvAbortAllProgress();
    tcvInitProgress(1);
    EXPECT_FALSE(tcvHasAborted());
    EXPECT_TRUE(tcvHasAborted2());
    tcvInitProgress2(1);
    EXPECT_FALSE(tcvHasAborted2());
    tcvAbortAllProgress();
    tcvDeinitProgress2();
    EXPECT_FALSE(tcvHasAborted2());
    EXPECT_TRUE(tcvHasAborted());
}

TEST(Progress, State_IsProcessWide) {
    tcvClearAborted();
    std::thread([] { tcvAbortProgress(); }).join();
    EXPECT_TRUE(tcvHasAborted());
}

TEST(Progress, ManyThreads_LoseNoStep) {
    tcvInitProgress2(4000);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([] {
            for (int step = 0; step < 1000; ++step) {
                tcvSetProgress2(-1);
                tcvSetProgressString2(tcvGetProgress2().text + "x");
                if (step % 10 == 0) tcvSetProgressString2("");
            }
        });
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(4000, tcvGetProgress2().value);
}
