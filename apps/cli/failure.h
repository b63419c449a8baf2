// SPDX-License-Identifier: Apache-2.0
// What stops a command, or one file of it: the exit code, what it is about, and the reason.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "apps/cli/exitcodes.h"

namespace cli {

class Failure : public std::runtime_error {
public:
    // `subject` is a path, an option or a command; an empty one is left out of the message.
    Failure(ExitCode code, std::string subject, std::string const& reason)
        : std::runtime_error(reason), m_code(code), m_subject(std::move(subject)) {}

    ExitCode Code() const { return m_code; }
    std::string const& Subject() const { return m_subject; }

private:
    ExitCode m_code;
    std::string m_subject;
};

}  // namespace cli
