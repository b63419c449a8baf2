// SPDX-License-Identifier: Apache-2.0
// The program killed, without memory, without room on the disk, and with an ExifTool that dies, hangs or lies.
#include <filesystem>

#include "tests/faults/limited.h"
#include "tests/faults/rounds.h"

using clitest::Contains;
using clitest::Ended;
using clitest::ReadFile;
using faults::Limits;
using faults::Program;

namespace {

constexpr char const* Binary = ORVELLE_PROGRAM;

class ProgramFaults : public clitest::CliTest {
protected:
    std::vector<std::string> Arguments(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"--documents", Documents()});
        return arguments;
    }
    Ended Run(std::vector<std::string> const& arguments, Limits const& limits = {}) const {
        return Program(Binary, Arguments(arguments), Folder(), limits).Wait();
    }
    std::vector<std::string> Batch(std::string const& report) const {
        return {"batch", "--filter", "EXIF", "--filter", "File Format", "--force", "--output", report, Path("")};
    }
    // It ends by itself, and says why where it fails.
    static void ExpectOrderly(Ended const& ended, std::string const& what) {
        EXPECT_LT(ended.status, 1000) << what << ": " << ended.err;
        EXPECT_TRUE(ended.status == 0 || !ended.err.empty()) << what << ": no word, status " << ended.status;
    }
    // Writes a program "exiftool" into a folder of its own and gives the folder.
    std::string FakeExifTool(std::string const& script) const {
        std::string const path = Write("../fake/exiftool", "#!/bin/sh\n" + script);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        return Folder() + "/fake";
    }
};

TEST_F(ProgramFaults, BatchKilledAtAnyMoment_LeavesTheOldOrAWholeReport) {
    for (int i = 0; i < 3; ++i) Photo("a" + std::to_string(i) + ".jpg", 64, 48, static_cast<unsigned>(i));
    std::string const report = Folder() + "/out/report.tsv";
    auto const begun = std::chrono::steady_clock::now();
    ASSERT_EQ(0, Run(Batch(report)).status);
    auto const length = std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - begun);
    std::string const whole = ReadFile(report);
    std::mt19937 random(faults::Seed());
    int const rounds = faults::Rounds(8);
    for (int round = 0; round < rounds; ++round) {
        clitest::WriteFile(report, "old");
        Program program(Binary, Arguments(Batch(report)), Folder());
        std::this_thread::sleep_for(std::chrono::microseconds(random() % static_cast<unsigned>(length.count())));
        program.Kill();
        program.Wait();
        std::string const now = ReadFile(report);
        ASSERT_TRUE(now == "old" || now == whole) << "kill " << round << ": " << now;
    }
    EXPECT_EQ(0, Run(Batch(report)).status);
    EXPECT_EQ(whole, ReadFile(report));
    std::printf("faults: batch: %d kills\n", rounds);
}

TEST_F(ProgramFaults, FilesThatMayNotGrow_LeaveTheOldOrAWholeReport) {
    Photo("a.jpg", 64, 48);
    std::string const report = Folder() + "/out/report.html";
    ASSERT_EQ(0, Run(Batch(report)).status);
    rlim_t const size = ReadFile(report).size();
    int tried = 0;
    for (rlim_t limit = 0; limit < size; limit += std::max<rlim_t>(size / 8, 1), ++tried) {
        clitest::WriteFile(report, "old");
        Limits limits;
        limits.fileSize = limit;
        Ended const ended = Run(Batch(report), limits);
        std::string const what = "files of at most " + std::to_string(limit) + " bytes";
        EXPECT_TRUE(ended.status > 0 && ended.status < 1000) << what << ": " << ended.status;
        EXPECT_EQ("old", ReadFile(report)) << what;
    }
    std::printf("faults: batch: %d limits of file size\n", tried);
}

TEST_F(ProgramFaults, ExifToolKilledAtAnyMoment_GivesTheSameOrAReason) {
    std::vector<std::string> arguments = {"exif"};
    for (int i = 0; i < 4; ++i) arguments.push_back(Photo("a" + std::to_string(i) + ".jpg", 64, 48));
    Ended const whole = Run(arguments);
    ASSERT_EQ(0, whole.status) << whole.err;
    std::mt19937 random(faults::Seed());
    int const rounds = faults::Rounds(8);
    int kills = 0;
    for (int round = 0; round < rounds; ++round) {
        Program program(Binary, Arguments(arguments), Folder());
        // It is started again after a first kill, and given up after a second one.
        for (int again = static_cast<int>(random() % 3); again >= 0; --again) {
            pid_t child = -1;
            for (int wait = 0; wait < 60 && (child = program.Child("exiftool")) < 0; ++wait)
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 300000));
            if (child > 0 && kill(child, SIGKILL) == 0) ++kills;
        }
        Ended const ended = program.Wait();
        ExpectOrderly(ended, "round " + std::to_string(round));
        if (ended.status == 0) {
            EXPECT_EQ(whole.out, ended.out) << "round " << round;
        }
    }
    std::printf("faults: ExifTool: %d kills in %d runs\n", kills, rounds);
}

