// SPDX-License-Identifier: Apache-2.0
// Places of the options in the first group, "General Settings". Constants only: any thread, nothing owned.
#pragma once
#include <cstddef>

enum OrvOptionNumber : std::size_t {
    OrvOptionLanguage = 0,
    OrvOptionHiDpi = 1,
    OrvOptionLog = 2,
    OrvOptionCache = 3,
    OrvOptionCacheLocation = 4,
    OrvOptionCacheFolder = 5,
    OrvOptionCacheFormat = 6,
    OrvOptionJpgQuality = 7,
    OrvOptionConfigurations = 8,
    OrvOptionSearchSubfolders = 9,
    OrvOptionHideBestMatching = 10,
    OrvOptionPrnuThreshold = 11,
    OrvOptionReportMaxWidth = 12,
    OrvOptionReportMinWidth = 13,
    OrvOptionCount = 14,
};
