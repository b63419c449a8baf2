// SPDX-License-Identifier: Apache-2.0
// A running engine for tests of the concrete filters, and pictures of the odder kinds.
#pragma once
#include <initializer_list>
#include <string>
#include <vector>

#include "filters/registry.h"
#include "orvcore/filterimage.h"
#include "orvcore/filtertext.h"
#include "tests/support/engine.h"
#include "tests/support/jpegencoding.h"
#include "tolbase/file.h"
#include "tolimage/imageio.h"

namespace support {

// A JPEG stream of four components, with an Adobe marker, as print programs write it.
inline std::string EncodeCmykJpeg(int width, int height) {
    JpegScanlines picture;
    picture.width = width;
    picture.height = height;
    picture.components = 4;
    picture.space = JCS_CMYK;
    picture.fill = [](std::vector<unsigned char>& row, unsigned y) {
        for (std::size_t i = 0; i < row.size(); ++i) row[i] = static_cast<unsigned char>(i * 5 + y * 3);
    };
    return EncodeScanlines(picture);
}

// A picture of this depth and number of channels whose values change from pixel to pixel.
inline Image Ramp(int width, int height, int depth, int channels) {
    Image picture = Image::Create(width, height, depth, channels);
    cv::Mat const pixels = picture;
    std::size_t const rowBytes = pixels.elemSize() * static_cast<std::size_t>(width);
    for (int y = 0; y < height; ++y) {
        unsigned char* row = picture.Data() + static_cast<std::ptrdiff_t>(y) * picture.Step();
        for (std::size_t i = 0; i < rowBytes; ++i) row[i] = static_cast<unsigned char>(i * 7 + y * 3);
    }
    return picture;
}

class FilterEngine : public Engine {
protected:
    FilterEngine() { StartOptions(); }

    // The context owns the filter from then on.
    template <class F>
    F* Add() {
        auto* filter = new F;
        context->AddFilterType(filter, m_nextType++);
        filter->CreateAnalysisPanel(nullptr, filter);
        return filter;
    }
    // Every registered filter.
    std::vector<OrvFilter*> AddAll() {
        std::vector<OrvFilter*> filters;
        for (OrvNumberedFilter const& entry : MakeFilters()) {
            context->AddFilterType(entry.filter, entry.number);
            entry.filter->CreateAnalysisPanel(nullptr, entry.filter);
            filters.push_back(entry.filter);
        }
        return filters;
    }
    void Go(OrvFilter* filter, VecParameter const& input) {
        recorder.events.clear();
        Run([&] { iface->Configure(filter, -1, input, filter->GetParametersPostProcessing(), false); });
    }
    void Go(OrvFilter* filter) { Go(filter, filter->GetParametersInput()); }
    // With these values of the input parameters, in their order.
    void GoWith(OrvFilter* filter, std::initializer_list<boost::any> values) {
        VecParameter input = filter->GetParametersInput();
        std::size_t i = 0;
        for (boost::any const& value : values) input[i++].Set(value);
        Go(filter, input);
    }
    // Whether the last run ended with its result.
    bool IsDone() const { return !recorder.events.empty() && recorder.Ids().back() == OrvCommandIdFilterDone; }

    wxString Bytes(wxString const& name, std::string const& bytes) { return WriteBytes(dir / ("in/" + name), bytes); }
    // Writes a picture in the format of the name.
    wxString Save(wxString const& name, Image const& picture) {
        CreateDirIfNotExists(dir / "in");
        tcvSaveImage(dir / ("in/" + name), picture, 90);
        return dir / ("in/" + name);
    }
    // What the filter saves for a report, or a word that says that there is nothing.
    std::string Saved(OrvFilter* filter) {
        char const* const extension = dynamic_cast<OrvFilterText*>(filter) != nullptr         ? ".html"
                                      : dynamic_cast<OrvFilterTextCustom*>(filter) != nullptr ? ".txt"
                                                                                              : ".png";
        wxString const path = dir / (wxString("saved") + extension);
        if (wxFileExists(path)) wxRemoveFile(path);
        OnWorker([&] { filter->SaveOutputBatch(path); });
        return wxFileExists(path) ? ReadBytes(path) : "(nothing)";
    }

private:
    int m_nextType = 100;
};

// The table that a filter shows.
inline VecVecString TableOf(OrvFilter const* filter) {
    return filter->GetParametersOutput()[0].GetValue<VecVecString>();
}

// The row of that name; the name stands first, or second behind a number.
inline VecString RowOf(VecVecString const& table, wxString const& name) {
    for (VecString const& row : table) {
        if (row.at(0) == name || row.at(1) == name) return row;
    }
    return {"(no row " + name + ")", "", "", "", "", "", ""};
}

}  // namespace support
