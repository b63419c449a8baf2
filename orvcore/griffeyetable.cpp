// SPDX-License-Identifier: Apache-2.0
#include "orvcore/griffeyetable.h"

#include "orvcore/batchslots.h"
#include "orvcore/context.h"
#include "orvcore/imageinfotable_private.h"
#include "tolbase/file.h"
#include "tolbase/parser.h"
#include "tolbase/progress.h"
#include "tolbase/text.h"

ImageInfoTableGriffeyePlugin::ImageInfoTableGriffeyePlugin() : ImageInfoTableGriffeyePlugin(true) {}

ImageInfoTableGriffeyePlugin::ImageInfoTableGriffeyePlugin(bool extended) : ImageInfoTable(Evidence, extended) {}

ImageInfoTableGriffeyePlugin::ResultRow ImageInfoTableGriffeyePlugin::EvaluateFile(wxString const& file) {
    const wxString reason = OrvLoadAlone(file, Evidence);
    // A fresh table for each file: an evaluation leaves something behind in the object, and there may be thousands.
    static_cast<ImageInfoTable&>(*this) = ImageInfoTable(Evidence, IsExtended());
    VecVecString table = ImageInfoTable::Evaluate();
    GetContext()->AddThumbnail(GetContext()->GetImageThumbnail(Evidence));
    if (!reason.empty()) {
        m_failures.emplace_back(file, reason);
        table[RowFilename][1] = GetFilenameNoPath(file);
        table[RowFullPath][1] = file;
        table[RowFormat][2] = OrvMarkerHard + reason;
    }

    ResultRow result;
    uint64_t warnings = 0;
    for (VecString const& line : table) {
        wxString value = line[1];
        if (!line[2].empty()) {
            ++warnings;
            if (value.empty()) value = "- empty -";
        }
        result.rows.emplace_back(line[0], value, line[2]);
    }
    result.rows.emplace_back("Warnings", ToString<uint64_t>(warnings), wxString());
    result.noWarnings = warnings == 0;
    return result;
}

ImageInfoTableGriffeyePluginResult ImageInfoTableGriffeyePlugin::Evaluate(VecString const& files) {
    GetContext()->ClearThumbnails();
    tcvInitProgress2(OrvProgressTotal(files.size()));
    tcvSetProgressString2(OrvProcessingFilesText(files.size()));
    m_failures.clear();
    OrvSlotKeeper slots;
    ImageInfoTableGriffeyePluginResult result;
    for (size_t i = 0; i < files.size(); ++i) {
        if (tcvSetProgress2(-1) == 0) break;
        tcvSetProgressString(OrvProcessingFileText(files[i]));
        OrvPrefetchNext(files, i);
        result.results[files[i]] = EvaluateFile(files[i]);
    }
    tcvDeinitProgress2();
    slots.Restore();
    return result;
}

MultiReport::Row::Row(ImageInfoTableGriffeyePlugin::ResultRow const& result, wxString const& id)
    : std::tuple<bool, wxString, wxString>(true, id, wxString()) {
    wxString& text = std::get<2>(*this);
    for (NameValueDesc const& row : result.rows) {
        text += row.Name + ": " + EscapeHtmlString(row.Value);
        if (!row.Desc.empty()) {
            wxString warning = row.Desc;
            if (warning.StartsWith(OrvMarkerHard)) warning.erase(0, 1);
            text += " - <b>" + EscapeHtmlString(warning) + "</b>";
        }
        text += "\r\n";
        if (row.Name == "Warnings" && row.Value != "0") std::get<0>(*this) = false;
    }
}

MultiReport::MultiReport(ImageInfoTableGriffeyePluginResult const& result,
                         std::map<wxString, wxString> const& fileIds) {
    for (auto const& [path, row] : result.results) rows.emplace(path, Row(row, fileIds.at(path)));
}
