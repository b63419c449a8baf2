// SPDX-License-Identifier: Apache-2.0
// The two cache files of plot filters.
#include <wx/ffile.h>
#include <wx/filefn.h>
#include <wx/log.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <string>

#include "orvcore/filtercache.h"
#include "orvcore/filterplot.h"
#include "orvcore/plotnumber.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"

static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__,
              "the words of a cache file are written as they stand in memory");

namespace {

constexpr size_t HeaderWords = 6;
// How many series a file without points may claim: nothing else bounds them.
constexpr size_t MostEmptySeries = 4096;

// Index of the first point to save: the one at the X range's minimum, if the first point lies farther from 0.
size_t FirstSaved(OrvPlotData const& data, size_t start, size_t end) {
    if (std::abs(std::trunc(static_cast<double>(data.x[start]))) > std::abs(data.xRange.minimum)) {
        while (start < end && static_cast<double>(data.x[start]) != data.xRange.minimum) ++start;
    }
    return start;
}

// True if the data can be saved: as many series as dim says, each as long as the indices ask.
bool IsConsistent(OrvPlotData const& data) {
    if (data.dim < 0 || data.y.size() < static_cast<size_t>(data.dim)) return false;
    if (data.firstIndex > data.lastIndex || data.lastIndex >= data.x.size()) return false;
    for (size_t series = 0; series < static_cast<size_t>(data.dim); ++series) {
        if (data.lastIndex >= data.y[series].size()) return false;
    }
    return true;
}

std::string HeaderText(OrvPlotData const& data) {
    using plot::CutToInt;
    std::string text = "Dim: " + std::to_string(data.dim) + "\n";
    text += "Coi: " + std::to_string(data.coi) + "\n";
    text += "Range Values X:" + std::to_string(CutToInt(data.xRange.minimum)) + " " +
            std::to_string(CutToInt(data.xRange.maximum)) + "\n";
    text += "Range Values Y:" + plot::Scientific(data.yRange.minimum, 3) + " " +
            plot::Scientific(data.yRange.maximum, 3) + "\n";
    return text + ":\n";
}

// What a float can hold, and so what can have been saved.
bool IsSavable(double value) {
    return std::isfinite(value) && std::abs(value) <= std::numeric_limits<float>::max();
}

bool IsWholeInt(double value, int least) {
    return std::isfinite(value) && std::trunc(value) >= least && value < 2147483648.0;
}

// The file's words; false if they can't be read, or if the file is no whole number of them.
bool ReadWords(wxFFile& file, std::vector<double>& words) {
    wxFileOffset const length = file.Length();
    if (length < 0 || !IsWithinTolLimit(TolLimit::FileBytes, static_cast<uint64_t>(length))) return false;
    auto const bytes = static_cast<size_t>(length);
    if (bytes % sizeof(double) != 0) return false;
    words.resize(bytes / sizeof(double));
    return bytes == 0 || file.Read(words.data(), bytes) == bytes;
}

// True if dim, coi and the ranges can be what a save wrote, and the number of words agrees with dim.
bool IsHeaderValid(std::vector<double> const& words) {
    if (words.size() < HeaderWords || !IsWholeInt(words[0], 1)) return false;
    if (!IsWholeInt(words[1], std::numeric_limits<int>::min())) return false;
    for (size_t i = 2; i < HeaderWords; ++i) {
        if (!std::isfinite(words[i])) return false;
    }
    auto const series = static_cast<size_t>(words[0]);
    size_t const rest = words.size() - HeaderWords;
    return rest == 0 ? series <= MostEmptySeries : rest % (series + 1) == 0;
}

void ClearLoaded(OrvPlotData& data) {
    data.firstIndex = 0;
    data.lastIndex = 0;
    data.xRange = {0.0, 1.0};
    data.yRange = {0.0, 1.0};
    data.pointCount = 0;
    data.x.clear();
    data.y.clear();
}

void TakeWords(std::vector<double> const& words, OrvPlotData& data) {
    data.dim = static_cast<int>(words[0]);
    data.coi = static_cast<int>(words[1]);
    data.xRange = {words[2], words[3]};
    data.yRange = {words[4], words[5]};
    auto const dim = static_cast<size_t>(data.dim);
    size_t const count = (words.size() - HeaderWords) / (dim + 1);
    data.x.resize(count);
    for (size_t i = 0; i < count; ++i) data.x[i] = static_cast<float>(words[HeaderWords + i]);
    data.y.assign(dim, std::vector<float>(count));
    double const* value = words.data() + HeaderWords + count;
    for (size_t i = 0; i < count; ++i) {
        for (size_t series = 0; series < dim; ++series) data.y[series][i] = static_cast<float>(*value++);
    }
}

}  // namespace

