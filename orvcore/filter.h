// SPDX-License-Identifier: Apache-2.0
// The base of every analysis filter.
#pragma once
#include <cstdint>
#include <mutex>
#include <vector>

#include "orvcore/context.h"
#include "orvcore/filterconfiguration.h"
#include "tolbase/export.h"
#include "tolbase/image.h"
#include "tolbase/parameter.h"

class OrvFilter;
class wxWindow;

// The panel of a filter. The concrete panel lives with the program that shows it; a program without windows gives each
// filter a panel whose window is null. Who made a panel keeps it: no filter deletes one.
class ORV_API OrvFilterGuiBase {
public:
    virtual ~OrvFilterGuiBase() = default;
    // Run once, behind the creation.
    virtual void Init() = 0;
    // The event object of all events of the filter. May be null.
    virtual wxWindow* GetWindow() = 0;
};

// Turns each of the characters \ / * ? " < > | : into "_", so that a text may stand in a file name.
ORV_API wxString CleanFileName(wxString text);

// An analysis filter: a calculation over the two file slots, with its parameters, the configurations offered to the
// user, and the state of the last run.
//
// A concrete filter derives from this class or from one of its result-typed children, fills the protected members in
// its constructor, and is registered with OrvContext::AddFilterType, which owns it from then on.
//
// Threads: filters are constructed at start-up and run (Configure, ResetStatus, CallAction) on the worker thread only.
// The configuration list is changed by the user interface thread only while no run is under way. The input parameters
// alone have a lock, for a command is made while another one runs: GetParametersInput may be called from any thread at
// any time and gives what stood between two changes. A concrete filter changes m_parametersInput in its constructor
// only; on the worker thread it reads it as it is.
//
// Everything indexed by a slot has two entries, in the order of OrvFileId.
class ORV_API OrvFilter {
public:
    using FilterStatus = OrvFilterConfiguration::FilterStatus;

    // The group that the user finds the filter in.
    enum FilterType : int32_t {
        FilterTypeOverview = 0,
        FilterTypeVisualAnalysis = 1,
        FilterTypeFileAnalysis = 2,
        FilterTypeCameraIdentification = 3,
        FilterTypeGlobalAnalysis = 4,
        FilterTypeLocalAnalysis = 5,
        FilterTypeExperimental = 6,
    };

    // The text of each type, indexed by it.
    static const wxString sm_typeStrings[7];

    // `name` names the filter in files, logs and reports, so it should be fit for a file name.
    explicit OrvFilter(const wxString& name);
    // A copy takes over every member, the id and the panel too.
    OrvFilter(const OrvFilter&) = default;
    OrvFilter& operator=(const OrvFilter&) = default;

    // ---- what a concrete filter overrides ----

    // The calculation of one slot. Reads m_parametersInput and GetInputImage, writes its result and m_parametersOutput,
    // and sets m_status[id] to Warning where the result says so. Polls tcvHasAborted in long loops and then returns at
    // once. May throw TolException: its message becomes the run's error message.
    virtual void Apply(OrvFileId id) = 0;
    // The cheap last step of a slot, run also when only a post-processing parameter has changed.
    virtual void ApplyPostProcessing(OrvFileId id);
    // Work that must follow the result also when that came from the cache.
    virtual void Apply2NoCache(OrvFileId id);
    // An extra action; `id` is the filter's own. Its result goes into m_parametersActionOutput.
    virtual void ApplyAction(int id, const VecParameter& parameters);
    // Brings what is displayed up to date, once at the end of a run that succeeded.
    virtual void UpdateOutputData();
    // Once at the start of each run. What it throws leaves the run.
    virtual void PreApply();

    virtual ~OrvFilter();

protected:
    // Forgets the result of a slot.
    virtual void Reset(OrvFileId id);

public:
    // Gives all parameters their defaults, clears the links of the output parameters, and resets both slots.
    virtual void Reset();
    // Adds the filter's own groups to the program options.
    virtual void RegisterProgramOptions();
    // Follows a change of the path of the PRNU reference pattern.
    virtual void SynchPrnuReferencePatternPath();
    // Keeps the picture that SaveOutput writes.
    virtual void SetImageToSave(const Image& image);
    // Writes what a report needs beside it.
    virtual void SaveOutputBatch(const wxString& path);
    // The result's part of a report as an HTML fragment.
    virtual wxString GetReportData(const wxString& outputPath, const wxString& outputFolder) const;
    // The file types of the save dialog, in wxFileDialog's form.
    virtual wxString GetOutputFileSelectorString() const;
    // Full name, without extension, of the cached result of a slot for given parameters.
    virtual wxString GetCacheFilenameCustom(OrvFileId id, const VecParameter& parameters) const;
    // The extension of results, with its point.
    virtual wxString GetCacheExtension() const;

protected:
    // Writes the result to a file that the user chose.
    virtual void SaveOutput(const wxString& path);
    // Makes the panel. Who made it keeps it.
    virtual OrvFilterGuiBase* CreateFilterGui(wxWindow* parent, OrvFilter* filter) = 0;
    // Reloads the result of a slot for m_parametersInput; false if there is none. A failure is no failure of the run.
    virtual bool LoadCache(OrvFileId id);
    // Stores the result of a slot for m_parametersInput.
    virtual void SaveCache(OrvFileId id) const;

private:
    // Fills m_parametersPostProcessing.
    virtual void InitPostProcessing();
    // Fills m_configurations.
    virtual void CalculateConfigurations();

public:
    // ---- start-up ----

