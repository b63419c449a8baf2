// SPDX-License-Identifier: Apache-2.0
// Parameters: named, described, typed and validated values, their lists, and groups of lists.
//
// All are values: a copy is independent. None has a lock: a parameter belongs to one thread at a time.
#pragma once
#include <boost/any.hpp>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "tolbase/exception.h"
#include "tolbase/export.h"
#include "tolbase/jsonobject.h"
#include "tolbase/parser.h"
#include "tolbase/text.h"
#include "tolbase/types.h"
#include "tolbase/validator.h"

// The kinds of parameter by their type numbers.
enum ParameterType : int {
    ParameterTypeNone = -1,  // of a default-constructed parameter, which holds nothing
    ParameterTypeBool = 0,
    ParameterTypeNumber = 1,        // without bounds
    ParameterTypeNumberMinMax = 2,  // integer with bounds and step
    ParameterTypeDoubleMinMax = 3,  // double with bounds and step
    ParameterTypeOption = 4,
    ParameterTypeString = 5,
    ParameterTypeVectorString = 6,
    ParameterTypeImageResolution = 7,
    ParameterTypeFolder = 29,
    ParameterTypeFile = 42,
    ParameterTypeFiles = 45,
    ParameterTypeStringMap = 49,
    ParameterTypeOutput = 90
};

class ORV_API Parameter {
public:
    // No name, no value, type -1. It takes over all of another one by assignment, and accepts nothing else.
    Parameter();
    // `value` is also the default that Reset returns to.
    Parameter(const wxString& name, const wxString& description, int type, boost::any value,
              std::shared_ptr<const Validator> validator);
    Parameter(const Parameter&) = default;
    Parameter(Parameter&&) noexcept = default;
    Parameter& operator=(const Parameter&) = default;
    Parameter& operator=(Parameter&&) noexcept = default;
    virtual ~Parameter();

    // True if the value was accepted and differs from the one held; it is then marked as changed. False for a value of
    // another type, one out of range and an equal one: nothing changes. Texts may come as wxString, std::string or
    // C string in UTF-8.
    virtual bool Set(const boost::any& value);
    // Takes the other's value only.
    virtual bool Set(const Parameter& other);
    bool Set(const wxString& text) { return Set(boost::any(text)); }
    bool Set(const char* text) { return Set(boost::any(wxString::FromUTF8(text))); }
    bool Set(const wchar_t* text) { return Set(boost::any(wxString(text))); }
    // As Set, for the text or report form of a value. False too for a text that doesn't parse, and always for type 49.
    virtual bool SetString(const wxString& text);
    // As Set, for a JSON value of the parameter's kind.
    virtual bool SetJson(const wxJSONValue& json);
    // Takes a value without any check; for default configurations.
    virtual void SetUnchecked(const boost::any& value);
    // Back to the default, unmarked.
    virtual void Reset();

    const wxString& Name() const { return m_name; }
    const wxString& GetDescription() const { return m_description; }
    int GetType() const { return m_type; }
    bool IsChanged() const { return m_changed; }
    void SetChanged(bool changed) { m_changed = changed; }

    // The value as T. A text is converted (zero where it doesn't parse); any other value of another type throws
    // TolException (61).
    template <class T>
    T GetValue() const {
        if constexpr (!std::is_same_v<T, wxString>) {
            if (const wxString* text = boost::any_cast<wxString>(&m_value)) return FromString<T>(*text);
        }
        return AnyCast<T>(m_value);
    }
    // Whether the value is held as T.
    template <class T>
    bool Holds() const {
        return boost::any_cast<T>(&m_value) != nullptr;
    }
    const boost::any& GetAny() const { return m_value; }

    // The text form, the text for a reader, the JSON form. A text that stands in for a value is given as it is.
    virtual wxString ToText() const;
    virtual wxString ToReport() const;
    virtual wxJSONValue GetValueAsJson() const;
    // The texts of an option; empty for all other kinds.
    VecString Strings() const;

    // Numbers only; all others throw TolException (61). An unbounded number has the bounds of its type; a double
    // without bounds has the step 0.
    double GetMinimum() const;
    double GetMaximum() const;
    double GetStep() const;
    const Validator* GetValidator() const { return m_validator.get(); }

