// SPDX-License-Identifier: Apache-2.0
// The stamp of versions in a cache folder.
#include <sys/stat.h>

#include "tests/orvcore/cachefilters.h"

using support::CachedImageFilter;
using support::CachedPlotFilter;
using support::NamesIn;
using support::ReadBytes;
using support::WriteBytes;

namespace {

namespace fs = std::filesystem;

class CacheStamp : public support::CacheEngine {
protected:
    wxString StampFile() { return Folder() + "/.versions"; }
    wxString Status(wxString const& behind) { return CacheStem(Evidence, behind + ".status"); }
    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        std::string line;
        for (char const c : ReadBytes(StampFile())) {
            if (c == '\n')
                lines.push_back(line), line.clear();
            else
                line += c;
        }
        EXPECT_TRUE(line.empty()) << "the last line has an end";
        return lines;
    }
    // Runs for n = 1; true if that was a reload.
    bool Reloads(OrvFilter* filter) {
        RunWith(filter, 1);
        return filter->ConfiguredFromCache(Evidence);
    }
    CachedImageFilter* AddStored() {
        auto* filter = Add(new CachedImageFilter);
        LoadPicture();
        RunWith(filter, 1);
        return filter;
    }
};

}  // namespace

TEST_F(CacheStamp, Load_WritesItBesideTheCopy) {
    LoadPicture();
    EXPECT_EQ((std::vector<std::string>{".versions", "a.png"}), NamesIn(Folder()));
    std::vector<std::string> const lines = Lines();
    ASSERT_EQ(11U, lines.size());
    EXPECT_EQ("Orvelle cache 1", lines[0]);
    char const* const names[] = {"engine", "OpenCV",  "ExifTool", "libjpeg-turbo", "libpng",
                                 "zlib",   "libtiff", "libwebp",  "libheif",       "LibRaw"};
    for (size_t i = 0; i < 10; ++i) {
        EXPECT_EQ(std::string(names[i]) + ": ", lines[i + 1].substr(0, std::string(names[i]).size() + 2));
        EXPECT_GT(lines[i + 1].size(), std::string(names[i]).size() + 2);
    }
}

TEST_F(CacheStamp, SameVersions_ReloadAcrossLoads) {
    auto* filter = AddStored();
    std::string const stamp = ReadBytes(StampFile());
    EXPECT_TRUE(Reloads(filter));
    Load(dir / "in/a.png");
    EXPECT_TRUE(Reloads(filter));
    EXPECT_EQ(stamp, ReadBytes(StampFile()));
}

TEST_F(CacheStamp, AnyOtherLine_MakesResultsAnew) {
    auto* filter = AddStored();
    std::string const whole = ReadBytes(StampFile());
    for (size_t at = whole.find('\n'); at != std::string::npos; at = whole.find('\n', at + 1)) {
        std::string other = whole;
        WriteBytes(StampFile(), other.insert(at, "0"));
        EXPECT_FALSE(Reloads(filter)) << other;
        EXPECT_EQ(whole, ReadBytes(StampFile()));
        EXPECT_TRUE(Reloads(filter));
    }
}

TEST_F(CacheStamp, MissingOrBroken_MakesResultsAnew) {
    auto* filter = AddStored();
    std::string const whole = ReadBytes(StampFile());
    fs::remove(PathToBytes(StampFile()));
    EXPECT_FALSE(Reloads(filter));
    for (std::string const& text :
         {std::string(), whole.substr(0, whole.size() - 1), whole.substr(0, 15), whole + "more", whole + "more\n",
          whole + "filter: x Picture\n", whole + "filter: 1\n", whole + "filter: 2 A\nfilter: 3 A\n",
          whole + "filter: 99999999999 A\n", whole + std::string(100000, 'x'), std::string(5000, '\0')}) {
        WriteBytes(StampFile(), text);
        EXPECT_FALSE(Reloads(filter)) << text.substr(0, 300);
        EXPECT_EQ(whole, ReadBytes(StampFile()));
    }
    EXPECT_TRUE(Reloads(filter));
}

TEST_F(CacheStamp, OtherVersionsResults_ArePromisedNoMore) {
    auto* picture = AddStored();
    auto* curve = Add(new CachedPlotFilter);
    RunWith(curve, 1);
    RunWith(picture, 2);
    WriteBytes(StampFile(), "Orvelle cache 1\nengine: 0.0.1-1\n");
    Load(dir / "in/a.png");
    EXPECT_TRUE(GetAllFiles(Folder(), {"status"}, false).empty());
    EXPECT_FALSE(Reloads(picture));
    EXPECT_FALSE(Reloads(curve));
    EXPECT_TRUE(Reloads(picture));
}

TEST_F(CacheStamp, OneFiltersRun_EndsTheTrustInAllOfAnotherVersion) {
    auto* picture = AddStored();
    auto* curve = Add(new CachedPlotFilter);
    RunWith(curve, 1);
    fs::remove(PathToBytes(StampFile()));
    EXPECT_FALSE(Reloads(picture));
    EXPECT_FALSE(wxFileExists(Status("Curve-1")));
    EXPECT_FALSE(Reloads(curve));
}

