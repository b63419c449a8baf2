// SPDX-License-Identifier: Apache-2.0
// The JSON reader: what it reads without an error is written and read again as the same value.
#include <wx/jsonreader.h>
#include <wx/jsonwriter.h>
#include <wx/mstream.h>

#include "tests/fuzz/target.h"

namespace fuzz {

namespace {

void CheckWritten(wxJSONValue const& value, int style) {
    std::string const text = wxJSONWriter(style).WriteUtf8(value);
    wxJSONValue again;
    wxJSONReader strict(wxJSONREADER_STRICT);
    Require(strict.ParseUtf8(text, &again) == 0, "what is written is JSON");
    Require(value.IsSameAs(again), "what is written is the value");
    Require(wxJSONWriter(style).WriteUtf8(again) == text, "the second writing gives the same bytes");
}

// The first byte holds the reader's flags.
void Run(std::string const& bytes) {
    if (bytes.empty()) return;
    int const flags = static_cast<unsigned char>(bytes[0]) & 0x7F;
    std::string const text = bytes.substr(1);
    wxJSONReader reader(flags);
    wxJSONValue value;
    int const errors = reader.ParseUtf8(text, &value);
    Require(errors == reader.GetErrorCount() || reader.GetErrorCount() == 30, "errors are counted");
    Require(reader.GetDepth() <= wxJSON_MAX_DEPTH + 1, "nesting is bounded");
    wxJSONValue fromStream;
    wxMemoryInputStream stream(text.data(), text.size());
    wxJSONReader(flags).Parse(stream, &fromStream);
    if (errors > 0) return;
    CheckWritten(value, wxJSONWRITER_NONE);
    CheckWritten(value, wxJSONWRITER_STYLED);
    value.AsString();
    if ((flags & wxJSONREADER_NOUTF8_STREAM) == 0) Require(value.IsSameAs(fromStream), "streams give the same value");
}

std::vector<std::string> Seeds() {
    std::string const strict(1, '\0');
    std::string const tolerant(1, static_cast<char>(wxJSONREADER_TOLERANT));
    return {strict + R"({"a": [1, -2.5e3, true, null, "text \u00e4 \ud83d\ude00 \n"], "b": {"c": {}}, "d": []})",
            strict + R"([18446744073709551615, -9223372036854775808, 1e400, 0.1, 123456789012345678901234567890])",
            tolerant + "{// comment\n \"a\": True, /* more */ \"b\" : \"one\" \"two\" \"c\": [1 2,, 3",
            tolerant + "[\"a\nb\", NULL, \"\\/\\b\\f\\t\"",
            strict + std::string(600, '[') + std::string(600, ']'),
            tolerant + "\xEF\xBB\xBF{\"k\xC3\xA4\": \"\xFF\"}"};
}

}  // namespace

Target WxJsonTarget() {
    return {"wxjson", Run, Seeds};
}

}  // namespace fuzz
