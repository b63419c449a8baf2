// SPDX-License-Identifier: Apache-2.0
// The run of a filter, its cache and its status files.
#include <wx/filename.h>
#include <wx/translation.h>
#include <wx/window.h>

#include <algorithm>
#include <string>

#include "orvcore/command.h"
#include "orvcore/filter.h"
#include "orvcore/filtercache.h"
#include "orvcore/translate.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/progress.h"

struct OrvFilter::RunState {
    bool parametersChanged = false;
    bool patternChanged = false;
    bool cacheEnabled = false;
    bool failed = false;
};

namespace {

wxString TextOf(const std::exception& exception) {
    const char* what = exception.what();
    if (what == nullptr) return "Unknown exception";
    const wxString text = wxString::FromUTF8(what);
    return text.empty() ? wxString::From8BitData(what) : text;
}

void ShowProgress(const wxString& filterName, const VecParameter& input) {
    wxString parameters = GetParametersString(input, true);
    if (!input.empty()) parameters = "\n" + wxGetTranslation("with configuration ") + parameters;
    tcvSetProgressString(
        wxString::Format(wxGetTranslation("Processing %s%s"), wxGetTranslation(filterName), parameters));
}

}  // namespace

void OrvFilter::FindActiveConfiguration(const VecParameter& input) {
    if (m_activeConfiguration != -1) return;
    const auto found = std::find_if(m_configurations.begin(), m_configurations.end(),
                                    [&](const OrvFilterConfiguration& each) { return each.IsSameAs(input); });
    if (found != m_configurations.end()) m_activeConfiguration = static_cast<int>(found - m_configurations.begin());
}

void OrvFilter::DetectChanges(RunState& run) {
    const OrvContext* context = GetContext();
    run.patternChanged = context->IsPrnuReferencePatterPathChanged();
    for (const OrvFileId id : {Evidence, Reference}) {
        const wxString filename = context->GetFilename(id);
        const wxString basePath = context->GetOutputBasePath(id);
        m_fileChanged[id] = filename != m_lastFilename[id] || basePath != m_lastBasePath[id];
        m_lastFilename[id] = filename;
        m_lastBasePath[id] = basePath;
        // No status vouches for another file. An emptied slot keeps what it had.
        if (m_fileChanged[id] && !filename.empty()) m_status[id] = FilterStatus::NotCalculated;
    }
    m_filterChanged = m_filterId != sm_lastFilterId;
    sm_lastFilterId = m_filterId;
}

void OrvFilter::TakeParameters(const VecParameter& input, const VecParameter& postProcessing, RunState& run) {
    {
        const std::lock_guard<std::mutex> lock(InputMutex());
        const size_t inputs = std::min(input.size(), m_parametersInput.size());
        for (size_t i = 0; i < inputs; ++i) {
            if (!m_parametersInput[i].Set(input[i])) continue;
            m_parametersInput[i].SetChanged(true);
            run.parametersChanged = true;
        }
    }
    const size_t posts = std::min(postProcessing.size(), m_parametersPostProcessing.size());
    for (size_t i = 0; i < posts; ++i) m_parametersPostProcessing[i].Set(postProcessing[i]);
}

void OrvFilter::Configure(const VecParameter& input, const VecParameter& postProcessing) {
    RunState run;
    ShowProgress(m_name, input);
    FindActiveConfiguration(input);
    std::fill(std::begin(m_configuredFromCache), std::end(m_configuredFromCache), false);
    m_cacheMessage.clear();
    DetectChanges(run);
    TakeParameters(input, postProcessing, run);
    if (m_fileChanged[Evidence] || m_fileChanged[Reference] || m_filterChanged) {
        auto* started = new OrvCommandEvent(wxEVT_ORV_COMMAND, OrvCommandIdFilterStarted, VecParameter());
        started->SetEventObject(GetPanelWindow());
        OrvQueueEvent(started);
    }
    run.cacheEnabled = GetContext()->CacheEnabled();
    RunSlots(run);
    m_needsReprocessing = run.failed;
    FinishRun(run);
}

