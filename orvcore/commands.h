// SPDX-License-Identifier: Apache-2.0
// The commands that the interface hands to the worker thread.
//
// Each is made on the caller's thread, executed and deleted by the worker. None owns the filter that it names: filters
// live as long as the context. Unless told otherwise, a command ends with one event of its own number without a text,
// and what its work throws leaves Execute: the worker then sends no event.
#pragma once
#include <vector>

#include "orvcore/command.h"
#include "orvcore/context.h"
#include "orvcore/project.h"
#include "tolbase/export.h"
#include "tolbase/parameter.h"

class OrvFilter;

// Loads the files that differ from those in the slots and runs a filter, which becomes the active one. The events are
// the filter run's own. A file that can't be loaded doesn't stop the run.
class ORV_API OrvCommandSetFileConfigure : public OrvCommand {
public:
    // `setEvidence` and `setReference` tell whether the path beside them counts; an empty path that counts empties its
    // slot. A null filter means the one that is active now. Without parameters, those of the filter's configuration
    // `configurationId` are taken, or its present ones for -1.
    OrvCommandSetFileConfigure(const wxString& evidence, bool setEvidence, const wxString& reference, bool setReference,
                               OrvFilter* filter, const VecParameter& parameters,
                               const VecParameter& postProcessingParameters, int configurationId);

    void Execute() override;
    // What is about to run; empty while both slots have a file.
    wxString GetCommandLog() const override;
    // "C1C2" if the result for the Evidence was reloaded, else empty.
    wxString GetResultLog() const override;
    // True if a slot has a file.
    bool LogEnabled() const override;

private:
    void LoadFiles() const;

    bool m_setEvidence;
    bool m_setReference;
    int m_configurationId;
    wxString m_evidence;
    wxString m_reference;
    OrvFilter* m_filter;
    VecParameter m_parameters;
    VecParameter m_postProcessingParameters;
};

// Removes the folder of all cached results of a slot's file.
class ORV_API OrvCommandDeleteCache : public OrvCommand {
public:
    explicit OrvCommandDeleteCache(OrvFileId fileId);
    void Execute() override;

private:
    OrvFileId m_fileId;
};

// Makes the active filter calculate a slot anew. The filter run's own event follows that of the command.
class ORV_API OrvCommandReprocessCurrent : public OrvCommand {
public:
    explicit OrvCommandReprocessCurrent(OrvFileId fileId);
    void Execute() override;

private:
    OrvFileId m_fileId;
};

// Runs an action of a filter. The event is the action's own.
class ORV_API OrvCommandCallAction : public OrvCommand {
public:
    OrvCommandCallAction(OrvFilter* filter, int actionId, const VecParameter& parameters);
    void Execute() override;

private:
    OrvFilter* m_filter;
    int m_actionId;
    VecParameter m_parameters;
};

// Writes the images embedded in a JPEG file to files. The event's text is their folder, empty if there are none.
class ORV_API OrvCommandDumpEmbeddedJpgs : public OrvCommand {
public:
    explicit OrvCommandDumpEmbeddedJpgs(const wxString& path);
    void Execute() override;

private:
    wxString m_path;
};

// Writes the images of a PDF file to files. The event's text is their folder, empty if there are none.
class ORV_API OrvCommandDumpImagesFromPdf : public OrvCommand {
public:
    OrvCommandDumpImagesFromPdf(const wxString& path, VecParameter& parameters);
    void Execute() override;

private:
    wxString m_path;
    VecParameter m_parameters;
};

// Adds what is being looked at to the project: filter, parameters and files. Nothing without a filter or an Evidence.
class ORV_API OrvCommandAddBookmark : public OrvCommand {
public:
    OrvCommandAddBookmark();
    void Execute() override;
};

// Replaces the project's bookmarks.
class ORV_API OrvCommandSetBookmarks : public OrvCommand {
public:
    explicit OrvCommandSetBookmarks(const std::vector<OrvBookmark>& bookmarks);
    void Execute() override;

private:
    std::vector<OrvBookmark> m_bookmarks;
};

// Empties the project.
class ORV_API OrvCommandNewProject : public OrvCommand {
public:
    OrvCommandNewProject();
    void Execute() override;
};

// Reads the project from a file.
class ORV_API OrvCommandLoadProject : public OrvCommand {
public:
    explicit OrvCommandLoadProject(const wxString& path);
    void Execute() override;

private:
    wxString m_path;
};

// Writes the project to a file.
class ORV_API OrvCommandSaveProject : public OrvCommand {
public:
    explicit OrvCommandSaveProject(const wxString& path);
    void Execute() override;

private:
    wxString m_path;
};

// Writes the project's report. The event's text is its path, empty for a project without bookmarks.
class ORV_API OrvCommandGenerateReport : public OrvCommand {
public:
    OrvCommandGenerateReport();
    void Execute() override;
};
