// SPDX-License-Identifier: Apache-2.0
#include "apps/cli/clicontext.h"

#include "filters/registry.h"
#include "tolbase/exception.h"
#include "tolbase/text.h"
#include "tolimage/imageio.h"

namespace cli {

CliContext::CliContext() {
    // Every command is told its files by name, and shows no neighbours.
    ListFolders(false);
    imageFormatsRead = GetReadableImageFormats();
    stringImageFormatsRead = CatVecString(imageFormatsRead, ";");
    imageFormatsWrite = GetWritableImageFormats();
    stringImageFormatsWrite = CatVecString(imageFormatsWrite, ";");
    for (OrvNumberedFilter const& entry : MakeFilters()) {
        AddFilterType(entry.filter, entry.number);
        entry.filter->CreateAnalysisPanel(nullptr, entry.filter);
    }
}

void CliContext::LoadAlone(wxString const& path, OrvFileId id) {
    LoadFile(wxString(), id, wxString());
    try {
        LoadFile(path, id, wxString());
    } catch (TolException const& error) {
        const wxString reason = tcvLastLoadError();
        if (reason.empty() || error.GetMessage().Contains(reason)) throw;
        throw TolException(error.GetFile(), error.GetLine(), error.GetType(), error.GetCode(),
                           error.GetMessage() + " " + reason);
    }
    if (GetFilename(id) != path) {
        throw TolException(__FILE__, __LINE__, ExceptionGeneral, TolErrorMessage, "The file could not be loaded.");
    }
}

}  // namespace cli
