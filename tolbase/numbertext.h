// SPDX-License-Identifier: Apache-2.0
// Numbers as text and back, whatever the locale. Pure: any thread. Private to this library.
#pragma once
#include <wx/string.h>

#include <charconv>
#include <cstddef>
#include <string>
#include <type_traits>

#include "tolbase/text.h"

namespace tolbase {

// Shortest text that reads back to the same number.
template <class T>
wxString NumberToText(T number) {
    char digits[40];
    const auto result = std::to_chars(digits, digits + sizeof digits, number);
    return wxString::FromAscii(digits, static_cast<std::size_t>(result.ptr - digits));
}

// True if the text, blanks at its ends aside, is one number that fits.
template <class T>
bool TextToNumber(const wxString& text, T& number) {
    const std::string utf8 = ::TolToUtf8(::Trim(text));
    const char* begin = utf8.data();
    const char* end = begin + utf8.size();
    // A plus sign is read as people write it; "+-5" isn't.
    if (end - begin > 1 && *begin == '+' && begin[1] != '-') ++begin;
    T value{};
    const auto result = std::from_chars(begin, end, value);
    if (result.ec != std::errc() || result.ptr != end || begin == end) return false;
    number = value;
    return true;
}

}  // namespace tolbase
