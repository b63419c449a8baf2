// SPDX-License-Identifier: Apache-2.0
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include "tests/support/tempdir.h"
#include "tolbase/file.h"

namespace {

bool Exists(const wxString& path) {
    return access(PathToBytes(path).c_str(), F_OK) == 0;
}

// A folder on another file system than /tmp; empty where there is none.
class OtherFileSystem {
public:
    OtherFileSystem() {
        char name[] = "/dev/shm/orvelle-test-XXXXXX";
        struct stat here {};
        struct stat there {};
        if (stat("/tmp", &here) != 0 || stat("/dev/shm", &there) != 0 || here.st_dev == there.st_dev) return;
        if (mkdtemp(name) != nullptr) m_path = name;
    }
    ~OtherFileSystem() {
        std::error_code ignored;
        if (!m_path.empty()) std::filesystem::remove_all(m_path, ignored);
    }
    OtherFileSystem(const OtherFileSystem&) = delete;
    OtherFileSystem& operator=(const OtherFileSystem&) = delete;
    wxString Path() const { return PathFromBytes(m_path); }

private:
    std::string m_path;
};

}  // namespace

TEST(CreateDir, MakesTheParents) {
    const support::TempDir dir;
    EXPECT_TRUE(CreateDirIfNotExists(dir / "x/y/z"));
    EXPECT_TRUE(Exists(dir / "x/y/z"));
    EXPECT_TRUE(CreateDirIfNotExists(dir / "x/y/z"));
    EXPECT_TRUE(CreateDirIfNotExists(dir / "x/new/"));
}

TEST(CreateDir, WhereItCannot_IsFalse) {
    const support::TempDir dir;
    support::WriteBytes(dir / "occupied", "x");
    EXPECT_FALSE(CreateDirIfNotExists(dir / "occupied"));
    EXPECT_FALSE(CreateDirIfNotExists(dir / "occupied/sub"));
    EXPECT_FALSE(CreateDirIfNotExists(""));
    EXPECT_FALSE(CreateDirIfNotExists("/proc/none/x"));
}

TEST(MoveFile, MakesTheFolder) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.txt", "content");
    wxString moved;
    EXPECT_TRUE(MoveFileToFolder(dir / "a.txt", dir / "target/deep", &moved));
    EXPECT_EQ(dir / "target/deep/a.txt", moved);
    EXPECT_FALSE(Exists(dir / "a.txt"));
    EXPECT_EQ(std::string("content"), support::ReadBytes(moved));
}

TEST(MoveFile, NameInUse_GetsANumber) {
    const support::TempDir dir;
    for (const char* content : {"one", "two", "three"}) {
        support::WriteBytes(dir / "a.b.txt", content);
        EXPECT_TRUE(MoveFileToFolder(dir / "a.b.txt", dir / "target"));
    }
    EXPECT_EQ(std::string("one"), support::ReadBytes(dir / "target/a.b.txt"));
    EXPECT_EQ(std::string("two"), support::ReadBytes(dir / "target/a.b (2).txt"));
    EXPECT_EQ(std::string("three"), support::ReadBytes(dir / "target/a.b (3).txt"));
}

TEST(MoveFile, NamesWithoutExtension_AreNumberedAtTheirEnd) {
    const support::TempDir dir;
    for (const char* name : {"plain", ".hidden"}) {
        support::WriteBytes(dir / "target" + wxString("/") + name, "old");
        support::WriteBytes(dir / name, "new");
        EXPECT_TRUE(MoveFileToFolder(dir / name, dir / "target"));
        EXPECT_EQ(std::string("new"), support::ReadBytes(dir / "target/" + name + " (2)"));
    }
}

TEST(MoveFile, DanglingLinkAtTheTarget_IsNotReplaced) {
    const support::TempDir dir;
    CreateDirIfNotExists(dir / "target");
    ASSERT_EQ(0, symlink("nowhere", PathToBytes(dir / "target/a.txt").c_str()));
    support::WriteBytes(dir / "a.txt", "content");
    EXPECT_TRUE(MoveFileToFolder(dir / "a.txt", dir / "target"));
    EXPECT_EQ(std::string("content"), support::ReadBytes(dir / "target/a (2).txt"));
}

TEST(MoveFile, ToItsOwnFolder_StaysWhereItIs) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.txt", "content");
    EXPECT_TRUE(MoveFileToFolder(dir / "a.txt", dir.Path()));
    EXPECT_EQ(std::string("content"), support::ReadBytes(dir / "a.txt"));
    EXPECT_FALSE(Exists(dir / "a (2).txt"));
}

TEST(MoveFile, WhereItCannot_LosesNothing) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.txt", "content");
    support::WriteBytes(dir / "occupied", "x");
    EXPECT_FALSE(MoveFileToFolder(dir / "a.txt", dir / "occupied"));
    EXPECT_FALSE(MoveFileToFolder(dir / "a.txt", "/proc/none"));
    EXPECT_FALSE(MoveFileToFolder(dir / "a.txt", ""));
    EXPECT_FALSE(MoveFileToFolder(dir / "none.txt", dir / "target"));
    EXPECT_FALSE(MoveFileToFolder(dir.Path(), dir / "target"));
    EXPECT_EQ(std::string("content"), support::ReadBytes(dir / "a.txt"));
}

