// SPDX-License-Identifier: Apache-2.0
#include "orvcore/batchslots.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

#include "orvcore/translate.h"
#include "tolbase/exception.h"
#include "tolbase/file.h"
#include "tolbase/progress.h"
#include "tolimage/exiftool.h"

namespace {

wxString ReasonOf(std::exception const& exception) {
    const char* what = exception.what();
    const wxString text = what == nullptr ? wxString() : wxString::FromUTF8(what);
    return text.empty() ? wxString("The file can't be loaded.") : text;
}

// Why nothing came of a load that did not throw.
wxString ReasonForNothing(wxString const& path) {
    const std::string bytes = PathToBytes(path);
    struct stat info {};
    if (path.empty() || stat(bytes.c_str(), &info) != 0) return "The file does not exist.";
    if (!S_ISREG(info.st_mode)) return "Not a regular file.";
    if (access(bytes.c_str(), R_OK) != 0) return "The file can't be read.";
    return "The file can't be loaded.";
}

}  // namespace

OrvSlotKeeper::OrvSlotKeeper() {
    for (const OrvFileId id : {Evidence, Reference}) m_names[id] = GetContext()->GetFilename(id);
}

OrvSlotKeeper::~OrvSlotKeeper() {
    if (m_restored) return;
    try {
        tcvDeinitProgress2();
        Restore();
    } catch (...) {
        // An exception is on its way already.
        m_restored = true;
    }
}

void OrvSlotKeeper::Restore() {
    m_restored = true;
    tcvClearAborted();
    for (const OrvFileId id : {Evidence, Reference}) {
        if (m_names[id].empty())
            OrvEmptySlot(id);
        else
            OrvLoadAlone(m_names[id], id);
    }
}

void OrvEmptySlot(OrvFileId id) {
    try {
        GetContext()->LoadFile(wxString(), id, wxString());
    } catch (std::exception const&) {
        // Nothing is opened for an empty path; an emptied slot stays so.
        return;
    }
}

wxString OrvLoadAlone(wxString const& path, OrvFileId id) {
    // A failed load may leave the slot as it was.
    OrvEmptySlot(id);
    wxString reason;
    try {
        GetContext()->LoadFile(path, id, wxString());
        if (GetContext()->GetImage(id).IsOk()) return {};
        reason = ReasonForNothing(path);
    } catch (TolException const& exception) {
        reason = exception.GetMessage();
    } catch (std::exception const& exception) {
        reason = ReasonOf(exception);
    } catch (...) {
        reason = "The file can't be loaded.";
    }
    if (!GetContext()->GetFilename(id).empty() || GetContext()->GetImage(id).IsOk()) OrvEmptySlot(id);
    return reason.empty() ? wxString("The file can't be loaded.") : reason;
}

void OrvPrefetchNext(VecString const& files, size_t index) {
    if (index + 1 < files.size()) ExifToolPrefetch(files[index + 1]);
}

wxString OrvProcessingFilesText(size_t count) {
    return wxString::Format(OrvTranslate("Processing %d files"), OrvProgressTotal(count));
}

wxString OrvProcessingFileText(wxString const& path) {
    return wxString::Format(OrvTranslate("Processing file: %s"), GetFilenameNoPath(path));
}

int OrvProgressTotal(size_t count) {
    return static_cast<int>(std::min<size_t>(count, std::numeric_limits<int>::max()));
}
