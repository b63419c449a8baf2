// SPDX-License-Identifier: Apache-2.0
// How a filter's result leaves the engine: file names and report.
#include <wx/translation.h>

#include "orvcore/filter.h"
#include "tolbase/file.h"
#include "tolbase/htmlwriter.h"
#include "tolbase/text.h"

namespace {

wxString Translated(const wxString& text) {
    return EscapeHtmlString(wxGetTranslation(text));
}

// One line for each parameter; what a text filter gives is shown elsewhere.
wxString ListOf(const VecParameter& parameters) {
    wxString lines;
    for (const Parameter& parameter : parameters) {
        if (parameter.GetType() == ParameterTypeOutput) continue;
        lines += Translated(parameter.Name()) + ": " + Translated(parameter.ToReport()) + HtmlWriter::DoBr();
    }
    return HtmlWriter::DoP(lines);
}

}  // namespace

wxString OrvFilter::GetExportFilename(bool withPostProcessing) const {
    const OrvContext* context = GetContext();
    wxString name = GetFilenameNoPath(context->GetFilename(Evidence));
    if (context->HasFile(Reference)) name += "-" + GetFilenameNoPath(context->GetFilename(Reference));
    name += "-" + GetName();
    const wxString input = GetParametersString(m_parametersInput, true);
    if (!input.empty()) name += "-" + input;
    const wxString post = GetParametersString(m_parametersPostProcessing, true);
    if (withPostProcessing && !post.empty()) name += "-" + post;
    return CleanFileName(name) + GetCacheExtension();
}

void OrvFilter::SaveOutputBase(const wxString& path) {
    SaveOutput(path);
}

wxString OrvFilter::GetReport(const wxString& outputPath, const wxString& outputFolder, const wxString& anchor) const {
    const bool warning = GetStatusString(Evidence) == "Warning";
    const wxString heading = Translated(m_name) + " " + EscapeHtmlString(GetParametersString(m_parametersInput, true)) +
                             HtmlWriter::DoSpan(warning ? Translated("!- WARNING! -") : wxString());
    wxString report = HtmlWriter::DoBr() + HtmlWriter::DoH(3, heading, anchor) + HtmlWriter::DoBr();
    if (GetContext()->IsJpeg(Evidence) || !IsOnlyForJpeg()) {
        report += GetReportData(outputPath, outputFolder) + ListOf(m_parametersInput) + ListOf(m_parametersOutput);
    } else {
        report += HtmlWriter::DoP(Translated("No data available."));
    }
    return report + HtmlWriter::DoBr();
}
