// SPDX-License-Identifier: Apache-2.0
// The heavy headers that nearly every source of this library includes.
#pragma once
#include <wx/event.h>
#include <wx/filefn.h>
#include <wx/filename.h>
#include <wx/string.h>
#include <wx/thread.h>

#include <algorithm>
#include <boost/any.hpp>
#include <cstdint>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>
