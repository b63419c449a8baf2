// SPDX-License-Identifier: Apache-2.0
#include "orvcore/genericaction.h"

#include <wx/filename.h>

#include <cstdio>
#include <map>
#include <string>

#include "orvcore/batchprocessing.h"
#include "orvcore/batchtable.h"
#include "orvcore/context.h"
#include "orvcore/griffeyetable.h"
#include "orvcore/optionnumbers.h"
#include "orvcore/tablewriter.h"
#include "orvcore/translate.h"
#include "orvcore/webmediasearch.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/jsonalg.h"
#include "tolbase/progress.h"
#include "tolbase/text.h"
#include "tolcore/filelist.h"
#include "tolimage/mapview.h"

namespace {

constexpr char const* NetworkError =
    "Network Connection Error: you may be disconnected from the Internet or the server may be down.";

wxString TextAt(const VecParameter& parameters, size_t index) {
    return index < parameters.size() ? parameters[index].GetValue<wxString>() : wxString();
}

bool FlagAt(const VecParameter& parameters, size_t index) {
    return index < parameters.size() && parameters[index].GetValue<bool>();
}

bool SearchSubfolders() {
    const VecVecParameter options = GetContext()->GetProgramOptions();
    return !options.empty() && options[0].size() > OrvOptionSearchSubfolders &&
           options[0][OrvOptionSearchSubfolders].GetValue<int>() == 1;
}

VecString FilesInFolder(const wxString& folder) {
    return GetAllFiles(folder, GetContext()->GetImageFormatsRead(), SearchSubfolders());
}

VecString FilesOrFolder(const wxString& text) {
    if (!IsAConcatenationOfAllExistingFiles(text, "|", 1)) return FilesInFolder(text);
    return StringToVecString(text, "|", wxTOKEN_DEFAULT, true);
}

VecParameter TableResult(const VecVecString& table) {
    Parameter parameter = CreateParameterTable("Table", wxString());
    parameter.Set(boost::any(table));
    return {parameter};
}

bool WriteToStandardOutput(const wxString& text) {
    const std::string bytes = TolToUtf8(text);
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size();
    return std::fflush(stdout) == 0 && written;
}

}  // namespace

OrvCommandCallGenericAction::OrvCommandCallGenericAction(int actionId, const wxString& text,
                                                         const VecParameter& parameters)
    : OrvCommand(OrvCommandIdCallGenericAction), m_actionId(actionId), m_text(text), m_parameters(parameters) {}

void OrvCommandCallGenericAction::Execute() {
    switch (m_actionId) {
        case OrvActionSearchCameraImages:
        case OrvActionSearchGeoTagImages:
            return SearchWithTable();
        case OrvActionSearchSightings:
            return SearchSightings();
        case OrvActionSearchImageOnWeb:
            return SearchImageOnWeb();
        case OrvActionGetCoordinates:
            return GetCoordinates();
        case OrvActionBatchTable:
            return MakeBatchTable();
        case OrvActionMultiComparison:
            return MakeMultiComparison();
        case OrvActionDownloadImages:
            return DownloadImages();
        case OrvActionBatchProcessing:
            return ProcessBatch();
        case OrvActionGriffeyeAnalysis:
            return AnalyseForPlugin();
        case OrvActionGriffeyeBatch:
            return ProcessBatchForPlugin();
        case OrvActionOpenBrowserFiles:
            return OpenBrowserFiles();
        default:
            wxASSERT(false);
    }
}

void OrvCommandCallGenericAction::PostTable(const wxString& message, const VecVecString& table) {
    PostEvent(m_text, 0, message, m_actionId, TableResult(table));
}

void OrvCommandCallGenericAction::PostText(const wxString& result) {
    PostEvent(m_text, 0, wxString(), m_actionId, {CreateParameterString("Result", wxString(), result)});
}

void OrvCommandCallGenericAction::PostNothing(const wxString& message) {
    PostEvent(m_text, 0, message, m_actionId, VecParameter());
}

void OrvCommandCallGenericAction::PostAnswer(const wxString& answer) {
    // A reader that has gone, or a full disk behind the output, would otherwise look like an answer.
    const bool written = WriteToStandardOutput(answer);
    PostEvent(m_text, written ? 0 : -1, written ? "" : "The standard output can't be written.", m_actionId,
              VecParameter());
}

