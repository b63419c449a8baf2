// SPDX-License-Identifier: Apache-2.0
#include "orvcore/batchprocessing.h"

#include <wx/filename.h>

#include <memory>
#include <utility>

#include "orvcore/batchreport.h"
#include "orvcore/batchslots.h"
#include "orvcore/command.h"
#include "orvcore/context.h"
#include "orvcore/filter.h"
#include "orvcore/filtercache.h"
#include "orvcore/filtertext.h"
#include "orvcore/optionnumbers.h"
#include "orvcore/reportfile.h"
#include "orvcore/translate.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/progress.h"
#include "tolbase/text.h"
#include "tolcore/filelist.h"

namespace {

using FilterStatus = OrvFilterConfiguration::FilterStatus;

enum OutputMode : int { SaveNothing = 0, SaveFiles = 1, SaveFilesAndReport = 2 };

constexpr size_t SelectionParameter = 4;
constexpr int SeverityFileFormat = 1;
constexpr int SeverityOther = 2;

int NumberAt(VecParameter const& parameters, size_t index) {
    return index < parameters.size() ? parameters[index].GetValue<int>() : 0;
}

VecString FilesBySelection(Parameter const& selection) {
    const VecString formats = GetContext()->GetImageFormatsRead();
    if (selection.Holds<VecString>()) return selection.GetValue<VecString>();
    const wxString text = selection.GetValue<wxString>();
    if (wxFileName::FileExists(text)) return {text};
    if (wxFileName::DirExists(text)) return GetAllFiles(text, formats, false);
    if (IsAConcatenationOfAllExistingFiles(text, "|", 2)) return StringToVecString(text, "|", wxTOKEN_DEFAULT, true);
    return {};
}

VecString FilesByMode(int mode) {
    const OrvContext* context = GetContext();
    const wxString evidence = context->GetFilename(Evidence);
    const wxString folder = wxPathOnly(evidence);
    switch (mode) {
        case 0:
            return evidence.empty() ? VecString() : VecString{evidence};
        case 1:
            return context->GetFileList(Evidence);
        case 2:
            return GetAllFiles(folder, context->GetImageFormatsRead(), true);
        case 3:
            return GetAllFiles(wxPathOnly(folder), context->GetImageFormatsRead(), true);
        default:
            wxASSERT(false);
            return {};
    }
}

struct FilterWork {
    OrvFilter* filter;
    std::vector<OrvFilterConfiguration> configurations;
};

std::vector<FilterWork> WorkByMode(int mode) {
    std::vector<FilterWork> work;
    OrvFilter* active = GetContext()->GetActiveFilter();
    if (mode == 0) {
        for (OrvFilter* filter : GetContext()->GetFilters())
            work.push_back({filter, filter->GetEnabledConfigurations()});
    } else if (mode == 1 && active != nullptr) {
        work.push_back({active, active->GetEnabledConfigurations()});
    } else if (mode == 2 && active != nullptr) {
        work.push_back({active, {OrvFilterConfiguration(active->GetParametersInput())}});
    }
    return work;
}

void TakeReportWidths() {
    OrvContext* context = GetContext();
    const VecVecParameter options = context->GetProgramOptions();
    if (options.empty() || options[0].size() <= OrvOptionReportMinWidth) return;
    context->SetOutputImageMaxWidth(options[0][OrvOptionReportMaxWidth].GetValue<int>());
    context->SetOutputImageMinWidth(options[0][OrvOptionReportMinWidth].GetValue<int>());
}

// Tables and texts give the path an ending of their own.
wxString PathOfItsOwn(OrvFilter const& filter, wxString const& path) {
    const size_t point = path.rfind('.');
    if (point == wxString::npos) return path;
    if (dynamic_cast<OrvFilterText const*>(&filter) != nullptr) return path.substr(0, point) + ".html";
    if (dynamic_cast<OrvFilterTextCustom const*>(&filter) != nullptr) return path.substr(0, point) + ".txt";
    return path;
}

wxString WrittenPath(OrvFilter const& filter, wxString const& path) {
    const wxString own = PathOfItsOwn(filter, path);
    return wxFileName::FileExists(own) ? own : path;
}

// The name of a result was not chosen by the person: a link that someone has put there must not lead it elsewhere.
void RemoveLinks(OrvFilter const& filter, wxString const& path) {
    for (wxString const& each : {path, PathOfItsOwn(filter, path)}) {
        if (filtercache::IsLink(each)) filtercache::RemoveFile(each);
    }
}

// The event of a run says something only to a program that shows this run.
void DropEvent() {
    delete GetContext()->PopEvent();
}

bool IsAborted() {
    return tcvHasAborted() || tcvHasAborted2();
}

wxString TextOf(std::exception const& exception) {
    const char* what = exception.what();
    const wxString text = what == nullptr ? wxString() : wxString::FromUTF8(what);
    return text.empty() ? wxString("Unknown exception") : text;
}

// Runs `work` and gives the text of what it throws; empty if nothing.
template <class Work>
wxString Guarded(Work work) {
    try {
        work();
        return {};
    } catch (TolException const& exception) {
        wxString const& message = exception.GetMessage();
        return message.empty() ? wxString("Unknown exception") : message;
    } catch (std::exception const& exception) {
        return TextOf(exception);
    } catch (...) {
        return "Unknown exception";
    }
}

// Puts the active filter back to where it stood.
class ActiveFilterKeeper {
public:
    ActiveFilterKeeper() : m_filter(GetContext()->GetActiveFilter()) {
        if (m_filter == nullptr) return;
        m_parameters = m_filter->GetParametersInput();
        m_configuration = m_filter->GetActiveConfiguration();
    }
    void Restore() const {
        if (m_filter != nullptr) {
            m_filter->SetConfiguration(m_configuration);
            const VecParameter post = m_filter->GetParametersPostProcessing();
            Guarded([&] { m_filter->Configure(m_parameters, post); });
        }
        GetContext()->UpdateFiltersStatus();
    }

private:
    OrvFilter* m_filter;
    VecParameter m_parameters;
    int m_configuration = -1;
};

class BatchRun {
public:
    BatchRun(VecParameter const& parameters, bool griffeyeMode, std::map<wxString, wxString> const& fileMap,
             TolJsonAlg::GriffeyeOrvBatchReportsMap& reports, OrvBatchMonitor& monitor);
    wxString Run();

private:
    // One configuration on the file in the slot.
    struct Outcome {
        FilterStatus status = FilterStatus::NotCalculated;
        wxString path;     // as asked for; the report's fragment goes by it
        wxString written;  // the file that is there
        wxString error;
        bool stale = false;  // the filter shows something else than this run
    };

