// SPDX-License-Identifier: Apache-2.0
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>
#include <wx/stdpaths.h>

#include "tests/support/tempdir.h"
#include "tolbase/file.h"

TEST(Paths, FilenameNoPath_IsBehindTheLastSeparator) {
    EXPECT_EQ(wxString("c.d.jpg"), GetFilenameNoPath("/a/b/c.d.jpg"));
    EXPECT_EQ(wxString("c.jpg"), GetFilenameNoPath("c.jpg"));
    EXPECT_EQ(wxString("a\\b.jpg"), GetFilenameNoPath("/x/a\\b.jpg"));
    EXPECT_EQ(wxString(), GetFilenameNoPath("/a/"));
    EXPECT_EQ(wxString(), GetFilenameNoPath(""));
}

TEST(Paths, AbsoluteToRelative_ClimbsWhereItMust) {
    EXPECT_EQ(wxString("img/a.jpg"), FilenameAbsoluteToRelative("/case/img/a.jpg", "/case"));
    EXPECT_EQ(wxString("img/a.jpg"), FilenameAbsoluteToRelative("/case/img/a.jpg", "/case/"));
    EXPECT_EQ(wxString("../a.jpg"), FilenameAbsoluteToRelative("/case/a.jpg", "/case/project"));
    EXPECT_EQ(wxString("../../x/a b.jpg"), FilenameAbsoluteToRelative("/x/a b.jpg", "/case/project"));
    EXPECT_EQ(wxString("a.jpg"), FilenameAbsoluteToRelative("/a.jpg", "/"));
    EXPECT_EQ(wxString("../cases/a.jpg"), FilenameAbsoluteToRelative("/cases/a.jpg", "/case"));
}

TEST(Paths, AbsoluteToRelative_LeavesWhatItCannotTurn) {
    EXPECT_EQ(wxString(), FilenameAbsoluteToRelative("", "/case"));
    EXPECT_EQ(wxString("img/a.jpg"), FilenameAbsoluteToRelative("img/a.jpg", "/case"));
    EXPECT_EQ(wxString("/a.jpg"), FilenameAbsoluteToRelative("/a.jpg", ""));
}

TEST(Paths, RelativeToAbsolute_ResolvesPoints) {
    EXPECT_EQ(wxString("/case/img/a.jpg"), FilenameRelativeToAbsolute("img/a.jpg", "/case"));
    EXPECT_EQ(wxString("/a.jpg"), FilenameRelativeToAbsolute("../a.jpg", "/case"));
    EXPECT_EQ(wxString("/a.jpg"), FilenameRelativeToAbsolute("../../../a.jpg", "/case"));
    EXPECT_EQ(wxString("/case/a.jpg"), FilenameRelativeToAbsolute("./x/../a.jpg", "/case/"));
    EXPECT_EQ(wxString("/x/a.jpg"), FilenameRelativeToAbsolute("/x/a.jpg", "/case"));
    EXPECT_EQ(wxString(), FilenameRelativeToAbsolute("", "/case"));
}

TEST(Paths, RoundTrip_GivesThePathBack) {
    for (const char* path : {"/case/a.jpg", "/case/x/y/a.jpg", "/elsewhere/a b.jpg", "/a.jpg"})
        EXPECT_EQ(wxString(path),
                  FilenameRelativeToAbsolute(FilenameAbsoluteToRelative(path, "/case/project"), "/case/project"));
}

TEST(Paths, Documents_HaveADefaultAndCanBeSet) {
    const wxString standard = wxStandardPaths::Get().GetDocumentsDir() + "/Orvelle";
    EXPECT_EQ(standard, GetAppDocumentsPath());
    SetAppDocumentsPath("/some/where/");
    EXPECT_EQ(wxString("/some/where"), GetAppDocumentsPath());
    SetAppDocumentsPath("");
    EXPECT_EQ(standard, GetAppDocumentsPath());
}

TEST(Paths, Desktop_IsWhatTheUserSays) {
    const support::TempDir dir;
    setenv("HOME", "/home/somebody", 1);
    setenv("XDG_CONFIG_HOME", PathToBytes(dir.Path()).c_str(), 1);
    EXPECT_EQ(wxString("/home/somebody/Desktop"), GetUserDesktopPath());
    support::WriteBytes(dir / "user-dirs.dirs", "# comment\nXDG_DESKTOP_DIR=\"$HOME/Schreibtisch\"\n");
    EXPECT_EQ(wxString("/home/somebody/Schreibtisch"), GetUserDesktopPath());
    support::WriteBytes(dir / "user-dirs.dirs", "XDG_DESKTOP_DIR=\"/desk\"");
    EXPECT_EQ(wxString("/desk"), GetUserDesktopPath());
    support::WriteBytes(dir / "user-dirs.dirs", "XDG_DESKTOP_DIR=\"$(rm -rf)\"");
    EXPECT_EQ(wxString("/home/somebody/Desktop"), GetUserDesktopPath());
}

TEST(Browser, GetsTheAbsolutePathAsOneArgument) {
    const support::TempDir dir;
    support::WriteBytes(dir / "xdg-open",
                        "#!/bin/sh\nprintf '%s|%s' \"$#\" \"$1\" > \"$0.out.tmp\"\nmv \"$0.out.tmp\" \"$0.out\"\n");
    chmod(PathToBytes(dir / "xdg-open").c_str(), 0755);
    setenv("PATH", (PathToBytes(dir.Path()) + ":/usr/bin:/bin").c_str(), 1);
    const wxString page = support::WriteBytes(dir / "a $(touch x); b.html", "x");
    ASSERT_TRUE(LaunchDefaultBrowserLocalFile(page));
    for (int i = 0; i < 500 && access(PathToBytes(dir / "xdg-open.out").c_str(), F_OK) != 0; ++i) usleep(10000);
    EXPECT_EQ("1|" + PathToBytes(page), support::ReadBytes(dir / "xdg-open.out"));
}

TEST(Browser, WhatCannotBeOpened_IsFalse) {
    const support::TempDir dir;
    EXPECT_FALSE(LaunchDefaultBrowserLocalFile(dir / "none.html"));
    EXPECT_FALSE(LaunchDefaultBrowserLocalFile(""));
    const wxString page = support::WriteBytes(dir / "a.html", "x");
    setenv("PATH", PathToBytes(dir.Path()).c_str(), 1);
    EXPECT_FALSE(LaunchDefaultBrowserLocalFile(page));
}
