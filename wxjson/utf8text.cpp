// SPDX-License-Identifier: Apache-2.0
#include "wxjson/utf8text.h"

#include <cstdint>

namespace {

void Append(std::string& bytes, uint32_t code) {
    const auto put = [&bytes](uint32_t byte) { bytes += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) code = 0xFFFD;
    if (code < 0x80) {
        put(code);
    } else if (code < 0x800) {
        put(0xC0 | code >> 6);
        put(0x80 | (code & 0x3F));
    } else if (code < 0x10000) {
        put(0xE0 | code >> 12);
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    } else {
        put(0xF0 | code >> 18);
        put(0x80 | (code >> 12 & 0x3F));
        put(0x80 | (code >> 6 & 0x3F));
        put(0x80 | (code & 0x3F));
    }
}

}  // namespace

std::string wxJSONToUtf8(const wxString& text) {
    std::string bytes;
    bytes.reserve(text.length());
    for (const wxUniChar c : text) Append(bytes, c.GetValue());
    return bytes;
}
