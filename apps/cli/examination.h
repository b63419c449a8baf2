// SPDX-License-Identifier: Apache-2.0
// The examination of files one by one: load, evaluate, make sure that the file is still the one that was loaded.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "apps/cli/command.h"
#include "apps/cli/record.h"
#include "orvcore/context.h"

namespace cli {

class Session;

// Fills rows and rules of a record from the slot; runs on the worker thread with the file loaded.
using FillRecord = std::function<void(OrvFileId slot, Record& record)>;

// Examines one file in a slot. Throws Failure (ExitInput) with the reason where that can't be done. False if the person
// has interrupted.
bool Examine(Session& session, std::string const& path, OrvFileId slot, FillRecord const& fill, Record& record);

// Asks ExifTool for a file in advance; nothing for what is no regular file.
void AskAhead(std::string const& path);

}  // namespace cli
