// SPDX-License-Identifier: Apache-2.0
// Storing and reloading results when the disk fails, the program is killed, or somebody else has been in the folder.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utime.h>
#include <wx/filename.h>

#include "tests/orvcore/cachefilters.h"

using filtercache::Step;
using support::CachedImageFilter;
using support::CachedPlotFilter;
using support::NamesIn;
using support::ReadBytes;
using support::ResultOf;
using support::WriteBytes;

namespace {

namespace fs = std::filesystem;

class CacheSafety : public support::CacheEngine {
protected:
    // Removes the result of n = 1 and lets the steps for which `fails` holds go wrong while it is stored anew. Gives
    // the number of steps.
    int StoreWith(OrvFilter* filter, std::function<bool(int)> const& fails) {
        int steps = 0;
        filtercache::SetStepHook([&](Step) { return !fails(steps++); });
        OnWorker([&] { filter->ResetStatus(Evidence); });
        filtercache::SetStepHook(nullptr);
        return steps;
    }
    // Lets storing fail in every possible way and looks at what each leaves.
    void ExpectSafeFailures(OrvFilter* filter, wxString const& name, bool fromThereOn) {
        std::string const expected = Computed(filter, 1);
        RunWith(filter, 1);
        int steps = 1;
        for (int n = 0; n < steps; ++n) {
            steps = StoreWith(filter, [&](int step) { return fromThereOn ? step >= n : step == n; });
            EXPECT_EQ(expected, ResultOf(filter)) << "the result itself, step " << n;
            bool const promised = wxFileExists(CacheStem(Evidence, name + "-1.status"));
            EXPECT_TRUE(promised || !filter->GetCacheMessage().empty()) << "step " << n;
            EXPECT_TRUE(support::Leftovers(Folder()).empty()) << "step " << n;
            RunWith(filter, 1);
            EXPECT_EQ(promised, filter->ConfiguredFromCache(Evidence)) << "step " << n;
            EXPECT_EQ(expected, ResultOf(filter)) << "a later run, step " << n;
        }
        EXPECT_GT(steps, 3);
    }
    // Expects the result to be calculated anew, rightly and without failure.
    void ExpectRecalculated(CachedImageFilter* filter, std::string const& expected, std::string const& why) {
        int const before = filter->applied;
        RunWith(filter, 1);
        EXPECT_EQ(before + 1, filter->applied) << why;
        EXPECT_EQ(expected, ResultOf(filter)) << why;
        EXPECT_EQ(OrvCommandIdFilterDone, recorder.Ids().back()) << why;
    }
    wxString Stored(wxString const& behind) { return CacheStem(Evidence, "Picture-1" + behind); }
    wxString Outside(std::string const& bytes = "evidence") { return WriteBytes(dir / "outside/file", bytes); }
    static void Link(wxString const& target, wxString const& at) {
        fs::remove_all(PathToBytes(at));
        fs::create_symlink(PathToBytes(target), PathToBytes(at));
    }
};

// A small file system of its own on the documents folder.
class TinyDisk {
public:
    TinyDisk(wxString const& folder, std::string const& options) : m_folder(PathToBytes(folder)) {
        fs::create_directories(m_folder);
        m_mounted = ::mount("tmpfs", m_folder.c_str(), "tmpfs", 0, options.c_str()) == 0;
    }
    ~TinyDisk() {
        if (m_mounted) ::umount2(m_folder.c_str(), MNT_DETACH);
    }
    bool IsThere() const { return m_mounted; }
    bool MakeReadOnly() const {
        return ::mount("tmpfs", m_folder.c_str(), "tmpfs", MS_REMOUNT | MS_RDONLY, nullptr) == 0;
    }

private:
    std::string m_folder;
    bool m_mounted = false;
};

}  // namespace

// ---- failing writes ----

TEST_F(CacheSafety, OneFailingStepOfAPicture_LeavesNoStatusWithoutItsResult) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    ExpectSafeFailures(filter, "Picture", false);
}

TEST_F(CacheSafety, DiskThatStaysFullForAPicture_LeavesNoStatusWithoutItsResult) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    ExpectSafeFailures(filter, "Picture", true);
}

TEST_F(CacheSafety, OneFailingStepOfAPlot_LeavesNoStatusWithoutItsResult) {
    auto* filter = Add(new CachedPlotFilter);
    LoadPicture();
    ExpectSafeFailures(filter, "Curve", false);
}

TEST_F(CacheSafety, DiskThatStaysFullForAPlot_LeavesNoStatusWithoutItsResult) {
    auto* filter = Add(new CachedPlotFilter);
    LoadPicture();
    ExpectSafeFailures(filter, "Curve", true);
}

