// SPDX-License-Identifier: Apache-2.0
#include "tolbase/validator.h"

#include <algorithm>

namespace {

[[noreturn]] void ThrowWrongType(int line) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorWrongType, wxString());
}

}  // namespace

Validator::~Validator() = default;

wxJSONValue Validator::ValueToJson(const boost::any&) const {
    return wxJSONValue();
}
boost::any Validator::JsonToValue(const wxJSONValue&) const {
    return boost::any();
}
boost::any Validator::TextToValue(const wxString&) const {
    return boost::any();
}
wxString Validator::ValueToText(const boost::any&) const {
    return wxString();
}
wxString Validator::ValueToReport(const boost::any&) const {
    return wxString();
}
wxString Validator::ValueToPlainText(const boost::any&) const {
    return wxString();
}
double Validator::GetMinimum() const {
    ThrowWrongType(__LINE__);
}
double Validator::GetMaximum() const {
    ThrowWrongType(__LINE__);
}
double Validator::GetStep() const {
    ThrowWrongType(__LINE__);
}
double Validator::ValueToNumber(const boost::any&) const {
    ThrowWrongType(__LINE__);
}
boost::any Validator::NumberToValue(double) const {
    ThrowWrongType(__LINE__);
}

wxJSONValue ValidatorOption::ValueToJson(const boost::any& value) const {
    return wxJSONValue(ValueToText(value));
}

boost::any ValidatorOption::JsonToValue(const wxJSONValue& json) const {
    return json.IsString() ? TextToValue(json.AsString()) : boost::any();
}

boost::any ValidatorOption::TextToValue(const wxString& text) const {
    const auto found = std::find(m_options.begin(), m_options.end(), text);
    if (found == m_options.end()) return boost::any();
    return boost::any(static_cast<int>(found - m_options.begin()));
}

wxString ValidatorOption::ValueToText(const boost::any& value) const {
    const int index = AnyCast<int>(value);
    if (index < 0 || static_cast<std::size_t>(index) >= m_options.size()) return ToString<int>(index);
    return m_options[static_cast<std::size_t>(index)];
}

wxString ValidatorOption::ValueToReport(const boost::any& value) const {
    return ValueToText(value);
}
wxString ValidatorOption::ValueToPlainText(const boost::any& value) const {
    return ValueToText(value);
}

boost::any ValidatorOption::CheckedCopy(const boost::any& value) const {
    const int index = AnyCast<int>(value);
    if (index < 0 || static_cast<std::size_t>(index) >= m_options.size()) ThrowWrongType(__LINE__);
    return boost::any(index);
}

std::unique_ptr<Validator> ValidatorOption::Clone() const {
    return std::make_unique<ValidatorOption>(*this);
}
