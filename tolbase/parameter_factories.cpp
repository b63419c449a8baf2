// SPDX-License-Identifier: Apache-2.0
#include <algorithm>

#include "tolbase/parameter.h"

namespace {

template <class T>
Parameter Typed(const wxString& name, const wxString& description, int type, const T& value,
                const wxString& text = wxString()) {
    return Parameter(name, description, type, boost::any(value), std::make_shared<ValidatorTyped<T>>(text));
}

template <class T>
Parameter Unbounded(const wxString& name, const wxString& description, T value) {
    return Parameter(name, description, ParameterTypeNumber, boost::any(value), std::make_shared<ValidatorNumber<T>>());
}

template <class T>
Parameter Bounded(const wxString& name, const wxString& description, int type, T value, T minimum, T maximum, T step) {
    if (maximum < minimum) std::swap(minimum, maximum);
    // Also takes a value that is no number to a bound.
    const T inside = value >= minimum ? std::min(value, maximum) : minimum;
    return Parameter(name, description, type, boost::any(inside),
                     std::make_shared<ValidatorNumber<T>>(minimum, maximum, step));
}

}  // namespace

Parameter CreateParameterBool(const wxString& name, const wxString& description, bool value) {
    return Typed<bool>(name, description, ParameterTypeBool, value);
}

Parameter CreateParameterInt(const wxString& name, const wxString& description, int value) {
    return Unbounded<int>(name, description, value);
}

Parameter CreateParameterIntMinMax(const wxString& name, const wxString& description, int value, int minimum,
                                   int maximum) {
    return Bounded<int>(name, description, ParameterTypeNumberMinMax, value, minimum, maximum, 1);
}

Parameter CreateParameterInt64(const wxString& name, const wxString& description, int64_t value) {
    return Unbounded<int64_t>(name, description, value);
}

Parameter CreateParameterDouble(const wxString& name, const wxString& description, double value) {
    return Unbounded<double>(name, description, value);
}

Parameter CreateParameterDoubleMinMax(const wxString& name, const wxString& description, double value, double minimum,
                                      double maximum, double step) {
    return Bounded<double>(name, description, ParameterTypeDoubleMinMax, value, minimum, maximum, step);
}

Parameter CreateParameterImageQuality(const wxString& name, const wxString& description, int value) {
    return CreateParameterIntMinMax(name, description, value, 1, 100);
}

Parameter CreateParameterImageResolution(const wxString& name, const wxString& description) {
    return Typed<wxSize>(name, description, ParameterTypeImageResolution, wxSize(0, 0));
}

Parameter CreateParameterString(const wxString& name, const wxString& description, const wxString& value) {
    return Typed<wxString>(name, description, ParameterTypeString, value);
}

Parameter CreateParameterOutputString(const wxString& name, const wxString& description) {
    return Typed<wxString>(name, description, ParameterTypeOutput, wxString());
}

Parameter CreateParameterTable(const wxString& name, const wxString& description) {
    return Typed<VecVecString>(name, description, ParameterTypeOutput, VecVecString());
}

Parameter CreateParameterOption(const wxString& name, const wxString& description, const std::vector<wxString>& options,
                                int selectedIndex) {
    const int last = std::max(static_cast<int>(options.size()) - 1, 0);
    return Parameter(name, description, ParameterTypeOption, boost::any(std::clamp(selectedIndex, 0, last)),
                     std::make_shared<ValidatorOption>(options));
}

Parameter CreateParameterFolder(const wxString& name, const wxString& description, const wxString& value,
                                const std::vector<wxString>&, const wxString& caption) {
    return Typed<wxString>(name, description, ParameterTypeFolder, value, caption);
}

Parameter CreateParameterFile(const wxString& name, const wxString& description, const wxString& value,
                              const std::vector<wxString>& extensions) {
    return Typed<wxString>(name, description, ParameterTypeFile, value, CatVecString(extensions, ";"));
}

Parameter CreateParameterFiles(const wxString& name, const wxString& description, const std::vector<wxString>& value,
                               const std::vector<wxString>& extensions) {
    return Typed<VecString>(name, description, ParameterTypeFiles, value, CatVecString(extensions, ";"));
}

Parameter CreateParameterVectorString(const wxString& name, const wxString& description,
                                      const std::vector<wxString>& value) {
    return Typed<VecString>(name, description, ParameterTypeVectorString, value);
}

Parameter CreateParameterStringMap(const wxString& name, const wxString& description,
                                   const std::map<wxString, wxString>& value) {
    return Typed<TolStringMap>(name, description, ParameterTypeStringMap, value);
}
