// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/terminal.h"

#include <unistd.h>

#include <cerrno>
#include <cstdlib>

#include "apps/cli/text.h"

namespace cli {

namespace {

bool WantsColour() {
    char const* const noColour = std::getenv("NO_COLOR");
    if (noColour != nullptr && *noColour != '\0') return false;
    char const* const term = std::getenv("TERM");
    return isatty(STDOUT_FILENO) == 1 && term != nullptr && std::string_view(term) != "dumb";
}

// The end of a long path tells more than its start.
std::string Shortened(std::string const& text, size_t most) {
    if (CountCharacters(text) <= most) return text;
    size_t cut = text.size();
    for (size_t left = most - 3; left > 0 && cut > 0;) {
        --cut;
        if ((static_cast<unsigned char>(text[cut]) & 0xC0U) != 0x80U) --left;
    }
    return "..." + text.substr(cut);
}

}  // namespace

bool WriteAll(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written < 0) {
            if (errno == EINTR) continue;
            return false;
        }
        bytes.remove_prefix(static_cast<size_t>(written));
    }
    return true;
}

Terminal::Terminal() : m_errorIsTerminal(isatty(STDERR_FILENO) == 1), m_colour(WantsColour()) {}

void Terminal::Line(std::string const& text) {
    ClearProgress();
    // A closed error output leaves nobody to tell.
    static_cast<void>(WriteAll(STDERR_FILENO, text + "\n"));
}

void Terminal::Error(std::string_view subject, std::string_view reason) {
    std::string line = "orvelle: ";
    if (!subject.empty()) line += Printable(subject) + ": ";
    Line(line + Printable(reason));
}

void Terminal::Warning(std::string_view subject, std::string_view reason) {
    if (!m_quiet) Error(subject, "warning: " + std::string(reason));
}

void Terminal::Note(std::string_view text) {
    if (m_verbose) Line("orvelle: " + Printable(text));
}

void Terminal::Summary(std::string_view text) {
    if ((m_errorIsTerminal || m_verbose) && !m_quiet) Line("orvelle: " + Printable(text));
}

void Terminal::Step(std::string_view text) {
    if (!m_quiet) Line(Printable(text));
}

void Terminal::Progress(size_t done, size_t total, std::string_view path) {
    if (!m_errorIsTerminal || m_quiet || total < 2) return;
    const std::string count = "[" + std::to_string(done) + "/" + std::to_string(total) + "] ";
    static_cast<void>(WriteAll(STDERR_FILENO, "\r\x1b[K" + count + Shortened(Printable(path), 60)));
    m_progressShown = true;
}

void Terminal::Status(std::string_view text) {
    if (!m_errorIsTerminal || m_quiet || (m_progressShown && text == m_status)) return;
    m_status = text;
    static_cast<void>(WriteAll(STDERR_FILENO, "\r\x1b[K" + Shortened(Printable(text), 76)));
    m_progressShown = true;
}

void Terminal::ClearProgress() {
    if (!m_progressShown) return;
    m_progressShown = false;
    static_cast<void>(WriteAll(STDERR_FILENO, "\r\x1b[K"));
}

}  // namespace cli
