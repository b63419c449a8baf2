// SPDX-License-Identifier: Apache-2.0
// Values as text and as JSON, and back. Pure functions: any thread, no state, the same result in every locale.
//
// Types: bool, int, unsigned int, int64_t, uint64_t, double, wxString, VecString, VecVecString, wxSize and
// std::map<wxString, wxString>. Another type does not compile.
//
// Text forms: "true"/"false"; decimal digits; the shortest text that reads back to the same double ("2", "2.5",
// "1e-300", "nan", "inf"); the text itself; compact JSON for lists, tables and maps; "4000x3000" for a size.
#pragma once
#include <wx/gdicmn.h>
#include <wx/jsonval.h>
#include <wx/string.h>

#include <cstdint>
#include <map>

#include "tolbase/export.h"
#include "tolbase/types.h"

using TolStringMap = std::map<wxString, wxString>;

// The text form.
template <class T>
wxString ToString(const T& value) = delete;
// The text for a reader: as ToString, but a list is joined with ", ", the cells of a table with ", " and its rows with
// line feeds, a map reads "key: value, key: value".
template <class T>
wxString ToStringReport(const T& value) = delete;
// True if the whole text (blanks around a number are passed over) is a value of the type; `value` is touched only then.
// Numbers that don't fit are refused. A list also reads from its report form: a text that is no JSON array is cut at
// each ", ".
template <class T>
bool TryFromString(const wxString& text, T& value) = delete;
// JSON of the natural kind; a 64-bit integer is a number, a size its text.
template <class T>
wxJSONValue ToJson(const T& value) = delete;
// True if the JSON value is of the type's kind; `value` is touched only then. Numbers and truth values may also stand
// as text, as settings files edited by hand have them.
template <class T>
bool TryFromJson(const wxJSONValue& json, T& value) = delete;

// NOLINTBEGIN(bugprone-macro-parentheses): a type can't stand in parentheses here
#define ORV_DECLARE_CONVERSIONS(T)                      \
    template <>                                         \
    ORV_API wxString ToString<T>(const T& value);       \
    template <>                                         \
    ORV_API wxString ToStringReport<T>(const T& value); \
    template <>                                         \
    ORV_API bool TryFromString<T>(const wxString&, T&); \
    template <>                                         \
    ORV_API wxJSONValue ToJson<T>(const T& value);      \
    template <>                                         \
    ORV_API bool TryFromJson<T>(const wxJSONValue&, T&);

ORV_DECLARE_CONVERSIONS(bool)
ORV_DECLARE_CONVERSIONS(int)
ORV_DECLARE_CONVERSIONS(unsigned int)
ORV_DECLARE_CONVERSIONS(int64_t)
ORV_DECLARE_CONVERSIONS(uint64_t)
ORV_DECLARE_CONVERSIONS(double)
ORV_DECLARE_CONVERSIONS(wxString)
ORV_DECLARE_CONVERSIONS(VecString)
ORV_DECLARE_CONVERSIONS(VecVecString)
ORV_DECLARE_CONVERSIONS(wxSize)
ORV_DECLARE_CONVERSIONS(TolStringMap)
#undef ORV_DECLARE_CONVERSIONS
// NOLINTEND(bugprone-macro-parentheses)

// The inverse of ToString; the type's zero (0, false, empty) for a text that doesn't parse.
template <class T>
T FromString(const wxString& text) {
    T value{};
    TryFromString<T>(text, value);
    return value;
}

// The inverse of ToJson; the type's zero for JSON of another kind. For texts see the specialisation.
template <class T>
T FromJson(const wxJSONValue& json) {
    T value{};
    TryFromJson<T>(json, value);
    return value;
}
// The value's AsString: numbers give their digits, a missing item gives the empty text.
template <>
ORV_API wxString FromJson<wxString>(const wxJSONValue& json);
// The AsString of each element; a single text gives a list of one; all else an empty list.
template <>
ORV_API VecString FromJson<VecString>(const wxJSONValue& json);
template <>
ORV_API VecVecString FromJson<VecVecString>(const wxJSONValue& json);

// The number that the text is; throws TolException (code 82) with the text for what is no finite number or doesn't fit.
// Instances: int, unsigned int, int64_t, uint64_t, double.
template <class T>
T ParseNumber(const wxString& text) = delete;
template <>
ORV_API int ParseNumber<int>(const wxString& text);
template <>
ORV_API unsigned int ParseNumber<unsigned int>(const wxString& text);
template <>
ORV_API int64_t ParseNumber<int64_t>(const wxString& text);
template <>
ORV_API uint64_t ParseNumber<uint64_t>(const wxString& text);
template <>
ORV_API double ParseNumber<double>(const wxString& text);
