// SPDX-License-Identifier: Apache-2.0
// The command for work that belongs to no filter: web searches, batches, tables over many files, the plug-in's answers.
//
// Threads and ownership: as every command (command.h).
#pragma once
#include <wx/string.h>

#include "orvcore/command.h"
#include "tolbase/export.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"

// The parameters that each action takes stand behind it, by position; those in brackets may be missing.
enum OrvActionId : int {
    OrvActionSearchCameraImages = 0,  // see SearchImageFromWeb
    OrvActionSearchSightings = 1,     // see SearchImageOnCameraForensics
    OrvActionSearchGeoTagImages = 2,  // see SearchGeoTagImage
    OrvActionSearchImageOnWeb = 3,    // bool TinEye, bool Google, text
    OrvActionGetCoordinates = 4,      // none
    // Files joined by "|" or a folder, [path of the table], [folder for clean files], [folder for flagged files],
    // [bool: save the status alone]. See ImageInfoTableBatch
    OrvActionBatchTable = 5,
    OrvActionMultiComparison = 6,   // a folder. See ImageInfoTableMultiComparison
    OrvActionDownloadImages = 7,    // list of ids and links, folder. See DownloadImageFromWeb
    OrvActionBatchProcessing = 8,   // see OrvBatchProcessing
    OrvActionGriffeyeAnalysis = 9,  // map whose keys are the files; identifiers come from the context's batch file map
    OrvActionGriffeyeBatch = 10,    // as action 8; identifiers come from the context's batch file map
    OrvActionOpenBrowserFiles = 11  // none; the files are the context's browser files
};

// Runs one action and posts its event: `text` untouched as the payload, the action's number, and in its parameters one
// table (actions 0 to 3, 5, 6), one text (4, 8) or nothing. A number that is no action posts nothing. What an action
// throws, a TolException of the sightings search aside, leaves Execute, and no event comes.
class ORV_API OrvCommandCallGenericAction : public OrvCommand {
public:
    OrvCommandCallGenericAction(int actionId, const wxString& text, const VecParameter& parameters);
    void Execute() override;

private:
    void SearchWithTable();
    void SearchSightings();
    void SearchImageOnWeb();
    void GetCoordinates();
    void MakeBatchTable();
    void MakeMultiComparison();
    void DownloadImages();
    void ProcessBatch();
    void AnalyseForPlugin();
    void ProcessBatchForPlugin();
    void OpenBrowserFiles();

    void PostTable(const wxString& message, const VecVecString& table);
    void PostText(const wxString& result);
    void PostNothing(const wxString& message);
    // Writes the answer to the standard output and posts.
    void PostAnswer(const wxString& answer);

    int m_actionId;
    wxString m_text;
    VecParameter m_parameters;
};
