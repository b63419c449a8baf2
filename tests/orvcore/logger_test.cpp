// SPDX-License-Identifier: Apache-2.0
#include "orvcore/logger.h"

#include <gtest/gtest.h>
#include <wx/filefn.h>

#include <chrono>
#include <thread>
#include <utility>

#include "tests/support/tempdir.h"
#include "tolbase/file.h"

using support::ReadBytes;

namespace {

class Logger : public ::testing::Test {
protected:
    Logger() { SetAppDocumentsPath(dir.Path()); }
    std::string Current() { return ReadBytes(dir / "logs/current.txt"); }
    VecString DatedFiles() {
        VecString files;
        for (wxString const& file : GetAllFiles(dir / "logs", {"txt"}, false)) {
            if (!file.EndsWith("/current.txt")) files.push_back(file);
        }
        return files;
    }
    support::TempDir dir;
    OrvLogger logger;
};

}  // namespace

TEST_F(Logger, NotEnabled_WritesNothing) {
    testing::internal::CaptureStderr();
    logger.LogCommandStarted("a");
    logger.LogCommandCompleted("b");
    EXPECT_EQ("", testing::internal::GetCapturedStderr());
    EXPECT_FALSE(wxDirExists(dir / "logs"));
}

TEST_F(Logger, Enabled_WritesTheSameTextToBothFiles) {
    logger.EnableLogToFile(true);
    logger.LogText(wxString::FromUTF8("g\xC3\xBC"));
    logger.LogText("n\n");
    ASSERT_EQ(1u, DatedFiles().size());
    EXPECT_EQ("g\xC3\xBCn\n", Current());
    EXPECT_EQ("g\xC3\xBCn\n", ReadBytes(DatedFiles()[0]));
}

TEST_F(Logger, EnabledTwice_LeavesTheFilesAsTheyAre) {
    logger.EnableLogToFile(true);
    logger.LogText("one");
    logger.EnableLogToFile(true);
    logger.LogText("two");
    EXPECT_EQ("onetwo", Current());
    EXPECT_EQ(1u, DatedFiles().size());
}

TEST_F(Logger, DisabledAndEnabledAgain_StartsOver) {
    logger.EnableLogToFile(true);
    logger.LogText("old");
    logger.EnableLogToFile(false);
    logger.LogText("lost");
    EXPECT_EQ("old", Current());
    std::this_thread::sleep_for(std::chrono::milliseconds(3));
    logger.EnableLogToFile(true);
    EXPECT_EQ("", Current());
    ASSERT_EQ(2u, DatedFiles().size());
    EXPECT_EQ("old", ReadBytes(DatedFiles()[0]));
}

TEST_F(Logger, WholeLine_EndsAtColumn102) {
    logger.EnableLogToFile(true);
    logger.LogCommandStarted("started");
    EXPECT_EQ(std::string::npos, Current().find('\n'));
    logger.LogCommandCompleted("C1C2");
    std::string const line = Current();
    ASSERT_EQ(103u, line.size());
    EXPECT_EQ('\n', line[102]);
    EXPECT_NE(' ', line[101]);
    EXPECT_NE(std::string::npos, line.find(" startedC1C2  "));
}

TEST_F(Logger, StartedLineOverAHundredColumns_LeftAlignsTheTime) {
    logger.EnableLogToFile(true);
    logger.LogCommandStarted(wxString('x', 200));
    size_t const started = Current().size();
    logger.LogCommandCompleted("done");
    std::string const rest = Current().substr(started);
    // The time is padded behind to the width that is missing in front: (4 + started) - 100 columns.
    EXPECT_EQ(4 + 2 + (4 + started - 100) + 1, rest.size());
    EXPECT_EQ("done  ", rest.substr(0, 6));
    EXPECT_NE(' ', rest[6]);
    EXPECT_EQ(" \n", rest.substr(rest.size() - 2));
}

TEST_F(Logger, PercentSigns_AreText) {
    logger.EnableLogToFile(true);
    logger.LogCommandStarted("100% %s %n");
    logger.LogCommandCompleted("%d");
    EXPECT_NE(std::string::npos, Current().find(" 100% %s %n%d  "));
}

TEST_F(Logger, StandardError_GetsAscii) {
    logger.EnableLogToStdErr(true);
    testing::internal::CaptureStderr();
    logger.LogText(
        wxString::FromUTF8("a\xC3\xBC\xE2\x82\xAC"
                           "b %s"));
    logger.EnableLogToStdErr(false);
    logger.LogText("more");
    EXPECT_EQ("a__b %s", testing::internal::GetCapturedStderr());
}

TEST_F(Logger, FolderThatCannotBeMade_IsIgnored) {
    wxString const inTheWay = support::WriteBytes(dir / "logs", "a file");
    logger.EnableLogToFile(true);
    logger.LogCommandStarted("started");
    logger.LogCommandCompleted("completed");
    EXPECT_EQ("a file", ReadBytes(inTheWay));
}

TEST(Progress, Default_IsEmptyAndCopiesKeepTheirValues) {
    OrvProgress progress;
    EXPECT_TRUE(progress.title.empty() && progress.text.empty() && progress.detail.empty());
    EXPECT_EQ(0u, progress.value + progress.total);
    progress.text = "t";
    progress.total = 9;
    OrvProgress const copy(progress);
    OrvProgress const moved(std::move(progress));
    EXPECT_EQ("t", copy.text);
    EXPECT_EQ(9u, moved.total);
}
