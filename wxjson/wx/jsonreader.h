// SPDX-License-Identifier: Apache-2.0
// Reads JSON text into a wxJSONValue, strictly or with tolerance for what people write by hand.
//
// A reader is used by one thread at a time; it keeps the messages of its last Parse and nothing of the text.
#pragma once
#include <wx/arrstr.h>
#include <wx/string.h>

#include <cstddef>
#include <string>

#include "wx/jsonval.h"

class wxInputStream;

enum {
    wxJSONREADER_STRICT = 0,
    wxJSONREADER_ALLOW_COMMENTS = 1,  // "// ..." and "/* ... */"
    wxJSONREADER_STORE_COMMENTS = 2,  // accepted; comments are not kept
    wxJSONREADER_CASE = 4,            // True, FALSE, Null
    wxJSONREADER_MISSING = 8,       // a missing comma between items, one too many, missing closing brackets at the end
    wxJSONREADER_MULTISTRING = 16,  // a text cut into several quoted pieces, line ends inside the quotes
    wxJSONREADER_COMMENTS_AFTER = 32,  // accepted; comments are not kept
    wxJSONREADER_NOUTF8_STREAM = 64,   // streams hold ISO 8859-1 instead of UTF-8
    wxJSONREADER_TOLERANT =
        wxJSONREADER_ALLOW_COMMENTS | wxJSONREADER_CASE | wxJSONREADER_MISSING | wxJSONREADER_MULTISTRING
};

// Arrays and objects nested deeper than this are an error, unless SetLimits says else; and the most that it may say,
// since values are copied and freed by recursion.
constexpr int wxJSON_MAX_DEPTH = 512;
constexpr int wxJSON_HARD_DEPTH = 4096;
// A longer text is an error, told before it is read whole.
constexpr std::size_t wxJSON_MAX_BYTES = std::size_t{512} * 1024 * 1024;

class WXJSON_API wxJSONReader {
public:
    explicit wxJSONReader(int flags = wxJSONREADER_TOLERANT, int maxErrors = 30);

    // Parses the text into `value` (may be null: the text is then only checked) and gives the number of errors, 0 for
    // good. After an error `value` holds what stands before it. What the flags tolerate is a warning, no error.
    int Parse(const wxString& text, wxJSONValue* value);
    // The same for the rest of a stream in UTF-8; bytes that are no UTF-8 are an error.
    int Parse(wxInputStream& stream, wxJSONValue* value);
    // The same for bytes in UTF-8.
    int ParseUtf8(const std::string& text, wxJSONValue* value);

    // The deepest nesting and the longest text that are read.
    void SetLimits(int maxDepth, std::size_t maxBytes);

    int GetErrorCount() const { return static_cast<int>(m_errors.size()); }
    int GetWarningCount() const { return static_cast<int>(m_warnings.size()); }
    // One sentence each, with line and column; at most `maxErrors`.
    const wxArrayString& GetErrors() const { return m_errors; }
    const wxArrayString& GetWarnings() const { return m_warnings; }
    // The deepest nesting that was met: 1 for a plain array.
    int GetDepth() const { return m_depth; }

private:
    void AddError(const wxString& message);
    void AddWarning(const wxString& message);
    // Empty for good, else what is wrong.
    std::string ParseStrict(const std::string& text, wxJSONValue* value);

    int m_flags;
    int m_maxErrors;
    int m_depth = 0;
    int m_maxDepth = wxJSON_MAX_DEPTH;
    std::size_t m_maxBytes = wxJSON_MAX_BYTES;
    wxArrayString m_errors;
    wxArrayString m_warnings;
};
