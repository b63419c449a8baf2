// SPDX-License-Identifier: Apache-2.0
// The compiled table of signatures. Constant: any thread. Private to this library.
#pragma once
#include <cstddef>

#include "orvcore/socialmediasignature.h"

size_t GetInternalSocialMediaRecordCount();
// The record at `index`, which must be below the count.
SocialMediaSignature MakeInternalSocialMediaSignature(size_t index);
