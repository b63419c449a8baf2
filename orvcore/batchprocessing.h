// SPDX-License-Identifier: Apache-2.0
// Filters in their configurations over many files, with the results saved and a report written as HTML or as
// tab-separated text.
//
// Threads: worker thread only; the application follows it, and ends it, through the second level of the progress
// functions. The run takes over both slots and the filters, and puts the slots and the active filter back at its end,
// after an abort too. Memory does not grow with the number of files: the report is written as it comes, to a file of
// its own beside the report's place, which takes that place in one step when it is complete.
#pragma once
#include <wx/string.h>

#include <functional>
#include <map>
#include <vector>

#include "tolbase/export.h"
#include "tolbase/jsonalg.h"
#include "tolbase/parameter.h"
#include "tolbase/types.h"

// What came of one configuration on one file.
struct OrvBatchResult {
    wxString file;
    wxString filter;         // in English
    wxString configuration;  // the parameters' text
    int status = 0;          // as OrvFilterConfiguration::FilterStatus; 0 also for what failed
    wxString outputPath;     // empty where nothing was to be saved, or there is no result
    wxString error;          // why there is no result; empty where there is one
};

// What a caller wants to know beside the report. Functions may be empty; they are called on the worker thread.
struct OrvBatchMonitor {
    // As soon as a file is loaded, or could not be: `error` is then the reason.
    std::function<void(wxString const& file, wxString const& error)> onFile;
    std::function<void(OrvBatchResult const& result)> onResult;
    // Once the report is whole and before it stands in its place: `readable` is a path that gives its bytes until then.
    std::function<void(wxString const& readable)> onReport;

    // Set by the run.
    size_t files = 0;           // in the list
    size_t filesProcessed = 0;  // begun before an abort
    bool aborted = false;
    wxString failure;  // why output folder or report could not be written; empty if nothing failed
};

// Whether a report at this path is HTML: the ending of its name, or the whole name without a point, begins with "htm"
// in any case.
ORV_API bool OrvIsHtmlReport(wxString const& path);

// Runs a batch. The parameters, by position:
//   0  int: 0 the Evidence, 1 its file list, 2 the readable images of its folder and the folders beneath, 3 those of
//   the
//      parent folder and the folders beneath
//   1  int: 0 every filter in its enabled configurations, 1 the active filter in its enabled configurations, 2 the
//      active filter with its present parameters
//   2  int: 0 nothing is saved, 1 output files, 2 output files and a report
//   3  text: the report's path, which tells its form; the output files go to its folder
//   4  text or list, may be missing: a file, a folder, files joined by "|", or a list of files; all filters are then
//   run
// In plug-in mode `reports` gets an entry for each file, with its identifier from `fileMap` (empty where that lacks
// it).
//
// A result never replaces one of the examined files, nor the result of another file of the same name: its name then
// gets a number ("a.jpg-Noise (2).png"). Gives the report's path in output mode 2, else an empty text; empty too, after
// a message to the user, if the report could not be written. Throws TolException (61) for a parameter of a wrong type,
// before anything is touched.
ORV_API wxString OrvBatchProcessing(VecParameter const& parameters, bool griffeyeMode,
                                    std::map<wxString, wxString> const& fileMap,
                                    TolJsonAlg::GriffeyeOrvBatchReportsMap& reports,
                                    OrvBatchMonitor* monitor = nullptr);
