// SPDX-License-Identifier: Apache-2.0
// What the application tells of itself. A plain value; every text is empty until it is set.
#pragma once
#include <wx/string.h>

class AppVersion {
public:
    const wxString& GetAppName() const { return m_appName; }
    void SetAppName(const wxString& name) { m_appName = name; }
    const wxString& GetBuildDate() const { return m_buildDate; }
    void SetBuildDate(const wxString& date) { m_buildDate = date; }
    const wxString& GetPlatform() const { return m_platform; }
    void SetPlatform(const wxString& platform) { m_platform = platform; }
    const wxString& GetEngineRevision() const { return m_engineRevision; }
    void SetEngineRevision(const wxString& revision) { m_engineRevision = revision; }
    // The folder of the translations.
    const wxString& GetLangDir() const { return m_langDir; }
    void SetLangDir(const wxString& folder) { m_langDir = folder; }

private:
    wxString m_appName;
    wxString m_buildDate;
    wxString m_platform;
    wxString m_engineRevision;
    wxString m_langDir;
};
