// SPDX-License-Identifier: Apache-2.0
#include "filters/socialmedia.h"

#include "orvcore/smscollection.h"
#include "orvcore/socialmediatable.h"

OrvFilterSocialMedia::OrvFilterSocialMedia()
    : OrvFilterTable("Social Media Identification", std::make_unique<SocialMediaTableComparison>()) {
    m_onlyForJpeg = true;
    m_description =
        "Compares the fingerprint of the JPEG's encoding with those of files from social platforms, and names the "
        "platforms that it is most like.";
}

void OrvFilterSocialMedia::PreApply() {
    // Without signatures every file would pass for one that no platform has touched.
    SMSCollection().LoadInternalSignatures();
}

OrvFilter::FilterStatus OrvFilterSocialMedia::GetVerdict(VecVecString const& rows) const {
    // The platform stands in the second row; "-" for a negative verdict, nothing for a file that was not classified.
    bool const found = rows.size() > 1 && rows[1].size() > 1 && !rows[1][1].empty() && rows[1][1] != "-";
    return found ? FilterStatus::Warning : FilterStatus::Ok;
}
