// SPDX-License-Identifier: Apache-2.0
// Filters whose results are cached and depend on one number, and short ways to look into a cache folder.
#pragma once
#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include "orvcore/filtercache.h"
#include "tests/orvcore/resultfilters.h"

namespace support {

// A run that must not be skipped for want of a change.
struct FilterPeek : OrvFilter {
    using OrvFilter::m_needsReprocessing;
    using OrvFilter::m_version;
};
inline void ForceNextRun(OrvFilter* filter) {
    filter->*(&FilterPeek::m_needsReprocessing) = true;
}
inline void SetVersion(OrvFilter* filter, int version) {
    filter->*(&FilterPeek::m_version) = version;
}

inline VecParameter OneNumber(int value) {
    return {CreateParameterInt("n", "", value)};
}

// The picture of the image filter for a number: every pixel is (n, 2n, 3n).
inline std::vector<int> ColourFor(int n) {
    return {n, 2 * n, 3 * n};
}

class CachedImageFilter : public ImageFilter {
public:
    explicit CachedImageFilter(wxString const& name = "Picture", Kind kind = Plain)
        : ImageFilter(name, kind, OneNumber(1)) {
        onApply = [this](OrvFileId id) {
            CvSize const size = GetInputImage(id).Size();
            GetOutputImage(id) = Solid(size.width, size.height, ColourFor(Number()));
            SetStatusOf(id, Number() % 2 == 0 ? OrvFilterConfiguration::Warning : OrvFilterConfiguration::Ok);
        };
    }
    int Number() const { return m_parametersInput[0].GetValue<int>(); }
    void OutputHasInputSize() { m_outputHasInputSize = true; }
    using OrvFilter::SaveStatus;
};

class CachedPlotFilter : public PlotFilter {
public:
    explicit CachedPlotFilter(wxString const& name = "Curve") : PlotFilter(name, OneNumber(1)) {
        onApply = [this](OrvFileId id) {
            int const n = m_parametersInput[0].GetValue<int>();
            auto const data = GetPlotData(id);
            data->InitPlotData(0, 63, 2, 1, true);
            for (size_t i = 0; i < 64; ++i) data->y[0][i] = data->y[1][i] = static_cast<float>(n) + data->x[i] / 4;
            data->yRange = {0, 100};
            SetStatusOf(id, n % 2 == 0 ? OrvFilterConfiguration::Warning : OrvFilterConfiguration::Ok);
        };
    }
    using OrvFilter::SaveStatus;
};

// All that a run shows of a slot, so that two runs can be compared byte by byte.
inline std::string ResultOf(OrvFilter* filter, OrvFileId id = Evidence) {
    std::string bytes(filter->GetStatusString(id).utf8_str());
    if (auto* images = dynamic_cast<OrvFilterImage*>(filter)) {
        Image picture = images->GetOutputImageDisplayedCopy(id);
        if (!picture.IsOk()) return bytes + " no picture";
        bytes += " " + std::to_string(picture.Width()) + "x" + std::to_string(picture.Height()) + ":";
        for (int y = 0; y < picture.Height(); ++y) {
            auto const* row =
                reinterpret_cast<char const*>(picture.Data()) + y * static_cast<ptrdiff_t>(picture.Step());
            bytes.append(row, static_cast<size_t>(picture.Width() * picture.Channels()));
        }
    }
    if (auto* plots = dynamic_cast<OrvFilterPlot*>(filter)) {
        OrvPlotData const data = plots->GetPlotDataCopy(id);
        bytes += " " + std::to_string(data.dim) + "," + std::to_string(data.coi) + ":";
        bytes.append(reinterpret_cast<char const*>(data.x.data()), data.x.size() * sizeof(float));
        for (auto const& series : data.y)
            bytes.append(reinterpret_cast<char const*>(series.data()), series.size() * sizeof(float));
    }
    return bytes;
}

// The names in a folder, hidden ones too, sorted; empty for none.
inline std::vector<std::string> NamesIn(wxString const& folder) {
    std::vector<std::string> names;
    std::error_code error;
    for (auto const& entry : std::filesystem::directory_iterator(PathToBytes(folder), error))
        names.push_back(entry.path().filename().native());
    std::sort(names.begin(), names.end());
    return names;
}
inline std::vector<std::string> Leftovers(wxString const& folder) {
    std::vector<std::string> names = NamesIn(folder);
    names.erase(std::remove_if(names.begin(), names.end(),
                               [](std::string const& name) { return name.find(".tmp") == std::string::npos; }),
                names.end());
    return names;
}

class CacheEngine : public ResultEngine {
protected:
    ~CacheEngine() override { filtercache::SetStepHook(nullptr); }
    wxString Folder(OrvFileId id = Evidence) { return wxPathOnly(context->GetOutputBasePath(id)); }
    // Runs the filter for a number, whether or not it has just done so.
    void RunWith(OrvFilter* filter, int n) {
        recorder.Pump();
        recorder.events.clear();
        ForceNextRun(filter);
        Run([&] { iface->Configure(filter, -1, OneNumber(n), filter->GetParametersPostProcessing(), false); });
    }
    // What a run for the number gives without any cache.
    std::string Computed(OrvFilter* filter, int n) {
        context->EnableCache(false);
        RunWith(filter, n);
        context->EnableCache(true);
        return ResultOf(filter);
    }
    void LoadPicture() { Load(Png("a.png", Solid(16, 8, {1, 2, 3}))); }
};

}  // namespace support
