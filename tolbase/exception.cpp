// SPDX-License-Identifier: Apache-2.0
#include "tolbase/exception.h"

TolException::TolException(const wxString& file, int line, ExceptionType type, int code, const wxString& message)
    : m_file(file), m_line(line), m_type(type), m_code(code), m_message(message) {
    const auto utf8 = message.utf8_str();
    m_what.assign(utf8.data() == nullptr ? "" : utf8.data(), utf8.length());
    if (m_what.empty()) m_what = "error " + std::to_string(code);
}
