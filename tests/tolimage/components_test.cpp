// SPDX-License-Identifier: Apache-2.0
#include "tolimage/components.h"

#include <gtest/gtest.h>

#include <map>

#include "tests/support/tempdir.h"
#include "tolimage/exiftool.h"

TEST(Components, Each_HasAVersionThatBeginsWithADigit) {
    std::map<wxString, wxString> versions;
    for (auto const& each : GetComponentVersions()) versions[each.first] = each.second;
    for (char const* name : {"OpenCV", "wxWidgets", "Boost", "nlohmann-json", "libcurl", "OpenSSL", "ExifTool",
                             "libjpeg-turbo", "libpng", "zlib", "libtiff", "libwebp", "libheif", "LibRaw", "qpdf"}) {
        ASSERT_EQ(1U, versions.count(name)) << name;
        EXPECT_TRUE(wxIsdigit(versions[name][0])) << name << " " << versions[name].utf8_str();
        EXPECT_TRUE(versions[name].Contains(".")) << name << " " << versions[name].utf8_str();
    }
}

TEST(Components, ExifToolVersion_IsTheOneThatItPrints) {
    support::TempDir dir;
    const wxString file = support::WriteBytes(dir / "a.txt", "x");
    const ExifToolValues values = ExifToolRead(file);
    ASSERT_FALSE(values.empty());
    ASSERT_EQ("ExifToolVersion", values[0].tag);
    EXPECT_EQ(values[0].value, ExifToolVersion());
}

TEST(Components, MissingExifTool_IsNotFound) {
    ExifToolSetProgram("/nowhere/exiftool");
    wxString version;
    for (auto const& each : GetComponentVersions()) {
        if (each.first == "ExifTool") version = each.second;
    }
    ExifToolSetProgram(wxString());
    EXPECT_EQ("not found", version);
}
