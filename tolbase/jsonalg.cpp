// SPDX-License-Identifier: Apache-2.0
#include "tolbase/jsonalg.h"

#include "tolbase/text.h"

const wxString TolJsonAlg::GriffeyeOrvReportMarker = "Orvelle report: ";

namespace {

// A JSON string with its quotes. The bytes are UTF-8, so that only these have to be escaped; DEL and the two line
// separators are, too, for readers that take them amiss.
void AppendQuoted(std::string& json, const wxString& text) {
    static const char digits[] = "0123456789abcdef";
    json += '"';
    const std::string bytes = TolToUtf8(text);
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        if (byte == '"' || byte == '\\') {
            json += '\\';
            json += bytes[i];
        } else if (byte == '\n') {
            json += "\\n";
        } else if (byte == '\r') {
            json += "\\r";
        } else if (byte == '\t') {
            json += "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            json += "\\u00";
            json += digits[byte >> 4];
            json += digits[byte & 15];
        } else if (bytes.compare(i, 3, "\xE2\x80\xA8") == 0 || bytes.compare(i, 3, "\xE2\x80\xA9") == 0) {
            json += bytes[i + 2] == '\xA8' ? "\\u2028" : "\\u2029";
            i += 2;
        } else {
            json += bytes[i];
        }
    }
    json += '"';
}

}  // namespace

void TolJsonAlg::Array::Add(const wxString& path, const wxString& identifier, const char* name, const char* value,
                            const wxString& text) {
    m_json += m_json.size() == 1 ? "\n" : ",\n";
    m_json += "{\"path\": ";
    AppendQuoted(m_json, path);
    m_json += ", \"identifier\": ";
    AppendQuoted(m_json, identifier);
    m_json += std::string(", \"") + name + "\": " + value + ", \"text\": ";
    AppendQuoted(m_json, text);
    m_json += '}';
}

wxString TolJsonAlg::Array::Close() {
    m_json += m_json.size() == 1 ? "]\n" : "\n]\n";
    return wxString::FromUTF8(m_json.data(), m_json.size());
}

void TolJsonAlg::AddRow(Array& array, const wxString& path, const GriffeyeOrvAnalysisRow& row) {
    array.Add(path, std::get<1>(row), "no_warnings", std::get<0>(row) ? "true" : "false", std::get<2>(row));
}

wxString TolJsonAlg::Finish(Array& array) {
    return array.Close();
}

wxString TolJsonAlg::GetGriffeyeOrvBatchAsJSONString(const GriffeyeOrvBatchReportsMap& reports) {
    Array array;
    for (const auto& [path, report] : reports)
        array.Add(path, report.identifier, "severity", std::to_string(report.severity).c_str(), report.text);
    return array.Close();
}
