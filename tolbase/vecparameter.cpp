// SPDX-License-Identifier: Apache-2.0
#include "tolbase/parameter.h"

namespace {

[[noreturn]] void ThrowMessage(int line, const wxString& message) {
    throw TolException(__FILE__, line, ExceptionGeneral, TolErrorMessage, message);
}

}  // namespace

VecParameter::~VecParameter() = default;

wxJSONValue VecParameter::WriteToJson() const {
    wxJSONValue value(wxJSONTYPE_OBJECT);
    for (const Parameter& parameter : m_parameters) value[parameter.Name()] = parameter.GetValueAsJson();
    return value;
}

void VecParameter::ReadFromJson(const wxJSONValue& value) {
    if (!value.IsObject()) ThrowMessage(__LINE__, "The parameters are no JSON object.");
    for (Parameter& parameter : m_parameters)
        if (value.HasMember(parameter.Name())) parameter.SetJson(value.ItemAt(parameter.Name()));
}

void VecParameter::Reset() {
    for (Parameter& parameter : m_parameters) parameter.Reset();
}

void VecParameter::ClearRef() {
    for (Parameter& parameter : m_parameters) parameter.ClearRef();
}

const Parameter* VecParameter::Find(const wxString& name) const {
    for (const Parameter& parameter : m_parameters)
        if (parameter.Name() == name) return &parameter;
    return nullptr;
}

Parameter* VecParameter::Find(const wxString& name) {
    return const_cast<Parameter*>(static_cast<const VecParameter*>(this)->Find(name));
}

VecVecParameter::~VecVecParameter() = default;

wxJSONValue VecVecParameter::WriteToJson() const {
    wxJSONValue value(wxJSONTYPE_OBJECT);
    for (std::size_t i = 0; i < m_groups.size(); ++i) value[m_names[i]] = m_groups[i].WriteToJson();
    return value;
}

void VecVecParameter::ReadFromJson(const wxJSONValue& value) {
    if (!value.IsObject()) ThrowMessage(__LINE__, "The groups of parameters are no JSON object.");
    for (std::size_t i = 0; i < m_groups.size(); ++i) {
        const wxJSONValue& group = value.ItemAt(m_names[i]);
        if (group.IsObject()) m_groups[i].ReadFromJson(group);
    }
}

void VecVecParameter::Add(const wxString& groupName, const VecParameter& group) {
    VecParameter named(group);
    named.SetJsonName(groupName);
    m_names.push_back(groupName);
    m_groups.push_back(std::move(named));
}

std::size_t VecVecParameter::IndexOf(const wxString& groupName) const {
    for (std::size_t i = 0; i < m_names.size(); ++i)
        if (m_names[i] == groupName) return i;
    return m_names.size();
}

bool VecVecParameter::HasGroup(const wxString& groupName) const {
    return IndexOf(groupName) < m_names.size();
}

VecParameter& VecVecParameter::Group(const wxString& groupName) {
    if (!HasGroup(groupName)) ThrowMessage(__LINE__, "There is no group \"" + groupName + "\".");
    return m_groups[IndexOf(groupName)];
}

const VecParameter& VecVecParameter::Group(const wxString& groupName) const {
    if (!HasGroup(groupName)) ThrowMessage(__LINE__, "There is no group \"" + groupName + "\".");
    return m_groups[IndexOf(groupName)];
}

void VecVecParameter::Reset() {
    for (VecParameter& group : m_groups) group.Reset();
}

void VecVecParameter::ClearRef() {
    for (VecParameter& group : m_groups) group.ClearRef();
}

void VecVecParameter::clear() {
    m_groups.clear();
    m_names.clear();
}
