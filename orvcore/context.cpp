// SPDX-License-Identifier: Apache-2.0
// The context's life, its slots as others see them, its paths and plain settings.
#include "orvcore/context.h"

#include <wx/filename.h>
#include <wx/fs_inet.h>
#include <wx/stdpaths.h>

#include "orvcore/fileslot.h"
#include "orvcore/filter.h"
#include "orvcore/project.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/translation.h"

namespace {

std::atomic<OrvContext*> globalContext{nullptr};

CvSize MakeSize(int width, int height) {
    CvSize size;
    size.width = width;
    size.height = height;
    return size;
}

wxString Beneath(wxString const& folder, char const* name) {
    return folder + wxFILE_SEP_PATH + name;
}

}  // namespace

OrvContext* GetContext() {
    return globalContext;
}

OrvContext::OrvContext()
    : m_slots{std::make_unique<FileSlot>(), std::make_unique<FileSlot>()},
      m_cacheFormat("png"),
      m_defaultImageSize(MakeSize(640, 480)),
      m_thumbnailSize(MakeSize(20, 20)) {
    globalContext = this;
    try {
        Begin();
    } catch (...) {
        globalContext = nullptr;
        throw;
    }
}

void OrvContext::Begin() {
    wxString const documents = GetAppDocumentsPath();
    m_programOptionsPath = Beneath(Beneath(documents, "settings"), "default.ovs");
    m_userQtDatabasePath = Beneath(documents, "qt");
    m_userQtDatabaseFilename = Beneath(m_userQtDatabasePath, "userqt.csv");
    m_userSmsDatabasePath = Beneath(documents, "socialmediasig");
    m_userSmsDatabaseFilename = Beneath(m_userSmsDatabasePath, "usersms.json");
    LoadInternalQtDatabase();
    LoadUserQtDatabase();
    // Without its thread whoever posts a command would wait for ever.
    if (m_workerThread.Create(0) != wxTHREAD_NO_ERROR || m_workerThread.Run() != wxTHREAD_NO_ERROR) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                           "The worker thread can't be started: there is too little memory.");
    }
    m_project = std::make_unique<OrvProject>();
}

OrvContext::~OrvContext() {
    m_workerThread.Shutdown();
    delete PopEvent();
    m_project.reset();
    m_translationHelper.reset();
    for (OrvFilter* filter : m_filters) delete filter;
}

// ---- file slots ----

bool OrvContext::HasFile(OrvFileId id) const {
    return HasFile(m_slots[id]->filename);
}

bool OrvContext::HasFile(wxString const& location) const {
    if (location.empty()) return false;
    if (wxFileExists(location)) return true;
    wxInternetFSHandler handler;
    return handler.CanOpen(location);
}

wxString OrvContext::GetFilename(OrvFileId id) const {
    return m_slots[id]->filename;
}

wxString OrvContext::GetOriginalFilename(OrvFileId id) const {
    return m_slots[id]->originalFilename;
}

wxString OrvContext::GetFilenameNoPath(OrvFileId id) const {
    return wxFileName(m_slots[id]->filename).GetName();
}

wxString OrvContext::GetFileLabel(OrvFileId id) const {
    static wxString const labels[2] = {"Evidence", "Reference"};
    return labels[id];
}

wxString OrvContext::GetFileInfo(OrvFileId id) const {
    return m_slots[id]->fileInfo;
}

VecString OrvContext::GetFileList(OrvFileId id) const {
    return m_slots[id]->fileList;
}

void OrvContext::SetFileList(VecString const& list, OrvFileId id) {
    m_slots[id]->fileList = list;
}

int OrvContext::GetFileId(OrvFileId id) const {
    return m_slots[id]->fileId;
}

void OrvContext::SetFileId(int fileId, OrvFileId id) {
    m_slots[id]->fileId = fileId;
}

wxString OrvContext::GetOutputBasePath(OrvFileId id) const {
    return m_slots[id]->outputBasePath;
}

bool OrvContext::IsJpeg(OrvFileId id) const {
    return m_slots[id]->details.IsJpeg;
}

Image const& OrvContext::GetImage(OrvFileId id) const {
    return m_slots[id]->image;
}

Image const& OrvContext::GetImagePreview(OrvFileId id) const {
    return m_slots[id]->preview;
}

Image const& OrvContext::GetImageThumbnail(OrvFileId id) const {
    return m_slots[id]->thumbnail;
}

ImageDetailsExifTool const& OrvContext::GetImageDetails(OrvFileId id) const {
    return m_slots[id]->details;
}

JpegInfo OrvContext::GetImageJpegInfo(OrvFileId id) const {
    return m_slots[id]->jpegInfo;
}

JpegInfo OrvContext::GetPreviewJpegInfo(OrvFileId id) const {
    return m_slots[id]->previewJpegInfo;
}

JpegInfo OrvContext::GetThumbnailJpegInfo(OrvFileId id) const {
    return m_slots[id]->thumbnailJpegInfo;
}

wxString OrvContext::GetImageQtHash(OrvFileId id) const {
    return m_slots[id]->jpegInfo.QtHash;
}

wxString OrvContext::GetImageQtHashRot(OrvFileId id) const {
    return m_slots[id]->jpegInfo.QtHashRot;
}

ImageHeader OrvContext::GetImageHeader(OrvFileId id) const {
    ImageDetailsExifTool const& details = m_slots[id]->details;
    ImageHeader header;
    header.Width = details.EncodedWidth;
    header.Height = details.EncodedHeight;
    header.Channels = details.Channels;
    header.Make = details.Make;
    header.Model = details.Model;
    header.Software = details.Software;
    return header;
}

// ---- worker thread and events ----

