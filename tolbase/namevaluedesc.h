// SPDX-License-Identifier: Apache-2.0
// A named value with a description: one row of metadata, or one field of a request. A plain value.
#pragma once
#include <wx/string.h>

struct NameValueDesc {
    NameValueDesc() = default;
    // Mind the order: the members stand as name, description, value.
    NameValueDesc(const wxString& name, const wxString& value, const wxString& description)
        : Name(name), Desc(description), Value(value) {}

    wxString Name;
    wxString Desc;
    wxString Value;
};
