// SPDX-License-Identifier: Apache-2.0
// The registry of filters, and the text forms that name their results.
#include <wx/filename.h>

#include "orvcore/context.h"
#include "orvcore/filter.h"
#include "orvcore/filtercache.h"
#include "orvcore/translate.h"
#include "tolbase/serializer.h"
#include "tolbase/text.h"

OrvFilter* GetFilter(int type) {
    return GetContext()->GetFilter(type);
}

void OrvContext::AddFilterType(OrvFilter* filter, int type) {
    try {
        filter->InitFilter();
        m_filters.push_back(filter);
        m_filterMap[type] = filter;
    } catch (...) {
        wxString text = OrvTranslate("Error intializing filter %s");
        text.Replace("%s", filter->GetName(), false);
        TolMessageBox(text, OrvTranslate("Configuration Error"));
    }
}

OrvFilter* OrvContext::GetFilter(int type) {
    return m_filterMap[type];
}

OrvFilter* OrvContext::GetFilterFromName(wxString const& name) const {
    for (OrvFilter* filter : m_filters) {
        if (Serializer::AreNamesEquivalent(filter->GetName(), name)) return filter;
    }
    // Lists of configurations name the filters in the user's language.
    for (OrvFilter* filter : m_filters) {
        if (Serializer::AreNamesEquivalent(OrvTranslate(filter->GetName()), name)) return filter;
    }
    return nullptr;
}

std::vector<OrvFilter*> OrvContext::GetFilters() const {
    return m_filters;
}

OrvFilter* OrvContext::GetActiveFilter() const {
    return m_activeFilter;
}

void OrvContext::SetActiveFilter(OrvFilter* filter) {
    m_activeFilter = filter;
}

wxString OrvContext::GetActiveFilterSelectorString() const {
    const OrvFilter* filter = m_activeFilter;
    return filter != nullptr ? filter->GetOutputFileSelectorString() : wxString();
}

wxString OrvContext::GetExportFilename() const {
    const OrvFilter* filter = m_activeFilter;
    return filter != nullptr ? filter->GetExportFilename(true) : wxString();
}

void OrvContext::SaveFilterResult(wxString const& path) {
    if (OrvFilter* filter = m_activeFilter) filter->SaveOutputBase(path);
}

void OrvContext::SetImageToSave(Image const& image) {
    if (OrvFilter* filter = m_activeFilter) filter->SetImageToSave(image);
}

void OrvContext::UpdateFiltersStatus() {
    wxString folder = wxPathOnly(GetOutputBasePath(Evidence));
    filtercache::Stamp stamp(folder);
    for (OrvFilter* filter : m_filters) {
        for (OrvFilterConfiguration& configuration : filter->GetConfigurationsNoConst()) {
            wxString const path = filter->GetStatusFilename(Evidence, configuration);
            if (wxPathOnly(path) != folder) {
                folder = wxPathOnly(path);
                stamp = filtercache::Stamp(folder);
            }
            configuration.UpdateFilterStatus(path);
            // What other versions found out is not told either.
            if (!stamp.Covers(*filter)) configuration.SetFilterStatus(OrvFilterConfiguration::NotCalculated);
        }
    }
}

wxString OrvContext::GetNoDataAvailableMessage() const {
    if (!HasFile(Evidence)) return OrvTranslate("No image loaded. Please open a file or drag an image here.");
    const OrvFilter* filter = m_activeFilter;
    if (filter != nullptr && filter->IsOnlyForJpeg()) {
        return OrvTranslate("No data available. This filter supports only JPEG files.");
    }
    return OrvTranslate("No data available.");
}

wxString GetParametersString(VecParameter const& params, bool report) {
    wxString result;
    bool first = true;
    for (Parameter const& parameter : params) {
        int const type = parameter.GetType();
        bool const asReport = report || type == ParameterTypeStringMap;
        wxString text = asReport ? parameter.ToReport() : parameter.GetValueAsJson().AsString();
        if (type == ParameterTypeFolder || type == ParameterTypeFile || type == ParameterTypeFiles) {
            text = CleanDirName(text);
        }
        if (!first) result += "-";
        result += text;
        first = false;
    }
    return result;
}

wxString CleanDirName(wxString const& path) {
    wxString name = wxFileName(path).GetName();
    name.Replace("-", "_");
    name.Replace(" ", "_");
    return name;
}
