// SPDX-License-Identifier: Apache-2.0
// Signatures for the tests of the platform classifier.
#pragma once
#include <string>
#include <vector>

#include "orvcore/smscollection.h"

// 48 numbers: a size, no thumbnail, no EXIF, 11 markers, 4:2:0, and `step` for every coefficient.
inline std::vector<int> Feature(int width, int height, int step = 8) {
    std::vector<int> feature = {width, height, 0, 0, 0, 11, 2, 0};
    feature.resize(SMS_FeatureCount, step);
    return feature;
}

inline SocialMediaSignature Signature(wxString const& platform, std::vector<int> const& feature, wxString const& hash,
                                      SMS_Type type = SMS_Internal) {
    return SocialMediaSignature("file-" + hash, platform, "2020-02-02", hash, feature, type);
}

// Opens every range, so that all elements count: a signature of zeros and one of `top`, of platforms of their own that
// no other vector is like.
inline void OpenRanges(SMSCollection& collection, int top = 100) {
    collection.AddEntryToDatabase(Signature("Zeros", std::vector<int>(SMS_FeatureCount, 0), "zeros"));
    for (int i = 0; i < SMS_FeatureCount; ++i) {
        std::vector<int> one(SMS_FeatureCount, 0);
        one[static_cast<size_t>(i)] = top;
        collection.AddEntryToDatabase(Signature("Axes", one, "axis"));
    }
}
