// SPDX-License-Identifier: Apache-2.0
// A named value with a description: one row of metadata, or one field of a request. A plain value.
#pragma once
#include <wx/string.h>

#include <utility>

struct NameValueDesc {
    NameValueDesc() = default;
    // Mind the order: the members stand as name, description, value.
    NameValueDesc(wxString name, wxString value, wxString description)
        : Name(std::move(name)), Desc(std::move(description)), Value(std::move(value)) {}

    wxString Name;
    wxString Desc;
    wxString Value;
};
