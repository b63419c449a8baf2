// SPDX-License-Identifier: Apache-2.0
// A filter that saves where a batch tells it to, and an engine that runs batches.
#pragma once
#include <functional>
#include <map>
#include <set>
#include <stdexcept>

#include "orvcore/batchprocessing.h"
#include "tests/orvcore/recordingfilter.h"
#include "tolbase/file.h"

namespace support {

// Writes where it is told to, and warns of the files that are named in `warns`.
class SavingFilter : public RecordingFilter {
public:
    explicit SavingFilter(const wxString& name, const VecParameter& input = VecParameter())
        : RecordingFilter(name, input) {
        onApply = [this](OrvFileId id) {
            const wxString file = GetContext()->GetFilename(id);
            if (id != Evidence) return;
            if (throws.count(GetFilenameNoPath(file)) > 0) throw std::runtime_error("broken < inside");
            SetStatus(id, warns.count(GetFilenameNoPath(file)) > 0 ? OrvFilterConfiguration::Warning
                                                                   : OrvFilterConfiguration::Ok);
        };
    }
    void SaveOutputBatch(const wxString& path) override {
        if (onSave) onSave();
        saved.push_back(path);
        WriteFile(path, GetName() + " of " + GetContext()->GetFilename(Evidence));
    }
    wxString GetReportData(const wxString& path, const wxString& folder) const override {
        return "<p>data " + GetFilenameNoPath(path) + " in " + folder + "</p>\n";
    }
    std::set<wxString> warns;
    std::set<wxString> throws;
    VecString saved;
    std::function<void()> onSave;
};

// Runs batches into the folder `out`.
class Batch : public FilterEngine {
protected:
    Batch() { out = dir / "out"; }
    SavingFilter* AddFilter(const wxString& name, const VecParameter& input = VecParameter()) {
        return Add(new SavingFilter(name, input));
    }
    static VecParameter Parameters(int files, int filters, int output, const wxString& report) {
        return {Number("files", files), Number("filters", filters), Number("output", output),
                CreateParameterString("report", "", report)};
    }
    VecParameter Listed(const VecString& files, int output, const wxString& report) {
        VecParameter parameters = Parameters(0, 0, output, report);
        parameters.push_back(CreateParameterVectorString("list", "", files));
        return parameters;
    }
    wxString Process(const VecParameter& parameters, bool plugin = false) {
        wxString result;
        OnWorker([&] { result = OrvBatchProcessing(parameters, plugin, fileMap, reports, &monitor); });
        return result;
    }
    wxString Html(const VecString& files) { return ReadFile(Process(Listed(files, 2, out + "/r.html"))); }

    wxString out;
    std::map<wxString, wxString> fileMap;
    TolJsonAlg::GriffeyeOrvBatchReportsMap reports;
    OrvBatchMonitor monitor;
};

// The first line of a report in text form.
inline const char* const BatchHeader = "Input Path\tFilter\tConfiguration\tStatus\tOutput Path\n";

}  // namespace support
