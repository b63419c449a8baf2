// SPDX-License-Identifier: Apache-2.0
// The only exception that these libraries throw of their own will. A value: copy it as you like.
#pragma once
#include <wx/string.h>

#include <exception>
#include <string>

#include "tolbase/export.h"

enum ExceptionType : int { ExceptionGeneral = 0 };

// Codes in use.
enum TolErrorCode : int {
    TolErrorWrongType = 61,  // a parameter's value of another type than asked for; the message is empty
    TolErrorMessage = 82     // a failure with a sentence for the user
};

class ORV_API TolException : public std::exception {
public:
    // `file` and `line` tell where in the source it was thrown.
    TolException(const wxString& file, int line, ExceptionType type, int code, const wxString& message);

    const wxString& GetFile() const { return m_file; }
    int GetLine() const { return m_line; }
    ExceptionType GetType() const { return m_type; }
    int GetCode() const { return m_code; }
    // The sentence for the user; empty for code 61.
    const wxString& GetMessage() const { return m_message; }
    // The message in UTF-8, or the code where there is no message.
    const char* what() const noexcept override { return m_what.c_str(); }

private:
    wxString m_file;
    int m_line;
    ExceptionType m_type;
    int m_code;
    wxString m_message;
    std::string m_what;
};