    // A link to the parameter that this one was taken from. It is carried, never followed: it may outlive its target.
    void SetRef(const Parameter* reference) { m_reference = reference; }
    const Parameter* GetRef() const { return m_reference; }
    void ClearRef() { m_reference = nullptr; }

    // Same name, type and value.
    bool operator==(const Parameter& other) const;
    bool operator!=(const Parameter& other) const { return !(*this == other); }

private:
    bool Accept(const boost::any& value);
    const Validator& RequireValidator() const;

    wxString m_name;
    wxString m_description;
    int m_type = ParameterTypeNone;
    boost::any m_value;
    boost::any m_default;
    std::shared_ptr<const Validator> m_validator;
    bool m_changed = false;
    const Parameter* m_reference = nullptr;
};

ORV_API Parameter CreateParameterBool(const wxString& name, const wxString& description, bool value);
ORV_API Parameter CreateParameterInt(const wxString& name, const wxString& description, int value);
// A value outside the bounds is taken as the nearest bound.
ORV_API Parameter CreateParameterIntMinMax(const wxString& name, const wxString& description, int value, int minimum,
                                           int maximum);
ORV_API Parameter CreateParameterInt64(const wxString& name, const wxString& description, int64_t value);
ORV_API Parameter CreateParameterDouble(const wxString& name, const wxString& description, double value);
ORV_API Parameter CreateParameterDoubleMinMax(const wxString& name, const wxString& description, double value,
                                              double minimum, double maximum, double step);
// 1 to 100 (percent).
ORV_API Parameter CreateParameterImageQuality(const wxString& name, const wxString& description, int value);
// A wxSize that starts as 0x0.
ORV_API Parameter CreateParameterImageResolution(const wxString& name, const wxString& description);
ORV_API Parameter CreateParameterString(const wxString& name, const wxString& description, const wxString& value);
// Type 90: a text that a filter gives, empty at first.
ORV_API Parameter CreateParameterOutputString(const wxString& name, const wxString& description);
// Type 90: a table that a filter gives, empty at first.
ORV_API Parameter CreateParameterTable(const wxString& name, const wxString& description);
// An index outside the list is taken as the nearest one.
ORV_API Parameter CreateParameterOption(const wxString& name, const wxString& description,
                                        const std::vector<wxString>& options, int selectedIndex);
// `extensions` and `caption` are for a dialog.
ORV_API Parameter CreateParameterFolder(const wxString& name, const wxString& description, const wxString& value,
                                        const std::vector<wxString>& extensions, const wxString& caption);
ORV_API Parameter CreateParameterFile(const wxString& name, const wxString& description, const wxString& value,
                                      const std::vector<wxString>& extensions);
// A list of paths.
ORV_API Parameter CreateParameterFiles(const wxString& name, const wxString& description,
                                       const std::vector<wxString>& value, const std::vector<wxString>& extensions);
ORV_API Parameter CreateParameterVectorString(const wxString& name, const wxString& description,
                                              const std::vector<wxString>& value);
ORV_API Parameter CreateParameterStringMap(const wxString& name, const wxString& description,
                                           const std::map<wxString, wxString>& value);

// A list of parameters. In JSON: an object with each value under its parameter's name.
class ORV_API VecParameter : public JsonObject {
public:
    using value_type = Parameter;
    using iterator = std::vector<Parameter>::iterator;
    using const_iterator = std::vector<Parameter>::const_iterator;

    VecParameter() = default;
    explicit VecParameter(std::size_t count) : m_parameters(count) {}
    VecParameter(std::initializer_list<Parameter> parameters) : m_parameters(parameters) {}
    VecParameter(const VecParameter&) = default;
    VecParameter(VecParameter&&) noexcept = default;
    VecParameter& operator=(const VecParameter&) = default;
    VecParameter& operator=(VecParameter&&) noexcept = default;
    ~VecParameter() override;

    wxJSONValue WriteToJson() const override;
    // Throws TolException (82), nothing changed, for a value that is no object. A parameter that the object lacks, and
    // one whose value there is of another kind or out of range, keeps its value.
    void ReadFromJson(const wxJSONValue& value) override;

