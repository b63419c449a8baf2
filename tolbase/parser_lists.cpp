// SPDX-License-Identifier: Apache-2.0
// Lists, tables, maps and sizes; see parser.cpp for the rest.
#include "tolbase/json.h"
#include "tolbase/numbertext.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"

namespace {

// False for what is no JSON of that type; nothing is thrown.
bool ParseJson(const wxString& text, wxJSONValue& json) {
    wxJSONReader reader(wxJSONREADER_STRICT);
    return reader.Parse(text, &json) == 0;
}

// Cut at each ", ", as the report form joins.
VecString SplitReport(const wxString& text) {
    VecString list;
    std::size_t from = 0;
    while (!text.empty()) {
        const std::size_t at = text.find(", ", from);
        list.push_back(text.substr(from, at == wxString::npos ? wxString::npos : at - from));
        if (at == wxString::npos) break;
        from = at + 2;
    }
    return list;
}

}  // namespace

template <>
wxJSONValue ToJson<VecString>(const VecString& value) {
    wxJSONValue json(wxJSONTYPE_ARRAY);
    for (const wxString& text : value) json.Append(wxJSONValue(text));
    return json;
}
template <>
bool TryFromJson<VecString>(const wxJSONValue& json, VecString& value) {
    if (!json.IsArray()) return false;
    VecString list;
    for (const wxJSONValue& element : json.Elements()) {
        if (element.IsArray() || element.IsObject() || element.IsNull()) return false;
        list.push_back(element.AsString());
    }
    value = std::move(list);
    return true;
}
template <>
VecString FromJson<VecString>(const wxJSONValue& json) {
    VecString list;
    if (json.IsString()) list.push_back(json.AsString());
    for (const wxJSONValue& element : json.Elements()) list.push_back(element.AsString());
    return list;
}
template <>
wxString ToString<VecString>(const VecString& value) {
    return JsonToText(ToJson<VecString>(value), 0);
}
template <>
wxString ToStringReport<VecString>(const VecString& value) {
    return CatVecString(value, ", ");
}
template <>
bool TryFromString<VecString>(const wxString& text, VecString& value) {
    wxJSONValue json;
    if (text.StartsWith("[") && ParseJson(text, json) && TryFromJson<VecString>(json, value)) return true;
    value = SplitReport(text);
    return true;
}

template <>
wxJSONValue ToJson<VecVecString>(const VecVecString& value) {
    wxJSONValue json(wxJSONTYPE_ARRAY);
    for (const VecString& row : value) json.Append(ToJson<VecString>(row));
    return json;
}
template <>
bool TryFromJson<VecVecString>(const wxJSONValue& json, VecVecString& value) {
    if (!json.IsArray()) return false;
    VecVecString table;
    for (const wxJSONValue& row : json.Elements()) {
        VecString cells;
        if (!TryFromJson<VecString>(row, cells)) return false;
        table.push_back(std::move(cells));
    }
    value = std::move(table);
    return true;
}
template <>
VecVecString FromJson<VecVecString>(const wxJSONValue& json) {
    VecVecString table;
    for (const wxJSONValue& row : json.Elements()) table.push_back(FromJson<VecString>(row));
    return table;
}
template <>
wxString ToString<VecVecString>(const VecVecString& value) {
    return JsonToText(ToJson<VecVecString>(value), 0);
}
template <>
wxString ToStringReport<VecVecString>(const VecVecString& value) {
    return CatVecVecString(value, ", ", "\n");
}
template <>
bool TryFromString<VecVecString>(const wxString& text, VecVecString& value) {
    if (text.empty()) {
        value.clear();
        return true;
    }
    wxJSONValue json;
    return ParseJson(text, json) && TryFromJson<VecVecString>(json, value);
}

template <>
wxJSONValue ToJson<TolStringMap>(const TolStringMap& value) {
    wxJSONValue json(wxJSONTYPE_OBJECT);
    for (const auto& entry : value) json[entry.first] = wxJSONValue(entry.second);
    return json;
}
template <>
bool TryFromJson<TolStringMap>(const wxJSONValue& json, TolStringMap& value) {
    if (!json.IsObject()) return false;
    TolStringMap map;
    for (const wxJSONValue::Member& member : json.Members()) {
        if (!member.second.IsString()) return false;
        map[member.first] = member.second.AsString();
    }
    value = std::move(map);
    return true;
}
template <>
wxString ToString<TolStringMap>(const TolStringMap& value) {
    return JsonToText(ToJson<TolStringMap>(value), 0);
}
template <>
wxString ToStringReport<TolStringMap>(const TolStringMap& value) {
    VecString entries;
    for (const auto& entry : value) entries.push_back(entry.first + ": " + entry.second);
    return CatVecString(entries, ", ");
}
template <>
bool TryFromString<TolStringMap>(const wxString& text, TolStringMap& value) {
    wxJSONValue json;
    return ParseJson(text, json) && TryFromJson<TolStringMap>(json, value);
}

template <>
wxString ToString<wxSize>(const wxSize& value) {
    return tolbase::NumberToText(value.x) + "x" + tolbase::NumberToText(value.y);
}
template <>
wxString ToStringReport<wxSize>(const wxSize& value) {
    return ToString<wxSize>(value);
}
template <>
bool TryFromString<wxSize>(const wxString& text, wxSize& value) {
    wxString height;
    const wxString width = text.BeforeFirst('x', &height);
    int x = 0;
    int y = 0;
    if (!tolbase::TextToNumber(width, x) || !tolbase::TextToNumber(height, y) || x < 0 || y < 0) return false;
    value = wxSize(x, y);
    return true;
}
template <>
wxJSONValue ToJson<wxSize>(const wxSize& value) {
    return wxJSONValue(ToString<wxSize>(value));
}
template <>
bool TryFromJson<wxSize>(const wxJSONValue& json, wxSize& value) {
    return json.IsString() && TryFromString<wxSize>(json.AsString(), value);
}
