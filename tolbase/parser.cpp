// SPDX-License-Identifier: Apache-2.0
// Texts, truth values and numbers; lists, tables, maps and sizes stand in parser_lists.cpp.
#include "tolbase/parser.h"

#include <cmath>

#include "tolbase/exception.h"
#include "tolbase/numbertext.h"

using tolbase::NumberToText;
using tolbase::TextToNumber;

namespace {

template <class T>
T ParseOrThrow(const wxString& text) {
    T number{};
    const bool good = TextToNumber(text, number) && std::isfinite(static_cast<double>(number));
    if (!good) {
        const wxString shown = text.length() > 60 ? text.Left(60) + "..." : text;
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           wxString("\"") + shown + "\" is not a number.");
    }
    return number;
}

// An integer from JSON: one that fits, a whole double, or either as text.
template <class T>
bool IntegerFromJson(const wxJSONValue& json, T& value) {
    if (!json.IsString() && !json.IsInt64() && !json.IsUInt64() && !json.IsDouble()) return false;
    const wxString text = json.AsString();
    if (TextToNumber(text, value)) return true;
    double number = 0;
    if (!TextToNumber(text, number) || std::trunc(number) != number) return false;
    // Doubles above this hold no exact integers.
    if (std::fabs(number) > 9007199254740992.0) return false;
    return TextToNumber(NumberToText(static_cast<int64_t>(number)), value);
}

}  // namespace

template <>
wxString ToString<bool>(const bool& value) {
    return value ? wxString("true") : wxString("false");
}
template <>
wxString ToStringReport<bool>(const bool& value) {
    return ToString<bool>(value);
}
template <>
bool TryFromString<bool>(const wxString& text, bool& value) {
    const wxString word = Trim(text);
    const bool yes = word.IsSameAs("true", false) || word == "1";
    const bool no = word.IsSameAs("false", false) || word == "0";
    if (yes || no) value = yes;
    return yes || no;
}
template <>
wxJSONValue ToJson<bool>(const bool& value) {
    return wxJSONValue(value);
}
template <>
bool TryFromJson<bool>(const wxJSONValue& json, bool& value) {
    if (!json.IsBool() && !json.IsString() && !json.IsInt()) return false;
    return TryFromString<bool>(json.AsString(), value);
}

// NOLINTBEGIN(bugprone-macro-parentheses): a type can't stand in parentheses here
#define ORV_DEFINE_INTEGER(T)                                \
    template <>                                              \
    wxString ToString<T>(const T& value) {                   \
        return NumberToText(value);                          \
    }                                                        \
    template <>                                              \
    wxString ToStringReport<T>(const T& value) {             \
        return NumberToText(value);                          \
    }                                                        \
    template <>                                              \
    bool TryFromString<T>(const wxString& text, T& value) {  \
        return TextToNumber(text, value);                    \
    }                                                        \
    template <>                                              \
    wxJSONValue ToJson<T>(const T& value) {                  \
        return wxJSONValue(value);                           \
    }                                                        \
    template <>                                              \
    bool TryFromJson<T>(const wxJSONValue& json, T& value) { \
        return IntegerFromJson(json, value);                 \
    }                                                        \
    template <>                                              \
    T ParseNumber<T>(const wxString& text) {                 \
        return ParseOrThrow<T>(text);                        \
    }

ORV_DEFINE_INTEGER(int)
ORV_DEFINE_INTEGER(unsigned int)
ORV_DEFINE_INTEGER(int64_t)
ORV_DEFINE_INTEGER(uint64_t)
#undef ORV_DEFINE_INTEGER
// NOLINTEND(bugprone-macro-parentheses)

template <>
wxString ToString<double>(const double& value) {
    return NumberToText(value);
}
template <>
wxString ToStringReport<double>(const double& value) {
    return NumberToText(value);
}
template <>
bool TryFromString<double>(const wxString& text, double& value) {
    return TextToNumber(text, value);
}
template <>
wxJSONValue ToJson<double>(const double& value) {
    return wxJSONValue(value);
}
template <>
bool TryFromJson<double>(const wxJSONValue& json, double& value) {
    if (json.IsDouble() || json.IsInt64() || json.IsUInt64()) {
        value = json.AsDouble();
        return true;
    }
    return json.IsString() && TextToNumber(json.AsString(), value);
}
template <>
double ParseNumber<double>(const wxString& text) {
    return ParseOrThrow<double>(text);
}

template <>
wxString ToString<wxString>(const wxString& value) {
    return value;
}
template <>
wxString ToStringReport<wxString>(const wxString& value) {
    return value;
}
template <>
bool TryFromString<wxString>(const wxString& text, wxString& value) {
    value = text;
    return true;
}
template <>
wxJSONValue ToJson<wxString>(const wxString& value) {
    return wxJSONValue(value);
}
template <>
bool TryFromJson<wxString>(const wxJSONValue& json, wxString& value) {
    if (!json.IsString()) return false;
    value = json.AsString();
    return true;
}
template <>
wxString FromJson<wxString>(const wxJSONValue& json) {
    return json.AsString();
}