TEST_F(CacheSafety, FailedStore_IsToldWithTheFolder) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    RunWith(filter, 1);
    EXPECT_EQ("", filter->GetCacheMessage());
    StoreWith(filter, [](int) { return true; });
    EXPECT_EQ("The result can't be stored in the cache folder " + Folder() + ".", filter->GetCacheMessage());
    EXPECT_EQ("", filter->GetErrorMessage());
    RunWith(filter, 2);
    EXPECT_EQ("", filter->GetCacheMessage());
}

TEST_F(CacheSafety, KillAtEachStep_LeavesTheOldResultTheNewOneOrNone) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    for (int killedAt = 0, status = 1; status != 0; ++killedAt) {
        RunWith(filter, 1);
        OnWorker([&] {
            pid_t const child = fork();
            if (child == 0) {
                int step = 0;
                filtercache::SetStepHook([&](Step) { return step++ == killedAt ? (_exit(1), false) : true; });
                filter->GetOutputImage(Evidence) = support::Solid(16, 8, {70, 70, 70});
                filter->SetStatusOf(Evidence, OrvFilterConfiguration::Warning);
                filter->SaveStatus(Evidence);
                _exit(0);
            }
            waitpid(child, &status, 0);
        });
        int const applied = filter->applied;
        RunWith(filter, 1);
        bool const old = "Ok 16x8:\1\2\3" == ResultOf(filter).substr(0, 11);
        EXPECT_TRUE(old || "Warning 16x8:FFF" == ResultOf(filter).substr(0, 16)) << killedAt;
        EXPECT_TRUE(old || applied == filter->applied) << killedAt;
        ASSERT_LT(killedAt, 50);
        OnWorker([&] { filter->ResetStatus(Evidence); });
    }
}

TEST_F(CacheSafety, FullDisk_CalculatesWithoutStoring) {
    TinyDisk const disk(dir / "documents/cache", "size=64k");
    if (!disk.IsThere()) GTEST_SKIP() << "no right to mount a file system";
    auto* filter = Add(new CachedImageFilter);
    Load(Png("a.png", support::Solid(200, 200, {1, 2, 3})));
    std::string const expected = Computed(filter, 1);
    ExpectRecalculated(filter, expected, "first run");
    EXPECT_FALSE(wxFileExists(Stored(".status")));
    EXPECT_FALSE(wxFileExists(Stored(".png")));
    EXPECT_TRUE(support::Leftovers(Folder()).empty());
    EXPECT_FALSE(filter->GetCacheMessage().empty());
    ExpectRecalculated(filter, expected, "second run");
}

TEST_F(CacheSafety, ReadOnlyCache_ReloadsWhatItHasAndCalculatesTheRest) {
    TinyDisk const disk(dir / "documents/cache", "size=1m");
    if (!disk.IsThere()) GTEST_SKIP() << "no right to mount a file system";
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    RunWith(filter, 1);
    ASSERT_TRUE(disk.MakeReadOnly());
    Load(dir / "in/a.png");
    RunWith(filter, 2);
    EXPECT_EQ(2, filter->applied);
    EXPECT_FALSE(filter->GetCacheMessage().empty());
    RunWith(filter, 1);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    EXPECT_EQ("", filter->GetCacheMessage());
    EXPECT_EQ(support::ColourFor(1), support::PixelAt(filter->GetOutputImage(Evidence), 3, 3));
}

TEST_F(CacheSafety, FileInPlaceOfTheCache_CalculatesWithoutStoring) {
    auto* filter = Add(new CachedImageFilter);
    WriteBytes(dir / "documents/cache", "a file");
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    ExpectRecalculated(filter, expected, "first run");
    EXPECT_FALSE(filter->GetCacheMessage().empty());
    EXPECT_EQ("a file", ReadBytes(dir / "documents/cache"));
}

TEST_F(CacheSafety, FolderThatVanishesDuringARun_IsMadeAgain) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    auto const apply = filter->onApply;
    filter->onApply = [&](OrvFileId id) {
        fs::remove_all(PathToBytes(Folder()));
        apply(id);
    };
    RunWith(filter, 1);
    EXPECT_EQ("Ok", ReadBytes(Stored(".status")));
    RunWith(filter, 1);
    EXPECT_EQ(1, filter->applied);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
}

TEST_F(CacheSafety, LockThatIsNotGivenBack_IsDoneWithout) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    int const folder = ::open(PathToBytes(Folder()).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(0, ::flock(folder, LOCK_EX));
    RunWith(filter, 1);
    EXPECT_EQ(1, filter->applied);
    EXPECT_FALSE(filter->GetCacheMessage().empty());
    EXPECT_FALSE(wxFileExists(Stored(".status")));
    ::close(folder);
    RunWith(filter, 1);
    EXPECT_EQ("Ok", ReadBytes(Stored(".status")));
}

