// SPDX-License-Identifier: Apache-2.0
#include "orvcore/commands.h"

#include <wx/filename.h>

#include "orvcore/filter.h"
#include "orvcore/filtercache.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolimage/pdfimages.h"
#include "tolimage/subimages.h"

namespace {

const VecParameter& NoParameters() {
    static const VecParameter none;
    return none;
}

bool IsSlot(OrvFileId id) {
    return id == Evidence || id == Reference;
}

wxString FolderOf(const VecString& files) {
    return files.empty() ? wxString() : wxPathOnly(files.front());
}

// "Filter - parameters - evidence - reference", without the parts that are empty.
wxString BookmarkTitle(const OrvFilter& filter) {
    const OrvContext* context = GetContext();
    wxString title = filter.GetName();
    for (const wxString& part : {GetParametersString(filter.GetParametersInput(), true),
                                 context->GetFilenameNoPath(Evidence), context->GetFilenameNoPath(Reference)}) {
        if (!part.empty()) title += " - " + part;
    }
    return title;
}

}  // namespace

OrvCommandSetFileConfigure::OrvCommandSetFileConfigure(const wxString& evidence, bool setEvidence,
                                                       const wxString& reference, bool setReference, OrvFilter* filter,
                                                       const VecParameter& parameters,
                                                       const VecParameter& postProcessingParameters,
                                                       int configurationId)
    : OrvCommand(OrvCommandIdSetFileConfigure),
      m_setEvidence(setEvidence),
      m_setReference(setReference),
      m_configurationId(configurationId),
      m_evidence(evidence),
      m_reference(reference),
      m_filter(filter != nullptr ? filter : GetContext()->GetActiveFilter()),
      m_parameters(parameters),
      m_postProcessingParameters(postProcessingParameters) {
    if (!m_parameters.empty() || m_filter == nullptr) return;
    m_parameters =
        configurationId != -1 ? m_filter->GetConfigurationParams(configurationId) : m_filter->GetParametersInput();
}

void OrvCommandSetFileConfigure::LoadFiles() const {
    OrvContext* context = GetContext();
    if (m_setEvidence && context->GetFilename(Evidence) != m_evidence) {
        context->LoadFile(m_evidence, Evidence, wxString());
    }
    if (m_setReference && context->GetFilename(Reference) != m_reference) {
        context->LoadFile(m_reference, Reference, wxString());
    }
}

void OrvCommandSetFileConfigure::Execute() {
    OrvContext* context = GetContext();
    try {
        LoadFiles();
    } catch (const std::exception& exception) {
        wxASSERT_MSG(false, wxString::FromUTF8(exception.what()));
    } catch (...) {
        wxASSERT(false);
    }
    if (m_filter != nullptr) {
        m_filter->SetConfiguration(-1);
        context->SetActiveFilter(m_filter);
        m_filter->Configure(m_parameters, m_postProcessingParameters);
    } else {
        context->PushEvent(new OrvCommandEvent(wxEVT_ORV_COMMAND, OrvCommandIdFilterFailed, NoParameters()));
    }
    context->UpdateFiltersStatus();
}

wxString OrvCommandSetFileConfigure::GetCommandLog() const {
    if (GetContext()->HasFile(Evidence) && GetContext()->HasFile(Reference)) return {};
    return wxString::Format("Evidence: %s - Reference: %s - ConfigureFilter: %s - ConfigurationId: %d - Parameters: %s",
                            m_evidence, m_reference, m_filter != nullptr ? m_filter->GetName() : wxString(),
                            m_configurationId, GetParametersString(m_parameters, true));
}

wxString OrvCommandSetFileConfigure::GetResultLog() const {
    // Both marks have always meant the Evidence; readers of the log know the pair.
    return m_filter != nullptr && m_filter->ConfiguredFromCache(Evidence) ? "C1C2" : "";
}

bool OrvCommandSetFileConfigure::LogEnabled() const {
    return GetContext()->HasFile(Evidence) || GetContext()->HasFile(Reference);
}

OrvCommandDeleteCache::OrvCommandDeleteCache(OrvFileId fileId)
    : OrvCommand(OrvCommandIdDeleteCache), m_fileId(fileId) {}

