// SPDX-License-Identifier: Apache-2.0
#include "tolcore/filelist.h"

#include <gtest/gtest.h>

#include "tests/support/tempdir.h"

namespace {

class FileList : public ::testing::Test {
protected:
    support::TempDir dir;
    wxString const a = support::WriteBytes(dir / "a.jpg", "1");
    wxString const b = support::WriteBytes(dir / "b c.jpg", "2");
};

}  // namespace

TEST_F(FileList, ExistingFiles_AreAList) {
    EXPECT_TRUE(IsAConcatenationOfAllExistingFiles(a + "|" + b, "|", 1));
    EXPECT_TRUE(IsAConcatenationOfAllExistingFiles(a + "|" + b, "|", 2));
    EXPECT_TRUE(IsAConcatenationOfAllExistingFiles(a, "|", 1));
}

TEST_F(FileList, FewerThanTheLeastCount_AreNone) {
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles(a, "|", 2));
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles(a + "|" + b, "|", 3));
}

TEST_F(FileList, AMissingFile_SpoilsTheList) {
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles(a + "|" + (dir / "none.jpg"), "|", 1));
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles((dir / "none.jpg") + "|" + a, "|", 1));
}

TEST_F(FileList, EmptyTextsAndEntries_AreNoFiles) {
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles("", "|", 0));
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles(a + "|", "|", 1));
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles(a + "||" + b, "|", 1));
}

TEST_F(FileList, AFolder_IsNoFile) {
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles(dir.Path(), "|", 1));
}

TEST_F(FileList, WithoutASeparator_TheTextIsOneFile) {
    EXPECT_TRUE(IsAConcatenationOfAllExistingFiles(b, "", 1));
    EXPECT_FALSE(IsAConcatenationOfAllExistingFiles(a + b, "", 1));
}
