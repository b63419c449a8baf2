// SPDX-License-Identifier: Apache-2.0
// A filter that writes down what is called on it, and a running engine that has one.
#pragma once
#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "orvcore/filter.h"
#include "tests/support/engine.h"

namespace support {

// Without a window.
class TestPanel : public OrvFilterGuiBase {
public:
    void Init() override { ++inits; }
    wxWindow* GetWindow() override { return nullptr; }
    int inits = 0;
};

class RecordingFilter : public OrvFilter {
public:
    explicit RecordingFilter(const wxString& name, const VecParameter& input = VecParameter()) : OrvFilter(name) {
        m_parametersInput = input;
    }

    // "PreApply Apply:E ..." since the last call.
    std::string Take() {
        std::string text;
        for (const std::string& call : m_calls) text += (text.empty() ? "" : " ") + call;
        m_calls.clear();
        return text;
    }
    int Count(const std::string& call) const {
        return static_cast<int>(std::count(m_calls.begin(), m_calls.end(), call));
    }

    void Apply(OrvFileId id) override {
        Note("Apply", id);
        if (onApply) onApply(id);
    }
    void ApplyPostProcessing(OrvFileId id) override { Note("Post", id); }
    void Apply2NoCache(OrvFileId id) override { Note("NoCache", id); }
    void ApplyAction(int id, const VecParameter& parameters) override {
        actionId = id;
        if (onAction) onAction(parameters);
    }
    void UpdateOutputData() override { m_calls.emplace_back("Update"); }
    void PreApply() override {
        m_calls.emplace_back("PreApply");
        if (onPreApply) onPreApply();
    }
    void Reset() override {
        m_calls.emplace_back("Reset");
        OrvFilter::Reset();
    }

    VecParameter& Input() { return m_parametersInput; }
    VecParameter& Output() { return m_parametersOutput; }
    VecParameter& PostProcessing() { return m_parametersPostProcessing; }
    VecParameter& ActionInput() { return m_parametersActionInput; }
    VecParameter& ActionOutput() { return m_parametersActionOutput; }
    void SetStatus(OrvFileId id, FilterStatus status) { m_status[id] = status; }
    void SetType(FilterType type) { m_filterType = type; }
    void SetOnlyForJpeg() { m_onlyForJpeg = true; }

    std::function<void(OrvFileId)> onApply;
    std::function<void()> onPreApply;
    std::function<void(const VecParameter&)> onAction;
    // What LoadCache says; `onLoadCache` may throw instead.
    bool cached = false;
    std::function<void()> onLoadCache;
    int actionId = 0;
    wxString saved;
    TestPanel panel;

protected:
    void Reset(OrvFileId id) override { Note("Reset", id); }
    void SaveOutput(const wxString& path) override { saved = path; }
    bool LoadCache(OrvFileId id) override {
        Note("LoadCache", id);
        if (onLoadCache) onLoadCache();
        return cached;
    }
    void SaveCache(OrvFileId id) const override { Note("SaveCache", id); }
    OrvFilterGuiBase* CreateFilterGui(wxWindow* /*parent*/, OrvFilter* /*filter*/) override { return &panel; }

private:
    void Note(const std::string& call, OrvFileId id) const { m_calls.push_back(call + (id == Evidence ? ":E" : ":R")); }

    mutable std::vector<std::string> m_calls;
};

// A whole number without bounds.
inline Parameter Number(const wxString& name, int value) {
    return CreateParameterInt(name, wxString(), value);
}

// The parameters with another value in front.
inline VecParameter WithFirst(VecParameter parameters, int value) {
    parameters[0].Set(boost::any(value));
    return parameters;
}

// A white BMP picture: two by two pixels, or other.
inline std::string EncodeBmp(int width = 2, int height = 2) {
    const int row = (3 * width + 3) / 4 * 4;
    std::string bytes;
    const auto put = [&bytes](int value, int count) {
        for (int i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i));
    };
    bytes += "BM";
    for (const int value : {54 + row * height, 0, 54, 40, width, height}) put(value, 4);
    put(1, 2);
    put(24, 2);
    for (const int value : {0, row * height, 0, 0, 0, 0}) put(value, 4);
    return bytes + std::string(static_cast<size_t>(row * height), '\xFF');
}

class FilterEngine : public Engine {
protected:
    // Registers the filter, which the context owns from then on, and gives it its panel.
    template <class Filter>
    Filter* Add(Filter* filter) {
        context->AddFilterType(filter, m_number++);
        filter->CreateAnalysisPanel(nullptr, filter);
        return filter;
    }
    // Runs the filter; `recorder.events` then holds the events of this run alone.
    void Go(OrvFilter* filter, const VecParameter& input = VecParameter(),
            const VecParameter& postProcessing = VecParameter()) {
        recorder.Pump();
        recorder.events.clear();
        Run([&] { iface->Configure(filter, -1, input, postProcessing, false); });
    }
    wxString Bmp(const wxString& name) { return WriteBytes(dir / ("in/" + name), EncodeBmp()); }

private:
    int m_number = 100;
};

}  // namespace support
