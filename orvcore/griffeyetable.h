// SPDX-License-Identifier: Apache-2.0
// The file-format analysis for the Griffeye plug-in: the image information table of each file, and whether it carries
// warnings.
//
// Threads: Evaluate runs on the worker thread; the records are plain values for any thread.
#pragma once
#include <map>
#include <tuple>
#include <utility>
#include <vector>

#include "orvcore/batchtable.h"
#include "orvcore/imageinfotable.h"
#include "tolbase/export.h"
#include "tolbase/namevaluedesc.h"
#include "tolbase/types.h"

class ImageInfoTableGriffeyePluginResult;

class ORV_API ImageInfoTableGriffeyePlugin : public ImageInfoTable {
public:
    // One file: name, value and warning of each row of its table, then a row "Warnings" with their number.
    struct ResultRow {
        std::vector<NameValueDesc> rows;
        bool noWarnings = false;
    };

    // Of the extended form.
    ImageInfoTableGriffeyePlugin();
    explicit ImageInfoTableGriffeyePlugin(bool extended);

    using ImageInfoTable::Evaluate;
    // Takes over the Evidence for its run and puts both slots back. An abort leaves out what has not been looked at. A
    // file that can't be loaded gives the rows of an empty slot, named, with the reason as the one warning.
    ImageInfoTableGriffeyePluginResult Evaluate(VecString const& files);

    // The files of the last run that could not be loaded, and why.
    std::vector<OrvFileAndText> const& GetFailures() const { return m_failures; }

private:
    ResultRow EvaluateFile(wxString const& file);

    std::vector<OrvFileAndText> m_failures;
};

// Results by the file's path.
class ORV_API ImageInfoTableGriffeyePluginResult {
public:
    using Map = std::map<wxString, ImageInfoTableGriffeyePlugin::ResultRow>;

    ImageInfoTableGriffeyePluginResult() = default;
    ImageInfoTableGriffeyePluginResult(Map const& map) : results(map) {}
    ImageInfoTableGriffeyePluginResult(Map&& map) noexcept : results(std::move(map)) {}
    ImageInfoTableGriffeyePluginResult(std::initializer_list<Map::value_type> entries) : results(entries) {}

    Map results;
};

// The answer to the plug-in, by the file's path.
class ORV_API MultiReport {
public:
    // Whether the file is without warnings, its identifier, the report text. Every value and warning stands in the text
    // with the characters that HTML uses escaped.
    struct ORV_API Row : std::tuple<bool, wxString, wxString> {
        using std::tuple<bool, wxString, wxString>::tuple;
        Row() : std::tuple<bool, wxString, wxString>(true, wxString(), wxString()) {}
        Row(ImageInfoTableGriffeyePlugin::ResultRow const& result, wxString const& id);
    };
    using Map = std::map<wxString, Row>;

    MultiReport() = default;
    // Throws std::out_of_range for a file that `fileIds` lacks.
    MultiReport(ImageInfoTableGriffeyePluginResult const& result, std::map<wxString, wxString> const& fileIds);
    MultiReport(Map const& map) : rows(map) {}
    MultiReport(std::initializer_list<Map::value_type> entries) : rows(entries) {}

    Map rows;
};
