// SPDX-License-Identifier: Apache-2.0
#include "tolbase/json.h"

#include <algorithm>

#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"

namespace {

wxJSONReader MakeReader() {
    wxJSONReader reader(wxJSONREADER_TOLERANT, 30);
    const uint64_t depth = std::min<uint64_t>(GetTolLimit(TolLimit::JsonDepth), wxJSON_HARD_DEPTH);
    reader.SetLimits(static_cast<int>(depth), static_cast<std::size_t>(GetTolLimit(TolLimit::JsonBytes)));
    return reader;
}

[[noreturn]] void ThrowMessage(int line, const wxString& message) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorMessage, message);
}

}  // namespace

wxJSONValue JsonFromText(const wxString& text) {
    wxJSONReader reader = MakeReader();
    wxJSONValue value;
    if (reader.Parse(text, &value) > 0) ThrowMessage(__LINE__, "Invalid JSON: " + reader.GetErrors()[0]);
    return value;
}

wxJSONValue JsonFromFile(const wxString& path) {
    std::string bytes;
    const auto limit = static_cast<std::size_t>(GetTolLimit(TolLimit::JsonBytes));
    if (!ReadFileBytes(path, bytes, limit)) ThrowMessage(__LINE__, path + ": can't be read");
    wxJSONReader reader = MakeReader();
    wxJSONValue value;
    if (reader.ParseUtf8(bytes, &value) > 0) ThrowMessage(__LINE__, path + ": invalid JSON: " + reader.GetErrors()[0]);
    return value;
}

wxString JsonToText(const wxJSONValue& value, int step) {
    wxString text;
    wxJSONWriter(step > 0 ? wxJSONWRITER_STYLED : wxJSONWRITER_NONE, 0, step).Write(value, text);
    return text;
}