// ---- files that are no results ----

TEST_F(CacheSafety, AnyFlippedByteOfAPicture_IsNeverShown) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    RunWith(filter, 1);
    std::string const whole = ReadBytes(Stored(".png"));
    ASSERT_GT(whole.size(), 400U);
    for (size_t i = 0; i < whole.size(); i += i < 60 || i + 40 > whole.size() ? 1 : 7) {
        std::string flipped = whole;
        flipped[i] = static_cast<char>(flipped[i] ^ 0x10);
        WriteBytes(Stored(".png"), flipped);
        RunWith(filter, 1);
        EXPECT_EQ(expected, ResultOf(filter)) << "byte " << i;
        EXPECT_EQ(OrvCommandIdFilterDone, recorder.Ids().back());
    }
}

TEST_F(CacheSafety, AnyTruncatedPicture_IsCalculatedAnew) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    RunWith(filter, 1);
    std::string const whole = ReadBytes(Stored(".png"));
    for (size_t length = 0; length < whole.size(); length += length + 60 < whole.size() ? 5 : 1) {
        WriteBytes(Stored(".png"), whole.substr(0, length));
        ExpectRecalculated(filter, expected, "length " + std::to_string(length));
        EXPECT_EQ(whole, ReadBytes(Stored(".png")));
    }
}

TEST_F(CacheSafety, TruncatedJpeg_IsCalculatedAnew) {
    StartOptions();
    auto* filter = Add(new CachedImageFilter);
    Load(Png("a.png", support::Solid(64, 64, {1, 2, 3})));
    RunWith(filter, 1);
    fs::remove(PathToBytes(Stored(".png")));
    tcvSaveImage(Stored(".jpg"), support::Solid(64, 64, {90, 0, 90}), 90);
    RunWith(filter, 1);
    EXPECT_EQ(1, filter->applied) << "a whole one is a result";
    std::string const whole = ReadBytes(Stored(".jpg"));
    WriteBytes(Stored(".jpg"), whole.substr(0, whole.size() - 20));
    RunWith(filter, 1);
    EXPECT_EQ(2, filter->applied);
    EXPECT_EQ(support::ColourFor(1), support::PixelAt(filter->GetOutputImage(Evidence), 60, 60));
}

TEST_F(CacheSafety, PictureOfAnotherFormatThanItsName_IsCalculatedAnew) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    RunWith(filter, 1);
    WriteBytes(Stored(".png"), support::EncodeJpeg(16, 8));
    ExpectRecalculated(filter, expected, "JPEG");
    WriteBytes(Stored(".png"), "GIF89a and nothing behind");
    ExpectRecalculated(filter, expected, "GIF");
    std::string const png = ReadBytes(Stored(".png"));
    fs::remove(PathToBytes(Stored(".png")));
    WriteBytes(Stored(".jpg"), png);
    ExpectRecalculated(filter, expected, "PNG under the other name");
}

TEST_F(CacheSafety, PictureOfAnotherSize_IsRefusedWhereTheFilterKnowsItsSize) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    RunWith(filter, 1);
    tcvSaveImage(Stored(".png"), support::Solid(5, 5, {1, 1, 1}), 90);
    RunWith(filter, 1);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    filter->OutputHasInputSize();
    ExpectRecalculated(filter, expected, "size");
    RunWith(filter, 1);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
}

TEST_F(CacheSafety, PictureThatPostProcessingCantTake_IsCalculatedAnew) {
    auto* filter = Add(new CachedImageFilter("Picture", CachedImageFilter::Map));
    LoadPicture();
    filter->Post()[0].Set(boost::any(2));
    std::string const expected = Computed(filter, 1);
    RunWith(filter, 1);
    tcvSaveImage(Stored(".png"), support::Solid(5, 5, {1, 1, 1}), 90);
    ExpectRecalculated(filter, expected, "an overlay needs the input's size");
    EXPECT_FALSE(filter->ConfiguredFromCache(Evidence));
    RunWith(filter, 1);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
}

TEST_F(CacheSafety, StatusThatIsNone_IsCalculatedAnew) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    RunWith(filter, 1);
    for (std::string const& text :
         {std::string(), std::string("Ok\n"), std::string("ok"), std::string("Ok\0", 3), std::string("Not Calculated"),
          std::string(1 << 20, 'O'), std::string("\xEF\xBB\xBFOk"), std::string("Unsupported")}) {
        WriteBytes(Stored(".status"), text);
        ExpectRecalculated(filter, expected, text.substr(0, 20));
        EXPECT_EQ("Ok", ReadBytes(Stored(".status")));
    }
}