    void StartOutput();
    void ProcessFile(size_t index);
    void RunFilter(FilterWork const& work, wxString const& file);
    void RunConfiguration(OrvFilter& filter, OrvFilterConfiguration const& configuration, wxString const& file);
    Outcome Configure(OrvFilter& filter, OrvFilterConfiguration const& configuration) const;
    void NoteForPlugin(OrvFilter const& filter, VecParameter const& configuration, Outcome const& outcome,
                       wxString const& file);
    void FlagForPlugin(wxString const& file, wxString const& reason);
    void Save(OrvFilter& filter, Outcome& outcome);
    void Report(OrvFilter const& filter, VecParameter const& configuration, Outcome const& outcome,
                wxString const& file);
    void Append(wxString const& html) {
        if (m_report != nullptr && m_html) m_report->Append(html);
    }
    void Fail(wxString const& message);
    wxString Finish();

    bool m_griffeyeMode;
    std::map<wxString, wxString> const& m_fileMap;
    TolJsonAlg::GriffeyeOrvBatchReportsMap& m_reports;
    OrvBatchMonitor& m_monitor;
    int m_outputMode;
    wxString m_reportPath;
    wxString m_outputFolder;
    bool m_html;
    VecString m_files;
    std::vector<FilterWork> m_work;
    std::unique_ptr<OrvBatchNames> m_names;
    std::unique_ptr<OrvReportFile> m_report;
    wxString m_loadError;  // of the present file
    int m_anchor = 0;
    bool m_interrupted = false;
};

BatchRun::BatchRun(VecParameter const& parameters, bool griffeyeMode, std::map<wxString, wxString> const& fileMap,
                   TolJsonAlg::GriffeyeOrvBatchReportsMap& reports, OrvBatchMonitor& monitor)
    : m_griffeyeMode(griffeyeMode),
      m_fileMap(fileMap),
      m_reports(reports),
      m_monitor(monitor),
      m_outputMode(NumberAt(parameters, 2)),
      m_reportPath(parameters.size() > 3 ? parameters[3].GetValue<wxString>() : wxString()),
      m_outputFolder(wxPathOnly(m_reportPath)),
      m_html(OrvIsHtmlReport(m_reportPath)) {
    const bool selected = parameters.size() > SelectionParameter;
    const int fileMode = NumberAt(parameters, 0);
    const int filterMode = NumberAt(parameters, 1);
    m_files = selected ? FilesBySelection(parameters[SelectionParameter]) : FilesByMode(fileMode);
    m_work = WorkByMode(selected ? 0 : filterMode);
    // A bare name stands in the current folder, one right beneath the root in the root.
    if (m_outputFolder.empty()) m_outputFolder = m_reportPath.StartsWith("/") ? "" : ".";
}

void BatchRun::Fail(wxString const& message) {
    if (!m_monitor.failure.empty()) return;
    m_monitor.failure = message;
    // What can't be saved isn't worked out either; the plug-in wants the findings all the same.
    if (!m_griffeyeMode) m_files.clear();
    TolMessageBox(message, OrvTranslate("Batch Processing"));
}

void BatchRun::StartOutput() {
    if (m_outputMode == SaveNothing) return;
    const wxString folder = m_outputFolder.empty() ? wxString("/") : m_outputFolder;
    m_names = std::make_unique<OrvBatchNames>(m_files, m_outputFolder, m_reportPath);
    if (!CreateDirIfNotExists(folder)) {
        Fail(wxString::Format(OrvTranslate("The folder can't be made: %s"), folder));
        m_outputMode = SaveNothing;
        return;
    }
    if (m_outputMode != SaveFilesAndReport) return;
    if (m_names->IsExamined(m_reportPath)) {
        Fail(wxString::Format(OrvTranslate("The report would replace an examined file: %s"), m_reportPath));
        return;
    }
    m_report = std::make_unique<OrvReportFile>(m_reportPath);
    if (!m_report->IsOk()) {
        m_report.reset();
        Fail(wxString::Format(OrvTranslate("The report can't be written: %s"), m_reportPath));
        return;
    }
    m_report->Append(m_html ? OrvBatchHtmlStart() : wxString(OrvBatchTsvHeader));
}

wxString BatchRun::Run() {
    size_t configurations = 0;
    for (FilterWork const& work : m_work) configurations += work.configurations.size();
    tcvInitProgress2(OrvProgressTotal(configurations * m_files.size()));
    tcvSetProgressString2(wxString::Format(OrvTranslate("Batch Processing %d files with %d configurations"),
                                           OrvProgressTotal(m_files.size()), OrvProgressTotal(configurations)));
    m_monitor.files = m_files.size();
    OrvSlotKeeper slots;
    const ActiveFilterKeeper active;
    TakeReportWidths();
    StartOutput();
    for (size_t i = 0; i < m_files.size(); ++i) ProcessFile(i);
    m_monitor.aborted = m_interrupted;
    const wxString result = Finish();
    slots.Restore();
    DropEvent();
    active.Restore();
    tcvDeinitProgress2();
    return result;
}

void BatchRun::ProcessFile(size_t index) {
    wxString const& file = m_files[index];
    OrvEmptySlot(Reference);
    OrvEmptySlot(Evidence);
    // Behind an abort no further file is worth its loading.
    m_interrupted = m_interrupted || IsAborted();
    const bool begun = !m_interrupted;
    if (begun) {
        OrvPrefetchNext(m_files, index);
        m_loadError = OrvLoadAlone(file, Evidence);
        ++m_monitor.filesProcessed;
        if (m_monitor.onFile) m_monitor.onFile(file, m_loadError);
    }
    if (m_griffeyeMode) {
        const auto id = m_fileMap.find(file);
        m_reports.try_emplace(
            file, TolJsonAlg::GriffeyeOrvBatchReport{wxString(), 0, id == m_fileMap.end() ? wxString() : id->second});
    }
    if (m_names != nullptr) m_names->StartFile(index);
    Append(OrvBatchHtmlHeading(file, m_files.size() > 1 ? index + 1 : 0));
    if (begun && !m_loadError.empty()) {
        Append(OrvBatchHtmlProblem(m_loadError));
        FlagForPlugin(file, m_loadError);
    }
    if (begun) {
        for (FilterWork const& work : m_work) RunFilter(work, file);
        // The last run of all may have been the one that was interrupted.
        m_interrupted = m_interrupted || tcvHasAborted2();
    }
    if (m_interrupted) {
        const wxString note =
            begun ? "Processing was interrupted: results may be missing." : "Not examined: processing was interrupted.";
        Append(OrvBatchHtmlProblem(OrvTranslate(note)));
        FlagForPlugin(file, OrvTranslate(note));
    }
    Append(HtmlWriter::DoHr());
    if (m_griffeyeMode) m_reports[file].text += TolJsonAlg::GriffeyeOrvReportMarker + "\"" + m_reportPath + "\"\n";
}

void BatchRun::RunFilter(FilterWork const& work, wxString const& file) {
    for (OrvFilterConfiguration const& configuration : work.configurations) {
        if (tcvSetProgress2(-1) == 0 || IsAborted()) {
            tcvAbortProgress();
            m_interrupted = true;
            return;
        }
        RunConfiguration(*work.filter, configuration, file);
    }
}

void BatchRun::RunConfiguration(OrvFilter& filter, OrvFilterConfiguration const& configuration, wxString const& file) {
    Outcome outcome = Configure(filter, configuration);
    if (m_griffeyeMode) NoteForPlugin(filter, configuration, outcome, file);
    if (m_outputMode != SaveNothing && m_loadError.empty()) Save(filter, outcome);
    if (m_outputMode == SaveFilesAndReport) Report(filter, configuration, outcome, file);
    if (!m_monitor.onResult) return;
    const bool available = outcome.status == FilterStatus::Ok || outcome.status == FilterStatus::Warning;
    m_monitor.onResult({file, filter.GetName(), GetParametersString(configuration, true), outcome.status,
                        available ? outcome.written : wxString(), outcome.error});
}

BatchRun::Outcome BatchRun::Configure(OrvFilter& filter, OrvFilterConfiguration const& configuration) const {
    Outcome outcome;
    const VecParameter post = filter.GetParametersPostProcessing();
    outcome.error = Guarded([&] { filter.Configure(configuration, post); });
    outcome.stale = !outcome.error.empty();
    DropEvent();
    if (!m_loadError.empty()) {
        // An emptied slot keeps the status of the file before.
        outcome.error = m_loadError;
        outcome.stale = true;
    } else if (!outcome.stale) {
        outcome.status = filter.GetStatus(Evidence);
        if (outcome.status == FilterStatus::NotCalculated) outcome.error = filter.GetErrorMessage();
    }
    return outcome;
}

void BatchRun::NoteForPlugin(OrvFilter const& filter, VecParameter const& configuration, Outcome const& outcome,
                             wxString const& file) {
    TolJsonAlg::GriffeyeOrvBatchReport& report = m_reports[file];
    const wxString note =
        filter.GetParametersInput().empty() ? wxString() : " (" + GetParametersString(configuration, true) + ")";
    if (outcome.status == FilterStatus::Warning) {
        report.text += filter.GetName() + note + " flagged a warning\n";
        const bool fileFormat = filter.GetName() == "File Format";
        report.severity = fileFormat && report.severity == 0 ? SeverityFileFormat
                          : fileFormat                       ? report.severity
                                                             : SeverityOther;
    } else if (!outcome.error.empty() && m_loadError.empty()) {
        report.text += filter.GetName() + note + " failed: " + outcome.error + "\n";
    }
}

// What was not examined may not be taken for clean.
void BatchRun::FlagForPlugin(wxString const& file, wxString const& reason) {
    if (!m_griffeyeMode) return;
    TolJsonAlg::GriffeyeOrvBatchReport& report = m_reports[file];
    report.text += reason + "\n";
    report.severity = SeverityOther;
}

void BatchRun::Save(OrvFilter& filter, Outcome& outcome) {
    if (outcome.stale) return;
    const wxString error = Guarded([&] {
        outcome.path = m_names->Place(filter.GetExportFilename(true));
        CreateDirIfNotExists(wxPathOnly(outcome.path));
        RemoveLinks(filter, outcome.path);
        filter.SaveOutputBatch(outcome.path);
        outcome.written = WrittenPath(filter, outcome.path);
    });
    if (error.empty()) return;
    outcome.path.clear();
    outcome.written.clear();
    outcome.error = error;
}

void BatchRun::Report(OrvFilter const& filter, VecParameter const& configuration, Outcome const& outcome,
                      wxString const& file) {
    if (m_report == nullptr) return;
    const wxString parameters = GetParametersString(configuration, true);
    if (!m_html) {
        const bool available = !outcome.stale && filter.IsStatusAvailable(Evidence);
        m_report->Append(OrvBatchTsvLine({file, OrvTranslate(filter.GetName()), parameters,
                                          OrvTranslate(OrvFilterConfiguration::GetStatusString(outcome.status)),
                                          available ? outcome.written : wxString()}));
        return;
    }
    // The line beneath the file's heading has said it all.
    if (!m_loadError.empty()) return;
    const wxString anchor = wxString::Format("anchor%d", m_anchor++);
    if (outcome.stale || outcome.path.empty()) {
        Append(OrvBatchHtmlFailure(filter.GetName(), parameters, anchor, outcome.error));
        return;
    }
    const wxString error = Guarded([&] { Append(filter.GetReport(outcome.path, m_outputFolder, anchor)); });
    if (!error.empty()) Append(OrvBatchHtmlFailure(filter.GetName(), parameters, anchor, error));
    if (!outcome.error.empty()) Append(OrvBatchHtmlProblem(outcome.error));
}

wxString BatchRun::Finish() {
    if (m_report != nullptr) {
        Append(HtmlWriter::DoFooter());
        const wxString readable = m_monitor.onReport ? m_report->FlushedPath() : wxString();
        if (!readable.empty()) m_monitor.onReport(readable);
        if (!m_report->Commit()) Fail(wxString::Format(OrvTranslate("The report can't be written: %s"), m_reportPath));
        m_report.reset();
    }
    if (m_griffeyeMode && !m_monitor.failure.empty()) {
        for (auto& entry : m_reports) entry.second.text += m_monitor.failure + "\n";
    }
    return m_outputMode == SaveFilesAndReport && m_monitor.failure.empty() ? m_reportPath : wxString();
}

}  // namespace

bool OrvIsHtmlReport(wxString const& path) {
    return GetFilenameNoPath(path).Lower().AfterLast('.').StartsWith("htm");
}

wxString OrvBatchProcessing(VecParameter const& parameters, bool griffeyeMode,
                            std::map<wxString, wxString> const& fileMap,
                            TolJsonAlg::GriffeyeOrvBatchReportsMap& reports, OrvBatchMonitor* monitor) {
    OrvBatchMonitor own;
    return BatchRun(parameters, griffeyeMode, fileMap, reports, monitor != nullptr ? *monitor : own).Run();
}
