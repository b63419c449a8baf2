// SPDX-License-Identifier: Apache-2.0
// Real and hostile pictures from the folder that ORV_SAMPLES names.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

#include "tolbase/file.h"
#include "tolimage/exiftool.h"
#include "tolimage/imagedetails.h"
#include "tolimage/imageio.h"

TEST(Samples, EachFile_LoadsOrTellsWhyNot) {
    char const* folder = std::getenv("ORV_SAMPLES");
    if (folder == nullptr) GTEST_SKIP() << "ORV_SAMPLES names no folder of sample pictures";
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (!entry.is_regular_file()) continue;
        const wxString path = PathFromBytes(entry.path().string());
        ExifToolPrefetch(path);
        const Image image(tcvLoadImage(path, true, false));
        EXPECT_EQ(image.IsOk(), tcvLastLoadError().empty()) << entry.path();
        const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(path);
        if (image.IsOk() && details.Format != "RAW") {
            EXPECT_EQ(image.Width(), details.EncodedWidth) << entry.path();
            EXPECT_EQ(image.Height(), details.EncodedHeight) << entry.path();
        }
        Image thumbnail(tcvLoadThumbnail(path));
        EXPECT_EQ(thumbnail.IsOk(), thumbnail.Width() > 0);
    }
}

TEST(Samples, Originals_AllLoadAndNameTheirCamera) {
    char const* folder = std::getenv("ORV_SAMPLES");
    if (folder == nullptr) GTEST_SKIP() << "ORV_SAMPLES names no folder of sample pictures";
    for (auto const& entry : std::filesystem::directory_iterator(std::filesystem::path(folder) / "originals")) {
        const wxString path = PathFromBytes(entry.path().string());
        EXPECT_TRUE(Image(tcvLoadImage(path, true, false)).IsOk()) << entry.path();
        const ImageDetailsExifTool details = tcvLoadImageDetailsExifTool(path);
        EXPECT_NE("", details.Make) << entry.path();
        EXPECT_GT(details.ExifFieldCount, 10) << entry.path();
    }
}