TEST(MoveFile, AcrossFileSystems_CopiesWithTimesAndMode) {
    const OtherFileSystem other;
    if (other.Path().empty()) GTEST_SKIP() << "/dev/shm is no other file system than /tmp";
    const support::TempDir dir;
    const std::string content(3000000, 'x');
    support::WriteBytes(dir / "a.bin", content);
    const timespec times[2] = {{1000000000, 5}, {1100000000, 6}};
    ASSERT_EQ(0, utimensat(AT_FDCWD, PathToBytes(dir / "a.bin").c_str(), times, 0));
    ASSERT_EQ(0, chmod(PathToBytes(dir / "a.bin").c_str(), 0440));
    wxString moved;
    ASSERT_TRUE(MoveFileToFolder(dir / "a.bin", other.Path() + "/sub", &moved));
    EXPECT_FALSE(Exists(dir / "a.bin"));
    EXPECT_EQ(content, support::ReadBytes(moved));
    struct stat info {};
    ASSERT_EQ(0, stat(PathToBytes(moved).c_str(), &info));
    EXPECT_EQ(1100000000, info.st_mtim.tv_sec);
    EXPECT_EQ(0440u, info.st_mode & 07777);
}

TEST(MoveFile, AcrossFileSystems_ReplacesNothing) {
    const OtherFileSystem other;
    if (other.Path().empty()) GTEST_SKIP() << "/dev/shm is no other file system than /tmp";
    const support::TempDir dir;
    support::WriteBytes(other.Path() + "/a.bin", "old");
    support::WriteBytes(dir / "a.bin", "new");
    EXPECT_TRUE(MoveFileToFolder(dir / "a.bin", other.Path()));
    EXPECT_EQ(std::string("old"), support::ReadBytes(other.Path() + "/a.bin"));
    EXPECT_EQ(std::string("new"), support::ReadBytes(other.Path() + "/a (2).bin"));
}

namespace {

std::size_t CountEntries(const wxString& folder) {
    const std::filesystem::path path(PathToBytes(folder));
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator()));
}

}  // namespace

TEST(MoveFile, RelativeLink_BecomesTheFileAndLeavesItsTarget) {
    const support::TempDir dir;
    support::WriteBytes(dir / "store/a.txt", "content");
    CreateDirIfNotExists(dir / "in");
    ASSERT_EQ(0, symlink("../store/a.txt", PathToBytes(dir / "in/link.txt").c_str()));
    wxString moved;
    ASSERT_TRUE(MoveFileToFolder(dir / "in/link.txt", dir / "x/y/target", &moved));
    EXPECT_EQ(dir / "x/y/target/link.txt", moved);
    EXPECT_EQ(std::string("content"), support::ReadBytes(moved));
    EXPECT_EQ(std::string("content"), support::ReadBytes(dir / "store/a.txt"));
    EXPECT_FALSE(Exists(dir / "in/link.txt"));
    EXPECT_EQ(1u, CountEntries(dir / "x/y/target"));
}

TEST(MoveFile, AcrossFileSystems_LeavesNothingElseBehind) {
    const OtherFileSystem other;
    if (other.Path().empty()) GTEST_SKIP() << "/dev/shm is no other file system than /tmp";
    const support::TempDir dir;
    for (const char* content : {"one", "two"}) {
        support::WriteBytes(dir / "in/a.bin", content);
        ASSERT_TRUE(MoveFileToFolder(dir / "in/a.bin", other.Path()));
    }
    EXPECT_EQ(0u, CountEntries(dir / "in"));
    EXPECT_EQ(2u, CountEntries(other.Path()));
}

TEST(MoveFile, AttributesOfAFile_GoWithItOrItStays) {
    const OtherFileSystem other;
    if (other.Path().empty()) GTEST_SKIP() << "/dev/shm is no other file system than /tmp";
    const support::TempDir dir;
    const std::string from = PathToBytes(support::WriteBytes(dir / "a.bin", "content"));
    if (setxattr(from.c_str(), "user.xdg.origin.url", "http://x", 8, 0) != 0) GTEST_SKIP() << "no such attributes here";
    wxString moved;
    if (!MoveFileToFolder(dir / "a.bin", other.Path(), &moved)) {
        EXPECT_EQ(std::string("content"), support::ReadBytes(dir / "a.bin"));
        EXPECT_EQ(0u, CountEntries(other.Path()));
        return;
    }
    char value[9] = {};
    EXPECT_EQ(8, getxattr(PathToBytes(moved).c_str(), "user.xdg.origin.url", value, 8));
    EXPECT_STREQ("http://x", value);
}

TEST(MoveFile, FolderThatMayNotBeWritten_KeepsTheFile) {
    if (geteuid() == 0) GTEST_SKIP() << "root may write everywhere";
    const support::TempDir dir;
    support::WriteBytes(dir / "a.txt", "content");
    CreateDirIfNotExists(dir / "target");
    ASSERT_EQ(0, chmod(PathToBytes(dir / "target").c_str(), 0500));
    EXPECT_FALSE(MoveFileToFolder(dir / "a.txt", dir / "target"));
    EXPECT_EQ(std::string("content"), support::ReadBytes(dir / "a.txt"));
}
