// SPDX-License-Identifier: Apache-2.0
#include "tolbase/file.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wx/ffile.h>
#include <wx/filename.h>

#include <clocale>
#include <csignal>
#include <filesystem>

#include "tests/support/tempdir.h"

namespace {

constexpr const char* OddName = "a\xFF\xC3 \xC3\xBC\xF4\x80\x83\xBF.jpg";

// The raw path of a file in a folder whose own path is ASCII.
std::string RawPath(const support::TempDir& dir, const std::string& name) {
    return dir.Path().ToStdString() + "/" + name;
}

void WriteRaw(const std::string& path, const std::string& bytes) {
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

mode_t ModeOf(const wxString& path) {
    struct stat info {};
    return stat(PathToBytes(path).c_str(), &info) == 0 ? info.st_mode & 07777 : 0;
}

std::size_t CountEntries(const support::TempDir& dir) {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(PathToBytes(dir.Path())))
        count += entry.path().empty() ? 0 : 1;
    return count;
}

// No file may grow past `bytes` while it lives: as on a full disk, but for this process alone.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes) {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_old);
        const rlimit tight = {bytes, m_old.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
    }
    ~FullDisk() { setrlimit(RLIMIT_FSIZE, &m_old); }

private:
    rlimit m_old{};
};

}  // namespace

TEST(FileNames, AnyBytes_GoThereAndBack) {
    std::string every;
    for (int byte = 1; byte < 256; ++byte) every += static_cast<char>(byte);
    for (const std::string& bytes : {std::string(OddName), every, std::string("\xC3\xBC"), std::string("\xED\xA0\x80")})
        EXPECT_EQ(bytes, PathToBytes(PathFromBytes(bytes)));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC"), PathFromBytes("\xC3\xBC"));
    EXPECT_EQ(std::string(), PathToBytes(PathFromBytes("")));
}

TEST(FileNames, AnyBytes_AreOpenedByWxInEveryLocale) {
    const support::TempDir dir;
    WriteRaw(RawPath(dir, OddName), "content");
    for (const char* locale : {"C", "C.UTF-8"}) {
        std::setlocale(LC_ALL, locale);
        const wxString path = PathFromBytes(RawPath(dir, OddName));
        wxFFile file(path, "rb");
        EXPECT_TRUE(file.IsOpened()) << locale;
        EXPECT_EQ(7, file.Length());
        EXPECT_TRUE(wxFileName::FileExists(path)) << locale;
    }
}

TEST(FileNames, AnyBytes_AreListedReadAndWritten) {
    const support::TempDir dir;
    WriteRaw(RawPath(dir, OddName), "content");
    const VecString files = GetAllFiles(dir.Path(), {"jpg"}, false);
    ASSERT_EQ(1u, files.size());
    EXPECT_EQ(RawPath(dir, OddName), PathToBytes(files[0]));
    EXPECT_EQ(wxString("content"), ReadFile(files[0]));
    EXPECT_TRUE(WriteFile(files[0], "new"));
    EXPECT_EQ(wxString("new"), ReadFile(files[0]));
    EXPECT_EQ(1u, CountEntries(dir));
}

TEST(File, WriteFile_AddsNothingAndReplaces) {
    const support::TempDir dir;
    EXPECT_TRUE(WriteFile(dir / "a.txt", wxString::FromUTF8("a long text\n\xC3\xBC")));
    EXPECT_EQ(std::string("a long text\n\xC3\xBC"), support::ReadBytes(dir / "a.txt"));
    EXPECT_TRUE(WriteFile(dir / "a.txt", ""));
    EXPECT_EQ(std::string(), support::ReadBytes(dir / "a.txt"));
    EXPECT_TRUE(wxFileName::FileExists(dir / "a.txt"));
    EXPECT_EQ(1u, CountEntries(dir));
}

