// SPDX-License-Identifier: Apache-2.0
// The engine's one global object: the two file slots, the registry of filters, the program options, the lists of known
// quantisation tables, the paths of the user's own data, the worker thread and the project.
//
// An application derives its context from OrvContext; the derived constructor fills the image formats, registers the
// filters and loads the keywords. Everything else reaches the context through GetContext().
//
// Threads: there is no lock. Commands, and so LoadFile and the filters, run on the worker thread; the application reads
// only while the worker is idle or waits for its response (see workerthread.h). The operations that forward to the
// worker, the mailbox, the active filter and GetContext() are safe from both threads. Ownership: the context owns its
// filters, the project, the worker and all that a slot holds. Pointers that it gives out live as long as it does.
#pragma once
#include <opencv2/core/types_c.h>
#include <wx/string.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "orvcore/workerthread.h"
#include "tolbase/appversion.h"
#include "tolbase/export.h"
#include "tolbase/image.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"
#include "tolimage/imagedetails.h"
#include "tolimage/jpeginfo.h"
#include "tolimage/jpegsignature.h"

class OrvFilter;
class OrvProject;
class TranslationHelper;

// The two file slots, used as array index.
enum OrvFileId : int {
    Evidence = 0,   // the questioned image
    Reference = 1,  // the comparison image
};

// The head of a file's details, as other tools want it.
struct ImageHeader {
    int Width = 0;  // pixels, as stored in the file
    int Height = 0;
    int Channels = 0;
    wxString Make;
    wxString Model;
    wxString Software;
};

class ORV_API OrvContext {
public:
    // Throws TolException if the worker thread can't be started; GetContext() is then null.
    OrvContext();
    // Ends the worker thread and waits for it, whatever it is doing; then deletes project, translations and filters.
    virtual ~OrvContext();
    OrvContext(OrvContext const&) = delete;
    OrvContext& operator=(OrvContext const&) = delete;

    // ---- file slots ----

    // Brings a file into a slot: picture, embedded pictures, details, JPEG tables, status line, the folder's list and
    // the copy in the cache. Worker thread only. An empty path empties the slot, and so does a missing file.
    // `originalPath` is the name that the user knows the file by, where the loaded file is a temporary one; empty means
    // `path`. Throws TolException, code 82, for a file that no decoder reads; the slot then keeps what it had. What the
    // readers of details and tables throw passes through and leaves the slot empty.
    void LoadFile(wxString const& path, OrvFileId id, wxString const& originalPath);

    bool HasFile(OrvFileId id) const;
    // True for an existing file and for a web address.
    bool HasFile(wxString const& location) const;
    wxString GetFilename(OrvFileId id) const;
    // The name that the user knows the file by; empty if the file was loaded under another name.
    wxString GetOriginalFilename(OrvFileId id) const;
    // Neither folder nor extension.
    wxString GetFilenameNoPath(OrvFileId id) const;
    // "Evidence" or "Reference".
    wxString GetFileLabel(OrvFileId id) const;
    // The status line: size, format, JPEG quality and camera.
    wxString GetFileInfo(OrvFileId id) const;
    // All readable files of the slot's folder.
    VecString GetFileList(OrvFileId id) const;
    void SetFileList(VecString const& list, OrvFileId id);
    // Index of the file within the list; -1 if unknown.
    int GetFileId(OrvFileId id) const;
    void SetFileId(int fileId, OrvFileId id);
    // Stem of every output and cache file of the slot; empty while the slot has no picture.
    wxString GetOutputBasePath(OrvFileId id) const;
    bool IsJpeg(OrvFileId id) const;
    Image const& GetImage(OrvFileId id) const;
    Image const& GetImagePreview(OrvFileId id) const;
    Image const& GetImageThumbnail(OrvFileId id) const;
    ImageDetailsExifTool const& GetImageDetails(OrvFileId id) const;
    JpegInfo GetImageJpegInfo(OrvFileId id) const;
    JpegInfo GetPreviewJpegInfo(OrvFileId id) const;
    JpegInfo GetThumbnailJpegInfo(OrvFileId id) const;
    wxString GetImageQtHash(OrvFileId id) const;
    wxString GetImageQtHashRot(OrvFileId id) const;
    ImageHeader GetImageHeader(OrvFileId id) const;

    // ---- filters ----

    // Null for an unknown number, which is remembered as such.
    OrvFilter* GetFilter(int type);
    // The first filter whose name is equivalent; null if there is none.
    OrvFilter* GetFilterFromName(wxString const& name) const;
    std::vector<OrvFilter*> GetFilters() const;
    OrvFilter* GetActiveFilter() const;
    void SetActiveFilter(OrvFilter* filter);
    // Empty without an active filter.
    wxString GetActiveFilterSelectorString() const;
    // These three need an active filter.
    wxString GetExportFilename() const;
    void SaveFilterResult(wxString const& path);
    void SetImageToSave(Image const& image);
    // Refreshes the status of every configuration from its status file beside the Evidence's results.
    void UpdateFiltersStatus();
    // Why nothing is shown.
    wxString GetNoDataAvailableMessage() const;

