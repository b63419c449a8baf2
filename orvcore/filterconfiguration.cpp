// SPDX-License-Identifier: Apache-2.0
#include "orvcore/filterconfiguration.h"

#include <wx/filename.h>

#include "tolbase/file.h"

const wxString OrvFilterConfiguration::sm_statusStrings[4] = {"Not Calculated", "Ok", "Warning", "Unsupported"};

wxString OrvFilterConfiguration::GetStatusString(FilterStatus status) {
    return sm_statusStrings[status >= NotCalculated && status <= Unsupported ? status : NotCalculated];
}

OrvFilterConfiguration::FilterStatus OrvFilterConfiguration::GetStatusFromFile(const wxString& path) {
    // The folder may be one that others write to: nothing longer than any status is read.
    constexpr std::size_t longest = 64;
    std::string bytes;
    if (!wxFileName::FileExists(path) || !ReadFileBytes(path, bytes, longest)) return NotCalculated;
    for (const FilterStatus status : {NotCalculated, Ok, Warning, Unsupported}) {
        if (bytes == sm_statusStrings[status].utf8_str().data()) return status;
    }
    return NotCalculated;
}

bool OrvFilterConfiguration::IsSameAs(const VecParameter& parameters) const {
    return static_cast<const VecParameter&>(*this) == parameters;
}