void OrvCommandCallGenericAction::SearchWithTable() {
    wxString error;
    const VecVecString table = m_actionId == OrvActionSearchCameraImages
                                   ? SearchImageFromWeb(m_parameters, m_actionId, error)
                                   : SearchGeoTagImage(m_parameters, m_actionId, error);
    PostTable(error, table);
}

void OrvCommandCallGenericAction::SearchSightings() {
    wxString error;
    VecVecString table;
    try {
        table = SearchImageOnCameraForensics(m_parameters, m_actionId, error);
    } catch (const TolException& exception) {
        table.clear();
        error = exception.GetMessage();
    }
    PostTable(error, table);
}

void OrvCommandCallGenericAction::SearchImageOnWeb() {
    const OrvContext* context = GetContext();
    const wxString evidence = context->GetFilename(Evidence);
    const wxString stem = context->GetOutputBasePath(Evidence) + "-" + "SearchImagesOnTheWeb-";
    wxString message;
    VecVecString table;
    if (!evidence.empty() && FlagAt(m_parameters, 0)) {
        tcvSetProgressString(OrvTranslate("Contacting TinEye server..."));
        table = MapView::ShowTinEyeFileSearch(evidence, stem);
        if (table.empty()) message = OrvTranslate(NetworkError);
    }
    if (!evidence.empty() && FlagAt(m_parameters, 1)) {
        tcvSetProgressString(OrvTranslate("Contacting Google server..."));
        if (MapView::ShowGoogleFileSearch(evidence, stem, TextAt(m_parameters, 2)) != 0)
            message = OrvTranslate(NetworkError);
    }
    PostTable(message, table);
}

void OrvCommandCallGenericAction::GetCoordinates() {
    const ImageDetailsExifTool& details = GetContext()->GetImageDetails(Evidence);
    if (details.GpsLatitude.empty() || details.GpsLongitude.empty()) {
        PostEvent(m_text, -1, OrvTranslate("No GPS coordinates available."), m_actionId, VecParameter());
        return;
    }
    PostText(details.GpsLatitude + " " + details.GpsLongitude);
}

void OrvCommandCallGenericAction::MakeBatchTable() {
    const VecString files = FilesOrFolder(TextAt(m_parameters, 0));
    const wxString output = TextAt(m_parameters, 1);
    const bool statusOnly = FlagAt(m_parameters, 4);
    const VecVecString table = ImageInfoTableBatch().Evaluate(files, TextAt(m_parameters, 2), TextAt(m_parameters, 3));
    if (!output.empty()) {
        CreateDirIfNotExists(wxPathOnly(output));
        SaveImageInfoTableByExtension(output, table, statusOnly);
    }
    PostTable(wxString(), table);
}

void OrvCommandCallGenericAction::MakeMultiComparison() {
    PostTable(wxString(), ImageInfoTableMultiComparison().Evaluate(FilesInFolder(TextAt(m_parameters, 0))));
}

void OrvCommandCallGenericAction::DownloadImages() {
    VecString list = m_parameters.empty() ? VecString() : m_parameters[0].GetValue<VecString>();
    wxString folder = TextAt(m_parameters, 1);
    wxString error;
    DownloadImageFromWeb(list, folder, error);
    PostNothing(error);
}

void OrvCommandCallGenericAction::ProcessBatch() {
    TolJsonAlg::GriffeyeOrvBatchReportsMap none;
    PostText(OrvBatchProcessing(m_parameters, false, {}, none));
}

void OrvCommandCallGenericAction::AnalyseForPlugin() {
    VecString files;
    if (!m_parameters.empty()) {
        for (const auto& entry : m_parameters[0].GetValue<std::map<wxString, wxString>>()) {
            files.push_back(entry.first);
        }
    }
    const MultiReport report(ImageInfoTableGriffeyePlugin().Evaluate(files), GetContext()->GetBatchFileMap());
    PostAnswer(TolJsonAlg::GetGriffeyeOrvFFAnalysisAsJSONString(report.rows));
}

void OrvCommandCallGenericAction::ProcessBatchForPlugin() {
    TolJsonAlg::GriffeyeOrvBatchReportsMap reports;
    OrvBatchProcessing(m_parameters, true, GetContext()->GetBatchFileMap(), reports);
    PostAnswer(TolJsonAlg::GetGriffeyeOrvBatchAsJSONString(reports));
}

void OrvCommandCallGenericAction::OpenBrowserFiles() {
    for (const wxString& file : GetContext()->GetBrowserFiles()) LaunchDefaultBrowserLocalFile(file);
    PostNothing(wxString());
}
