// SPDX-License-Identifier: Apache-2.0
#include "tolbase/parameter.h"

#include <string>

namespace {

// Texts come as whatever C++ makes of them.
boost::any Normalised(const boost::any& value) {
    if (const auto* text = boost::any_cast<const char*>(&value))
        return boost::any(*text == nullptr ? wxString() : wxString::FromUTF8(*text));
    if (const auto* text = boost::any_cast<char*>(&value))
        return boost::any(*text == nullptr ? wxString() : wxString::FromUTF8(*text));
    if (const auto* text = boost::any_cast<std::string>(&value))
        return boost::any(wxString::FromUTF8(text->data(), text->size()));
    if (const auto* text = boost::any_cast<const wchar_t*>(&value))
        return boost::any(*text == nullptr ? wxString() : wxString(*text));
    return value;
}

// A text may stand where another type is expected, after SetUnchecked: it is its own text form.
const wxString* AsText(const boost::any& value) {
    return boost::any_cast<wxString>(&value);
}

}  // namespace

Parameter::Parameter() = default;
Parameter::~Parameter() = default;

Parameter::Parameter(const wxString& name, const wxString& description, int type, boost::any value,
                     std::shared_ptr<const Validator> validator)
    : m_name(name),
      m_description(description),
      m_type(type),
      m_value(std::move(value)),
      m_default(m_value),
      m_validator(std::move(validator)) {}

const Validator& Parameter::RequireValidator() const {
    if (m_validator == nullptr) throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorWrongType, wxString());
    return *m_validator;
}

bool Parameter::Accept(const boost::any& value) {
    if (m_validator == nullptr || value.empty()) return false;
    try {
        boost::any checked = m_validator->CheckedCopy(value);
        // A value of another type, set unchecked, can't be compared: it differs.
        if (m_value.type() == checked.type() && m_validator->AreEqual(m_value, checked)) return false;
        m_value = std::move(checked);
    } catch (const TolException&) {
        return false;
    }
    m_changed = true;
    return true;
}

bool Parameter::Set(const boost::any& value) {
    return Accept(Normalised(value));
}

bool Parameter::Set(const Parameter& other) {
    return Accept(other.m_value);
}

bool Parameter::SetString(const wxString& text) {
    if (m_validator == nullptr || m_type == ParameterTypeStringMap) return false;
    return Accept(m_validator->TextToValue(text));
}

bool Parameter::SetJson(const wxJSONValue& json) {
    return m_validator != nullptr && Accept(m_validator->JsonToValue(json));
}

void Parameter::SetUnchecked(const boost::any& value) {
    m_value = Normalised(value);
    m_changed = true;
}

void Parameter::Reset() {
    m_value = m_default;
    m_changed = false;
}

wxString Parameter::ToText() const {
    if (m_validator == nullptr || m_value.empty()) return wxString();
    if (const wxString* text = AsText(m_value)) return *text;
    return m_validator->ValueToText(m_value);
}

wxString Parameter::ToReport() const {
    if (m_validator == nullptr || m_value.empty()) return wxString();
    if (const wxString* text = AsText(m_value)) return *text;
    return m_validator->ValueToReport(m_value);
}

wxJSONValue Parameter::GetValueAsJson() const {
    if (m_validator == nullptr || m_value.empty()) return wxJSONValue();
    if (const wxString* text = AsText(m_value)) return wxJSONValue(*text);
    return m_validator->ValueToJson(m_value);
}

VecString Parameter::Strings() const {
    const auto* option = dynamic_cast<const ValidatorOption*>(m_validator.get());
    return option == nullptr ? VecString() : option->GetOptions();
}

double Parameter::GetMinimum() const {
    return RequireValidator().GetMinimum();
}
double Parameter::GetMaximum() const {
    return RequireValidator().GetMaximum();
}
double Parameter::GetStep() const {
    return RequireValidator().GetStep();
}

bool Parameter::operator==(const Parameter& other) const {
    if (m_name != other.m_name || m_type != other.m_type) return false;
    if (m_value.type() != other.m_value.type()) return false;
    if (m_value.empty()) return true;
    if (AsText(m_value) != nullptr) return *AsText(m_value) == *AsText(other.m_value);
    return RequireValidator().AreEqual(m_value, other.m_value);
}