    // Every parameter back to its default.
    void Reset();
    void ClearRef();
    // The first parameter of that name; null if there is none.
    Parameter* Find(const wxString& name);
    const Parameter* Find(const wxString& name) const;

    Parameter& operator[](std::size_t index) { return m_parameters[index]; }
    const Parameter& operator[](std::size_t index) const { return m_parameters[index]; }
    Parameter& at(std::size_t index) { return m_parameters.at(index); }
    const Parameter& at(std::size_t index) const { return m_parameters.at(index); }
    Parameter& front() { return m_parameters.front(); }
    const Parameter& front() const { return m_parameters.front(); }
    Parameter& back() { return m_parameters.back(); }
    const Parameter& back() const { return m_parameters.back(); }
    std::size_t size() const { return m_parameters.size(); }
    bool empty() const { return m_parameters.empty(); }
    void push_back(const Parameter& parameter) { m_parameters.push_back(parameter); }
    void push_back(Parameter&& parameter) { m_parameters.push_back(std::move(parameter)); }
    void pop_back() { m_parameters.pop_back(); }
    void clear() { m_parameters.clear(); }
    void reserve(std::size_t count) { m_parameters.reserve(count); }
    void resize(std::size_t count) { m_parameters.resize(count); }
    iterator insert(const_iterator position, const Parameter& parameter) {
        return m_parameters.insert(position, parameter);
    }
    iterator erase(const_iterator position) { return m_parameters.erase(position); }
    iterator begin() { return m_parameters.begin(); }
    iterator end() { return m_parameters.end(); }
    const_iterator begin() const { return m_parameters.begin(); }
    const_iterator end() const { return m_parameters.end(); }

    // Same parameters in the same order.
    bool operator==(const VecParameter& other) const { return m_parameters == other.m_parameters; }
    bool operator!=(const VecParameter& other) const { return !(*this == other); }

private:
    std::vector<Parameter> m_parameters;
};

// Named groups of parameters. In JSON: an object with each group's object under the group's name.
class ORV_API VecVecParameter : public JsonObject {
public:
    using value_type = VecParameter;
    using iterator = std::vector<VecParameter>::iterator;
    using const_iterator = std::vector<VecParameter>::const_iterator;

    VecVecParameter() = default;
    VecVecParameter(const VecVecParameter&) = default;
    VecVecParameter(VecVecParameter&&) noexcept = default;
    VecVecParameter& operator=(const VecVecParameter&) = default;
    VecVecParameter& operator=(VecVecParameter&&) noexcept = default;
    ~VecVecParameter() override;

    wxJSONValue WriteToJson() const override;
    // As VecParameter's, group by group; a group that the object lacks, or that is no object there, keeps its values.
    void ReadFromJson(const wxJSONValue& value) override;

    // Appends a group.
    void Add(const wxString& groupName, const VecParameter& group);
    // The first group of that name; throws TolException (82) if there is none.
    VecParameter& Group(const wxString& groupName);
    const VecParameter& Group(const wxString& groupName) const;
    bool HasGroup(const wxString& groupName) const;
    // Throws std::out_of_range.
    const wxString& GetGroupName(std::size_t index) const { return m_names.at(index); }

    void Reset();
    void ClearRef();

    VecParameter& operator[](std::size_t index) { return m_groups[index]; }
    const VecParameter& operator[](std::size_t index) const { return m_groups[index]; }
    VecParameter& at(std::size_t index) { return m_groups.at(index); }
    const VecParameter& at(std::size_t index) const { return m_groups.at(index); }
    VecParameter& front() { return m_groups.front(); }
    VecParameter& back() { return m_groups.back(); }
    std::size_t size() const { return m_groups.size(); }
    bool empty() const { return m_groups.empty(); }
    void clear();
    // Appends a group under its own JSON name.
    void push_back(const VecParameter& group) { Add(group.GetJsonName(), group); }
    iterator begin() { return m_groups.begin(); }
    iterator end() { return m_groups.end(); }
    const_iterator begin() const { return m_groups.begin(); }
    const_iterator end() const { return m_groups.end(); }

private:
    std::size_t IndexOf(const wxString& groupName) const;

    std::vector<VecParameter> m_groups;
    // Beside the groups: assigning to a group leaves its name.
    std::vector<wxString> m_names;
};
