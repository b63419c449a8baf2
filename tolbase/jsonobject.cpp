// SPDX-License-Identifier: Apache-2.0
#include "tolbase/jsonobject.h"

#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/json.h"

JsonObject::~JsonObject() = default;

wxJSONValue JsonObject::WriteToJson() const {
    return wxJSONValue();
}

void JsonObject::ReadFromJson(const wxJSONValue&) {}

void JsonObject::Write(const wxString& path) const {
    const std::string bytes = wxJSONWriter(wxJSONWRITER_STYLED, 0, 3).WriteUtf8(WriteToJson()) + "\n";
    if (!WriteFileAtomically(path, bytes))
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, path + ": can't be written");
}

void JsonObject::Read(const wxString& path) {
    ReadFromJson(JsonFromFile(path));
}