TEST(File, WriteFileWhereItCannot_IsFalse) {
    const support::TempDir dir;
    support::WriteBytes(dir / "occupied", "x");
    EXPECT_FALSE(WriteFile(dir / "occupied/a.txt", "a"));
    EXPECT_FALSE(WriteFile(dir / "none/a.txt", "a"));
    EXPECT_FALSE(WriteFile(dir.Path(), "a"));
    EXPECT_FALSE(WriteFile("", "a"));
    EXPECT_FALSE(WriteFile("/proc/none/a.txt", "a"));
    EXPECT_EQ(1u, CountEntries(dir));
}

TEST(File, FailedWrite_LeavesTheOldFileWhole) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.txt", "old");
    {
        const FullDisk full(1000);
        EXPECT_FALSE(WriteFileAtomically(dir / "a.txt", std::string(5000, 'x')));
    }
    EXPECT_EQ(std::string("old"), support::ReadBytes(dir / "a.txt"));
    EXPECT_EQ(1u, CountEntries(dir)) << "no temporary file stays";
}

TEST(File, AtomicWrite_KeepsTheModeAndFollowsLinks) {
    const support::TempDir dir;
    support::WriteBytes(dir / "real.txt", "old");
    chmod(PathToBytes(dir / "real.txt").c_str(), 0640);
    ASSERT_EQ(0, symlink("real.txt", PathToBytes(dir / "link.txt").c_str()));
    EXPECT_TRUE(WriteFileAtomically(dir / "link.txt", "new"));
    EXPECT_EQ(std::string("new"), support::ReadBytes(dir / "real.txt"));
    EXPECT_EQ(0640u, ModeOf(dir / "real.txt"));
    EXPECT_TRUE(std::filesystem::is_symlink(PathToBytes(dir / "link.txt")));
}

// A pipe of the test's own: root could replace a device of the system.
TEST(File, AtomicWriteToAPipe_WritesIntoIt) {
    const support::TempDir dir;
    const std::string pipe = PathToBytes(dir / "pipe");
    ASSERT_EQ(0, mkfifo(pipe.c_str(), 0600));
    const int reader = open(pipe.c_str(), O_RDWR | O_NONBLOCK);
    ASSERT_LE(0, reader);
    EXPECT_TRUE(WriteFileAtomically(dir / "pipe", "x"));
    EXPECT_TRUE(std::filesystem::is_fifo(pipe));
    char got = 0;
    EXPECT_EQ(1, read(reader, &got, 1));
    EXPECT_EQ('x', got);
    close(reader);
}

TEST(File, AtomicWriteToAFullDevice_IsToldFromSuccess) {
    if (geteuid() == 0) GTEST_SKIP() << "root could replace the device";
    EXPECT_FALSE(WriteFileAtomically("/dev/full", "x"));
}

TEST(File, ReadFile_GivesTheWholeText) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.txt", "one\ntwo \xC3\xBC\n");
    EXPECT_EQ(wxString::FromUTF8("one\ntwo \xC3\xBC\n"), ReadFile(dir / "a.txt"));
    support::WriteBytes(dir / "zero.txt", std::string("a\0b", 3));
    EXPECT_EQ(3u, ReadFile(dir / "zero.txt").length());
}

TEST(File, ReadFile_KnowsOtherEncodings) {
    const support::TempDir dir;
    support::WriteBytes(dir / "mark.txt", "\xEF\xBB\xBF\xC3\xBC");
    support::WriteBytes(dir / "latin.txt", "a\xFC");
    support::WriteBytes(dir / "little.txt", std::string("\xFF\xFE\xFC\x00x\x00", 6));
    support::WriteBytes(dir / "big.txt", std::string("\xFE\xFF\x00\xFC\x00x", 6));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBC"), ReadFile(dir / "mark.txt"));
    EXPECT_EQ(wxString::FromUTF8("a\xC3\xBC"), ReadFile(dir / "latin.txt"));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBCx"), ReadFile(dir / "little.txt"));
    EXPECT_EQ(wxString::FromUTF8("\xC3\xBCx"), ReadFile(dir / "big.txt"));
}

