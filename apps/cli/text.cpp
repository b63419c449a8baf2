// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/text.h"

#include <array>

#include "orvcore/translate.h"
#include "tolbase/file.h"

namespace cli {

namespace {

std::string Hex(uint32_t value, size_t digits) {
    static constexpr char symbols[] = "0123456789abcdef";
    std::string text;
    do {
        text.insert(text.begin(), symbols[value & 15U]);
        value >>= 4U;
    } while (value != 0 || text.size() < digits);
    return text;
}

// Length of the well-formed UTF-8 sequence at the start of `bytes`, 0 if there is none; `point` is what it stands for.
size_t Decode(std::string_view bytes, uint32_t& point) {
    const auto at = [&](size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    if (lead < 0x80) {
        point = lead;
        return 1;
    }
    const size_t length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
    if (lead < 0xC2 || lead > 0xF4 || bytes.size() < length) return 0;
    point = lead & (0xFFU >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0U) != 0x80U) return 0;
        point = (point << 6U) | (at(i) & 0x3FU);
    }
    static constexpr std::array<uint32_t, 5> least = {0, 0, 0x80, 0x800, 0x10000};
    if (point < least[length] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) return 0;
    return length;
}

bool Steers(uint32_t point) {
    return point < 0x20 || (point >= 0x7F && point <= 0x9F) || (point >= 0x2028 && point <= 0x202E) ||
           (point >= 0x2066 && point <= 0x2069) || point == 0x200E || point == 0x200F || point == 0x061C ||
           point == 0xFEFF;
}

std::string Escaped(uint32_t point) {
    switch (point) {
        case '\n':
            return "\\n";
        case '\r':
            return "\\r";
        case '\t':
            return "\\t";
        default:
            return point < 0x80 ? "\\x" + Hex(point, 2) : "\\u{" + Hex(point, 4) + "}";
    }
}

std::string Cleaned(std::string_view text, bool escapeControls) {
    std::string clean;
    clean.reserve(text.size());
    while (!text.empty()) {
        uint32_t point = 0;
        const size_t length = Decode(text, point);
        if (length == 0) {
            clean += "\\x" + Hex(static_cast<unsigned char>(text[0]), 2);
            text.remove_prefix(1);
            continue;
        }
        if (escapeControls && Steers(point)) {
            clean += Escaped(point);
        } else {
            clean.append(text.substr(0, length));
        }
        text.remove_prefix(length);
    }
    return clean;
}

}  // namespace

std::string ToUtf8(wxString const& text) {
    return Valid(PathToBytes(text));
}

wxString FromUtf8(std::string_view text) {
    const std::string valid = Valid(text);
    return wxString::FromUTF8(valid.data(), valid.size());
}

bool IsUtf8(std::string_view bytes) {
    uint32_t point = 0;
    while (!bytes.empty()) {
        const size_t length = Decode(bytes, point);
        if (length == 0) return false;
        bytes.remove_prefix(length);
    }
    return true;
}

std::string Printable(std::string_view text) {
    return Cleaned(text, true);
}

std::string Valid(std::string_view text) {
    return Cleaned(text, false);
}

std::string PercentEscaped(std::string_view bytes) {
    static constexpr char symbols[] = "0123456789ABCDEF";
    std::string text;
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' ||
                           c == '.' || c == '_' || c == '~' || c == '/';
        if (plain) {
            text.push_back(c);
        } else {
            text += {'%', symbols[byte >> 4U], symbols[byte & 15U]};
        }
    }
    return text;
}

std::string Translated(std::string const& text) {
    return ToUtf8(OrvTranslate(FromUtf8(text)));
}

size_t CountCharacters(std::string_view utf8) {
    size_t count = 0;
    for (const char c : utf8) count += (static_cast<unsigned char>(c) & 0xC0U) != 0x80U ? 1 : 0;
    return count;
}

}  // namespace cli
