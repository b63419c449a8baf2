// SPDX-License-Identifier: Apache-2.0
// One set of parameter values that a filter offers.
#pragma once
#include <cstdint>

#include "tolbase/export.h"
#include "tolbase/parameter.h"

// A set of parameter values, whether the user wants it, and what is known of its result for the loaded Evidence.
//
// A configuration has neither a name nor a number: two are the same when their parameters are equal (IsSameAs). A plain
// value without a lock: whoever holds the list that it stands in keeps the threads apart.
class ORV_API OrvFilterConfiguration : public VecParameter {
public:
    // What is known of a result. The numbers are fixed: they are stored in other places.
    enum FilterStatus : int32_t {
        NotCalculated = 0,
        Ok = 1,
        Warning = 2,
        Unsupported = 3,
    };

    // The text of each status, indexed by it. A status file holds exactly one of them.
    static const wxString sm_statusStrings[4];

    // Enabled, status NotCalculated.
    OrvFilterConfiguration() = default;
    OrvFilterConfiguration(const VecParameter& parameters) : VecParameter(parameters) {}

    // The text of a status; that of NotCalculated for a number that is none.
    static wxString GetStatusString(FilterStatus status);

    // The status that a status file tells: its whole content is compared, case included, with the four texts.
    // NotCalculated for a file that is missing, can't be read or holds anything else.
    static FilterStatus GetStatusFromFile(const wxString& path);

    void Enable(bool enable) { m_enabled = enable; }
    bool IsEnabled() const { return m_enabled; }
    FilterStatus GetFilterStatus() const { return m_status; }
    void SetFilterStatus(FilterStatus status) { m_status = status; }

    // Takes the status from a status file, as GetStatusFromFile reads it.
    void UpdateFilterStatus(const wxString& path) { m_status = GetStatusFromFile(path); }

    // True if there are as many parameters as in `parameters` and each equals its counterpart.
    bool IsSameAs(const VecParameter& parameters) const;

private:
    bool m_enabled = true;
    FilterStatus m_status = NotCalculated;
};
