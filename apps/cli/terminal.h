// SPDX-License-Identifier: Apache-2.0
// The program's words to the person before it: messages and progress on the error output, never on standard output.
#pragma once

#include <atomic>
#include <cstddef>
#include <string>
#include <string_view>

namespace cli {

class Terminal {
public:
    Terminal();

    void SetQuiet(bool quiet) { m_quiet = quiet; }
    void SetVerbose(bool verbose) { m_verbose = verbose; }
    bool IsVerbose() const { return m_verbose; }
    bool IsQuiet() const { return m_quiet; }

    // "orvelle: SUBJECT: reason" on a line of its own, both made printable. Shown with --quiet too.
    void Error(std::string_view subject, std::string_view reason);
    // The same for what is no failure; not shown with --quiet.
    void Warning(std::string_view subject, std::string_view reason);
    // Shown with --verbose only.
    void Note(std::string_view text);
    // Shown on a terminal or with --verbose, and not with --quiet.
    void Summary(std::string_view text);

    // A step of a long run, on a line of its own, also where the error output is a file; not with --quiet.
    void Step(std::string_view text);

    // One line that is written over and over; only on a terminal and not with --quiet.
    void Progress(size_t done, size_t total, std::string_view path);
    // The same for one long piece of work: what is being done.
    void Status(std::string_view text);
    void ClearProgress();

    // Colours for standard output: a terminal, and NO_COLOR is unset or empty.
    bool HasColour() const { return m_colour; }

private:
    void Line(std::string const& text);

    bool m_quiet = false;
    bool m_verbose = false;
    bool m_errorIsTerminal;
    bool m_colour;
    std::atomic<bool> m_progressShown{false};  // messages may come from the worker
    std::string m_status;                      // as last shown
};

// Writes all of `bytes` to a descriptor; false, with errno, if that fails.
bool WriteAll(int descriptor, std::string_view bytes);

}  // namespace cli
