// SPDX-License-Identifier: Apache-2.0
#include "orvcore/jpeginfotable.h"

#include <algorithm>
#include <array>
#include <vector>

#include "orvcore/context.h"
#include "orvcore/jpegtabletext.h"
#include "orvcore/tablewriter.h"
#include "tolbase/parser.h"

namespace {

constexpr size_t RowsOfSearches = 4;
constexpr size_t CodeLengths = 16;
constexpr size_t TableCount = 3;

constexpr std::array<char const*, RowsOfSearches> SearchTitles = {
    "Compatible Cameras (Internal)",
    "Compatible Software (Internal)",
    "Compatible Cameras (User)",
    "Compatible Software (User)",
};

constexpr std::array<char const*, 8> QuantizationTitles = {
    "Image Quality", "Standard Table", "Color Space",   "Chroma Subsampling",
    "QT Hash",       "QT 1 (Luma)",    "QT 2 (Chroma)", "QT 3 (Chroma)",
};

// Three blanks behind "Luma": the titles line up with those of "Chroma".
constexpr std::array<char const*, 7> HuffmanTitles = {
    "HT 1 (Luma   - DC Class)", "HT 1 (Luma   - AC Class)", "HT 2 (Chroma - DC Class)", "HT 2 (Chroma - AC Class)",
    "HT 3 (Chroma - DC Class)", "HT 3 (Chroma - AC Class)", "HTs Are Standard",
};

// The picture and what is embedded in it, in row order.
constexpr std::array<char const*, 3> Prefixes = {"", "Thumbnail ", "Preview "};

template <size_t N>
void AddRows(VecParameter& parameters, std::array<char const*, N> const& titles) {
    for (char const* prefix : Prefixes) {
        for (char const* title : titles)
            parameters.push_back(CreateParameterOutputString(wxString(prefix) + title, ""));
    }
}

void SetText(VecParameter& parameters, size_t row, wxString const& text) {
    parameters[row].Set(boost::any(text));
}

// What both searches found for the tables of one picture.
struct Searches {
    struct Result {
        VecString cameras;
        VecString software;
        VecString standard;
    };
    Result internal;
    Result user;
};

Searches Search(JpegInfo& info, std::vector<JpegSignature> const& signatures) {
    Searches found;
    bool softwareFound = false;
    bool cameraFound = false;
    info.FindSimilarSignaturesInInternalDatabase(softwareFound, cameraFound, found.internal.cameras,
                                                 found.internal.software, found.internal.standard);
    info.FindSimilarSignaturesInUserDatabase(signatures, softwareFound, cameraFound, found.user.cameras,
                                             found.user.software, found.user.standard);
    return found;
}

void FillQuantization(VecParameter& parameters, size_t row, JpegInfo const& info, bool standard) {
    if (!info.QualityEstimates.empty()) SetText(parameters, row, ToString<int>(info.QualityEstimates[0]));
    SetText(parameters, row + 1, OrvTranslate(ToString<bool>(standard)));
    SetText(parameters, row + 2, info.ColorSpace);
    SetText(parameters, row + 3, info.ChromaSubsampling);
    SetText(parameters, row + 4, info.QtHash);
    for (size_t i = 0; i < TableCount && i < info.QuantizationTables.size(); ++i) {
        SetText(parameters, row + 5 + i, QuantizationTableText(info.QuantizationTables[i]));
    }
}

void FillHuffman(VecParameter& parameters, size_t row, JpegInfo const& info) {
    for (size_t i = 0; i < TableCount && i < info.HuffmanTables.size(); ++i) {
        SetText(parameters, row + 2 * i, HuffmanRowText(info.HuffmanTables[i], 0));
        SetText(parameters, row + 2 * i + 1, HuffmanRowText(info.HuffmanTables[i], 1));
    }
    const bool standard = info.HtIsStandard[0] && info.HtIsStandard[1] && info.HtIsStandard[2];
    SetText(parameters, row + 2 * TableCount, OrvTranslate(standard ? "true" : "false"));
}

}  // namespace

wxString QuantizationTableText(std::vector<std::vector<int>> const& table) {
    wxString text;
    for (std::vector<int> const& row : table) {
        const size_t count = std::min<size_t>(row.size(), 8);
        for (size_t i = 0; i < count; ++i) text += wxString::Format(i == 0 ? "%*d" : " %*d", 4, row[i]);
        text += "\n";
    }
    return text;
}

wxString HuffmanRowText(std::vector<std::vector<int>> const& table, std::size_t row) {
    static const wxString total = OrvTranslate("Total:");
    if (row >= table.size()) return wxString();
    wxString text;
    int sum = 0;
    const size_t count = std::min(table[row].size(), CodeLengths);
    for (size_t i = 0; i < count; ++i) {
        text += wxString::Format("%d ", table[row][i]);
        sum += table[row][i];
    }
    if (sum == 0) return wxString();
    return text + "\n" + total + wxString::Format("%d ", sum);
}

JpegInfoTable::JpegInfoTable(OrvFileId fileId) : OrvInfoTable(fileId) {
    for (char const* title : SearchTitles) m_parameters.push_back(CreateParameterVectorString(title, "", VecString()));
    AddRows(m_parameters, QuantizationTitles);
}

VecVecString JpegInfoTable::Evaluate() {
    m_parameters.Reset();
    OrvContext* const context = GetContext();
    if (context->GetFilename(m_fileId).empty()) return GenerateTable();
    JpegInfo info = context->GetImageJpegInfo(m_fileId);
    if (!info.IsValid) return GenerateTable();

    const std::vector<JpegSignature> signatures = context->GetListOfSignaturesInUserQtDatabase();
    const Searches found = Search(info, signatures);
    m_parameters[0].Set(boost::any(found.internal.cameras));
    m_parameters[1].Set(boost::any(found.internal.software));
    m_parameters[2].Set(boost::any(found.user.cameras));
    m_parameters[3].Set(boost::any(found.user.software));
    FillQuantization(m_parameters, RowsOfSearches, info, !found.internal.standard.empty());

    size_t row = RowsOfSearches;
    for (JpegInfo embedded : {context->GetThumbnailJpegInfo(m_fileId), context->GetPreviewJpegInfo(m_fileId)}) {
        row += QuantizationTitles.size();
        if (!embedded.IsValid) continue;
        FillQuantization(m_parameters, row, embedded, !Search(embedded, signatures).internal.standard.empty());
    }
    return GenerateTable();
}

JpegInfoTable2::JpegInfoTable2(OrvFileId fileId) : OrvInfoTable(fileId) {
    AddRows(m_parameters, HuffmanTitles);
}

VecVecString JpegInfoTable2::Evaluate() {
    m_parameters.Reset();
    OrvContext* const context = GetContext();
    if (context->GetFilename(m_fileId).empty()) return GenerateTable();
    const std::array<JpegInfo, 3> infos = {context->GetImageJpegInfo(m_fileId), context->GetThumbnailJpegInfo(m_fileId),
                                           context->GetPreviewJpegInfo(m_fileId)};
    if (!infos[0].IsValid) return GenerateTable();
    for (size_t i = 0; i < infos.size(); ++i) {
        if (infos[i].IsValid) FillHuffman(m_parameters, i * HuffmanTitles.size(), infos[i]);
    }
    return GenerateTable();
}
