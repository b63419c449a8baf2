// SPDX-License-Identifier: Apache-2.0
#include "wx/jsonwriter.h"

#include <wx/stream.h>

#include <charconv>
#include <cmath>

#include "wxjson/utf8text.h"

namespace {

// Appends to one text; a value of the depth that a reader makes is written by recursion.
class Output {
public:
    Output(int style, int indent, int step) : m_style(style), m_indent(indent), m_step(step) {}

    void Start() { Indent(0); }
    void Put(const wxJSONValue& value, int level);
    std::string Take() { return std::move(m_text); }

private:
    bool IsStyled() const { return (m_style & wxJSONWRITER_STYLED) != 0; }
    void PutString(const wxString& text);
    void PutEscaped(unsigned char byte);
    void PutNumber(double number);
    void PutArray(const wxJSONValue& value, int level);
    void PutObject(const wxJSONValue& value, int level);
    void NewLine(int level);
    void Indent(int level);

    int m_style;
    int m_indent;
    int m_step;
    std::string m_text;
};

void Output::Put(const wxJSONValue& value, int level) {
    if (value.IsArray())
        PutArray(value, level);
    else if (value.IsObject())
        PutObject(value, level);
    else if (value.IsString())
        PutString(value.AsString());
    else if (value.IsBool())
        m_text += value.AsBool() ? "true" : "false";
    else if (value.IsInt64())
        m_text += std::to_string(value.AsInt64());
    else if (value.IsUInt64())
        m_text += std::to_string(value.AsUInt64());
    else if (value.IsDouble())
        PutNumber(value.AsDouble());
    else
        m_text += "null";
}

void Output::PutNumber(double number) {
    if (!std::isfinite(number)) {
        m_text += "null";
        return;
    }
    char digits[32];
    const auto result = std::to_chars(digits, digits + sizeof digits, number);
    const std::string text(digits, result.ptr);
    m_text += text;
    // Else the number would come back as an integer.
    if (text.find_first_of(".e") == std::string::npos) m_text += ".0";
}

void Output::PutString(const wxString& text) {
    m_text += '"';
    for (const char byte : wxJSONToUtf8(text)) PutEscaped(static_cast<unsigned char>(byte));
    m_text += '"';
}

void Output::PutEscaped(unsigned char byte) {
    static const char hex[] = "0123456789abcdef";
    switch (byte) {
        case '"':
            m_text += "\\\"";
            return;
        case '\\':
            m_text += "\\\\";
            return;
        case '\b':
            m_text += "\\b";
            return;
        case '\f':
            m_text += "\\f";
            return;
        case '\n':
            m_text += "\\n";
            return;
        case '\r':
            m_text += "\\r";
            return;
        case '\t':
            m_text += "\\t";
            return;
        default:
            break;
    }
    if (byte < 0x20 || byte == 0x7F) {
        m_text += "\\u00";
        m_text += hex[byte >> 4];
        m_text += hex[byte & 15];
    } else {
        if (byte == '/' && (m_style & wxJSONWRITER_ESCAPE_SOLIDUS) != 0) m_text += '\\';
        m_text += static_cast<char>(byte);
    }
}

void Output::PutArray(const wxJSONValue& value, int level) {
    m_text += '[';
    bool first = true;
    for (const wxJSONValue& element : value.Elements()) {
        if (!first) m_text += ',';
        first = false;
        NewLine(level + 1);
        Put(element, level + 1);
    }
    if (!first) NewLine(level);
    m_text += ']';
}

void Output::PutObject(const wxJSONValue& value, int level) {
    m_text += '{';
    bool first = true;
    for (const wxJSONValue::Member& member : value.Members()) {
        if (!first) m_text += ',';
        first = false;
        NewLine(level + 1);
        PutString(member.first);
        m_text += IsStyled() ? " : " : ":";
        Put(member.second, level + 1);
    }
    if (!first) NewLine(level);
    m_text += '}';
}

void Output::NewLine(int level) {
    if (!IsStyled()) return;
    if ((m_style & wxJSONWRITER_NO_LINEFEEDS) != 0) {
        m_text += ' ';
        return;
    }
    m_text += '\n';
    Indent(level);
}

void Output::Indent(int level) {
    if (!IsStyled() || (m_style & (wxJSONWRITER_NO_INDENTATION | wxJSONWRITER_NO_LINEFEEDS)) != 0) return;
    if ((m_style & wxJSONWRITER_TAB_INDENT) != 0)
        m_text.append(static_cast<std::size_t>(level), '\t');
    else
        m_text.append(
            static_cast<std::size_t>(m_indent) + static_cast<std::size_t>(level) * static_cast<std::size_t>(m_step),
            ' ');
}

}  // namespace

wxJSONWriter::wxJSONWriter(int style, int indent, int step)
    : m_style(style), m_indent(indent < 0 ? 0 : indent), m_step(step < 0 ? 0 : step) {}

std::string wxJSONWriter::WriteUtf8(const wxJSONValue& value) const {
    Output output(m_style, m_indent, m_step);
    output.Start();
    output.Put(value, 0);
    return output.Take();
}

void wxJSONWriter::Write(const wxJSONValue& value, wxString& text) const {
    const std::string bytes = WriteUtf8(value);
    text = wxString::FromUTF8(bytes.data(), bytes.size());
}

void wxJSONWriter::Write(const wxJSONValue& value, wxOutputStream& stream) const {
    const std::string bytes = WriteUtf8(value);
    stream.WriteAll(bytes.data(), bytes.size());
}
