// SPDX-License-Identifier: Apache-2.0
// The configurations that a filter offers.
#include <cmath>

#include "orvcore/filter.h"
#include "orvcore/translate.h"
#include "tolbase/serializer.h"
#include "tolbase/text.h"

namespace {

// So many parameters span the default list.
constexpr size_t maxSpanningParameters = 4;

// Stands for a minus sign while a text is split at its dashes.
const char* const minusMark = "'minus'";

// Stores the plain number of a value, whatever the parameter's range is.
void SetIndex(Parameter& parameter, size_t index) {
    if (parameter.GetType() == ParameterTypeBool) {
        parameter.SetUnchecked(boost::any(index == 1));
    } else if (parameter.Holds<double>()) {
        parameter.SetUnchecked(boost::any(static_cast<double>(index)));
    } else {
        parameter.SetUnchecked(boost::any(static_cast<int>(index)));
    }
}

// Splits the values behind a filter's name. A dash in front of a value separates, a second one is its sign.
VecString SplitValues(wxString text) {
    text.Replace("--", wxString("-") + minusMark);
    VecString tokens = StringToVecString(text, "-", wxTOKEN_DEFAULT, true);
    for (wxString& token : tokens) token.Replace(minusMark, "-");
    return tokens;
}

}  // namespace

void OrvFilter::AddConfiguration(const VecParameter& values, int position) {
    const bool inside = position >= 0 && static_cast<size_t>(position) < m_configurations.size();
    m_configurations.insert(inside ? m_configurations.begin() + position : m_configurations.end(),
                            OrvFilterConfiguration(values));
}

void OrvFilter::DeleteConfiguration(int index) {
    if (index < 0 || static_cast<size_t>(index) >= m_configurations.size()) return;
    m_configurations.erase(m_configurations.begin() + index);
}

void OrvFilter::DeleteAllConfigurations() {
    m_configurations.clear();
}

bool OrvFilter::EnableConfiguration(int index, bool enable) {
    if (index < 0 || static_cast<size_t>(index) >= m_configurations.size()) return false;
    OrvFilterConfiguration& configuration = m_configurations[static_cast<size_t>(index)];
    if (configuration.IsEnabled() == enable) return false;
    configuration.Enable(enable);
    return true;
}

bool OrvFilter::IsConfigurationEnabled(int index) const {
    if (m_configurations.empty()) return true;
    const bool inside = index >= 0 && static_cast<size_t>(index) < m_configurations.size();
    return m_configurations[inside ? static_cast<size_t>(index) : 0].IsEnabled();
}

std::vector<OrvFilterConfiguration> OrvFilter::GetEnabledConfigurations() const {
    std::vector<OrvFilterConfiguration> enabled;
    for (const OrvFilterConfiguration& configuration : m_configurations) {
        if (configuration.IsEnabled()) enabled.push_back(configuration);
    }
    return enabled;
}

VecParameter OrvFilter::GetConfigurationParams(int index) const {
    if (index < 0 || static_cast<size_t>(index) >= m_configurations.size()) return {};
    return m_configurations[static_cast<size_t>(index)];
}

void OrvFilter::ResetDefaultConfigurations() {
    m_configurations = m_configurationsDefault;
}

// The number of values that a parameter contributes to the default list; 0 where it can't be counted.
size_t OrvFilter::CountDefaultValues(size_t index) const {
    if (index >= m_parametersInput.size()) return 0;
    const Parameter& parameter = m_parametersInput[index];
    switch (parameter.GetType()) {
        case ParameterTypeBool:
            return 2;
        case ParameterTypeNumberMinMax:
        case ParameterTypeDoubleMinMax: {
            const double range = parameter.GetMaximum() - parameter.GetMinimum();
            const double step = parameter.GetStep();
            if (!(step > 0) || !(range >= 0)) return 0;
            // A step such as 0.1 has no exact quotient.
            return static_cast<size_t>(std::floor(range / step + 1e-9)) + 1;
        }
        case ParameterTypeOption:
            return parameter.Strings().size();
        default:
            return 0;
    }
}

// Adds one configuration for each combination of the values of the parameters from `level` on, the last turning
// fastest.
void OrvFilter::AddCombinations(size_t level, const std::vector<size_t>& counts) {
    if (level >= counts.size() || counts[level] == 0) {
        AddConfiguration(m_parametersInput, -1);
        return;
    }
    for (size_t i = 0; i < counts[level]; ++i) {
        SetIndex(m_parametersInput[level], i);
        AddCombinations(level + 1, counts);
    }
}

void OrvFilter::CalculateConfigurationsDefault() {
    if (m_parametersInput.size() > maxSpanningParameters) {
        // The condition is a text for the report, not an expression.
        wxFAIL_COND_MSG(vpsize < 4, "The first four parameters span the configurations of " + m_name);
    }
    std::vector<size_t> counts;
    for (size_t i = 0; i < maxSpanningParameters; ++i) counts.push_back(CountDefaultValues(i));
    AddCombinations(0, counts);
}

void OrvFilter::SetConfigurationsFromVecString(const VecString& list) {
    m_configurations.clear();
    m_parametersInput.Reset();
    for (const wxString& entry : list) {
        wxString head = entry.BeforeFirst('-');
        const bool enabled = !head.StartsWith("!");
        if (!enabled) head = head.AfterFirst('!');
        const bool isOwn = Serializer::AreNamesEquivalent(GetName(), head) ||
                           Serializer::AreNamesEquivalent(OrvTranslate(GetName()), head);
        if (!isOwn) continue;
        OrvFilterConfiguration configuration(m_parametersInput);
        configuration.Enable(enabled);
        const VecString values = SplitValues(entry.AfterFirst('-'));
        for (size_t i = 0; i < values.size() && i < configuration.size(); ++i) {
            if (configuration[i].GetType() != ParameterTypeStringMap) configuration[i].SetString(values[i]);
        }
        m_configurations.push_back(configuration);
    }
    if (m_configurations.empty()) m_configurations = m_configurationsDefault;
}