TEST_F(CacheSafety, PipesAndFoldersInPlaceOfFiles_NeverHang) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    for (char const* ending : {".png", ".status"}) {
        RunWith(filter, 1);
        std::string const path = PathToBytes(Stored(ending));
        fs::remove(path);
        ASSERT_EQ(0, ::mkfifo(path.c_str(), 0600));
        ExpectRecalculated(filter, expected, std::string("pipe ") + ending);
        EXPECT_EQ("Ok", ReadBytes(Stored(".status")));
        fs::remove(path);
        fs::create_directory(path);
        ExpectRecalculated(filter, expected, std::string("folder ") + ending);
        EXPECT_FALSE(wxFileExists(Stored(".status")));
        fs::remove(path);
    }
}

TEST_F(CacheSafety, DamagedPlot_IsCalculatedAnew) {
    auto* filter = Add(new CachedPlotFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    wxString const path = CacheStem(Evidence, "Curve-1.binary");
    RunWith(filter, 1);
    std::string const whole = ReadBytes(path);
    std::string noNumber = whole;
    noNumber.replace(whole.size() - 8, 8, "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x7F");
    std::string const lies = std::string(6, '\0') + "\xF0\x3F" + whole.substr(8) + "12345678";
    for (std::string const& bytes : {std::string(), whole.substr(0, 20), whole.substr(0, whole.size() - 1),
                                     whole.substr(0, whole.size() - 8), noNumber, lies, std::string(800, '\xFF')}) {
        WriteBytes(path, bytes);
        int const before = filter->applied;
        RunWith(filter, 1);
        EXPECT_EQ(before + 1, filter->applied) << bytes.size();
        EXPECT_EQ(expected, ResultOf(filter)) << bytes.size();
        EXPECT_EQ(whole, ReadBytes(path));
    }
}

// ---- links ----

TEST_F(CacheSafety, LinksInPlaceOfFiles_AreReplacedAndNeverFollowed) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    std::string const expected = Computed(filter, 1);
    for (wxString const& path : {Stored(".png"), Stored(".status"), filtercache::StampPath(Folder())}) {
        RunWith(filter, 1);
        std::string const bytes = ReadBytes(path);
        wxString const outside = Outside(bytes);
        Link(outside, path);
        ExpectRecalculated(filter, expected, PathToBytes(path));
        EXPECT_FALSE(fs::is_symlink(PathToBytes(path)));
        EXPECT_EQ(bytes, ReadBytes(path));
        Link(dir / "outside/new", path);
        ExpectRecalculated(filter, expected, "dangling " + PathToBytes(path));
        EXPECT_EQ(std::vector<std::string>{"file"}, NamesIn(dir / "outside"));
        EXPECT_EQ(bytes, ReadBytes(outside));
    }
}

TEST_F(CacheSafety, LinksInPlaceOfAPlotsFiles_AreReplacedAndNeverFollowed) {
    auto* filter = Add(new CachedPlotFilter);
    LoadPicture();
    for (char const* ending : {".binary", ".txt"}) {
        wxString const path = CacheStem(Evidence, wxString("Curve-1") + ending);
        Link(Outside(), path);
        fs::remove(PathToBytes(CacheStem(Evidence, "Curve-1.status")));
        RunWith(filter, 1);
        EXPECT_FALSE(fs::is_symlink(PathToBytes(path)));
        EXPECT_EQ("evidence", ReadBytes(dir / "outside/file"));
        EXPECT_EQ("Ok", ReadBytes(CacheStem(Evidence, "Curve-1.status")));
    }
}

TEST_F(CacheSafety, FolderThatIsALink_IsNotUsed) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    RunWith(filter, 1);
    fs::rename(PathToBytes(Folder()), PathToBytes(dir / "elsewhere"));
    Link(dir / "elsewhere", Folder());
    fs::remove(PathToBytes(dir / "elsewhere/a.png"));
    std::vector<std::string> const before = NamesIn(dir / "elsewhere");
    Load(dir / "in/a.png");
    RunWith(filter, 1);
    EXPECT_EQ(2, filter->applied);
    RunWith(filter, 2);
    EXPECT_FALSE(filter->GetCacheMessage().empty());
    EXPECT_EQ(before, NamesIn(dir / "elsewhere"));
    Run([&] { iface->DeleteCache(Evidence); });
    EXPECT_FALSE(fs::exists(fs::symlink_status(PathToBytes(Folder()))));
    EXPECT_EQ(before, NamesIn(dir / "elsewhere"));
}

