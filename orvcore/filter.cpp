// SPDX-License-Identifier: Apache-2.0
#include "orvcore/filter.h"

#include "orvcore/command.h"
#include "tolbase/exception.h"

// The window stands in an event as its object.
#include <wx/window.h>

const wxString OrvFilter::sm_typeStrings[7] = {
    "Overview",        "Visual Analysis", "File Analysis", "Camera Identification",
    "Global Analysis", "Local Analysis",  "Experimental"};

uint64_t OrvFilter::sm_filterCount = 0;
uint64_t OrvFilter::sm_lastFilterId = 0;

wxString CleanFileName(wxString text) {
    for (const char* unfit = "\\/*?\"<>|:"; *unfit != '\0'; ++unfit) {
        text.Replace(wxString(1, *unfit), "_");
    }
    return text;
}

OrvFilter::OrvFilter(const wxString& name) : m_name(name), m_filterId(++sm_filterCount) {}

OrvFilter::~OrvFilter() = default;

void OrvFilter::ApplyPostProcessing(OrvFileId /*id*/) {}
void OrvFilter::Apply2NoCache(OrvFileId /*id*/) {}
void OrvFilter::ApplyAction(int /*id*/, const VecParameter& /*parameters*/) {}
void OrvFilter::UpdateOutputData() {}
void OrvFilter::PreApply() {}
void OrvFilter::Reset(OrvFileId /*id*/) {}
void OrvFilter::RegisterProgramOptions() {}
void OrvFilter::SynchPrnuReferencePatternPath() {}
void OrvFilter::SetImageToSave(const Image& image) {
    m_imageToSave = image;
}
void OrvFilter::SaveOutputBatch(const wxString& /*path*/) {}
wxString OrvFilter::GetReportData(const wxString& /*outputPath*/, const wxString& /*outputFolder*/) const {
    return {};
}
wxString OrvFilter::GetOutputFileSelectorString() const {
    return {};
}
wxString OrvFilter::GetCacheExtension() const {
    return ".txt";
}
void OrvFilter::SaveOutput(const wxString& /*path*/) {}
bool OrvFilter::LoadCache(OrvFileId /*id*/) {
    return false;
}
void OrvFilter::SaveCache(OrvFileId /*id*/) const {}
void OrvFilter::InitPostProcessing() {}
void OrvFilter::CalculateConfigurations() {
    CalculateConfigurationsDefault();
}

std::mutex& OrvFilter::InputMutex() {
    static std::mutex mutex;
    return mutex;
}

VecParameter OrvFilter::GetParametersInput() const {
    const std::lock_guard<std::mutex> lock(InputMutex());
    return m_parametersInput;
}

void OrvFilter::Reset() {
    {
        const std::lock_guard<std::mutex> lock(InputMutex());
        m_parametersInput.Reset();
    }
    m_parametersOutput.ClearRef();
    m_parametersOutput.Reset();
    Reset(Evidence);
    Reset(Reference);
}

void OrvFilter::InitFilter() {
    CalculateConfigurations();
    m_configurationsDefault = m_configurations;
    m_parametersInput.Reset();
    InitPostProcessing();
}

OrvFilterGuiBase* OrvFilter::CreateAnalysisPanel(wxWindow* parent, OrvFilter* filter) {
    m_gui = CreateFilterGui(parent, filter);
    if (m_gui != nullptr) m_gui->Init();
    return m_gui;
}

wxWindow* OrvFilter::GetPanelWindow() const {
    return m_gui != nullptr ? m_gui->GetWindow() : nullptr;
}

void OrvFilter::CallAction(int id, const VecParameter& parameters) {
    const auto forget = [this] {
        m_parametersActionOutput.clear();
        m_parametersActionInput.clear();
    };
    int error = 0;
    wxString message;
    try {
        ApplyAction(id, parameters);
    } catch (const TolException& exception) {
        error = -1;
        message = exception.GetMessage();
    } catch (...) {
        // What this action left must not show up as the result of the next.
        forget();
        throw;
    }
    auto* event = new OrvCommandEvent(wxEVT_ORV_COMMAND, OrvCommandIdActionDone, m_parametersActionInput);
    event->SetExtraLong(error);
    event->SetError(error);
    event->SetInt(id);
    event->SetActionId(id);
    event->SetString(message);
    event->SetMessage(message);
    event->SetEventObject(GetPanelWindow());
    event->SetParams(m_parametersActionOutput);
    forget();
    GetContext()->PushEvent(event);
}

wxString OrvFilter::GetStatusString(OrvFileId id) const {
    return OrvFilterConfiguration::GetStatusString(m_status[id]);
}

bool OrvFilter::IsStatusAvailable(OrvFileId id) const {
    return m_status[id] != FilterStatus::NotCalculated && m_status[id] != FilterStatus::Unsupported;
}

wxString OrvFilter::GetAnalysisTypeString() const {
    const bool known = m_filterType >= FilterTypeOverview && m_filterType <= FilterTypeExperimental;
    return sm_typeStrings[known ? m_filterType : FilterTypeExperimental];
}

bool OrvFilter::IsTimerActive() const {
    return GetContext()->IsTimerActive();
}
int OrvFilter::GetQueueEventSize() const {
    return GetContext()->GetQueueSize();
}
const Image& OrvFilter::GetInputImage(OrvFileId id) const {
    return GetContext()->GetImage(id);
}

int OrvFilter::GetInputImageChannels(OrvFileId id) const {
    const Image& image = GetInputImage(id);
    return image.IsOk() ? image.Channels() : 0;
}
