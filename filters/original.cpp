// SPDX-License-Identifier: Apache-2.0
#include "filters/original.h"

#include "filters/panelfactory.h"
#include "tolbase/exception.h"
#include "tolimage/imageio.h"

OrvFilterOriginal::OrvFilterOriginal() : OrvFilter("Original") {
    m_filterType = FilterTypeOverview;
    m_singleConfiguration = true;
    m_description = "Shows the picture as it is.";
}

void OrvFilterOriginal::PreApply() {
    m_imageToSave = Image();
}

void OrvFilterOriginal::Apply(OrvFileId /*id*/) {}

wxString OrvFilterOriginal::GetOutputFileSelectorString() const {
    return GetContext()->GetStringImageFormatsWrite();
}

wxString OrvFilterOriginal::GetCacheExtension() const {
    return "." + GetContext()->GetCacheFormat();
}

void OrvFilterOriginal::SaveOutput(const wxString& path) {
    const Image& picture = m_imageToSave.IsOk() ? m_imageToSave : GetInputImage(Evidence);
    if (!picture.IsOk()) throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "No image to save.");
    if (tcvSaveImage(path, picture, GetContext()->GetJpgQuality())) return;
    throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage,
                       wxString::Format("The image can't be written to %s.", path));
}

OrvFilterGuiBase* OrvFilterOriginal::CreateFilterGui(wxWindow* parent, OrvFilter* filter) {
    return OrvMakePanel(parent, filter);
}
