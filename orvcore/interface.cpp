// SPDX-License-Identifier: Apache-2.0
#include "orvcore/interface.h"

#include <wx/filename.h>

#include "orvcore/commands.h"
#include "orvcore/filter.h"

namespace {

OrvInterface* theInterface = nullptr;

}  // namespace

OrvInterface* GetInterface() {
    return theInterface;
}

OrvInterface::OrvInterface(OrvContext* context) : m_context(context) {
    theInterface = this;
}

OrvInterface::~OrvInterface() {
    theInterface = nullptr;
    delete m_context;
}

void OrvInterface::AddBookmark() {
    m_context->PostCommand(new OrvCommandAddBookmark);
}

void OrvInterface::CallAction(OrvFilter* filter, int actionId, const VecParameter& parameters) {
    m_context->PostCommand(new OrvCommandCallAction(filter, actionId, parameters));
}

void OrvInterface::CallGenericAction(OrvActionId actionId, const wxString& text, const VecParameter& parameters) {
    m_context->PostCommand(new OrvCommandCallGenericAction(actionId, text, parameters));
}

void OrvInterface::DeleteCache(OrvFileId id) {
    m_context->PostCommand(new OrvCommandDeleteCache(id));
}

void OrvInterface::DumpEmbeddedJpgs(const wxString& path) {
    m_context->PostCommand(new OrvCommandDumpEmbeddedJpgs(path));
}

void OrvInterface::DumpImagesFromPdf(const wxString& path, VecParameter& parameters) {
    m_context->PostCommand(new OrvCommandDumpImagesFromPdf(path, parameters));
}

void OrvInterface::Exit() {
    m_context->PostCommand(new OrvCommandExit);
}
void OrvInterface::GenerateReport() {
    m_context->PostCommand(new OrvCommandGenerateReport);
}
void OrvInterface::LoadProject(const wxString& path) {
    m_context->PostCommand(new OrvCommandLoadProject(path));
}
void OrvInterface::NewProject() {
    m_context->PostCommand(new OrvCommandNewProject);
}
void OrvInterface::ReprocessCurrent(OrvFileId id) {
    m_context->PostCommand(new OrvCommandReprocessCurrent(id));
}
void OrvInterface::SaveProject(const wxString& path) {
    m_context->PostCommand(new OrvCommandSaveProject(path));
}

void OrvInterface::SetBookmarks(const std::vector<OrvBookmark>& bookmarks) {
    m_context->PostCommand(new OrvCommandSetBookmarks(bookmarks));
}

void OrvInterface::SetFile(const wxString& path, OrvFileId id) {
    const bool evidence = id == Evidence;
    const bool reference = id == Reference;
    m_context->PostCommand(new OrvCommandSetFileConfigure(evidence ? path : wxString(), evidence,
                                                          reference ? path : wxString(), reference, nullptr,
                                                          VecParameter(), VecParameter(), -1));
}

void OrvInterface::Configure(OrvFilter* filter, int configurationId, const VecParameter& parameters,
                             const VecParameter& postParameters, bool clearQueue) {
    if (clearQueue) m_context->ClearQueue();
    m_context->PostCommand(new OrvCommandSetFileConfigure(wxString(), false, wxString(), false, filter, parameters,
                                                          postParameters, configurationId));
}

void OrvInterface::SetFileConfigure(const wxString& evidence, const wxString& reference, OrvFilter* filter,
                                    const VecParameter& parameters, const VecParameter& postParameters,
                                    bool clearQueue) {
    if (clearQueue) m_context->ClearQueue();
    m_context->PostCommand(
        new OrvCommandSetFileConfigure(evidence, true, reference, true, filter, parameters, postParameters, -1));
}

void OrvInterface::AddFilterConfiguration(OrvFilter* filter, const VecParameter& parameters, int position) {
    filter->AddConfiguration(parameters, position);
}

void OrvInterface::DeleteFilterConfiguration(OrvFilter* filter, int index) {
    filter->DeleteConfiguration(index);
}
void OrvInterface::DeleteAllFilterConfigurations(OrvFilter* filter) {
    filter->DeleteAllConfigurations();
}

