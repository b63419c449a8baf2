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
#include "tolbase/file.h"
#include "tolimage/imageio.h"

namespace support {

// A JPEG stream of four components, with an Adobe marker, as print programs write it.
inline std::string EncodeCmykJpeg(int width, int height) {
    jpeg_compress_struct info;
    jpeg_error_mgr errors;
    info.err = jpeg_std_error(&errors);
    jpeg_create_compress(&info);
    unsigned char* bytes = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&info, &bytes, &size);
    info.image_width = static_cast<JDIMENSION>(width);
    info.image_height = static_cast<JDIMENSION>(height);
    info.input_components = 4;
    info.in_color_space = JCS_CMYK;
    jpeg_set_defaults(&info);
    jpeg_start_compress(&info, TRUE);
    std::vector<unsigned char> row(static_cast<std::size_t>(width) * 4);
    while (info.next_scanline < info.image_height) {
        for (std::size_t i = 0; i < row.size(); ++i)
            row[i] = static_cast<unsigned char>(i * 5 + info.next_scanline * 3);
        JSAMPROW line = row.data();
        jpeg_write_scanlines(&info, &line, 1);
    }
    jpeg_finish_compress(&info);
    jpeg_destroy_compress(&info);
    std::string const result(reinterpret_cast<char const*>(bytes), size);
    std::free(bytes);
    return result;
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