    // ---- worker thread and events ----

    // Takes the command; a command that still waits is replaced.
    void PostCommand(OrvCommand* command);
    void ClearQueue();
    void AbortProcessing();
    void SetProgressHandler(OrvProgressHandler* handler);
    int GetQueueSize() const;
    bool IsTimerActive() const;
    OrvWorkerThread* GetOrvThread();
    // The mailbox of the running command: the worker queues what lies in it once Execute is done. What a second push
    // replaces is not freed.
    void PushEvent(OrvCommandEvent* event);
    // Gives the event to the caller and empties the mailbox.
    OrvCommandEvent* PopEvent();

    // ---- paths and settings ----

    wxString GetProgramOptionsPath() const;
    wxString GetUserQtDatabaseFilename() const;
    wxString GetUserQtDatabasePath() const;
    wxString GetUserSMSDatabaseFilename() const;
    wxString GetUserSMSDatabasePath() const;
    // The folder "orvelledata" above the program's own folder, with a separator at its end.
    wxString GetConfigDir() const;
    wxString GetPrnuFalseFolder() const;
    wxString GetPrnuModelsFolder() const;
    wxString GetPrnuReferencePatternPath() const;
    void SetPrnuReferencePatternPath(wxString const& path);
    // Compares the path with the pattern in use and remembers the answer; for the Reference beside a loaded Evidence
    // the remembered answer stands.
    bool IsPrnuReferencePatterPathChanged(OrvFileId id, wxString const& path);
    bool IsPrnuReferencePatterPathChanged() const;
    void SetPrnuReferencePatternPathChanged(bool changed);
    double GetPrnuThreshold() const;
    // "jpg" or "png".
    wxString GetCacheFormat() const;
    bool CacheEnabled() const;
    void EnableCache(bool enable);
    bool ShowBestMatchingParameters() const;
    // 1 to 100.
    int GetJpgQuality() const;
    // Widths of report pictures in pixels; 0 means their own.
    int GetOutputImageMaxWidth() const;
    void SetOutputImageMaxWidth(int width);
    int GetOutputImageMinWidth() const;
    void SetOutputImageMinWidth(int width);
    CvSize GetDefaultImageSize() const;
    AppVersion GetAppVersion() const;
    void SetAppVersion(AppVersion const& version);
    OrvProject* GetProject() const;
    VecString GetImageFormatsRead() const;
    VecString GetImageFormatsWrite() const;
    wxString GetStringImageFormatsRead() const;
    wxString GetStringImageFormatsWrite() const;
    VecString GetSoftwareKeywords() const;
    // Identifiers of files, by path, kept between batch runs.
    void SetBatchFileMap(std::map<wxString, wxString> const& map);
    std::map<wxString, wxString> GetBatchFileMap() const;
    // Files that an action opens in the default browser.
    void SetBrowserFiles(VecString const& files);
    VecString GetBrowserFiles() const;

    // ---- thumbnails of tables ----

    // Appends a cropped thumbnail of 20 by 20 pixels; a picture that isn't ok gives an entry that isn't ok.
    void AddThumbnail(Image const& image);
    void ClearThumbnails();
    std::vector<Image> GetThumbnails() const;

    // ---- lists of known quantisation tables ----
    // Classes are 1 (camera) and 2 (software); the getters of editor rows take the index 0 or 1. A row holds make,
    // model, quality, software name, signature and rotated signature.

    // Appends what the user's file holds; a file that is missing or can't be read adds nothing.
    void LoadUserQtDatabase();
    // Another class than 1 or 2 is passed over.
    void UpdateInternalQtDatabase(int editorClass, JpegsnoopSignature const& signature);
    void UpdateUserQtDatabase(int editorClass, JpegSignature const& signature);
    // `index` counts both classes together; the row is taken from the list of `editorClass`.
    void RemoveEntryFromUserQtDatabase(int editorClass, int index);
    VecVecString const& GetListOfEditorsInInternalQtDatabase(int index) const;
    VecVecString const& GetListOfEditorsInUserQtDatabase(int index) const;
    std::vector<JpegSignature> const& GetListOfSignaturesInUserQtDatabase() const;
    // Rows of all four lists.
    std::uint64_t GetNumberOfElementsInQtDatabases() const;

    // ---- program options ----

