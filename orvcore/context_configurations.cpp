// SPDX-License-Identifier: Apache-2.0
// The configurations of all filters as one list of texts: "[!]name[-value-value...]", "!" for one that isn't enabled.
#include "orvcore/context.h"
#include "orvcore/filter.h"
#include "orvcore/optionnumbers.h"
#include "orvcore/translate.h"

namespace {

wxString JoinEntry(wxString const& head, wxString const& parameters) {
    return parameters.empty() ? head : head + "-" + parameters;
}

}  // namespace

VecString OrvContext::GetConfigurationsFromFilters(bool translated) const {
    VecString result;
    for (OrvFilter const* filter : m_filters) {
        wxString const name = translated ? OrvTranslate(filter->GetName()) : filter->GetName();
        int const count = static_cast<int>(filter->GetConfigurationsSize());
        for (int i = 0; i < count; ++i) {
            wxString const mark = filter->IsConfigurationEnabled(i) ? "" : "!";
            result.push_back(
                JoinEntry(mark + name, GetParametersString(filter->GetConfigurationParams(i), translated)));
        }
    }
    return result;
}

VecString OrvContext::ConvertToUntranslatedConfigurations(VecString const& list) const {
    VecString result;
    for (wxString const& entry : list) {
        bool const disabled = entry.StartsWith("!");
        wxString const mark = disabled ? "!" : "";
        wxString const translatedName = entry.BeforeFirst('-').Mid(disabled ? 1 : 0);
        OrvFilter const* filter = GetFilterFromName(translatedName);
        if (filter == nullptr) continue;
        for (OrvFilterConfiguration const& configuration : filter->GetConfigurations()) {
            wxString const candidate = JoinEntry(mark + translatedName, GetParametersString(configuration, true));
            if (candidate != entry) continue;
            result.push_back(JoinEntry(mark + filter->GetName(), GetParametersString(configuration, false)));
        }
    }
    return result;
}

void OrvContext::RefreshConfigurations() {
    m_currentConfigurations = GetConfigurationsFromFilters(true);
    if (m_programOptions.empty() || m_programOptions[0].size() < OrvOptionCount) return;
    m_programOptions[0][OrvOptionConfigurations].Set(boost::any(m_currentConfigurations));
}

void OrvContext::ApplyConfigurations() {
    Parameter& option = m_programOptions[0][OrvOptionConfigurations];
    VecString configurations = option.GetValue<VecString>();
    if (configurations.empty()) {
        for (OrvFilter* filter : m_filters) filter->ResetDefaultConfigurations();
        configurations = GetConfigurationsFromFilters(true);
        option.Set(boost::any(configurations));
    }
    if (configurations.empty() || configurations == m_currentConfigurations) return;
    try {
        for (OrvFilter* filter : m_filters) filter->SetConfigurationsFromVecString(configurations);
        m_currentConfigurations = GetConfigurationsFromFilters(true);
        option.Set(boost::any(m_currentConfigurations));
    } catch (...) {
        // What can't be read leaves the filters as far as they came.
        return;
    }
}
