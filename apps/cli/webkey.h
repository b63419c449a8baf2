// SPDX-License-Identifier: Apache-2.0
// Keys of web services as they come to the program: never from the command line, never into a message.
#pragma once

#include <string>

namespace cli {

class Session;

// The key's text: the first line of `file` if that is given ("-" is standard input), else the environment's
// ORVELLE_API_KEY if `environment` is set, else the program option, which may be empty. Throws Failure for a file that
// can't be read.
std::string FindKey(Session& session, std::string const& file, bool environment, std::string const& option);

// Sets the program option for this run, not in the settings file.
void UseKey(Session& session, std::string const& option, std::string const& key);

}  // namespace cli
