// SPDX-License-Identifier: Apache-2.0
// The heavy headers that nearly every test includes.
#pragma once
#include <gtest/gtest.h>
#include <wx/event.h>
#include <wx/string.h>
#include <wx/thread.h>

#include <boost/any.hpp>
#include <map>
#include <memory>
#include <opencv2/core.hpp>
#include <string>
#include <vector>