void OrvFilter::RunSlots(RunState& run) {
    try {
        PreApply();
        m_errorMessage.clear();
        try {
            RunSlot(Evidence, run);
            RunSlot(Reference, run);
        } catch (const TolException& exception) {
            m_errorMessage = exception.GetMessage();
            run.failed = true;
        } catch (const std::exception& exception) {
            m_errorMessage = TextOf(exception);
            run.failed = true;
        }
    } catch (...) {
        // The changes have been noted already, so a later run would take what stands now for its result.
        m_needsReprocessing = true;
        throw;
    }
}

void OrvFilter::RunSlot(OrvFileId id, RunState& run) {
    // What the Evidence wrote into the output parameters stays while the Reference runs.
    const auto clearOutput = [this, id] {
        if (id == Evidence) {
            m_parametersOutput.Reset();
        } else {
            m_parametersOutput.ClearRef();
        }
    };
    if (!GetInputImage(id).IsOk()) {
        clearOutput();
        Reset(id);
        return;
    }
    if (m_needsReprocessing || m_fileChanged[id] || run.parametersChanged || run.patternChanged) {
        clearOutput();
        if (!ObtainResult(id, run) || run.failed) return;
        if (m_configuredFromCache[id]) {
            if (ShowReloaded(id)) return;
            if (!Calculate(id, run) || run.failed) return;
        }
        Apply2NoCache(id);
    }
    if (!run.failed) ApplyPostProcessing(id);
}

// The last steps on a reloaded result. False if they can't be done: a file in the cache may be sound and yet be nothing
// that this filter gives.
bool OrvFilter::ShowReloaded(OrvFileId id) {
    try {
        Apply2NoCache(id);
        ApplyPostProcessing(id);
        return true;
    } catch (const std::exception&) {
        m_configuredFromCache[id] = false;
        m_status[id] = FilterStatus::NotCalculated;
        return false;
    }
}

// Reloads the result of a slot, declares the slot unsupported, or calculates. False after an abort.
bool OrvFilter::ObtainResult(OrvFileId id, RunState& run) {
    if (run.cacheEnabled && !m_calculateAnew[id] && LoadStatus(id) && IsStatusAvailable(id)) {
        m_configuredFromCache[id] = true;
        return true;
    }
    if (m_onlyForJpeg && !GetContext()->IsJpeg(id)) {
        m_parametersOutput.ClearRef();
        Reset(id);
        m_status[id] = FilterStatus::Unsupported;
        SaveStatus(id);
        return true;
    }
    return Calculate(id, run);
}

// False after an abort.
bool OrvFilter::Calculate(OrvFileId id, RunState& run) {
    Apply(id);
    if (tcvHasAborted()) {
        run.failed = true;
        m_errorMessage = "Processing interrupted by user.";
        return false;
    }
    if (!IsStatusAvailable(id)) m_status[id] = FilterStatus::Ok;
    if (run.cacheEnabled) SaveStatus(id);
    return true;
}

void OrvFilter::FinishRun(const RunState& run) {
    const auto push = [this](OrvCommandId commandId, const VecParameter& parameters) {
        auto* event = new OrvCommandEvent(wxEVT_ORV_COMMAND, commandId, parameters);
        event->SetEventObject(GetPanelWindow());
        GetContext()->PushEvent(event);
    };
    if (!run.failed) {
        PostApply();
        push(OrvCommandIdFilterDone, m_parametersOutput);
        return;
    }
    push(OrvCommandIdFilterFailed, VecParameter());
    tcvClearAborted();
    std::fill(std::begin(m_status), std::end(m_status), FilterStatus::NotCalculated);
    Reset();
}

void OrvFilter::PostApply() {
    {
        const std::lock_guard<std::mutex> lock(InputMutex());
        for (Parameter& parameter : m_parametersInput) parameter.SetChanged(false);
    }
    for (Parameter& parameter : m_parametersPostProcessing) parameter.SetChanged(false);
    UpdateOutputData();
}

