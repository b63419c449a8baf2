// SPDX-License-Identifier: Apache-2.0
#include "orvcore/smstable.h"

size_t GetInternalSocialMediaRecordCount() {
    return 0;
}

SocialMediaSignature MakeInternalSocialMediaSignature(size_t /*index*/) {
    return SocialMediaSignature();
}
