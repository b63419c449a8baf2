// SPDX-License-Identifier: Apache-2.0
// All of the concrete filters.
#pragma once
#include "filters/original.h"
#include "filters/panelfactory.h"
#include "filters/registry.h"
