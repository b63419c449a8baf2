// SPDX-License-Identifier: Apache-2.0
#include "wx/jsonreader.h"

#include <wx/stream.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "wxjson/jsonrepair.h"
#include "wxjson/utf8text.h"

namespace {

using Json = nlohmann::json;

// The text of a message, which may quote bytes of the file.
wxString MessageText(const std::string& message) {
    const std::string brief = message.size() > 300 ? message.substr(0, 300) : message;
    const wxString text = wxString::FromUTF8(brief.data(), brief.size());
    return text.empty() ? wxString::From8BitData(brief.data(), brief.size()) : text;
}

// Builds a value out of the parser's events. The stack points into the value: an element that is open is the last one
// of its parent, which does not grow before it is closed.
class Builder : public nlohmann::json_sax<Json> {
public:
    Builder(wxJSONValue& root, int maxDepth) : m_root(root), m_maxDepth(maxDepth) {}

    bool null() override { return Put(wxJSONValue()); }
    bool boolean(bool value) override { return Put(wxJSONValue(value)); }
    bool number_integer(number_integer_t value) override { return Put(wxJSONValue(value)); }
    bool number_unsigned(number_unsigned_t value) override {
        constexpr auto largest = static_cast<number_unsigned_t>(INT64_MAX);
        return value <= largest ? Put(wxJSONValue(static_cast<int64_t>(value))) : Put(wxJSONValue(value));
    }
    bool number_float(number_float_t value, const string_t&) override { return Put(wxJSONValue(value)); }
    bool string(string_t& value) override { return Put(wxJSONValue(wxString::FromUTF8(value.data(), value.size()))); }
    bool binary(binary_t&) override { return false; }
    bool start_object(std::size_t) override { return Open(wxJSONTYPE_OBJECT); }
    bool key(string_t& value) override {
        m_key = wxString::FromUTF8(value.data(), value.size());
        return true;
    }
    bool end_object() override { return Close(); }
    bool start_array(std::size_t) override { return Open(wxJSONTYPE_ARRAY); }
    bool end_array() override { return Close(); }
    bool parse_error(std::size_t, const std::string&, const Json::exception& error) override {
        m_message = error.what();
        const std::size_t prefix = m_message.find("] ");
        if (prefix != std::string::npos) m_message.erase(0, prefix + 2);
        return false;
    }

    int GetDeepest() const { return m_deepest; }
    const std::string& GetMessage() const { return m_message; }

private:
    wxJSONValue& Slot() {
        if (m_open.empty()) return m_root;
        wxJSONValue& parent = *m_open.back();
        return parent.IsObject() ? parent.Item(m_key) : parent.Append(wxJSONValue());
    }
    bool Put(wxJSONValue&& value) {
        Slot() = std::move(value);
        return true;
    }
    bool Open(wxJSONType type) {
        if (static_cast<int>(m_open.size()) >= m_maxDepth) {
            m_message = "arrays and objects are nested deeper than " + std::to_string(m_maxDepth) + " levels";
            return false;
        }
        wxJSONValue& slot = Slot();
        slot.SetType(type);
        m_open.push_back(&slot);
        m_deepest = std::max(m_deepest, static_cast<int>(m_open.size()));
        return true;
    }
    bool Close() {
        m_open.pop_back();
        return true;
    }

    wxJSONValue& m_root;
    int m_maxDepth;
    int m_deepest = 0;
    wxString m_key;
    std::vector<wxJSONValue*> m_open;
    std::string m_message;
};

}  // namespace

wxJSONReader::wxJSONReader(int flags, int maxErrors) : m_flags(flags), m_maxErrors(std::max(maxErrors, 1)) {}

void wxJSONReader::SetLimits(int maxDepth, std::size_t maxBytes) {
    m_maxDepth = std::clamp(maxDepth, 1, wxJSON_HARD_DEPTH);
    m_maxBytes = maxBytes;
}

void wxJSONReader::AddError(const wxString& message) {
    if (static_cast<int>(m_errors.size()) < m_maxErrors) m_errors.Add(message);
}

void wxJSONReader::AddWarning(const wxString& message) {
    if (static_cast<int>(m_warnings.size()) < m_maxErrors) m_warnings.Add(message);
}

std::string wxJSONReader::ParseStrict(const std::string& text, wxJSONValue* value) {
    wxJSONValue root;
    Builder builder(root, m_maxDepth);
    const bool comments = (m_flags & wxJSONREADER_ALLOW_COMMENTS) != 0;
    const bool good = Json::sax_parse(text, &builder, Json::input_format_t::json, true, comments);
    m_depth = builder.GetDeepest();
    if (value != nullptr) *value = std::move(root);
    if (good) return std::string();
    return builder.GetMessage().empty() ? "the text is no JSON" : builder.GetMessage();
}

int wxJSONReader::ParseUtf8(const std::string& text, wxJSONValue* value) {
    m_errors.Clear();
    m_warnings.Clear();
    m_depth = 0;
    if (text.size() > m_maxBytes) {
        if (value != nullptr) value->SetType(wxJSONTYPE_INVALID);
        AddError(wxString::Format("the text has more than %llu bytes", static_cast<unsigned long long>(m_maxBytes)));
        return GetErrorCount();
    }
    std::string message = ParseStrict(text, value);
    if (message.empty()) return 0;
    if ((m_flags & (wxJSONREADER_CASE | wxJSONREADER_MISSING | wxJSONREADER_MULTISTRING)) != 0) {
        std::vector<wxJSONRepairNote> notes;
        const std::string repaired = wxJSONRepair(text, m_flags, notes);
        for (const wxJSONRepairNote& note : notes)
            AddWarning(wxString::Format("line %llu: %s", static_cast<unsigned long long>(note.line), note.message));
        if (!notes.empty()) message = ParseStrict(repaired, value);
    }
    if (!message.empty()) AddError(MessageText(message));
    return GetErrorCount();
}

int wxJSONReader::Parse(const wxString& text, wxJSONValue* value) {
    return ParseUtf8(wxJSONToUtf8(text), value);
}

int wxJSONReader::Parse(wxInputStream& stream, wxJSONValue* value) {
    std::string bytes;
    char block[65536];
    while (bytes.size() <= m_maxBytes && stream.CanRead()) {
        const std::size_t got = stream.Read(block, sizeof block).LastRead();
        if (got == 0) break;
        bytes.append(block, got);
    }
    if ((m_flags & wxJSONREADER_NOUTF8_STREAM) == 0) return ParseUtf8(bytes, value);
    return Parse(wxString::From8BitData(bytes.data(), bytes.size()), value);
}
