// SPDX-License-Identifier: Apache-2.0
// A web server of a test's own with one answer for every request.
#pragma once
#include <string>

#include "tests/support/webserver.h"

namespace support {

// Gives `answer` as it is to every connection; an empty one is never sent, and the connection stays open.
class LocalServer : public WebServer {
public:
    explicit LocalServer(const std::string& answer) : WebServer([answer](const std::string&) { return answer; }) {}
};

}  // namespace support
