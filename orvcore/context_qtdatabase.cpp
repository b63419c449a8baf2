// SPDX-License-Identifier: Apache-2.0
// The lists of known quantisation tables: the compiled one and the user's own file.
#include <wx/convauto.h>

#include <algorithm>

#include "orvcore/context.h"
#include "tolbase/file.h"
#include "tolbase/limits.h"
#include "tolbase/parser.h"
#include "tolimage/jpegsignature.h"

namespace {

bool IsEditorClass(int editorClass) {
    return editorClass == JpegEditorCamera || editorClass == JpegEditorSoftware;
}

size_t EditorIndex(int editorClass) {
    return editorClass == JpegEditorCamera ? 0 : 1;
}

// Cuts what stands between the next two double quotes out of the line, with all in front of it.
wxString CutQuoted(wxString& line) {
    size_t const open = line.find('"');
    if (open == wxString::npos) {
        line.clear();
        return wxString();
    }
    size_t const close = line.find('"', open + 1);
    wxString const field = line.substr(open + 1, close == wxString::npos ? wxString::npos : close - open - 1);
    line.erase(0, close == wxString::npos ? wxString::npos : close + 1);
    return field;
}

// The class stands between the first and the last blank in front of the first comma.
wxString ClassText(wxString const& line) {
    size_t const comma = line.find(',');
    if (comma == wxString::npos) return wxString();
    return line.Left(comma).AfterFirst(' ').BeforeLast(' ');
}

}  // namespace

void OrvContext::LoadInternalQtDatabase() {
    for (JpegsnoopSignature const* record = GetInternalJpegSignatures(); record->editorClass != JpegEditorNone;
         ++record) {
        UpdateInternalQtDatabase(record->editorClass, *record);
    }
}

void OrvContext::LoadUserQtDatabase() {
    std::string bytes;
    auto const limit = static_cast<size_t>(GetTolLimit(TolLimit::UserDatabaseBytes));
    if (!ReadFileBytes(m_userQtDatabaseFilename, bytes, limit)) return;
    // Bytes that are no text in the encoding that they begin with are taken one by one.
    wxString const text(bytes.data(), wxConvAuto(wxFONTENCODING_ISO8859_1), bytes.size());
    // Line by line: cutting a long text at its front over and over would copy it as often.
    size_t position = 0;
    while (text.length() - position > 2) {
        size_t const end = text.find('\n', position);
        size_t const next = end == wxString::npos ? text.length() : end + 1;
        wxString line = text.substr(position, next - position);
        position = next;
        JpegSignature signature;
        int const editorClass = ParseQtDatabaseString(line, signature);
        UpdateUserQtDatabase(editorClass, signature);
    }
}

int OrvContext::ParseQtDatabaseString(wxString& text, JpegSignature& out) {
    size_t const end = text.find('\n');
    wxString line = text.substr(0, end);
    text.erase(0, end == wxString::npos ? wxString::npos : end + 1);
    line = line.BeforeFirst('/');
    out.editorClass = ClassText(line);
    if (out.editorClass.empty()) return 0;
    int const editorClass = FromString<int>(out.editorClass);
    for (wxString* field : {&out.make, &out.model, &out.quality, &out.signature, &out.signatureRot, &out.subsampling,
                            &out.softwareVendor, &out.softwareName}) {
        *field = CutQuoted(line);
    }
    return editorClass;
}

void OrvContext::UpdateInternalQtDatabase(int editorClass, JpegsnoopSignature const& signature) {
    if (!IsEditorClass(editorClass)) return;
    VecString row;
    row.reserve(6);
    for (char const* cell : {signature.make, signature.model, signature.quality, signature.softwareName,
                             signature.signature, signature.signatureRot}) {
        row.push_back(wxString::FromUTF8(cell));
    }
    m_internalEditors[EditorIndex(editorClass)].push_back(std::move(row));
}

void OrvContext::UpdateUserQtDatabase(int editorClass, JpegSignature const& signature) {
    if (!IsEditorClass(editorClass)) return;
    JpegSignature record = signature;
    if (record.editorClass.empty()) record.editorClass = ToString<int>(editorClass);
    m_userSignatures.push_back(record);
    m_userEditors[EditorIndex(editorClass)].push_back(CreateEditorVecString(record));
}

void OrvContext::RemoveEntryFromUserQtDatabase(int editorClass, int index) {
    if (!IsEditorClass(editorClass)) return;
    if (index < 0 || static_cast<size_t>(index) >= m_userSignatures.size()) return;
    auto const entry = m_userSignatures.begin() + index;
    VecString const row = CreateEditorVecString(*entry);
    m_userSignatures.erase(entry);
    VecVecString& editors = m_userEditors[EditorIndex(editorClass)];
    auto const found = std::find(editors.begin(), editors.end(), row);
    if (found != editors.end()) editors.erase(found);
}

VecString OrvContext::CreateEditorVecString(JpegSignature const& signature) const {
    return {signature.make,         signature.model,     signature.quality,
            signature.softwareName, signature.signature, signature.signatureRot};
}

VecVecString const& OrvContext::GetListOfEditorsInInternalQtDatabase(int index) const {
    return m_internalEditors[index];
}

VecVecString const& OrvContext::GetListOfEditorsInUserQtDatabase(int index) const {
    return m_userEditors[index];
}

std::vector<JpegSignature> const& OrvContext::GetListOfSignaturesInUserQtDatabase() const {
    return m_userSignatures;
}

std::uint64_t OrvContext::GetNumberOfElementsInQtDatabases() const {
    return m_internalEditors[0].size() + m_internalEditors[1].size() + m_userEditors[0].size() +
           m_userEditors[1].size();
}
