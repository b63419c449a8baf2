// SPDX-License-Identifier: Apache-2.0
#include "orvcore/jpegsignaturetable.h"

#include <wx/filename.h>
#include <wx/gdicmn.h>

#include <array>
#include <exception>

#include "orvcore/context.h"
#include "orvcore/infotable.h"
#include "orvcore/tablewriter.h"
#include "tolbase/file.h"
#include "tolbase/parser.h"
#include "tolbase/progress.h"

namespace {

enum SignatureRow : size_t {
    RowFilename,
    RowFullPath,
    RowImageSize,
    RowImageQuality,
    RowChromaSubsampling,
    RowQtHash,
    SignatureRowCount
};

constexpr std::array<char const*, SignatureRowCount> Titles = {
    "Filename", "Full Path", "Image Size", "Image Quality", "Chroma Subsampling", "QT Hash",
};

// Counts the files, and ends the level whatever happens on the way.
class FileProgress {
public:
    explicit FileProgress(size_t files) {
        const auto count = static_cast<int>(files);
        // Starting the level empties its text.
        tcvInitProgress2(count);
        tcvSetProgressString2(wxString::Format(OrvTranslate("Processing %d files"), count));
    }
    ~FileProgress() { tcvDeinitProgress2(); }
    FileProgress(FileProgress const&) = delete;
    FileProgress& operator=(FileProgress const&) = delete;

    // False once the user has aborted.
    static bool Begin(wxString const& file) {
        if (tcvSetProgress2(-1) == 0) return false;
        tcvSetProgressString(wxString::Format(OrvTranslate("Processing file: %s"), GetFilenameNoPath(file)));
        return true;
    }
};

// The slot is empty where the file can't be loaded: no row may speak of the file before it.
void LoadReference(wxString const& file) {
    OrvContext* const context = GetContext();
    try {
        context->LoadFile(file, Reference, "");
    } catch (std::exception const&) {
        context->LoadFile("", Reference, "");
    }
}

VecString MakeHeader() {
    VecString header = {"#Id"};
    header.insert(header.end(), Titles.begin(), Titles.end());
    header.push_back("Differences");
    return header;
}

}  // namespace

JpegInfoTableSignature::JpegInfoTableSignature(OrvFileId fileId) : m_fileId(fileId) {
    for (size_t i = 0; i < Titles.size(); ++i) {
        m_parameters.push_back(i == RowImageSize ? CreateParameterImageResolution(Titles[i], "")
                                                 : CreateParameterOutputString(Titles[i], ""));
    }
}

VecVecString JpegInfoTableSignature::Evaluate() {
    m_parameters.Reset();
    OrvContext* const context = GetContext();
    const wxString path = context->GetFilename(m_fileId);
    if (!path.empty()) {
        m_parameters[RowFilename].Set(boost::any(wxFileName(path).GetFullName()));
        m_parameters[RowFullPath].Set(boost::any(path));
        const JpegInfo info = context->GetImageJpegInfo(m_fileId);
        if (info.IsValid) {
            m_parameters[RowImageSize].Set(boost::any(wxSize(info.Width, info.Height)));
            if (!info.QualityEstimates.empty()) {
                m_parameters[RowImageQuality].Set(boost::any(ToString<int>(info.QualityEstimates[0])));
            }
            m_parameters[RowChromaSubsampling].Set(boost::any(info.ChromaSubsampling));
            m_parameters[RowQtHash].Set(boost::any(info.QtHash));
        }
    }
    VecVecString table;
    for (Parameter const& parameter : m_parameters) table.push_back({parameter.Name(), parameter.ToText()});
    return table;
}

JpegInfoTableSignatureMatch::JpegInfoTableSignatureMatch() : m_evidence(Evidence), m_reference(Reference) {}

VecVecString JpegInfoTableSignatureMatch::Evaluate(VecString const& files) {
    VecVecString result = Start();
    const FileProgress progress(files.size());
    for (size_t i = 0; i < files.size(); ++i) {
        if (!FileProgress::Begin(files[i])) break;
        LoadReference(files[i]);
        result.push_back(MakeRow(i + 1, files[i]));
    }
    return result;
}

VecVecString JpegInfoTableSignatureMatch::Start() {
    m_evidenceRows = m_evidence.Evaluate();
    VecVecString result = {MakeHeader(), {"0"}};
    for (VecString const& row : m_evidenceRows) result.back().push_back(row[1]);
    result.back().push_back("0");
    return result;
}

VecString JpegInfoTableSignatureMatch::EvaluateReference(size_t number) {
    return MakeRow(number, GetContext()->GetFilename(Reference));
}

VecString JpegInfoTableSignatureMatch::MakeRow(size_t number, wxString const& file) {
    VecVecString reference = m_reference.Evaluate();
    if (reference[RowFullPath][1].empty()) {
        reference[RowFilename][1] = wxFileName(file).GetFullName();
        reference[RowFullPath][1] = file;
    }
    VecString row = {ToString<int>(static_cast<int>(number))};
    int differences = 0;
    for (size_t i = 0; i < reference.size(); ++i) {
        wxString value = reference[i][1];
        if (i >= m_evidenceRows.size() || value != m_evidenceRows[i][1]) {
            ++differences;
            if (i == RowQtHash) value = OrvMarkerHard + value;
        }
        row.push_back(value);
    }
    row.push_back(ToString<int>(differences));
    return row;
}
