// SPDX-License-Identifier: Apache-2.0
// Texts on their way out. Within the command a text is UTF-8 in a std::string and a path is the bytes that the system
// knows it by, in whatever encoding; the engine speaks wxString.
#pragma once

#include <wx/string.h>

#include <string>
#include <string_view>

namespace cli {

// UTF-8 of an engine's text. Bytes of a path that are not UTF-8 come out as "\xNN".
std::string ToUtf8(wxString const& text);
wxString FromUtf8(std::string_view text);

bool IsUtf8(std::string_view bytes);

// One line without a way to steer a terminal or to pass for two: control characters, line and paragraph separators and
// marks that turn the direction of text are escaped ("\n", "\x1b", "\u{202e}"), bytes that are not UTF-8 become "\xNN".
std::string Printable(std::string_view text);

// Valid UTF-8: bytes that are not become "\xNN", all else stays.
std::string Valid(std::string_view text);

// Every byte other than letters, digits, "-", ".", "_", "~" and "/" as "%NN".
std::string PercentEscaped(std::string_view bytes);

// A text of the program's own in the user's language.
std::string Translated(std::string const& text);

// Characters, not bytes.
size_t CountCharacters(std::string_view utf8);

}  // namespace cli