TEST_F(CacheStamp, OtherVersionOfOneFilter_LeavesTheOthersResults) {
    auto* picture = AddStored();
    auto* curve = Add(new CachedPlotFilter);
    RunWith(curve, 1);
    RunWith(picture, 2);
    support::SetVersion(picture, 7);
    EXPECT_FALSE(Reloads(picture));
    EXPECT_EQ("filter: 7 Picture", Lines().back());
    EXPECT_FALSE(wxFileExists(Status("Picture-2"))) << "made by the old version too";
    EXPECT_TRUE(Reloads(picture));
    EXPECT_TRUE(Reloads(curve));
    support::SetVersion(picture, 1);
    EXPECT_FALSE(Reloads(picture));
    EXPECT_EQ(11U, Lines().size());
    EXPECT_TRUE(Reloads(curve));
}

TEST_F(CacheStamp, LoadWithANewerFilter_TakesItsOldStatusAway) {
    auto* picture = AddStored();
    auto* curve = Add(new CachedPlotFilter);
    RunWith(curve, 1);
    support::SetVersion(picture, 2);
    Load(dir / "in/a.png");
    EXPECT_FALSE(wxFileExists(Status("Picture-1")));
    EXPECT_TRUE(wxFileExists(Status("Curve-1")));
    EXPECT_EQ("filter: 2 Picture", Lines().back());
}

TEST_F(CacheStamp, FilterThatNamesItsOwnResults_IsMadeAnewToo) {
    class Named : public CachedImageFilter {
    public:
        wxString GetCacheFilenameCustom(OrvFileId id, VecParameter const& parameters) const override {
            return wxPathOnly(GetContext()->GetOutputBasePath(id)) + "/own-" + parameters[0].ToReport();
        }
    };
    auto* filter = Add(new Named);
    LoadPicture();
    RunWith(filter, 1);
    EXPECT_TRUE(wxFileExists(Folder() + "/own-1.status"));
    EXPECT_TRUE(Reloads(filter));
    support::SetVersion(filter, 2);
    EXPECT_FALSE(Reloads(filter));
    EXPECT_TRUE(Reloads(filter));
}

TEST_F(CacheStamp, LineBreakInAFiltersName_EndsNoLine) {
    auto* filter = Add(new CachedImageFilter("Two\nLines"));
    support::SetVersion(filter, 3);
    LoadPicture();
    EXPECT_EQ("filter: 3 Two_Lines", Lines().back());
    RunWith(filter, 1);
    EXPECT_TRUE(Reloads(filter));
}

TEST_F(CacheStamp, StatusOfConfigurations_IsNotToldFromAnotherVersion) {
    auto* filter = AddStored();
    context->UpdateFiltersStatus();
    EXPECT_EQ(OrvFilterConfiguration::Ok, filter->GetConfigurations()[0].GetFilterStatus());
    WriteBytes(StampFile(), "Orvelle cache 1\n");
    context->UpdateFiltersStatus();
    EXPECT_EQ(OrvFilterConfiguration::NotCalculated, filter->GetConfigurations()[0].GetFilterStatus());
}

TEST_F(CacheStamp, CacheOff_LeavesAFolderWithResultsAlone) {
    auto* filter = AddStored();
    WriteBytes(StampFile(), "Orvelle cache 0\n");
    context->EnableCache(false);
    Load(dir / "in/a.png");
    RunWith(filter, 1);
    EXPECT_EQ("Orvelle cache 0\n", ReadBytes(StampFile()));
    EXPECT_EQ("Ok", ReadBytes(Status("Picture-1")));
    context->EnableCache(true);
    EXPECT_FALSE(Reloads(filter));
    EXPECT_TRUE(Reloads(filter));
}

TEST_F(CacheStamp, FolderMadeAnewByARun_HasItsStamp) {
    auto* filter = AddStored();
    std::string const stamp = ReadBytes(StampFile());
    Run([&] { iface->DeleteCache(Evidence); });
    EXPECT_FALSE(wxDirExists(Folder()));
    EXPECT_FALSE(Reloads(filter));
    EXPECT_EQ(stamp, ReadBytes(StampFile()));
    EXPECT_TRUE(Reloads(filter));
}

TEST_F(CacheStamp, FolderInItsPlace_EndsTheTrustAndTheStoring) {
    auto* filter = AddStored();
    fs::remove(PathToBytes(StampFile()));
    fs::create_directories(PathToBytes(StampFile() + "/x"));
    EXPECT_FALSE(Reloads(filter));
    EXPECT_FALSE(filter->GetCacheMessage().empty());
    EXPECT_FALSE(Reloads(filter));
}

TEST_F(CacheStamp, ReferencesFolder_HasItsOwn) {
    auto* filter = AddStored();
    Load(Png("b.png", support::Solid(16, 8, {9, 9, 9})), Reference);
    EXPECT_EQ(ReadBytes(StampFile()), ReadBytes(Folder(Reference) + "/.versions"));
    RunWith(filter, 1);
    fs::remove(PathToBytes(Folder(Reference) + "/.versions"));
    RunWith(filter, 1);
    EXPECT_TRUE(filter->ConfiguredFromCache(Evidence));
    EXPECT_FALSE(filter->ConfiguredFromCache(Reference));
}

TEST_F(CacheStamp, VersionOfAFilter_IsOneUnlessItSaysOtherwise) {
    CachedImageFilter filter;
    EXPECT_EQ(1, filter.GetVersion());
    support::SetVersion(&filter, 4);
    EXPECT_EQ(4, CachedImageFilter(filter).GetVersion());
}