TEST(File, ReadFileOfWhatIsNoFile_IsEmpty) {
    const support::TempDir dir;
    EXPECT_EQ(wxString(), ReadFile(dir / "none.txt"));
    EXPECT_EQ(wxString(), ReadFile(dir.Path()));
    EXPECT_EQ(wxString(), ReadFile(""));
    EXPECT_EQ(wxString(), ReadFile("/dev/zero"));
    ASSERT_EQ(0, mkfifo(PathToBytes(dir / "pipe").c_str(), 0600));
    EXPECT_EQ(wxString(), ReadFile(dir / "pipe"));
}

TEST(File, ReadFileBytes_HoldsItsBound) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.bin", "12345");
    std::string bytes = "before";
    EXPECT_FALSE(ReadFileBytes(dir / "a.bin", bytes, 4));
    EXPECT_EQ(std::string(), bytes);
    EXPECT_TRUE(ReadFileBytes(dir / "a.bin", bytes, 5));
    EXPECT_EQ(std::string("12345"), bytes);
    EXPECT_TRUE(ReadFileBytes("/proc/self/stat", bytes));
    EXPECT_FALSE(bytes.empty()) << "a file that claims to be empty is read as well";
}

TEST(File, SparseGiant_IsNotReadIntoMemory) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.bin", "");
    ASSERT_EQ(0, truncate(PathToBytes(dir / "a.bin").c_str(), off_t{1} << 40));
    EXPECT_EQ(wxString(), ReadFile(dir / "a.bin"));
}

TEST(GetAllFiles, Extensions_WithoutCaseAndPoint) {
    const support::TempDir dir;
    for (const char* name : {"d.png", "b.PNG", "a.jpg", "c.txt", "jpg", ".jpg", "a.jpg.txt"})
        support::WriteBytes(dir / name, "");
    EXPECT_EQ((VecString{dir / "a.jpg", dir / "b.PNG", dir / "d.png"}),
              GetAllFiles(dir.Path(), {".PNG", "jpg"}, false));
    EXPECT_TRUE(GetAllFiles(dir.Path(), {}, false).empty());
    EXPECT_TRUE(GetAllFiles(dir.Path(), {""}, false).empty());
}

TEST(GetAllFiles, Subfolders_OnlyIfTold) {
    const support::TempDir dir;
    support::WriteBytes(dir / "b.jpg", "");
    support::WriteBytes(dir / "a/deep/c.jpg", "");
    support::WriteBytes(dir / "folder.jpg/x.txt", "");
    EXPECT_EQ((VecString{dir / "b.jpg"}), GetAllFiles(dir.Path(), {"jpg"}, false));
    EXPECT_EQ((VecString{dir / "a/deep/c.jpg", dir / "b.jpg"}), GetAllFiles(dir.Path(), {"jpg"}, true));
}

TEST(GetAllFiles, Links_ToFilesCountAndLoopsDoNot) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.jpg", "");
    ASSERT_EQ(0, symlink("a.jpg", PathToBytes(dir / "b.jpg").c_str()));
    ASSERT_EQ(0, symlink("none", PathToBytes(dir / "dead.jpg").c_str()));
    ASSERT_EQ(0, symlink(".", PathToBytes(dir / "loop").c_str()));
    EXPECT_EQ((VecString{dir / "a.jpg", dir / "b.jpg"}), GetAllFiles(dir.Path(), {"jpg"}, true));
}

TEST(GetAllFiles, NoFolder_GivesNothing) {
    const support::TempDir dir;
    support::WriteBytes(dir / "a.jpg", "");
    EXPECT_TRUE(GetAllFiles("", {"jpg", "so"}, false).empty());
    EXPECT_TRUE(GetAllFiles(dir / "none", {"jpg"}, true).empty());
    EXPECT_TRUE(GetAllFiles(dir / "a.jpg", {"jpg"}, false).empty());
}