void OrvCommandDeleteCache::Execute() {
    const wxString folder = IsSlot(m_fileId) ? wxPathOnly(GetContext()->GetOutputBasePath(m_fileId)) : wxString();
    filtercache::DeleteFolder(folder);
    for (OrvFilter* filter : GetContext()->GetFilters()) {
        for (OrvFilterConfiguration& configuration : filter->GetConfigurationsNoConst()) {
            configuration.SetFilterStatus(OrvFilterConfiguration::NotCalculated);
        }
    }
    PostEvent(wxString(), 0, wxString(), -1, NoParameters());
}

OrvCommandReprocessCurrent::OrvCommandReprocessCurrent(OrvFileId fileId)
    : OrvCommand(OrvCommandIdReprocessCurrent), m_fileId(fileId) {}

void OrvCommandReprocessCurrent::Execute() {
    OrvFilter* filter = GetContext()->GetActiveFilter();
    if (filter != nullptr && IsSlot(m_fileId)) filter->ResetStatus(m_fileId);
    PostEvent(wxString(), 0, wxString(), -1, NoParameters());
}

OrvCommandCallAction::OrvCommandCallAction(OrvFilter* filter, int actionId, const VecParameter& parameters)
    : OrvCommand(OrvCommandIdCallAction), m_filter(filter), m_actionId(actionId), m_parameters(parameters) {}

void OrvCommandCallAction::Execute() {
    m_filter->CallAction(m_actionId, m_parameters);
}

OrvCommandDumpEmbeddedJpgs::OrvCommandDumpEmbeddedJpgs(const wxString& path)
    : OrvCommand(OrvCommandIdDumpImages), m_path(path) {}

void OrvCommandDumpEmbeddedJpgs::Execute() {
    PostEvent(FolderOf(tcvDumpSubImages(m_path)), 0, wxString(), -1, NoParameters());
}

OrvCommandDumpImagesFromPdf::OrvCommandDumpImagesFromPdf(const wxString& path, VecParameter& parameters)
    : OrvCommand(OrvCommandIdDumpImages), m_path(path), m_parameters(parameters) {}

void OrvCommandDumpImagesFromPdf::Execute() {
    PostEvent(FolderOf(tcvDumpImagesFromPdf(m_path, m_parameters)), 0, wxString(), -1, NoParameters());
}

OrvCommandAddBookmark::OrvCommandAddBookmark() : OrvCommand(OrvCommandIdAddBookmark) {}

void OrvCommandAddBookmark::Execute() {
    OrvContext* context = GetContext();
    OrvFilter* filter = context->GetActiveFilter();
    if (filter != nullptr && !context->GetFilename(Evidence).empty()) {
        context->GetProject()->AddBookmark(OrvBookmark(BookmarkTitle(*filter), context->GetFilename(Evidence),
                                                       context->GetFilename(Reference), filter,
                                                       filter->GetParametersInput(), wxString(), OrvBookmarkUndefined));
    }
    PostEvent(wxString(), 0, wxString(), -1, NoParameters());
}

OrvCommandSetBookmarks::OrvCommandSetBookmarks(const std::vector<OrvBookmark>& bookmarks)
    : OrvCommand(OrvCommandIdSetBookmarks), m_bookmarks(bookmarks) {}

void OrvCommandSetBookmarks::Execute() {
    GetContext()->GetProject()->SetBookmarks(m_bookmarks);
    PostEvent(wxString(), 0, wxString(), -1, NoParameters());
}

OrvCommandNewProject::OrvCommandNewProject() : OrvCommand(OrvCommandIdNewProject) {}

void OrvCommandNewProject::Execute() {
    GetContext()->GetProject()->ResetProject();
    PostEvent(wxString(), 0, wxString(), -1, NoParameters());
}

OrvCommandLoadProject::OrvCommandLoadProject(const wxString& path)
    : OrvCommand(OrvCommandIdLoadProject), m_path(path) {}

void OrvCommandLoadProject::Execute() {
    GetContext()->GetProject()->LoadProject(m_path);
    PostEvent(wxString(), 0, wxString(), -1, NoParameters());
}

OrvCommandSaveProject::OrvCommandSaveProject(const wxString& path)
    : OrvCommand(OrvCommandIdSaveProject), m_path(path) {}

void OrvCommandSaveProject::Execute() {
    GetContext()->GetProject()->SaveProject(m_path);
    PostEvent(wxString(), 0, wxString(), -1, NoParameters());
}

OrvCommandGenerateReport::OrvCommandGenerateReport() : OrvCommand(OrvCommandIdGenerateReport) {}

void OrvCommandGenerateReport::Execute() {
    PostEvent(GetContext()->GetProject()->GenerateReport(), 0, wxString(), -1, NoParameters());
}
