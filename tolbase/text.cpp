// SPDX-License-Identifier: Apache-2.0
#include "tolbase/text.h"

#include <iostream>
#include <mutex>

#include "wxjson/utf8text.h"

wxString Trim(const wxString& text) {
    wxString trimmed(text);
    trimmed.Trim(true).Trim(false);
    return trimmed;
}

wxString CatVecString(const VecString& list, const wxString& separator) {
    wxString joined;
    bool first = true;
    for (const wxString& text : list) {
        if (!first) joined += separator;
        first = false;
        joined += text;
    }
    return joined;
}

wxString CatVecVecString(const VecVecString& table, const wxString& cellSeparator, const wxString& rowSeparator) {
    VecString rows;
    rows.reserve(table.size());
    for (const VecString& row : table) rows.push_back(CatVecString(row, cellSeparator));
    return CatVecString(rows, rowSeparator);
}

VecString StringToVecString(const wxString& text, const wxString& delimiters, const wxStringTokenizerMode& mode,
                            bool asTheyAre) {
    VecString tokens;
    wxStringTokenizer tokenizer(text, delimiters, mode);
    while (tokenizer.HasMoreTokens()) {
        const wxString token = tokenizer.GetNextToken();
        tokens.push_back(asTheyAre ? token : Trim(token));
    }
    return tokens;
}

VecString Strings(const wxString& s1, const wxString& s2, const wxString& s3, const wxString& s4, const wxString& s5,
                  const wxString& s6, const wxString& s7, const wxString& s8, const wxString& s9, const wxString& s10) {
    VecString list;
    for (const wxString* text : {&s1, &s2, &s3, &s4, &s5, &s6, &s7, &s8, &s9, &s10}) {
        if (text->empty()) break;
        list.push_back(*text);
    }
    return list;
}

std::string TolToUtf8(const wxString& text) {
    return wxJSONToUtf8(text);
}

wxString TolFromUtf8(const std::string& bytes) {
    const wxString text = wxString::FromUTF8(bytes.data(), bytes.size());
    return text.empty() && !bytes.empty() ? wxString::From8BitData(bytes.data(), bytes.size()) : text;
}

wxString EscapeHtmlString(const wxString& text) {
    wxString escaped;
    escaped.reserve(text.length());
    for (const wxUniChar c : text) {
        const wxUint32 code = c.GetValue();
        const bool control = (code < 0x20 && code != '\t' && code != '\n' && code != '\r') ||
                             (code >= 0x7F && code < 0xA0) || (code >= 0xD800 && code < 0xE000);
        if (control)
            escaped += wxUniChar(0xFFFD);
        else if (code == '&')
            escaped += "&amp;";
        else if (code == '<')
            escaped += "&lt;";
        else if (code == '>')
            escaped += "&gt;";
        else if (code == '"')
            escaped += "&quot;";
        else if (code == '\'')
            escaped += "&#39;";
        else
            escaped += c;
    }
    return escaped;
}

wxString TolEscapeUrlString(const wxString& text) {
    static const char hex[] = "0123456789ABCDEF";
    std::string escaped;
    for (const char c : TolToUtf8(text)) {
        const auto byte = static_cast<unsigned char>(c);
        const bool plain = (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z') ||
                           (byte >= '0' && byte <= '9') || byte == '-' || byte == '_' || byte == '.' || byte == '~';
        if (plain) {
            escaped += static_cast<char>(byte);
        } else {
            escaped += '%';
            escaped += hex[byte >> 4];
            escaped += hex[byte & 15];
        }
    }
    return wxString::FromAscii(escaped.c_str());
}

namespace {

std::mutex& HandlerMutex() {
    static std::mutex mutex;
    return mutex;
}

TolMessageHandler& Handler() {
    static TolMessageHandler handler;
    return handler;
}

void WriteToErrorOutput(const wxString& message, const wxString& title) {
    const wxString line = (title.empty() ? message : title + ": " + message) + "\n";
    std::cerr << TolToUtf8(line);
    std::cerr.flush();
}

}  // namespace

void TolSetMessageHandler(TolMessageHandler handler) {
    const std::lock_guard<std::mutex> lock(HandlerMutex());
    Handler() = std::move(handler);
}

void TolMessageBox(const wxString& message, const wxString& title) {
    TolMessageHandler handler;
    {
        const std::lock_guard<std::mutex> lock(HandlerMutex());
        handler = Handler();
    }
    // Called without the lock: a handler may set another one.
    try {
        if (handler)
            handler(message, title);
        else
            WriteToErrorOutput(message, title);
    } catch (...) {
        WriteToErrorOutput(message, title);
    }
}