TEST_F(ProgramFaults, ExifToolThatLiesOrDies_IsTold) {
    std::string const photo = Photo("a.jpg", 64, 48);
    std::string const loop = "while read -r line; do case \"$line\" in -execute*) ";
    std::string const end = "; echo \"{ready${line#-execute}}\";; esac; done\n";
    std::vector<std::string> scripts = {"exit 0\n",
                                        "exit 1\n",
                                        "kill -9 $$\n",
                                        "read -r line; kill -9 $$\n",
                                        "exec cat\n",
                                        "echo garbage; exec cat >/dev/null\n",
                                        "exec yes\n",
                                        "exec 1>&-; exec cat >/dev/null\n",
                                        loop + "echo garbage" + end,
                                        loop + "echo 'Array(Array('" + end,
                                        loop + "printf 'Array(Array(\\n  \"SourceFile\" => \"\\\\'" + end,
                                        loop + "echo '[{\"SourceFile\": \"x\"}]'" + end,
                                        loop + "head -c 100000 /dev/zero" + end,
                                        loop + "kill -9 $$" + end};
    std::mt19937 random(1);
    int const rounds = faults::Rounds(2);
    for (int i = 0; i < rounds; ++i) {
        std::string noise(1 + random() % 5000, '\0');
        for (char& c : noise) c = static_cast<char>(random());
        std::string const file = Write("../noise" + std::to_string(i), noise);
        scripts.push_back(loop + "cat " + file + end);
    }
    ASSERT_EQ(0, Run({"options", "set", "Limits/seconds-per-file", "1"}).status);
    for (std::string const& script : scripts) {
        Limits limits;
        limits.path = FakeExifTool(script) + ":" + std::getenv("PATH");
        Ended const ended = Run({"exif", photo}, limits);
        ExpectOrderly(ended, script);
        EXPECT_NE(0, ended.status) << script << ended.out;
    }
    std::printf("faults: ExifTool: %zu false answers\n", scripts.size());
}

TEST_F(ProgramFaults, ExifToolThatHangs_IsTold) {
    std::string const photo = Photo("a.jpg", 64, 48);
    ASSERT_EQ(0, Run({"options", "set", "Limits/seconds-per-file", "1"}).status);
    for (std::string const script : {"exec sleep 1000\n", "trap '' TERM; while :; do sleep 1; done\n"}) {
        Limits limits;
        limits.path = FakeExifTool(script) + ":" + std::getenv("PATH");
        auto const begun = std::chrono::steady_clock::now();
        Ended const ended = Run({"exif", photo}, limits);
        ExpectOrderly(ended, script);
        EXPECT_NE(0, ended.status);
        EXPECT_TRUE(Contains(ended.err, "did not answer within 1 s")) << ended.err;
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(15));
    }
    std::printf("faults: ExifTool: 2 hangs\n");
}

#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
TEST_F(ProgramFaults, LittleMemory_IsTold) {
    std::string const photo = Photo("a.jpg", 2000, 1500);
    std::string const output = Folder() + "/noise.png";
    constexpr rlim_t Mebi = rlim_t{1} << 20;
    // More would take longer than a test may.
    rlim_t const steps = static_cast<rlim_t>(std::min(faults::Rounds(3), 10));
    std::vector<std::vector<std::string>> const commands = {
        {"info", "--extended", photo}, {"filter", "Noise Map", photo, "--output", output, "--force"}, {"sms", "list"}};
    int tried = 0;
    int failed = 0;
    for (auto const& command : commands) {
        // Below some of them not even the system's loader gets through; above others nothing is short.
        for (rlim_t memory = 16; memory <= 1200; memory += memory / steps + 1) {
            Limits limits;
            limits.memory = memory * Mebi;
            Ended const ended = Run(command, limits);
            std::string const what = command[0] + " with " + std::to_string(memory) + " MiB";
            // In front of main() the libraries' own beginnings end with a word of the language's library.
            if (!Contains(ended.err, "terminate called")) ExpectOrderly(ended, what);
            ++tried;
            failed += ended.status != 0 ? 1 : 0;
        }
    }
    EXPECT_GT(failed, 0);
    EXPECT_LT(failed, tried);
    std::printf("faults: memory: %d limits, of which %d were too low\n", tried, failed);
}

// Just above what loading the program takes there is no room for the work; a little above that there is.
TEST_F(ProgramFaults, MemoryForTheProgramButNotForItsWork_IsTold) {
    std::string const photo = Photo("a.jpg", 64, 48);
    constexpr rlim_t Mebi = rlim_t{1} << 20;
    int refused = 0;
    int done = 0;
    for (rlim_t memory = 64; memory <= 600 && done < 10; memory += 2) {
        Limits limits;
        limits.memory = memory * Mebi;
        Ended const ended = Run({"info", photo}, limits);
        if (!Contains(ended.err, "not enough memory: the limit leaves ")) {
            // Below that the system's loader finds no room.
            if (refused == 0) continue;
            EXPECT_EQ(0, ended.status) << memory << " MiB: " << ended.err;
            ++done;
            continue;
        }
        EXPECT_EQ(70, ended.status) << ended.err;
        ++refused;
    }
    EXPECT_GT(refused, 10);
    EXPECT_EQ(10, done);
}
#endif

}  // namespace
