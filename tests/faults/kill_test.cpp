// SPDX-License-Identifier: Apache-2.0
// Programs that are killed while they write the user's files.
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <random>
#include <thread>

#include "tests/faults/documents.h"

namespace {

constexpr int UsualRounds = 40;

class KillFaults : public faults::Documents {
protected:
    // A process that writes the two states in turn until it is killed.
    static pid_t StartWriting(faults::Document const& document) {
        pid_t const child = fork();
        if (child != 0) return child;
        for (bool second = true;; second = !second) document.save(second);
    }
    void KillOnce(faults::Document const& document, unsigned microseconds) {
        pid_t const child = StartWriting(document);
        ASSERT_GT(child, 0);
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
        ASSERT_EQ(0, ::kill(child, SIGKILL));
        int status = 0;
        ASSERT_EQ(child, ::waitpid(child, &status, 0));
        ASSERT_TRUE(WIFSIGNALED(status)) << document.name << " ended by itself";
        std::string const now = support::ReadBytes(document.path);
        ASSERT_TRUE(now == document.states[0] || now == document.states[1])
            << document.name << ": " << now.size() << " bytes";
    }
};

TEST_F(KillFaults, ProgramKilledWhileItWrites_LeavesTheOldOrTheNewFile) {
    std::mt19937 random(faults::Seed());
    int const rounds = faults::Rounds(UsualRounds);
    for (faults::Document const& document : Make()) {
        for (int round = 0; round < rounds; ++round) {
            KillOnce(document, random() % 15000);
            if (HasFailure()) return;
        }
        // What the killed ones left beside it hinders nobody.
        EXPECT_NE(std::optional<bool>(false), document.save(true)) << document.name;
        EXPECT_EQ(document.states[1], support::ReadBytes(document.path)) << document.name;
        std::printf("faults: %s: %d kills\n", document.name.c_str(), rounds);
    }
}

}  // namespace