void OrvInterface::EnableConfiguration(OrvFilter* filter, int index, bool enable) {
    filter->EnableConfiguration(index, enable);
}

void OrvInterface::ResetDefaultFilterConfigurations(OrvFilter* filter) {
    filter->ResetDefaultConfigurations();
}
void OrvInterface::AbortProcessing() {
    m_context->AbortProcessing();
}
void OrvInterface::SetProgressHandler(OrvProgressHandler* handler) {
    m_context->SetProgressHandler(handler);
}
void OrvInterface::SetProgramOptions(const VecVecParameter& options) {
    m_context->SetProgramOptions(options);
}
void OrvInterface::LoadProgramOptions(const wxString& path) {
    ::GetContext()->LoadProgramOptions(path);
}
void OrvInterface::SaveProgramOptions(const wxString& path) {
    ::GetContext()->SaveProgramOptions(path);
}
void OrvInterface::SaveFilterResult(const wxString& path) {
    m_context->SaveFilterResult(path);
}
void OrvInterface::SetImageToSave(const Image& image) {
    m_context->SetImageToSave(image);
}
void OrvInterface::PostResponse() {
    ::GetContext()->GetOrvThread()->PostResponse(0);
}
OrvCommandEvent* OrvInterface::PostTestResponse() {
    return m_context->GetOrvThread()->PostTestResponse();
}
void OrvInterface::SetTest() {
    m_context->GetOrvThread()->SetTest();
}

OrvFilter* OrvInterface::GetActiveFilter() const {
    return m_context->GetActiveFilter();
}
wxString OrvInterface::GetConfigDir() const {
    return m_context->GetConfigDir();
}
wxString OrvInterface::GetExportFilename() const {
    return m_context->GetExportFilename();
}
int OrvInterface::GetFileId(OrvFileId id) const {
    return m_context->GetFileId(id);
}
wxString OrvInterface::GetFileInfo(OrvFileId id) const {
    return m_context->GetFileInfo(id);
}
VecString OrvInterface::GetFileList(OrvFileId id) const {
    return m_context->GetFileList(id);
}
wxString OrvInterface::GetFilename(OrvFileId id) const {
    return m_context->GetOriginalFilename(id);
}
wxString OrvInterface::GetFilterFileSelectorString() const {
    return m_context->GetActiveFilterSelectorString();
}
std::vector<OrvFilter*> OrvInterface::GetFilters() const {
    return m_context->GetFilters();
}
ImageDetailsExifTool OrvInterface::GetImageDetails(OrvFileId id) const {
    return m_context->GetImageDetails(id);
}
Image OrvInterface::GetImageDisplayed(OrvFileId id) const {
    return m_context->GetImage(id);
}
JpegInfo OrvInterface::GetJpegInfo(OrvFileId id) const {
    return m_context->GetImageJpegInfo(id);
}
wxString OrvInterface::GetOutputDir(OrvFileId id) const {
    return wxPathOnly(m_context->GetOutputBasePath(id));
}
VecVecParameter OrvInterface::GetProgramOptions() const {
    return m_context->GetProgramOptions();
}
wxString OrvInterface::GetProgramOptionsPath() const {
    return m_context->GetProgramOptionsPath();
}
OrvProject OrvInterface::GetProject() const {
    return *m_context->GetProject();
}
wxString OrvInterface::GetStringImageFormatsRead() const {
    return m_context->GetStringImageFormatsRead();
}
wxString OrvInterface::GetStringImageFormatsWrite() const {
    return m_context->GetStringImageFormatsWrite();
}
VecString OrvInterface::GetStringKeywords() const {
    return m_context->GetSoftwareKeywords();
}
bool OrvInterface::HasFile(OrvFileId id) const {
    return m_context->HasFile(id);
}
bool OrvInterface::IsJpeg(OrvFileId id) const {
    return m_context->IsJpeg(id);
}
