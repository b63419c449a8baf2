// SPDX-License-Identifier: Apache-2.0
// The base of what is kept in a JSON file. A value with a name; no lock: each thread has its own copy.
#pragma once
#include <wx/jsonval.h>
#include <wx/string.h>

#include "tolbase/export.h"

class ORV_API JsonObject {
public:
    explicit JsonObject(const wxString& name = wxString()) : m_name(name) {}
    JsonObject(const JsonObject&) = default;
    JsonObject(JsonObject&&) noexcept = default;
    JsonObject& operator=(const JsonObject&) = default;
    JsonObject& operator=(JsonObject&&) noexcept = default;
    virtual ~JsonObject();

    // An empty value in this base.
    virtual wxJSONValue WriteToJson() const;
    // Nothing in this base.
    virtual void ReadFromJson(const wxJSONValue& value);
    // Stores WriteToJson in the file, styled with a step of 3, in UTF-8. The file is replaced in one step: a failure
    // leaves the old one whole and throws TolException (82). Makes no folders.
    virtual void Write(const wxString& path) const;
    // Hands the file's value to ReadFromJson. Throws what JsonFromFile and ReadFromJson throw.
    virtual void Read(const wxString& path);

    const wxString& GetJsonName() const { return m_name; }
    void SetJsonName(const wxString& name) { m_name = name; }

private:
    wxString m_name;
};