    // Called by OrvContext::AddFilterType on the complete object: works out the configurations and their defaults.
    void InitFilter();
    // Makes, keeps, initialises and returns the panel. A filter has to have one before it runs.
    OrvFilterGuiBase* CreateAnalysisPanel(wxWindow* parent, OrvFilter* filter);
    OrvFilterGuiBase* GetAnalsyisFilterGui() const { return m_gui; }

    // ---- running ----

    // Brings the parameters up to date and then, per slot, calculates, reloads, declares unsupported or leaves as it
    // is. The outcome goes to the application as an event: OrvCommandIdFilterStarted at once where a file or the filter
    // changed, then OrvCommandIdFilterDone with the output parameters or OrvCommandIdFilterFailed through
    // OrvContext::PushEvent. Values beyond the filter's own parameters are left out.
    void Configure(const VecParameter& input, const VecParameter& postProcessing);
    // Forces a new calculation of a slot: removes its status file and runs the filter with its present parameters.
    void ResetStatus(OrvFileId id);
    // The end of a run: no parameter is changed any more, and the displayed data follow.
    void PostApply();
    // Runs ApplyAction and pushes OrvCommandIdActionDone. A TolException becomes error -1 and the event's text; any
    // other exception passes through.
    void CallAction(int id, const VecParameter& parameters);

    FilterStatus GetStatus(OrvFileId id) const { return m_status[id]; }
    wxString GetStatusString(OrvFileId id) const;
    // True if the slot has a result.
    bool IsStatusAvailable(OrvFileId id) const;
    // True if the last run saw another file in the slot than the run before.
    bool IsFileChanged(OrvFileId id) const { return m_fileChanged[id]; }
    // True if the last run reloaded the result of the slot.
    bool ConfiguredFromCache(OrvFileId id) const { return m_configuredFromCache[id]; }
    // Why the last run could not store what it calculated, as a sentence for the user; empty if it could, or was not
    // meant to. The result itself stands all the same.
    wxString GetCacheMessage() const { return m_cacheMessage; }
    wxString GetErrorMessage() const { return m_errorMessage; }
    void SetErrorMessage(const wxString& message) { m_errorMessage = message; }

    // ---- files ----

    // GetCacheFilenameCustom for the present input parameters.
    wxString GetCacheFilename(OrvFileId id) const;
    // What the names of all status files of the filter begin with in a slot's folder; empty for a filter that names its
    // results in its own way.
    wxString GetStatusPrefix(OrvFileId id) const;
    // Full name of the status file of a slot for given parameters.
    wxString GetStatusFilename(OrvFileId id, const VecParameter& parameters) const;
    // The file name, without a folder, that is proposed for the result.
    wxString GetExportFilename(bool withPostProcessing) const;
    // Writes the result to a file that the user chose.
    void SaveOutputBase(const wxString& path);
    // The fragment of an HTML report on the Evidence; `anchor` is the target of links.
    wxString GetReport(const wxString& outputPath, const wxString& outputFolder, const wxString& anchor) const;

    // ---- configurations ----

    // Adds an enabled configuration in front of the one at `position`, at the end for any other number.
    void AddConfiguration(const VecParameter& values, int position);
    // An index outside the list does nothing.
    void DeleteConfiguration(int index);
    void DeleteAllConfigurations();
    // True if that changed anything.
    bool EnableConfiguration(int index, bool enable);
    // True for an empty list; the first one's flag for an index outside the list.
    bool IsConfigurationEnabled(int index) const;
    std::vector<OrvFilterConfiguration> GetConfigurations() const { return m_configurations; }
    std::vector<OrvFilterConfiguration>& GetConfigurationsNoConst() { return m_configurations; }
    // The enabled ones, in the order of the list.
    std::vector<OrvFilterConfiguration> GetEnabledConfigurations() const;
    size_t GetConfigurationsSize() const { return m_configurations.size(); }
    // The parameters of a configuration; none for an index outside the list.
    VecParameter GetConfigurationParams(int index) const;
    // Index of the configuration that ran last; -1 while it isn't known.
    int GetActiveConfiguration() const { return m_activeConfiguration; }
    void SetConfiguration(int index) { m_activeConfiguration = index; }
    void ResetDefaultConfigurations();
    // Reads the list of the program option that stores the configurations of all filters: "Name-value-value", with "!"
    // in front of a disabled one and a doubled dash for the minus sign of a value. Entries of other filters are passed
    // over; with none of its own the filter returns to its defaults.
    void SetConfigurationsFromVecString(const VecString& list);