void OrvContext::PostCommand(OrvCommand* command) {
    m_workerThread.PostCommand(command);
}

void OrvContext::ClearQueue() {
    m_workerThread.ClearQueue();
}

void OrvContext::AbortProcessing() {
    m_workerThread.AbortProcessing();
}

void OrvContext::SetProgressHandler(OrvProgressHandler* handler) {
    m_workerThread.SetProgressHandler(handler);
}

int OrvContext::GetQueueSize() const {
    return static_cast<int>(m_workerThread.GetQueueSize());
}

bool OrvContext::IsTimerActive() const {
    return m_workerThread.IsTimerActive();
}

OrvWorkerThread* OrvContext::GetOrvThread() {
    return &m_workerThread;
}

void OrvContext::PushEvent(OrvCommandEvent* event) {
    m_pendingEvent = event;
}

OrvCommandEvent* OrvContext::PopEvent() {
    return m_pendingEvent.exchange(nullptr);
}

// ---- paths and settings ----

wxString OrvContext::GetProgramOptionsPath() const {
    return m_programOptionsPath;
}

wxString OrvContext::GetUserQtDatabaseFilename() const {
    return m_userQtDatabaseFilename;
}

wxString OrvContext::GetUserQtDatabasePath() const {
    return m_userQtDatabasePath;
}

wxString OrvContext::GetUserSMSDatabaseFilename() const {
    return m_userSmsDatabaseFilename;
}

wxString OrvContext::GetUserSMSDatabasePath() const {
    return m_userSmsDatabasePath;
}

wxString OrvContext::GetConfigDir() const {
    wxString const folder = wxPathOnly(wxPathOnly(wxStandardPaths::Get().GetExecutablePath()));
    return Beneath(folder, "orvelledata") + wxFILE_SEP_PATH;
}

wxString OrvContext::GetPrnuFalseFolder() const {
    return Beneath(Beneath(GetAppDocumentsPath(), "prnu"), "negative-reference");
}

wxString OrvContext::GetPrnuModelsFolder() const {
    return Beneath(Beneath(GetAppDocumentsPath(), "prnu"), "models");
}

wxString OrvContext::GetPrnuReferencePatternPath() const {
    return m_prnuReferencePatternPath;
}

void OrvContext::SetPrnuReferencePatternPath(wxString const& path) {
    m_prnuReferencePatternPath = path;
}

bool OrvContext::IsPrnuReferencePatterPathChanged(OrvFileId id, wxString const& path) {
    bool changed = path != m_prnuReferencePatternPath;
    if (id == Reference && HasFile(Evidence)) changed = m_prnuReferencePatternPathChanged;
    if (m_prnuReferencePatternPathChanged && changed) return true;
    m_prnuReferencePatternPathChanged = changed;
    return changed;
}

bool OrvContext::IsPrnuReferencePatterPathChanged() const {
    return m_prnuReferencePatternPathChanged;
}

void OrvContext::SetPrnuReferencePatternPathChanged(bool changed) {
    m_prnuReferencePatternPathChanged = changed;
}

double OrvContext::GetPrnuThreshold() const {
    return m_prnuThreshold;
}

wxString OrvContext::GetCacheFormat() const {
    return m_cacheFormat;
}

bool OrvContext::CacheEnabled() const {
    return m_cacheEnabled;
}

void OrvContext::EnableCache(bool enable) {
    m_cacheEnabled = enable;
}

bool OrvContext::ShowBestMatchingParameters() const {
    return m_showBestMatchingParameters;
}

int OrvContext::GetJpgQuality() const {
    return m_jpgQuality;
}

int OrvContext::GetOutputImageMaxWidth() const {
    return m_outputImageMaxWidth;
}

void OrvContext::SetOutputImageMaxWidth(int width) {
    m_outputImageMaxWidth = width;
}

int OrvContext::GetOutputImageMinWidth() const {
    return m_outputImageMinWidth;
}

void OrvContext::SetOutputImageMinWidth(int width) {
    m_outputImageMinWidth = width;
}

CvSize OrvContext::GetDefaultImageSize() const {
    return m_defaultImageSize;
}

AppVersion OrvContext::GetAppVersion() const {
    return m_appVersion;
}

void OrvContext::SetAppVersion(AppVersion const& version) {
    m_appVersion = version;
}

OrvProject* OrvContext::GetProject() const {
    return m_project.get();
}

VecString OrvContext::GetImageFormatsRead() const {
    return imageFormatsRead;
}

VecString OrvContext::GetImageFormatsWrite() const {
    return imageFormatsWrite;
}

wxString OrvContext::GetStringImageFormatsRead() const {
    return stringImageFormatsRead;
}

wxString OrvContext::GetStringImageFormatsWrite() const {
    return stringImageFormatsWrite;
}

VecString OrvContext::GetSoftwareKeywords() const {
    return m_softwareKeywords;
}

void OrvContext::SetBatchFileMap(std::map<wxString, wxString> const& map) {
    m_batchFileMap = map;
}

std::map<wxString, wxString> OrvContext::GetBatchFileMap() const {
    return m_batchFileMap;
}

void OrvContext::SetBrowserFiles(VecString const& files) {
    m_browserFiles = files;
}

VecString OrvContext::GetBrowserFiles() const {
    return m_browserFiles;
}

// ---- thumbnails of tables ----

void OrvContext::AddThumbnail(Image const& image) {
    m_thumbnails.push_back(image.IsOk() ? image.MakeCroppedThumbnail(m_thumbnailSize) : Image());
}

void OrvContext::ClearThumbnails() {
    m_thumbnails.clear();
}

std::vector<Image> OrvContext::GetThumbnails() const {
    return m_thumbnails;
}
