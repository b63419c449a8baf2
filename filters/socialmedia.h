// SPDX-License-Identifier: Apache-2.0
// Whether a JPEG comes from a social platform, as a filter.
//
// The nearest neighbours of a fingerprint of the encoder's settings; T. Cover and P. Hart, "Nearest neighbor pattern
// classification", IEEE Transactions on Information Theory 13 (1967). That platforms can be told apart by such
// settings: O. Giudice, A. Paratore, M. Moltisanti and S. Battiato, "A classification engine for image ballistics of
// social data", ICIAP (2017).
#pragma once
#include "filters/tablefilter.h"
#include "tolbase/export.h"

// The table of SocialMediaTable. The status is Warning where a platform was found: the file is then not the one that
// the camera wrote. The compiled signatures are loaded if no one has done that; the user's own are the application's to
// load.
class ORV_API OrvFilterSocialMedia : public OrvFilterTable {
public:
    OrvFilterSocialMedia();

    void PreApply() override;

protected:
    FilterStatus GetVerdict(VecVecString const& rows) const override;
};