TEST_F(CacheSafety, DeleteCache_FollowsNoLink) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    RunWith(filter, 1);
    Outside();
    Link(dir / "outside", Folder() + "/folder");
    Link(dir / "outside/file", Folder() + "/x.status");
    fs::create_directories(PathToBytes(Folder() + "/a/b/c"));
    Run([&] { iface->DeleteCache(Evidence); });
    EXPECT_FALSE(wxDirExists(Folder()));
    EXPECT_EQ("evidence", ReadBytes(dir / "outside/file"));
}

// ---- what a killed program leaves ----

TEST_F(CacheSafety, Leftovers_AreHarmlessAndRemovedAtTheNextLoad) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    RunWith(filter, 1);
    utimbuf const longAgo = {1000000000, 1000000000};
    for (char const* name : {".cache-0123456789abcdef.tmp", ".orv-1-1.tmp", ".orv-1-2.tmp", ".copy-12", "other.tmp"}) {
        WriteBytes(Folder() + "/" + name, "half a resu");
        std::string const path = PathToBytes(Folder() + "/" + name);
        if (std::string(name) == ".orv-1-2.tmp") continue;
        ASSERT_EQ(0, ::utime(path.c_str(), &longAgo));
    }
    context->UpdateFiltersStatus();
    EXPECT_EQ(1U, GetAllFiles(Folder(), {"status"}, true).size());
    RunWith(filter, 1);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    Load(dir / "in/a.png");
    // Another program may still be writing what is young, and what is not ours stays.
    EXPECT_EQ((std::vector<std::string>{".orv-1-2.tmp", ".versions", "a-Picture-1.png", "a-Picture-1.status", "a.png",
                                        "other.tmp"}),
              NamesIn(Folder()));
}

TEST_F(CacheSafety, PictureThatPngCantKeep_IsNotStored) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    filter->onApply = [&](OrvFileId id) { filter->GetOutputImage(id) = Image::Create(16, 8, IPL_DEPTH_32F, 1); };
    RunWith(filter, 1);
    EXPECT_FALSE(wxFileExists(Stored(".png")));
    EXPECT_FALSE(wxFileExists(Stored(".status")));
    EXPECT_FALSE(filter->GetCacheMessage().empty());
    EXPECT_EQ(OrvCommandIdFilterDone, recorder.Ids().back());
}

TEST_F(CacheSafety, PicturesThatPngKeeps_ComeBackTheSame) {
    auto* filter = Add(new CachedImageFilter);
    LoadPicture();
    for (int const depth : {static_cast<int>(IPL_DEPTH_8U), static_cast<int>(IPL_DEPTH_16U)}) {
        for (int const channels : {1, 3, 4}) {
            Image picture = Image::Create(37, 11, depth, channels);
            for (int y = 0; y < 11; ++y)
                for (int x = 0; x < 37 * channels * (depth / 8); ++x)
                    picture.Data()[y * picture.Step() + x] = static_cast<unsigned char>(x * 31 + y * 57);
            filter->GetOutputImage(Evidence) = picture;
            OnWorker([&] { filter->Save(Evidence); });
            bool loaded = false;
            OnWorker([&] { filter->Load(Evidence, loaded); });
            ASSERT_TRUE(loaded) << depth << " " << channels;
            Image& back = filter->GetOutputImage(Evidence);
            ASSERT_EQ(channels, back.Channels());
            for (int y = 0; y < 11; ++y)
                EXPECT_EQ(0, memcmp(picture.Data() + y * picture.Step(), back.Data() + y * back.Step(),
                                    static_cast<size_t>(37 * channels * (depth / 8))));
        }
    }
}

TEST(CacheFiles, Removal_IsTrueWhereNothingStandsAfterwards) {
    support::TempDir const folder;
    WriteBytes(folder / "file", "x");
    EXPECT_TRUE(filtercache::RemoveFile(folder / "file"));
    EXPECT_FALSE(wxFileExists(folder / "file"));
    EXPECT_TRUE(filtercache::RemoveFile(folder / "file"));
    EXPECT_TRUE(filtercache::RemoveFile(folder / "none/file"));
    // A name that no file can have.
    EXPECT_TRUE(filtercache::RemoveFile(folder / wxString('n', 256)));
    // What stands behind a link that leads to itself can't be known.
    fs::create_symlink("loop", std::string((folder / "loop").utf8_str()));
    EXPECT_FALSE(filtercache::RemoveFile(folder / "loop/file"));
    EXPECT_TRUE(filtercache::RemoveFile(folder / "loop"));
}
