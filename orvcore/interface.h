// SPDX-License-Identifier: Apache-2.0
// The one object through which an application talks to the engine.
#pragma once
#include <vector>

#include "orvcore/command.h"
#include "orvcore/context.h"
#include "orvcore/genericaction.h"
#include "orvcore/project.h"
#include "tolbase/export.h"
#include "tolbase/image.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"
#include "tolimage/imagedetails.h"
#include "tolimage/jpeginfo.h"

class OrvFilter;
class OrvProgressHandler;

// Makes commands and posts them, and forwards reads to the context, which it owns.
//
// An application derives its context from OrvContext, makes it, and then makes the interface on it. Operations that
// post a command are called on the main thread (on any one thread in test mode) and answered by PostResponse, once for
// each command. Reads belong to the time in which the worker is idle or waits for that response; they return copies.
class ORV_API OrvInterface {
public:
    // Takes ownership of the context and becomes what GetInterface returns.
    explicit OrvInterface(OrvContext* context);
    // Copies the pointer alone: of all copies only one may be destroyed.
    OrvInterface(const OrvInterface&) = default;
    OrvInterface& operator=(const OrvInterface&) = default;
    // Deletes the context, and so ends the worker.
    ~OrvInterface();

    // ---- commands ----

    void AddBookmark();
    void CallAction(OrvFilter* filter, int actionId, const VecParameter& parameters);
    // Work that belongs to no filter; `text` comes back with the event.
    void CallGenericAction(OrvActionId actionId, const wxString& text, const VecParameter& parameters);
    void DeleteCache(OrvFileId id);
    void DumpEmbeddedJpgs(const wxString& path);
    void DumpImagesFromPdf(const wxString& path, VecParameter& parameters);
    void Exit();
    void GenerateReport();
    void LoadProject(const wxString& path);
    void NewProject();
    void ReprocessCurrent(OrvFileId id);
    void SaveProject(const wxString& path);
    void SetBookmarks(const std::vector<OrvBookmark>& bookmarks);
    // Loads a file into a slot, unless it stands there already, and runs the active filter. An empty path empties the
    // slot. A number that is no slot loads nothing.
    void SetFile(const wxString& path, OrvFileId id);
    // Runs a filter on the files as they are. Without parameters, those of configuration `configurationId` are taken,
    // or the filter's present ones for -1. `clearQueue` discards what waits; posting a command does so in any case.
    void Configure(OrvFilter* filter, int configurationId, const VecParameter& parameters,
                   const VecParameter& postParameters, bool clearQueue);
    // Loads both slots, an empty path empties its slot, and runs a filter.
    void SetFileConfigure(const wxString& evidence, const wxString& reference, OrvFilter* filter,
                          const VecParameter& parameters, const VecParameter& postParameters, bool clearQueue);

    // ---- done at once on the caller's thread ----

    void AddFilterConfiguration(OrvFilter* filter, const VecParameter& parameters, int position);
    void DeleteFilterConfiguration(OrvFilter* filter, int index);
    void DeleteAllFilterConfigurations(OrvFilter* filter);
    void EnableConfiguration(OrvFilter* filter, int index, bool enable);
    void ResetDefaultFilterConfigurations(OrvFilter* filter);
    void AbortProcessing();
    // The handler is not owned; it has to be set before the first command and to outlive the last.
    void SetProgressHandler(OrvProgressHandler* handler);
    void SetProgramOptions(const VecVecParameter& options);
    void LoadProgramOptions(const wxString& path);
    void SaveProgramOptions(const wxString& path);
    // Writes the active filter's result. There has to be an active filter.
    void SaveFilterResult(const wxString& path);
    // Hands the picture that SaveFilterResult writes to the active filter. There has to be one.
    void SetImageToSave(const Image& image);
    // Tells the worker that the application has finished with the result of a command.
    void PostResponse();
    // In test mode: waits for the end of the command and gives its event, which the caller owns; null if it pushed
    // none.
    OrvCommandEvent* PostTestResponse();
    void SetTest();

    // ---- reads ----

    OrvFilter* GetActiveFilter() const;
    wxString GetConfigDir() const;
    wxString GetExportFilename() const;
    int GetFileId(OrvFileId id) const;
    wxString GetFileInfo(OrvFileId id) const;
    VecString GetFileList(OrvFileId id) const;
    // The name that the user knows the file by, where OrvContext::GetFilename gives the path that was loaded.
    wxString GetFilename(OrvFileId id) const;
    wxString GetFilterFileSelectorString() const;
    std::vector<OrvFilter*> GetFilters() const;
    ImageDetailsExifTool GetImageDetails(OrvFileId id) const;
    Image GetImageDisplayed(OrvFileId id) const;
    JpegInfo GetJpegInfo(OrvFileId id) const;
    // Folder of the slot's output and cache files; empty for an empty slot.
    wxString GetOutputDir(OrvFileId id) const;
    VecVecParameter GetProgramOptions() const;
    wxString GetProgramOptionsPath() const;
    OrvProject GetProject() const;
    wxString GetStringImageFormatsRead() const;
    wxString GetStringImageFormatsWrite() const;
    VecString GetStringKeywords() const;
    bool HasFile(OrvFileId id) const;
    bool IsJpeg(OrvFileId id) const;

private:
    OrvContext* m_context;
};

// The interface of the process; null before its construction and behind its destruction.
ORV_API OrvInterface* GetInterface();
