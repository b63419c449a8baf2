// SPDX-License-Identifier: Apache-2.0
// Small filters on the result-typed bases, and how an engine runs them.
#pragma once
#include <functional>
#include <utility>
#include <vector>

#include "orvcore/filterimage.h"
#include "orvcore/filterplot.h"
#include "orvcore/filtertext.h"
#include "tests/support/engine.h"
#include "tolbase/file.h"
#include "tolimage/imageio.h"

namespace support {

class NoPanel : public OrvFilterGuiBase {
public:
    void Init() override {}
    wxWindow* GetWindow() override { return nullptr; }
};

template <class Base>
class ResultFilter : public Base {
public:
    explicit ResultFilter(wxString const& name, VecParameter const& input = {}) : Base(name) {
        this->m_parametersInput = input;
    }
    void Apply(OrvFileId id) override {
        ++applied;
        if (onApply) onApply(id);
    }
    VecParameter& Out() { return this->m_parametersOutput; }
    VecParameter& Post() { return this->m_parametersPostProcessing; }
    void SetStatusOf(OrvFileId id, OrvFilter::FilterStatus status) { this->m_status[id] = status; }
    void OnlyForJpeg() { this->m_onlyForJpeg = true; }
    void Load(OrvFileId id, bool& result) { result = this->LoadCache(id); }
    void Save(OrvFileId id) const { this->SaveCache(id); }
    void ResetSlot(OrvFileId id) { this->Base::Reset(id); }

    int applied = 0;
    std::function<void(OrvFileId)> onApply;

protected:
    OrvFilterGuiBase* CreateFilterGui(wxWindow*, OrvFilter*) override { return &m_panel; }

private:
    NoPanel m_panel;
};

class ImageFilter : public ResultFilter<OrvFilterImage> {
public:
    enum Kind { Plain, Levels, Map, Scale };
    explicit ImageFilter(wxString const& name, Kind kind = Plain, VecParameter const& input = {})
        : ResultFilter(name, input), m_kind(kind) {}
    void ApplyPostProcessing(OrvFileId id) override {
        if (m_kind == Plain) OrvFilterImage::ApplyPostProcessing(id);
        if (m_kind == Levels) ApplyPostProcessingLevels(id);
        if (m_kind == Map) ApplyPostProcessingMap(id);
        if (m_kind == Scale) ApplyPostProcessingScale(id);
    }
    using OrvFilterImage::GetInputImageDisplayed;
    using OrvFilterImage::GetOutputImage;
    using OrvFilterImage::GetOutputImageDisplayed;
    using OrvFilterImage::GetOutputImagePostProcessing;
    using OrvFilterImage::ResetInput;
    using OrvFilterImage::ResetOutput;

protected:
    void InitPostProcessing() override {
        if (m_kind == Levels) InitPostProcessingLevels();
        if (m_kind == Map) InitPostProcessingMap();
        if (m_kind == Scale) InitPostProcessingScale();
    }

private:
    Kind m_kind;
};

class PlotFilter : public ResultFilter<OrvFilterPlot> {
public:
    using OrvFilterPlot::GetPlotData;
    using ResultFilter::ResultFilter;
    void ShowBars() { m_bars = true; }
};

class TextFilter : public ResultFilter<OrvFilterText> {
public:
    using OrvFilterText::GetTextData;
    using ResultFilter::ResultFilter;
};

class CustomFilter : public ResultFilter<OrvFilterTextCustom> {
public:
    using ResultFilter::ResultFilter;
    void SetText(wxString const& text) { m_text = text; }
};

// A picture of one colour; channels as many as values.
inline Image Solid(int width, int height, std::vector<int> const& colour) {
    int const channels = static_cast<int>(colour.size());
    Image picture = Image::Create(width, height, IPL_DEPTH_8U, channels);
    for (int y = 0; y < height; ++y) {
        unsigned char* row = picture.Data() + y * picture.Step();
        for (int i = 0; i < width * channels; ++i)
            row[i] = static_cast<unsigned char>(colour[static_cast<size_t>(i % channels)]);
    }
    return picture;
}
// One row of gray pixels.
inline Image Row(std::vector<int> const& values) {
    Image picture = Image::Create(static_cast<int>(values.size()), 1, IPL_DEPTH_8U, 1);
    for (size_t i = 0; i < values.size(); ++i) picture.Data()[i] = static_cast<unsigned char>(values[i]);
    return picture;
}
inline std::vector<int> PixelAt(Image picture, int x, int y) {
    unsigned char const* pixel = picture.Data() + y * picture.Step() + x * picture.Channels();
    return std::vector<int>(pixel, pixel + picture.Channels());
}
inline std::vector<int> FirstRow(Image picture) {
    return std::vector<int>(picture.Data(), picture.Data() + picture.Width() * picture.Channels());
}

class ResultEngine : public Engine {
protected:
    // The context owns the filter from then on.
    template <class F>
    F* Add(F* filter) {
        context->AddFilterType(filter, m_nextType++);
        filter->CreateAnalysisPanel(nullptr, filter);
        return filter;
    }
    void Go(OrvFilter* filter, VecParameter const& post = {}) {
        Run([&] { iface->Configure(filter, -1, filter->GetParametersInput(), post, false); });
    }
    // Writes a picture into the folder "in" and gives its path.
    wxString Png(wxString const& name, Image const& picture) {
        CreateDirIfNotExists(dir / "in");
        tcvSaveImage(dir / ("in/" + name), picture, 90);
        return dir / ("in/" + name);
    }
    // Start of the names of a slot's cache files.
    wxString CacheStem(OrvFileId id, wxString const& behind) { return context->GetOutputBasePath(id) + "-" + behind; }

private:
    int m_nextType = 100;
};

}  // namespace support
