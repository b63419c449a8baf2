// SPDX-License-Identifier: Apache-2.0
// Writes a wxJSONValue as text. The same value gives the same bytes in every locale.
//
// A writer has no state but its settings: one may serve several threads.
#pragma once
#include <wx/string.h>

#include <string>

#include "wx/jsonval.h"

class wxOutputStream;

enum {
    wxJSONWRITER_NONE = 0,           // compact: one line, no blanks
    wxJSONWRITER_STYLED = 1,         // one item a line, indented
    wxJSONWRITER_NO_LINEFEEDS = 32,  // with STYLED: blanks as styled, all on one line
    wxJSONWRITER_ESCAPE_SOLIDUS = 64,
    wxJSONWRITER_TAB_INDENT = 512,      // tabulators instead of blanks
    wxJSONWRITER_NO_INDENTATION = 1024  // with STYLED: line ends, no indentation
};

class WXJSON_API wxJSONWriter {
public:
    // `indent`: blanks in front of every line. `step`: further blanks for each level.
    explicit wxJSONWriter(int style = wxJSONWRITER_STYLED, int indent = 0, int step = 3);

    // Replaces `text`. Numbers that JSON can't hold (not a number, infinities) and invalid values are written as null.
    void Write(const wxJSONValue& value, wxString& text) const;
    // Writes UTF-8; the stream's own state tells whether all of it went out.
    void Write(const wxJSONValue& value, wxOutputStream& stream) const;
    // The same bytes in memory.
    std::string WriteUtf8(const wxJSONValue& value) const;

private:
    int m_style;
    int m_indent;
    int m_step;
};
