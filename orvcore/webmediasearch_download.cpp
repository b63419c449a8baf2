// SPDX-License-Identifier: Apache-2.0
// The download of chosen photographs.
#include <mutex>

#include "orvcore/translate.h"
#include "orvcore/webmediasearch.h"
#include "tolbase/parser.h"
#include "tolbase/progress.h"
#include "tolimage/crawler.h"

namespace {

constexpr int MostFailures = 3;

std::mutex& ResultMutex() {
    static std::mutex mutex;
    return mutex;
}

std::vector<OrvDownloadResult>& Results() {
    static std::vector<OrvDownloadResult> results;
    return results;
}

OrvDownloadResult CopyOf(OrvDownloadResult const& from) {
    return {from.id.Clone(), from.link.Clone(), from.file.Clone(), from.error.Clone(), from.exists};
}

void ForgetResults() {
    const std::lock_guard<std::mutex> lock(ResultMutex());
    Results().clear();
}

void AddResult(OrvDownloadResult const& result) {
    const std::lock_guard<std::mutex> lock(ResultMutex());
    Results().push_back(CopyOf(result));
}

// The numbers go in after the translation: a catalogue's text is no format to be trusted.
wxString ProgressText(std::size_t done, std::size_t count) {
    wxString text = OrvTranslate("Downloading Image %d of %d");
    text.Replace("%d", ToString<std::uint64_t>(done), false);
    text.Replace("%d", ToString<std::uint64_t>(count), false);
    return text;
}

OrvDownloadResult Download(wxString const& id, wxString const& link, wxString const& folder, bool overwrite) {
    DownloadTimeout const timeout(1, 2400);
    DownloadPhoto download(id, link, PhotoSizeOriginal, folder, &timeout);
    download.SetOverwrite(overwrite);
    download.RunAndWait();
    return {id, link, download.GetFile(), download.GetErrorMsg(), download.IsRefusedByExistingFile()};
}

}  // namespace

void DownloadImageFromWeb(VecString& list, wxString& folder, wxString& error) {
    DownloadImageFromWeb(list, folder, error, false);
}

void DownloadImageFromWeb(VecString& list, wxString& folder, wxString& error, bool overwrite) {
    std::size_t const count = list.size() / 2;
    std::size_t done = 1;
    int failures = 0;
    ForgetResults();
    tcvInitProgress2(static_cast<int>(count));
    for (std::size_t i = 0; i + 1 < list.size(); i += 2) {
        tcvSetProgressString(ProgressText(done, count));
        OrvDownloadResult const result = Download(list[i], list[i + 1], folder, overwrite);
        AddResult(result);
        error = result.error;
        if (error.empty()) {
            ++done;
            failures = 0;
        } else if (failures++ < MostFailures) {
            tcvClearAborted();
        }
        if (tcvSetProgress2(-1) == 0 || failures > MostFailures) break;
    }
    tcvAbortAllProgress();
}

std::vector<OrvDownloadResult> GetDownloadResults() {
    const std::lock_guard<std::mutex> lock(ResultMutex());
    std::vector<OrvDownloadResult> copies;
    for (OrvDownloadResult const& result : Results()) copies.push_back(CopyOf(result));
    return copies;
}