bool OrvFilterPlot::SavePlotData(OrvPlotData const& data, wxString& text, double** buffer, std::uint64_t* bytes) const {
    *buffer = nullptr;
    *bytes = 0;
    if (!IsConsistent(data)) return false;
    size_t const end = data.lastIndex;
    size_t const start = FirstSaved(data, data.firstIndex, end);
    auto const dim = static_cast<size_t>(data.dim);
    size_t const count = end - start + 1;
    size_t const words = (dim + 1) * count + HeaderWords;
    auto result = std::make_unique<double[]>(words);
    double const header[HeaderWords] = {static_cast<double>(data.dim), static_cast<double>(data.coi),
                                        data.xRange.minimum,           data.xRange.maximum,
                                        data.yRange.minimum,           data.yRange.maximum};
    std::copy(header, header + HeaderWords, result.get());
    std::string lines = HeaderText(data);
    double* abscissa = result.get() + HeaderWords;
    double* ordinate = abscissa + count;
    for (size_t i = start; i <= end; ++i) {
        *abscissa = static_cast<double>(data.x[i]);
        lines += std::to_string(plot::CutToInt(*abscissa++));
        for (size_t series = 0; series < dim; ++series) {
            *ordinate = static_cast<double>(data.y[series][i]);
            lines += " " + plot::Scientific(*ordinate++, 3);
        }
        lines += "\n";
    }
    text = wxString::FromUTF8(lines);
    *bytes = words * sizeof(double);
    *buffer = result.release();
    return true;
}

void OrvFilterPlot::SaveCache(OrvFileId id) const {
    wxString const base = GetCacheFilename(id);
    wxString const textPath = base + ".txt";
    wxString const binaryPath = base + ".binary";
    CreateDirIfNotExists(wxPathOnly(textPath));
    wxMutexLocker const lock(m_plotMutex[id]);
    OrvPlotData const& data = m_plotData[id];
    using filtercache::Sync;
    using filtercache::WriteWholeFile;
    wxString text;
    double* buffer = nullptr;
    std::uint64_t bytes = 0;
    bool saved = !data.x.empty() && !data.y.empty() && !data.y[0].empty() && SavePlotData(data, text, &buffer, &bytes);
    std::unique_ptr<double[]> const owned(buffer);
    if (saved) {
        std::string const words(reinterpret_cast<char const*>(owned.get()), bytes);
        saved = WriteWholeFile(textPath, std::string(text.utf8_str()), Sync::No) &&
                WriteWholeFile(binaryPath, words, Sync::Yes);
        if (!saved) FailCache();
    }
    // What an older run left must not be taken for this result.
    if (!saved) {
        bool const removed = filtercache::RemoveFile(binaryPath);
        if (!filtercache::RemoveFile(textPath) || !removed) FailCache();
    }
}

bool OrvFilterPlot::LoadPlotData(wxFFile& file, OrvPlotData& data) const {
    ClearLoaded(data);
    std::vector<double> words;
    if (!ReadWords(file, words)) return false;
    if (words.empty()) return true;
    if (!IsHeaderValid(words)) return false;
    for (size_t i = HeaderWords; i < words.size(); ++i) {
        if (!IsSavable(words[i])) return false;
    }
    TakeWords(words, data);
    return true;
}

bool OrvFilterPlot::LoadCache(OrvFileId id) {
    wxString const path = GetCacheFilename(id) + ".binary";
    if (!filtercache::IsPlainFile(path)) return false;
    auto const data = GetPlotData(id);
    wxLogNull const noLog;
    wxFFile file(path, "rb");
    // No save leaves an empty file, so there is no result to be reloaded from one.
    return file.IsOpened() && file.Length() > 0 && LoadPlotData(file, *data);
}
