// SPDX-License-Identifier: Apache-2.0
// Text as UTF-8 without wxString's hidden buffer: its own conversions keep their result in the string, so that two
// threads that read one string would write to it. Pure: any thread. Private to these libraries.
#pragma once
#include <wx/string.h>

#include <string>

// Never fails: what is no character (half a surrogate pair, a number beyond Unicode) becomes U+FFFD.
std::string wxJSONToUtf8(const wxString& text);
