// SPDX-License-Identifier: Apache-2.0
// The compiled table of signatures. Constant: any thread. Private to this library.
#pragma once
#include <cstddef>
#include <cstdint>

#include "orvcore/socialmediasignature.h"

// Texts end with a zero byte.
struct SocialMediaRecord {
    char file[33];
    char date[11];
    char hash[33];
    uint16_t head[SMS_FeatureLuminance];  // the elements in front of the quantisation steps
    uint16_t table;                       // index in SocialMediaTables
    uint16_t platform;                    // index in SocialMediaPlatforms
};

// Made during the build. A table holds the elements behind the head.
extern char const* const SocialMediaPlatforms[];
extern unsigned char const SocialMediaTables[][SMS_FeatureCount - SMS_FeatureLuminance];
extern SocialMediaRecord const SocialMediaRecords[];
extern size_t const SocialMediaRecordCount;

// The record at `index`, which must be below the count.
SocialMediaSignature MakeInternalSocialMediaSignature(size_t index);

// The identifier of a modelled record begins with twelve zeros and ends with the first half of that of the measured
// file that it is modelled on, or with zeros where there is none.
constexpr size_t kModelHalf = 16;
// True for such an identifier; `half` gets its end unless that is null.
bool IsModelledSocialMediaFile(wxString const& file, wxString* half);
