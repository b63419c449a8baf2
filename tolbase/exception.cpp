// SPDX-License-Identifier: Apache-2.0
#include "tolbase/exception.h"

#include "tolbase/text.h"

TolException::TolException(const wxString& file, int line, ExceptionType type, int code, const wxString& message)
    : m_file(file), m_line(line), m_type(type), m_code(code), m_message(message) {
    m_what = message.empty() ? "error " + std::to_string(code) : TolToUtf8(message);
}