    // Builds the options, once all filters are registered.
    void InitProgramOptions(AppVersion const& version);
    // Applies options to the engine and the filters.
    void SetProgramOptions(VecVecParameter const& options);
    VecVecParameter GetProgramOptions() const;
    // The group of that name; throws TolException where there is none.
    VecParameter GetOptionGroup(wxString const& name) const;
    // Neither throws nor tells: a file that is missing or broken leaves the options as they are.
    void LoadProgramOptions(wxString const& path);
    void SaveProgramOptions(wxString const& path) const;
    void AddProgramOptionsGroup(wxString const& name, VecParameter const& group);
    // Takes the filters' configurations over into the options.
    void RefreshConfigurations();
    // The saved form, which no language changes; an entry that fits no configuration is dropped.
    VecString ConvertToUntranslatedConfigurations(VecString const& list) const;

protected:
    // Starts a filter and takes it. A failure is shown to the user, and the engine goes on.
    void AddFilterType(OrvFilter* filter, int type);
    // Replaces the keywords by the lines of a text file.
    void LoadKeywords(wxString const& path);
    // Works out the slot's output path and puts a copy of the file there.
    void UpdateBasePath(OrvFileId id);
    // Whether a load lists the files of the folder, as it does at first. Without, a loaded slot has an empty list and
    // the index -1: for a program that goes through folders by itself, since a list for each of a folder's files is
    // the square of their number.
    void ListFolders(bool list) { m_listFolders = list; }
    void LoadInternalQtDatabase();
    // Cuts the first line from the text and fills the record; gives the class, 0 for a line that is none.
    int ParseQtDatabaseString(wxString& text, JpegSignature& out);
    VecString CreateEditorVecString(JpegSignature const& signature) const;
    VecString GetConfigurationsFromFilters(bool translated) const;

    // Filled by the derived context: bare extensions ("jpg"), and all of them as one text for a file dialog.
    wxString stringImageFormatsRead;
    VecString imageFormatsRead;
    wxString stringImageFormatsWrite;
    VecString imageFormatsWrite;

private:
    // All that a slot holds.
    struct FileSlot;

    void Begin();
    void ReadDetails(wxString const& path, OrvFileId id);
    void TakeSubImages(wxString const& path, OrvFileId id);
    wxString MakeFileInfo(OrvFileId id) const;
    void SetBasePath(OrvFileId id, wxString hash);
    void CopyToCache(wxString const& source, wxString const& copy) const;
    VecParameter MakeGeneralOptions(wxString const& hiDpi) const;
    void AddWebServiceOptions();
    void AddLimitOptions();
    void ApplyConfigurations();
    void ApplyVariables();
    void ApplyLimits();

    std::map<wxString, wxString> m_batchFileMap;
    VecString m_browserFiles;
    std::vector<OrvFilter*> m_filters;
    std::map<int, OrvFilter*> m_filterMap;
    std::atomic<OrvFilter*> m_activeFilter{nullptr};
    std::vector<JpegSignature> m_userSignatures;
    VecVecString m_internalEditors[2];
    VecVecString m_userEditors[2];
    wxString m_userQtDatabasePath;
    wxString m_userQtDatabaseFilename;
    wxString m_userSmsDatabasePath;
    wxString m_userSmsDatabaseFilename;
    VecString m_softwareKeywords;
    std::unique_ptr<FileSlot> m_slots[2];
    OrvWorkerThread m_workerThread;
    VecVecParameter m_programOptions;
    std::map<wxString, std::int64_t> m_appliedLimits;
    wxString m_programOptionsPath;
    bool m_prnuReferencePatternPathChanged = false;
    bool m_listFolders = true;
    bool m_cacheEnabled = true;
    int m_cacheLocation = 0;
    wxString m_customCacheFolder;
    wxString m_cacheFormat;
    bool m_showBestMatchingParameters = false;
    int m_jpgQuality = 90;
    double m_prnuThreshold = 45.0;
    VecString m_currentConfigurations;
    std::unique_ptr<OrvProject> m_project;
    wxString m_prnuReferencePatternPath;
    std::atomic<OrvCommandEvent*> m_pendingEvent{nullptr};
    std::unique_ptr<TranslationHelper> m_translationHelper;
    CvSize m_defaultImageSize;
    AppVersion m_appVersion;
    int m_outputImageMaxWidth = 0;
    int m_outputImageMinWidth = 0;
    CvSize m_thumbnailSize;
    std::vector<Image> m_thumbnails;
};

// The context made last; null before the first.
ORV_API OrvContext* GetContext();
// GetContext()->GetFilter(type).
ORV_API OrvFilter* GetFilter(int type);

// The text form of a set of parameters, joined by "-": report texts, or JSON texts for `report` false. Paths are made
// safe by CleanDirName.
ORV_API wxString GetParametersString(VecParameter const& params, bool report);
// The name of a file or folder without folders above it and without extension; every "-" and blank becomes "_".
ORV_API wxString CleanDirName(wxString const& path);