void OrvFilter::ResetStatus(OrvFileId id) {
    filtercache::RemoveFile(GetStatusFilename(id, m_parametersInput));
    m_needsReprocessing = true;
    // The file may be one that can't be removed, or be there again.
    struct Forced {
        explicit Forced(bool& flag) : m_flag(flag) { m_flag = true; }
        Forced(const Forced&) = delete;
        Forced& operator=(const Forced&) = delete;
        ~Forced() { m_flag = false; }
        bool& m_flag;
    };
    const Forced forced(m_calculateAnew[id]);
    Configure(VecParameter(m_parametersInput), VecParameter(m_parametersPostProcessing));
}

// True if the slot's folder has a status file that tells of a result of this very version.
bool OrvFilter::IsReloadable(OrvFileId id) const {
    const wxString path = GetStatusFilename(id, m_parametersInput);
    return filtercache::IsPlainFile(path) && filtercache::Stamp(wxPathOnly(path)).Covers(*this);
}

bool OrvFilter::LoadStatus(OrvFileId id) {
    const wxString path = GetStatusFilename(id, m_parametersInput);
    if (!filtercache::IsPlainFile(path)) return false;
    const filtercache::FolderLock lock(wxPathOnly(path), filtercache::FolderLock::Shared);
    if (!lock.IsHeld() || !IsReloadable(id)) return false;
    const FilterStatus status = OrvFilterConfiguration::GetStatusFromFile(path);
    if (status != FilterStatus::Unsupported) {
        try {
            if (!LoadCache(id)) return false;
        } catch (const std::exception&) {
            // A broken file in the cache means that there is no result; the calculation follows.
            return false;
        }
    }
    m_status[id] = status;
    return true;
}

// The caller holds the folder's lock. False where a status would promise what is not there.
bool OrvFilter::StoreResult(OrvFileId id, const wxString& path) const {
    const bool prepared = filtercache::Prepare(wxPathOnly(path), *this, GetStatusPrefix(id));
    // From here on until the result stands whole no status promises it.
    if (!prepared || !filtercache::RemoveFile(path)) return false;
    m_cacheFailed = false;
    SaveCache(id);
    return !m_cacheFailed;
}

void OrvFilter::SaveStatus(OrvFileId id) const {
    const wxString path = GetStatusFilename(id, m_parametersInput);
    const wxString folder = wxPathOnly(path);
    CreateDirIfNotExists(folder);
    const filtercache::FolderLock lock(folder, filtercache::FolderLock::Exclusive);
    bool stored = lock.IsHeld();
    if (m_status[id] != FilterStatus::Unsupported) stored = stored && StoreResult(id, path);
    const std::string status(GetStatusString(id).utf8_str());
    if (stored && filtercache::WriteWholeFile(path, status, filtercache::Sync::Yes)) return;
    m_cacheMessage = wxString::Format(OrvTranslate("The result can't be stored in the cache folder %s."), folder);
}

wxString OrvFilter::GetStatusPrefix(OrvFileId id) const {
    if (GetCacheFilename(id) != OrvFilter::GetCacheFilenameCustom(id, m_parametersInput)) return {};
    return (GetContext()->GetOutputBasePath(id) + "-" + GetName()).AfterLast(wxFILE_SEP_PATH);
}

wxString OrvFilter::GetCacheFilenameCustom(OrvFileId id, const VecParameter& parameters) const {
    const wxString text = CleanFileName(GetParametersString(parameters, true));
    wxString name = GetContext()->GetOutputBasePath(id) + "-" + GetName();
    if (!text.empty()) name += "-" + text;
    return name;
}

wxString OrvFilter::GetCacheFilename(OrvFileId id) const {
    return GetCacheFilenameCustom(id, m_parametersInput);
}

wxString OrvFilter::GetStatusFilename(OrvFileId id, const VecParameter& parameters) const {
    return GetCacheFilenameCustom(id, parameters) + ".status";
}
