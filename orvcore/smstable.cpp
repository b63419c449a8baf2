// SPDX-License-Identifier: Apache-2.0
#include "orvcore/smstable.h"

#include <iterator>

SocialMediaSignature MakeInternalSocialMediaSignature(size_t index) {
    SocialMediaRecord const& record = SocialMediaRecords[index];
    auto const& table = SocialMediaTables[record.table];
    std::vector<int> feature;
    feature.reserve(SMS_FeatureCount);
    feature.insert(feature.end(), std::begin(record.head), std::end(record.head));
    feature.insert(feature.end(), std::begin(table), std::end(table));
    return SocialMediaSignature(
        wxString::FromAscii(record.file), wxString::FromAscii(SocialMediaPlatforms[record.platform]),
        wxString::FromAscii(record.date), wxString::FromAscii(record.hash), std::move(feature), SMS_Internal);
}

bool IsModelledSocialMediaFile(wxString const& file, wxString* half) {
    if (file.length() != 2 * kModelHalf || !file.StartsWith("000000000000")) return false;
    if (half != nullptr) *half = file.Mid(kModelHalf);
    return true;
}