    // ---- what the filter is ----

    wxString GetName() const { return m_name; }
    wxString GetDescription() const { return m_description; }
    // Counts the filters of the process, from 1.
    uint64_t GetFilterId() const { return m_filterId; }
    // The version of the calculation: cached results of another one are made anew.
    int GetVersion() const { return m_version; }
    FilterType GetAnalysisType() const { return m_filterType; }
    wxString GetAnalysisTypeString() const;
    bool IsOnlyForJpeg() const { return m_onlyForJpeg; }
    bool IsSupportedRoi() const { return m_supportsRoi; }
    bool IsSupportedOutput() const { return m_supportsOutput; }
    bool HasSingleConfiguration() const { return m_singleConfiguration; }
    VecParameter GetParametersInput() const;
    VecParameter GetParametersOutput() const { return m_parametersOutput; }
    VecParameter GetParametersPostProcessing() const { return m_parametersPostProcessing; }

    // ---- what the context knows ----

    bool IsTimerActive() const;
    int GetQueueEventSize() const;
    // The picture of the slot; not ok for an empty slot.
    const Image& GetInputImage(OrvFileId id) const;
    // Its channels; 0 for an empty slot.
    int GetInputImageChannels(OrvFileId id) const;

protected:
    // Takes the status of the slot, and its result, from the cache; false if that has none.
    bool LoadStatus(OrvFileId id);
    // Stores the result of the slot and then its status file. Where that can't be done the slot has no status file.
    void SaveStatus(OrvFileId id) const;
    // Called from SaveCache where the result can't be stored: no status file will promise it.
    void FailCache() const { m_cacheFailed = true; }
    // The default list: every combination of the values of up to four input parameters.
    void CalculateConfigurationsDefault();

    VecParameter m_parametersActionInput;
    VecParameter m_parametersInput;
    VecParameter m_parametersPostProcessing;
    VecParameter m_parametersOutput;
    VecParameter m_parametersActionOutput;
    bool m_onlyForJpeg = false;
    bool m_supportsRoi = false;
    bool m_supportsOutput = true;
    bool m_singleConfiguration = false;
    bool m_reserved = false;
    wxString m_description;
    wxString m_lastFilename[2];
    wxString m_errorMessage;
    FilterType m_filterType = FilterTypeExperimental;
    std::vector<OrvFilterConfiguration> m_configurations;
    std::vector<OrvFilterConfiguration> m_configurationsDefault;
    Image m_imageToSave;
    FilterStatus m_status[2] = {FilterStatus::NotCalculated, FilterStatus::NotCalculated};
    bool m_filterChanged = false;
    bool m_fileChanged[2] = {false, false};
    bool m_configuredFromCache[2] = {false, false};
    bool m_needsReprocessing = false;
    int m_activeConfiguration = 0;
    wxString m_name;
    uint64_t m_filterId = 0;
    OrvFilterGuiBase* m_gui = nullptr;
    // To be raised by a concrete filter with any change that lets it give other results.
    int m_version = 1;
    // Beside m_lastFilename: where the slot's results go, which tells two contents under one path apart.
    wxString m_lastBasePath[2];

    static uint64_t sm_filterCount;
    static uint64_t sm_lastFilterId;

private:
    // What one run knows of itself.
    struct RunState;

    size_t CountDefaultValues(size_t index) const;
    void AddCombinations(size_t level, const std::vector<size_t>& counts);
    void FindActiveConfiguration(const VecParameter& input);
    void DetectChanges(RunState& run);
    void TakeParameters(const VecParameter& input, const VecParameter& postProcessing, RunState& run);
    void RunSlots(RunState& run);
    void RunSlot(OrvFileId id, RunState& run);
    bool ObtainResult(OrvFileId id, RunState& run);
    bool Calculate(OrvFileId id, RunState& run);
    bool ShowReloaded(OrvFileId id);
    bool IsReloadable(OrvFileId id) const;
    bool StoreResult(OrvFileId id, const wxString& path) const;
    void FinishRun(const RunState& run);
    wxWindow* GetPanelWindow() const;
    // Guards m_parametersInput of every filter: one lock for all, as it is only ever held for a few copies.
    static std::mutex& InputMutex();

    bool m_calculateAnew[2] = {false, false};
    mutable bool m_cacheFailed = false;
    mutable wxString m_cacheMessage;
};
